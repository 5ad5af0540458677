#include "repository/MofStaging.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include "cmpihost/MofReader.h"
#include "repository/MofValueRules.h"
#include "text/Literals.h"
#include "text/PathSyntax.h"

namespace cmpihost {
namespace {

template <typename Value>
using ByName = std::map<std::string, Value, NoCaseLess>;
using NameSet = std::set<std::string, NoCaseLess>;

// The boolean value of a qualifier, or `absent` when it is not there.
bool BooleanQualifier(const std::vector<Qualifier>& qualifiers, const char* name, bool absent) {
  const Qualifier* qualifier = FindNamed(qualifiers, name);
  if (qualifier == nullptr) {
    return absent;
  }
  return qualifier->value.kind == MofValue::Kind::kBoolean && qualifier->value.boolean;
}

bool SameShape(const TypeDecl& a, const TypeDecl& b) {
  return a.type == b.type && a.isArray == b.isArray;
}

// A reference's text with its host, namespace, class and key names
// lower-cased and its keys sorted: two texts naming one object, whatever
// the order of their keys, become the same text.
std::string CanonicalReference(const std::string& text) {
  std::size_t at = 0;
  if (text.rfind("//", 0) == 0) {
    at = std::min(text.find('/', 2), text.size());  // a host name may hold dots
  }
  std::string head = text.substr(0, at);
  std::vector<std::string> keys;
  std::string current;
  bool inKeys = false;
  bool quoted = false;
  bool escaped = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (quoted) {
      if (escaped) {
        escaped = false;
      } else if (c == '\\') {
        escaped = true;
      } else if (c == '"') {
        quoted = false;
      }
    } else if (c == '"') {
      quoted = true;
    } else if (c == '.' && !inKeys) {
      head += current;
      current.clear();
      inKeys = true;
      continue;
    } else if (c == ',' && inKeys) {
      keys.push_back(std::move(current));
      current.clear();
      continue;
    }
    current += c;
  }
  if (!inKeys) {
    return AsciiLowered(head + current);
  }
  keys.push_back(std::move(current));
  for (std::string& key : keys) {
    const std::size_t equals = std::min(key.find('='), key.size());
    key = AsciiLowered(key.substr(0, equals)) + key.substr(equals);
  }
  std::sort(keys.begin(), keys.end());
  std::string canonical = AsciiLowered(head);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    canonical += (i == 0 ? "." : ",") + keys[i];
  }
  return canonical;
}

}  // namespace

struct MofStaging::StagedNamespace {
  std::string name;
  ByName<QualifierDecl> qualifiers;
  std::vector<std::unique_ptr<ClassDecl>> classes;  // read order
  ByName<const ClassDecl*> classIndex;
  std::vector<StaticInstance> instances;  // read order
  // Canonical path texts of the namespace's static instances, staged and
  // (for each class in seededClasses) already committed.
  std::unordered_set<std::string> instancePaths;
  NameSet seededClasses;
};

MofStaging::MofStaging(const ClassRepository& repository, std::string nameSpace)
    : repository_(repository), nameSpace_(std::move(nameSpace)) {}

MofStaging::~MofStaging() = default;

void MofStaging::fail(const std::string& file, SourcePos pos, std::string problem) {
  throw MofError(file, pos.line, pos.column, std::move(problem));
}

MofStaging::StagedNamespace& MofStaging::staged() {
  auto& slot = spaces_[nameSpace_];
  if (!slot) {
    slot = std::make_unique<StagedNamespace>();
    slot->name = nameSpace_;
    spaceOrder_.push_back(slot.get());
  }
  return *slot;
}

const ClassDecl* MofStaging::findClass(const std::string& name) const {
  const auto space = spaces_.find(nameSpace_);
  if (space != spaces_.end()) {
    const auto found = space->second->classIndex.find(name);
    if (found != space->second->classIndex.end()) {
      return found->second;
    }
  }
  return repository_.findClass(nameSpace_, name);
}

