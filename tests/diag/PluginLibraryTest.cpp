// The test plug-in as a CIMOM meets it: libdiagtestplugin.so registered by
// its stanza file, its factories found by name, its start-up run by the
// first factory call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ProviderHost.h"

namespace diagcore_test {
namespace {

using cmpihost::Reply;
using ::testing::SizeIs;

const std::string kPluginDir = DIAGTESTPLUGIN_DIR;
const std::string kKeys =
    R"(SystemCreationClassName="TORSK_ComputerSystem",SystemName="testhost.example")";

// Keys in the classes' declaration order, as the plug-in registered them.
std::string ServicePath(const std::string& name) {
  return R"(root/cimv2:DTP_DiagService.Name=")" + name + "\"," + kKeys +
         R"(,CreationClassName="DTP_DiagService")";
}

std::string DevicePath(const std::string& deviceId) {
  return "root/cimv2:DTP_Device." + kKeys + R"(,CreationClassName="DTP_Device",DeviceID=")" +
         deviceId + "\"";
}

ProviderHostOptions Options() {
  ProviderHostOptions options;
  options.projectSchema = true;
  options.mofFiles = {kPluginDir + "/diagtestplugin.mof"};
  return options;
}

TEST(PluginLibraryTest, TheLoadedPluginServesWhatItsStartupRegisteredAndRuns) {
  ProviderHost provider(Options());
  cmpihost::Host& host = provider.host();
  host.loadRegistrationFile(kPluginDir + "/diagtestplugin.reg", {kPluginDir});
  host.activateProviders();

  EXPECT_THAT(host.enumerateInstances("root/cimv2", "DTP_DiagService").instances(), SizeIs(3));
  EXPECT_THAT(host.enumerateInstances("root/cimv2", "DTP_DiagSettingData").instances(), SizeIs(3));
  EXPECT_THAT(host.enumerateInstances("root/cimv2", "DTP_DiagCapabilities").instances(), SizeIs(3));
  cmpihost::AssociationFilter filter;
  filter.assocClass = "DTP_AvailableDiagnosticService";
  filter.role = "UserOfService";
  EXPECT_THAT(host.associatorNames(DevicePath("disk2"), filter).paths(), SizeIs(3));

  const auto run = [&](const std::string& service) {
    return host.invokeMethod(
        ServicePath(service), "RunDiagnostic",
        {cmpihost::Argument{"ManagedElement", DevicePath("disk2"), std::nullopt}});
  };
  const Reply failing = run("Failing");
  EXPECT_EQ(failing.status.rc, CMPI_RC_OK);
  ASSERT_THAT(failing.data(), SizeIs(1));
  EXPECT_EQ(failing.data()[0].uint, 4U);
  const std::vector<cmpihost::InstanceSnapshot> records =
      host.enumerateInstances("root/cimv2", "DTP_DiagServiceRecord").instances();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_EQ(records[0].find("ManagedElementName")->text, "disk2");
  EXPECT_EQ(records[0].find("ErrorCode")->toMof(), "{\"E042\"}");

  const Reply thrown = run("Throwing");
  EXPECT_EQ(thrown.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(thrown.status.message, "InvokeMethod failed: the test rig fell over");
}

}  // namespace
}  // namespace diagcore_test
