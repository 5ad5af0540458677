// The Diagnostics Profile. Navigation a profile client does: from a service
// to its setting data, capabilities and log, from the log to the records of
// its runs, from a record to the element it tested, and back, with the
// conformant associators and references; and what a plug-in that offers no
// profile keeps serving.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plugin/DiagTestPlugin.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// Path texts of the profile's objects of `service`.
std::string InstancePath(const std::string& className, const std::string& instanceId) {
  return "root/cimv2:" + className + ".InstanceID=\"" + instanceId + "\"";
}
std::string SettingPath(const std::string& service) {
  return InstancePath("DTP_DiagSettingData", "DTP:Setting:" + service);
}
std::string CapabilitiesPath(const std::string& service) {
  return InstancePath("DTP_DiagCapabilities", "DTP:Capabilities:" + service);
}
std::string LogPath(const std::string& service) {
  return InstancePath("PTP_DiagnosticLog", "PTP_DiagnosticLog:" + service);
}
// The record of `service`'s `run`th run at FixedTime().
std::string ProfileRecordPath(const std::string& service, int run) {
  return RecordPath("DTP_DiagService:" + service + ":" + CimDateTime(FixedTime()) + ":" +
                    std::to_string(run));
}

// Every profile option on: retention, no bound, RunDiagnosticService, PTP_*.
profiletestplugin::StartOptions AllOn() {
  profiletestplugin::StartOptions options;
  options.profile.classes = NQENDRA20::ProfileClasses::WithPrefix("PTP");
  options.profile.retention = true;
  options.profile.runDiagnosticService = true;
  return options;
}

std::vector<std::string> Summaries(const std::vector<cmpihost::InstanceSnapshot>& instances) {
  std::vector<std::string> summaries;
  for (const cmpihost::InstanceSnapshot& instance : instances) {
    summaries.push_back(ClassAndKey(instance));
  }
  return summaries;
}

// The profile test plug-in, started by Start().
class ProfileTest : public DiagHostTest {
 protected:
  ProfileTest() {
    host().loadMof(SourcePath("tests/profile/profiletestplugin.mof"));
    RegisterProfilePlugin(host());
  }

  void Start(const profiletestplugin::StartOptions& options) {
    profiletestplugin::NextStart() = options;
    host().activateProviders();
    host().clearLog();
  }

  cmpihost::Reply RunOn(const std::string& service, const std::string& device) {
    return Run(service, DevicePath(device));
  }

  cmpihost::Reply RunService(const std::string& service, const std::string& device,
                             std::vector<cmpihost::Argument> extra = {},
                             std::vector<cmpihost::Property>* out = nullptr) {
    std::vector<cmpihost::Argument> in = {
        cmpihost::Argument{"ManagedElement", DevicePath(device), std::nullopt}};
    in.insert(in.end(), extra.begin(), extra.end());
    return host().invokeMethod(ServicePath(service), "RunDiagnosticService", in, out);
  }

  // ClassAndKey of what the host delivers for each request.
  std::vector<std::string> Enumerate(const std::string& className) {
    return Summaries(host().enumerateInstances("root/cimv2", className).instances());
  }
  std::vector<std::string> Associators(const std::string& path, const std::string& assocClass) {
    cmpihost::AssociationFilter filter;
    filter.assocClass = assocClass;
    return Summaries(host().associators(path, filter).instances());
  }
  // The classes of the associations that reference `path`; a references
  // request names the association class as its result class.
  std::vector<std::string> References(const std::string& path, const std::string& assocClass) {
    cmpihost::AssociationFilter filter;
    filter.resultClass = assocClass;
    std::vector<std::string> classes;
    for (const cmpihost::InstanceSnapshot& instance : host().references(path, filter).instances()) {
      classes.push_back(instance.className);
    }
    return classes;
  }
};

struct Walk {
  std::string from;
  std::string assocClass;
  std::vector<std::string> to;
};

class NavigationTest : public ProfileTest {};

