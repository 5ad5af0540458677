#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

void AssignDefaults(InstanceImpl& bag, std::initializer_list<PropertyDefault> defaults) {
  for (const PropertyDefault& entry : defaults) {
    bag[entry.name] = entry.text;
  }
}

void InsertAbsentDefaults(InstanceImpl& bag, std::initializer_list<PropertyDefault> defaults) {
  for (const PropertyDefault& entry : defaults) {
    if (bag.find(entry.name) == bag.end()) {
      bag[entry.name] = entry.text;
    }
  }
}

}  // namespace NQENDRA20
