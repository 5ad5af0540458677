#include "providers/ProviderTable.h"

#include <algorithm>

#include "broker/Values.h"
#include "cmpihost/HostError.h"

namespace cmpihost {

const char* MiKindName(MiKind kind) {
  switch (kind) {
    case MiKind::kInstance:
      return "Instance";
    case MiKind::kMethod:
      return "Method";
    case MiKind::kAssociation:
      return "Association";
  }
  return "?";
}

namespace {

bool SameFactories(const MiFactories& a, const MiFactories& b) {
  return a.instance == b.instance && a.method == b.method && a.association == b.association;
}

}  // namespace

ProviderEntry& ProviderTable::add(const ProviderRegistration& registration,
                                  const MiFactories& factories, const std::string& libraryPath,
                                  void* library) {
  std::lock_guard<std::mutex> lock(mutex_);
  ProviderEntry* entry = nullptr;
  for (const auto& existing : entries_) {
    if (existing->name == registration.providerName) {
      if (existing->libraryPath != libraryPath ||
          (library == nullptr && !SameFactories(existing->factories, factories))) {
        throw HostError("provider " + registration.providerName + " is already registered with " +
                        (existing->libraryPath.empty() ? std::string("other in-process factories")
                                                       : "library " + existing->libraryPath));
      }
      entry = existing.get();
    }
  }
  if (entry == nullptr) {
    entries_.push_back(std::make_unique<ProviderEntry>());
    entry = entries_.back().get();
    entry->name = registration.providerName;
    entry->libraryPath = libraryPath;
    entry->library = library;
    entry->factories = factories;
    entry->nameSpace = registration.nameSpace;
  }
  const std::array<bool, 3> kinds = {registration.instance, registration.method,
                                     registration.association};
  auto& classes = bindings_[AsciiLowered(registration.nameSpace)];
  for (const std::string& className : registration.classNames) {
    auto& bindings = classes[AsciiLowered(className)];
    auto same = std::find_if(bindings.begin(), bindings.end(),
                             [&](const Binding& binding) { return binding.provider == entry; });
    if (same == bindings.end()) {
      bindings.push_back(Binding{entry, kinds});
    } else {
      for (std::size_t i = 0; i < kinds.size(); ++i) {
        same->kinds[i] = same->kinds[i] || kinds[i];
      }
    }
  }
  return *entry;
}

std::string ProviderTable::conflictFor(const std::string& name,
                                       const std::string& libraryPath) const {
  std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& existing : entries_) {
    if (existing->name == name && existing->libraryPath != libraryPath) {
      return "provider " + name + " is already registered with " +
             (existing->libraryPath.empty() ? std::string("in-process factories")
                                            : "library " + existing->libraryPath);
    }
  }
  return "";
}

std::vector<ProviderEntry*> ProviderTable::forClass(const std::string& nameSpace,
                                                    const std::string& className,
                                                    MiKind kind) const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<ProviderEntry*> providers;
  const auto classes = bindings_.find(AsciiLowered(nameSpace));
  if (classes == bindings_.end()) {
    return providers;
  }
  const auto bindings = classes->second.find(AsciiLowered(className));
  if (bindings == classes->second.end()) {
    return providers;
  }
  for (const Binding& binding : bindings->second) {
    if (binding.kinds[static_cast<std::size_t>(kind)]) {
      providers.push_back(binding.provider);
    }
  }
  return providers;
}

std::vector<ProviderEntry*> ProviderTable::inNamespace(const std::string& nameSpace,
                                                       MiKind kind) const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<ProviderEntry*> providers;
  const auto classes = bindings_.find(AsciiLowered(nameSpace));
  if (classes == bindings_.end()) {
    return providers;
  }
  // In registration order, whatever classes they serve.
  for (const auto& entry : entries_) {
    const bool serves =
        std::any_of(classes->second.begin(), classes->second.end(), [&](const auto& classBindings) {
          return std::any_of(classBindings.second.begin(), classBindings.second.end(),
                             [&](const Binding& binding) {
                               return binding.provider == entry.get() &&
                                      binding.kinds[static_cast<std::size_t>(kind)];
                             });
        });
    if (serves) {
      providers.push_back(entry.get());
    }
  }
  return providers;
}

std::vector<std::pair<ProviderEntry*, MiKind>> ProviderTable::allKinds() const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::pair<ProviderEntry*, MiKind>> all;
  for (const auto& entry : entries_) {
    std::array<bool, 3> kinds = {false, false, false};
    for (const auto& [nameSpace, classes] : bindings_) {
      for (const auto& [className, bindings] : classes) {
        for (const Binding& binding : bindings) {
          if (binding.provider == entry.get()) {
            for (std::size_t i = 0; i < kinds.size(); ++i) {
              kinds[i] = kinds[i] || binding.kinds[i];
            }
          }
        }
      }
    }
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      if (kinds[i]) {
        all.emplace_back(entry.get(), static_cast<MiKind>(i));
      }
    }
  }
  return all;
}

void ProviderTable::noteCreated(ProviderEntry* entry, MiKind kind) {
  std::lock_guard<std::mutex> lock(mutex_);
  created_.emplace_back(entry, kind);
}

void ProviderTable::forgetCreated(const ProviderEntry* entry) {
  std::lock_guard<std::mutex> lock(mutex_);
  created_.erase(std::remove_if(created_.begin(), created_.end(),
                                [entry](const auto& item) { return item.first == entry; }),
                 created_.end());
}

std::vector<std::pair<ProviderEntry*, MiKind>> ProviderTable::createdInOrder() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return created_;
}

}  // namespace cmpihost
