// Reading what the library traced through the broker's logMessage.
#ifndef DIAGCORE_TESTS_SUPPORT_TRACES_H_
#define DIAGCORE_TESTS_SUPPORT_TRACES_H_

#include <ostream>
#include <string>
#include <vector>

#include "cmpihost/Host.h"
#include "cmpihost/LogRecord.h"

namespace diagcore_test {

// Severities the library traces with.
constexpr int kWarning = 3;  // CMPI_SEV_WARNING
constexpr int kDebug = 4;    // CMPI_DEV_DEBUG

// One logMessage of the library: severity and text.
struct TraceLine {
  int severity = 0;
  std::string text;
};

bool operator==(const TraceLine& a, const TraceLine& b);
bool operator!=(const TraceLine& a, const TraceLine& b);
// For gtest messages: "4 'text'".
void PrintTo(const TraceLine& line, std::ostream* out);

// The library's records (logMessage with id "diagcore"), in order. Records of
// other kinds or ids are left out; a record with the library's id but another
// kind (trace instead of logMessage) is kept with severity -1, so a test sees it.
std::vector<TraceLine> LibraryTraces(const std::vector<cmpihost::LogRecord>& records);
std::vector<TraceLine> LibraryTraces(const cmpihost::Host& host);

// Shorthands for writing expected sequences.
TraceLine Debug(std::string text);
TraceLine Warning(std::string text);

// The `times`-fold repetition of `lines`, for doubled builds.
std::vector<TraceLine> Repeat(const std::vector<TraceLine>& lines, int times);
// `a` followed by `b`.
std::vector<TraceLine> Concat(std::vector<TraceLine> a, const std::vector<TraceLine>& b);

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SUPPORT_TRACES_H_
