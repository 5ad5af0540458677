// RunDiagnosticService: the job each outcome of the test leaves, its times
// and its associations to the service, the element and the record; the
// embedded settings it reads, and every way they can be wrong; jobs that
// expire with their records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

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
