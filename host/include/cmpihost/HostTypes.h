// The plain types of Host's requests and answers, and its error; see
// cmpihost/Host.h.
#ifndef CMPIHOST_HOSTTYPES_H_
#define CMPIHOST_HOSTTYPES_H_

#include <cmpidt.h>

#include <optional>
#include <string>

#include "cmpihost/Export.h"
#include "cmpihost/HostError.h"
#include "cmpihost/Reply.h"

namespace cmpihost {

// One input argument of a method call. The value text is typed by the
// method's declared parameter type unless `type` says otherwise; reference
// arguments are object path texts.
struct CMPIHOST_EXPORT Argument {
  std::string name;
  std::string text;
  std::optional<CMPIType> type;
};

// The optional filters of associator and reference requests (null when unset).
struct CMPIHOST_EXPORT AssociationFilter {
  std::optional<std::string> assocClass;
  std::optional<std::string> resultClass;
  std::optional<std::string> role;
  std::optional<std::string> resultRole;
};

// One MI's answer to an idle-unload sweep (Host::unloadIdleProviders).
struct CMPIHOST_EXPORT UnloadAnswer {
  std::string providerName;
  std::string kind;       // "Instance", "Method" or "Association"
  Status status;          // what its cleanup returned
  bool unloaded = false;  // every MI of the provider answered OK, so its MIs were dropped
};

}  // namespace cmpihost

#endif  // CMPIHOST_HOSTTYPES_H_
