#include "broker/DateTime.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace cmpihost {
namespace {

constexpr std::int64_t kMicrosPerSecond = 1000000;
constexpr std::size_t kTextLength = 25;

// Days since 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's method),
// so that parsing does not depend on the process's time zone.
std::int64_t DaysFromCivil(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

bool AllDigits(const std::string& text, std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      return false;
    }
  }
  return true;
}

unsigned Field(const std::string& text, std::size_t from, std::size_t length) {
  return static_cast<unsigned>(std::strtoul(text.substr(from, length).c_str(), nullptr, 10));
}

std::string FormatInterval(std::uint64_t micros) {
  const std::uint64_t seconds = micros / kMicrosPerSecond;
  char text[64];
  std::snprintf(text, sizeof text, "%08llu%02u%02u%02u.%06u:000",
                static_cast<unsigned long long>(seconds / 86400),
                static_cast<unsigned>(seconds / 3600 % 24),
                static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60),
                static_cast<unsigned>(micros % kMicrosPerSecond));
  return text;
}

}  // namespace

namespace {

// Writes `value` as `width` decimal digits, zero-padded, at `out`.
char* PutDigits(char* out, unsigned value, int width) {
  for (int i = width - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  return out + width;
}

// "yyyymmddhhmmss.mmmmmm+ooo" without a format string to interpret: every
// newDateTime makes one. Nullopt for the years and offsets it cannot hold
// in its fixed widths, which the general formatting then writes.
std::optional<std::string> FixedWidthText(const std::tm& local, unsigned fraction,
                                          long offsetMinutes) {
  const int year = local.tm_year + 1900;
  const long offset = offsetMinutes < 0 ? -offsetMinutes : offsetMinutes;
  if (year < 0 || year > 9999 || offset > 999 || local.tm_mon < 0 || local.tm_mday < 0 ||
      local.tm_hour < 0 || local.tm_min < 0 || local.tm_sec < 0) {
    return std::nullopt;
  }
  char text[kTextLength];
  char* out = PutDigits(text, static_cast<unsigned>(year), 4);
  out = PutDigits(out, static_cast<unsigned>(local.tm_mon + 1), 2);
  out = PutDigits(out, static_cast<unsigned>(local.tm_mday), 2);
  out = PutDigits(out, static_cast<unsigned>(local.tm_hour), 2);
  out = PutDigits(out, static_cast<unsigned>(local.tm_min), 2);
  out = PutDigits(out, static_cast<unsigned>(local.tm_sec), 2);
  *out++ = '.';
  out = PutDigits(out, fraction, 6);
  *out++ = offsetMinutes < 0 ? '-' : '+';
  PutDigits(out, static_cast<unsigned>(offset), 3);
  return std::string(text, kTextLength);
}

}  // namespace

DateTime LocalDateTime(std::chrono::system_clock::time_point when) {
  const std::int64_t micros =
      std::chrono::duration_cast<std::chrono::microseconds>(when.time_since_epoch()).count();
  std::int64_t seconds = micros / kMicrosPerSecond;
  std::int64_t fraction = micros % kMicrosPerSecond;
  if (fraction < 0) {
    fraction += kMicrosPerSecond;
    --seconds;
  }
  const auto clock = static_cast<std::time_t>(seconds);
  std::tm local{};
  localtime_r(&clock, &local);
  const long offsetMinutes = local.tm_gmtoff / 60;
  DateTime result;
  result.binary = static_cast<std::uint64_t>(micros);
  if (std::optional<std::string> fixed =
          FixedWidthText(local, static_cast<unsigned>(fraction), offsetMinutes)) {
    result.text = std::move(*fixed);
    return result;
  }
  char text[64];
  std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d.%06d%c%03ld", local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(fraction), offsetMinutes < 0 ? '-' : '+',
                offsetMinutes < 0 ? -offsetMinutes : offsetMinutes);
  result.text = text;
  return result;
}

DateTime DateTimeFromBinary(std::uint64_t binary, bool interval) {
  if (!interval) {
    return LocalDateTime(std::chrono::system_clock::time_point(
        std::chrono::microseconds(static_cast<std::int64_t>(binary))));
  }
  DateTime result;
  result.interval = true;
  result.binary = binary;
  result.text = FormatInterval(binary);
  return result;
}

std::optional<DateTime> ParseDateTime(const std::string& text) {
  if (text.size() != kTextLength || !AllDigits(text, 0, 14) || text[14] != '.' ||
      !AllDigits(text, 15, 21) || !AllDigits(text, 22, 25)) {
    return std::nullopt;
  }
  const char sign = text[21];
  const unsigned hours = Field(text, 8, 2);
  const unsigned minutes = Field(text, 10, 2);
  const unsigned seconds = Field(text, 12, 2);
  const unsigned micros = Field(text, 15, 6);
  DateTime result;
  result.text = text;
  if (sign == ':') {
    if (text.compare(22, 3, "000") != 0 || hours > 23 || minutes > 59 || seconds > 59) {
      return std::nullopt;
    }
    const std::uint64_t days = Field(text, 0, 8);
    result.interval = true;
    result.binary =
        (((days * 24 + hours) * 60 + minutes) * 60 + seconds) * kMicrosPerSecond + micros;
    return result;
  }
  if (sign != '+' && sign != '-') {
    return std::nullopt;
  }
  const unsigned year = Field(text, 0, 4);
  const unsigned month = Field(text, 4, 2);
  const unsigned day = Field(text, 6, 2);
  if (month < 1 || month > 12 || day < 1 || day > 31 || hours > 23 || minutes > 59 ||
      seconds > 60) {
    return std::nullopt;
  }
  const std::int64_t offset =
      static_cast<std::int64_t>(Field(text, 22, 3)) * (sign == '-' ? -1 : 1);
  const std::int64_t utcSeconds = DaysFromCivil(year, month, day) * 86400 +
                                  static_cast<std::int64_t>(hours) * 3600 +
                                  static_cast<std::int64_t>(minutes) * 60 + seconds - offset * 60;
  result.binary = static_cast<std::uint64_t>(utcSeconds * kMicrosPerSecond + micros);
  return result;
}

}  // namespace cmpihost
