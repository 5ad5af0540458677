// The front door is cmpihost/Host.h; this header is internal.
// Providers that live in shared libraries: opening them, and registering the
// ones a registration file names.
#ifndef CMPIHOST_PROVIDERS_PROVIDERLIBRARY_H_
#define CMPIHOST_PROVIDERS_PROVIDERLIBRARY_H_

#include <string>
#include <vector>

#include "cmpihost/ClassRepository.h"
#include "providers/ProviderTable.h"

namespace cmpihost {

// The library's handle (RTLD_LOCAL, never closed); throws HostError
// "<where>cannot load <path>: <reason>".
void* OpenProviderLibrary(const std::string& path, const std::string& where);

// Registers each stanza of the file; every library is found, loaded and
// checked before anything is registered, so a bad file registers nothing.
// Throws HostError "file:line: problem".
void RegisterFromFile(const ClassRepository& repository, ProviderTable& providers,
                      const std::string& path, const std::vector<std::string>& libraryDirs);

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_PROVIDERLIBRARY_H_
