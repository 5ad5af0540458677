// AvailableDiagnosticService, UseOfLog and DiagUser: what each holds fresh,
// and that init fills only what is absent.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/DiagUser.h"
#include "diagcore/UseOfLog.h"

namespace diagcore_test {
namespace {

using NQENDRA20::AvailableDiagnosticService;
using NQENDRA20::DiagUser;
using NQENDRA20::UseOfLog;
using Properties = std::map<std::string, std::string>;

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

TEST(AssociationBagsTest, AFreshAvailabilityHoldsTwoEmptyReferences) {
  const AvailableDiagnosticService association("ACME_Availability");
  EXPECT_EQ(association.getClassName(), "ACME_Availability");
  EXPECT_EQ(association.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(association),
            (Properties{{"ServiceProvided", ""}, {"UserOfService", ""}}));
}

TEST(AssociationBagsTest, AFreshUseOfLogHoldsItsPlaceholdersAsSpelled) {
  const UseOfLog association("ACME_UseOfLog");
  EXPECT_EQ(association.getClassName(), "ACME_UseOfLog");
  EXPECT_EQ(PropertiesOf(association), (Properties{{"Antecedent", "CIM_DiagnosicRecord"},
                                                   {"Dependent", "CIM_DiagnosticService"}}));
}

TEST(AssociationBagsTest, InitAgainLeavesFilledReferencesAlone) {
  AvailableDiagnosticService availability("A");
  availability["ServiceProvided"] = "S.Name=\"s\"";
  availability["UserOfService"] = "E.DeviceID=\"e\"";
  availability["EnumOrder"] = "10";
  availability.init();
  EXPECT_EQ(PropertiesOf(availability), (Properties{{"EnumOrder", "10"},
                                                    {"ServiceProvided", "S.Name=\"s\""},
                                                    {"UserOfService", "E.DeviceID=\"e\""}}));

  UseOfLog log("L");
  log["Antecedent"] = "R.InstanceID=\"r\"";
  log.init();
  EXPECT_EQ(PropertiesOf(log), (Properties{{"Antecedent", "R.InstanceID=\"r\""},
                                           {"Dependent", "CIM_DiagnosticService"}}));
  log["Dependent"] = "";
  log.init();
  EXPECT_EQ(log["Dependent"], "");
}

TEST(AssociationBagsTest, ADiagUserIsEmptyAndInitAddsNothing) {
  DiagUser user;
  EXPECT_EQ(user.getClassName(), "");
  EXPECT_EQ(user.getObjectPath(), "");
  EXPECT_EQ(user.begin(), user.end());
  user.init();
  EXPECT_EQ(user.begin(), user.end());
  user.setClassName("ACME_Disk");
  user["DeviceID"] = "sda";
  user.init();
  EXPECT_EQ(PropertiesOf(user), (Properties{{"DeviceID", "sda"}}));
  EXPECT_EQ(user.getClassName(), "ACME_Disk");
}

}  // namespace
}  // namespace diagcore_test
