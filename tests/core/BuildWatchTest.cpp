// The host's log names each bag property the library's builder drops or
// misreads, as it builds, and stays quiet about everything else.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

class BuildWatchTest : public CoreHostTest {
 protected:
  // HostLines of building `bag` twice, as a registration does, on a cleared log.
  std::vector<std::string> HostLinesOfBuilding(TestBag& bag) {
    host().clearLog();
    const StdoutCapture unhandled;  // char16: the builder says so on standard output
    const cmpihost::CallScope scope(host());
    for (int time = 0; time < 2; ++time) {
      EXPECT_NE(builder_.build(scope.broker(), scope.context(), bag.getClassName(), bag), nullptr);
    }
    return HostLines();
  }

  // The host's own records (id "cmpihost"), as "severity text".
  std::vector<std::string> HostLines() {
    std::vector<std::string> lines;
    for (const cmpihost::LogRecord& record : host().logRecords()) {
      if (record.id == "cmpihost") {
        lines.push_back(std::to_string(record.severity) + " " + record.text);
      }
    }
    return lines;
  }

  const NQENDRA20::InstanceBuilder builder_{NQENDRA20::cimNameSpace};
};

// One warning for each property however often it is built; the last case
// repeats the first, as a cleared log hears everything again.
TEST_F(BuildWatchTest, EachDroppedOrMisreadPropertyIsOneWarning) {
  const std::string dropped =
      "3 bag property dropped: DCT_AllTypes.Colour: the class declares "
      "no such property";
  const std::string misread = "3 bag property misread: DCT_AllTypes.";
  const struct {
    const char* name;
    const char* text;
    std::string line;  // empty: nothing is logged
  } cases[] = {
      {"Colour", "red", dropped},
      {"Flag", "true",
       misread + "Flag: 'true' does not read as boolean (the builder reads 1 or 0)"},
      {"U8", "7",
       misread + "U8: '7' does not read as uint8 (the builder reads one character, "
                 "as its code: '7' becomes 55)"},
      {"U32", "12abc", misread + "U32: '12abc' does not read as uint32"},
      {"R64", "half", misread + "R64: 'half' does not read as real64"},
      {"When", "2024-01-01", misread + "When: '2024-01-01' does not read as datetime"},
      {"Letter", "A", misread + "Letter: 'A' is not built: the builder reads no char16 value"},
      {"Flag", "1", ""},
      {"U8", "a", ""},
      {"When", "", ""},
      {"U16s", "1,x", ""},  // arrays are not traced by the builder: not checked
      {"Colour", "red", dropped},
  };
  for (const auto& c : cases) {
    TestBag bag("DCT_AllTypes", {{"InstanceID", "a"}, {c.name, c.text}});
    const std::vector<std::string> expected =
        c.line.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.line};
    EXPECT_EQ(HostLinesOfBuilding(bag), expected) << c.name << "='" << c.text << "'";
  }
}

// The referenced instances are built inside the link's build; their
// properties, and the link's after them, are still told apart.
TEST_F(BuildWatchTest, NestedBuildsOfReferencesKeepEachPropertyWithItsInstance) {
  TestBag link("DCT_Link", {{"Antecedent", ElementText("e1")},
                            {"Dependent", "DCT_Element.DeviceID="},
                            {"Note", "n"},
                            {"Zzz", "z"}});
  EXPECT_EQ(HostLinesOfBuilding(link),
            (std::vector<std::string>{
                "3 bag property misread: DCT_Link.Dependent: 'DCT_Element.DeviceID=' does not "
                "read as ref",
                "3 bag property dropped: DCT_Link.Zzz: the class declares no such property"}));
}

// A provider asking a built instance for a property its class lacks (a role
// the client named) is not told of, even while an instance the builder never
// closed (its bag was empty) is still open.
TEST_F(BuildWatchTest, ProbesOfBuiltInstancesAreNotReported) {
  TestBag empty("DCT_AllTypes");
  TestBag bag("DCT_AllTypes", {{"InstanceID", "a"}});
  host().clearLog();
  const cmpihost::CallScope scope(host());
  ASSERT_NE(builder_.build(scope.broker(), scope.context(), empty.getClassName(), empty), nullptr);
  CMPIInstance* built = builder_.build(scope.broker(), scope.context(), bag.getClassName(), bag);
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->ft->getProperty(built, "Role", nullptr).type, CMPI_null);
  EXPECT_EQ(HostLines(), std::vector<std::string>{});
}

}  // namespace
}  // namespace diagcore_test
