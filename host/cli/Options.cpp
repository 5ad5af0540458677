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

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  int index = 1;
  for (; index < argc; ++index) {
    const std::string arg = argv[index];
    if (arg == "--") {
      ++index;
      break;
    }
    if (arg.size() < 2 || arg[0] != '-') {
      break;
    }
    if (IsFlag(arg, "--json", options.json) || IsFlag(arg, "--trace", options.trace) ||
        IsFlag(arg, "--progress", options.progress) || IsFlag(arg, "--help", options.help) ||
        IsFlag(arg, "-h", options.help) || IsFlag(arg, "--version", options.version)) {
      continue;
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
      throw UsageError("unknown option " + arg + " (see cmpihost --help)");
    }
  }
  for (; index < argc; ++index) {
    options.words.emplace_back(argv[index]);
  }
  return options;
}

}  // namespace cmpihost::cli
