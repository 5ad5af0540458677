// The classes, qualifier declarations and static instances of every
// namespace, as loaded from MOF. Loading is transactional per file; once
// loaded, the repository is only read, from any number of threads (it keeps
// no caches). Loading must not overlap reading. Pointers it hands out stay
// valid while the repository lives, later loads included.
#ifndef CMPIHOST_CLASSREPOSITORY_H_
#define CMPIHOST_CLASSREPOSITORY_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cmpihost/ClassDecl.h"
#include "cmpihost/Export.h"
#include "cmpihost/QualifierDecl.h"
#include "cmpihost/StaticInstance.h"

namespace cmpihost {

class CMPIHOST_EXPORT ClassRepository {
 public:
  ClassRepository();
  ~ClassRepository();
  ClassRepository(const ClassRepository&) = delete;
  ClassRepository& operator=(const ClassRepository&) = delete;

  // The class of that name in that namespace (both case-insensitive), or null.
  const ClassDecl* findClass(const std::string& nameSpace, const std::string& className) const;
  // The qualifier declaration of that name, or null.
  const QualifierDecl* findQualifier(const std::string& nameSpace, const std::string& name) const;

  // Whether `className` is `ancestor` or one of its subclasses (case-insensitive).
  bool isA(const std::string& nameSpace, const std::string& className,
           const std::string& ancestor) const;
  // The class and all its subclasses, the class first, then depth-first in load order.
  std::vector<const ClassDecl*> classAndSubclasses(const std::string& nameSpace,
                                                   const std::string& className) const;
  // Every class of the namespace, in load order.
  std::vector<const ClassDecl*> classes(const std::string& nameSpace) const;
  // The namespaces that hold anything, sorted.
  std::vector<std::string> namespaces() const;

  // Static instances of exactly that class (not subclasses), in load order.
  std::vector<const StaticInstance*> staticInstances(const std::string& nameSpace,
                                                     const std::string& className) const;

  // Adding. The MOF reader stages a whole file and then commits it, so a
  // failed file leaves the repository as it was.
  // A qualifier of a name already declared replaces the earlier declaration.
  void addQualifier(const std::string& nameSpace, QualifierDecl decl);
  // Throws std::invalid_argument, adding nothing, when the class exists
  // already (any case) or its superclass does not.
  void addClass(const std::string& nameSpace, std::unique_ptr<ClassDecl> decl);
  void addStaticInstance(const std::string& nameSpace, StaticInstance instance);

 private:
  struct Namespace;
  Namespace* findNamespace(const std::string& nameSpace) const;
  Namespace& namespaceFor(const std::string& nameSpace);
  std::map<std::string, std::unique_ptr<Namespace>> namespaces_;  // by lower-cased name
};

}  // namespace cmpihost

#endif  // CMPIHOST_CLASSREPOSITORY_H_
