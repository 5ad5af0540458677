// cmpihost run on the example plug-in as deployed (its MOF and registration
// file, the built library): what it offers, which file systems it serves and
// offers its services to, and the records runs leave. Outputs are compared
// exactly after masking date-times and the host name; where the machine's
// mounts decide the text, the test checks the rule instead.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "E2eSupport.h"

namespace e2e {
namespace {

const char* const kMissing = "/nonexistent/fsd-e2e";

// Runs the lines of `script` in one cmpihost process on the example.
ProgramResult RunScript(const std::string& script, const std::vector<std::string>& options = {}) {
  const ScratchDir scratch;
  std::vector<std::string> args = options;
  args.emplace_back("run");
  args.push_back(scratch.write("test.cmpihost", script));
  return RunOnExample(args);
}

std::string Quoted(const std::string& text) {
  return "'" + text + "'";
}

std::string RunLine(const std::string& service, const std::string& elementPath) {
  return "cm " + Quoted(ServicePath(service)) + " RunDiagnostic " +
         Quoted("ManagedElement=" + elementPath) + "\n";
}

// The value texts of `property` in MOF output, in order ("    Name = value;").
std::vector<std::string> ValuesOf(const std::string& mof, const std::string& property) {
  std::vector<std::string> values;
  const std::string start = "    " + property + " = ";
  for (const std::string& line : Lines(mof)) {
    if (line.rfind(start, 0) == 0 && line.back() == ';') {
      values.push_back(line.substr(start.size(), line.size() - start.size() - 1));
    }
  }
  return values;
}

// The DeviceIDs in `ein FSD_MountedFileSystem` output, in order.
std::vector<std::string> DeviceIds(const std::string& paths) {
  static const std::regex kDeviceId(R"re(DeviceID="([^"]*)")re");
  std::vector<std::string> ids;
  for (const std::string& line : Lines(paths)) {
    std::smatch match;
    if (std::regex_search(line, match, kDeviceId)) {
      ids.push_back(match[1]);
    }
  }
  return ids;
}

// The mount points /proc/self/mounts lists, read the simple way (the
// kernel's \040 for a blank resolved; enough for the check below).
std::set<std::string> MountPointsNow() {
  std::set<std::string> points;
  std::ifstream mounts("/proc/self/mounts");
  std::string line;
  while (std::getline(mounts, line)) {
    std::istringstream words(line);
    std::string source;
    std::string point;
    if (words >> source >> point) {
      points.insert(std::regex_replace(point, std::regex(R"(\\040)"), " "));
    }
  }
  return points;
}

bool IsFolder(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

TEST(ExampleCommandTest, OffersTwoServicesWithTheirSettingsAndCapabilitiesOnThisHost) {
  const ProgramResult result = RunScript(
      "ei FSD_FileSystemDiagnosticService\n"
      "ei FSD_FileSystemDiagnosticSettingData\n"
      "ei FSD_FileSystemDiagnosticCapabilities\n"
      "ei TORSK_ComputerSystem\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  ExpectGolden(Masked(result.out, HostName()), "example-offer.txt");
}

TEST(ExampleCommandTest, ServesEachMountedFileSystemWorthTestingOnce) {
  const ProgramResult result = RunOnExample({"ein", "FSD_MountedFileSystem"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> ids = DeviceIds(result.out);
  ASSERT_EQ(ids.size(), Lines(result.out).size()) << result.out;
  EXPECT_NE(std::find(ids.begin(), ids.end(), "/"), ids.end()) << result.out;
  EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end())) << "served in path text order";
  EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size()) << "each once";
  const std::set<std::string> mounted = MountPointsNow();
  for (const std::string& id : ids) {
    EXPECT_EQ(mounted.count(id), 1U) << id << " is no mount point";
    EXPECT_TRUE(IsFolder(id)) << id;
    for (const char* kernel : {"/proc", "/sys", "/dev"}) {
      EXPECT_NE(id.rfind(std::string(kernel), 0), 0U) << id << " is a kernel interface";
    }
  }
  for (const std::string& line : Lines(result.out)) {
    EXPECT_EQ(line.rfind("//localhost/root/cimv2:FSD_MountedFileSystem.CreationClassName="
                         "\"FSD_MountedFileSystem\",DeviceID=\"",
                         0),
              0U)
        << line;
    EXPECT_NE(line.find(",SystemCreationClassName=\"TORSK_ComputerSystem\",SystemName=\"" +
                        HostName() + "\""),
              std::string::npos)
        << line;
  }
}

TEST(ExampleCommandTest, TheRootFileSystemElementDescribesItsMount) {
  const ProgramResult result = RunOnExample({"gi", FileSystemPath("/")});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  // What is mounted at / differs from machine to machine; the rest does not.
  static const std::regex kMountFacts(
      R"((\n    (Caption|ElementName|FileSystemType|MountSource|MountOptions|ReadOnly) = ).*;)");
  ExpectGolden(std::regex_replace(Masked(result.out, HostName()), kMountFacts, "$1@MOUNT@;"),
               "example-root-file-system.txt");
  EXPECT_EQ(ValuesOf(result.out, "DeviceID"), std::vector<std::string>{"\"/\""});
  EXPECT_EQ(ValuesOf(result.out, "Name"), std::vector<std::string>{"\"/\""});
}

TEST(ExampleCommandTest, EachServiceIsAvailableToEachFileSystemInItsOrder) {
  const ProgramResult elements = RunOnExample({"ein", "FSD_MountedFileSystem"});
  const std::vector<std::string> ids = DeviceIds(elements.out);
  ASSERT_FALSE(ids.empty());

  const ProgramResult all = RunOnExample({"ei", "FSD_AvailableDiagnosticService"});
  ASSERT_EQ(all.exitCode, 0) << all.err;
  std::vector<std::string> expectedOrders;
  std::vector<std::string> expectedServices;
  std::vector<std::string> expectedUsers;
  for (const char* service : {"FreeSpaceCheck", "WriteReadCheck"}) {
    const unsigned int first = service[0] == 'F' ? 1000 : 2000;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      expectedOrders.push_back(std::to_string(first + i));
      expectedServices.emplace_back(service);
      expectedUsers.push_back(ids[i]);
    }
  }
  EXPECT_EQ(ValuesOf(all.out, "EnumOrder"), expectedOrders);
  std::vector<std::string> services;
  for (const std::string& text : ValuesOf(all.out, "ServiceProvided")) {
    std::smatch match;
    std::regex_search(text, match, std::regex(R"(,Name=\\"([^\\]*)\\")"));
    services.push_back(match[1]);
  }
  EXPECT_EQ(services, expectedServices);
  std::vector<std::string> users;
  for (const std::string& text : ValuesOf(all.out, "UserOfService")) {
    std::smatch match;
    std::regex_search(text, match, std::regex(R"(DeviceID=\\"([^\\]*)\\")"));
    users.push_back(match[1]);
  }
  EXPECT_EQ(users, expectedUsers);
  EXPECT_EQ(ValuesOf(all.out, "EstimatedDurationOfService"),
            std::vector<std::string>(2 * ids.size(), "3"));

  // From one service: its associations only. From the root file system:
  // one per service, each naming / as the user.
  const ProgramResult fromService = RunOnExample(
      {"ain", ServicePath("WriteReadCheck"), "--assoc-class", "FSD_AvailableDiagnosticService"});
  ASSERT_EQ(fromService.exitCode, 0) << fromService.err;
  EXPECT_EQ(Lines(fromService.out).size(), ids.size());
  for (const std::string& line : Lines(fromService.out)) {
    EXPECT_NE(line.find("Name=\\\"WriteReadCheck\\\""), std::string::npos) << line;
  }
  const ProgramResult fromRoot =
      RunOnExample({"ai", FileSystemPath("/"), "--assoc-class", "FSD_AvailableDiagnosticService"});
  ASSERT_EQ(fromRoot.exitCode, 0) << fromRoot.err;
  static const std::regex kEnumOrder(R"(EnumOrder = \d+;)");
  ExpectGolden(
      std::regex_replace(Masked(fromRoot.out, HostName()), kEnumOrder, "EnumOrder = @ORDER@;"),
      "example-available-to-root.txt");
}

TEST(ExampleCommandTest, RunsThatCannotTestLeaveFailedRecordsThatSayWhy) {
  const ProgramResult result =
      RunScript(RunLine("FreeSpaceCheck", FileSystemPath(kMissing)) +
                RunLine("WriteReadCheck", FileSystemPath(kMissing)) +
                RunLine("FreeSpaceCheck",
                        "FSD_MountedFileSystem.CreationClassName=\"FSD_MountedFileSystem\"") +
                RunLine("WriteReadCheck",
                        R"(TORSK_ComputerSystem.CreationClassName="TORSK_ComputerSystem",Name=")" +
                            HostName() + R"(")") +
                "ei FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  ExpectGolden(Masked(result.out, HostName()), "example-failed-runs.txt");
}

TEST(ExampleCommandTest, TheReturnValueIsAUint32ForMachinesToo) {
  const ProgramResult result =
      RunOnExample({"--json", "cm", ServicePath("FreeSpaceCheck"), "RunDiagnostic",
                    "ManagedElement=" + FileSystemPath(kMissing)});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "{\"returnValue\":{\"type\":\"uint32\",\"value\":4},\"outArguments\":{}}\n");
}

TEST(ExampleCommandTest, TheWriteCheckOnRootWritesOnlyWhereTheProviderMay) {
  const ProgramResult result = RunScript(RunLine("WriteReadCheck", FileSystemPath("/")) +
                                         "ei FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(Lines(result.out).at(0), "ReturnValue = 0");
  const std::vector<std::string> data = ValuesOf(result.out, "RecordData");
  ASSERT_EQ(data.size(), 1U) << result.out;
  if (access("/", W_OK) == 0) {
    EXPECT_EQ(data[0], "\"Test Passed: wrote, read back and removed 4096 bytes in /\"");
    EXPECT_EQ(ValuesOf(result.out, "LoopsPassed"), std::vector<std::string>{"1"});
  } else {
    EXPECT_EQ(data[0].rfind("\"Skipped: / is ", 0), 0U) << data[0];
    EXPECT_EQ(ValuesOf(result.out, "LoopsPassed"), std::vector<std::string>{"0"});
  }
  EXPECT_EQ(ValuesOf(result.out, "LoopsFailed"), std::vector<std::string>{"0"});
  EXPECT_EQ(ValuesOf(result.out, "ErrorCode"), std::vector<std::string>{"NULL"});
  EXPECT_EQ(ValuesOf(result.out, "ManagedElementName"), std::vector<std::string>{"\"/\""});
}

TEST(ExampleCommandTest, TheFreeSpaceCheckOnRootReportsItsShares) {
  const ProgramResult result = RunScript(RunLine("FreeSpaceCheck", FileSystemPath("/")) +
                                         "ei FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> data = ValuesOf(result.out, "RecordData");
  ASSERT_EQ(data.size(), 1U) << result.out;
  // Passed or short of space: either way the numbers come from a real statvfs.
  static const std::regex kPassed(
      R"re("Test Passed: / has \d+\.\d% of the space free \(\d+(\.\d)? [KMGTPE]?i?B of \d+\.\d [KMGTPE]iB\)( and \d+\.\d% of the inodes free \(\d+ of \d+\)|; it does not count inodes)")re");
  static const std::regex kShort(
      R"re("/ has only \d+\.\d% of the (space|inodes) free \(.*\); the threshold is 5%")re");
  const bool passed = std::regex_match(data[0], kPassed);
  EXPECT_TRUE(passed || std::regex_match(data[0], kShort)) << data[0];
  EXPECT_EQ(Lines(result.out).at(0), passed ? "ReturnValue = 0" : "ReturnValue = 4");
}

}  // namespace
}  // namespace e2e
