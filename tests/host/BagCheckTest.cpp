// What DroppedAtBuilding tells a plug-in's author about a bag before the
// library's builder silently drops or misreads a property.
#include <map>

#include "HostTestSupport.h"
#include "cmpihost/BagCheck.h"

namespace cmpihost::testing {
namespace {

class BagCheckTest : public ::testing::Test {
 protected:
  BagCheckTest() {
    host_.loadMof(HOST_TEST_MOF, "root/cimv2");
    host_.loadMofText(
        "class Test_Bag { [Key] string Id; boolean Flag; uint8 Small; uint32 Count;"
        " sint16 Offset; real64 Ratio; datetime When; char16 Letter; uint16 Sizes[];"
        " }; [Association] class Test_BagLink { [Key] Test_Bag REF Peer; uint8 Small; };",
        "bag.mof", "root/cimv2");
  }

  std::vector<std::string> Dropped(const std::map<std::string, std::string>& bag,
                                   const std::string& className = "test_bag") const {
    std::vector<std::string> texts;
    for (const DroppedProperty& each : DroppedAtBuilding(host_, className, bag)) {
      texts.push_back(each.text());
    }
    return texts;
  }

  Host host_;
};

TEST_F(BagCheckTest, TextsThatReadAsTheirTypesPass) {
  EXPECT_EQ(Dropped({{"Id", "x"},
                     {"flag", "1"},
                     {"Small", "a"},
                     {"Count", "4294967295"},
                     {"Offset", "-7"},
                     {"Ratio", "2.5"},
                     {"When", "20240101000000.000000+000"},
                     {"Sizes", "1,2,,3"}}),
            std::vector<std::string>{});
  EXPECT_EQ(Dropped({{"Peer", R"(Test_Bag.Id="y")"}}, "Test_BagLink"), std::vector<std::string>{});
  EXPECT_EQ(Dropped({{"When", ""}}), std::vector<std::string>{});  // the builder's "now"
}

TEST_F(BagCheckTest, EachDroppedPropertyIsNamedWithWhy) {
  const struct {
    const char* name;
    const char* text;
    const char* said;
  } cases[] = {
      {"Colour", "red", "Test_Bag.Colour: the class declares no such property"},
      {"Flag", "true", "Test_Bag.Flag: 'true' does not read as boolean (the builder reads 1 or 0)"},
      {"Small", "7",
       "Test_Bag.Small: '7' does not read as uint8 (the builder reads one character, as its "
       "code: '7' becomes 55)"},
      {"Count", "-1", "Test_Bag.Count: '-1' does not read as uint32"},
      {"Count", "4294967296", "Test_Bag.Count: '4294967296' does not read as uint32"},
      {"Count", "12abc", "Test_Bag.Count: '12abc' does not read as uint32"},
      {"Offset", "", "Test_Bag.Offset: '' does not read as sint16"},
      {"Ratio", "half", "Test_Bag.Ratio: 'half' does not read as real64"},
      {"When", "2024-01-01", "Test_Bag.When: '2024-01-01' does not read as datetime"},
      {"Letter", "A", "Test_Bag.Letter: 'A' is not built: the builder reads no char16 value"},
      {"Sizes", "1,x,3", "Test_Bag.Sizes: element 'x' does not read as uint16"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Dropped({{c.name, c.text}}), std::vector<std::string>{c.said});
  }
  EXPECT_EQ(Dropped({{"Peer", "Test_Bag.Id="}}, "Test_BagLink"),
            std::vector<std::string>{"Test_BagLink.Peer: 'Test_Bag.Id=' does not read as ref"});
}

TEST_F(BagCheckTest, AClassThatIsNotLoadedDropsEverything) {
  const std::map<std::string, std::string> bag = {{"Id", "x"}};
  const std::vector<DroppedProperty> dropped = DroppedAtBuilding(host_, "Test_Nope", bag);
  ASSERT_EQ(dropped.size(), 1U);
  EXPECT_EQ(dropped[0].text(), "Test_Nope.Id: the class is not loaded in root/cimv2");
}

}  // namespace
}  // namespace cmpihost::testing
