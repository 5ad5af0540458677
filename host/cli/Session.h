// One run of the command: the host, and what later lines of a script need
// to remember (the default namespace, the provider library folders).
// Loading turns every host error into a UsageError, since a file that does
// not load is bad input.
#ifndef CMPIHOST_CLI_SESSION_H_
#define CMPIHOST_CLI_SESSION_H_

#include <string>
#include <vector>

#include "cmpihost/Host.h"

namespace cmpihost::cli {

class Session {
 public:
  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Host& host() { return host_; }
  const ClassRepository& repository() const { return host_.repository(); }

  // The namespace of classes, paths and MOF files that name none: the
  // host's default namespace, so that the host reads the user's path texts
  // as typed. Throws UsageError for a malformed namespace.
  const std::string& nameSpace() const { return host_.defaultNameSpace(); }
  void setNameSpace(const std::string& nameSpace);

  // A folder searched for provider libraries before a registration file's own.
  void addLibraryDir(const std::string& dir) { libraryDirs_.push_back(dir); }

  // Loads a MOF file into the default namespace. Throws UsageError
  // "file:line:column: problem".
  void loadMof(const std::string& path);
  // Registers the providers of a registration file and creates their MIs at
  // once, so that a missing library or factory shows now and not at the
  // first request. Throws UsageError naming the file, line and problem.
  void loadRegistrations(const std::string& path);

 private:
  Host host_;
  std::vector<std::string> libraryDirs_;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_SESSION_H_
