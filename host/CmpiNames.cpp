#include "cmpihost/CmpiNames.h"

#include <array>
#include <utility>

namespace cmpihost {
namespace {

constexpr std::array<std::pair<CMPIrc, const char*>, 24> kStatusNames{{
    {CMPI_RC_OK, "CMPI_RC_OK"},
    {CMPI_RC_ERR_FAILED, "CMPI_RC_ERR_FAILED"},
    {CMPI_RC_ERR_ACCESS_DENIED, "CMPI_RC_ERR_ACCESS_DENIED"},
    {CMPI_RC_ERR_INVALID_NAMESPACE, "CMPI_RC_ERR_INVALID_NAMESPACE"},
    {CMPI_RC_ERR_INVALID_PARAMETER, "CMPI_RC_ERR_INVALID_PARAMETER"},
    {CMPI_RC_ERR_INVALID_CLASS, "CMPI_RC_ERR_INVALID_CLASS"},
    {CMPI_RC_ERR_NOT_FOUND, "CMPI_RC_ERR_NOT_FOUND"},
    {CMPI_RC_ERR_NOT_SUPPORTED, "CMPI_RC_ERR_NOT_SUPPORTED"},
    {CMPI_RC_ERR_CLASS_HAS_CHILDREN, "CMPI_RC_ERR_CLASS_HAS_CHILDREN"},
    {CMPI_RC_ERR_CLASS_HAS_INSTANCES, "CMPI_RC_ERR_CLASS_HAS_INSTANCES"},
    {CMPI_RC_ERR_INVALID_SUPERCLASS, "CMPI_RC_ERR_INVALID_SUPERCLASS"},
    {CMPI_RC_ERR_ALREADY_EXISTS, "CMPI_RC_ERR_ALREADY_EXISTS"},
    {CMPI_RC_ERR_NO_SUCH_PROPERTY, "CMPI_RC_ERR_NO_SUCH_PROPERTY"},
    {CMPI_RC_ERR_TYPE_MISMATCH, "CMPI_RC_ERR_TYPE_MISMATCH"},
    {CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED, "CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED"},
    {CMPI_RC_ERR_INVALID_QUERY, "CMPI_RC_ERR_INVALID_QUERY"},
    {CMPI_RC_ERR_METHOD_NOT_AVAILABLE, "CMPI_RC_ERR_METHOD_NOT_AVAILABLE"},
    {CMPI_RC_ERR_METHOD_NOT_FOUND, "CMPI_RC_ERR_METHOD_NOT_FOUND"},
    {CMPI_RC_DO_NOT_UNLOAD, "CMPI_RC_DO_NOT_UNLOAD"},
    {CMPI_RC_NEVER_UNLOAD, "CMPI_RC_NEVER_UNLOAD"},
    {CMPI_RC_ERR_INVALID_HANDLE, "CMPI_RC_ERR_INVALID_HANDLE"},
    {CMPI_RC_ERR_INVALID_DATA_TYPE, "CMPI_RC_ERR_INVALID_DATA_TYPE"},
    {CMPI_RC_ERROR_SYSTEM, "CMPI_RC_ERROR_SYSTEM"},
    {CMPI_RC_ERROR, "CMPI_RC_ERROR"},
}};

constexpr std::array<std::pair<CMPIType, const char*>, 24> kTypeNames{{
    {CMPI_null, "null"},
    {CMPI_boolean, "boolean"},
    {CMPI_char16, "char16"},
    {CMPI_real32, "real32"},
    {CMPI_real64, "real64"},
    {CMPI_uint8, "uint8"},
    {CMPI_uint16, "uint16"},
    {CMPI_uint32, "uint32"},
    {CMPI_uint64, "uint64"},
    {CMPI_sint8, "sint8"},
    {CMPI_sint16, "sint16"},
    {CMPI_sint32, "sint32"},
    {CMPI_sint64, "sint64"},
    {CMPI_instance, "instance"},
    {CMPI_ref, "ref"},
    {CMPI_args, "args"},
    {CMPI_class, "class"},
    {CMPI_filter, "filter"},
    {CMPI_enumeration, "enumeration"},
    {CMPI_string, "string"},
    {CMPI_chars, "chars"},
    {CMPI_dateTime, "datetime"},
    {CMPI_ptr, "ptr"},
    {CMPI_charsptr, "charsptr"},
}};

}  // namespace

std::string CmpiTypeName(CMPIType type) {
  const auto element = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  std::string name = "type " + std::to_string(element);
  for (const auto& [code, text] : kTypeNames) {
    if (code == element) {
      name = text;
      break;
    }
  }
  return (type & CMPI_ARRAY) != 0 ? name + "[]" : name;
}

const char* CmpiStatusName(CMPIrc rc) {
  for (const auto& [code, name] : kStatusNames) {
    if (code == rc) {
      return name;
    }
  }
  return "CMPI_RC_UNKNOWN";
}

}  // namespace cmpihost
