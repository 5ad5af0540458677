// Writing a class's default properties into its bag. Internal to the library.
#ifndef DIAGCORE_DIAG_PROPERTYDEFAULTS_H_
#define DIAGCORE_DIAG_PROPERTYDEFAULTS_H_

#include <initializer_list>

#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

struct PropertyDefault {
  const char* name;
  const char* text;
};

// Writes each default in order, replacing what the bag holds.
void AssignDefaults(InstanceImpl& bag, std::initializer_list<PropertyDefault> defaults);

// Writes each default in order where the bag has no property of that name;
// a property already present keeps its value.
void InsertAbsentDefaults(InstanceImpl& bag, std::initializer_list<PropertyDefault> defaults);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_PROPERTYDEFAULTS_H_
