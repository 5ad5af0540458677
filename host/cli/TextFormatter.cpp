#include "cli/TextFormatter.h"

#include "cmpihost/CmpiNames.h"

namespace cmpihost::cli {
namespace {

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + "\n";
  }
  return text;
}

// "string", "uint32", "Cli_Element REF": the type as MOF declares it.
std::string TypeText(const TypeDecl& type) {
  return type.type == CimType::kReference ? type.refClass + " REF" : CimTypeName(type.type);
}

// "Name" or "Name[]" or "Name[4]": arrays are marked after the name in MOF.
std::string NameText(const std::string& name, const TypeDecl& type) {
  if (!type.isArray) {
    return name;
  }
  return name + "[" + (type.arraySize ? std::to_string(*type.arraySize) : "") + "]";
}

std::string ParameterText(const ParameterDecl& parameter) {
  std::string direction;
  if (parameter.isIn && parameter.isOut) {
    direction = "[In, Out] ";
  } else if (parameter.isIn) {
    direction = "[In] ";
  } else if (parameter.isOut) {
    direction = "[Out] ";
  }
  return direction + TypeText(parameter.type) + " " + NameText(parameter.name, parameter.type);
}

std::string MethodText(const MethodDecl& method) {
  std::string parameters;
  for (const ParameterDecl& parameter : method.parameters) {
    parameters += (parameters.empty() ? "" : ", ") + ParameterText(parameter);
  }
  return TypeText(method.returnType) + " " + method.name + "(" + parameters + ");";
}

std::string ClassQualifiers(const ClassDecl& decl) {
  std::string qualifiers;
  if (decl.isAssociation()) {
    qualifiers = "Association";
  }
  if (decl.isAbstract()) {
    qualifiers += (qualifiers.empty() ? "" : ", ") + std::string("Abstract");
  }
  return qualifiers.empty() ? "" : "[" + qualifiers + "]\n";
}

}  // namespace

std::string TextFormatter::classDeclaration(const ClassDecl& decl) const {
  std::string text = ClassQualifiers(decl) + "class " + decl.name();
  text += (decl.superName().empty() ? "" : " : " + decl.superName()) + " {\n";
  for (const PropertyDecl& property : decl.properties()) {
    text += std::string("    ") + (property.isKey ? "[Key] " : "") + TypeText(property.type) + " " +
            NameText(property.name, property.type) + ";\n";
  }
  for (const MethodDecl& method : decl.methods()) {
    text += "    " + MethodText(method) + "\n";
  }
  return text + "};\n";
}

std::string TextFormatter::failure(const CMPIrc* /*code*/, const std::string& /*message*/) const {
  return "";
}

std::string TextFormatter::classNames(const std::vector<std::string>& names) const {
  return Lines(names);
}

std::string TextFormatter::paths(const std::vector<std::string>& paths) const {
  return Lines(paths);
}

std::string TextFormatter::instance(const InstanceSnapshot& instance) const {
  const std::string comment = instance.path.empty() ? "" : "// " + instance.path + "\n";
  return comment + instance.toMof();
}

std::string TextFormatter::instances(const std::vector<InstanceSnapshot>& instances) const {
  std::string text;
  for (const InstanceSnapshot& each : instances) {
    text += (text.empty() ? "" : "\n") + instance(each);
  }
  return text;
}

std::string TextFormatter::methodResult(const Value* returnValue,
                                        const std::vector<Property>& outArguments) const {
  std::string text = "ReturnValue = " + (returnValue != nullptr ? returnValue->toMof() : "NULL");
  text += "\n";
  for (const Property& argument : outArguments) {
    text += argument.name + " = " + argument.value.toMof() + "\n";
  }
  return text;
}

std::string TextFormatter::directive(const std::string& /*name*/,
                                     const std::string& /*argument*/) const {
  return "";
}

std::string TextFormatter::echo(const std::string& text) const {
  return text + "\n";
}

std::string TextFormatter::unloadAnswers(const std::vector<UnloadAnswer>& answers) const {
  std::string text;
  for (const UnloadAnswer& answer : answers) {
    text += "provider " + answer.providerName + ", " + answer.kind +
            " MI: " + CmpiStatusName(answer.status.rc) +
            (answer.unloaded ? ", unloaded" : ", stays loaded") + "\n";
  }
  return text;
}

std::string TextFormatter::listingSeparator() const {
  return "\n";
}

}  // namespace cmpihost::cli
