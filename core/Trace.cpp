#include "core/Trace.h"

namespace NQENDRA20 {

namespace {

const char* const kMessageId = "diagcore";

}  // namespace

void Trace(const CMPIBroker* broker, int severity, const char* text) {
  if (broker == nullptr) {
    return;
  }
  broker->eft->logMessage(broker, severity, kMessageId, text, nullptr);
}

void Trace(const CMPIBroker* broker, int severity, const std::string& text) {
  Trace(broker, severity, text.c_str());
}

void Trace(const CMPIBroker* broker, int severity, std::initializer_list<std::string_view> parts) {
  if (broker == nullptr) {
    return;
  }
  std::string text;
  for (const std::string_view part : parts) {
    text += part;
  }
  Trace(broker, severity, text.c_str());
}

}  // namespace NQENDRA20
