// Which provider serves which classes: one stanza of a registration file, or
// the same given in code.
#ifndef CMPIHOST_PROVIDERREGISTRATION_H_
#define CMPIHOST_PROVIDERREGISTRATION_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>
#include <vector>

#include "cmpihost/Export.h"

namespace cmpihost {

struct CMPIHOST_EXPORT ProviderRegistration {
  std::string providerName;  // <Name> in <Name>_Create_<Kind>MI
  std::string location;      // the library is lib<location>.so ("" for in-process MIs)
  std::vector<std::string> classNames;
  std::string nameSpace = "root/cimv2";
  bool instance = false;
  bool method = false;
  bool association = false;
  bool unloadNever = false;  // "unload: never"
};

// In-process MI factories, with the signatures a library exports. A null
// entry means the provider does not offer that kind.
struct CMPIHOST_EXPORT MiFactories {
  CMPIInstanceMI* (*instance)(const CMPIBroker*, const CMPIContext*, CMPIStatus*) = nullptr;
  CMPIMethodMI* (*method)(const CMPIBroker*, const CMPIContext*, CMPIStatus*) = nullptr;
  CMPIAssociationMI* (*association)(const CMPIBroker*, const CMPIContext*, CMPIStatus*) = nullptr;
};

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERREGISTRATION_H_
