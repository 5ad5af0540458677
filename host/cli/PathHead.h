// The part of an object path text before its keys: enough for the command
// to find the class (to check it, its methods and their parameters). The
// keys are left to the host, which types them from the class.
#ifndef CMPIHOST_CLI_PATHHEAD_H_
#define CMPIHOST_CLI_PATHHEAD_H_

#include <cstddef>
#include <string>

namespace cmpihost::cli {

struct PathHead {
  std::string nameSpace;  // "" when the text names none
  std::string className;
  bool hasKeys = false;  // a '.' and keys follow the class name
};

// Reads `[//host/][namespace:]Class[.keys]`. Throws UsageError
// "path text 'TEXT': column N: problem".
PathHead ReadPathHead(const std::string& text);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_PATHHEAD_H_
