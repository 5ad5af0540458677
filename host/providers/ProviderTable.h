// The front door is cmpihost/Host.h; this header is internal.
// Which provider serves which class, and the MIs created for them. A
// provider's MI of each kind is created at most once, lazily, under one
// activation lock; afterwards it is read without locking.
#ifndef CMPIHOST_PROVIDERS_PROVIDERTABLE_H_
#define CMPIHOST_PROVIDERS_PROVIDERTABLE_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "cmpihost/ProviderRegistration.h"

namespace cmpihost {

enum class MiKind { kInstance = 0, kMethod = 1, kAssociation = 2 };
const char* MiKindName(MiKind kind);  // "Instance", "Method", "Association"

// One provider: in-process factories or a loaded library.
struct ProviderEntry {
  std::string name;
  std::string libraryPath;  // "" for in-process MIs
  void* library = nullptr;  // dlopen handle, never closed
  MiFactories factories;
  std::string nameSpace;  // the first one registered: the factories' context

  struct Slot {
    std::atomic<bool> settled{false};  // tried: mi or refusal is final
    bool creating = false;             // its factory is running now
    void* mi = nullptr;
    std::string refusal;
  };
  std::array<Slot, 3> slots;
};

class ProviderTable {
 public:
  // Adds (or reuses, by provider name and library) the provider and binds
  // it to the registration's classes for its kinds. Throws HostError when the
  // name is already taken by a different provider.
  ProviderEntry& add(const ProviderRegistration& registration, const MiFactories& factories,
                     const std::string& libraryPath, void* library);

  // Why add() would refuse a library provider of this name, or "" when it would not.
  std::string conflictFor(const std::string& name, const std::string& libraryPath) const;

  // The providers bound to exactly this class for this kind, in registration order.
  std::vector<ProviderEntry*> forClass(const std::string& nameSpace, const std::string& className,
                                       MiKind kind) const;
  // Every provider of this kind bound to any class of the namespace, once
  // each, in registration order.
  std::vector<ProviderEntry*> inNamespace(const std::string& nameSpace, MiKind kind) const;
  // Every provider with the kinds it was registered for.
  std::vector<std::pair<ProviderEntry*, MiKind>> allKinds() const;

  // The activation lock (recursive: a factory may make upcalls that need
  // another provider) and the order in which MIs were created.
  std::recursive_mutex& activationMutex() { return activation_; }
  void noteCreated(ProviderEntry* entry, MiKind kind);
  // After an unload: none of the provider's MIs count as created.
  void forgetCreated(const ProviderEntry* entry);
  std::vector<std::pair<ProviderEntry*, MiKind>> createdInOrder() const;

 private:
  struct Binding {
    ProviderEntry* provider;
    std::array<bool, 3> kinds;
  };
  mutable std::mutex mutex_;
  std::recursive_mutex activation_;
  std::vector<std::unique_ptr<ProviderEntry>> entries_;
  // key: lower-case namespace, then lower-case class
  std::map<std::string, std::map<std::string, std::vector<Binding>>> bindings_;
  std::vector<std::pair<ProviderEntry*, MiKind>> created_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_PROVIDERTABLE_H_
