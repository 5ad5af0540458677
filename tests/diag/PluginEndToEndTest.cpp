// The test plug-in driven through the host as a CIMOM drives a provider:
// start-up through the provider macro, enumerations, RunDiagnostic and the
// records it leaves, and bad input to RunDiagnostic.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diag/DiagHost.h"
#include "plugin/DiagTestPlugin.h"

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using cmpihost::Reply;
using cmpihost::ResultEvent;
using diagtestplugin::StartedService;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr auto kData = ResultEvent::Kind::kData;
constexpr auto kDone = ResultEvent::Kind::kDone;

std::vector<ResultEvent::Kind> Kinds(const Reply& reply) {
  std::vector<ResultEvent::Kind> kinds;
  for (const ResultEvent& event : reply.events) {
    kinds.push_back(event.kind);
  }
  return kinds;
}

std::vector<std::string> Texts(const std::vector<InstanceSnapshot>& instances,
                               const std::string& property) {
  std::vector<std::string> texts;
  for (const InstanceSnapshot& instance : instances) {
    texts.push_back(Prop(instance, property).toMof());
  }
  return texts;
}

// One property as the client sees it: its CIM type and its MOF literal.

std::string Quote(const std::string& text) {
  return "\"" + text + "\"";
}

class PluginEndToEndTest : public PluginHostTest {};

TEST_F(PluginEndToEndTest, StartupRegistersServicesWithTheirSettingsCapabilitiesAndAssociations) {
  const Reply services = host().enumerateInstances("root/cimv2", "DTP_DiagService");
  EXPECT_EQ(services.status.rc, CMPI_RC_OK);
  EXPECT_THAT(Texts(services.instances(), "Name"),
              ElementsAre("\"Failing\"", "\"Passing\"", "\"Throwing\""));
  const Reply serviceNames = host().enumerateInstanceNames("root/cimv2", "DTP_DiagService");
  EXPECT_THAT(serviceNames.paths(), ElementsAre("//localhost/" + ServicePath("Failing"),
                                                "//localhost/" + ServicePath("Passing"),
                                                "//localhost/" + ServicePath("Throwing")));

  EXPECT_THAT(Texts(host().enumerateInstances("root/cimv2", "DTP_DiagSettingData").instances(),
                    "InstanceID"),
              ElementsAre("\"DTP:Setting:Failing\"", "\"DTP:Setting:Passing\"",
                          "\"DTP:Setting:Throwing\""));
  EXPECT_THAT(Texts(host().enumerateInstances("root/cimv2", "DTP_DiagCapabilities").instances(),
                    "InstanceID"),
              ElementsAre("\"DTP:Capabilities:Failing\"", "\"DTP:Capabilities:Passing\"",
                          "\"DTP:Capabilities:Throwing\""));

  // Served in the order the availability factory numbered them: by service
  // in creation order, then by device in the broker's enumeration order.
  const std::vector<InstanceSnapshot> associations =
      host().enumerateInstances("root/cimv2", "DTP_AvailableDiagnosticService").instances();
  EXPECT_THAT(Texts(associations, "EnumOrder"),
              ElementsAre("10", "15", "20", "110", "115", "120", "210", "215", "220"));
  const std::vector<std::string> services3 = {"Passing", "Failing", "Throwing"};
  const std::vector<std::string> devices = {"disk0", "disk1", "disk2"};
  ASSERT_THAT(associations, SizeIs(9));
  for (std::size_t i = 0; i < associations.size(); ++i) {
    const InstanceSnapshot& association = associations[i];
    EXPECT_EQ(Prop(association, "ServiceProvided").type, CMPI_ref);
    EXPECT_EQ(Prop(association, "ServiceProvided").text,
              "//localhost/" + ServicePath(services3[i / 3]));
    EXPECT_EQ(Prop(association, "UserOfService").text, "//localhost/" + DevicePath(devices[i % 3]));
    EXPECT_EQ(Prop(association, "EstimatedDurationOfService").toMof(), "3");
    EXPECT_EQ(Prop(association, "EstimatedDurationQualifier").toMof(), "0");
  }
}

