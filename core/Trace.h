// The library's one way of tracing: the broker's logMessage with the message
// id "diagcore". Internal to the library.
#ifndef DIAGCORE_CORE_TRACE_H_
#define DIAGCORE_CORE_TRACE_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace NQENDRA20 {

// Progress traces use CMPI_DEV_DEBUG (4), failed lookups and invalid objects
// CMPI_SEV_WARNING (3). The broker's answer is ignored.
void Trace(const CMPIBroker* broker, int severity, const char* text);
void Trace(const CMPIBroker* broker, int severity, const std::string& text);
// The text is `parts` one after the other.
void Trace(const CMPIBroker* broker, int severity, std::initializer_list<std::string_view> parts);

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_TRACE_H_
