// The instance builder: how each value text reads under its declared type,
// arrays, references (built twice), date-times, unsupported types, the trace
// sequences of each build, and the definition-text form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "cmpihost/InstanceSnapshot.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"
#include "support/StdoutCapture.h"

namespace diagcore_test {
namespace {

using NQENDRA20::InstanceBuilder;
using NQENDRA20::multiStringTok;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST(MultiStringTokTest, SplitsAtTheDelimiterAndDropsEmptyPieces) {
  const struct {
    std::string text;
    char delimiter;
    std::vector<std::string> pieces;
  } cases[] = {
      {";a;;b;", ';', {"a", "b"}},
      {"", ';', {}},
      {";;;", ';', {}},
      {"one", ';', {"one"}},
      {" a , b ", ',', {" a ", " b "}},
      {"1,2,,3", ',', {"1", "2", "3"}},
      {"a;b", ',', {"a;b"}},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(multiStringTok(text, c.delimiter), c.pieces) << c.text;
    EXPECT_EQ(text, c.text);
  }
}

TEST(ParseInstanceImplTest, InitAddsNothing) {
  NQENDRA20::ParseInstanceImpl bag;
  bag.init();
  EXPECT_EQ(bag.begin(), bag.end());
  EXPECT_EQ(bag.getClassName(), "");
}

class InstanceBuilderTest : public CoreHostTest {
 protected:
  InstanceBuilderTest() : builder_(NQENDRA20::cimNameSpace) {
    host().setClock([] {
      return std::chrono::system_clock::from_time_t(1709618828) + std::chrono::microseconds(1);
    });
  }

  // The CIM date-time text of the host clock above.
  std::string Now() {
    cmpihost::CallScope scope(host());
    const CMPIDateTime* now = scope.broker()->eft->newDateTime(scope.broker(), nullptr);
    const CMPIString* text = now->ft->getStringFormat(now, nullptr);
    return text->ft->getCharPtr(text, nullptr);
  }

  CMPIValue Convert(cmpihost::CallScope& scope, CMPIType type, std::string text) {
    return builder_.convert(scope.broker(), scope.context(), type, text);
  }

  cmpihost::InstanceSnapshot BuildBag(NQENDRA20::InstanceImpl& bag) {
    cmpihost::CallScope scope(host());
    CMPIInstance* instance =
        builder_.build(scope.broker(), scope.context(), bag.getClassName(), bag);
    EXPECT_NE(instance, nullptr);
    return instance == nullptr ? cmpihost::InstanceSnapshot{} : scope.snapshot(instance);
  }