TEST_F(PluginEndToEndTest, ServicesCarryTheSixteenPropertiesAndThePluginsTexts) {
  const Reply reply = host().getInstance(ServicePath("Passing"));
  ASSERT_EQ(reply.status.rc, CMPI_RC_OK);
  ASSERT_THAT(reply.instances(), SizeIs(1));
  const std::string installed = CimDateTime(FixedTime());
  ExpectProperties(reply.instances()[0],
                   {{"InstallDate", CMPI_dateTime, Quote(installed)},
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
  ASSERT_THAT(Kinds(run), ElementsAre(kData, kDone));
  EXPECT_EQ(run.events[0].data.type, CMPI_uint32);
  EXPECT_EQ(run.events[0].data.uint, 4U);

  const std::vector<TraceLine> traces = TakeTraces();
  ASSERT_THAT(traces, SizeIs(::testing::Gt(3U)));
  EXPECT_EQ(traces[0], Debug("+++ InvokeMethod"));
  EXPECT_EQ(traces[1], Debug("^^^^ opString = " + DeviceText("disk1")));
  const std::string now = CimDateTime(FixedTime());
  const std::string instanceId = "DTP_DiagService:Failing:" + now;
  EXPECT_EQ(traces.back(),
            Debug(">>>>> Registered DTP_DiagServiceRecord.InstanceID=\"" + instanceId + "\""));

  // The test was handed the element's class and keys, and a record holding
  // only its defaults.
  const std::vector<diagtestplugin::TestRun> runs = StartedService("Failing")->runs();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].elementClass, "DTP_Device");
  EXPECT_EQ(runs[0].element,
            (std::map<std::string, std::string>{{"CreationClassName", "DTP_Device"},
                                                {"DeviceID", "disk1"},
                                                {"SystemCreationClassName", "TORSK_ComputerSystem"},
                                                {"SystemName", "testhost.example"}}));
  EXPECT_EQ(runs[0].record, (std::map<std::string, std::string>{{"Locale", "en"},
                                                                {"LoopsFailed", "0"},
                                                                {"LoopsPassed", "0"},
                                                                {"RecordFormat", ""},
                                                                {"RecordType", "2"}}));

  const std::vector<InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  const std::vector<Expected> expected = {
      {"Caption", CMPI_string, "\"Result for Failing test\""},
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
      {"RecordData", CMPI_string, "\"Sector 7 unreadable\""}};
  ExpectProperties(records[0], expected);
  EXPECT_EQ(records[0].path, "//localhost/" + RecordPath(instanceId));

  const Reply got = host().getInstance(RecordPath(instanceId));
  EXPECT_EQ(got.status.rc, CMPI_RC_OK);
  ASSERT_THAT(got.instances(), SizeIs(1));
  ExpectProperties(got.instances()[0], expected);
}

TEST_F(PluginEndToEndTest, APassingRunRecordsPassValuesAndNoErrorCode) {
  const Reply run = Run("Passing", DevicePath("disk0"));
  EXPECT_EQ(run.status.rc, CMPI_RC_OK);
  ASSERT_THAT(run.data(), SizeIs(1));
  EXPECT_EQ(run.data()[0].uint, 0U);

  const std::vector<InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  ExpectProperties(records[0], {{"LoopsPassed", CMPI_uint32, "3"},
                                {"LoopsFailed", CMPI_uint32, "0"},
                                {"ErrorCount", CMPI_uint32A, "{0}"},
                                {"ErrorCode", CMPI_stringA, "NULL"},
                                {"RecordData", CMPI_string, "\"Test Passed\""},
                                {"ManagedElementName", CMPI_string, "\"disk0\""},
                                {"ServiceName", CMPI_string, "\"Passing\""}});
}

TEST_F(PluginEndToEndTest, TwoRunsLeaveTwoRecords) {
  AdvanceClockPerCall();
  const std::string first = CimDateTime(FixedTime());
  const std::string second = CimDateTime(FixedTime() + std::chrono::seconds(1));
  EXPECT_EQ(Run("Failing", DevicePath("disk0")).status.rc, CMPI_RC_OK);
  EXPECT_EQ(Run("Failing", DevicePath("disk2")).status.rc, CMPI_RC_OK);

  const std::vector<InstanceSnapshot> records = Records();
  EXPECT_THAT(Texts(records, "InstanceID"),
              ElementsAre(Quote("DTP_DiagService:Failing:" + first),
                          Quote("DTP_DiagService:Failing:" + second)));
  EXPECT_THAT(Texts(records, "ManagedElementName"), ElementsAre("\"disk0\"", "\"disk2\""));
  EXPECT_THAT(Texts(records, "CreationTimeStamp"), ElementsAre(Quote(first), Quote(second)));
  EXPECT_THAT(host().enumerateInstanceNames("root/cimv2", "DTP_DiagServiceRecord").paths(),
              SizeIs(2));
}

