// The test plug-in driven through the host as a CIMOM drives a provider:
// start-up through the provider macro, enumerations, RunDiagnostic and the
// records it leaves, and a test that throws.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "plugin/DiagTestPlugin.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using cmpihost::Reply;
using cmpihost::ResultEvent;
using diagtestplugin::StartedService;
using Properties = std::map<std::string, std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::string> Texts(const std::vector<InstanceSnapshot>& instances,
                               const std::string& property) {
  std::vector<std::string> texts;
  for (const InstanceSnapshot& instance : instances) {
    texts.push_back(Prop(instance, property).toMof());
  }
  return texts;
}

std::string Quote(const std::string& text) {
  return "\"" + text + "\"";
}

class PluginEndToEndTest : public PluginHostTest {
 protected:
  std::vector<InstanceSnapshot> All(const std::string& className) {
    return host().enumerateInstances("root/cimv2", className).instances();
  }
};

TEST_F(PluginEndToEndTest, StartupRegistersServicesWithTheirSettingsCapabilitiesAndAssociations) {
  EXPECT_THAT(Texts(All("DTP_DiagService"), "Name"),
              ElementsAre("\"Failing\"", "\"Passing\"", "\"Throwing\""));
  EXPECT_THAT(
      host().enumerateInstanceNames("root/cimv2", "DTP_DiagService").paths(),
      ElementsAre("//localhost/" + ServicePath("Failing"), "//localhost/" + ServicePath("Passing"),
                  "//localhost/" + ServicePath("Throwing")));
  EXPECT_THAT(Texts(All("DTP_DiagSettingData"), "InstanceID"),
              ElementsAre("\"DTP:Setting:Failing\"", "\"DTP:Setting:Passing\"",
                          "\"DTP:Setting:Throwing\""));
  EXPECT_THAT(Texts(All("DTP_DiagCapabilities"), "InstanceID"),
              ElementsAre("\"DTP:Capabilities:Failing\"", "\"DTP:Capabilities:Passing\"",
                          "\"DTP:Capabilities:Throwing\""));

  // A service as the client sees it: the library's sixteen and the plug-in's texts.
  const Reply service = host().getInstance(ServicePath("Passing"));
  ASSERT_THAT(service.instances(), SizeIs(1));
  ExpectProperties(service.instances()[0],
                   {{"InstallDate", CMPI_dateTime, Quote(CimDateTime(FixedTime()))},
                    {"OperationalStatus", CMPI_uint16A, "{2}"},
                    {"StatusDescriptions", CMPI_stringA, "{\"Status OK\"}"},
                    {"Status", CMPI_string, "\"OK\""},
                    {"EnabledState", CMPI_uint16, "2"},
                    {"OtherEnabledState", CMPI_string, "\"Enabled\""},
                    {"RequestedState", CMPI_uint16, "5"},
                    {"EnabledDefault", CMPI_uint16, "2"},
                    {"TimeOfLastStateChange", CMPI_dateTime, "NULL"},
                    {"SystemCreationClassName", CMPI_string, "\"TORSK_ComputerSystem\""},
                    {"SystemName", CMPI_string, "\"testhost.example\""},
                    {"CreationClassName", CMPI_string, "\"DTP_DiagService\""},
                    {"PrimaryOwnerName", CMPI_string, "\"Velmora\""},
                    {"PrimaryOwnerContact", CMPI_string, "\"Velmora\""},
                    {"StartMode", CMPI_string, "\"Automatic\""},
                    {"Started", CMPI_boolean, "TRUE"},
                    {"Name", CMPI_string, "\"Passing\""},
                    {"Caption", CMPI_string, "\"Passing test\""},
                    {"Description", CMPI_string, "\"Passing test of the test plug-in\""},
                    {"ElementName", CMPI_string, "\"Passing diagnostic\""}});
}

TEST_F(PluginEndToEndTest, RunDiagnosticReturnsTheTestsValueThenTheRecordIsServed) {
  TakeTraces();
  const Reply run = Run("Failing", DevicePath("disk1"));
  EXPECT_EQ(run.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(run.status.hasMessage);
  ASSERT_THAT(Kinds(run), ElementsAre(ResultEvent::Kind::kData, ResultEvent::Kind::kDone));
  EXPECT_EQ(run.events[0].data.type, CMPI_uint32);
  EXPECT_EQ(run.events[0].data.uint, 4U);

  EXPECT_EQ(TakeTraces().at(0), Debug("+++ InvokeMethod"));
  const std::string now = CimDateTime(FixedTime());
  const std::string instanceId = "DTP_DiagService:Failing:" + now;

  // The test was handed the element's class and keys, and a record holding
  // only its defaults.
  const std::vector<diagtestplugin::TestRun> runs = StartedService("Failing")->runs();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].elementClass, "DTP_Device");
  EXPECT_EQ(runs[0].element, (Properties{{"CreationClassName", "DTP_Device"},
                                         {"DeviceID", "disk1"},
                                         {"SystemCreationClassName", "TORSK_ComputerSystem"},
                                         {"SystemName", "testhost.example"}}));
  EXPECT_EQ(runs[0].record, (Properties{{"Locale", "en"},
                                        {"LoopsFailed", "0"},
                                        {"LoopsPassed", "0"},
                                        {"RecordFormat", ""},
                                        {"RecordType", "2"}}));

  const Reply got = host().getInstance(RecordPath(instanceId));
  EXPECT_EQ(got.status.rc, CMPI_RC_OK);
  ASSERT_THAT(got.instances(), SizeIs(1));
  EXPECT_EQ(got.instances()[0].path, "//localhost/" + RecordPath(instanceId));
  ExpectProperties(got.instances()[0],
                   {{"Caption", CMPI_string, "\"Result for Failing test\""},
                    {"Description", CMPI_string, "\"Result for Failing test of the test plug-in\""},
                    {"ElementName", CMPI_string, "\"Result for Failing diagnostic\""},
                    {"ServiceName", CMPI_string, "\"Failing\""},
                    {"ManagedElementName", CMPI_string, "\"disk1\""},
                    {"InstanceID", CMPI_string, Quote(instanceId)},
                    {"CreationTimeStamp", CMPI_dateTime, Quote(now)},
                    {"RecordFormat", CMPI_string, "\"\""},
                    {"Locale", CMPI_string, "\"en\""},
                    {"RecordType", CMPI_uint16, "2"},
                    {"LoopsFailed", CMPI_uint32, "2"},
                    {"LoopsPassed", CMPI_uint32, "0"},
                    {"ErrorCode", CMPI_stringA, "{\"E042\"}"},
                    {"ErrorCount", CMPI_uint32A, "{5}"},
                    {"RecordData", CMPI_string, "\"Sector 7 unreadable\""}});
}

