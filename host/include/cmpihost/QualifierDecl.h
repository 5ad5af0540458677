// A "Qualifier Name : type = default, Scope(...), Flavor(...);" declaration.
#ifndef CMPIHOST_QUALIFIERDECL_H_
#define CMPIHOST_QUALIFIERDECL_H_

#include <string>
#include <vector>

#include "cmpihost/CimType.h"
#include "cmpihost/Export.h"
#include "cmpihost/MofValue.h"

namespace cmpihost {

struct CMPIHOST_EXPORT QualifierDecl {
  std::string name;  // declared spelling
  TypeDecl type;
  MofValue defaultValue;             // kNull when none
  std::vector<std::string> scopes;   // lower-case: class, association, property, ..., any
  std::vector<std::string> flavors;  // as written: EnableOverride, ToSubclass, ...
};

// A qualifier applied to a class, property, method or parameter.
struct CMPIHOST_EXPORT Qualifier {
  std::string name;  // the declaration's spelling
  MofValue value;    // a bare boolean qualifier ("Key") has value true
};

}  // namespace cmpihost

#endif  // CMPIHOST_QUALIFIERDECL_H_