const QualifierDecl* MofStaging::findQualifierDecl(const std::string& name) const {
  const auto space = spaces_.find(nameSpace_);
  if (space != spaces_.end()) {
    const auto found = space->second->qualifiers.find(name);
    if (found != space->second->qualifiers.end()) {
      return &found->second;
    }
  }
  return repository_.findQualifier(nameSpace_, name);
}

bool MofStaging::isA(const ClassDecl& decl, const std::string& ancestor) const {
  for (const ClassDecl* current = &decl; current != nullptr;
       current = current->superName().empty() ? nullptr : findClass(current->superName())) {
    if (NoCaseEqual(current->name(), ancestor)) {
      return true;
    }
  }
  return false;
}

bool MofStaging::propagates(const Qualifier& qualifier) const {
  const QualifierDecl* decl = findQualifierDecl(qualifier.name);
  if (decl == nullptr) {
    return true;
  }
  return std::none_of(decl->flavors.begin(), decl->flavors.end(),
                      [](const std::string& flavor) { return NoCaseEqual(flavor, "Restricted"); });
}

void MofStaging::dropRestricted(std::vector<Qualifier>& qualifiers) const {
  qualifiers.erase(std::remove_if(qualifiers.begin(), qualifiers.end(),
                                  [this](const Qualifier& q) { return !propagates(q); }),
                   qualifiers.end());
}

std::vector<Qualifier> MofStaging::merged(std::vector<Qualifier> own,
                                          const std::vector<Qualifier>& inherited) {
  const std::size_t ownCount = own.size();
  for (const Qualifier& qualifier : inherited) {
    const auto restated =
        std::find_if(own.begin(), own.begin() + static_cast<std::ptrdiff_t>(ownCount),
                     [&](const Qualifier& mine) { return NoCaseEqual(mine.name, qualifier.name); });
    if (restated == own.begin() + static_cast<std::ptrdiff_t>(ownCount)) {
      own.push_back(qualifier);
    }
  }
  return own;
}

void MofStaging::addQualifierDecl(const std::string& file, RawQualifierDecl raw) {
  QualifierDecl decl;
  decl.name = std::move(raw.name);
  decl.type = std::move(raw.type);
  decl.scopes = std::move(raw.scopes);
  decl.flavors = std::move(raw.flavors);
  if (raw.hasDefault) {
    conform(file, raw.defaultValue, decl.type, false, "default of qualifier " + Quoted(decl.name));
    decl.defaultValue = std::move(raw.defaultValue.value);
  }
  if (const QualifierDecl* existing = findQualifierDecl(decl.name)) {
    if (!SameShape(existing->type, decl.type)) {
      fail(file, raw.typePos,
           "qualifier " + Quoted(existing->name) + " is already declared with type " +
               TypeText(existing->type) + ", not " + TypeText(decl.type));
    }
    // Keep one spelling for the qualifiers applied before and after.
    decl.name = existing->name;
  }
  StagedNamespace& space = staged();
  // An existing declaration keeps its key's spelling.
  std::string key = decl.name;
  space.qualifiers.insert_or_assign(std::move(key), std::move(decl));
}

void MofStaging::addClass(const std::string& file, RawClass raw) {
  if (const ClassDecl* existing = findClass(raw.name)) {
    fail(file, raw.pos,
         "class " + Quoted(raw.name) + " is already defined in namespace " + Quoted(nameSpace_) +
             (existing->name() != raw.name ? " as " + Quoted(existing->name()) : ""));
  }
  const ClassDecl* super = nullptr;
  if (!raw.superName.empty()) {
    super = findClass(raw.superName);
    if (super == nullptr) {
      fail(file, raw.superPos,
           "superclass " + Quoted(raw.superName) + " of class " + Quoted(raw.name) +
               " is not defined in namespace " + Quoted(nameSpace_));
    }
  }
  auto decl = std::make_unique<ClassDecl>(raw.name, super != nullptr ? super->name() : "");
  Resolved own = resolveQualifiers(file, raw.qualifiers);
  std::vector<Qualifier> inherited;
  if (super != nullptr) {
    inherited = super->qualifiers();
    dropRestricted(inherited);
  }
  decl->mutableQualifiers() = merged(std::move(own.qualifiers), inherited);
  const Target target = decl->isAssociation()  ? Target::kAssociation
                        : decl->isIndication() ? Target::kIndication
                                               : Target::kClass;
  checkScopes(file, raw.qualifiers, own, target);

  // A class may name itself in a reference or a method parameter, so it is
  // findable before its features are checked; a failure discards the stage.
  StagedNamespace& space = staged();
  ClassDecl& declared = *decl;
  space.classIndex.emplace(declared.name(), &declared);
  space.classes.push_back(std::move(decl));
  addProperties(file, raw, declared, super);
  addMethods(file, raw, declared, super);
}

