#include <condition_variable>
#include <cstdio>
#include <exception>
#include <mutex>

#include "core/StartupScope.h"
#include "diagcore/DiagProvider.h"

namespace NQENDRA20 {

namespace {

// One lock for every plug-in's start-up: start-ups are rare, and a plug-in's
// once-flag must stay constant-initialisable (no mutex of its own).
std::mutex startupMutex;
std::condition_variable& StartupDone() {
  static std::condition_variable done;
  return done;
}

// Each thread's own address: who is running a start-up, so that a factory
// call from inside it does not wait for itself.
thread_local char threadMarker;

CMPIStatus Status(CMPIrc rc) {
  CMPIStatus status = {rc, nullptr};
  return status;
}

}  // namespace

template <typename Mi>
bool ProviderStartup::Start(Mi* mi, const CMPIBroker* broker, const CMPIContext* context,
                            CMPIStatus* rc) noexcept {
  try {
    std::unique_lock<std::mutex> lock(startupMutex);
    // The MI functions read it without the lock: written only here, before
    // the factory hands the MI out.
    if (mi->hdl != broker) {
      mi->hdl = const_cast<CMPIBroker*>(broker);
    }
    if (state_ == State::kNotRun) {
      state_ = State::kRunning;
      runner_ = &threadMarker;
      lock.unlock();
      Run(broker, context);
      lock.lock();
      runner_ = nullptr;
      StartupDone().notify_all();
    } else if (state_ == State::kRunning && runner_ != &threadMarker) {
      StartupDone().wait(lock, [this] { return state_ != State::kRunning; });
    }
    if (state_ != State::kFailed) {
      if (rc != nullptr) {
        *rc = Status(CMPI_RC_OK);
      }
      return true;
    }
    if (rc != nullptr) {
      *rc = Status(CMPI_RC_ERR_FAILED);
      if (broker != nullptr) {
        rc->msg = broker->eft->newString(broker, failure_, nullptr);
      }
    }
    return false;
  } catch (...) {
    // Only the lock or the message can throw here (system error, memory).
    if (rc != nullptr) {
      *rc = Status(CMPI_RC_ERR_FAILED);
    }
    return false;
  }
}

bool ProviderStartup::Activate(CMPIInstanceMI* mi, const CMPIBroker* broker,
                               const CMPIContext* context, CMPIStatus* rc) noexcept {
  return Start(mi, broker, context, rc);
}

bool ProviderStartup::Activate(CMPIMethodMI* mi, const CMPIBroker* broker,
                               const CMPIContext* context, CMPIStatus* rc) noexcept {
  return Start(mi, broker, context, rc);
}

bool ProviderStartup::Activate(CMPIAssociationMI* mi, const CMPIBroker* broker,
                               const CMPIContext* context, CMPIStatus* rc) noexcept {
  return Start(mi, broker, context, rc);
}

// Runs outside the lock: the start-up calls the broker back, and may call a
// factory itself.
void ProviderStartup::Run(const CMPIBroker* broker, const CMPIContext* context) noexcept {
  State outcome = State::kDone;
  try {
    const StartupScope scope(pluginName_);
    startup_(broker, context);
  } catch (const std::exception& error) {
    Fail(error.what());
    outcome = State::kFailed;
  } catch (...) {
    Fail("unknown exception");
    outcome = State::kFailed;
  }
  const std::lock_guard<std::mutex> lock(startupMutex);
  state_ = outcome;
}

// The text is kept in the flag itself, for every later factory call.
void ProviderStartup::Fail(const char* what) noexcept {
  std::snprintf(failure_, sizeof failure_, "Start-up of plug-in %s failed: %s", pluginName_, what);
}

}  // namespace NQENDRA20
