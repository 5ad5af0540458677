// cmpihost run on the example plug-in as deployed (its MOF and registration
// file, the built library): what it offers, which file systems it serves and
// offers its services to, and the records runs leave. Outputs are compared
// exactly after masking date-times and the host name; where the machine's
// mounts decide the text, the test checks the rule instead.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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
ProgramResult RunScript(const std::string& script) {
  const ScratchDir scratch;
  return RunOnExample({"run", scratch.write("test.cmpihost", script)});
}

std::string RunLine(const std::string& service, const std::string& elementPath) {
  return "cm '" + ServicePath(service) + "' RunDiagnostic 'ManagedElement=" + elementPath + "'\n";
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

// The first capture of `pattern` in each of `texts`.
std::vector<std::string> Captures(const std::vector<std::string>& texts,
                                  const std::regex& pattern) {
  std::vector<std::string> captured;
  for (const std::string& text : texts) {
    std::smatch match;
    if (std::regex_search(text, match, pattern)) {
      captured.push_back(match[1]);
    }
  }
  return captured;
}

// The file systems the example serves, by DeviceID in the order served.
std::vector<std::string> ServedFileSystems() {
  const ProgramResult result = RunOnExample({"ein", "FSD_MountedFileSystem"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> ids =
      Captures(Lines(result.out), std::regex(R"re(DeviceID="([^"]*)")re"));
  EXPECT_EQ(ids.size(), Lines(result.out).size()) << result.out;
  return ids;
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
  const std::vector<std::string> ids = ServedFileSystems();
  EXPECT_NE(std::find(ids.begin(), ids.end(), "/"), ids.end());
  EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end())) << "served in path text order";
  EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size()) << "each once";
  // The mount points /proc/self/mounts lists (a blank's \040 resolved).
  std::set<std::string> mounted;
  std::ifstream mounts("/proc/self/mounts");
  std::string source;
  std::string point;
  std::string rest;
  while (mounts >> source >> point && std::getline(mounts, rest)) {
    mounted.insert(std::regex_replace(point, std::regex(R"(\\040)"), " "));
  }
  for (const std::string& id : ids) {
    EXPECT_EQ(mounted.count(id), 1U) << id << " is no mount point";
    struct stat info {};
    EXPECT_TRUE(stat(id.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) << id;
    for (const std::string kernel : {"/proc", "/sys", "/dev"}) {
      EXPECT_NE(id.rfind(kernel, 0), 0U) << id << " is a kernel interface";
    }
  }

  // The root file system's element: what is mounted there differs from
  // machine to machine; the rest does not.
  const ProgramResult root = RunOnExample({"gi", FileSystemPath("/")});
  ASSERT_EQ(root.exitCode, 0) << root.err;
  static const std::regex kMountFacts(
      R"((\n    (Caption|ElementName|FileSystemType|MountSource|MountOptions|ReadOnly) = ).*;)");
  ExpectGolden(std::regex_replace(Masked(root.out, HostName()), kMountFacts, "$1@MOUNT@;"),
               "example-root-file-system.txt");
}

TEST(ExampleCommandTest, EachServiceIsAvailableToEachFileSystemInItsOrder) {
  const std::vector<std::string> ids = ServedFileSystems();
  ASSERT_FALSE(ids.empty());
  const ProgramResult all = RunOnExample({"ei", "FSD_AvailableDiagnosticService"});
  ASSERT_EQ(all.exitCode, 0) << all.err;
  std::vector<std::string> orders;
  std::vector<std::string> services;
  std::vector<std::string> users;
  for (const std::string service : {"FreeSpaceCheck", "WriteReadCheck"}) {
    for (std::size_t i = 0; i < ids.size(); ++i) {
      orders.push_back(std::to_string((service[0] == 'F' ? 1000 : 2000) + i));
      services.push_back(service);
      users.push_back(ids[i]);
    }
  }
  EXPECT_EQ(ValuesOf(all.out, "EnumOrder"), orders);
  EXPECT_EQ(
      Captures(ValuesOf(all.out, "ServiceProvided"), std::regex(R"([.,]Name=\\"([^\\]*)\\")")),
      services);
  EXPECT_EQ(Captures(ValuesOf(all.out, "UserOfService"), std::regex(R"(DeviceID=\\"([^\\]*)\\")")),
            users);

  // As CIM navigates: from one service, the file systems it tests; from the
  // root file system, both services, whichever class names the association.
  const ProgramResult fromService = RunOnExample(
      {"ain", ServicePath("WriteReadCheck"), "--assoc-class", "CIM_AvailableDiagnosticService"});
  ASSERT_EQ(fromService.exitCode, 0) << fromService.err;
  EXPECT_EQ(Captures(Lines(fromService.out), std::regex(R"re(DeviceID="([^"]*)")re")), ids);
  const ProgramResult fromRoot =
      RunOnExample({"ai", FileSystemPath("/"), "--assoc-class", "FSD_AvailableDiagnosticService"});
  ASSERT_EQ(fromRoot.exitCode, 0) << fromRoot.err;
  ExpectGolden(Masked(fromRoot.out, HostName()), "example-available-to-root.txt");
}

TEST(ExampleCommandTest, RunsThatCannotTestLeaveFailedRecordsThatSayWhy) {
  const ProgramResult result =
      RunScript(RunLine("FreeSpaceCheck", FileSystemPath(kMissing)) +
                RunLine("WriteReadCheck", FileSystemPath(kMissing)) +
                RunLine("FreeSpaceCheck",
                        "FSD_MountedFileSystem.CreationClassName=\"FSD_MountedFileSystem\"") +
                RunLine("WriteReadCheck", R"(TORSK_ComputerSystem.Name=")" + HostName() +
                                              R"(",CreationClassName="TORSK_ComputerSystem")") +
                "ei FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  ExpectGolden(Masked(result.out, HostName()), "example-failed-runs.txt");

  // The return value is a uint32 for machines too.
  const ProgramResult json =
      RunOnExample({"--json", "cm", ServicePath("FreeSpaceCheck"), "RunDiagnostic",
                    "ManagedElement=" + FileSystemPath(kMissing)});
  EXPECT_EQ(json.exitCode, 0) << json.err;
  EXPECT_EQ(json.out, "{\"returnValue\":{\"type\":\"uint32\",\"value\":4},\"outArguments\":{}}\n");
}

TEST(ExampleCommandTest, BothChecksOnRootReportWhatTheyFound) {
  const ProgramResult result = RunScript(RunLine("FreeSpaceCheck", FileSystemPath("/")) +
                                         RunLine("WriteReadCheck", FileSystemPath("/")) +
                                         "ei FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> data = ValuesOf(result.out, "RecordData");
  ASSERT_EQ(data.size(), 2U) << result.out;
  EXPECT_EQ(ValuesOf(result.out, "ManagedElementName"), std::vector<std::string>(2, "\"/\""));

  // Free space: passed or short, either way with numbers from a real statvfs.
  static const std::regex kPassed(
      R"re("Test Passed: / has \d+\.\d% of the space free \(\d+(\.\d)? [KMGTPE]?i?B of \d+\.\d [KMGTPE]iB\)( and \d+\.\d% of the inodes free \(\d+ of \d+\)|; it does not count inodes)")re");
  static const std::regex kShort(
      R"re("/ has only \d+\.\d% of the (space|inodes) free \(.*\); the threshold is 5%")re");
  const bool passed = std::regex_match(data[0], kPassed);
  EXPECT_TRUE(passed || std::regex_match(data[0], kShort)) << data[0];
  EXPECT_EQ(Lines(result.out).at(0), passed ? "ReturnValue = 0" : "ReturnValue = 4");

  // Write and read back only where the provider may write.
  const std::vector<std::string> loopsPassed = ValuesOf(result.out, "LoopsPassed");
  ASSERT_EQ(loopsPassed.size(), 2U);
  if (access("/", W_OK) == 0) {
    EXPECT_EQ(data[1], "\"Test Passed: wrote, read back and removed 4096 bytes in /\"");
    EXPECT_EQ(loopsPassed[1], "1");
  } else {
    EXPECT_EQ(data[1].rfind("\"Skipped: / is ", 0), 0U) << data[1];
    EXPECT_EQ(loopsPassed[1], "0");
  }
  EXPECT_EQ(ValuesOf(result.out, "LoopsFailed")[1], "0");
  EXPECT_EQ(ValuesOf(result.out, "ErrorCode").back(), "NULL");
}

// What a real CIMOM does to the example that the other tests do not: a
// client that writes the keys in another order (SFCB passes them on as
// written), and an idle-unload sweep, which the provider refuses so that
// its records stay.
TEST(ExampleCommandTest, KeysInAnyOrderReachTheirObjectsAndAnIdleUnloadIsRefused) {
  const std::string reversedService =
      R"(FSD_FileSystemDiagnosticService.CreationClassName="FSD_FileSystemDiagnosticService",)"
      R"(systemname=")" +
      HostName() + R"(",SystemCreationClassName="TORSK_ComputerSystem",NAME="FreeSpaceCheck")";
  const std::string reversedRoot =
      R"(FSD_MountedFileSystem.SystemName=")" + HostName() +
      R"(",DeviceID="/",SystemCreationClassName="TORSK_ComputerSystem",)"
      R"(CreationClassName="FSD_MountedFileSystem")";
  const ProgramResult result =
      RunScript("gi '" + reversedService + "'\n" + RunLine("FreeSpaceCheck", reversedRoot) +
                "cm '" + reversedService + "' RunDiagnostic 'ManagedElement=" + reversedRoot +
                "'\nain '" + reversedRoot + "'\nunload-idle\nein FSD_FileSystemDiagnosticRecord\n");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> lines = Lines(result.out);
  EXPECT_EQ(ValuesOf(result.out, "Name"), std::vector<std::string>{"\"FreeSpaceCheck\""});
  EXPECT_EQ(Captures(lines, std::regex(R"re(^(ReturnValue) = [04]$)re")),
            std::vector<std::string>(2, "ReturnValue"));
  EXPECT_EQ(
      Captures(
          lines,
          std::regex(
              R"re(^//localhost/root/cimv2:FSD_FileSystemDiagnosticService.*[.,]Name="(\w+)")re")),
      (std::vector<std::string>{"FreeSpaceCheck", "WriteReadCheck"}));
  EXPECT_EQ(
      Captures(lines,
               std::regex(R"re(^provider (\w+), \w+ MI: CMPI_RC_NEVER_UNLOAD, stays loaded$)re"))
          .size(),
      4U);
  EXPECT_EQ(
      Captures(lines,
               std::regex(R"re(^(//localhost/root/cimv2:FSD_FileSystemDiagnosticRecord)\.)re"))
          .size(),
      2U);
}

}  // namespace
}  // namespace e2e