void MofStaging::addProperties(const std::string& file, RawClass& raw, ClassDecl& decl,
                               const ClassDecl* super) const {
  std::vector<PropertyDecl>& properties = decl.mutableProperties();
  if (super != nullptr) {
    properties = super->properties();
    for (PropertyDecl& property : properties) {
      dropRestricted(property.qualifiers);
    }
  }
  ByName<std::size_t> index;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    index.emplace(properties[i].name, i);
  }
  NameSet declared;
  for (RawProperty& given : raw.properties) {
    const std::string what = "property " + Quoted(given.name);
    if (!declared.insert(given.name).second) {
      fail(file, given.pos, what + " is declared twice in class " + Quoted(decl.name()));
    }
    const bool isReference = given.type.type == CimType::kReference;
    if (isReference && !decl.isAssociation()) {
      fail(file, given.typePos,
           "reference " + Quoted(given.name) + " can only be declared in an association, and " +
               Quoted(decl.name()) + " has no Association qualifier");
    }
    checkReferencedClass(file, given.typePos, given.type, "reference " + Quoted(given.name));
    Resolved own = resolveQualifiers(file, given.qualifiers);
    checkScopes(file, given.qualifiers, own, isReference ? Target::kReference : Target::kProperty);
    if (given.hasDefault) {
      conform(file, given.defaultValue, given.type, false, "default of " + what);
    }
    const auto found = index.find(given.name);
    const bool overrides = found != index.end();
    checkOverride(file, given.qualifiers, own.qualifiers, given.name, overrides, decl.name(),
                  "property");

    PropertyDecl property;
    property.name = given.name;
    property.type = given.type;
    if (overrides) {
      PropertyDecl& inherited = properties[found->second];
      if (!SameShape(inherited.type, given.type)) {
        fail(file, given.typePos,
             what + " overrides one of type " + TypeText(inherited.type) + " with " +
                 TypeText(given.type));
      }
      if (isReference && !isA(*findClass(given.type.refClass), inherited.type.refClass)) {
        fail(file, given.typePos,
             "reference " + Quoted(given.name) + " overrides one to " +
                 Quoted(inherited.type.refClass) + " with " + Quoted(given.type.refClass) +
                 ", which is not a subclass of it");
      }
      property.defaultValue = given.hasDefault ? std::move(given.defaultValue.value)
                                               : std::move(inherited.defaultValue);
      property.qualifiers = merged(std::move(own.qualifiers), inherited.qualifiers);
      property.classOrigin = std::move(inherited.classOrigin);
    } else {
      property.defaultValue = std::move(given.defaultValue.value);
      property.qualifiers = std::move(own.qualifiers);
      property.classOrigin = decl.name();
    }
    property.isKey = BooleanQualifier(property.qualifiers, "Key", false);
    if (property.isKey && property.type.isArray) {
      fail(file, given.pos, "key " + what + " cannot be an array");
    }
    if (overrides) {
      properties[found->second] = std::move(property);
    } else {
      index.emplace(property.name, properties.size());
      properties.push_back(std::move(property));
    }
  }
}

