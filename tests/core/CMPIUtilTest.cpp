// Object path texts: printing (escapes, host and namespace removed),
// stripping, parsing back into a bag (which must end on every input), and
// the system name and date-time the broker gives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "core/BrokerText.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/InstanceBuilder.h"

namespace diagcore_test {
namespace {

using NQENDRA20::CMPIUtil;
using Properties = std::map<std::string, std::string>;

TEST(StripObjectPathTest, RemovesHostAndNamespaceOnlyBeforeTheClass) {
  const struct {
    std::string text;
    std::string stripped;
  } cases[] = {
      // Begins with the class: kept whole, whatever the key values hold.
      {"CIM_Foo.Name=\"root/cimv2:CIM_Bar.Id=\\\"1\\\"\"",
       "CIM_Foo.Name=\"root/cimv2:CIM_Bar.Id=\\\"1\\\"\""},
      {"CIM_Foo.Path=\"/tmp/a:b\"", "CIM_Foo.Path=\"/tmp/a:b\""},
      // Host, namespace and class without keys: the class alone.
      {"//localhost/root/cimv2:CIM_Foo", "CIM_Foo"},
      {"root/cimv2:CIM_Foo.Name=\"a:b\"", "CIM_Foo.Name=\"a:b\""},
      {"//h.example.com/root/cimv2:CIM_Foo.K=\"v\"", "CIM_Foo.K=\"v\""},
      // "/" first but no ":" at all: unchanged.
      {"root/cimv2", "root/cimv2"},
      // ":" first: up to and including it.
      {":CIM_Foo", "CIM_Foo"},
      {"ns:CIM_Foo.Name=\"x\"", "CIM_Foo.Name=\"x\""},
      // None of the three characters.
      {"CIM_Foo", "CIM_Foo"},
      {"", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CMPIUtil::StripObjectPath(c.text), c.stripped) << c.text;
  }
}

TEST(ObjectPathEscapesTest, BackslashEscapesResolveOnceFromLeftToRight) {
  const struct {
    std::string text;
    std::string resolved;
  } cases[] = {
      {"a\\tb", "a\tb"},
      {"a\\nb\\rc", "a\nb\rc"},
      {"say \\\"hi\\\"", "say \"hi\""},
      // An escaped backslash is one backslash and starts no escape itself.
      {"a\\\\tb", "a\\tb"},
      {"\\\\\\\\", "\\\\"},
      {"\\x", "x"},
      // A backslash at the very end is dropped.
      {"end\\", "end"},
      {"\\", ""},
      {"plain", "plain"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(NQENDRA20::ResolveBackslashEscapes(c.text), c.resolved) << c.text;
  }
}

struct ParseCase {
  std::string text;
  std::string className;
  Properties properties;
};

void ExpectParse(const ParseCase& c) {
  std::string text = c.text;
  NQENDRA20::ParseInstanceImpl bag;
  CMPIUtil::ParseObjectPath(text, bag);
  EXPECT_EQ(text, c.text) << "the caller's text must not change";
  EXPECT_EQ(bag.getClassName(), c.className) << c.text;
  EXPECT_EQ(Properties(bag.begin(), bag.end()), c.properties) << c.text;
}

TEST(ParseObjectPathTest, ReadsClassAndQuotedKeys) {
  const ParseCase cases[] = {
      {"CIM_Foo.CreationClassName=\"CIM_Foo\",DeviceID=\"sda1\"",
       "CIM_Foo",
       {{"CreationClassName", "CIM_Foo"}, {"DeviceID", "sda1"}}},
      // Host and namespace are removed first.
      {"//localhost/root/cimv2:CIM_Foo.DeviceID=\"d\"", "CIM_Foo", {{"DeviceID", "d"}}},
      // Blanks and tabs after a "," are skipped; blanks before "=" end the key.
      {"CIM_Foo.A=\"1\", \t B =\"2\",\tC\t=\"3\"", "CIM_Foo", {{"A", "1"}, {"B", "2"}, {"C", "3"}}},
      // Values keep blanks, ":", "/", "." and "=".
      {"CIM_Foo.Name=\"a b:c/d.e=f\"", "CIM_Foo", {{"Name", "a b:c/d.e=f"}}},
      {"CIM_Foo.Name=\"\"", "CIM_Foo", {{"Name", ""}}},
      // A key given twice keeps the later value.
      {"CIM_Foo.K=\"1\",K=\"2\"", "CIM_Foo", {{"K", "2"}}},
      // A value ends at the first double quote after its opening one.
      {"CIM_Foo.K=\"a\"b\",L=\"c\"", "CIM_Foo", {{"K", "a"}, {"b\",L", "c"}}},
      // No keys.
      {"CIM_Foo", "CIM_Foo", {{"CIM_Foo", "CIM_Foo"}}},
      {"CIM_Foo.", "CIM_Foo", {}},
      {"", "", {}},
  };
  for (const ParseCase& c : cases) {
    ExpectParse(c);
  }
}

TEST(ParseObjectPathTest, StopsWhereAValueLacksItsQuotes) {
  const ParseCase cases[] = {
      // A bare number: the value search starts over at the beginning of the
      // text and takes all of it; then the scan stops instead of repeating.
      {"CIM_Foo.Id=5", "CIM_Foo", {{"Id", "CIM_Foo.Id=5"}}},
      {"CIM_Foo.A=\"1\",Id=5", "CIM_Foo", {{"A", "1"}, {"Id", "CIM_Foo.A="}}},
      // Missing closing quote: the rest of the text, then stop.
      {"CIM_Foo.A=\"1\",B=\"open", "CIM_Foo", {{"A", "1"}, {"B", "open"}}},
      {"CIM_Foo.A=\"", "CIM_Foo", {{"A", ""}}},
      // Missing opening quote after keys read before: stops after that key.
      {"CIM_Foo.k=\"v\",abc", "CIM_Foo", {{"abc", "CIM_Foo.k="}, {"k", "v"}}},
  };
  for (const ParseCase& c : cases) {
    ExpectParse(c);
  }
}

TEST(ParseObjectPathTest, KeyStartingPastTheEndIsAnOutOfRangeError) {
  for (std::string text : {"CIM_Foo.K=\"v\",", "CIM_Foo.K=\"v\", \t", "CIM_Foo. "}) {
    NQENDRA20::ParseInstanceImpl bag;
    EXPECT_THROW(CMPIUtil::ParseObjectPath(text, bag), std::out_of_range) << text;
  }
}

TEST(ParseObjectPathTest, EndsOnEveryInput) {
  // Random texts over the characters the scan reacts to: each call returns or
  // throws out_of_range; a hang would hit the test's time limit.
  const std::string alphabet = "..,,\"\"\"== \t:/AbK1\\";
  std::mt19937 random(20240601);
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
  std::uniform_int_distribution<std::size_t> length(0, 24);
  int parsed = 0;
  int outOfRange = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (std::size_t n = length(random); n > 0; --n) {
      text += alphabet[pick(random)];
    }
    NQENDRA20::ParseInstanceImpl bag;
    try {
      CMPIUtil::ParseObjectPath(text, bag);
      ++parsed;
    } catch (const std::out_of_range&) {
      ++outOfRange;
    }
  }
  EXPECT_EQ(parsed + outOfRange, 20000);
  EXPECT_GT(parsed, 0);
  EXPECT_GT(outOfRange, 0);
}

class CMPIUtilHostTest : public CoreHostTest {
 protected:
  CMPIUtilHostTest() : CoreHostTest(/*withSystem=*/true) {}
};

TEST_F(CMPIUtilHostTest, PathTextIsTheBrokersTextWithoutHostNamespaceOrEscapes) {
  cmpihost::CallScope scope(host());
  const struct {
    std::string path;
    std::string text;
  } cases[] = {
      {"//otherhost/root/cimv2:DCT_Element.DeviceID=\"d1\",CreationClassName=\"DCT_Element\"",
       ElementText("d1")},
      {"root/cimv2:DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"say \\\"hi\\\"\"",
       ElementText("say \"hi\"")},
      {"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"back\\\\slash\"",
       ElementText("back\\slash")},
      {"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"tab\there\"",
       ElementText("tab\there")},
      {"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"root/cimv2:X.Y=1\"",
       ElementText("root/cimv2:X.Y=1")},
      {"DCT_NumberKey.Id=42", "DCT_NumberKey.Id=42"},
      {"root/cimv2:DCT_Element", "DCT_Element"},
  };
  for (const auto& c : cases) {
    const CMPIObjectPath* path = scope.objectPath(c.path);
    ASSERT_NE(path, nullptr) << c.path;
    EXPECT_EQ(CMPIUtil::GetObjectPathString(path), c.text) << c.path;
  }
  EXPECT_EQ(CMPIUtil::GetClassName(scope.objectPath("//h/root/cimv2:DCT_NumberKey.Id=1")),
            "DCT_NumberKey");
}

TEST_F(CMPIUtilHostTest, PathTextOfAReferenceKeyHoldsTheNestedPathUnescaped) {
  cmpihost::CallScope scope(host());
  const std::string nested =
      "//localhost/root/"
      "cimv2:DCT_Element.CreationClassName=\\\"DCT_Element\\\",DeviceID=\\\"d1\\\"";
  const CMPIObjectPath* path =
      scope.objectPath("DCT_Link.Antecedent=\"" + nested + "\",Dependent=\"" + nested + "\"");
  ASSERT_NE(path, nullptr);
  const std::string unescaped =
      "//localhost/root/cimv2:DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"d1\"";
  EXPECT_EQ(CMPIUtil::GetObjectPathString(path),
            "DCT_Link.Antecedent=\"" + unescaped + "\",Dependent=\"" + unescaped + "\"");
}

TEST_F(CMPIUtilHostTest, SystemNameIsTheNameOfTheFirstComputerSystem) {
  cmpihost::CallScope scope(host());
  EXPECT_EQ(CMPIUtil::GetSystemName(scope.broker(), scope.context()), "testhost.example");
  EXPECT_TRUE(LibraryTraces(host()).empty());
}

TEST_F(CoreHostTest, SystemNameIsEmptyWithoutAComputerSystem) {
  cmpihost::CallScope scope(host());
  EXPECT_EQ(CMPIUtil::GetSystemName(scope.broker(), scope.context()), "");
}

TEST_F(CoreHostTest, DateTimeTextIsTheBrokersCurrentTime) {
  // 2024-03-05 06:07:08.009010 UTC, printed in local time with its offset.
  const std::time_t seconds = 1709618828;
  host().setClock([&] {
    return std::chrono::system_clock::from_time_t(seconds) + std::chrono::microseconds(9010);
  });
  std::tm local{};
  localtime_r(&seconds, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", &local);
  const long offset = local.tm_gmtoff / 60;
  char expected[64];
  std::snprintf(expected, sizeof expected, "%s.009010%c%03ld", stamp, offset < 0 ? '-' : '+',
                offset < 0 ? -offset : offset);

  cmpihost::CallScope scope(host());
  EXPECT_EQ(CMPIUtil::GetDateTimeString(scope.broker()), expected);
}

}  // namespace
}  // namespace diagcore_test
