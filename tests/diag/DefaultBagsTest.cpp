// The library's default bags on their own: what DiagnosticRecord, the
// setting data, the capabilities and the association bags hold fresh, what
// init does over a plug-in's changes, and how pass and fail write a record.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/DiagUser.h"
#include "diagcore/DiagnosticRecord.h"
#include "diagcore/UseOfLog.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagnosticRecord;
using Properties = std::map<std::string, std::string>;

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

// `base` with `changes` applied.
Properties With(Properties base, const Properties& changes) {
  for (const auto& [name, value] : changes) {
    base[name] = value;
  }
  return base;
}

const Properties kRecordDefaults = {{"Locale", "en"},
                                    {"LoopsFailed", "0"},
                                    {"LoopsPassed", "0"},
                                    {"RecordFormat", ""},
                                    {"RecordType", "2"}};

const Properties kSettingDefaults = {
    {"SettingID", "DefaultSetting"}, {"LogOptions", "2"},    {"OtherLogOptionsDescriptions", ""},
    {"HaltOnError", "true"},         {"QuickMode", "false"}, {"PercentOfTestCoverage", "45"},
    {"LoopControlParameter", "0"},   {"LoopControl", "2"},   {"OtherLoopControlDescriptions", ""},
    {"ResultPersistence", "900"},    {"VerbosityLevel", "3"}};

const Properties kCapabilityDefaults = {{"InstanceID", "ACME:TestCapabilities"},
                                        {"Caption", "TestCapabilities"},
                                        {"SupportedServiceModes", "0"},
                                        {"OtherSupportedServiceModesDescriptions", "0"},
                                        {"SupportedLoopControl", "0"},
                                        {"OtherSupportedLoopControlDescriptions", "0"},
                                        {"SupportedLogOptions", "0"},
                                        {"OtherSupportedLogOptionsDescriptions", "0"},
                                        {"SupportedExecutionControls", "0"},
                                        {"OtherSupportedExecutionControlsDescriptions", "0"}};

TEST(DefaultBagsTest, FreshBagsHoldExactlyTheirDefaultsAndInitFillsOnlyWhatIsAbsent) {
  const DiagnosticRecord record("ACME_Record");
  EXPECT_EQ(record.getClassName(), "ACME_Record");
  EXPECT_EQ(record.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(record), kRecordDefaults);

  NQENDRA20::DiagServiceSettingData setting("ACME_Setting");
  EXPECT_EQ(PropertiesOf(setting), kSettingDefaults);
  setting["HaltOnError"] = "false";
  setting["Extra"] = "x";
  setting.init();
  EXPECT_EQ(PropertiesOf(setting),
            With(kSettingDefaults, {{"HaltOnError", "false"}, {"Extra", "x"}}));

  NQENDRA20::DiagServiceCapabilitiesData capabilities("ACME_Capabilities");
  EXPECT_EQ(capabilities.getClassName(), "ACME_Capabilities");
  EXPECT_EQ(PropertiesOf(capabilities), kCapabilityDefaults);
  capabilities["InstanceID"] = "ACME:Other";
  capabilities["Caption"] = "";
  capabilities.init();
  EXPECT_EQ(PropertiesOf(capabilities),
            With(kCapabilityDefaults, {{"InstanceID", "ACME:Other"}, {"Caption", ""}}));

  NQENDRA20::AvailableDiagnosticService availability("ACME_Availability");
  EXPECT_EQ(PropertiesOf(availability),
            (Properties{{"ServiceProvided", ""}, {"UserOfService", ""}}));
  availability["ServiceProvided"] = "S.Name=\"s\"";
  availability.init();
  EXPECT_EQ(availability["ServiceProvided"], "S.Name=\"s\"");

  // The placeholders as spelt.
  NQENDRA20::UseOfLog log("ACME_UseOfLog");
  EXPECT_EQ(PropertiesOf(log), (Properties{{"Antecedent", "CIM_DiagnosicRecord"},
                                           {"Dependent", "CIM_DiagnosticService"}}));
  log["Dependent"] = "";
  log.init();
  EXPECT_EQ(log["Dependent"], "");

  NQENDRA20::DiagUser user;
  user.init();
  EXPECT_EQ(user.getClassName(), "");
  EXPECT_EQ(user.begin(), user.end());
}

TEST(DefaultBagsTest, RecordInitAssignsItsDefaultsOverWhatTheBagHolds) {
  DiagnosticRecord record("ACME_Record");
  record["Locale"] = "de";
  record["LoopsPassed"] = "9";
  record["RecordData"] = "kept";
  record.init();
  EXPECT_EQ(PropertiesOf(record), With(kRecordDefaults, {{"RecordData", "kept"}}));
}

TEST(DefaultBagsTest, PassAndFailOverwriteTheirOwnValuesAndKeepTheOthers) {
  DiagnosticRecord record("ACME_Record");
  record.pass(3);
  // Pass writes no ErrorCode.
  EXPECT_EQ(PropertiesOf(record),
            With(kRecordDefaults,
                 {{"LoopsPassed", "3"}, {"ErrorCount", "0"}, {"RecordData", "Test Passed"}}));
  record.fail(2, " E-7, bad ", 5, "line one\nline two");
  EXPECT_EQ(PropertiesOf(record), With(kRecordDefaults, {{"LoopsPassed", "3"},
                                                         {"LoopsFailed", "2"},
                                                         {"ErrorCode", " E-7, bad "},
                                                         {"ErrorCount", "5"},
                                                         {"RecordData", "line one\nline two"}}));
  // Counts are replaced, never added up, in plain decimal up to 2^32 - 1.
  record.pass(4294967295U);
  record.fail(4294967295U, "E3", 4294967295U, "y");
  record.pass(7);
  EXPECT_EQ(PropertiesOf(record), With(kRecordDefaults, {{"LoopsPassed", "7"},
                                                         {"LoopsFailed", "4294967295"},
                                                         {"ErrorCode", "E3"},
                                                         {"ErrorCount", "0"},
                                                         {"RecordData", "Test Passed"}}));
}

}  // namespace
}  // namespace diagcore_test
