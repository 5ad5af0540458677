#include "cmpihost/ClassRepository.h"

#include <deque>
#include <map>
#include <stdexcept>
#include <utility>

#include "text/NoCase.h"

namespace cmpihost {

struct ClassRepository::Namespace {
  template <typename Value>
  using ByName = std::map<std::string, Value, NoCaseLess>;

  std::string name;  // the spelling first used
  ByName<QualifierDecl> qualifiers;
  std::vector<std::unique_ptr<ClassDecl>> classes;  // load order
  ByName<const ClassDecl*> classIndex;
  ByName<std::vector<const ClassDecl*>> subclasses;  // key: superclass; load order
  // A deque keeps the addresses handed out by staticInstances() valid when
  // a later load adds more.
  ByName<std::deque<StaticInstance>> instances;
};

ClassRepository::ClassRepository() = default;
ClassRepository::~ClassRepository() = default;

ClassRepository::Namespace* ClassRepository::findNamespace(const std::string& nameSpace) const {
  const auto found = namespaces_.find(AsciiLowered(nameSpace));
  return found == namespaces_.end() ? nullptr : found->second.get();
}

ClassRepository::Namespace& ClassRepository::namespaceFor(const std::string& nameSpace) {
  auto& slot = namespaces_[AsciiLowered(nameSpace)];
  if (!slot) {
    slot = std::make_unique<Namespace>();
    slot->name = nameSpace;
  }
  return *slot;
}

const ClassDecl* ClassRepository::findClass(const std::string& nameSpace,
                                            const std::string& className) const {
  const Namespace* space = findNamespace(nameSpace);
  if (space == nullptr) {
    return nullptr;
  }
  const auto found = space->classIndex.find(className);
  return found == space->classIndex.end() ? nullptr : found->second;
}

const QualifierDecl* ClassRepository::findQualifier(const std::string& nameSpace,
                                                    const std::string& name) const {
  const Namespace* space = findNamespace(nameSpace);
  if (space == nullptr) {
    return nullptr;
  }
  const auto found = space->qualifiers.find(name);
  return found == space->qualifiers.end() ? nullptr : &found->second;
}

bool ClassRepository::isA(const std::string& nameSpace, const std::string& className,
                          const std::string& ancestor) const {
  // Terminates: a class is only ever added below a class that already exists.
  for (const ClassDecl* decl = findClass(nameSpace, className); decl != nullptr;
       decl = decl->superName().empty() ? nullptr : findClass(nameSpace, decl->superName())) {
    if (NoCaseEqual(decl->name(), ancestor)) {
      return true;
    }
  }
  return false;
}

std::vector<const ClassDecl*> ClassRepository::classAndSubclasses(
    const std::string& nameSpace, const std::string& className) const {
  std::vector<const ClassDecl*> result;
  const Namespace* space = findNamespace(nameSpace);
  const ClassDecl* root = findClass(nameSpace, className);
  if (root == nullptr) {
    return result;
  }
  // Depth-first with an explicit stack: a generated hierarchy may be deep.
  std::vector<const ClassDecl*> pending{root};
  while (!pending.empty()) {
    const ClassDecl* current = pending.back();
    pending.pop_back();
    result.push_back(current);
    const auto children = space->subclasses.find(current->name());
    if (children != space->subclasses.end()) {
      pending.insert(pending.end(), children->second.rbegin(), children->second.rend());
    }
  }
  return result;
}

std::vector<const ClassDecl*> ClassRepository::classes(const std::string& nameSpace) const {
  std::vector<const ClassDecl*> result;
  if (const Namespace* space = findNamespace(nameSpace)) {
    result.reserve(space->classes.size());
    for (const auto& decl : space->classes) {
      result.push_back(decl.get());
    }
  }
  return result;
}

std::vector<std::string> ClassRepository::namespaces() const {
  std::vector<std::string> result;
  result.reserve(namespaces_.size());
  for (const auto& entry : namespaces_) {
    result.push_back(entry.second->name);
  }
  return result;
}

std::vector<const StaticInstance*> ClassRepository::staticInstances(
    const std::string& nameSpace, const std::string& className) const {
  std::vector<const StaticInstance*> result;
  if (const Namespace* space = findNamespace(nameSpace)) {
    const auto found = space->instances.find(className);
    if (found != space->instances.end()) {
      for (const StaticInstance& instance : found->second) {
        result.push_back(&instance);
      }
    }
  }
  return result;
}

void ClassRepository::addQualifier(const std::string& nameSpace, QualifierDecl decl) {
  Namespace& space = namespaceFor(nameSpace);
  // An existing declaration keeps its key's spelling.
  std::string key = decl.name;
  space.qualifiers.insert_or_assign(std::move(key), std::move(decl));
}

void ClassRepository::addClass(const std::string& nameSpace, std::unique_ptr<ClassDecl> decl) {
  if (!decl) {
    throw std::invalid_argument("addClass: no class given");
  }
  if (findClass(nameSpace, decl->name()) != nullptr) {
    throw std::invalid_argument("addClass: class " + decl->name() + " exists already in " +
                                nameSpace);
  }
  if (!decl->superName().empty() && findClass(nameSpace, decl->superName()) == nullptr) {
    throw std::invalid_argument("addClass: superclass " + decl->superName() + " of " +
                                decl->name() + " is not in " + nameSpace);
  }
  Namespace& space = namespaceFor(nameSpace);
  const ClassDecl* added = decl.get();
  space.classes.push_back(std::move(decl));
  space.classIndex.emplace(added->name(), added);
  if (!added->superName().empty()) {
    space.subclasses[added->superName()].push_back(added);
  }
}

void ClassRepository::addStaticInstance(const std::string& nameSpace, StaticInstance instance) {
  Namespace& space = namespaceFor(nameSpace);
  std::string key = instance.className;
  space.instances[key].push_back(std::move(instance));
}

}  // namespace cmpihost
