// The test plug-in as a CIMOM meets it: libdiagtestplugin.so registered by
// its stanza file, its factories found by name, its start-up run by the
// first factory call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ProviderHost.h"
#include "support/Traces.h"

namespace diagcore_test {
namespace {

using cmpihost::Reply;
using ::testing::ElementsAre;
using ::testing::SizeIs;

const std::string kPluginDir = DIAGTESTPLUGIN_DIR;

std::string ServicePath(const std::string& name) {
  return R"(root/cimv2:DTP_DiagService.CreationClassName="DTP_DiagService",Name=")" + name +
         R"(",SystemCreationClassName="TORSK_ComputerSystem",SystemName="testhost.example")";
}

std::string DevicePath(const std::string& deviceId) {
  return R"(root/cimv2:DTP_Device.CreationClassName="DTP_Device",DeviceID=")" + deviceId +
         R"(",SystemCreationClassName="TORSK_ComputerSystem",SystemName="testhost.example")";
}

class PluginLibraryTest : public ::testing::Test {
 protected:
  PluginLibraryTest() : provider_(Options()) {
    host().loadRegistrationFile(kPluginDir + "/diagtestplugin.reg", {kPluginDir});
    host().activateProviders();
  }

  static ProviderHostOptions Options() {
    ProviderHostOptions options;
    options.projectSchema = true;
    options.mofFiles = {kPluginDir + "/diagtestplugin.mof"};
    return options;
  }

  cmpihost::Host& host() { return provider_.host(); }

  ProviderHost provider_;
};

TEST_F(PluginLibraryTest, TheLoadedPluginServesWhatItsStartupRegistered) {
  std::vector<std::string> names;
  for (const auto& service :
       host().enumerateInstances("root/cimv2", "DTP_DiagService").instances()) {
    names.push_back(service.find("Name")->text);
  }
  EXPECT_THAT(names, ElementsAre("Failing", "Passing", "Throwing"));
  EXPECT_THAT(host().enumerateInstances("root/cimv2", "DTP_DiagSettingData").instances(),
              SizeIs(3));
  EXPECT_THAT(host().enumerateInstances("root/cimv2", "DTP_DiagCapabilities").instances(),
              SizeIs(3));
  EXPECT_THAT(host().enumerateInstanceNames("root/cimv2", "DTP_AvailableDiagnosticService").paths(),
              SizeIs(9));
}

TEST_F(PluginLibraryTest, RunDiagnosticThroughTheLoadedPluginLeavesARecord) {
  const Reply run = host().invokeMethod(
      ServicePath("Failing"), "RunDiagnostic",
      {cmpihost::Argument{"ManagedElement", DevicePath("disk2"), std::nullopt}});
  EXPECT_EQ(run.status.rc, CMPI_RC_OK);
  ASSERT_THAT(run.data(), SizeIs(1));
  EXPECT_EQ(run.data()[0].uint, 4U);

  const std::vector<cmpihost::InstanceSnapshot> records =
      host().enumerateInstances("root/cimv2", "DTP_DiagServiceRecord").instances();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_EQ(records[0].find("ManagedElementName")->text, "disk2");
  EXPECT_EQ(records[0].find("ErrorCode")->toMof(), "{\"E042\"}");

  cmpihost::AssociationFilter filter;
  filter.assocClass = "DTP_AvailableDiagnosticService";
  filter.role = "UserOfService";
  EXPECT_THAT(host().associatorNames(DevicePath("disk2"), filter).paths(), SizeIs(3));

  const Reply thrown = host().invokeMethod(
      ServicePath("Throwing"), "RunDiagnostic",
      {cmpihost::Argument{"ManagedElement", DevicePath("disk2"), std::nullopt}});
  EXPECT_EQ(thrown.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(thrown.status.message, "InvokeMethod failed: the test rig fell over");
}

}  // namespace
}  // namespace diagcore_test