TEST_F(PluginEndToEndTest, RunsAtDifferentTimesLeaveARecordEach) {
  AdvanceClockPerCall();
  const std::string first = CimDateTime(FixedTime());
  const std::string second = CimDateTime(FixedTime() + std::chrono::seconds(1));
  const Reply run = Run("Passing", DevicePath("disk0"));
  ASSERT_THAT(run.data(), SizeIs(1)) << run.status.message;
  EXPECT_EQ(run.data()[0].uint, 0U);
  const std::string system =
      "root/cimv2:TORSK_ComputerSystem.Name=\"testhost.example\","
      "CreationClassName=\"TORSK_ComputerSystem\"";
  EXPECT_EQ(Run("Passing", system).status.rc, CMPI_RC_OK);

  const std::vector<InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(2));
  EXPECT_THAT(Texts(records, "InstanceID"),
              ElementsAre(Quote("DTP_DiagService:Passing:" + first),
                          Quote("DTP_DiagService:Passing:" + second)));
  EXPECT_THAT(Texts(records, "CreationTimeStamp"), ElementsAre(Quote(first), Quote(second)));
  // A passing run records pass values and no error code.
  ExpectProperties(records[0], {{"LoopsPassed", CMPI_uint32, "3"},
                                {"LoopsFailed", CMPI_uint32, "0"},
                                {"ErrorCount", CMPI_uint32A, "{0}"},
                                {"ErrorCode", CMPI_stringA, "NULL"},
                                {"RecordData", CMPI_string, "\"Test Passed\""},
                                {"ManagedElementName", CMPI_string, "\"disk0\""}});
  // An element without a DeviceID gives an empty ManagedElementName.
  EXPECT_EQ(Prop(records[1], "ManagedElementName").toMof(), "\"\"");
  const std::vector<diagtestplugin::TestRun> runs = StartedService("Passing")->runs();
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[1].elementClass, "TORSK_ComputerSystem");
  EXPECT_EQ(runs[1].element, (Properties{{"CreationClassName", "TORSK_ComputerSystem"},
                                         {"Name", "testhost.example"}}));
}

TEST_F(PluginEndToEndTest, AThrowingTestFailsTheCallAndLeavesTheRegistryIntact) {
  TakeTraces();
  const Reply run = Run("Throwing", DevicePath("disk0"));
  EXPECT_EQ(run.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(run.status.message, "InvokeMethod failed: the test rig fell over");
  EXPECT_THAT(run.events, IsEmpty());
  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ InvokeMethod"),
                                    Debug("^^^^ opString = " + DeviceText("disk0"))}));
  EXPECT_THAT(Records(), IsEmpty());
  EXPECT_THAT(All("DTP_DiagService"), SizeIs(3));
  EXPECT_THAT(All("DTP_AvailableDiagnosticService"), SizeIs(9));

  // The same service still runs once its test stops throwing.
  diagtestplugin::Behaviour passing;
  passing.result = 9;
  StartedService("Throwing")->setBehaviour(passing);
  const Reply again = Run("Throwing", DevicePath("disk0"));
  EXPECT_EQ(again.status.rc, CMPI_RC_OK);
  ASSERT_THAT(again.data(), SizeIs(1));
  EXPECT_EQ(again.data()[0].uint, 9U);
  EXPECT_THAT(Records(), SizeIs(1));
}

// A call that names no element to test is the client's mistake: refused
// with a reason, before any test runs.
TEST_F(PluginEndToEndTest, RunDiagnosticWithoutAManagedElementReferenceIsRefused) {
  const std::vector<std::vector<cmpihost::Argument>> refused = {
      {},
      {cmpihost::Argument{"ManagedElement", DeviceText("disk0"), CMPI_string}},
  };
  for (const std::vector<cmpihost::Argument>& in : refused) {
    const Reply reply = host().invokeMethod(ServicePath("Passing"), "RunDiagnostic", in);
    EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_INVALID_PARAMETER) << in.size();
    EXPECT_EQ(reply.status.message, "RunDiagnostic needs a ManagedElement reference");
    EXPECT_THAT(reply.events, IsEmpty());
  }
  EXPECT_THAT(StartedService("Passing")->runs(), IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