TEST_F(PluginEndToEndTest, AnUnknownMethodNameGives17AndChangesNothing) {
  TakeTraces();
  for (const char* method : {"runDiagnostic", "RUNDIAGNOSTIC", "RunDiagnostics", "StartService"}) {
    const Reply reply =
        host().invokeMethod(ServicePath("Passing"), method,
                            {cmpihost::Argument{"ManagedElement", DevicePath("disk0"), CMPI_ref}});
    EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND) << method;
    EXPECT_FALSE(reply.status.hasMessage) << method;
    EXPECT_THAT(reply.events, IsEmpty()) << method;
  }
  EXPECT_EQ(TakeTraces(), Repeat({Debug("+++ InvokeMethod")}, 4));
  EXPECT_THAT(Records(), IsEmpty());
  EXPECT_THAT(StartedService("Passing")->runs(), IsEmpty());
}

TEST_F(PluginEndToEndTest, RunDiagnosticNeedsAManagedElementReference) {
  TakeTraces();
  const std::vector<std::vector<cmpihost::Argument>> badArguments = {
      {},
      {cmpihost::Argument{"ManagedElement", DevicePath("disk0"), CMPI_string}},
      {cmpihost::Argument{"ManagedElement", "7", CMPI_uint32}},
      {cmpihost::Argument{"Element", DevicePath("disk0"), CMPI_ref}}};
  for (const std::vector<cmpihost::Argument>& arguments : badArguments) {
    const Reply reply = host().invokeMethod(ServicePath("Passing"), "RunDiagnostic", arguments);
    EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_TRUE(reply.status.hasMessage);
    EXPECT_EQ(reply.status.message, "RunDiagnostic needs a ManagedElement reference");
    EXPECT_THAT(reply.events, IsEmpty());
  }
  EXPECT_EQ(TakeTraces(), Repeat({Debug("+++ InvokeMethod")}, 4));
  EXPECT_THAT(StartedService("Passing")->runs(), IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(PluginEndToEndTest, AnElementWithoutDeviceIdGivesAnEmptyManagedElementName) {
  const std::string system =
      "root/cimv2:TORSK_ComputerSystem.CreationClassName=\"TORSK_ComputerSystem\","
      "Name=\"testhost.example\"";
  const Reply run = Run("Passing", system);
  EXPECT_EQ(run.status.rc, CMPI_RC_OK);

  const std::vector<diagtestplugin::TestRun> runs = StartedService("Passing")->runs();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].elementClass, "TORSK_ComputerSystem");
  EXPECT_EQ(runs[0].element,
            (std::map<std::string, std::string>{{"CreationClassName", "TORSK_ComputerSystem"},
                                                {"Name", "testhost.example"}}));
  const std::vector<InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_EQ(Prop(records[0], "ManagedElementName").toMof(), "\"\"");
}

TEST_F(PluginEndToEndTest, AThrowingTestFailsTheCallAndLeavesTheRegistryIntact) {
  TakeTraces();
  const Reply run = Run("Throwing", DevicePath("disk0"));
  EXPECT_EQ(run.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_TRUE(run.status.hasMessage);
  EXPECT_EQ(run.status.message, "InvokeMethod failed: the test rig fell over");
  EXPECT_THAT(run.events, IsEmpty());
  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ InvokeMethod"),
                                    Debug("^^^^ opString = " + DeviceText("disk0"))}));
  EXPECT_THAT(StartedService("Throwing")->runs(), SizeIs(1));

  EXPECT_THAT(Records(), IsEmpty());
  EXPECT_THAT(host().enumerateInstances("root/cimv2", "DTP_DiagService").instances(), SizeIs(3));
  EXPECT_THAT(host().enumerateInstances("root/cimv2", "DTP_AvailableDiagnosticService").instances(),
              SizeIs(9));
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

TEST_F(PluginEndToEndTest, RunDiagnosticOnAnUnregisteredServiceIsNotFound) {
  const Reply reply = Run("Nobody", DevicePath("disk0"));
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_THAT(reply.events, IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
