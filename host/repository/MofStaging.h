// The front door is cmpihost/Host.h; this header is internal.
// Everything one load (a file and its includes) declares, checked against
// the repository and against itself, held back until the whole load has
// succeeded; then committed in one step, so a failed load changes nothing.
#ifndef CMPIHOST_REPOSITORY_MOFSTAGING_H_
#define CMPIHOST_REPOSITORY_MOFSTAGING_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cmpihost/ClassRepository.h"
#include "repository/MofSyntax.h"
#include "text/NoCase.h"

namespace cmpihost {

class MofStaging {
 public:
  // Declarations go to `nameSpace` until setNamespace() says otherwise.
  MofStaging(const ClassRepository& repository, std::string nameSpace);
  ~MofStaging();
  MofStaging(const MofStaging&) = delete;
  MofStaging& operator=(const MofStaging&) = delete;

  void setNamespace(std::string nameSpace) { nameSpace_ = std::move(nameSpace); }
  const std::string& nameSpace() const { return nameSpace_; }

  // Each checks the production and stages it, or throws MofError naming
  // `file` and the position of the fault.
  void addQualifierDecl(const std::string& file, RawQualifierDecl raw);
  void addClass(const std::string& file, RawClass raw);
  void addInstance(const std::string& file, RawInstance raw);

  // Moves everything staged into `repository` (the one given at
  // construction), namespace by namespace in the order it was read.
  void commitTo(ClassRepository& repository);

 private:
  struct StagedNamespace;
  // What a qualifier is applied to, for scope checks.
  enum class Target {
    kClass,
    kAssociation,
    kIndication,
    kProperty,
    kReference,
    kMethod,
    kParameter,
    kInstance
  };
  struct Resolved {
    std::vector<Qualifier> qualifiers;
    std::vector<const QualifierDecl*> decls;  // parallel to qualifiers
  };

  StagedNamespace& staged();
  const ClassDecl* findClass(const std::string& name) const;
  const QualifierDecl* findQualifierDecl(const std::string& name) const;
  bool isA(const ClassDecl& decl, const std::string& ancestor) const;
  bool propagates(const Qualifier& qualifier) const;
  void dropRestricted(std::vector<Qualifier>& qualifiers) const;

  // Looks up, checks and values a qualifier list; scopes are checked by checkScopes.
  // Values are moved out of `raw`; positions stay for later errors.
  Resolved resolveQualifiers(const std::string& file, std::vector<RawQualifier>& raw) const;
  void checkScopes(const std::string& file, const std::vector<RawQualifier>& raw,
                   const Resolved& resolved, Target target) const;
  // Own qualifiers first, then the inherited ones that propagate and are not restated.
  static std::vector<Qualifier> merged(std::vector<Qualifier> own,
                                       const std::vector<Qualifier>& inherited);
  void checkReferencedClass(const std::string& file, SourcePos pos, TypeDecl& type,
                            const std::string& what) const;
  void conform(const std::string& file, RawValue& raw, const TypeDecl& type, bool scalarFillsArray,
               const std::string& what) const;

  void addProperties(const std::string& file, RawClass& raw, ClassDecl& decl,
                     const ClassDecl* super) const;
  void addMethods(const std::string& file, RawClass& raw, ClassDecl& decl,
                  const ClassDecl* super) const;
  std::vector<ParameterDecl> parameters(const std::string& file, RawMethod& raw) const;
  // Refuses an Override qualifier that names another element, or one that
  // overrides nothing (`inherited` is false).
  void checkOverride(const std::string& file, const std::vector<RawQualifier>& rawQualifiers,
                     const std::vector<Qualifier>& qualifiers, const std::string& name,
                     bool inherited, const std::string& className, const char* what) const;

  void resolveAliases(const std::string& file, RawValue& raw) const;
  // The instance's path text, `Class.Key1="v",Key2=5` with keys in the
  // class's declaration order; `canonical` sorts the keys by name and
  // lower-cases names, for comparing.
  static std::string pathText(const ClassDecl& decl, const StaticInstance& instance,
                              bool canonical);
  void seedInstancePaths(StagedNamespace& space, const ClassDecl& decl);

  [[noreturn]] static void fail(const std::string& file, SourcePos pos, std::string problem);

  const ClassRepository& repository_;
  std::string nameSpace_;
  std::map<std::string, std::unique_ptr<StagedNamespace>, NoCaseLess> spaces_;
  std::vector<StagedNamespace*> spaceOrder_;                // first use order
  std::map<std::string, std::string, NoCaseLess> aliases_;  // -> path
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFSTAGING_H_
