#include "cli/JsonFormatter.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "cmpihost/CmpiNames.h"

namespace cmpihost::cli {
namespace {

// Members keep the order they are added in, as the documents are read by
// people too.
using Json = nlohmann::ordered_json;

// Non-finite reals have no JSON form and are written as the strings "NaN",
// "Infinity" and "-Infinity".
Json Real(double value) {
  if (std::isnan(value)) {
    return "NaN";
  }
  if (std::isinf(value)) {
    return value > 0 ? "Infinity" : "-Infinity";
  }
  return value;
}

Json Scalar(const Value& value, CMPIType type) {
  if (value.isNull()) {
    return nullptr;
  }
  switch (type) {
    case CMPI_boolean:
      return value.boolean;
    case CMPI_char16:
      return std::string(1, static_cast<char>(value.uint));
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
    case CMPI_uint64:
      return value.uint;
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
    case CMPI_sint64:
      return value.sint;
    case CMPI_real32:
    case CMPI_real64:
      return Real(value.real);
    default:  // strings, date-times and references: their text
      return value.text;
  }
}

Json ValueOf(const Value& value) {
  if (!value.isArray() || value.isNull()) {
    return Scalar(value, value.type);
  }
  const auto elementType = static_cast<CMPIType>(value.type & ~CMPI_ARRAY);
  Json elements = Json::array();
  for (const Value& element : value.elements) {
    elements.push_back(Scalar(element, elementType));
  }
  return elements;
}

Json Typed(const Value& value) {
  return Json{{"type", CmpiTypeName(value.type)}, {"value", ValueOf(value)}};
}

Json NamedValues(const std::vector<Property>& values) {
  Json object = Json::object();
  for (const Property& each : values) {
    object[each.name] = Typed(each.value);
  }
  return object;
}

Json Instance(const InstanceSnapshot& instance) {
  return Json{{"className", instance.className},
              {"path", instance.path},
              {"properties", NamedValues(instance.properties)}};
}

// One document on one line. Bytes that are not UTF-8 (a provider's raw
// text) become U+FFFD rather than making the whole answer fail.
std::string Line(const Json& document) {
  return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

// The type as instances name it ("uint32", "string[]", "ref"), and for a
// reference its class.
void AddType(Json& object, const TypeDecl& type) {
  object["type"] = std::string(CimTypeName(type.type)) + (type.isArray ? "[]" : "");
  if (type.type == CimType::kReference) {
    object["refClass"] = type.refClass;
  }
}

Json Method(const MethodDecl& method) {
  Json parameters = Json::array();
  for (const ParameterDecl& parameter : method.parameters) {
    Json each{{"name", parameter.name}};
    AddType(each, parameter.type);
    each["in"] = parameter.isIn;
    each["out"] = parameter.isOut;
    parameters.push_back(std::move(each));
  }
  return Json{{"returnType", CimTypeName(method.returnType.type)}, {"parameters", parameters}};
}

}  // namespace

std::string JsonFormatter::classDeclaration(const ClassDecl& decl) const {
  Json keys = Json::array();
  for (const PropertyDecl* key : decl.keyProperties()) {
    keys.push_back(key->name);
  }
  Json properties = Json::object();
  for (const PropertyDecl& property : decl.properties()) {
    Json each = Json::object();
    AddType(each, property.type);
    each["key"] = property.isKey;
    properties[property.name] = std::move(each);
  }
  Json methods = Json::object();
  for (const MethodDecl& method : decl.methods()) {
    methods[method.name] = Method(method);
  }
  return Line(
      Json{{"className", decl.name()},
           {"superClass", decl.superName().empty() ? Json(nullptr) : Json(decl.superName())},
           {"association", decl.isAssociation()},
           {"abstract", decl.isAbstract()},
           {"keys", keys},
           {"properties", properties},
           {"methods", methods}});
}

std::string JsonFormatter::failure(const CMPIrc* code, const std::string& message) const {
  Json error = code != nullptr ? Json{{"code", static_cast<std::int64_t>(*code)},
                                      {"name", CmpiStatusName(*code)}}
                               : Json{{"code", nullptr}, {"name", "usage"}};
  error["message"] = message;
  return Line(Json{{"error", error}});
}

std::string JsonFormatter::classNames(const std::vector<std::string>& names) const {
  return Line(names);
}

std::string JsonFormatter::paths(const std::vector<std::string>& paths) const {
  return Line(paths);
}

std::string JsonFormatter::instances(const std::vector<InstanceSnapshot>& instances) const {
  Json array = Json::array();
  for (const InstanceSnapshot& each : instances) {
    array.push_back(Instance(each));
  }
  return Line(array);
}

std::string JsonFormatter::instance(const InstanceSnapshot& instance) const {
  return Line(Instance(instance));
}

std::string JsonFormatter::methodResult(const Value* returnValue,
                                        const std::vector<Property>& outArguments) const {
  return Line(Json{{"returnValue", returnValue != nullptr ? Typed(*returnValue) : Json(nullptr)},
                   {"outArguments", NamedValues(outArguments)}});
}

std::string JsonFormatter::directive(const std::string& name, const std::string& argument) const {
  return Line(Json{{name, argument}});
}

std::string JsonFormatter::echo(const std::string& text) const {
  return Line(Json{{"echo", text}});
}

std::string JsonFormatter::unloadAnswers(const std::vector<UnloadAnswer>& answers) const {
  Json array = Json::array();
  for (const UnloadAnswer& answer : answers) {
    array.push_back(Json{{"provider", answer.providerName},
                         {"kind", answer.kind},
                         {"rc", CmpiStatusName(answer.status.rc)},
                         {"unloaded", answer.unloaded}});
  }
  return Line(array);
}

std::string JsonFormatter::listingSeparator() const {
  return "";  // one JSON text per line already
}

}  // namespace cmpihost::cli