void MofStaging::addMethods(const std::string& file, RawClass& raw, ClassDecl& decl,
                            const ClassDecl* super) const {
  std::vector<MethodDecl>& methods = decl.mutableMethods();
  if (super != nullptr) {
    methods = super->methods();
    for (MethodDecl& method : methods) {
      dropRestricted(method.qualifiers);
    }
  }
  ByName<std::size_t> index;
  for (std::size_t i = 0; i < methods.size(); ++i) {
    index.emplace(methods[i].name, i);
  }
  NameSet declared;
  for (RawMethod& given : raw.methods) {
    const std::string what = "method " + Quoted(given.name);
    if (!declared.insert(given.name).second) {
      fail(file, given.pos, what + " is declared twice in class " + Quoted(decl.name()));
    }
    checkReferencedClass(file, given.typePos, given.returnType, what);
    Resolved own = resolveQualifiers(file, given.qualifiers);
    checkScopes(file, given.qualifiers, own, Target::kMethod);
    const auto found = index.find(given.name);
    const bool overrides = found != index.end();
    checkOverride(file, given.qualifiers, own.qualifiers, given.name, overrides, decl.name(),
                  "method");

    MethodDecl method;
    method.name = given.name;
    method.returnType = given.returnType;
    method.parameters = parameters(file, given);
    if (overrides) {
      MethodDecl& inherited = methods[found->second];
      if (!SameShape(inherited.returnType, given.returnType)) {
        fail(file, given.typePos,
             what + " overrides one returning " + TypeText(inherited.returnType) + " with " +
                 TypeText(given.returnType));
      }
      method.qualifiers = merged(std::move(own.qualifiers), inherited.qualifiers);
      method.classOrigin = std::move(inherited.classOrigin);
      methods[found->second] = std::move(method);
    } else {
      method.qualifiers = std::move(own.qualifiers);
      method.classOrigin = decl.name();
      index.emplace(method.name, methods.size());
      methods.push_back(std::move(method));
    }
  }
}

std::vector<ParameterDecl> MofStaging::parameters(const std::string& file, RawMethod& raw) const {
  std::vector<ParameterDecl> result;
  result.reserve(raw.parameters.size());
  NameSet declared;
  for (RawParameter& given : raw.parameters) {
    if (!declared.insert(given.name).second) {
      fail(file, given.pos,
           "parameter " + Quoted(given.name) + " is declared twice in method " + Quoted(raw.name));
    }
    checkReferencedClass(file, given.typePos, given.type, "parameter " + Quoted(given.name));
    Resolved own = resolveQualifiers(file, given.qualifiers);
    checkScopes(file, given.qualifiers, own, Target::kParameter);
    ParameterDecl parameter;
    parameter.name = given.name;
    parameter.type = given.type;
    parameter.isIn = BooleanQualifier(own.qualifiers, "In", true);
    parameter.isOut = BooleanQualifier(own.qualifiers, "Out", false);
    parameter.qualifiers = std::move(own.qualifiers);
    result.push_back(std::move(parameter));
  }
  return result;
}

void MofStaging::resolveAliases(const std::string& file, RawValue& raw) const {
  const auto resolve = [&](MofValue& value, SourcePos pos) {
    if (value.kind != MofValue::Kind::kAlias) {
      return;
    }
    const auto found = aliases_.find(value.text);
    if (found == aliases_.end()) {
      fail(file, pos,
           "undefined alias $" + value.text + " (an \"instance of ... as $" + value.text +
               "\" must come first)");
    }
    value.kind = MofValue::Kind::kReference;
    value.text = found->second;
  };
  if (raw.value.kind != MofValue::Kind::kArray) {
    resolve(raw.value, raw.pos);
    return;
  }
  for (std::size_t i = 0; i < raw.value.elements.size(); ++i) {
    resolve(raw.value.elements[i], i < raw.elementPos.size() ? raw.elementPos[i] : raw.pos);
  }
}

std::string MofStaging::pathText(const ClassDecl& decl, const StaticInstance& instance,
                                 bool canonical) {
  std::vector<const PropertyDecl*> keys = decl.keyProperties();
  if (canonical) {
    // Compared as a set: one text whatever order the keys come in.
    std::sort(keys.begin(), keys.end(), [](const PropertyDecl* a, const PropertyDecl* b) {
      return NoCaseLess()(a->name, b->name);
    });
  }
  std::vector<std::pair<std::string, std::string>> keyTexts;
  for (const PropertyDecl* key : keys) {
    const MofValue* value = &key->defaultValue;
    for (const auto& [name, given] : instance.values) {
      if (NoCaseEqual(name, key->name)) {
        value = &given;
        break;
      }
    }
    if (canonical && value->kind == MofValue::Kind::kReference) {
      MofValue reference = *value;
      reference.text = CanonicalReference(reference.text);
      keyTexts.emplace_back(AsciiLowered(key->name), PathValueText(reference));
    } else {
      keyTexts.emplace_back(canonical ? AsciiLowered(key->name) : key->name, PathValueText(*value));
    }
  }
  return PathText("", "", canonical ? AsciiLowered(decl.name()) : decl.name(), keyTexts);
}

