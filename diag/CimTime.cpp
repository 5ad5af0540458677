#include "diag/CimTime.h"

#include <algorithm>
#include <cstdio>

#include "core/BrokerText.h"

namespace NQENDRA20 {

namespace {

constexpr CMPIUint64 kMicrosPerSecond = 1000000;
constexpr CMPIUint64 kSecondsPerDay = 86400;
constexpr CMPIUint64 kMaxDays = 99999999;

std::string TextOf(CMPIDateTime* dateTime) {
  if (dateTime == nullptr) {
    return "";
  }
  std::string text = CharsOf(dateTime->ft->getStringFormat(dateTime, nullptr));
  dateTime->ft->release(dateTime);
  return text;
}

}  // namespace

CimTime Now(const CMPIBroker* broker) {
  CMPIDateTime* now = broker->eft->newDateTime(broker, nullptr);
  if (now == nullptr) {
    return CimTime{};
  }
  CimTime time;
  time.micros = now->ft->getBinaryFormat(now, nullptr);
  time.text = TextOf(now);
  return time;
}

std::string TimeText(const CMPIBroker* broker, CMPIUint64 micros) {
  return TextOf(broker->eft->newDateTimeFromBinary(broker, micros, 0, nullptr));
}

std::string IntervalText(CMPIUint64 micros) {
  const CMPIUint64 seconds = micros / kMicrosPerSecond;
  const CMPIUint64 days = std::min(seconds / kSecondsPerDay, kMaxDays);
  const CMPIUint64 inDay = seconds % kSecondsPerDay;
  char text[32];
  std::snprintf(
      text, sizeof text, "%08llu%02llu%02llu%02llu.%06llu:000",
      static_cast<unsigned long long>(days), static_cast<unsigned long long>(inDay / 3600),
      static_cast<unsigned long long>(inDay / 60 % 60), static_cast<unsigned long long>(inDay % 60),
      static_cast<unsigned long long>(micros % kMicrosPerSecond));
  return text;
}

}  // namespace NQENDRA20
