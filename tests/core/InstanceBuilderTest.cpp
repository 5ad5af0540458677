// The instance builder: how each value text reads under its declared type
// (exactly as a fresh stream in the global locale reads it), arrays,
// references (built twice, nesting bounded), date-times, unsupported types,
// the trace sequences of each build, and the definition-text form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cmpihost/CallScope.h"
#include "cmpihost/InstanceSnapshot.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"
#include "diagcore/InstanceImpl.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::InstanceBuilder;
using Properties = std::vector<std::pair<std::string, std::string>>;
using ::testing::IsEmpty;

// What a freshly made stream reads from `text`.
template <typename T>
T StreamRead(const std::string& text) {
  std::istringstream in(text);
  T value{};
  in >> value;
  return value;
}

// Digits in a locale's thousands groups: "1,234" reads as 1234 there.
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

std::string Chars(const CMPIString* text) {
  return text->ft->getCharPtr(text, nullptr);
}

TEST(MultiStringTokTest, SplitsAtTheDelimiterAndDropsEmptyPieces) {
  const struct {
    std::string text;
    char delimiter;
    std::vector<std::string> pieces;
  } cases[] = {
      {";a;;b;", ';', {"a", "b"}},      {"", ';', {}},         {";;;", ';', {}},
      {" a , b ", ',', {" a ", " b "}}, {"a;b", ',', {"a;b"}},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(NQENDRA20::multiStringTok(text, c.delimiter), c.pieces) << c.text;
    EXPECT_EQ(text, c.text);
  }
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
    return Chars(now->ft->getStringFormat(now, nullptr));
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

TEST_F(InstanceBuilderTest, NumbersAndBooleansReadAsAFreshStreamReadsThem) {
  cmpihost::CallScope scope(host());
  // Separated by "|": every piece, the empty one too, is read.
  std::vector<std::string> texts = {""};
  for (const char c : std::string("0|7|007|200|65535|65536|32768|2147483647|2147483648|4294967295|"
                                  "4294967296|-1|-5|+5| 5|  A|5 ||x|true|1,234|12abc|0x10|-32769|"
                                  "1.5|2.25e3|00000000000000000001|9223372036854775808|"
                                  "18446744073709551615|-9223372036854775807")) {
    if (c == '|') {
      texts.emplace_back();
    } else {
      texts.back() += c;
    }
  }
  for (const std::string& text : texts) {
    EXPECT_EQ(Convert(scope, CMPI_uint8, text).uint8, StreamRead<unsigned char>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint8, text).sint8, StreamRead<signed char>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_uint16, text).uint16, StreamRead<unsigned short>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_uint32, text).uint32, StreamRead<unsigned int>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_uint64, text).uint64, StreamRead<unsigned long>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint16, text).sint16, StreamRead<short>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint32, text).sint32, StreamRead<int>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint64, text).sint64, StreamRead<long>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_boolean, text).boolean, StreamRead<bool>(text) ? 1 : 0) << text;
    EXPECT_EQ(Convert(scope, CMPI_real32, text).real32, StreamRead<float>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_real64, text).real64, StreamRead<double>(text)) << text;
  }
  // Words are no booleans, and an 8-bit type reads one character: "7" is 55.
  EXPECT_EQ(Convert(scope, CMPI_boolean, "true").boolean, 0);
  EXPECT_EQ(Convert(scope, CMPI_uint8, "7").uint8, 55);

  // The reused stream follows the global locale of the moment.
  {
    const std::locale saved =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(Convert(scope, CMPI_uint32, "1,234").uint32, 1234U);
    EXPECT_EQ(Convert(scope, CMPI_sint64, "-2,000,000").sint64, -2000000);
    std::locale::global(saved);
  }
  EXPECT_EQ(Convert(scope, CMPI_uint32, "1,234").uint32, 1U);
  EXPECT_TRUE(LibraryTraces(host()).empty());
}