void MofStaging::seedInstancePaths(StagedNamespace& space, const ClassDecl& decl) {
  if (!space.seededClasses.insert(decl.name()).second) {
    return;
  }
  for (const StaticInstance* committed : repository_.staticInstances(nameSpace_, decl.name())) {
    space.instancePaths.insert(pathText(decl, *committed, true));
  }
}

void MofStaging::addInstance(const std::string& file, RawInstance raw) {
  const ClassDecl* decl = findClass(raw.className);
  if (decl == nullptr) {
    fail(file, raw.classPos,
         "instance of undefined class " + Quoted(raw.className) + " (not in namespace " +
             Quoted(nameSpace_) + ")");
  }
  if (decl->isAbstract()) {
    fail(file, raw.classPos,
         "class " + Quoted(decl->name()) + " is abstract and cannot have instances");
  }
  resolveQualifiers(file, raw.qualifiers);
  StaticInstance instance;
  instance.className = decl->name();
  NameSet given;
  for (RawPropertyValue& value : raw.values) {
    const PropertyDecl* property = decl->findProperty(value.name);
    if (property == nullptr) {
      fail(file, value.pos,
           "class " + Quoted(decl->name()) + " has no property " + Quoted(value.name));
    }
    if (!given.insert(property->name).second) {
      fail(file, value.pos, "property " + Quoted(property->name) + " is given twice");
    }
    resolveQualifiers(file, value.qualifiers);
    conform(file, value.value, property->type, false, "property " + Quoted(property->name));
    resolveAliases(file, value.value);
    instance.values.emplace_back(property->name, std::move(value.value.value));
  }
  for (const PropertyDecl* key : decl->keyProperties()) {
    if (given.count(key->name) == 0 && key->defaultValue.kind == MofValue::Kind::kNull) {
      fail(file, raw.pos,
           "instance of " + Quoted(decl->name()) + " gives no value for key property " +
               Quoted(key->name));
    }
  }
  for (const auto& [name, value] : instance.values) {
    if (value.kind == MofValue::Kind::kNull && decl->findProperty(name)->isKey) {
      fail(file, raw.pos,
           "instance of " + Quoted(decl->name()) + " sets key property " + Quoted(name) +
               " to null");
    }
  }
  StagedNamespace& space = staged();
  seedInstancePaths(space, *decl);
  if (!space.instancePaths.insert(pathText(*decl, instance, true)).second) {
    fail(file, raw.pos,
         "an instance with the same keys is already defined: " + pathText(*decl, instance, false));
  }
  if (!raw.alias.empty() && !aliases_.emplace(raw.alias, pathText(*decl, instance, false)).second) {
    fail(file, raw.aliasPos, "alias $" + raw.alias + " is already defined");
  }
  space.instances.push_back(std::move(instance));
}

void MofStaging::commitTo(ClassRepository& repository) {
  if (&repository != &repository_) {
    throw std::logic_error("MofStaging::commitTo: not the repository it was checked against");
  }
  for (StagedNamespace* space : spaceOrder_) {
    for (auto& entry : space->qualifiers) {
      repository.addQualifier(space->name, std::move(entry.second));
    }
    for (auto& decl : space->classes) {
      repository.addClass(space->name, std::move(decl));
    }
    for (StaticInstance& instance : space->instances) {
      repository.addStaticInstance(space->name, std::move(instance));
    }
  }
  spaceOrder_.clear();
  spaces_.clear();
  aliases_.clear();
}

}  // namespace cmpihost
