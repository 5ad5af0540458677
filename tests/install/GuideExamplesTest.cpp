// The plug-in guide's examples that are not TinyDiag itself: how value texts
// become typed properties, a plug-in registered in-process, and call scopes.
// The guide shows excerpts of this file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmpihost/BagCheck.h"
#include "cmpihost/CallScope.h"
#include "cmpihost/Host.h"
#include "diagcore/CimNames.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/InstanceBuilder.h"

// TinyDiag's factories, defined by DIAGCORE_PROVIDER(TinyDiag, ...) in
// plugin/TinyDiag.cpp, which this program links.
CMPI_EXTERN_C CMPIInstanceMI* TinyDiag_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                         CMPIStatus*);
CMPI_EXTERN_C CMPIMethodMI* TinyDiag_Create_MethodMI(const CMPIBroker*, const CMPIContext*,
                                                     CMPIStatus*);
CMPI_EXTERN_C CMPIAssociationMI* TinyDiag_Create_AssociationMI(const CMPIBroker*,
                                                               const CMPIContext*, CMPIStatus*);

namespace diagcore_test {
namespace {

constexpr const char* kPluginDir = DIAGCORE_SOURCE_DIR "/tests/install/plugin";

class GuideExamplesTest : public ::testing::Test {
 protected:
  GuideExamplesTest() {
    host_.loadMof(DIAGCORE_SOURCE_DIR "/schema/diagcore.mof");
    host_.loadMof(std::string(kPluginDir) + "/tinydiag.mof");
  }

  cmpihost::Host host_;
};

TEST_F(GuideExamplesTest, ValueTextsAreReadByTheDeclaredType) {
  const cmpihost::CallScope scope(host_);
  NQENDRA20::DiagServiceSettingData setting("TINY_DiagSetting");
  setting["InstanceID"] = "TINY:Setting:Quick";
  setting["QuickMode"] = "1";              // boolean: "1" or "0"; "true" reads as false
  setting["PercentOfTestCoverage"] = "d";  // uint8: the code of one character, 'd' = 100
  setting["LogOptions"] = "2,3";           // uint16[]: elements joined by ","
  setting["ResultPersistence"] = "3600";   // uint32: decimal
  setting["TimeOfLastStateChange"] = "5";  // not a property of the class: skipped
  const NQENDRA20::InstanceBuilder builder(NQENDRA20::cimNameSpace);
  const cmpihost::InstanceSnapshot built = scope.snapshot(
      builder.build(scope.broker(), scope.context(), setting.getClassName(), setting));

  EXPECT_EQ(built.find("QuickMode")->toMof(), "TRUE");
  EXPECT_EQ(built.find("HaltOnError")->toMof(), "FALSE");  // the default text "true"
  EXPECT_EQ(built.find("PercentOfTestCoverage")->toMof(), "100");
  EXPECT_EQ(built.find("LogOptions")->toMof(), "{2, 3}");
  EXPECT_EQ(built.find("ResultPersistence")->toMof(), "3600");
  EXPECT_EQ(built.find("TimeOfLastStateChange"), nullptr);

  // What the builder did without a word, told to the author.
  std::vector<std::string> dropped;
  for (const cmpihost::DroppedProperty& each :
       cmpihost::DroppedAtBuilding(host_, setting.getClassName(), setting)) {
    dropped.push_back(each.text());
  }
  EXPECT_EQ(dropped,
            (std::vector<std::string>{
                "TINY_DiagSetting.HaltOnError: 'true' does not read as boolean (the builder reads "
                "1 or 0)",
                "TINY_DiagSetting.SettingID: the class declares no such property",  // a default
                "TINY_DiagSetting.TimeOfLastStateChange: the class declares no such property"}));
}

TEST_F(GuideExamplesTest, APluginLinkedIntoTheTestIsRegisteredInProcess) {
  cmpihost::ProviderRegistration registration;
  registration.providerName = "TinyDiag";
  registration.classNames = {"TINY_DiagService", "TINY_DiagRecord", "TINY_DiagSetting",
                             "TINY_DiagCapabilities", "TINY_AvailableDiagnosticService"};
  registration.instance = true;
  registration.method = true;
  registration.association = true;
  host_.registerProvider(registration, {TinyDiag_Create_InstanceMI, TinyDiag_Create_MethodMI,
                                        TinyDiag_Create_AssociationMI});

  const cmpihost::Reply services = host_.enumerateInstances("root/cimv2", "TINY_DiagService");
  EXPECT_EQ(services.status.rc, CMPI_RC_OK);
  ASSERT_EQ(services.instances().size(), 1U);
  EXPECT_EQ(services.instances()[0].find("Name")->text, "PathExists");
}

TEST_F(GuideExamplesTest, ABrokerObjectLivesAsLongAsItsCallScope) {
  const cmpihost::CallScope scope(host_);
  const CMPIBroker* broker = scope.broker();
  CMPIString* kept = broker->eft->newString(broker, "made in this scope", nullptr);
  EXPECT_EQ(scope.liveObjects(), 2U);  // the scope's context, and the string
  kept->ft->release(kept);             // or leave it: the scope frees it
  EXPECT_EQ(scope.liveObjects(), 1U);
}

}  // namespace
}  // namespace diagcore_test
