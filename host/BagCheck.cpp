#include "cmpihost/BagCheck.h"

#include <optional>

#include "broker/BagReading.h"
#include "cmpihost/ClassRepository.h"

namespace cmpihost {

std::string DroppedProperty::text() const {
  return className + "." + property + ": " + reason;
}

std::vector<DroppedProperty> DroppedAtBuilding(const ClassRepository& repository,
                                               const std::string& nameSpace,
                                               const std::string& className,
                                               const PropertyTexts& bag) {
  const ClassDecl* decl = repository.findClass(nameSpace, className);
  std::vector<DroppedProperty> dropped;
  for (const auto& [name, text] : bag) {
    const PropertyDecl* property = decl != nullptr ? decl->findProperty(name) : nullptr;
    if (decl == nullptr) {
      dropped.push_back({className, name, "the class is not loaded in " + nameSpace});
    } else if (property == nullptr) {
      dropped.push_back({decl->name(), name, "the class declares no such property"});
    } else if (std::optional<std::string> reason = WhyNotRead(text, property->type)) {
      dropped.push_back({decl->name(), property->name, *reason});
    }
  }
  return dropped;
}

}  // namespace cmpihost
