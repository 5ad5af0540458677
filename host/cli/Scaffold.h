// `cmpihost new PREFIX DIR`: a new plug-in project that builds and passes
// its own test as generated, so that an author starts from working code and
// only fills in the test itself.
#ifndef CMPIHOST_CLI_SCAFFOLD_H_
#define CMPIHOST_CLI_SCAFFOLD_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

struct ScaffoldFile {
  std::string name;  // relative to the project folder
  std::string text;
};

// The project's files for the class prefix `prefix` (e.g. "NETD": classes
// NETD_DiagService, ..., provider NETDDiag in libnetddiag.so). Throws
// UsageError for a prefix that cannot start a CIM class name.
std::vector<ScaffoldFile> ScaffoldFiles(const std::string& prefix);

// Writes ScaffoldFiles(prefix) into `dir`, which may exist only if empty,
// and returns what it prints: the files written and how to build them.
// Throws UsageError "new: ..." with the reason when nothing can be written.
std::string WriteScaffold(const std::string& prefix, const std::string& dir);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_SCAFFOLD_H_
