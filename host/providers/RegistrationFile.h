// The front door is cmpihost/Host.h; this header is internal.
// The provider registration file of the small-footprint CIMOM, so that one
// file deploys a provider there and here:
//
//   # comment
//   [CIM_Foo]
//      provider: FooProvider
//      location: fooprovider        (the library is libfooprovider.so)
//      type: instance method        (instance association method indication property)
//      namespace: root/cimv2 root/other
//      unload: never                (the only value; without it the CIMOM may
//                                    unload an idle provider)
//      group: foo                   (ignored, as are unknown keys)
#ifndef CMPIHOST_PROVIDERS_REGISTRATIONFILE_H_
#define CMPIHOST_PROVIDERS_REGISTRATIONFILE_H_

#include <string>
#include <vector>

#include "cmpihost/ProviderRegistration.h"

namespace cmpihost {

struct RegistrationStanza {
  unsigned line = 0;  // of "[ClassName]"
  std::string className;
  std::string providerName;
  std::string location;
  // One per namespace, each for the stanza's class and kinds.
  std::vector<ProviderRegistration> registrations;
};

// Throws HostError "file:line: problem".
std::vector<RegistrationStanza> ReadRegistrationFile(const std::string& path);
std::vector<RegistrationStanza> ParseRegistrationText(const std::string& text,
                                                      const std::string& name);

// The first lib<location>.so in `libraryDirs`; with no directories, the bare
// file name (for the dynamic loader's own search). Throws HostError
// "file:line: problem" when none exists.
std::string FindProviderLibrary(const RegistrationStanza& stanza, const std::string& file,
                                const std::vector<std::string>& libraryDirs);

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_REGISTRATIONFILE_H_
