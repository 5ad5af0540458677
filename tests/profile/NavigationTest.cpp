// Navigation a profile client does: from a service to its setting data,
// capabilities and log, from the log to the records of its runs, from a
// record to the element it tested, and back, with the conformant associators
// and references; and what a plug-in that offers no profile keeps serving.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct Walk {
  std::string from;
  const char* assocClass;
  std::vector<std::string> to;
  const char* association;  // the class of each reference to `from`
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
  const Walk walks[] = {
      {ServicePath("Passing"),
       "CIM_ElementSettingData",
       {"DTP_DiagSettingData:DTP:Setting:Passing"},
       "PTP_ElementSettingData"},
      {SettingPath("Passing"), "CIM_ElementSettingData", {service}, "PTP_ElementSettingData"},
      {ServicePath("Passing"),
       "CIM_ElementCapabilities",
       {"DTP_DiagCapabilities:DTP:Capabilities:Passing"},
       "PTP_ElementCapabilities"},
      {CapabilitiesPath("Passing"),
       "CIM_ElementCapabilities",
       {service},
       "PTP_ElementCapabilities"},
      {ServicePath("Passing"),
       "CIM_UseOfLog",
       {"PTP_DiagnosticLog:PTP_DiagnosticLog:Passing"},
       "PTP_UseOfLog"},
      {LogPath("Passing"), "CIM_UseOfLog", {service}, "PTP_UseOfLog"},
      {LogPath("Passing"), "CIM_LogManagesRecord", {record}, "PTP_LogManagesRecord"},
      {ProfileRecordPath("Passing", 1),
       "CIM_LogManagesRecord",
       {"PTP_DiagnosticLog:PTP_DiagnosticLog:Passing"},
       "PTP_LogManagesRecord"},
      {ProfileRecordPath("Passing", 1),
       "CIM_RecordAppliesToElement",
       {"DTP_Device:disk1"},
       "PTP_RecordAppliesToElement"},
      {DevicePath("disk1"), "CIM_RecordAppliesToElement", {record}, "PTP_RecordAppliesToElement"},
      {DevicePath("disk0"), "CIM_RecordAppliesToElement", {}, ""},
      {LogPath("Failing"), "CIM_LogManagesRecord", {}, ""},
      {ServicePath("Failing"),
       "CIM_ElementSettingData",
       {"DTP_DiagSettingData:DTP:Setting:Failing"},
       "PTP_ElementSettingData"},
  };
  for (const Walk& walk : walks) {
    SCOPED_TRACE(walk.from + " " + walk.assocClass);
    EXPECT_THAT(Associators(walk.from, walk.assocClass), ElementsAreArray(walk.to));
    const std::vector<std::string> expected(walk.to.size(), walk.association);
    EXPECT_THAT(References(walk.from, walk.assocClass), ElementsAreArray(expected));
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

}  // namespace
}  // namespace diagcore_test
