// The plain C++ copies of what providers deliver: printing and lookups.

#include <sstream>

#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Reply.h"
#include "cmpihost/Value.h"
#include "text/Literals.h"
#include "text/NoCase.h"

namespace cmpihost {
namespace {

std::string ScalarToMof(const Value& value, CMPIType type) {
  switch (type) {
    case CMPI_boolean:
      return value.boolean ? "TRUE" : "FALSE";
    case CMPI_char16:
      return "'" + std::string(1, static_cast<char>(value.uint)) + "'";
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
    case CMPI_uint64:
      return std::to_string(value.uint);
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
    case CMPI_sint64:
      return std::to_string(value.sint);
    case CMPI_real32:
    case CMPI_real64: {
      std::ostringstream out;
      out << value.real;
      return out.str();
    }
    default:
      return MofQuoted(value.text);
  }
}

}  // namespace

std::string Value::toMof() const {
  if (isNull()) {
    return "NULL";
  }
  if (!isArray()) {
    return ScalarToMof(*this, type);
  }
  const auto elementType = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  std::string out = "{";
  for (std::size_t i = 0; i < elements.size(); ++i) {
    out += (i == 0 ? "" : ", ");
    out += elements[i].isNull() ? "NULL" : ScalarToMof(elements[i], elementType);
  }
  return out + "}";
}

const Value* InstanceSnapshot::find(const std::string& name) const {
  for (const Property& property : properties) {
    if (NoCaseEqual(property.name, name)) {
      return &property.value;
    }
  }
  return nullptr;
}

std::string InstanceSnapshot::toMof() const {
  std::string out = "instance of " + className + " {\n";
  for (const Property& property : properties) {
    out += "    " + property.name + " = " + property.value.toMof() + ";\n";
  }
  return out + "};\n";
}

std::vector<InstanceSnapshot> Reply::instances() const {
  std::vector<InstanceSnapshot> out;
  for (const ResultEvent& event : events) {
    if (event.kind == ResultEvent::Kind::kInstance) {
      out.push_back(event.instance);
    }
  }
  return out;
}

std::vector<std::string> Reply::paths() const {
  std::vector<std::string> out;
  for (const ResultEvent& event : events) {
    if (event.kind == ResultEvent::Kind::kObjectPath) {
      out.push_back(event.path);
    }
  }
  return out;
}

std::vector<Value> Reply::data() const {
  std::vector<Value> out;
  for (const ResultEvent& event : events) {
    if (event.kind == ResultEvent::Kind::kData) {
      out.push_back(event.data);
    }
  }
  return out;
}

unsigned Reply::doneCount() const {
  unsigned count = 0;
  for (const ResultEvent& event : events) {
    count += event.kind == ResultEvent::Kind::kDone ? 1 : 0;
  }
  return count;
}

}  // namespace cmpihost
