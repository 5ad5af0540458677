// Name lookups that every request makes: class and namespace names compared
// and hashed without case (eight characters at a time), a class's property
// index, and the escapes of key values in printed paths. The cases sit on
// the edges of the word-at-a-time code: lengths around multiples of eight,
// characters next to the capital letters, bytes above ASCII.
#include <string>
#include <vector>

#include "HostTestSupport.h"
#include "broker/Values.h"
#include "repository/NoCase.h"

namespace cmpihost::testing {
namespace {

TEST(NoCaseNamesTest, EqualityFoldsAsciiCapitalsOnlyAtEveryLength) {
  struct Case {
    std::string a;
    std::string b;
    bool equal;
  };
  const std::vector<Case> cases = {
      {"", "", true},
      {"a", "A", true},
      {"CIM_ManagedElement", "cim_managedelement", true},  // 18: two words and a tail
      {"ABCDEFGH", "abcdefgh", true},                      // exactly one word
      {"ABCDEFGHI", "abcdefghj", false},                   // differs in the tail only
      {"ABCDEFGX", "abcdefgh", false},                     // differs in the last of a word
      {"root/cimv2", "ROOT/CIMV2", true},
      {"@[`{", "`{@[", false},  // the neighbours of A-Z and a-z are not letters
      {"@", "`", false},
      {"[", "{", false},
      {"Z", "z", true},
      {"\xC3\x84rger", "\xC3\xA4rger", false},  // UTF-8 letters are not folded
      {"\xC4", "\xE4", false},                  // nor Latin-1 ones
      {"Name_1", "NAME_1", true},
      {"Name", "Names", false},
      {std::string("a\0b", 3), std::string("A\0B", 3), true},
      {std::string("a\0b", 3), std::string("a\0c", 3), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("'" + c.a + "' / '" + c.b + "'");
    EXPECT_EQ(NoCaseEqual(c.a, c.b), c.equal);
    EXPECT_EQ(NoCaseEqual(c.b, c.a), c.equal);
    if (c.equal) {
      EXPECT_EQ(NoCaseHash()(c.a), NoCaseHash()(c.b));
    }
  }
}

TEST(NoCaseNamesTest, HashTellsApartNamesThatDifferInOneCharacterOrTheirLength) {
  const std::string base = "CIM_DiagnosticServiceRecord";
  std::vector<std::string> names = {base, base + "s", base.substr(0, 8), base.substr(0, 16), ""};
  for (std::size_t i = 0; i < base.size(); ++i) {
    std::string changed = base;
    changed[i] = changed[i] == 'x' ? 'y' : 'x';
    names.push_back(changed);
  }
  std::vector<std::size_t> hashes;
  for (const std::string& name : names) {
    hashes.push_back(NoCaseHash()(name));
  }
  for (std::size_t i = 0; i < hashes.size(); ++i) {
    for (std::size_t j = i + 1; j < hashes.size(); ++j) {
      EXPECT_NE(hashes[i], hashes[j]) << "'" << names[i] << "' and '" << names[j] << "'";
    }
  }
}

ClassShape ShapeOf(const std::vector<std::string>& names, bool indexed) {
  ClassShape shape;
  shape.className = "Test_Shape";
  for (const std::string& name : names) {
    PropertyShape property;
    property.name = name;
    shape.properties.push_back(property);
  }
  if (indexed) {
    shape.buildIndex();
  }
  return shape;
}

TEST(ClassShapeTest, FindAnswersEveryDeclaredNameInAnyCaseAndNothingElse) {
  // Names alike in length and end letters, which hash near each other.
  const std::vector<std::string> names = {
      "LoopsFailed", "LoopsPassed", "ErrorCode",   "ErrorCount", "InstanceID",
      "Caption",     "Description", "ElementName", "RecordData", "A",
      "B",           "Ab@",         "Ab`",         "Locale",     "CreationTimeStamp"};
  for (const bool indexed : {true, false}) {
    SCOPED_TRACE(indexed ? "indexed" : "compared one by one");
    const ClassShape shape = ShapeOf(names, indexed);
    for (std::size_t i = 0; i < names.size(); ++i) {
      std::string upper = names[i];
      std::string lower = names[i];
      for (char& c : upper) {
        c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
      }
      for (char& c : lower) {
        c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
      }
      for (const std::string& spelling : {names[i], upper, lower}) {
        const auto found = shape.find(spelling);
        ASSERT_TRUE(found.has_value()) << spelling;
        EXPECT_EQ(*found, i) << spelling;
      }
    }
    for (const char* absent : {"", "Loops", "LoopsFailedX", "LoopsPassed ", "Ab", "Ab{", "AB@@",
                               "C", "ErrorCod", "Locale\xC3\xA9"}) {
      EXPECT_FALSE(shape.find(absent).has_value()) << "'" << absent << "'";
    }
  }
}

class PathEscapeTest : public HostTest {};

TEST_F(PathEscapeTest, QuotesAndBackslashesAreEscapedWhereverTheySit) {
  struct Case {
    std::string value;
    std::string printed;
  };
  const std::vector<Case> cases = {
      {"", "\"\""},
      {"plain text of more than eight", "\"plain text of more than eight\""},
      {"\"", "\"\\\"\""},
      {"1234567\"", "\"1234567\\\"\""},    // last of the first word
      {"12345678\\", "\"12345678\\\\\""},  // first of the tail
      {"\\1234567890123456\"", "\"\\\\1234567890123456\\\"\""},
      {"abcdefgh\"\"ijklmnop\\", "\"abcdefgh\\\"\\\"ijklmnop\\\\\""},
      {"\xC3\xA9t\xC3\xA9 \xE2\x80\x9C", "\"\xC3\xA9t\xC3\xA9 \xE2\x80\x9C\""},  // no escapes
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    CMPIObjectPath* keyed = path("Test_Keyed");
    CMPIValue value;
    value.string = string(c.value.c_str());
    ASSERT_EQ(keyed->ft->addKey(keyed, "Name", &value, CMPI_string).rc, CMPI_RC_OK);
    CMPIString* text = keyed->ft->toString(keyed, nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string(text->ft->getCharPtr(text, nullptr)),
              "root/cimv2:Test_Keyed.Name=" + c.printed);
  }
}

}  // namespace
}  // namespace cmpihost::testing
