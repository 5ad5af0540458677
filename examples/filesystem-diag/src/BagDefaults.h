// AddIfAbsent: how the example's bags fill their defaults, like the
// library's setting and association bags: a value already set is kept.
#ifndef FILESYSTEMDIAG_BAGDEFAULTS_H_
#define FILESYSTEMDIAG_BAGDEFAULTS_H_

#include <string>

#include "diagcore/InstanceImpl.h"

namespace filesystemdiag {

// Sets `name` to `value` unless the bag already holds `name`.
void AddIfAbsent(NQENDRA20::InstanceImpl& bag, const std::string& name, const std::string& value);

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_BAGDEFAULTS_H_