TEST_F(InstanceBuilderTest, StringsDateTimesAndUnsupportedTypes) {
  cmpihost::CallScope scope(host());
  EXPECT_EQ(Chars(Convert(scope, CMPI_string, " any \"text\", kept ").string),
            " any \"text\", kept ");
  const CMPIDateTime* given = Convert(scope, CMPI_dateTime, "20240102030405.000006+060").dateTime;
  ASSERT_NE(given, nullptr);
  EXPECT_EQ(Chars(given->ft->getStringFormat(given, nullptr)), "20240102030405.000006+060");
  const CMPIDateTime* now = Convert(scope, CMPI_dateTime, "").dateTime;
  ASSERT_NE(now, nullptr);
  EXPECT_EQ(Chars(now->ft->getStringFormat(now, nullptr)), Now());
  // A text the broker does not take gives no date-time.
  EXPECT_EQ(Convert(scope, CMPI_dateTime, "yesterday").dateTime, nullptr);

  for (const CMPIType type : {CMPI_char16, CMPI_chars, CMPI_instance, CMPI_uint16A, CMPI_null}) {
    StdoutCapture out;
    EXPECT_EQ(Convert(scope, type, "5").uint64, 0U);
    EXPECT_EQ(out.text(), "we didn't handle this case... " + std::to_string(type) + " 5\n");
  }
  EXPECT_TRUE(LibraryTraces(host()).empty());
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

  // More failed conversions than the bound: each must give its level back.
  cmpihost::CallScope scope(host());
  for (int attempt = 0; attempt < 6; ++attempt) {
    EXPECT_THROW(Convert(scope, CMPI_ref, ElementText("a") + ","), std::out_of_range);
  }
  EXPECT_NE(Convert(scope, CMPI_ref, ElementText("a")).ref, nullptr);
}

TEST_F(InstanceBuilderTest, BagPropertiesAreTypedByTheClassDeclaration) {
  TestBag bag("DCT_AllTypes", {{"InstanceID", "all:1"},
                               {"Flag", "1"},
                               {"U8", "7"},
                               {"S16", "-2"},
                               {"U32", "4000000000"},
                               {"S64", "-6000000000"},
                               {"R32", "0.5"},
                               {"Text", "words, with comma"},
                               {"When", "20240102030405.000006+060"},
                               {"U16s", "1,2,,3"},
                               {"Flags", "1,0,true"},
                               {"S32s", "-1, 2"},
                               {"R64s", ""},
                               {"Texts", " a b ,c"},
                               {"Whens", "20240102030405.000006+060,,"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  EXPECT_EQ(snapshot.path, "//localhost/root/cimv2:DCT_AllTypes.InstanceID=\"all:1\"");
  ExpectProperties(snapshot, {
                                 {"InstanceID", CMPI_string, "\"all:1\""},
                                 {"Flag", CMPI_boolean, "TRUE"},
                                 {"U8", CMPI_uint8, "55"},
                                 {"S16", CMPI_sint16, "-2"},
                                 {"U32", CMPI_uint32, "4000000000"},
                                 {"S64", CMPI_sint64, "-6000000000"},
                                 {"R32", CMPI_real32, "0.5"},
                                 {"Text", CMPI_string, "\"words, with comma\""},
                                 {"When", CMPI_dateTime, "\"20240102030405.000006+060\""},
                                 // Arrays are split at commas, empty pieces dropped.
                                 {"U16s", CMPI_uint16A, "{1, 2, 3}"},
                                 {"Flags", CMPI_booleanA, "{TRUE, FALSE, FALSE}"},
                                 {"S32s", CMPI_sint32A, "{-1, 2}"},
                                 {"R64s", CMPI_real64A, "{}"},
                                 {"Texts", CMPI_stringA, "{\" a b \", \"c\"}"},
                                 {"Whens", CMPI_dateTimeA, "{\"20240102030405.000006+060\"}"},
                                 // Not in the bag: left as the class declares it.
                                 {"Letter", CMPI_char16, "NULL"},
                                 {"U8s", CMPI_uint8A, "NULL"},
                             });

  // An empty date-time text is the current time; one the broker refuses, null.
  TestBag now("DCT_AllTypes", {{"InstanceID", "now"}, {"When", ""}});
  EXPECT_EQ(BuildBag(now).find("When")->text, Now());
  TestBag bad("DCT_AllTypes", {{"InstanceID", "bad"}, {"When", "not a date"}});
  EXPECT_TRUE(BuildBag(bad).find("When")->isNull());
}

TEST_F(InstanceBuilderTest, EachBuildTracesItsScalarPropertiesInNameOrderThenExits) {
  TestBag bag("DCT_AllTypes", {{"Text", "t"},
                               {"InstanceID", "id"},
                               {"Undeclared", "skipped"},
                               {"U16s", "1,2"},
                               {"Flag", "true"}});
  const cmpihost::InstanceSnapshot snapshot = BuildBag(bag);
  // Arrays and undeclared names write no trace.
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Debug("Setting property Flag to 'true'"),
                                                  Debug("Setting property InstanceID to 'id'"),
                                                  Debug("Setting property Text to 't'"),
                                                  Debug("Exiting InstanceBuilder::build")}));
  EXPECT_EQ(snapshot.find("Undeclared"), nullptr);

  // A trace longer than the trace buffer is written whole.
  for (const std::size_t length : {1023U, 1024U, 5000U}) {
    TestBag longText("DCT_AllTypes", {{"Text", std::string(length, 'q')}});
    BuildBag(longText);
    EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Debug("Setting property Text to '" +
                                                          std::string(length, 'q') + "'"),
                                                    Debug("Exiting InstanceBuilder::build")}))
        << length;
  }

  TestBag empty("DCT_Element");
  EXPECT_EQ(BuildBag(empty).className, "DCT_Element");
  EXPECT_THAT(TakeTraces(), IsEmpty());

  cmpihost::CallScope scope(host());
  TestBag unknown("DCT_Nope", {{"Name", "x"}});
  EXPECT_EQ(builder_.build(scope.broker(), scope.context(), "DCT_Nope", unknown), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("Exiting InstanceBuilder::build")});
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
  std::vector<TraceLine> expected =
      Concat({Debug("Setting property Antecedent to '" + ElementText("a") + "'")}, nested("a"));
  expected.push_back(Debug("Setting property Dependent to 'root/cimv2:" + ElementText("b") + "'"));
  expected = Concat(expected, nested("b"));
  expected.push_back(Debug("Setting property Note to 'n'"));
  expected.push_back(Debug("Exiting InstanceBuilder::build"));
  EXPECT_EQ(LibraryTraces(host()), expected);

  EXPECT_EQ(snapshot.find("Antecedent")->type, CMPI_ref);
  EXPECT_EQ(snapshot.find("Antecedent")->text, "//localhost/root/cimv2:" + ElementText("a"));
  EXPECT_EQ(snapshot.find("Dependent")->text, "//localhost/root/cimv2:" + ElementText("b"));
}

