#include "cli/Session.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>

#include "cli/UsageError.h"
#include "cmpihost/MofReader.h"

namespace cmpihost::cli {
namespace {

// Several refusals come one per line; the command's errors are one line.
std::string OneLine(std::string text) {
  for (std::size_t newline = text.find('\n'); newline != std::string::npos;
       newline = text.find('\n', newline)) {
    text.replace(newline, 1, "; ");
  }
  return text;
}

// One refusal of the host's activation, when it is a missing factory:
// "provider NAME, KIND MI: library LIB exports neither GENERIC nor NAMED".
struct MissingFactory {
  std::string provider;
  std::string kind;
  std::string library;
};

std::optional<MissingFactory> ReadMissingFactory(const std::string& line) {
  static const std::regex pattern(
      R"(^provider (\S+), (\w+) MI: library (.+) exports neither _Generic_Create_\w+ nor \S+$)");
  std::smatch match;
  if (!std::regex_match(line, match, pattern)) {
    return std::nullopt;
  }
  return MissingFactory{match[1], match[2], match[3]};
}

// The number of the first line of a registration file that says
// "provider: NAME" (0 when none does).
int LineOfProvider(const std::string& path, const std::string& name) {
  std::ifstream file(path);
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    std::istringstream words(line);
    std::string key;
    std::string value;
    std::string rest;
    if (words >> key >> value && !(words >> rest) && key == "provider:" && value == name) {
      return number;
    }
  }
  return 0;
}

// A provider name that matches no factory of its library is a typo in the
// registration file, not three problems: said once, where it stands.
std::optional<std::string> MissingFactoriesMessage(const std::string& path,
                                                   const std::string& refusals) {
  std::istringstream lines(refusals);
  std::vector<MissingFactory> missing;
  for (std::string line; std::getline(lines, line);) {
    std::optional<MissingFactory> each = ReadMissingFactory(line);
    if (!each || (!missing.empty() &&
                  (each->provider != missing[0].provider || each->library != missing[0].library))) {
      return std::nullopt;
    }
    missing.push_back(*each);
  }
  if (missing.empty()) {
    return std::nullopt;
  }
  std::string kinds;
  for (const MissingFactory& each : missing) {
    kinds += (kinds.empty() ? "" : ", ") + each.kind;
  }
  const std::string& name = missing[0].provider;
  return path + ":" + std::to_string(LineOfProvider(path, name)) + ": provider " + name + ": " +
         missing[0].library + " exports no " + name +
         "_Create_<Kind>MI nor _Generic_Create_<Kind>MI for " + kinds +
         "; \"provider:\" must be the name the plug-in gives its provider macro";
}

// Said here rather than by the host, whose texts for a file it cannot open
// carry a line number of 0 and, for a registration file, no reason.
void RequireReadable(const std::string& path, const std::string& what) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw UsageError(path + ": cannot read the " + what + ": it is a directory");
  }
  errno = 0;
  const std::ifstream file(path);
  if (!file) {
    throw UsageError(path + ": cannot open the " + what + ": " +
                     (errno != 0 ? std::strerror(errno) : "unknown reason"));
  }
}

}  // namespace

void Session::setNameSpace(const std::string& nameSpace) {
  try {
    host_.setDefaultNameSpace(nameSpace);
  } catch (const HostError& error) {
    throw UsageError(error.what());
  }
}

void Session::loadMof(const std::string& path) {
  RequireReadable(path, "MOF file");
  try {
    host_.loadMof(path, nameSpace());
  } catch (const MofError& error) {
    throw UsageError(OneLine(error.what()));
  } catch (const HostError& error) {
    throw UsageError(OneLine(error.what()));
  }
}

void Session::loadRegistrations(const std::string& path) {
  // The host would read a folder as an empty file and register nothing.
  RequireReadable(path, "registration file");
  std::vector<std::string> dirs = libraryDirs_;
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  dirs.push_back(folder.empty() ? std::string(".") : folder.string());
  try {
    host_.loadRegistrationFile(path, dirs);
  } catch (const HostError& error) {
    throw UsageError(OneLine(error.what()));
  }
  try {
    host_.activateProviders();
  } catch (const HostError& error) {
    throw UsageError(MissingFactoriesMessage(path, error.what()).value_or(OneLine(error.what())));
  }
}

}  // namespace cmpihost::cli
