#include "providers/ProviderLibrary.h"

#include <dlfcn.h>

#include "cmpihost/HostError.h"
#include "providers/RegistrationFile.h"

namespace cmpihost {

void* OpenProviderLibrary(const std::string& path, const std::string& where) {
  // Never closed: a provider's code must outlive every object it handed out.
  void* library = dlopen(path.c_str(), RTLD_LOCAL | RTLD_NOW);
  if (library == nullptr) {
    const char* why = dlerror();
    throw HostError(where + "cannot load " + path + ": " +
                    (why == nullptr ? "unknown error" : why));
  }
  return library;
}

void RegisterFromFile(const ClassRepository& repository, ProviderTable& providers,
                      const std::string& path, const std::vector<std::string>& libraryDirs) {
  struct Pending {
    ProviderRegistration registration;
    std::string library;
    void* handle;
  };
  // Every library is found, loaded and checked before anything is
  // registered, so a bad file registers nothing.
  std::vector<Pending> pending;
  for (const RegistrationStanza& stanza : ReadRegistrationFile(path)) {
    const std::string where = path + ":" + std::to_string(stanza.line) + ": ";
    // A provider for a class nobody declared could never be asked; most
    // often its MOF was loaded after this file, or into another namespace.
    for (const ProviderRegistration& registration : stanza.registrations) {
      if (repository.findClass(registration.nameSpace, stanza.className) == nullptr) {
        throw HostError(where + "class " + stanza.className + " is not declared in namespace " +
                        registration.nameSpace + " (load its MOF before the registration file)");
      }
    }
    const std::string library = FindProviderLibrary(stanza, path, libraryDirs);
    void* handle = OpenProviderLibrary(library, where);
    const std::string conflict = providers.conflictFor(stanza.providerName, library);
    if (!conflict.empty()) {
      throw HostError(where + conflict);
    }
    for (const ProviderRegistration& registration : stanza.registrations) {
      pending.push_back(Pending{registration, library, handle});
    }
  }
  for (const Pending& item : pending) {
    const ProviderRegistration& registration = item.registration;
    if (registration.instance || registration.method || registration.association) {
      providers.add(registration, MiFactories{}, item.library, item.handle);
    }
  }
}

}  // namespace cmpihost
