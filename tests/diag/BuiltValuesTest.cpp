// What the CIMOM sees of the library's default bags once they are built
// against the project's DMTF schema (through the test plug-in's subclasses):
// each text typed by its declaration, including the texts that do not read as
// their names suggest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using ::testing::SizeIs;

class BuiltValuesTest : public DiagHostTest {
 protected:
  BuiltValuesTest() : DiagHostTest(true) {}

  // Registers `bag` and returns the only instance of its class.
  InstanceSnapshot RegisterTheOnly(NQENDRA20::InstanceImpl* bag) {
    const std::string className = bag->getClassName();
    RegisterInScope(host(), bag);
    const std::vector<InstanceSnapshot> instances =
        host().enumerateInstances("root/cimv2", className).instances();
    EXPECT_THAT(instances, SizeIs(1)) << className;
    return instances.empty() ? InstanceSnapshot() : instances[0];
  }
};

TEST_F(BuiltValuesTest, SettingDataTextsBecomeTheSchemasTypes) {
  const InstanceSnapshot setting = RegisterTheOnly(
      NewBag<NQENDRA20::DiagServiceSettingData>(std::string("DTP_DiagSettingData")));
  ExpectProperties(setting, {{"LogOptions", CMPI_uint16A, "{2}"},
                             {"OtherLogOptionsDescriptions", CMPI_stringA, "{}"},
                             // The words are not booleans to the builder: neither reads as TRUE.
                             {"HaltOnError", CMPI_boolean, "FALSE"},
                             {"QuickMode", CMPI_boolean, "FALSE"},
                             // One byte: the code of the first character, '4'.
                             {"PercentOfTestCoverage", CMPI_uint8, "52"},
                             {"LoopControlParameter", CMPI_stringA, "{\"0\"}"},
                             {"LoopControl", CMPI_uint16A, "{2}"},
                             {"ResultPersistence", CMPI_uint32, "900"},
                             {"VerbosityLevel", CMPI_uint16A, "{3}"},
                             // The key is InstanceID, which the defaults leave unset.
                             {"InstanceID", CMPI_string, "NULL"}});
  // The DMTF class has no SettingID: the builder drops it.
  EXPECT_EQ(setting.find("SettingID"), nullptr);

  // Same (empty) key, so the later registration takes its place.
  auto* changed = NewBag<NQENDRA20::DiagServiceSettingData>(std::string("DTP_DiagSettingData"));
  (*changed)["HaltOnError"] = "1";
  (*changed)["PercentOfTestCoverage"] = std::string(1, static_cast<char>(45));
  ExpectProperties(RegisterTheOnly(changed), {{"HaltOnError", CMPI_boolean, "TRUE"},
                                              {"PercentOfTestCoverage", CMPI_uint8, "45"}});
}

TEST_F(BuiltValuesTest, CapabilitiesTextsBecomeTheSchemasTypes) {
  const InstanceSnapshot capabilities = RegisterTheOnly(
      NewBag<NQENDRA20::DiagServiceCapabilitiesData>(std::string("DTP_DiagCapabilities")));
  ExpectProperties(capabilities,
                   {{"InstanceID", CMPI_string, "\"ACME:TestCapabilities\""},
                    {"Caption", CMPI_string, "\"TestCapabilities\""},
                    {"SupportedServiceModes", CMPI_uint16A, "{0}"},
                    {"OtherSupportedServiceModesDescriptions", CMPI_stringA, "{\"0\"}"},
                    {"SupportedLoopControl", CMPI_uint16A, "{0}"},
                    {"SupportedExecutionControls", CMPI_uint16A, "{0}"},
                    {"OtherSupportedExecutionControlsDescriptions", CMPI_stringA, "{\"0\"}"},
                    // Declared by the schema with a default, not written by the bag.
                    {"SupportedTestWarnings", CMPI_uint16, "3"}});
  EXPECT_EQ(capabilities.path,
            "//localhost/root/cimv2:DTP_DiagCapabilities.InstanceID=\"ACME:TestCapabilities\"");
}

TEST_F(BuiltValuesTest, AvailabilityReferencesBecomeReferencesAndEnumOrderANumber) {
  auto* association =
      NewBag<NQENDRA20::AvailableDiagnosticService>(std::string("DTP_AvailableDiagnosticService"));
  (*association)["ServiceProvided"] = ServiceText("Probe");
  (*association)["UserOfService"] = DeviceText("disk1");
  (*association)["EnumOrder"] = "4294967295";
  (*association)["EstimatedDurationOfService"] = "3";
  const InstanceSnapshot built = RegisterTheOnly(association);
  ExpectProperties(built, {{"EnumOrder", CMPI_uint32, "4294967295"},
                           {"EstimatedDurationOfService", CMPI_uint16, "3"}});
  EXPECT_EQ(Prop(built, "ServiceProvided").type, CMPI_ref);
  EXPECT_EQ(Prop(built, "ServiceProvided").text, "//localhost/" + ServicePath("Probe"));
  EXPECT_EQ(Prop(built, "UserOfService").type, CMPI_ref);
  EXPECT_EQ(Prop(built, "UserOfService").text, "//localhost/" + DevicePath("disk1"));
}

}  // namespace
}  // namespace diagcore_test
