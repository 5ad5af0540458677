// Object path texts: printing (escapes, host and namespace removed),
// stripping, parsing back into a bag (which must end on every input), and
// the system name and date-time the broker gives.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <stdexcept>
#include <string>

#include "cmpihost/CallScope.h"
#include "core/BrokerText.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/InstanceBuilder.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::CMPIUtil;
using Properties = std::map<std::string, std::string>;

struct TextCase {
  std::string text;
  std::string expected;
};

TEST(StripObjectPathTest, RemovesHostAndNamespaceOnlyBeforeTheClass) {
  const TextCase cases[] = {
      // Begins with the class: kept whole, whatever the key values hold.
      {"CIM_Foo.Name=\"root/cimv2:CIM_Bar.Id=\\\"1\\\"\"",
       "CIM_Foo.Name=\"root/cimv2:CIM_Bar.Id=\\\"1\\\"\""},
      {"//localhost/root/cimv2:CIM_Foo", "CIM_Foo"},
      {"root/cimv2:CIM_Foo.Name=\"a:b\"", "CIM_Foo.Name=\"a:b\""},
      {"root/cimv2", "root/cimv2"},  // "/" first but no ":" at all
      {":CIM_Foo", "CIM_Foo"},
      {"", ""},
  };
  for (const TextCase& c : cases) {
    EXPECT_EQ(CMPIUtil::StripObjectPath(c.text), c.expected) << c.text;
  }
}

TEST(ObjectPathEscapesTest, BackslashEscapesResolveOnceFromLeftToRight) {
  const TextCase cases[] = {
      {"a\\tb\\nc\\rd", "a\tb\nc\rd"},
      {"say \\\"hi\\\"", "say \"hi\""},
      {"a\\\\tb", "a\\tb"},  // an escaped backslash starts no escape itself
      {"\\\\\\\\", "\\\\"},
      {"\\x", "x"},
      {"end\\", "end"},  // a backslash at the very end is dropped
  };
  for (const TextCase& c : cases) {
    EXPECT_EQ(NQENDRA20::ResolveBackslashEscapes(c.text), c.expected) << c.text;
  }
}

TEST(ParseObjectPathTest, ReadsClassAndQuotedKeysAndStopsWhereQuotesLack) {
  const struct {
    std::string text;
    std::string className;
    Properties properties;
  } cases[] = {
      {"//localhost/root/cimv2:CIM_Foo.CreationClassName=\"CIM_Foo\",DeviceID=\"sda1\"",
       "CIM_Foo",
       {{"CreationClassName", "CIM_Foo"}, {"DeviceID", "sda1"}}},
      // Blanks and tabs after a "," are skipped; blanks before "=" end the key.
      {"CIM_Foo.A=\"1\", \t B =\"2\",\tC\t=\"3\"", "CIM_Foo", {{"A", "1"}, {"B", "2"}, {"C", "3"}}},
      {"CIM_Foo.Name=\"a b:c/d.e=f\"", "CIM_Foo", {{"Name", "a b:c/d.e=f"}}},
      {"CIM_Foo.K=\"1\",K=\"2\"", "CIM_Foo", {{"K", "2"}}},
      // A value ends at the first double quote after its opening one.
      {"CIM_Foo.K=\"a\"b\",L=\"c\"", "CIM_Foo", {{"K", "a"}, {"b\",L", "c"}}},
      {"CIM_Foo", "CIM_Foo", {{"CIM_Foo", "CIM_Foo"}}},
      {"CIM_Foo.", "CIM_Foo", {}},
      {"", "", {}},
      // A bare number: the value search starts over at the beginning of the
      // text and takes all of it; then the scan stops instead of repeating.
      {"CIM_Foo.Id=5", "CIM_Foo", {{"Id", "CIM_Foo.Id=5"}}},
      {"CIM_Foo.A=\"1\",Id=5", "CIM_Foo", {{"A", "1"}, {"Id", "CIM_Foo.A="}}},
      // Missing closing quote: the rest of the text, then stop.
      {"CIM_Foo.A=\"1\",B=\"open", "CIM_Foo", {{"A", "1"}, {"B", "open"}}},
      {"CIM_Foo.k=\"v\",abc", "CIM_Foo", {{"abc", "CIM_Foo.k="}, {"k", "v"}}},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    NQENDRA20::ParseInstanceImpl bag;
    CMPIUtil::ParseObjectPath(text, bag);
    EXPECT_EQ(text, c.text) << "the caller's text must not change";
    EXPECT_EQ(bag.getClassName(), c.className) << c.text;
    EXPECT_EQ(Properties(bag.begin(), bag.end()), c.properties) << c.text;
  }
  NQENDRA20::ParseInstanceImpl fresh;
  fresh.init();  // adds nothing
  EXPECT_EQ(fresh.begin(), fresh.end());
  // A key starting past the end is an out-of-range error.
  for (std::string text : {"CIM_Foo.K=\"v\",", "CIM_Foo.K=\"v\", \t", "CIM_Foo. "}) {
    NQENDRA20::ParseInstanceImpl bag;
    EXPECT_THROW(CMPIUtil::ParseObjectPath(text, bag), std::out_of_range) << text;
  }
}

