#include "cli/Session.h"

#include <filesystem>

#include "cli/UsageError.h"
#include "repository/MofReader.h"

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

}  // namespace

void Session::setNameSpace(const std::string& nameSpace) {
  try {
    host_.setDefaultNameSpace(nameSpace);
  } catch (const HostError& error) {
    throw UsageError(error.what());
  }
}

void Session::loadMof(const std::string& path) {
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
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw UsageError(path + ":0: cannot read the registration file: it is a directory");
  }
  std::vector<std::string> dirs = libraryDirs_;
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  dirs.push_back(folder.empty() ? std::string(".") : folder.string());
  try {
    host_.loadRegistrationFile(path, dirs);
    host_.activateProviders();
  } catch (const HostError& error) {
    throw UsageError(OneLine(error.what()));
  }
}

}  // namespace cmpihost::cli
