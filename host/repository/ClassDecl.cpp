#include "cmpihost/ClassDecl.h"

#include <utility>

#include "text/NoCase.h"

namespace cmpihost {
namespace {

template <typename Decl>
const Decl* FindByName(const std::vector<Decl>& decls, const std::string& name) {
  for (const Decl& decl : decls) {
    if (NoCaseEqual(decl.name, name)) {
      return &decl;
    }
  }
  return nullptr;
}

}  // namespace

ClassDecl::ClassDecl(std::string name, std::string superName)
    : name_(std::move(name)), superName_(std::move(superName)) {}

bool ClassDecl::hasTrueQualifier(const char* name) const {
  const Qualifier* qualifier = findQualifier(name);
  return qualifier != nullptr && qualifier->value.kind == MofValue::Kind::kBoolean &&
         qualifier->value.boolean;
}

bool ClassDecl::isAssociation() const {
  return hasTrueQualifier("Association");
}

bool ClassDecl::isAbstract() const {
  return hasTrueQualifier("Abstract");
}

bool ClassDecl::isIndication() const {
  return hasTrueQualifier("Indication");
}

const PropertyDecl* ClassDecl::findProperty(const std::string& name) const {
  return FindByName(properties_, name);
}

std::vector<const PropertyDecl*> ClassDecl::keyProperties() const {
  std::vector<const PropertyDecl*> keys;
  for (const PropertyDecl& property : properties_) {
    if (property.isKey) {
      keys.push_back(&property);
    }
  }
  return keys;
}

const MethodDecl* ClassDecl::findMethod(const std::string& name) const {
  return FindByName(methods_, name);
}

const Qualifier* ClassDecl::findQualifier(const std::string& name) const {
  return FindByName(qualifiers_, name);
}

}  // namespace cmpihost
