// Runs a script: one command per line, in one process, so that what a line
// creates is there for the lines after it. Besides the request verbs a
// script may say echo, mof, providers, lib-dir, namespace and
// unload-idle.
//
// A failing request prints its error and the script goes on (the exit code
// is then 1); a bad line prints "cmpihost: NAME:LINE: problem" and stops
// the script with exit code 2, unless the source asks to go on (a person
// typing at a terminal).
#ifndef CMPIHOST_CLI_SCRIPTRUNNER_H_
#define CMPIHOST_CLI_SCRIPTRUNNER_H_

#include <cstddef>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "cli/Executor.h"
#include "cli/Formatter.h"
#include "cli/Progress.h"
#include "cli/Session.h"

namespace cmpihost::cli {

struct ScriptSource {
  std::string name;    // the file name in messages, or "<stdin>"
  std::string folder;  // relative file names start here; "" = the current folder
  bool stopOnBadLine = true;
  std::size_t commandCount = 0;  // for the progress line; 0 = not known
};

class ScriptRunner {
 public:
  ScriptRunner(Session& session, const Formatter& formatter, Progress& progress, std::ostream& out,
               std::ostream& err);

  // Runs every command of `in`; returns the exit code (0, 1 or 2).
  int run(std::istream& in, const ScriptSource& source);

  // How many lines of `text` hold a command (not blank, not a comment, not
  // the continuation of another line).
  static std::size_t CountCommands(const std::string& text);

 private:
  // Runs one command; returns false when a request failed. `where` is
  // "NAME:LINE" for messages.
  bool runCommand(const std::vector<std::string>& words, const ScriptSource& source,
                  const std::string& where);
  // Runs a script directive; false when `words` is not one.
  bool runDirective(const std::vector<std::string>& words, const ScriptSource& source);
  std::string resolve(const std::string& name, const ScriptSource& source) const;
  // Prints a command's output and remembers whether it showed instances.
  void showed(const std::string& output, bool instances);

  Session& session_;
  const Formatter& formatter_;
  Executor executor_;
  Progress& progress_;
  std::ostream& out_;
  std::ostream& err_;
  bool instancesShownLast_ = false;  // the latest output on out_ showed instances
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_SCRIPTRUNNER_H_
