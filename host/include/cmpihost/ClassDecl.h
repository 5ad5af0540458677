// A CIM class as the repository holds it after loading: its own declaration
// plus everything it inherits, resolved once so that lookups are cheap.
#ifndef CMPIHOST_CLASSDECL_H_
#define CMPIHOST_CLASSDECL_H_

#include <optional>
#include <string>
#include <vector>

#include "cmpihost/CimType.h"
#include "cmpihost/Export.h"
#include "cmpihost/MofValue.h"
#include "cmpihost/QualifierDecl.h"

namespace cmpihost {

struct CMPIHOST_EXPORT PropertyDecl {
  std::string name;  // declared spelling
  TypeDecl type;
  bool isKey = false;
  // kNull when the MOF gives none; an override that gives none keeps the
  // inherited default.
  MofValue defaultValue;
  std::vector<Qualifier> qualifiers;
  std::string classOrigin;  // the class that first declared the property
};

struct CMPIHOST_EXPORT ParameterDecl {
  std::string name;
  TypeDecl type;
  bool isIn = true;  // In defaults to true, as in CIM
  bool isOut = false;
  std::vector<Qualifier> qualifiers;
};

struct CMPIHOST_EXPORT MethodDecl {
  std::string name;
  TypeDecl returnType;
  std::vector<ParameterDecl> parameters;
  std::vector<Qualifier> qualifiers;
  std::string classOrigin;
};

class CMPIHOST_EXPORT ClassDecl {
 public:
  ClassDecl(std::string name, std::string superName);

  // The declared spelling of the class name.
  const std::string& name() const { return name_; }
  // The superclass's declared spelling, or "" for a root class.
  const std::string& superName() const { return superName_; }

  // True when the class carries the Association / Abstract / Indication
  // qualifier with the value true (Association and Indication are inherited).
  bool isAssociation() const;
  bool isAbstract() const;
  bool isIndication() const;

  // Every property, inherited ones first in their superclass order; an
  // override keeps the inherited position and takes the subclass's type,
  // default (if it gives one) and qualifiers, plus the inherited qualifiers
  // that propagate (flavor ToSubclass, the default) and it does not restate.
  const std::vector<PropertyDecl>& properties() const { return properties_; }
  // The property of that name (case-insensitive), or null.
  const PropertyDecl* findProperty(const std::string& name) const;
  // The Key properties, in property order.
  std::vector<const PropertyDecl*> keyProperties() const;

  // Every method, inherited ones first; overrides keep their position.
  const std::vector<MethodDecl>& methods() const { return methods_; }
  // The method of that name (case-insensitive), or null.
  const MethodDecl* findMethod(const std::string& name) const;

  // The class's own qualifiers, then those of its superclass that propagate
  // (flavor ToSubclass, the default) and it does not restate; Restricted
  // ones such as Abstract stay with the class that declares them.
  const std::vector<Qualifier>& qualifiers() const { return qualifiers_; }
  // The class qualifier of that name (case-insensitive), or null.
  const Qualifier* findQualifier(const std::string& name) const;

  // Building: used by the MOF reader while it resolves inheritance.
  std::vector<PropertyDecl>& mutableProperties() { return properties_; }
  std::vector<MethodDecl>& mutableMethods() { return methods_; }
  std::vector<Qualifier>& mutableQualifiers() { return qualifiers_; }

 private:
  bool hasTrueQualifier(const char* name) const;

  std::string name_;
  std::string superName_;
  std::vector<Qualifier> qualifiers_;
  std::vector<PropertyDecl> properties_;
  std::vector<MethodDecl> methods_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_CLASSDECL_H_
