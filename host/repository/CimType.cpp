#include "cmpihost/CimType.h"

#include "text/NoCase.h"

#include <array>
#include <utility>

namespace cmpihost {
namespace {

constexpr std::array<std::pair<CimType, const char*>, 15> kNames{{
    {CimType::kBoolean, "boolean"},
    {CimType::kString, "string"},
    {CimType::kChar16, "char16"},
    {CimType::kUint8, "uint8"},
    {CimType::kSint8, "sint8"},
    {CimType::kUint16, "uint16"},
    {CimType::kSint16, "sint16"},
    {CimType::kUint32, "uint32"},
    {CimType::kSint32, "sint32"},
    {CimType::kUint64, "uint64"},
    {CimType::kSint64, "sint64"},
    {CimType::kReal32, "real32"},
    {CimType::kReal64, "real64"},
    {CimType::kDateTime, "datetime"},
    {CimType::kReference, "ref"},
}};

}  // namespace

const char* CimTypeName(CimType type) {
  for (const auto& [value, name] : kNames) {
    if (value == type) {
      return name;
    }
  }
  return "?";
}

std::optional<CimType> CimTypeFromName(std::string_view keyword) {
  for (const auto& [value, name] : kNames) {
    if (value != CimType::kReference && NoCaseEqual(keyword, name)) {
      return value;
    }
  }
  return std::nullopt;
}

}  // namespace cmpihost
