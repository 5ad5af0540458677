#include "core/StartupScope.h"

namespace NQENDRA20 {

namespace {

thread_local const char* runningStartup = nullptr;

}  // namespace

StartupScope::StartupScope(const char* pluginName) noexcept : previous_(runningStartup) {
  runningStartup = pluginName;
}

StartupScope::~StartupScope() {
  runningStartup = previous_;
}

const char* StartupScope::Current() noexcept {
  return runningStartup;
}

}  // namespace NQENDRA20
