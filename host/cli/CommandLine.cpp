// The whole command: options, loading, then one verb, a script file or the
// commands on standard input. The exit code is 0 for success, 1 when a
// request failed, 2 for bad usage or input.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>

#include "cli/Executor.h"
#include "cli/Help.h"
#include "cli/JsonFormatter.h"
#include "cli/Options.h"
#include "cli/Progress.h"
#include "cli/Request.h"
#include "cli/Scaffold.h"
#include "cli/ScriptRunner.h"
#include "cli/Session.h"
#include "cli/TextFormatter.h"
#include "cli/TraceLine.h"
#include "cli/UsageError.h"

#ifndef CMPIHOST_VERSION
#define CMPIHOST_VERSION "unknown"
#endif

namespace cmpihost::cli {
namespace {

// What the words after the options ask for.
struct Plan {
  enum class Kind { kRequest, kScriptFile, kStandardInput, kScaffold };
  Kind kind = Kind::kRequest;
  Request request;
  std::string scriptPath;
  std::string scriptText;
  std::vector<std::string> scaffold;  // PREFIX DIR
};

std::string ReadScript(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw UsageError("run: cannot read the script " + path + ": it is a directory");
  }
  errno = 0;
  std::ifstream file(path);
  if (!file) {
    throw UsageError("run: cannot open the script " + path + ": " +
                     (errno != 0 ? std::strerror(errno) : "unknown reason"));
  }
  std::ostringstream text;
  text << file.rdbuf();
  if (file.bad()) {
    throw UsageError("run: cannot read the script " + path);
  }
  return text.str();
}

// Checked before anything is loaded, so that a typo is reported at once.
Plan MakePlan(const std::vector<std::string>& words) {
  Plan plan;
  if (words.empty()) {
    if (isatty(STDIN_FILENO) != 0) {
      VerbOf(words);  // throws: no verb given
    }
    plan.kind = Plan::Kind::kStandardInput;
    return plan;
  }
  const VerbInfo& verb = VerbOf(words);
  if (verb.operation[0] != '\0') {
    plan.request = ParseRequest(words);
    return plan;
  }
  AssociationFilter none;
  const std::vector<std::string> arguments =
      ReadArguments(verb, {std::next(words.begin()), words.end()}, none);
  if (verb.verb == Verb::kStdin) {
    plan.kind = Plan::Kind::kStandardInput;
  } else if (verb.verb == Verb::kRun) {
    plan.kind = Plan::Kind::kScriptFile;
    plan.scriptPath = arguments[0];
    plan.scriptText = ReadScript(plan.scriptPath);
  } else if (verb.verb == Verb::kNew) {
    plan.kind = Plan::Kind::kScaffold;
    plan.scaffold = arguments;
  }
  return plan;
}

Progress::Mode ProgressMode(const Options& options, const Plan& plan) {
  if (plan.kind == Plan::Kind::kRequest) {
    return Progress::Mode::kOff;
  }
  const bool terminal = isatty(STDERR_FILENO) != 0;
  if (options.progress) {
    return terminal ? Progress::Mode::kInPlace : Progress::Mode::kLines;
  }
  return terminal && plan.kind == Plan::Kind::kScriptFile ? Progress::Mode::kInPlace
                                                          : Progress::Mode::kOff;
}

void Load(Session& session, const Options& options) {
  session.setNameSpace(options.nameSpace);
  for (const std::string& dir : options.libraryDirs) {
    session.addLibraryDir(dir);
  }
  for (const std::string& mof : options.mofFiles) {
    session.loadMof(mof);
  }
  for (const std::string& registration : options.registrationFiles) {
    session.loadRegistrations(registration);
  }
}

int RunRequest(Session& session, const Formatter& formatter, const Request& request) {
  Executor executor(session, formatter);
  const Outcome outcome = executor.run(request);
  std::cout << outcome.output << std::flush;
  if (!outcome.hint.empty()) {
    std::cerr << "cmpihost: " << outcome.hint << '\n';
  }
  if (!outcome.failure.empty()) {
    std::cerr << "cmpihost: " << outcome.failure << '\n';
    return 1;
  }
  return 0;
}

int RunScript(Session& session, const Formatter& formatter, Progress& progress, const Plan& plan) {
  ScriptRunner runner(session, formatter, progress, std::cout, std::cerr);
  ScriptSource source;
  if (plan.kind == Plan::Kind::kStandardInput) {
    source.name = "<stdin>";
    source.stopOnBadLine = isatty(STDIN_FILENO) == 0;
    return runner.run(std::cin, source);
  }
  source.name = plan.scriptPath;
  source.folder = std::filesystem::path(plan.scriptPath).parent_path().string();
  source.commandCount = ScriptRunner::CountCommands(plan.scriptText);
  std::istringstream text(plan.scriptText);
  return runner.run(text, source);
}

int Run(const Options& options) {
  if (options.version) {
    std::cout << "cmpihost " << CMPIHOST_VERSION << '\n';
    return 0;
  }
  if (options.help || AsksForHelp(options.words)) {
    std::cout << HelpFor(options.words);
    return 0;
  }
  const Plan plan = MakePlan(options.words);
  if (plan.kind == Plan::Kind::kScaffold) {
    std::cout << WriteScaffold(plan.scaffold[0], plan.scaffold[1]);
    return 0;
  }
  const TextFormatter text;
  const JsonFormatter json;
  const Formatter& formatter = options.json ? static_cast<const Formatter&>(json) : text;
  // Declared before the session: the host's providers may log until it is gone.
  Progress progress(std::cerr, ProgressMode(options, plan));
  Session session;
  if (options.trace) {
    session.host().onLog([&progress, &options](const LogRecord& record) {
      if (LevelOf(record) > options.traceLevel) {
        return;
      }
      progress.clear();
      std::cout << std::flush;
      std::cerr << TraceLine(record) << '\n';
    });
  }
  Load(session, options);
  if (plan.kind == Plan::Kind::kRequest) {
    return RunRequest(session, formatter, plan.request);
  }
  return RunScript(session, formatter, progress, plan);
}

// With --json, an error is also a document on standard output, so that a
// program that reads the output sees why there is no answer.
int Refused(bool json, const std::string& message, int exitCode) {
  if (json) {
    std::cout << JsonFormatter().failure(nullptr, message);
  }
  std::cout << std::flush;
  std::cerr << "cmpihost: " << message << '\n';
  return exitCode;
}

int RunCommandLine(int argc, const char* const* argv) {
  bool json = false;
  try {
    const Options options = ParseOptions(argc, argv);
    json = options.json;
    return Run(options);
  } catch (const UsageError& error) {
    return Refused(json, error.what(), 2);
  } catch (const std::exception& error) {
    return Refused(json, std::string("unexpected error: ") + error.what(), 1);
  }
}

}  // namespace
}  // namespace cmpihost::cli

int main(int argc, char** argv) {
  return cmpihost::cli::RunCommandLine(argc, argv);
}