TEST_F(InstanceBuilderTest, PathTextBuildsClassAndKeysInTheBuildersNamespace) {
  cmpihost::CallScope scope(host());
  std::string text =
      "//far/root/other:DCT_Element.DeviceID=\"a b\",CreationClassName=\"DCT_Element\"";
  const CMPIInstance* instance = builder_.build(scope.broker(), scope.context(), text);
  ASSERT_NE(instance, nullptr);
  const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
  EXPECT_EQ(snapshot.path, "//localhost/root/cimv2:" + ElementText("a b"));
  EXPECT_EQ(snapshot.find("Caption")->toMof(), "NULL");
}

TEST_F(InstanceBuilderTest, DefinitionTextSetsEachNameValuePairInTheGivenNamespace) {
  cmpihost::CallScope scope(host());
  std::string nameSpace = "root/cimv2";
  std::string definitions = ";Text=1=2;U16=12;nodef;;Flag=1;Undeclared=7;";
  {
    StdoutCapture out;
    const CMPIInstance* instance =
        builder_.build(scope.broker(), scope.context(), "DCT_AllTypes", nameSpace, definitions);
    ASSERT_NE(instance, nullptr);
    // The first "=" separates name and value; a piece without "=" is counted only.
    const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
    ExpectProperties(snapshot, {{"Text", CMPI_string, "\"1=2\""},
                                {"U16", CMPI_uint16, "12"},
                                {"Flag", CMPI_boolean, "TRUE"}});
    EXPECT_EQ(snapshot.find("Undeclared"), nullptr);
    EXPECT_EQ(TakeTraces(), Concat({Debug("Number of property definitions to parse? 5")},
                                   Repeat({Debug("Parsing a property Definition")}, 5)));
    // Echoed without line ends; the undeclared name reaches convert as type 0.
    EXPECT_EQ(out.text(),
              "Text 1=2 U16 12 Flag 1 Undeclared 7 we didn't handle this case... 0 7\n");
    EXPECT_EQ(definitions, ";Text=1=2;U16=12;nodef;;Flag=1;Undeclared=7;");
  }

  host().loadMof(CoreData("qualifiers.mof"), "root/other");
  host().loadMof(CoreData("core.mof"), "root/other");
  std::string other = "root/other";
  std::string keys = "CreationClassName=DCT_Element;DeviceID=x";
  StdoutCapture out;
  const CMPIInstance* instance =
      builder_.build(scope.broker(), scope.context(), "DCT_Element", other, keys);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(scope.snapshot(instance).path, "//localhost/root/other:" + ElementText("x"));
  TakeTraces();

  EXPECT_EQ(builder_.build(scope.broker(), scope.context(), "DCT_Nope", nameSpace, keys), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("Null Object Path")});
  InstanceBuilder("root/test").printNS();
  EXPECT_EQ(out.text().substr(out.text().size() - 10), "root/test\n");
}

