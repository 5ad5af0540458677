// Runs one request against the session's host: checks the classes, the
// method and its arguments against the loaded MOF first (so that bad input
// is reported as such), then asks the host and formats what came back.
#ifndef CMPIHOST_CLI_EXECUTOR_H_
#define CMPIHOST_CLI_EXECUTOR_H_

#include <string>

#include "cli/Formatter.h"
#include "cli/Request.h"
#include "cli/Session.h"
#include "cmpihost/ClassDecl.h"

namespace cmpihost::cli {

struct Outcome {
  std::string output;               // for standard output; may be empty
  std::string failure;              // "GetInstance failed: CMPI_RC_... (6): ...", empty on success
  CMPIrc failureCode = CMPI_RC_OK;  // with `failure`: the rc and the provider's message
  std::string failureMessage;
  std::string hint;        // advice for standard error about an answer that looks wrong
  bool instances = false;  // `output` shows instances (a script separates such runs)
};

class Executor {
 public:
  Executor(Session& session, const Formatter& formatter);

  // Throws UsageError "verb: problem" for bad input: an unknown class,
  // method or parameter, a malformed path, an argument of the wrong type.
  // Results delivered before a request failed are kept in the output.
  Outcome run(const Request& request);

 private:
  struct ClassTarget;
  // What a verb's first argument must be: a class name; a path, which may
  // be a bare class name (a static method, class-level associations) but
  // when it has keys has all of them; or an instance path with all its keys.
  enum class TargetKind { kClass, kPath, kInstancePath };
  // The class the argument names, which must exist.
  ClassTarget resolve(const std::string& text, TargetKind kind) const;
  void requireClass(const std::string& nameSpace, const std::string& className) const;
  // A class that an association filter names must be an association.
  void requireAssociation(const std::string& nameSpace, const std::string& className,
                          const char* option) const;
  // A reference given as text (`what`: "argument X", "key Y") must name a
  // class the repository knows that is `refClass` or one of its subclasses;
  // its own reference keys are checked the same way. A text without a
  // namespace is in `nameSpace`, that of the path or call it belongs to.
  void requireReference(const std::string& text, const std::string& refClass,
                        const std::string& nameSpace, const std::string& what) const;
  // The reference-typed keys of a path text of the class `decl`.
  void requireReferenceKeys(const std::string& text, const ClassDecl& decl,
                            const std::string& nameSpace) const;

  Outcome dispatch(const Request& request);
  Outcome enumerateClassNames(const Request& request) const;
  Outcome getClass(const Request& request) const;
  Outcome enumerateInstances(const Request& request);
  Outcome getInstance(const Request& request);
  Outcome invokeMethod(const Request& request);
  Outcome associate(const Request& request);
  // The paths (`names`) or instances of a reply, and its failure if any.
  Outcome listed(const VerbInfo& verb, const Reply& reply, bool names) const;

  Session& session_;
  const Formatter& formatter_;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_EXECUTOR_H_