  const InstanceBuilder builder_;
};

std::string Chars(const CMPIString* text) {
  return text->ft->getCharPtr(text, nullptr);
}

TEST_F(InstanceBuilderTest, NumbersAndBooleansReadByFormattedExtraction) {
  cmpihost::CallScope scope(host());
  const struct {
    CMPIType type;
    std::string text;
    std::uint64_t unsignedValue;
  } unsignedCases[] = {
      // Booleans: the numbers 1 and 0 only; the words do not read.
      {CMPI_boolean, "1", 1},
      {CMPI_boolean, "0", 0},
      {CMPI_boolean, " 1", 1},
      {CMPI_boolean, "true", 0},
      {CMPI_boolean, "false", 0},
      {CMPI_boolean, "", 0},
      // 8-bit types: the code of the first non-blank character.
      {CMPI_uint8, "7", 55},
      {CMPI_uint8, "200", 50},
      {CMPI_uint8, "  A", 65},
      {CMPI_uint8, "", 0},
      // Reading stops at the first character that cannot continue the number.
      {CMPI_uint16, "12abc", 12},
      {CMPI_uint16, "0x10", 0},
      {CMPI_uint16, "65535", 65535},
      {CMPI_uint16, "", 0},
      {CMPI_uint16, "abc", 0},
      {CMPI_uint32, " 4294967295", 4294967295U},
      {CMPI_uint32, "42 43", 42},
      {CMPI_uint64, "18446744073709551615", 18446744073709551615ULL},
  };
  for (const auto& c : unsignedCases) {
    const CMPIValue value = Convert(scope, c.type, c.text);
    switch (c.type) {
      case CMPI_boolean:
        EXPECT_EQ(value.boolean, c.unsignedValue) << c.text;
        break;
      case CMPI_uint8:
        EXPECT_EQ(value.uint8, c.unsignedValue) << c.text;
        break;
      case CMPI_uint16:
        EXPECT_EQ(value.uint16, c.unsignedValue) << c.text;
        break;
      case CMPI_uint32:
        EXPECT_EQ(value.uint32, c.unsignedValue) << c.text;
        break;
      default:
        EXPECT_EQ(value.uint64, c.unsignedValue) << c.text;
    }
  }

  EXPECT_EQ(Convert(scope, CMPI_sint8, "-5").sint8, '-');
  EXPECT_EQ(Convert(scope, CMPI_sint8, "A").sint8, 65);
  EXPECT_EQ(Convert(scope, CMPI_sint16, "-32768").sint16, -32768);
  EXPECT_EQ(Convert(scope, CMPI_sint32, "-7 apples").sint32, -7);
  EXPECT_EQ(Convert(scope, CMPI_sint64, "-9223372036854775807").sint64, -9223372036854775807LL);
  EXPECT_EQ(Convert(scope, CMPI_real32, "1.5").real32, 1.5F);
  EXPECT_EQ(Convert(scope, CMPI_real64, "2.25e3").real64, 2250.0);
  EXPECT_EQ(Convert(scope, CMPI_real64, "x").real64, 0.0);
  EXPECT_TRUE(LibraryTraces(host()).empty());
}

TEST_F(InstanceBuilderTest, StringsAndDateTimesAreMadeByTheBroker) {
  cmpihost::CallScope scope(host());
  EXPECT_EQ(Chars(Convert(scope, CMPI_string, " any \"text\", kept ").string),
            " any \"text\", kept ");
  EXPECT_EQ(Chars(Convert(scope, CMPI_string, "").string), "");

  const CMPIDateTime* given = Convert(scope, CMPI_dateTime, "20240102030405.000006+060").dateTime;
  ASSERT_NE(given, nullptr);
  EXPECT_EQ(Chars(given->ft->getStringFormat(given, nullptr)), "20240102030405.000006+060");

  const CMPIDateTime* now = Convert(scope, CMPI_dateTime, "").dateTime;
  ASSERT_NE(now, nullptr);
  EXPECT_EQ(Chars(now->ft->getStringFormat(now, nullptr)), Now());

  // A text the broker does not take gives no date-time.
  EXPECT_EQ(Convert(scope, CMPI_dateTime, "yesterday").dateTime, nullptr);
}

TEST_F(InstanceBuilderTest, ReferenceIsThePathOfAnInstanceBuiltTwiceFromTheText) {
  cmpihost::CallScope scope(host());
  const CMPIObjectPath* ref =
      Convert(scope, CMPI_ref,
              "//far/root/other:DCT_Element.DeviceID=\"d1\",CreationClassName=\"DCT_Element\"")
          .ref;
  ASSERT_NE(ref, nullptr);
  EXPECT_EQ(Chars(ref->ft->toString(ref, nullptr)), "//localhost/root/cimv2:" + ElementText("d1"));
  const std::vector<TraceLine> oneBuild = {
      Debug("Setting property CreationClassName to 'DCT_Element'"),
      Debug("Setting property DeviceID to 'd1'"), Debug("Exiting InstanceBuilder::build")};
  EXPECT_EQ(LibraryTraces(host()), Repeat(oneBuild, 2));
}

TEST_F(InstanceBuilderTest, AReferenceTextThatNamesItselfStopsAtTheNestingBound) {
  // Unquoted, a key value reads as the whole text, which names DCT_Link and
  // its Antecedent again: without a bound this recursed until the stack ran out.
  const std::string selfNaming = "DCT_Link.Antecedent=x";
  TestBag bag("DCT_Link", {{"Antecedent", selfNaming}, {"Note", "n"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);

  // Four levels are built, twice each, so the fifth is refused 2^4 times.
  const TraceLine refused = Warning(
      "InstanceBuilder::convert -> reference nested more than 4 deep, left null: " + selfNaming);
  std::vector<TraceLine> warnings;
  for (const TraceLine& line : LibraryTraces(host())) {
    if (line.severity == kWarning) {
      warnings.push_back(line);
    }
  }
  EXPECT_EQ(warnings, Repeat({refused}, 16));
  EXPECT_EQ(snapshot.find("Antecedent")->type, CMPI_ref);
  EXPECT_EQ(snapshot.find("Note")->text, "n");
}

TEST_F(InstanceBuilderTest, AReferenceThatThrowsLeavesNoNestingBehind) {
  cmpihost::CallScope scope(host());
  // More failed conversions than the bound: each must give its level back.
  for (int attempt = 0; attempt < 6; ++attempt) {
    EXPECT_THROW(Convert(scope, CMPI_ref, ElementText("a") + ","), std::out_of_range);
  }
  EXPECT_NE(Convert(scope, CMPI_ref, ElementText("a")).ref, nullptr);
}

TEST_F(InstanceBuilderTest, UnsupportedTypesAreReportedOnStdoutAndGiveAZeroValue) {
  cmpihost::CallScope scope(host());
  for (const CMPIType type : {CMPI_char16, CMPI_chars, CMPI_instance, CMPI_uint16A, CMPI_null}) {
    StdoutCapture out;
    const CMPIValue value = Convert(scope, type, "5");
    EXPECT_EQ(out.text(), "we didn't handle this case... " + std::to_string(type) + " 5\n");
    EXPECT_EQ(value.uint64, 0U);
  }
  EXPECT_TRUE(LibraryTraces(host()).empty());
}

TEST_F(InstanceBuilderTest, BagPropertiesAreTypedByTheClassDeclaration) {
  TestBag bag("DCT_AllTypes", {{"InstanceID", "all:1"},
                               {"Flag", "1"},
                               {"U8", "7"},
                               {"S8", "-"},
                               {"U16", "12abc"},
                               {"S16", "-2"},
                               {"U32", "4000000000"},
                               {"S32", "-3"},
                               {"U64", "5000000000"},
                               {"S64", "-6000000000"},
                               {"R32", "0.5"},
                               {"R64", "-1.25"},
                               {"Text", "words, with comma"},
                               {"When", "20240102030405.000006+060"},
                               {"EnumOrder", "9"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);

  EXPECT_EQ(snapshot.className, "DCT_AllTypes");
  EXPECT_EQ(snapshot.nameSpace, "root/cimv2");
  EXPECT_THAT(snapshot.path, StartsWith("//localhost/root/cimv2:DCT_AllTypes"));
  const struct {
    const char* name;
    CMPIType type;
    std::string mof;
  } expected[] = {
      {"InstanceID", CMPI_string, "\"all:1\""},
      {"Flag", CMPI_boolean, "TRUE"},
      {"U8", CMPI_uint8, "55"},
      {"S8", CMPI_sint8, "45"},
      {"U16", CMPI_uint16, "12"},
      {"S16", CMPI_sint16, "-2"},
      {"U32", CMPI_uint32, "4000000000"},
      {"S32", CMPI_sint32, "-3"},
      {"U64", CMPI_uint64, "5000000000"},
      {"S64", CMPI_sint64, "-6000000000"},
      {"R32", CMPI_real32, "0.5"},
      {"R64", CMPI_real64, "-1.25"},
      {"Text", CMPI_string, "\"words, with comma\""},
      {"When", CMPI_dateTime, "\"20240102030405.000006+060\""},
      {"EnumOrder", CMPI_uint32, "9"},
      // Not in the bag: left as the class declares it.
      {"Letter", CMPI_char16, "NULL"},
      {"U16s", CMPI_uint16A, "NULL"},
  };
  for (const auto& e : expected) {
    const cmpihost::Value* value = snapshot.find(e.name);
    ASSERT_NE(value, nullptr) << e.name;
    EXPECT_EQ(value->type, e.type) << e.name;
    EXPECT_EQ(value->toMof(), e.mof) << e.name;
  }
}

TEST_F(InstanceBuilderTest, BagBuildTracesEachScalarPropertyInNameOrderThenExits) {
  TestBag bag("DCT_AllTypes", {{"Text", "t"},
                               {"InstanceID", "id"},
                               {"Undeclared", "skipped"},
                               {"U16s", "1,2"},
                               {"Flag", "true"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);

  // Arrays and undeclared names write no trace.
  EXPECT_EQ(
      LibraryTraces(host()),
      (std::vector<TraceLine>{
          Debug("Setting property Flag to 'true'"), Debug("Setting property InstanceID to 'id'"),
          Debug("Setting property Text to 't'"), Debug("Exiting InstanceBuilder::build")}));
  EXPECT_EQ(snapshot.find("Undeclared"), nullptr);
  ASSERT_NE(snapshot.find("Flag"), nullptr);
  EXPECT_EQ(snapshot.find("Flag")->toMof(), "FALSE");  // "true" is not a boolean text
}

TEST_F(InstanceBuilderTest, ArrayTextsAreSplitAtCommasAndReadByElementType) {
  TestBag bag("DCT_AllTypes", {{"InstanceID", "arrays"},
                               {"U16s", "1,2,,3"},
                               {"Flags", "1,0,true"},
                               {"U8s", "7,8"},
                               {"S32s", "-1, 2"},
                               {"R64s", ""},
                               {"Texts", " a b ,c"},
                               {"Whens", "20240102030405.000006+060,,"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  const struct {
    const char* name;
    CMPIType type;
    std::string mof;
  } expected[] = {
      {"U16s", CMPI_uint16A, "{1, 2, 3}"},
      {"Flags", CMPI_booleanA, "{TRUE, FALSE, FALSE}"},
      {"U8s", CMPI_uint8A, "{55, 56}"},
      {"S32s", CMPI_sint32A, "{-1, 2}"},
      {"R64s", CMPI_real64A, "{}"},
      {"Texts", CMPI_stringA, "{\" a b \", \"c\"}"},
      {"Whens", CMPI_dateTimeA, "{\"20240102030405.000006+060\"}"},
  };
  for (const auto& e : expected) {
    const cmpihost::Value* value = snapshot.find(e.name);
    ASSERT_NE(value, nullptr) << e.name;
    EXPECT_EQ(value->type, e.type) << e.name;
    EXPECT_EQ(value->toMof(), e.mof) << e.name;
  }
}

TEST_F(InstanceBuilderTest, EmptyDateTimeTextIsTheCurrentTime) {
  TestBag bag("DCT_AllTypes", {{"InstanceID", "now"}, {"When", ""}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  ASSERT_NE(snapshot.find("When"), nullptr);
  EXPECT_EQ(snapshot.find("When")->text, Now());
}

TEST_F(InstanceBuilderTest, TextsThatDoNotReadAsTheirTypeStillSetAValue) {
  TestBag bag("DCT_AllTypes", {{"InstanceID", "bad"},
                               {"Flag", "yes"},
                               {"U16", ""},
                               {"S32", "minus one"},
                               {"R64", "pi"},
                               {"When", "not a date"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  EXPECT_EQ(snapshot.find("Flag")->toMof(), "FALSE");
  EXPECT_EQ(snapshot.find("U16")->toMof(), "0");
  EXPECT_EQ(snapshot.find("S32")->toMof(), "0");
  EXPECT_EQ(snapshot.find("R64")->toMof(), "0");
  EXPECT_TRUE(snapshot.find("When")->isNull());
}

TEST_F(InstanceBuilderTest, EmptyBagGivesTheInstanceWithoutAnyTrace) {
  TestBag bag("DCT_Element");
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  EXPECT_EQ(snapshot.className, "DCT_Element");
  EXPECT_THAT(LibraryTraces(host()), IsEmpty());
}

TEST_F(InstanceBuilderTest, UnknownClassGivesNullAfterTheExitTrace) {
  cmpihost::CallScope scope(host());
  TestBag bag("DCT_Nope", {{"Name", "x"}});
  EXPECT_EQ(builder_.build(scope.broker(), scope.context(), "DCT_Nope", bag), nullptr);
  EXPECT_EQ(LibraryTraces(host()), std::vector<TraceLine>{Debug("Exiting InstanceBuilder::build")});
}

TEST_F(InstanceBuilderTest, PathTextBuildsClassAndKeysInTheBuildersNamespace) {
  cmpihost::CallScope scope(host());
  std::string text =
      "//far/root/other:DCT_Element.DeviceID=\"a b\",CreationClassName=\"DCT_Element\"";
  const CMPIInstance* instance = builder_.build(scope.broker(), scope.context(), text);
  ASSERT_NE(instance, nullptr);
  const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
  EXPECT_EQ(snapshot.nameSpace, "root/cimv2");
  EXPECT_EQ(snapshot.path, "//localhost/root/cimv2:" + ElementText("a b"));
  EXPECT_EQ(snapshot.find("Caption")->toMof(), "NULL");
}

TEST_F(InstanceBuilderTest, ReferencePropertiesDoubleTheNestedBuildTraces) {
  TestBag bag("DCT_Link", {{"Antecedent", ElementText("a")},
                           {"Dependent", "root/cimv2:" + ElementText("b")},
                           {"Note", "n"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);

  const auto nested = [](const std::string& id) {
    return Repeat({Debug("Setting property CreationClassName to 'DCT_Element'"),
                   Debug("Setting property DeviceID to '" + id + "'"),
                   Debug("Exiting InstanceBuilder::build")},
                  2);
  };
  std::vector<TraceLine> expected = {
      Debug("Setting property Antecedent to '" + ElementText("a") + "'")};
  expected = Concat(expected, nested("a"));
  expected.push_back(Debug("Setting property Dependent to 'root/cimv2:" + ElementText("b") + "'"));
  expected = Concat(expected, nested("b"));
  expected.push_back(Debug("Setting property Note to 'n'"));
  expected.push_back(Debug("Exiting InstanceBuilder::build"));
  EXPECT_EQ(LibraryTraces(host()), expected);

  EXPECT_EQ(snapshot.find("Antecedent")->type, CMPI_ref);
  EXPECT_EQ(snapshot.find("Antecedent")->text, "//localhost/root/cimv2:" + ElementText("a"));
  EXPECT_EQ(snapshot.find("Dependent")->text, "//localhost/root/cimv2:" + ElementText("b"));
}

TEST_F(InstanceBuilderTest, DefinitionTextSetsEachNameValuePair) {
  cmpihost::CallScope scope(host());
  std::string nameSpace = "root/cimv2";
  std::string definitions = ";Text=1=2;U16=12;nodef;;Flag=1;Undeclared=7;";
  StdoutCapture out;
  const CMPIInstance* instance =
      builder_.build(scope.broker(), scope.context(), "DCT_AllTypes", nameSpace, definitions);
  ASSERT_NE(instance, nullptr);

  // The first "=" separates name and value; a piece without "=" is counted only.
  const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
  EXPECT_EQ(snapshot.find("Text")->toMof(), "\"1=2\"");
  EXPECT_EQ(snapshot.find("U16")->toMof(), "12");
  EXPECT_EQ(snapshot.find("Flag")->toMof(), "TRUE");
  EXPECT_EQ(snapshot.find("Undeclared"), nullptr);
  EXPECT_EQ(LibraryTraces(host()), Concat({Debug("Number of property definitions to parse? 5")},
                                          Repeat({Debug("Parsing a property Definition")}, 5)));
  // Echoed without line ends; the undeclared name reaches convert as type 0.
  EXPECT_EQ(out.text(), "Text 1=2 U16 12 Flag 1 Undeclared 7 we didn't handle this case... 0 7\n");
  EXPECT_EQ(definitions, ";Text=1=2;U16=12;nodef;;Flag=1;Undeclared=7;");
}

TEST_F(InstanceBuilderTest, DefinitionTextUsesTheGivenNamespace) {
  host().loadMof(CoreData("qualifiers.mof"), "root/other");
  host().loadMof(CoreData("core.mof"), "root/other");
  cmpihost::CallScope scope(host());
  std::string nameSpace = "root/other";
  std::string definitions = "CreationClassName=DCT_Element;DeviceID=x";
  StdoutCapture out;
  const CMPIInstance* instance =
      builder_.build(scope.broker(), scope.context(), "DCT_Element", nameSpace, definitions);
  ASSERT_NE(instance, nullptr);
  const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
  EXPECT_EQ(snapshot.nameSpace, "root/other");
  EXPECT_EQ(snapshot.path, "//localhost/root/other:" + ElementText("x"));
}

TEST_F(InstanceBuilderTest, DefinitionTextOfUnknownClassGivesNull) {
  cmpihost::CallScope scope(host());
  std::string nameSpace = "root/cimv2";
  std::string definitions = "Name=x";
  EXPECT_EQ(builder_.build(scope.broker(), scope.context(), "DCT_Nope", nameSpace, definitions),
            nullptr);
  EXPECT_EQ(LibraryTraces(host()), std::vector<TraceLine>{Debug("Null Object Path")});
}

TEST_F(InstanceBuilderTest, PrintNsWritesTheNamespace) {
  StdoutCapture out;
  InstanceBuilder("root/test").printNS();
  EXPECT_EQ(out.text(), "root/test\n");
}

}  // namespace
}  // namespace diagcore_test
