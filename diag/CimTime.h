// The broker's clock as both a CIM date-time text and a number, for the
// profile's expiration dates and job times. Internal to the library.
#ifndef DIAGCORE_DIAG_CIMTIME_H_
#define DIAGCORE_DIAG_CIMTIME_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

namespace NQENDRA20 {

struct CimTime {
  CMPIUint64 micros = 0;  // since the epoch
  std::string text;       // CIM date-time text
};

// The broker's current time, asked once; {0, ""} when it has none.
CimTime Now(const CMPIBroker* broker);

// The broker's date-time text of `micros` since the epoch ("" when it has none).
std::string TimeText(const CMPIBroker* broker, CMPIUint64 micros);

// The CIM interval text of `micros` ("ddddddddhhmmss.mmmmmm:000"), days
// capped at 99999999.
std::string IntervalText(CMPIUint64 micros);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_CIMTIME_H_