TEST_F(NavigationTest, EveryAssociationLeadsBothWaysAndOnlyToItsOwnService) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.retention = false;
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  const std::string service = "DTP_DiagService:Passing";
  const std::string record =
      "DTP_DiagServiceRecord:DTP_DiagService:Passing:" + CimDateTime(FixedTime()) + ":1";
  const std::string log = "PTP_DiagnosticLog:PTP_DiagnosticLog:Passing";
  const std::string run = ProfileRecordPath("Passing", 1);
  const Walk walks[] = {
      {ServicePath("Passing"), "ElementSettingData", {"DTP_DiagSettingData:DTP:Setting:Passing"}},
      {SettingPath("Passing"), "ElementSettingData", {service}},
      {ServicePath("Passing"),
       "ElementCapabilities",
       {"DTP_DiagCapabilities:DTP:Capabilities:Passing"}},
      {CapabilitiesPath("Passing"), "ElementCapabilities", {service}},
      {ServicePath("Passing"), "UseOfLog", {log}},
      {LogPath("Passing"), "UseOfLog", {service}},
      {LogPath("Passing"), "LogManagesRecord", {record}},
      {run, "LogManagesRecord", {log}},
      {run, "RecordAppliesToElement", {"DTP_Device:disk1"}},
      {DevicePath("disk1"), "RecordAppliesToElement", {record}},
      {DevicePath("disk0"), "RecordAppliesToElement", {}},
      {LogPath("Failing"), "LogManagesRecord", {}},
      {ServicePath("Failing"), "ElementSettingData", {"DTP_DiagSettingData:DTP:Setting:Failing"}},
  };
  // Asked by its CIM class, each association is the plug-in's PTP_ one.
  for (const Walk& walk : walks) {
    SCOPED_TRACE(walk.from + " " + walk.assocClass);
    EXPECT_THAT(Associators(walk.from, "CIM_" + walk.assocClass), ElementsAreArray(walk.to));
    const std::vector<std::string> expected(walk.to.size(), "PTP_" + walk.assocClass);
    EXPECT_THAT(References(walk.from, "CIM_" + walk.assocClass), ElementsAreArray(expected));
  }
  EXPECT_EQ(profiletestplugin::OfferAnswers(), "111");
}

TEST_F(NavigationTest, TheLogSaysHowItIsKeptAndTheAssociationsWhatTheyMean) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.recordBound = 25;
  Start(options);
  const cmpihost::Reply log = host().getInstance(LogPath("Passing"));
  ASSERT_EQ(log.status.rc, CMPI_RC_OK);
  ExpectProperties(log.instances().at(0), {{"ElementName", CMPI_string, "\"Log of Passing\""},
                                           {"MaxNumberOfRecords", CMPI_uint64, "25"},
                                           {"OverwritePolicy", CMPI_uint16, "2"},
                                           {"LogState", CMPI_uint16, "2"},
                                           {"EnabledState", CMPI_uint16, "2"}});
  cmpihost::AssociationFilter settings;
  settings.resultClass = "CIM_ElementSettingData";
  const std::vector<cmpihost::InstanceSnapshot> links =
      host().references(ServicePath("Passing"), settings).instances();
  ASSERT_EQ(links.size(), 1U);
  ExpectProperties(links[0], {{"IsDefault", CMPI_uint16, "1"}, {"IsCurrent", CMPI_uint16, "1"}});
}

TEST_F(NavigationTest, RecordsOfAServiceOfferedNoProfileKeepTheirOldKeysAndLinks) {
  profiletestplugin::StartOptions options = AllOn();
  options.offer = false;
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  EXPECT_THAT(
      Enumerate("DTP_DiagServiceRecord"),
      ElementsAre("DTP_DiagServiceRecord:DTP_DiagService:Passing:" + CimDateTime(FixedTime())));
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), IsEmpty());
  EXPECT_THAT(Enumerate("PTP_DiagnosticLog"), IsEmpty());
  EXPECT_EQ(RunService("Passing", "disk1").status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND);
}

struct Refusal {
  const char* name;
  void (*spoil)(profiletestplugin::StartOptions&);
  const char* reason;
};

class RefusedOfferTest : public ProfileTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(RefusedOfferTest, AServiceWhoseProfileCannotBeHonouredRunsWithoutItAndSaysWhy) {
  profiletestplugin::StartOptions options = AllOn();
  GetParam().spoil(options);
  profiletestplugin::NextStart() = options;
  host().activateProviders();
  EXPECT_EQ(profiletestplugin::OfferAnswers(), "000");
  const std::string expected = std::string("OfferDiagnosticsProfile: ") + GetParam().reason + "; " +
                               ServiceText("Passing") + " runs without the profile";
  EXPECT_THAT(TakeTraces(), ::testing::Contains(Warning(expected)));
  EXPECT_THAT(Enumerate("PTP_DiagnosticLog"), IsEmpty());
  EXPECT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, RefusedOfferTest,
    ::testing::Values(
        Refusal{"NoLogClass",
                [](profiletestplugin::StartOptions& o) { o.profile.classes.log.clear(); },
                "no class is named for log"},
        Refusal{"NoJobClassForJobs",
                [](profiletestplugin::StartOptions& o) { o.profile.classes.job.clear(); },
                "no class is named for job"},
        Refusal{"UnknownLogClass",
                [](profiletestplugin::StartOptions& o) { o.profile.classes.log = "PTP_Nowhere"; },
                "its log or an association could not be built"}),
    [](const ::testing::TestParamInfo<Refusal>& info) { return info.param.name; });

