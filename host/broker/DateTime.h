// The front door is cmpihost/Host.h; this header is internal.
// CIM date-times as the host prints and reads them: 25 characters,
// "yyyymmddhhmmss.mmmmmm+ooo" (offset from UTC in minutes) for points in
// time, "ddddddddhhmmss.mmmmmm:000" for intervals.
#ifndef CMPIHOST_BROKER_DATETIME_H_
#define CMPIHOST_BROKER_DATETIME_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace cmpihost {

struct DateTime {
  bool interval = false;
  // Microseconds since 1970-01-01 00:00 UTC, or the interval's length.
  std::uint64_t binary = 0;
  std::string text;
};

// A point in time in the process's local time zone (TZ), with its offset.
DateTime LocalDateTime(std::chrono::system_clock::time_point when);
// What newDateTimeFromBinary makes: local time for points, or an interval.
DateTime DateTimeFromBinary(std::uint64_t binary, bool interval);
// Reads exactly the two 25-character forms, with every field in range; any
// other text (wildcards included) gives nullopt.
std::optional<DateTime> ParseDateTime(const std::string& text);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_DATETIME_H_
