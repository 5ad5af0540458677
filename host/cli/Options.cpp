#include "cli/Options.h"

#include <optional>

#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

// One "--name VALUE" or "--name=VALUE" option: its value, moving `index`
// past what it consumed; nullopt when `arg` is another option.
std::optional<std::string> ValueOf(const std::string& name, const std::string& placeholder,
                                   int argc, const char* const* argv, int& index) {
  const std::string arg = argv[index];
  if (arg.compare(0, name.size() + 1, name + "=") == 0) {
    return arg.substr(name.size() + 1);
  }
  if (arg != name) {
    return std::nullopt;
  }
  if (index + 1 >= argc) {
    throw UsageError("option " + name + " needs a value (" + placeholder + ")");
  }
  return std::string(argv[++index]);
}

// A flag option; true when `arg` is it.
bool IsFlag(const std::string& arg, const char* name, bool& flag) {
  if (arg != name) {
    return false;
  }
  flag = true;
  return true;
}

TraceLevel TraceLevelNamed(const std::string& name) {
  const struct {
    const char* name;
    TraceLevel level;
  } levels[] = {{"error", TraceLevel::kError},
                {"warning", TraceLevel::kWarning},
                {"info", TraceLevel::kInfo},
                {"debug", TraceLevel::kDebug}};
  for (const auto& each : levels) {
    if (name == each.name) {
      return each.level;
    }
  }
  throw UsageError("option --trace takes error, warning, info or debug, not \"" + name + "\"");
}

// "--trace" prints every record, "--trace=LEVEL" those of LEVEL and above.
bool IsTrace(const std::string& arg, Options& options) {
  if (arg == "--trace") {
    options.trace = true;
    options.traceLevel = TraceLevel::kDebug;
    return true;
  }
  if (arg.compare(0, 8, "--trace=") != 0) {
    return false;
  }
  options.traceLevel = TraceLevelNamed(arg.substr(8));
  options.trace = true;
  return true;
}

// The help options stay words after the verb, where they ask for its help.
bool IsHelp(const std::string& arg) {
  return arg == "--help" || arg == "-h";
}

// Takes the global option at argv[index] into `options`, moving `index`
// past its value; false when argv[index] is not one.
bool ReadGlobalOption(int argc, const char* const* argv, int& index, Options& options) {
  const std::string arg = argv[index];
  if (IsFlag(arg, "--json", options.json) || IsTrace(arg, options) ||
      IsFlag(arg, "--progress", options.progress) || IsFlag(arg, "--version", options.version)) {
    return true;
  }
  if (auto file = ValueOf("--mof", "FILE", argc, argv, index)) {
    options.mofFiles.push_back(*file);
  } else if (auto registration = ValueOf("--providers", "REGFILE", argc, argv, index)) {
    options.registrationFiles.push_back(*registration);
  } else if (auto dir = ValueOf("--lib-dir", "DIR", argc, argv, index)) {
    options.libraryDirs.push_back(*dir);
  } else if (auto nameSpace = ValueOf("--namespace", "NS", argc, argv, index)) {
    if (nameSpace->empty()) {
      throw UsageError("option --namespace needs a non-empty namespace");
    }
    options.nameSpace = *nameSpace;
  } else {
    return false;
  }
  return true;
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  int index = 1;
  bool optionsEnded = false;
  for (; index < argc; ++index) {
    const std::string arg = argv[index];
    if (arg == "--") {
      ++index;
      optionsEnded = true;
      break;
    }
    if (arg.size() < 2 || arg[0] != '-') {
      break;
    }
    if (IsHelp(arg)) {
      options.help = true;
    } else if (!ReadGlobalOption(argc, argv, index, options)) {
      throw UsageError("unknown option " + arg + " (see cmpihost --help)");
    }
  }
  for (; index < argc; ++index) {
    const std::string arg = argv[index];
    if (!optionsEnded && arg == "--") {
      optionsEnded = true;
    } else if (optionsEnded || arg.compare(0, 2, "--") != 0 || IsHelp(arg) ||
               !ReadGlobalOption(argc, argv, index, options)) {
      options.words.push_back(arg);
    }
  }
  return options;
}

}  // namespace cmpihost::cli