// Records that expire: the ExpirationDate a record gets from its service's
// ResultPersistence at every edge of its range, removal before the request
// that would serve an expired record (with its associations, nothing else),
// and the bound on the records a service keeps.

constexpr auto kCentury = std::chrono::hours(24 * 365 * 100);

struct Edge {
  const char* name;
  std::optional<std::string> persistence;
  std::string expirationDate;  // as MOF: the quoted date-time, or NULL
  // Clock offsets after the run, with the number of records kept then.
  std::vector<std::pair<microseconds, std::size_t>> kept;
  std::vector<TraceLine> warnings;
};

class PersistenceEdgeTest : public ProfileTest, public ::testing::WithParamInterface<Edge> {};

TEST_P(PersistenceEdgeTest, TheRecordIsKeptExactlyAsLongAsItsPersistenceSays) {
  const Edge& edge = GetParam();
  profiletestplugin::StartOptions options = AllOn();
  options.resultPersistence = edge.persistence;
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  std::vector<TraceLine> warnings;
  for (const TraceLine& line : TakeTraces()) {
    if (line.severity == kWarning) {
      warnings.push_back(line);
    }
  }
  EXPECT_EQ(warnings, edge.warnings);

  bool sawExpirationDate = false;
  for (const auto& [offset, count] : edge.kept) {
    SCOPED_TRACE(offset.count());
    SetClock(offset);
    const std::vector<cmpihost::InstanceSnapshot> records = Records();
    ASSERT_THAT(records, SizeIs(count));
    EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), SizeIs(count));
    EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), SizeIs(count));
    if (count != 0 && !sawExpirationDate) {
      EXPECT_EQ(Prop(records[0], "ExpirationDate").toMof(), edge.expirationDate);
      sawExpirationDate = true;
    }
  }
}

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

std::vector<TraceLine> NotSeconds(const std::string& text) {
  return {Warning("ResultPersistence \"" + text +
                  "\" of DTP_DiagSettingData.InstanceID=\"DTP:Setting:Passing\" is no number of "
                  "seconds: the record is kept")};
}

INSTANTIATE_TEST_SUITE_P(
    Edges, PersistenceEdgeTest,
    ::testing::Values(
        Edge{"Zero", "0", "", {{microseconds(0), 0}}, {}},
        Edge{"OneSecond",
             "1",
             Quoted(CimDateTime(FixedTime() + seconds(1))),
             {{microseconds(0), 1}, {microseconds(999999), 1}, {seconds(1), 0}},
             {}},
        Edge{"Default",
             "900",
             Quoted(CimDateTime(FixedTime() + seconds(900))),
             {{seconds(899), 1}, {seconds(900), 0}},
             {}},
        Edge{"Forever", "4294967295", "NULL", {{microseconds(0), 1}, {kCentury, 1}}, {}},
        Edge{"Absent", std::nullopt, "NULL", {{microseconds(0), 1}, {kCentury, 1}}, {}},
        Edge{"NotANumber", "abc", "NULL", {{kCentury, 1}}, NotSeconds("abc")},
        Edge{"BeyondThirtyTwoBits",
             "4294967296",
             "NULL",
             {{kCentury, 1}},
             NotSeconds("4294967296")}),
    [](const ::testing::TestParamInfo<Edge>& info) { return info.param.name; });

class RetentionTest : public ProfileTest {};

