// A CMPIInstance copied into plain C++ values: what a provider delivered.
#ifndef CMPIHOST_INSTANCESNAPSHOT_H_
#define CMPIHOST_INSTANCESNAPSHOT_H_

#include <string>
#include <vector>

#include "cmpihost/Export.h"
#include "cmpihost/Value.h"

namespace cmpihost {

struct CMPIHOST_EXPORT Property {
  std::string name;
  Value value;
};

struct CMPIHOST_EXPORT InstanceSnapshot {
  std::string className;
  std::string nameSpace;
  std::string path;  // toString of the instance's object path (keys from Key properties)
  std::vector<Property> properties;  // in the instance's property order

  // The property of that name (case-insensitive), or null.
  const Value* find(const std::string& name) const;
  // MOF-like text: "instance of Class {\n    Name = \"x\";\n};\n"
  std::string toMof() const;
};

}  // namespace cmpihost

#endif  // CMPIHOST_INSTANCESNAPSHOT_H_