TEST_F(CoreHostTest, HostPropertyNamesMatchWithoutCaseAndOnlyWhole) {
  cmpihost::CallScope scope(host());
  CMPIInstance* instance =
      scope.broker()->eft->newInstance(scope.broker(), scope.objectPath("DCT_AllTypes"), nullptr);
  ASSERT_NE(instance, nullptr);
  const struct {
    const char* name;
    CMPIType type;  // CMPI_null: not declared
  } cases[] = {
      {"u16", CMPI_uint16},  {"U1", CMPI_null}, {"U160", CMPI_null},        {"TEXTS", CMPI_stringA},
      {"Text", CMPI_string}, {"", CMPI_null},   {"enumorder", CMPI_uint32}, {"EnumOrde", CMPI_null},
  };
  for (const auto& c : cases) {
    CMPIStatus status = {CMPI_RC_OK, nullptr};
    EXPECT_EQ(instance->ft->getProperty(instance, c.name, &status).type, c.type) << c.name;
    EXPECT_EQ(status.rc, c.type == CMPI_null ? CMPI_RC_ERR_NO_SUCH_PROPERTY : CMPI_RC_OK) << c.name;
  }
  CMPIValue value{};
  value.uint16 = 9;
  EXPECT_EQ(instance->ft->setProperty(instance, "u16", &value, CMPI_uint16).rc, CMPI_RC_OK);
  EXPECT_EQ(instance->ft->getProperty(instance, "U16", nullptr).value.uint16, 9);
}

// The host's log names each bag property the library's builder drops or
// misreads, as it builds, and stays quiet about everything else.

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

// The property bag: insert-on-read, properties-only copies, byte order of
// names and the printed form.

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return Properties(bag.begin(), bag.end());
}

TEST(InstanceImplTest, ReadsInsertAndNamesKeepByteOrder) {
  TestBag bag("DCT_Element");
  EXPECT_EQ(bag.find("Caption"), bag.end());
  // Both hand out the stored value itself, inserting it empty first.
  bag.get("Caption") = "c";
  bag["Other"] += "o";
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"Caption", "c"}, {"Other", "o"}}));

  TestBag names("X", {{"name", "1"}, {"Name", "2"}, {"a", "3"}, {"B", "4"}});
  EXPECT_EQ(PropertiesOf(names),
            (Properties{{"B", "4"}, {"Name", "2"}, {"a", "3"}, {"name", "1"}}));
}

TEST(InstanceImplTest, CopiesCarryPropertiesOnly) {
  TestBag target("ClassA", {{"a", "1"}, {"b", "2"}});
  target.setObjectPath("ClassA.a=\"1\"");
  TestBag source("ClassB", {{"c", "3"}});
  source.setObjectPath("ClassB.c=\"3\"");

  target = source;
  EXPECT_EQ(target.getClassName(), "ClassA");
  EXPECT_EQ(target.getObjectPath(), "ClassA.a=\"1\"");
  EXPECT_EQ(PropertiesOf(target), (Properties{{"c", "3"}}));

  const TestBag copy(source);
  EXPECT_EQ(copy.getClassName(), "");
  EXPECT_EQ(copy.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(copy), (Properties{{"c", "3"}}));

  TestBag& alias = target;
  target = alias;
  EXPECT_EQ(target.getObjectPath(), "ClassA.a=\"1\"");
  EXPECT_EQ(PropertiesOf(target), (Properties{{"c", "3"}}));
}

TEST(InstanceImplTest, PrintWritesNameTwoTabsValueLinesThenAnEmptyLine) {
  TestBag bag("ClassA", {{"b", "two words"}, {"a", "1"}});
  bag.setObjectPath("never printed");
  StdoutCapture out;
  bag.print();
  TestBag("ClassA").print();
  EXPECT_EQ(out.text(), "a\t\t1\nb\t\ttwo words\n\n\n");
}

}  // namespace
}  // namespace diagcore_test
