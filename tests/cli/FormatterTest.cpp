// What the formatters print for values of every kind: the MOF-like text a
// person reads and the JSON a program parses, escapes included.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "cli/JsonFormatter.h"
#include "cli/TextFormatter.h"
#include "cli/TraceLine.h"

namespace cmpihost::cli {
namespace {

Value Scalar(CMPIType type) {
  Value value;
  value.type = type;
  value.state = CMPI_goodValue;
  return value;
}

Value Text(CMPIType type, const std::string& text) {
  Value value = Scalar(type);
  value.text = text;
  return value;
}

Value Null(CMPIType type) {
  Value value;
  value.type = type;
  value.state = CMPI_nullValue;
  return value;
}

InstanceSnapshot Sample() {
  Value count = Scalar(CMPI_uint32);
  count.uint = 7;
  Value offset = Scalar(CMPI_sint16);
  offset.sint = -7;
  Value flag = Scalar(CMPI_boolean);
  flag.boolean = true;
  Value ratio = Scalar(CMPI_real64);
  ratio.real = 0.1;
  Value row = Scalar(CMPI_char16);
  row.uint = 'B';
  Value tags = Scalar(CMPI_stringA);
  tags.elements = {Text(CMPI_string, "a"), Null(CMPI_string)};
  InstanceSnapshot instance;
  instance.className = "Cli_Shelf";
  instance.path = R"(root/cimv2:Cli_Shelf.Id="s\"1")";
  instance.properties = {{"Id", Text(CMPI_string, "s\"1\t\x01")},
                         {"Count", count},
                         {"Offset", offset},
                         {"Enabled", flag},
                         {"Ratio", ratio},
                         {"Row", row},
                         {"Built", Text(CMPI_dateTime, "20240102030405.000000+060")},
                         {"Peer", Text(CMPI_ref, "root/cimv2:Cli_Widget.Name=\"w1\"")},
                         {"Tags", tags},
                         {"Note", Null(CMPI_string)},
                         {"Levels", Null(CMPI_uint8A)}};
  return instance;
}

TEST(JsonFormatterTest, InstancesCarryClassPathAndTypedProperties) {
  EXPECT_EQ(JsonFormatter().instance(Sample()),
            "{\"className\":\"Cli_Shelf\",\"path\":\"root/cimv2:Cli_Shelf.Id=\\\"s\\\\\\\"1\\\"\","
            "\"properties\":{"
            "\"Id\":{\"type\":\"string\",\"value\":\"s\\\"1\\t\\u0001\"},"
            "\"Count\":{\"type\":\"uint32\",\"value\":7},"
            "\"Offset\":{\"type\":\"sint16\",\"value\":-7},"
            "\"Enabled\":{\"type\":\"boolean\",\"value\":true},"
            "\"Ratio\":{\"type\":\"real64\",\"value\":0.1},"
            "\"Row\":{\"type\":\"char16\",\"value\":\"B\"},"
            "\"Built\":{\"type\":\"datetime\",\"value\":\"20240102030405.000000+060\"},"
            "\"Peer\":{\"type\":\"ref\",\"value\":\"root/cimv2:Cli_Widget.Name=\\\"w1\\\"\"},"
            "\"Tags\":{\"type\":\"string[]\",\"value\":[\"a\",null]},"
            "\"Note\":{\"type\":\"string\",\"value\":null},"
            "\"Levels\":{\"type\":\"uint8[]\",\"value\":null}}}\n");
  EXPECT_EQ(JsonFormatter().instances({}), "[]\n");
}

TEST(JsonFormatterTest, ListsMethodResultsAndEchoes) {
  const JsonFormatter json;
  EXPECT_EQ(json.paths({"a", "b\"c"}), "[\"a\",\"b\\\"c\"]\n");
  Value four = Scalar(CMPI_uint32);
  four.uint = 4;
  EXPECT_EQ(json.methodResult(&four, {{"Doubled", Text(CMPI_string, "abab")}}),
            "{\"returnValue\":{\"type\":\"uint32\",\"value\":4},"
            "\"outArguments\":{\"Doubled\":{\"type\":\"string\",\"value\":\"abab\"}}}\n");
  EXPECT_EQ(json.methodResult(nullptr, {}), "{\"returnValue\":null,\"outArguments\":{}}\n");
  EXPECT_EQ(json.echo("== \"Title\" =="), "{\"echo\":\"== \\\"Title\\\" ==\"}\n");
}

TEST(TextFormatterTest, MethodResultsAndListsAreOneItemPerLine) {
  const TextFormatter text;
  Value four = Scalar(CMPI_uint32);
  four.uint = 4;
  EXPECT_EQ(
      text.methodResult(&four, {{"Doubled", Text(CMPI_string, "abab")}, {"Peer", Null(CMPI_ref)}}),
      "ReturnValue = 4\nDoubled = \"abab\"\nPeer = NULL\n");
  EXPECT_EQ(text.methodResult(nullptr, {}), "ReturnValue = NULL\n");
  EXPECT_EQ(text.echo(""), "\n");
  EXPECT_EQ(text.instances({}), "");
}

// Both kinds with an id are pinned by the command's --trace output.
TEST(TraceLineTest, AnEmptyIdIsLeftOut) {
  LogRecord log;
  log.severity = 4;
  log.text = "+++ EnumInstances";
  EXPECT_EQ(TraceLine(log), "[4] +++ EnumInstances");
}

TEST(TraceLineTest, LogSeveritiesAndTraceLevelsShareOneScale) {
  const struct {
    LogRecord::Kind kind;
    int severity;
    TraceLevel level;
  } cases[] = {
      {LogRecord::Kind::kLog, 1, TraceLevel::kError},
      {LogRecord::Kind::kLog, 2, TraceLevel::kInfo},
      {LogRecord::Kind::kLog, 3, TraceLevel::kWarning},
      {LogRecord::Kind::kLog, 4, TraceLevel::kDebug},
      {LogRecord::Kind::kLog, 0, TraceLevel::kDebug},
      {LogRecord::Kind::kLog, 5, TraceLevel::kDebug},
      {LogRecord::Kind::kTrace, 1, TraceLevel::kInfo},
      {LogRecord::Kind::kTrace, 2, TraceLevel::kWarning},
      {LogRecord::Kind::kTrace, 3, TraceLevel::kDebug},
      {LogRecord::Kind::kTrace, 4, TraceLevel::kDebug},
  };
  for (const auto& c : cases) {
    LogRecord record;
    record.kind = c.kind;
    record.severity = c.severity;
    EXPECT_EQ(LevelOf(record), c.level) << TraceLine(record);
  }
}

}  // namespace
}  // namespace cmpihost::cli
