#include "providers/Activation.h"

#include <dlfcn.h>

#include <exception>
#include <utility>

namespace cmpihost {

Status Failure(CMPIrc rc, std::string message) {
  Status status;
  status.rc = rc;
  status.hasMessage = true;
  status.message = std::move(message);
  return status;
}

Status CopyStatus(const CMPIStatus& status) {
  Status out;
  out.rc = status.rc;
  if (status.msg != nullptr) {
    out.hasMessage = true;
    const StringObject* message = AsString(status.msg);
    out.message = message != nullptr ? message->chars : "(the message is not a string of cmpihost)";
  }
  return out;
}

namespace {

// --- creating MIs ---

template <typename MI>
using NamedFactory = MI* (*)(const CMPIBroker*, const CMPIContext*, CMPIStatus*);
template <typename MI>
using GenericFactory = MI* (*)(const CMPIBroker*, const CMPIContext*, const char*, CMPIStatus*);

template <typename MI>
void* CallLibraryFactory(void* symbol, bool generic, const CMPIBroker* broker,
                         const CMPIContext* context, const char* name, CMPIStatus* status) {
  MI* mi = generic ? reinterpret_cast<GenericFactory<MI>>(symbol)(broker, context, name, status)
                   : reinterpret_cast<NamedFactory<MI>>(symbol)(broker, context, status);
  return (mi != nullptr && mi->ft == nullptr) ? nullptr : mi;
}

void* CallLibrary(MiKind kind, void* symbol, bool generic, const CMPIBroker* broker,
                  const CMPIContext* context, const char* name, CMPIStatus* status) {
  switch (kind) {
    case MiKind::kInstance:
      return CallLibraryFactory<CMPIInstanceMI>(symbol, generic, broker, context, name, status);
    case MiKind::kMethod:
      return CallLibraryFactory<CMPIMethodMI>(symbol, generic, broker, context, name, status);
    case MiKind::kAssociation:
      return CallLibraryFactory<CMPIAssociationMI>(symbol, generic, broker, context, name, status);
  }
  return nullptr;
}

template <typename MI>
void* CallInProcess(NamedFactory<MI> factory, const CMPIBroker* broker, const CMPIContext* context,
                    CMPIStatus* status) {
  MI* mi = factory(broker, context, status);
  return (mi != nullptr && mi->ft == nullptr) ? nullptr : mi;
}

void* CallFactory(HostState& host, ProviderEntry& provider, MiKind kind, std::string& refusal) {
  Scope scope;
  const ContextObject* context =
      CreateInScope<ContextObject>(nullptr, host.contextEntries(provider.nameSpace));
  CMPIStatus status;
  status.rc = CMPI_RC_OK;
  status.msg = nullptr;
  void* mi = nullptr;
  std::string factory;
  const std::string kindName = MiKindName(kind);
  try {
    if (provider.library != nullptr) {
      const std::string generic = "_Generic_Create_" + kindName + "MI";
      const std::string named = provider.name + "_Create_" + kindName + "MI";
      if (void* symbol = dlsym(provider.library, generic.c_str())) {
        factory = generic;
        mi = CallLibrary(kind, symbol, true, host.cmpiBroker(), context, provider.name.c_str(),
                         &status);
      } else if (void* namedSymbol = dlsym(provider.library, named.c_str())) {
        factory = named;
        mi = CallLibrary(kind, namedSymbol, false, host.cmpiBroker(), context,
                         provider.name.c_str(), &status);
      } else {
        refusal =
            "library " + provider.libraryPath + " exports neither " + generic + " nor " + named;
        return nullptr;
      }
    } else {
      factory = "the in-process " + kindName + " MI factory";
      const MiFactories& factories = provider.factories;
      if (kind == MiKind::kInstance && factories.instance != nullptr) {
        mi = CallInProcess(factories.instance, host.cmpiBroker(), context, &status);
      } else if (kind == MiKind::kMethod && factories.method != nullptr) {
        mi = CallInProcess(factories.method, host.cmpiBroker(), context, &status);
      } else if (kind == MiKind::kAssociation && factories.association != nullptr) {
        mi = CallInProcess(factories.association, host.cmpiBroker(), context, &status);
      } else {
        refusal = "it was registered without " + kindName + " MI factory";
        return nullptr;
      }
    }
  } catch (const std::exception& error) {
    refusal = factory + " threw: " + error.what();
    return nullptr;
  } catch (...) {
    refusal = factory + " threw";
    return nullptr;
  }
  if (status.rc != CMPI_RC_OK) {
    const Status copied = CopyStatus(status);
    refusal = factory + " answered rc " + std::to_string(status.rc) +
              (copied.hasMessage ? " (" + copied.message + ")" : std::string());
    return nullptr;
  }
  if (mi == nullptr) {
    refusal = factory + " returned no MI (or one without a function table)";
  }
  return mi;
}

}  // namespace

void* ActivateMi(HostState& host, ProviderEntry& provider, MiKind kind, std::string& refusal) {
  ProviderEntry::Slot& slot = provider.slots[static_cast<std::size_t>(kind)];
  if (!slot.settled.load(std::memory_order_acquire)) {
    std::lock_guard<std::recursive_mutex> lock(host.providers.activationMutex());
    if (!slot.settled.load(std::memory_order_acquire)) {
      if (slot.creating) {
        refusal = std::string("its ") + MiKindName(kind) +
                  " MI factory is still running (it asked for its own MI)";
        return nullptr;
      }
      slot.creating = true;
      std::string why;
      void* mi = CallFactory(host, provider, kind, why);
      slot.creating = false;
      slot.mi = mi;
      slot.refusal = why;
      slot.settled.store(true, std::memory_order_release);
      if (mi != nullptr) {
        host.providers.noteCreated(&provider, kind);
      }
    }
  }
  if (slot.mi == nullptr) {
    refusal = slot.refusal;
  }
  return slot.mi;
}

std::vector<std::string> ActivateAll(HostState& host) {
  std::vector<std::string> refusals;
  for (const auto& [provider, kind] : host.providers.allKinds()) {
    std::string refusal;
    if (ActivateMi(host, *provider, kind, refusal) == nullptr) {
      refusals.push_back("provider " + provider->name + ", " + MiKindName(kind) +
                         " MI: " + refusal);
    }
  }
  return refusals;
}

namespace {

// One MI's cleanup, in a call scope of its own as every MI call is.
Status CallCleanup(HostState& host, const ProviderEntry& provider, MiKind kind, bool terminating) {
  void* mi = provider.slots[static_cast<std::size_t>(kind)].mi;
  Scope scope;
  const ContextObject* context =
      CreateInScope<ContextObject>(nullptr, host.contextEntries(provider.nameSpace));
  const CMPIBoolean flag = terminating ? 1 : 0;
  CMPIStatus status = MakeStatus(CMPI_RC_OK);
  try {
    if (kind == MiKind::kInstance) {
      auto* instanceMi = static_cast<CMPIInstanceMI*>(mi);
      if (instanceMi->ft->cleanup != nullptr) {
        status = instanceMi->ft->cleanup(instanceMi, context, flag);
      }
    } else if (kind == MiKind::kMethod) {
      auto* methodMi = static_cast<CMPIMethodMI*>(mi);
      if (methodMi->ft->cleanup != nullptr) {
        status = methodMi->ft->cleanup(methodMi, context, flag);
      }
    } else {
      auto* associationMi = static_cast<CMPIAssociationMI*>(mi);
      if (associationMi->ft->cleanup != nullptr) {
        status = associationMi->ft->cleanup(associationMi, context, flag);
      }
    }
  } catch (const std::exception& error) {
    status = MakeStatus(CMPI_RC_ERR_FAILED, std::string("the provider threw: ") + error.what());
  } catch (...) {
    status = MakeStatus(CMPI_RC_ERR_FAILED, "the provider threw");
  }
  // Copied before the scope closes: the message may be one of its objects.
  return CopyStatus(status);
}

}  // namespace

void CleanupAll(HostState& host) {
  auto created = host.providers.createdInOrder();
  for (auto item = created.rbegin(); item != created.rend(); ++item) {
    // A provider failing to clean up cannot stop the host from closing.
    CallCleanup(host, *item->first, item->second, true);
  }
}

std::vector<UnloadAnswer> UnloadIdle(HostState& host) {
  std::lock_guard<std::recursive_mutex> lock(host.providers.activationMutex());
  // Each provider once, in the order its first MI was created.
  std::vector<ProviderEntry*> providers;
  const auto created = host.providers.createdInOrder();
  for (const auto& [provider, kind] : created) {
    if (std::find(providers.begin(), providers.end(), provider) == providers.end()) {
      providers.push_back(provider);
    }
  }
  std::vector<UnloadAnswer> answers;
  for (ProviderEntry* provider : providers) {
    const std::size_t first = answers.size();
    bool unload = true;
    for (const auto& [owner, kind] : created) {
      if (owner != provider) {
        continue;
      }
      UnloadAnswer answer;
      answer.providerName = provider->name;
      answer.kind = MiKindName(kind);
      answer.status = CallCleanup(host, *provider, kind, false);
      // Only every MI agreeing lets a CIMOM unload; a refusal or a failure
      // keeps the provider as it is, MIs that did agree included.
      unload = unload && answer.status.rc == CMPI_RC_OK;
      answers.push_back(std::move(answer));
    }
    if (unload) {
      // As a reloaded library would: the factories run again at the next
      // request. The library stays open; what it handed out may still live.
      for (ProviderEntry::Slot& slot : provider->slots) {
        slot.mi = nullptr;
        slot.refusal.clear();
        slot.settled.store(false, std::memory_order_release);
      }
      host.providers.forgetCreated(provider);
    }
    for (std::size_t i = first; i < answers.size(); ++i) {
      UnloadAnswer& answer = answers[i];
      answer.unloaded = unload;
      LogRecord record;
      record.kind = LogRecord::Kind::kLog;
      record.severity = CMPI_SEV_INFO;
      record.id = "cmpihost";
      record.text = "idle unload: provider " + answer.providerName + ", " + answer.kind +
                    " MI cleanup answered " + CmpiStatusName(answer.status.rc) +
                    (answer.status.hasMessage ? " (" + answer.status.message + ")" : "") +
                    (unload ? "; unloaded" : "; stays loaded");
      host.log.add(std::move(record));
    }
  }
  return answers;
}

}  // namespace cmpihost
