// DiagnosticRecord: its defaults, and how pass and fail write the outcome.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>

#include "diagcore/DiagnosticRecord.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagnosticRecord;
using Properties = std::map<std::string, std::string>;

static_assert(std::has_virtual_destructor<DiagnosticRecord>::value,
              "records are deleted through InstanceImpl pointers");
static_assert(!std::is_abstract<DiagnosticRecord>::value, "records are created as they are");

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

const Properties kDefaults = {{"Locale", "en"},
                              {"LoopsFailed", "0"},
                              {"LoopsPassed", "0"},
                              {"RecordFormat", ""},
                              {"RecordType", "2"}};

TEST(DiagnosticRecordTest, ANewRecordHoldsExactlyItsFiveDefaults) {
  const DiagnosticRecord record("ACME_Record");
  EXPECT_EQ(record.getClassName(), "ACME_Record");
  EXPECT_EQ(record.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(record), kDefaults);
}

TEST(DiagnosticRecordTest, InitAssignsItsDefaultsOverWhatTheBagHolds) {
  DiagnosticRecord record("ACME_Record");
  record["Locale"] = "de";
  record["LoopsPassed"] = "9";
  record["RecordData"] = "kept";
  record.init();
  Properties expected = kDefaults;
  expected["RecordData"] = "kept";
  EXPECT_EQ(PropertiesOf(record), expected);
}

TEST(DiagnosticRecordTest, PassWritesLoopsErrorCountAndTextButNoErrorCode) {
  DiagnosticRecord record("ACME_Record");
  record.pass(3);
  Properties expected = kDefaults;
  expected["LoopsPassed"] = "3";
  expected["ErrorCount"] = "0";
  expected["RecordData"] = "Test Passed";
  EXPECT_EQ(PropertiesOf(record), expected);
  EXPECT_EQ(record.find("ErrorCode"), record.end());
}

TEST(DiagnosticRecordTest, FailWritesItsFourValuesAsGiven) {
  DiagnosticRecord record("ACME_Record");
  record.fail(2, " E-7, bad ", 5, "line one\nline two");
  Properties expected = kDefaults;
  expected["LoopsFailed"] = "2";
  expected["ErrorCode"] = " E-7, bad ";
  expected["ErrorCount"] = "5";
  expected["RecordData"] = "line one\nline two";
  EXPECT_EQ(PropertiesOf(record), expected);
}

TEST(DiagnosticRecordTest, EachReportOverwritesAndKeepsWhatTheOtherWrote) {
  DiagnosticRecord passThenFail("ACME_Record");
  passThenFail.pass(3);
  passThenFail.fail(2, "E1", 5, "broken");
  EXPECT_EQ(passThenFail["LoopsPassed"], "3");
  EXPECT_EQ(passThenFail["LoopsFailed"], "2");
  EXPECT_EQ(passThenFail["ErrorCount"], "5");
  EXPECT_EQ(passThenFail["RecordData"], "broken");

  DiagnosticRecord failThenPass("ACME_Record");
  failThenPass.fail(2, "E1", 5, "broken");
  failThenPass.pass(7);
  EXPECT_EQ(failThenPass["LoopsFailed"], "2");
  EXPECT_EQ(failThenPass["ErrorCode"], "E1");
  EXPECT_EQ(failThenPass["LoopsPassed"], "7");
  EXPECT_EQ(failThenPass["ErrorCount"], "0");
  EXPECT_EQ(failThenPass["RecordData"], "Test Passed");

  // Counts are replaced, never added up.
  DiagnosticRecord twice("ACME_Record");
  twice.pass(4);
  twice.pass(1);
  twice.fail(6, "E2", 8, "x");
  twice.fail(1, "E3", 1, "y");
  EXPECT_EQ(twice["LoopsPassed"], "1");
  EXPECT_EQ(twice["LoopsFailed"], "1");
  EXPECT_EQ(twice["ErrorCode"], "E3");
  EXPECT_EQ(twice["ErrorCount"], "1");
}

TEST(DiagnosticRecordTest, CountsArePlainDecimalUpToTheLargestUnsigned32BitValue) {
  DiagnosticRecord record("ACME_Record");
  record.pass(4294967295U);
  EXPECT_EQ(record["LoopsPassed"], "4294967295");
  record.fail(4294967295U, "", 4294967295U, "");
  EXPECT_EQ(record["LoopsFailed"], "4294967295");
  EXPECT_EQ(record["ErrorCount"], "4294967295");
  EXPECT_EQ(record["ErrorCode"], "");
  record.pass(0);
  EXPECT_EQ(record["LoopsPassed"], "0");
  record.fail(10, "", 100, "");
  EXPECT_EQ(record["LoopsFailed"], "10");
  EXPECT_EQ(record["ErrorCount"], "100");
}

}  // namespace
}  // namespace diagcore_test