TEST_F(RetentionTest, AnExpiredRecordGoesWithItsAssociationsAndNothingElse) {
  profiletestplugin::StartOptions options = AllOn();
  options.resultPersistence = "1";
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  SetClock(std::chrono::milliseconds(500));
  ASSERT_EQ(RunOn("Passing", "disk2").status.rc, CMPI_RC_OK);
  const std::vector<std::string> before = Enumerate("DTP_DiagServiceRecord");
  ASSERT_THAT(before, SizeIs(2));
  TakeTraces();

  SetClock(seconds(1));
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), ElementsAre(before[1]));
  std::vector<TraceLine> removed = TakeTraces();
  ASSERT_THAT(removed, SizeIs(4));  // three removals, then the enumeration
  EXPECT_EQ(removed[0], Debug("<<<<< Removed " + ProfileRecordPath("Passing", 1).substr(11)));
  for (int i = 1; i < 3; ++i) {
    EXPECT_EQ(removed[i].text.rfind("<<<<< Removed PTP_", 0), 0U) << removed[i].text;
  }
  EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), ElementsAre(before[1]));
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), IsEmpty());
  EXPECT_THAT(Associators(DevicePath("disk2"), "CIM_RecordAppliesToElement"),
              ElementsAre(before[1]));
  EXPECT_THAT(Enumerate(diagtestplugin::kAvailabilityClass), SizeIs(9));
  EXPECT_THAT(Enumerate("PTP_ElementSettingData"), SizeIs(3));
  EXPECT_THAT(Enumerate("PTP_UseOfLog"), SizeIs(3));
}

TEST_F(RetentionTest, ABoundKeepsEachServicesNewestRecordsOnly) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.retention = false;
  options.profile.recordBound = 3;
  Start(options);
  for (int run = 0; run < 5; ++run) {
    ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  }
  ASSERT_EQ(RunOn("Failing", "disk1").status.rc, CMPI_RC_OK);
  const std::string passing =
      "DTP_DiagServiceRecord:DTP_DiagService:Passing:" + CimDateTime(FixedTime()) + ":";
  const std::string failing =
      "DTP_DiagServiceRecord:DTP_DiagService:Failing:" + CimDateTime(FixedTime()) + ":";
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"),
              ElementsAre(failing + "1", passing + "3", passing + "4", passing + "5"));
  EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), SizeIs(3));
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), SizeIs(4));
}

TEST_F(RetentionTest, WithoutRetentionRecordsCarryNoExpirationAndStay) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.retention = false;
  options.resultPersistence = "0";
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  SetClock(kCentury);
  const std::vector<cmpihost::InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_TRUE(Prop(records[0], "ExpirationDate").isNull());
}

// RunDiagnosticService: the job each outcome of the test leaves, its times
// and its associations to the service, the element and the record; the
// embedded settings it reads, and every way they can be wrong; jobs that
// expire with their records.

const char* const kSettings = "instance of CIM_DiagnosticSettingData { ";

class RunDiagnosticServiceTest : public ProfileTest {
 protected:
  // Runs `service` on disk1 with `extra` arguments; the job's path text, or
  // "" when the call returned no job.
  std::string RunForJob(const std::string& service, std::vector<cmpihost::Argument> extra = {}) {
    std::vector<cmpihost::Property> out;
    const cmpihost::Reply reply = RunService(service, "disk1", std::move(extra), &out);
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK) << reply.status.message;
    EXPECT_THAT(reply.data(), SizeIs(1));
    if (!reply.data().empty()) {
      EXPECT_EQ(reply.data()[0].toMof(), "0");
    }
    for (const cmpihost::Property& property : out) {
      if (property.name == "Job" && property.value.type == CMPI_ref) {
        return property.value.text;
      }
    }
    return "";
  }

  static cmpihost::Argument Settings(const std::string& text) {
    return cmpihost::Argument{"DiagnosticSettings", text, std::nullopt};
  }
};

struct Outcome {
  const char* service;
  const char* jobState;
  const char* jobStatus;
  const char* operationalStatus;
  const char* errorCode;
  const char* errorDescription;
  std::size_t records;
};

