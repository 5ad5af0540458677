#include "cli/Scaffold.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cli/ScaffoldTemplates.h"
#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

namespace fs = std::filesystem;

// A class prefix is the schema part of CIM class names (before the '_'), so
// letters and digits only, starting with a letter; "CIM" is the DMTF's own.
void RequirePrefix(const std::string& prefix) {
  const bool startsWithLetter =
      !prefix.empty() && std::isalpha(static_cast<unsigned char>(prefix[0])) != 0;
  bool alphanumeric = true;
  for (const char c : prefix) {
    alphanumeric = alphanumeric && std::isalnum(static_cast<unsigned char>(c)) != 0;
  }
  if (!startsWithLetter || !alphanumeric) {
    throw UsageError("new: class prefix \"" + prefix +
                     "\" is not a letter followed by letters and digits (e.g. NETD)");
  }
  std::string upper = prefix;
  for (char& c : upper) {
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  if (upper == "CIM") {
    throw UsageError("new: class prefix CIM is the DMTF's; choose one of your own (e.g. NETD)");
  }
}

std::string Lowered(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string Substituted(std::string text, const std::string& placeholder,
                        const std::string& value) {
  for (std::size_t at = text.find(placeholder); at != std::string::npos;
       at = text.find(placeholder, at + value.size())) {
    text.replace(at, placeholder.size(), value);
  }
  return text;
}

// Refuses a folder that holds anything, so that no file of the user's is
// overwritten; creates it (with its parents) when missing.
void PrepareFolder(const fs::path& dir) {
  std::error_code error;
  if (fs::exists(dir, error)) {
    if (!fs::is_directory(dir, error)) {
      throw UsageError("new: " + dir.string() + " exists and is not a folder");
    }
    if (!fs::is_empty(dir, error)) {
      throw UsageError("new: " + dir.string() + " is not empty; give a new or empty folder");
    }
    return;
  }
  if (!fs::create_directories(dir, error)) {
    throw UsageError("new: cannot create the folder " + dir.string() + ": " + error.message());
  }
}

void WriteFile(const fs::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    throw UsageError("new: cannot write " + path.string() + ": " + std::strerror(errno));
  }
}

}  // namespace

std::vector<ScaffoldFile> ScaffoldFiles(const std::string& prefix) {
  RequirePrefix(prefix);
  const std::string provider = prefix + "Diag";
  const std::string library = Lowered(provider);
  const auto fill = [&](const char* text) {
    return Substituted(Substituted(Substituted(text, "@P@", prefix), "@N@", provider), "@L@",
                       library);
  };
  return {
      {"CMakeLists.txt", fill(scaffold::kCMakeLists)},
      {provider + ".cpp", fill(scaffold::kSource)},
      {provider + "Test.cpp", fill(scaffold::kTest)},
      {library + ".mof", fill(scaffold::kMof)},
      {library + "-host.mof", fill(scaffold::kHostMof)},
      {library + ".reg", fill(scaffold::kRegistration)},
      {"README.md", fill(scaffold::kReadme)},
  };
}

std::string WriteScaffold(const std::string& prefix, const std::string& dir) {
  const std::vector<ScaffoldFile> files = ScaffoldFiles(prefix);
  PrepareFolder(dir);
  std::string printed;
  for (const ScaffoldFile& file : files) {
    WriteFile(fs::path(dir) / file.name, file.text);
    printed += "wrote " + (fs::path(dir) / file.name).string() + "\n";
  }
  return printed + "build and test: cmake -S " + dir + " -B " + dir +
         "/build -DCMAKE_PREFIX_PATH=<diagcore's prefix> && cmake --build " + dir +
         "/build && ctest --test-dir " + dir + "/build\n";
}

}  // namespace cmpihost::cli
