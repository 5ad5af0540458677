// cmpihost run on the test plug-in (tests/plugin, libdiagtestplugin.so):
// a whole session in one process, compared exactly but for date-times. Its
// system name and devices are fixed, so unlike the example nothing here
// depends on the machine.
#include <gtest/gtest.h>

#include <string>

#include "E2eSupport.h"

namespace e2e {
namespace {

const char* const kService =
    "DTP_DiagService.Name=\"%s\",SystemCreationClassName=\"TORSK_ComputerSystem\","
    "SystemName=\"testhost.example\",CreationClassName=\"DTP_DiagService\"";
const char* const kDevice =
    "DTP_Device.SystemCreationClassName=\"TORSK_ComputerSystem\",SystemName=\"testhost.example\","
    "CreationClassName=\"DTP_Device\",DeviceID=\"%s\"";

std::string Fill(const char* pattern, const std::string& name) {
  std::string text = pattern;
  return text.replace(text.find("%s"), 2, name);
}

std::string RunLine(const std::string& service, const std::string& device) {
  return "cm '" + Fill(kService, service) +
         "' RunDiagnostic 'ManagedElement=" + Fill(kDevice, device) + "'\n";
}

TEST(TestPluginCommandTest, ASessionOfServicesAvailabilityRunsAndRecords) {
  const ScratchDir scratch;
  const std::string script = scratch.write(
      "session.cmpihost",
      "echo == services ==\n"
      "ein DTP_DiagService\n"
      "echo == settings ==\n"
      "ein DTP_DiagSettingData\n"
      "echo == available to disk1 ==\n"
      "ain '" +
          Fill(kDevice, "disk1") +
          "' --assoc-class DTP_AvailableDiagnosticService\n"
          "echo == runs ==\n" +
          RunLine("Passing", "disk0") + RunLine("Failing", "disk1") + RunLine("Throwing", "disk2") +
          "echo == records ==\n"
          "ei DTP_DiagServiceRecord\n");
  const ProgramResult result = RunOnTestPlugin({"run", script});
  // The throwing test fails its request; the script goes on, and exits 1.
  EXPECT_EQ(result.exitCode, 1);
  // Line 10 of the script is the throwing run; the library's own "InvokeMethod
  // failed: " before the exception's text is not said twice.
  EXPECT_EQ(result.err, "cmpihost: " + script +
                            ":10: InvokeMethod failed: CMPI_RC_ERR_FAILED (1): the test rig fell "
                            "over\n");
  ExpectGolden(MaskedDates(result.out), "testplugin-session.txt");
}

}  // namespace
}  // namespace e2e
