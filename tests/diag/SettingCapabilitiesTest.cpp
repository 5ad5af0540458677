// DiagServiceSettingData and DiagServiceCapabilitiesData: their defaults,
// inserted only where a property is absent.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagServiceCapabilitiesData;
using NQENDRA20::DiagServiceSettingData;
using Properties = std::map<std::string, std::string>;

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

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

TEST(SettingCapabilitiesTest, FreshObjectsHoldExactlyTheirDefaultsWhateverTheClassName) {
  for (const std::string className : {"DTP_DiagSettingData", "", "x y"}) {
    const DiagServiceSettingData setting(className);
    EXPECT_EQ(setting.getClassName(), className);
    EXPECT_EQ(setting.getObjectPath(), "");
    EXPECT_EQ(PropertiesOf(setting), kSettingDefaults) << className;
    EXPECT_EQ(kSettingDefaults.size(), 11U);

    const DiagServiceCapabilitiesData capabilities(className);
    EXPECT_EQ(capabilities.getClassName(), className);
    EXPECT_EQ(PropertiesOf(capabilities), kCapabilityDefaults) << className;
    EXPECT_EQ(kCapabilityDefaults.size(), 10U);
  }
}

TEST(SettingCapabilitiesTest, EmptyDescriptionsArePresentNotAbsent) {
  const DiagServiceSettingData setting("S");
  ASSERT_NE(setting.find("OtherLogOptionsDescriptions"), setting.end());
  EXPECT_EQ(setting.find("OtherLogOptionsDescriptions")->second, "");
  ASSERT_NE(setting.find("OtherLoopControlDescriptions"), setting.end());
  EXPECT_EQ(setting.find("OtherLoopControlDescriptions")->second, "");
}

TEST(SettingCapabilitiesTest, InitKeepsWhatIsSetAndSubscriptReplaces) {
  DiagServiceSettingData setting("S");
  setting["HaltOnError"] = "false";
  setting["SettingID"] = "Mine";
  setting["Extra"] = "x";
  setting.init();
  Properties expected = kSettingDefaults;
  expected["HaltOnError"] = "false";
  expected["SettingID"] = "Mine";
  expected["Extra"] = "x";
  EXPECT_EQ(PropertiesOf(setting), expected);

  DiagServiceSettingData replaced("S");
  replaced["HaltOnError"] = "1";
  EXPECT_EQ(replaced["HaltOnError"], "1");

  DiagServiceCapabilitiesData capabilities("C");
  capabilities["InstanceID"] = "ACME:Other";
  capabilities["Caption"] = "";
  capabilities.init();
  Properties expectedCapabilities = kCapabilityDefaults;
  expectedCapabilities["InstanceID"] = "ACME:Other";
  expectedCapabilities["Caption"] = "";
  EXPECT_EQ(PropertiesOf(capabilities), expectedCapabilities);
}

TEST(SettingCapabilitiesTest, EveryServicesDefaultsCarryTheSameIdentifiers) {
  const DiagServiceSettingData first("ACME_FanSetting");
  const DiagServiceSettingData second("ACME_DiskSetting");
  EXPECT_EQ(PropertiesOf(first), PropertiesOf(second));
  EXPECT_NE(first.getClassName(), second.getClassName());
  EXPECT_EQ(first.find("SettingID")->second, "DefaultSetting");

  const DiagServiceCapabilitiesData one("ACME_FanCapabilities");
  const DiagServiceCapabilitiesData two("ACME_DiskCapabilities");
  EXPECT_EQ(PropertiesOf(one), PropertiesOf(two));
  EXPECT_EQ(one.find("InstanceID")->second, "ACME:TestCapabilities");
}

}  // namespace
}  // namespace diagcore_test
