#include "core/Reclamation.h"

#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

namespace NQENDRA20 {

namespace {

// Requests are counted by the epoch in which they began; each handing-over
// closes an epoch. What was handed over in epoch e may be held by requests
// that began in e or earlier, and is freed once none of them runs.
class Reclaimer {
 public:
  std::uint64_t Enter() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++running_[epoch_];
    return epoch_;
  }

  void Leave(std::uint64_t ticket) {
    std::vector<InstanceRegistry::Instance*> freeable;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      const auto found = running_.find(ticket);
      if (found != running_.end() && --found->second == 0) {
        running_.erase(found);
      }
      freeable = TakeFreeable();
    }
    FreeAll(freeable);
  }

  void HandOver(std::vector<InstanceRegistry::Instance*> unlinked) {
    std::vector<InstanceRegistry::Instance*> freeable;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      handedOver_.emplace_back(epoch_, std::move(unlinked));
      ++epoch_;
      freeable = TakeFreeable();
    }
    FreeAll(freeable);
  }

 private:
  // Under the lock. Frees nothing itself: a bag's destructor is the
  // plug-in's code, and a clone's release the CIMOM's.
  std::vector<InstanceRegistry::Instance*> TakeFreeable() {
    const std::uint64_t oldestRunning =
        running_.empty() ? std::numeric_limits<std::uint64_t>::max() : running_.begin()->first;
    std::vector<InstanceRegistry::Instance*> freeable;
    while (!handedOver_.empty() && handedOver_.front().first < oldestRunning) {
      std::vector<InstanceRegistry::Instance*>& batch = handedOver_.front().second;
      freeable.insert(freeable.end(), batch.begin(), batch.end());
      handedOver_.pop_front();
    }
    return freeable;
  }

  static void FreeAll(const std::vector<InstanceRegistry::Instance*>& entries) {
    for (InstanceRegistry::Instance* entry : entries) {
      FreeEntry(entry);
    }
  }

  std::mutex mutex_;
  std::uint64_t epoch_ = 0;
  std::map<std::uint64_t, std::size_t> running_;
  std::deque<std::pair<std::uint64_t, std::vector<InstanceRegistry::Instance*>>> handedOver_;
};

// Kept for the life of the process, like the registry: a request may still
// leave after the library's statics are destroyed.
Reclaimer& TheReclaimer() {
  static auto* const reclaimer = new Reclaimer();
  return *reclaimer;
}

}  // namespace

void FreeEntry(InstanceRegistry::Instance* entry) {
  delete entry->impl;
  if (entry->ci != nullptr) {
    entry->ci->ft->release(entry->ci);
  }
  delete entry;
}

void Reclaim(std::vector<InstanceRegistry::Instance*> unlinked) {
  if (!unlinked.empty()) {
    TheReclaimer().HandOver(std::move(unlinked));
  }
}

RequestScope::RequestScope(const CMPIBroker* broker) : ticket_(TheReclaimer().Enter()) {
  if (broker == nullptr) {
    return;
  }
  try {
    InstanceRegistry::Singleton()->RemoveExpired(broker);
  } catch (...) {
    // No destructor runs for a scope that was never made.
    TheReclaimer().Leave(ticket_);
    throw;
  }
}

RequestScope::~RequestScope() {
  TheReclaimer().Leave(ticket_);
}

}  // namespace NQENDRA20