TEST_F(RunDiagnosticServiceTest, EachOutcomeLeavesACompletedJobLinkedToServiceElementAndRecord) {
  Start(AllOn());
  const Outcome outcomes[] = {
      {"Passing", "7", "\"Completed\"", "{17, 2}", "NULL", "NULL", 1},
      {"Failing", "10", "\"Exception\"", "{17, 6}", "4", "\"Sector 7 unreadable\"", 1},
      {"Throwing", "10", "\"Exception\"", "{17, 6}", "1",
       "\"The test failed to run: the test rig fell over\"", 0},
  };
  const std::string now = "\"" + CimDateTime(FixedTime()) + "\"";
  for (const Outcome& outcome : outcomes) {
    SCOPED_TRACE(outcome.service);
    const std::string job = RunForJob(outcome.service);
    ASSERT_NE(job, "");
    const cmpihost::Reply got = host().getInstance(job);
    ASSERT_EQ(got.status.rc, CMPI_RC_OK);
    const std::vector<cmpihost::InstanceSnapshot> instances = got.instances();
    ASSERT_THAT(instances, SizeIs(1));
    const cmpihost::InstanceSnapshot& instance = instances[0];
    EXPECT_EQ(instance.className, "PTP_ConcreteJob");
    ExpectProperties(
        instance,
        {{"InstanceID", CMPI_string, "\"PTP_ConcreteJob:" + std::string(outcome.service) + ":1\""},
         {"Name", CMPI_string, "\"" + std::string(outcome.service) + "\""},
         {"JobState", CMPI_uint16, outcome.jobState},
         {"JobStatus", CMPI_string, outcome.jobStatus},
         {"ErrorCode", CMPI_uint16, outcome.errorCode},
         {"ErrorDescription", CMPI_string, outcome.errorDescription},
         {"PercentComplete", CMPI_uint16, "100"},
         {"TimeSubmitted", CMPI_dateTime, now},
         {"StartTime", CMPI_dateTime, now},
         {"TimeOfLastStateChange", CMPI_dateTime, now},
         {"ElapsedTime", CMPI_dateTime, "\"00000000000000.000000:000\""},
         {"TimeBeforeRemoval", CMPI_dateTime, "\"00000000001500.000000:000\""}});
    EXPECT_EQ(Prop(instance, "OperationalStatus").toMof(), outcome.operationalStatus);

    const std::string service = "DTP_DiagService:" + std::string(outcome.service);
    EXPECT_THAT(Associators(job, "CIM_OwningJobElement"), ElementsAre(service));
    EXPECT_THAT(Associators(job, "CIM_AffectedJobElement"), ElementsAre("DTP_Device:disk1"));
    EXPECT_THAT(Associators(job, "CIM_RecordAppliesToElement"), SizeIs(outcome.records));
    EXPECT_THAT(Associators(ServicePath(outcome.service), "CIM_OwningJobElement"),
                ElementsAre(ClassAndKey(instance)));
  }
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), SizeIs(2));
}

TEST_F(RunDiagnosticServiceTest, TheRecordOfAJobIsTheOneItsElementAndLogLeadTo) {
  Start(AllOn());
  const std::string job = RunForJob("Failing");
  const std::vector<std::string> records = Associators(job, "CIM_RecordAppliesToElement");
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_THAT(Associators(LogPath("Failing"), "CIM_LogManagesRecord"), ElementsAre(records[0]));
  cmpihost::AssociationFilter toRecords;
  toRecords.assocClass = "CIM_RecordAppliesToElement";
  toRecords.resultClass = "CIM_DiagnosticRecord";
  EXPECT_THAT(host().associatorNames(DevicePath("disk1"), toRecords).paths(), SizeIs(1));
}

TEST_F(RunDiagnosticServiceTest, EmbeddedSettingsOverrideTheServicesPersistenceForThatRun) {
  Start(AllOn());
  const std::string job = RunForJob(
      "Passing",
      {Settings(std::string(kSettings) +
                "ResultPersistence = 60; LogOptions = {2, 3}; HaltOnError = TRUE; "
                "LoopControlParameter = {\"1\"}; Caption = NULL; };"),
       cmpihost::Argument{"JobSettings", "instance of CIM_JobSettingData { };", std::nullopt}});
  ExpectProperties(host().getInstance(job).instances().at(0),
                   {{"TimeBeforeRemoval", CMPI_dateTime, "\"00000000000100.000000:000\""}});
  ExpectProperties(Records().at(0),
                   {{"ExpirationDate", CMPI_dateTime,
                     "\"" + CimDateTime(FixedTime() + std::chrono::seconds(60)) + "\""}});
  SetClock(std::chrono::seconds(60));
  EXPECT_THAT(Enumerate("PTP_ConcreteJob"), IsEmpty());
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), IsEmpty());
  EXPECT_THAT(Associators(ServicePath("Passing"), "CIM_OwningJobElement"), IsEmpty());
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_AffectedJobElement"), IsEmpty());
}

TEST_F(RunDiagnosticServiceTest, ASubclassOfTheSettingsIsReadToo) {
  Start(AllOn());
  ASSERT_NE(RunForJob("Passing", {Settings("instance of DTP_DiagSettingData { "
                                           "ResultPersistence = 0; };")}),
            "");
  EXPECT_THAT(Enumerate("PTP_ConcreteJob"), IsEmpty());
}