class CMPIUtilHostTest : public CoreHostTest {
 protected:
  CMPIUtilHostTest() : CoreHostTest(/*withSystem=*/true) {}
};

TEST_F(CMPIUtilHostTest, PathTextIsTheBrokersTextWithoutHostNamespaceOrEscapes) {
  cmpihost::CallScope scope(host());
  const std::string nested =
      "//localhost/root/"
      "cimv2:DCT_Element.CreationClassName=\\\"DCT_Element\\\",DeviceID=\\\"d1\\\"";
  const std::string unescaped =
      "//localhost/root/cimv2:DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"d1\"";
  const TextCase cases[] = {
      {"//otherhost/root/cimv2:DCT_Element.DeviceID=\"d1\",CreationClassName=\"DCT_Element\"",
       "DCT_Element.DeviceID=\"d1\",CreationClassName=\"DCT_Element\""},
      {"root/cimv2:DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"say \\\"hi\\\"\"",
       ElementText("say \"hi\"")},
      {"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"back\\\\slash\"",
       ElementText("back\\slash")},
      {"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"root/cimv2:X.Y=1\"",
       ElementText("root/cimv2:X.Y=1")},
      {"DCT_NumberKey.Id=42", "DCT_NumberKey.Id=42"},
      {"root/cimv2:DCT_Element", "DCT_Element"},
      // A reference key holds the nested path unescaped.
      {"DCT_Link.Antecedent=\"" + nested + "\",Dependent=\"" + nested + "\"",
       "DCT_Link.Antecedent=\"" + unescaped + "\",Dependent=\"" + unescaped + "\""},
  };
  for (const TextCase& c : cases) {
    const CMPIObjectPath* path = scope.objectPath(c.text);
    ASSERT_NE(path, nullptr) << c.text;
    EXPECT_EQ(CMPIUtil::GetObjectPathString(path), c.expected) << c.text;
  }
  EXPECT_EQ(CMPIUtil::GetClassName(scope.objectPath("//h/root/cimv2:DCT_NumberKey.Id=1")),
            "DCT_NumberKey");
  // The first computer system names the managed system.
  EXPECT_EQ(CMPIUtil::GetSystemName(scope.broker(), scope.context()), "testhost.example");
  EXPECT_TRUE(LibraryTraces(host()).empty());
}

TEST_F(CoreHostTest, SystemNameIsEmptyWithoutAComputerSystemAndDateTimeIsTheBrokers) {
  // Printed in local time with its offset.
  const auto when = FixedTime() + std::chrono::microseconds(9010);
  host().setClock([when] { return when; });
  cmpihost::CallScope scope(host());
  EXPECT_EQ(CMPIUtil::GetDateTimeString(scope.broker()), CimDateTime(when));
  EXPECT_EQ(CMPIUtil::GetSystemName(scope.broker(), scope.context()), "");
}

}  // namespace
}  // namespace diagcore_test
