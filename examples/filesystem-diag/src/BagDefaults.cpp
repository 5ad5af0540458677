#include "BagDefaults.h"

namespace filesystemdiag {

void AddIfAbsent(NQENDRA20::InstanceImpl& bag, const std::string& name, const std::string& value) {
  if (bag.find(name) == bag.end()) {
    bag[name] = value;
  }
}

}  // namespace filesystemdiag
