#include "core/Trace.h"

#include <cstring>

namespace NQENDRA20 {

namespace {

const char* const kMessageId = "diagcore";

// Room for every trace the library writes in normal work; a longer text gets
// a string of its own.
constexpr std::size_t kBufferSize = 1024;

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
  std::size_t length = 0;
  for (const std::string_view part : parts) {
    length += part.size();
  }
  // On the stack: nothing to construct, nothing left behind, no thread-local
  // lookup per trace (a shared library reaches its thread-locals through a
  // call), and a broker that traces back into the library gets its own.
  char buffer[kBufferSize];
  if (length < kBufferSize) {
    char* out = buffer;
    for (const std::string_view part : parts) {
      std::memcpy(out, part.data(), part.size());
      out += part.size();
    }
    *out = '\0';
    Trace(broker, severity, buffer);
    return;
  }
  std::string text;
  text.reserve(length);
  for (const std::string_view part : parts) {
    text.append(part.data(), part.size());
  }
  Trace(broker, severity, text.c_str());
}

}  // namespace NQENDRA20
