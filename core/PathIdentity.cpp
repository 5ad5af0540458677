#include "core/PathIdentity.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>
#include <vector>

#include "core/BrokerText.h"

namespace NQENDRA20 {

namespace {

// Reference keys nest paths; a bound keeps a malformed path that refers to
// itself from recursing without end.
constexpr int kMaxReferenceDepth = 8;

std::string UpperCase(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string IdentityAt(const CMPIObjectPath* path, int depth);

std::string ClassAndKeys(const CMPIObjectPath* path, int depth) {
  return UpperCase(CharsOf(path->ft->getClassName(path, nullptr))) + "{" + IdentityAt(path, depth) +
         "}";
}

std::string ValueText(const CMPIData& data, int depth) {
  switch (data.type) {
    case CMPI_string:
      return CharsOf(data.value.string);
    case CMPI_chars:
      return data.value.chars != nullptr ? data.value.chars : "";
    case CMPI_boolean:
      return data.value.boolean != 0 ? "TRUE" : "FALSE";
    case CMPI_char16:
      return std::to_string(data.value.char16);
    case CMPI_uint8:
      return std::to_string(data.value.uint8);
    case CMPI_uint16:
      return std::to_string(data.value.uint16);
    case CMPI_uint32:
      return std::to_string(data.value.uint32);
    case CMPI_uint64:
      return std::to_string(data.value.uint64);
    case CMPI_sint8:
      return std::to_string(data.value.sint8);
    case CMPI_sint16:
      return std::to_string(data.value.sint16);
    case CMPI_sint32:
      return std::to_string(data.value.sint32);
    case CMPI_sint64:
      return std::to_string(data.value.sint64);
    case CMPI_dateTime:
      return data.value.dateTime != nullptr
                 ? CharsOf(data.value.dateTime->ft->getStringFormat(data.value.dateTime, nullptr))
                 : "";
    case CMPI_ref: {
      const CMPIObjectPath* nested = data.value.ref;
      if (nested == nullptr || depth >= kMaxReferenceDepth) {
        return "";
      }
      return ClassAndKeys(nested, depth + 1);
    }
    default:
      return "";
  }
}

std::string IdentityAt(const CMPIObjectPath* path, int depth) {
  if (path == nullptr) {
    return "";
  }
  const CMPICount count = path->ft->getKeyCount(path, nullptr);
  std::vector<std::pair<std::string, std::string>> keys;
  keys.reserve(count);
  for (CMPICount index = 0; index < count; ++index) {
    CMPIString* name = nullptr;
    const CMPIData value = path->ft->getKeyAt(path, index, &name, nullptr);
    keys.emplace_back(UpperCase(CharsOf(name)), ValueText(value, depth));
  }
  std::sort(keys.begin(), keys.end());
  // Separators that no class or key name holds; a value holding them can
  // only meet a value holding the same.
  std::string identity;
  for (const auto& key : keys) {
    identity += key.first;
    identity += '\x1f';
    identity += key.second;
    identity += '\x1e';
  }
  return identity;
}

}  // namespace

std::string KeyIdentity(const CMPIObjectPath* path) {
  return IdentityAt(path, 0);
}

std::string ObjectIdentity(const CMPIObjectPath* path) {
  return path != nullptr ? ClassAndKeys(path, 0) : "";
}

}  // namespace NQENDRA20
