// The boundary every exported MI function keeps: no C++ exception may reach
// the CIMOM, which is C. Internal to the library.
#ifndef DIAGCORE_PROVIDER_ENTRYGUARD_H_
#define DIAGCORE_PROVIDER_ENTRYGUARD_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <exception>
#include <string>

#include "core/Reclamation.h"

namespace NQENDRA20 {

// CMPI_RC_ERR_FAILED with the message "<operation> failed: <reason>", made by
// the broker (no message when there is no broker to make it).
CMPIStatus FailedStatus(const CMPIBroker* broker, const char* operation, const std::string& reason);

// Runs `body` and returns its status; an exception escaping it becomes
// FailedStatus with the exception's text, or "unknown exception". What has
// expired is removed first, and nothing the body takes from the registry is
// freed before it returns.
template <typename Body>
CMPIStatus GuardEntry(const CMPIBroker* broker, const char* operation, Body&& body) noexcept {
  try {
    try {
      const RequestScope scope(broker);
      return body();
    } catch (const std::exception& error) {
      return FailedStatus(broker, operation, error.what());
    } catch (...) {
      return FailedStatus(broker, operation, "unknown exception");
    }
  } catch (...) {
    // Even making the message failed (out of memory): still no exception out.
    CMPIStatus failed = {CMPI_RC_ERR_FAILED, nullptr};
    return failed;
  }
}

}  // namespace NQENDRA20

#endif  // DIAGCORE_PROVIDER_ENTRYGUARD_H_
