#include "E2eSupport.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

namespace e2e {
namespace {

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) {
    return text;
  }
  std::string::size_type at = 0;
  while ((at = text.find(from, at)) != std::string::npos) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
  return text;
}

}  // namespace

ProgramResult RunOnExample(const std::vector<std::string>& args) {
  std::vector<std::string> argv = {kCmpihost,
                                   "--mof",
                                   kSchemaMof,
                                   "--mof",
                                   kExampleDir + "/mof/filesystemdiag.mof",
                                   "--lib-dir",
                                   kExampleLibDir,
                                   "--providers",
                                   kExampleDir + "/deploy/filesystemdiag.reg"};
  argv.insert(argv.end(), args.begin(), args.end());
  return RunProgram(argv);
}

std::string HostName() {
  char name[HOST_NAME_MAX + 1] = {};
  if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') {
    return "localhost";
  }
  return name;
}

std::string Masked(const std::string& text, const std::string& systemName) {
  static const std::regex kDateTime(R"(\d{14}\.\d{6}[+-]\d{3})");
  std::string masked = std::regex_replace(text, kDateTime, "@DATETIME@");
  masked = ReplaceAll(masked, R"(\")" + systemName + R"(\")", R"(\"@SYSTEM@\")");
  return ReplaceAll(masked, R"(")" + systemName + R"(")", R"("@SYSTEM@")");
}

// Keys in the classes' declaration order (inherited Name first for a
// service), as the provider's instances give their paths.
std::string ServicePath(const std::string& serviceName) {
  return R"(FSD_FileSystemDiagnosticService.Name=")" + serviceName +
         R"(",SystemCreationClassName="TORSK_ComputerSystem",SystemName=")" + HostName() +
         R"(",CreationClassName="FSD_FileSystemDiagnosticService")";
}

std::string FileSystemPath(const std::string& deviceId) {
  return R"(FSD_MountedFileSystem.SystemCreationClassName="TORSK_ComputerSystem",SystemName=")" +
         HostName() + R"(",CreationClassName="FSD_MountedFileSystem",DeviceID=")" + deviceId +
         R"(")";
}

void ExpectGolden(const std::string& actual, const std::string& name) {
  const std::string path = std::string(DIAGCORE_SOURCE_DIR) + "/tests/e2e/expected/" + name;
  const char* update = std::getenv("E2E_UPDATE_GOLDEN");
  if (update != nullptr && std::string(update) == "1") {
    std::ofstream(path, std::ios::binary) << actual;
    return;
  }
  EXPECT_EQ(actual, ReadFile(path)) << "differs from " << path;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace e2e
