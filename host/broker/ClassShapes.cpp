#include "broker/ClassShapes.h"

#include <array>
#include <utility>

#include "broker/PathText.h"

namespace cmpihost {

CMPIType CmpiTypeOf(const TypeDecl& type) {
  // In the order of CimType.
  static constexpr std::array<CMPIType, 15> kCodes = {
      CMPI_boolean, CMPI_string, CMPI_char16, CMPI_uint8,    CMPI_sint8,
      CMPI_uint16,  CMPI_sint16, CMPI_uint32, CMPI_sint32,   CMPI_uint64,
      CMPI_sint64,  CMPI_real32, CMPI_real64, CMPI_dateTime, CMPI_ref};
  const CMPIType code = kCodes.at(static_cast<std::size_t>(type.type));
  return static_cast<CMPIType>(type.isArray ? (code | CMPI_ARRAY) : code);
}

std::shared_ptr<const ClassShape> ShapeCache::shapeOf(const std::string& nameSpace,
                                                      const std::string& className) {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    const auto space = shapes_.find(nameSpace);
    if (space != shapes_.end()) {
      const auto found = space->second.find(className);
      if (found != space->second.end()) {
        return found->second;
      }
    }
  }
  const ClassDecl* decl = repository_.findClass(nameSpace, className);
  if (decl == nullptr) {
    return nullptr;
  }
  auto shape = std::make_shared<ClassShape>();
  shape->className = decl->name();
  for (const PropertyDecl& property : decl->properties()) {
    PropertyShape declared;
    declared.name = property.name;
    declared.type = CmpiTypeOf(property.type);
    declared.isKey = property.isKey;
    // Reference defaults are read without class lookups, so that a class
    // whose default refers to itself cannot recurse here.
    declared.initial = ValueFromMof(property.defaultValue, declared.type, nameSpace, nullptr)
                           .value_or(HostValue::Null(declared.type));
    declared.initial.type = declared.type;
    shape->properties.push_back(std::move(declared));
  }
  std::lock_guard<std::mutex> lock(mutex_);
  return shapes_[nameSpace].emplace(className, std::move(shape)).first->second;
}

}  // namespace cmpihost
