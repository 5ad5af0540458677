#include "cli/JsonFormatter.h"

#include "cli/JsonWriter.h"
#include "cmpihost/CmpiNames.h"

namespace cmpihost::cli {
namespace {

void WriteScalar(JsonWriter& json, const Value& value, CMPIType type) {
  if (value.isNull()) {
    json.null();
    return;
  }
  switch (type) {
    case CMPI_boolean:
      json.boolean(value.boolean);
      break;
    case CMPI_char16:
      json.string(std::string(1, static_cast<char>(value.uint)));
      break;
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
    case CMPI_uint64:
      json.number(value.uint);
      break;
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
    case CMPI_sint64:
      json.number(value.sint);
      break;
    case CMPI_real32:
    case CMPI_real64:
      json.number(value.real);
      break;
    default:  // strings, date-times and references: their text
      json.string(value.text);
  }
}

void WriteValue(JsonWriter& json, const Value& value) {
  if (!value.isArray() || value.isNull()) {
    WriteScalar(json, value, value.type);
    return;
  }
  const auto elementType = static_cast<CMPIType>(value.type & ~CMPI_ARRAY);
  json.beginArray();
  for (const Value& element : value.elements) {
    WriteScalar(json, element, elementType);
  }
  json.endArray();
}

void WriteTyped(JsonWriter& json, const Value& value) {
  json.beginObject().key("type").string(CmpiTypeName(value.type)).key("value");
  WriteValue(json, value);
  json.endObject();
}

void WriteNamedValues(JsonWriter& json, const std::vector<Property>& values) {
  json.beginObject();
  for (const Property& each : values) {
    json.key(each.name);
    WriteTyped(json, each.value);
  }
  json.endObject();
}

void WriteInstance(JsonWriter& json, const InstanceSnapshot& instance) {
  json.beginObject().key("className").string(instance.className).key("path").string(instance.path);
  json.key("properties");
  WriteNamedValues(json, instance.properties);
  json.endObject();
}

std::string Strings(const std::vector<std::string>& texts) {
  JsonWriter json;
  json.beginArray();
  for (const std::string& text : texts) {
    json.string(text);
  }
  json.endArray();
  return json.text() + "\n";
}

// The type as instances name it ("uint32", "string[]", "ref"), and for a
// reference its class.
void WriteType(JsonWriter& json, const TypeDecl& type) {
  json.key("type").string(std::string(CimTypeName(type.type)) + (type.isArray ? "[]" : ""));
  if (type.type == CimType::kReference) {
    json.key("refClass").string(type.refClass);
  }
}

void WriteMethod(JsonWriter& json, const MethodDecl& method) {
  json.beginObject().key("returnType").string(CimTypeName(method.returnType.type));
  json.key("parameters").beginArray();
  for (const ParameterDecl& parameter : method.parameters) {
    json.beginObject().key("name").string(parameter.name);
    WriteType(json, parameter.type);
    json.key("in").boolean(parameter.isIn).key("out").boolean(parameter.isOut).endObject();
  }
  json.endArray().endObject();
}

}  // namespace

std::string JsonFormatter::classDeclaration(const ClassDecl& decl) const {
  JsonWriter json;
  json.beginObject().key("className").string(decl.name()).key("superClass");
  if (decl.superName().empty()) {
    json.null();
  } else {
    json.string(decl.superName());
  }
  json.key("association").boolean(decl.isAssociation());
  json.key("abstract").boolean(decl.isAbstract());
  json.key("keys").beginArray();
  for (const PropertyDecl* key : decl.keyProperties()) {
    json.string(key->name);
  }
  json.endArray().key("properties").beginObject();
  for (const PropertyDecl& property : decl.properties()) {
    json.key(property.name).beginObject();
    WriteType(json, property.type);
    json.key("key").boolean(property.isKey).endObject();
  }
  json.endObject().key("methods").beginObject();
  for (const MethodDecl& method : decl.methods()) {
    json.key(method.name);
    WriteMethod(json, method);
  }
  json.endObject().endObject();
  return json.text() + "\n";
}

std::string JsonFormatter::failure(const CMPIrc* code, const std::string& message) const {
  JsonWriter json;
  json.beginObject().key("error").beginObject().key("code");
  if (code != nullptr) {
    json.number(static_cast<std::int64_t>(*code)).key("name").string(CmpiStatusName(*code));
  } else {
    json.null().key("name").string("usage");
  }
  json.key("message").string(message).endObject().endObject();
  return json.text() + "\n";
}

std::string JsonFormatter::classNames(const std::vector<std::string>& names) const {
  return Strings(names);
}

std::string JsonFormatter::paths(const std::vector<std::string>& paths) const {
  return Strings(paths);
}

std::string JsonFormatter::instances(const std::vector<InstanceSnapshot>& instances) const {
  JsonWriter json;
  json.beginArray();
  for (const InstanceSnapshot& each : instances) {
    WriteInstance(json, each);
  }
  json.endArray();
  return json.text() + "\n";
}

std::string JsonFormatter::instance(const InstanceSnapshot& instance) const {
  JsonWriter json;
  WriteInstance(json, instance);
  return json.text() + "\n";
}

std::string JsonFormatter::methodResult(const Value* returnValue,
                                        const std::vector<Property>& outArguments) const {
  JsonWriter json;
  json.beginObject().key("returnValue");
  if (returnValue != nullptr) {
    WriteTyped(json, *returnValue);
  } else {
    json.null();
  }
  json.key("outArguments");
  WriteNamedValues(json, outArguments);
  json.endObject();
  return json.text() + "\n";
}

std::string JsonFormatter::directive(const std::string& name, const std::string& argument) const {
  JsonWriter json;
  json.beginObject().key(name).string(argument).endObject();
  return json.text() + "\n";
}

std::string JsonFormatter::echo(const std::string& text) const {
  JsonWriter json;
  json.beginObject().key("echo").string(text).endObject();
  return json.text() + "\n";
}

std::string JsonFormatter::unloadAnswers(const std::vector<UnloadAnswer>& answers) const {
  JsonWriter json;
  json.beginArray();
  for (const UnloadAnswer& answer : answers) {
    json.beginObject()
        .key("provider")
        .string(answer.providerName)
        .key("kind")
        .string(answer.kind)
        .key("rc")
        .string(CmpiStatusName(answer.status.rc))
        .key("unloaded")
        .boolean(answer.unloaded)
        .endObject();
  }
  json.endArray();
  return json.text() + "\n";
}

std::string JsonFormatter::listingSeparator() const {
  return "";  // one JSON text per line already
}

}  // namespace cmpihost::cli
