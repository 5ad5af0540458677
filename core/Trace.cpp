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
  // Plain arrays, so that a thread's buffer needs no construction and leaves
  // nothing behind when the thread ends. `taken` guards against a broker that
  // traces back into the library (none should) while the buffer is being read.
  thread_local char buffer[kBufferSize];
  thread_local bool taken = false;
  if (length < kBufferSize && !taken) {
    char* out = buffer;
    for (const std::string_view part : parts) {
      std::memcpy(out, part.data(), part.size());
      out += part.size();
    }
    *out = '\0';
    taken = true;
    Trace(broker, severity, buffer);
    taken = false;
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
