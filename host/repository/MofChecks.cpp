// The rules a load's declarations must keep: values that fit their types,
// qualifiers declared and in scope, referenced classes defined, overrides
// that override something. Staging itself is in MofStaging.cpp.
#include <algorithm>
#include <utility>

#include "cmpihost/MofReader.h"
#include "repository/MofStaging.h"
#include "repository/MofValueRules.h"
#include "text/Literals.h"
#include "text/NoCase.h"

namespace cmpihost {

void MofStaging::conform(const std::string& file, RawValue& raw, const TypeDecl& type,
                         bool scalarFillsArray, const std::string& what) const {
  if (auto problem = ConformValue(raw.value, type, scalarFillsArray)) {
    SourcePos pos = raw.pos;
    if (problem->element >= 0 &&
        static_cast<std::size_t>(problem->element) < raw.elementPos.size()) {
      pos = raw.elementPos[static_cast<std::size_t>(problem->element)];
    }
    fail(file, pos, what + ": " + problem->text);
  }
}

MofStaging::Resolved MofStaging::resolveQualifiers(const std::string& file,
                                                   std::vector<RawQualifier>& raw) const {
  Resolved resolved;
  resolved.qualifiers.reserve(raw.size());
  resolved.decls.reserve(raw.size());
  for (RawQualifier& given : raw) {
    const QualifierDecl* decl = findQualifierDecl(given.name);
    if (decl == nullptr) {
      fail(file, given.pos,
           "qualifier " + Quoted(given.name) + " is not declared in namespace " +
               Quoted(nameSpace_) + " (a \"Qualifier\" declaration must come first)");
    }
    if (FindNamed(resolved.qualifiers, decl->name.c_str()) != nullptr) {
      fail(file, given.pos, "qualifier " + Quoted(decl->name) + " is given twice");
    }
    Qualifier qualifier;
    qualifier.name = decl->name;
    if (!given.hasValue) {
      if (decl->type.type == CimType::kBoolean && !decl->type.isArray) {
        qualifier.value.kind = MofValue::Kind::kBoolean;
        qualifier.value.boolean = true;
      } else {
        qualifier.value = decl->defaultValue;
      }
    } else {
      conform(file, given.value, decl->type, true, "qualifier " + Quoted(decl->name));
      qualifier.value = std::move(given.value.value);
    }
    resolved.qualifiers.push_back(std::move(qualifier));
    resolved.decls.push_back(decl);
  }
  return resolved;
}

void MofStaging::checkScopes(const std::string& file, const std::vector<RawQualifier>& raw,
                             const Resolved& resolved, Target target) const {
  const char* scope = nullptr;
  switch (target) {
    case Target::kClass:
      scope = "class";
      break;
    case Target::kAssociation:
      scope = "association";
      break;
    case Target::kIndication:
      scope = "indication";
      break;
    case Target::kProperty:
      scope = "property";
      break;
    case Target::kReference:
      scope = "reference";
      break;
    case Target::kMethod:
      scope = "method";
      break;
    case Target::kParameter:
      scope = "parameter";
      break;
    case Target::kInstance:
      return;
  }
  for (std::size_t i = 0; i < resolved.decls.size(); ++i) {
    const std::vector<std::string>& scopes = resolved.decls[i]->scopes;
    if (std::find(scopes.begin(), scopes.end(), "any") != scopes.end() ||
        std::find(scopes.begin(), scopes.end(), scope) != scopes.end()) {
      continue;
    }
    std::string allowed;
    for (const std::string& one : scopes) {
      allowed += (allowed.empty() ? "" : ", ") + one;
    }
    fail(file, raw[i].pos,
         "qualifier " + Quoted(resolved.decls[i]->name) + " does not apply to a " + scope +
             " (its scope: " + allowed + ")");
  }
}

void MofStaging::checkReferencedClass(const std::string& file, SourcePos pos, TypeDecl& type,
                                      const std::string& what) const {
  if (type.type != CimType::kReference) {
    return;
  }
  const ClassDecl* target = findClass(type.refClass);
  if (target == nullptr) {
    fail(file, pos,
         what + " refers to class " + Quoted(type.refClass) +
             ", which is not defined in namespace " + Quoted(nameSpace_));
  }
  type.refClass = target->name();
}

void MofStaging::checkOverride(const std::string& file,
                               const std::vector<RawQualifier>& rawQualifiers,
                               const std::vector<Qualifier>& qualifiers, const std::string& name,
                               bool inherited, const std::string& className,
                               const char* what) const {
  const Qualifier* override = FindNamed(qualifiers, "Override");
  if (override == nullptr || override->value.kind != MofValue::Kind::kString) {
    return;
  }
  const RawQualifier* raw = FindNamed(rawQualifiers, "Override");
  const SourcePos pos = raw != nullptr ? raw->pos : SourcePos{};
  std::string target = override->value.text;
  const std::size_t dot = target.rfind('.');
  if (dot != std::string::npos) {
    target.erase(0, dot + 1);
  }
  if (!NoCaseEqual(target, name)) {
    fail(file, pos,
         "Override(" + Quoted(override->value.text) + ") on " + what + " " + Quoted(name) +
             " must name that " + what);
  }
  if (!inherited) {
    fail(file, pos,
         "Override(" + Quoted(override->value.text) + "): class " + Quoted(className) +
             " inherits no " + what + " " + Quoted(target));
  }
}

}  // namespace cmpihost
