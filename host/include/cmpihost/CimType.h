// The CIM data types a class declaration can give a property, a method or a
// parameter, independent of CMPI's codes (the broker maps them).
#ifndef CMPIHOST_CIMTYPE_H_
#define CMPIHOST_CIMTYPE_H_

#include <optional>
#include <string>
#include <string_view>

#include "cmpihost/Export.h"

namespace cmpihost {

enum class CimType {
  kBoolean,
  kString,
  kChar16,
  kUint8,
  kSint8,
  kUint16,
  kSint16,
  kUint32,
  kSint32,
  kUint64,
  kSint64,
  kReal32,
  kReal64,
  kDateTime,
  kReference,  // "ClassName REF"; the referenced class is in TypeDecl::refClass
};

// A declared type: scalar or array, and for references the referenced class.
struct CMPIHOST_EXPORT TypeDecl {
  CimType type = CimType::kString;
  bool isArray = false;
  std::optional<unsigned> arraySize;  // fixed size written as "name[4]"
  std::string refClass;               // declared spelling; empty unless kReference
};

// The MOF keyword of a type ("uint8", "datetime", ...); "ref" for references.
CMPIHOST_EXPORT const char* CimTypeName(CimType type);

// The type a MOF data-type keyword names, compared case-insensitively.
CMPIHOST_EXPORT std::optional<CimType> CimTypeFromName(std::string_view keyword);

}  // namespace cmpihost

#endif  // CMPIHOST_CIMTYPE_H_
