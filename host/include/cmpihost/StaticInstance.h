// An "instance of Class { ... };" declaration from MOF, served by the host as
// if a provider had returned it.
#ifndef CMPIHOST_STATICINSTANCE_H_
#define CMPIHOST_STATICINSTANCE_H_

#include <string>
#include <utility>
#include <vector>

#include "cmpihost/Export.h"
#include "cmpihost/MofValue.h"

namespace cmpihost {

struct CMPIHOST_EXPORT StaticInstance {
  std::string className;  // the class's declared spelling
  // Property values in the order written; aliases already resolved to
  // kReference object path texts.
  std::vector<std::pair<std::string, MofValue>> values;
};

}  // namespace cmpihost

#endif  // CMPIHOST_STATICINSTANCE_H_
