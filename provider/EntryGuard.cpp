#include "provider/EntryGuard.h"

namespace NQENDRA20 {

CMPIStatus FailedStatus(const CMPIBroker* broker, const char* operation,
                        const std::string& reason) {
  CMPIStatus failed = {CMPI_RC_ERR_FAILED, nullptr};
  if (broker != nullptr) {
    const std::string message = std::string(operation) + " failed: " + reason;
    failed.msg = broker->eft->newString(broker, message.c_str(), nullptr);
  }
  return failed;
}

}  // namespace NQENDRA20