struct BadArguments {
  std::vector<cmpihost::Argument> arguments;
  std::string message;
};

cmpihost::Argument Typed(const char* name, const char* text, CMPIType type) {
  return cmpihost::Argument{name, text, type};
}

TEST_F(RunDiagnosticServiceTest, BadSettingsAreInvalidParametersThatSayWhatIsWrong) {
  Start(AllOn());
  const std::string prefix = "RunDiagnosticService: DiagnosticSettings ";
  const std::string settings = kSettings;
  const auto text = [](const std::string& value) {
    return cmpihost::Argument{"DiagnosticSettings", value, std::nullopt};
  };
  const BadArguments cases[] = {
      {{text("instance of")}, prefix + "is malformed: expected a class name at offset 11"},
      {{text("instance CIM_DiagnosticSettingData { };")},
       prefix + "is malformed: expected \"instance of\" at offset 8"},
      {{text(settings + "ResultPersistence = 60 };")},
       prefix + "is malformed: expected \";\" after the value of ResultPersistence at offset 63"},
      {{text(settings + "ResultPersistence = ; };")},
       prefix + "is malformed: expected a value for ResultPersistence at offset 60"},
      {{text(settings + "LogOptions = {2, ; };")},
       prefix + "is malformed: expected a value for LogOptions at offset 57"},
      {{text(settings + "}; trailing")},
       prefix + "is malformed: unexpected text after the instance at offset 43"},
      {{text(settings + "Colour = \"red\"; };")},
       prefix + "has a property Colour that CIM_DiagnosticSettingData does not declare"},
      {{text(settings + "ResultPersistence = \"60\"; };")},
       prefix + "property ResultPersistence must be a uint32"},
      {{text(settings + "ResultPersistence = -1; };")},
       prefix + "property ResultPersistence must be a uint32"},
      {{text(settings + "ResultPersistence = 4294967296; };")},
       prefix + "property ResultPersistence must be a uint32"},
      {{text(settings + "HaltOnError = 1; };")}, prefix + "property HaltOnError must be a boolean"},
      {{text(settings + "LogOptions = 2; };")}, prefix + "property LogOptions must be a uint16[]"},
      {{text(settings + "PercentOfTestCoverage = 256; };")},
       prefix + "property PercentOfTestCoverage must be a uint8"},
      {{text("instance of DTP_Device { DeviceID = \"x\"; };")},
       prefix + "is an instance of DTP_Device, not of CIM_DiagnosticSettingData"},
      {{Typed("DiagnosticSettings", "5", CMPI_uint32)}, prefix + "is not an embedded instance"},
      {{Typed("JobSettings", "5", CMPI_uint32)},
       "RunDiagnosticService: JobSettings is not an embedded instance"},
  };
  for (const BadArguments& bad : cases) {
    SCOPED_TRACE(bad.arguments[0].text);
    const cmpihost::Reply reply = RunService("Passing", "disk1", bad.arguments);
    EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(reply.status.message, bad.message);
  }
  const cmpihost::Reply noElement =
      host().invokeMethod(ServicePath("Passing"), "RunDiagnosticService", {});
  EXPECT_EQ(noElement.status.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(noElement.status.message, "RunDiagnosticService needs a ManagedElement reference");
  EXPECT_THAT(Enumerate("PTP_ConcreteJob"), IsEmpty());
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), IsEmpty());
}

TEST_F(RunDiagnosticServiceTest, AServiceThatDidNotTurnItOnDoesNotKnowTheMethod) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.runDiagnosticService = false;
  Start(options);
  const cmpihost::Reply reply = RunService("Passing", "disk1");
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND);
  EXPECT_EQ(reply.status.message.rfind("No method RunDiagnosticService on ", 0), 0U)
      << reply.status.message;
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), IsEmpty());
}

TEST_F(RunDiagnosticServiceTest, JobsCountInTheServicesBoundWithTheirRecords) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.recordBound = 2;
  Start(options);
  RunForJob("Passing");
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  RunForJob("Passing");
  EXPECT_THAT(Enumerate("PTP_ConcreteJob"),
              ElementsAre("PTP_ConcreteJob:PTP_ConcreteJob:Passing:3"));
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), SizeIs(2));
}

}  // namespace
}  // namespace diagcore_test
