// Every verb the command knows, with what its help prints: one table, so
// that parsing, the unknown-verb message and the help cannot disagree.
#ifndef CMPIHOST_CLI_VERBS_H_
#define CMPIHOST_CLI_VERBS_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

enum class Verb {
  kEnumerateClassNames,
  kGetClass,
  kEnumerateInstances,
  kEnumerateInstanceNames,
  kGetInstance,
  kInvokeMethod,
  kAssociators,
  kAssociatorNames,
  kReferences,
  kReferenceNames,
  kRun,    // run a script file
  kNew,    // write a new plug-in project
  kStdin,  // "-": run the commands on standard input
  kHelp,
};

struct VerbInfo {
  const char* name;  // as typed: "ei"
  Verb verb;
  const char* operation;  // the CIM operation it performs, for failure messages
  const char* synopsis;   // the arguments after the verb
  const char* summary;    // one line for the verb list
  std::string details;    // the rest of its help: options, output, examples
};

// The verbs in the order the help lists them.
const std::vector<VerbInfo>& AllVerbs();

// The verb of that name (exact spelling), or null.
const VerbInfo* FindVerb(const std::string& name);

// The verb names joined by ", ", for messages.
std::string VerbNames();

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_VERBS_H_
