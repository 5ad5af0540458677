#include "core/Trace.h"

namespace NQENDRA20 {

namespace {
const char* const kMessageId = "diagcore";
}  // namespace

void Trace(const CMPIBroker* broker, int severity, const std::string& text) {
  if (broker == nullptr) {
    return;
  }
  broker->eft->logMessage(broker, severity, kMessageId, text.c_str(), nullptr);
}

}  // namespace NQENDRA20
