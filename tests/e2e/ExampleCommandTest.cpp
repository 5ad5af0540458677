// cmpihost run on the example plug-in as deployed (its MOF and registration
// file, the built library): what it offers, which file systems it serves and
// offers its services to, and the records runs leave. Outputs are compared
// exactly after masking date-times and the host name; where the machine's
// mounts decide the text, the test masks it.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
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
  std::vector<std::string> ids =
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

TEST(ExampleCommandTest, ServesTheRootFileSystem) {
  const std::vector<std::string> ids = ServedFileSystems();
  EXPECT_NE(std::find(ids.begin(), ids.end(), "/"), ids.end());
  EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end())) << "served in path text order";

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

// Text for people and JSON for programs, each line of the script one
// document: the return values, then the records with every kind of value.
TEST(ExampleCommandTest, RunsThatCannotTestLeaveFailedRecordsThatSayWhy) {
  const std::string script =
      RunLine("FreeSpaceCheck", FileSystemPath(kMissing)) +
      RunLine("WriteReadCheck", FileSystemPath(kMissing)) +
      RunLine("FreeSpaceCheck",
              "FSD_MountedFileSystem.CreationClassName=\"FSD_MountedFileSystem\"") +
      RunLine("WriteReadCheck", R"(TORSK_ComputerSystem.Name=")" + HostName() +
                                    R"(",CreationClassName="TORSK_ComputerSystem")") +
      "ei FSD_FileSystemDiagnosticRecord\n";
  for (const char* format : {"txt", "json"}) {
    const ScratchDir scratch;
    std::vector<std::string> args = {"run", scratch.write("test.cmpihost", script)};
    if (std::string(format) == "json") {
      args.insert(args.begin(), "--json");
    }
    const ProgramResult result = RunOnExample(args);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    ExpectGolden(Masked(result.out, HostName()), std::string("example-failed-runs.") + format);
  }
}

}  // namespace
}  // namespace e2e
