#include "providers/HostState.h"

#include "providers/Dispatcher.h"

namespace cmpihost {

std::chrono::system_clock::time_point HostState::now() const {
  std::function<std::chrono::system_clock::time_point()> current;
  {
    std::lock_guard<std::mutex> lock(clockMutex);
    current = clock;
  }
  return current ? current() : std::chrono::system_clock::now();
}

Gathered HostState::enumerate(const PathData& classPath, const std::vector<std::string>* properties,
                              bool namesOnly) {
  return DispatchEnumerate(*this, classPath, properties, namesOnly);
}

Gathered HostState::getInstance(const PathData& path, const std::vector<std::string>* properties) {
  return DispatchGetInstance(*this, path, properties);
}

NamedValues HostState::contextEntries(const std::string& nameSpace) const {
  NamedValues entries;
  entries.reserve(3);
  entries.append(CMPIInitNameSpace, HostValue::String(nameSpace));
  entries.append(CMPIInvocationFlags, HostValue::Unsigned(CMPI_uint32, 0));
  entries.append(CMPIPrincipal, HostValue::String("cmpihost"));
  return entries;
}

}  // namespace cmpihost
