// Records that expire: the ExpirationDate a record gets from its service's
// ResultPersistence at every edge of its range, removal before the request
// that would serve an expired record (with its associations, nothing else),
// and the bound on the records a service keeps.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plugin/DiagTestPlugin.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr auto kCentury = std::chrono::hours(24 * 365 * 100);

struct Edge {
  const char* name;
  std::optional<std::string> persistence;
  std::string expirationDate;  // as MOF: the quoted date-time, or NULL
  // Clock offsets after the run, with the number of records kept then.
  std::vector<std::pair<microseconds, std::size_t>> kept;
  std::vector<TraceLine> warnings;
};

class PersistenceEdgeTest : public ProfileTest, public ::testing::WithParamInterface<Edge> {};

TEST_P(PersistenceEdgeTest, TheRecordIsKeptExactlyAsLongAsItsPersistenceSays) {
  const Edge& edge = GetParam();
  profiletestplugin::StartOptions options = AllOn();
  options.resultPersistence = edge.persistence;
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  std::vector<TraceLine> warnings;
  for (const TraceLine& line : TakeTraces()) {
    if (line.severity == kWarning) {
      warnings.push_back(line);
    }
  }
  EXPECT_EQ(warnings, edge.warnings);

  bool sawExpirationDate = false;
  for (const auto& [offset, count] : edge.kept) {
    SCOPED_TRACE(offset.count());
    SetClock(offset);
    const std::vector<cmpihost::InstanceSnapshot> records = Records();
    ASSERT_THAT(records, SizeIs(count));
    EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), SizeIs(count));
    EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), SizeIs(count));
    if (count != 0 && !sawExpirationDate) {
      EXPECT_EQ(Prop(records[0], "ExpirationDate").toMof(), edge.expirationDate);
      sawExpirationDate = true;
    }
  }
}

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

std::vector<TraceLine> NotSeconds(const std::string& text) {
  return {Warning("ResultPersistence \"" + text +
                  "\" of DTP_DiagSettingData.InstanceID=\"DTP:Setting:Passing\" is no number of "
                  "seconds: the record is kept")};
}

INSTANTIATE_TEST_SUITE_P(
    Edges, PersistenceEdgeTest,
    ::testing::Values(
        Edge{"Zero", "0", "", {{microseconds(0), 0}}, {}},
        Edge{"OneSecond",
             "1",
             Quoted(CimDateTime(FixedTime() + seconds(1))),
             {{microseconds(0), 1}, {microseconds(999999), 1}, {seconds(1), 0}},
             {}},
        Edge{"Default",
             "900",
             Quoted(CimDateTime(FixedTime() + seconds(900))),
             {{seconds(899), 1}, {seconds(900), 0}},
             {}},
        Edge{"Forever", "4294967295", "NULL", {{microseconds(0), 1}, {kCentury, 1}}, {}},
        Edge{"Absent", std::nullopt, "NULL", {{microseconds(0), 1}, {kCentury, 1}}, {}},
        Edge{"NotANumber", "abc", "NULL", {{kCentury, 1}}, NotSeconds("abc")},
        Edge{"BeyondThirtyTwoBits",
             "4294967296",
             "NULL",
             {{kCentury, 1}},
             NotSeconds("4294967296")}),
    [](const ::testing::TestParamInfo<Edge>& info) { return info.param.name; });

class RetentionTest : public ProfileTest {};

TEST_F(RetentionTest, AnExpiredRecordGoesWithItsAssociationsAndNothingElse) {
  profiletestplugin::StartOptions options = AllOn();
  options.resultPersistence = "1";
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  SetClock(std::chrono::milliseconds(500));
  ASSERT_EQ(RunOn("Passing", "disk2").status.rc, CMPI_RC_OK);
  const std::vector<std::string> before = Enumerate("DTP_DiagServiceRecord");
  ASSERT_THAT(before, SizeIs(2));
  TakeTraces();

  SetClock(seconds(1));
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"), ElementsAre(before[1]));
  std::vector<TraceLine> removed = TakeTraces();
  ASSERT_THAT(removed, SizeIs(4));  // three removals, then the enumeration
  EXPECT_EQ(removed[0], Debug("<<<<< Removed " + ProfileRecordPath("Passing", 1).substr(11)));
  for (int i = 1; i < 3; ++i) {
    EXPECT_EQ(removed[i].text.rfind("<<<<< Removed PTP_", 0), 0U) << removed[i].text;
  }
  EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), ElementsAre(before[1]));
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), IsEmpty());
  EXPECT_THAT(Associators(DevicePath("disk2"), "CIM_RecordAppliesToElement"),
              ElementsAre(before[1]));
  EXPECT_THAT(Enumerate(diagtestplugin::kAvailabilityClass), SizeIs(9));
  EXPECT_THAT(Enumerate("PTP_ElementSettingData"), SizeIs(3));
  EXPECT_THAT(Enumerate("PTP_UseOfLog"), SizeIs(3));
}

TEST_F(RetentionTest, ABoundKeepsEachServicesNewestRecordsOnly) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.retention = false;
  options.profile.recordBound = 3;
  Start(options);
  for (int run = 0; run < 5; ++run) {
    ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  }
  ASSERT_EQ(RunOn("Failing", "disk1").status.rc, CMPI_RC_OK);
  const std::string passing =
      "DTP_DiagServiceRecord:DTP_DiagService:Passing:" + CimDateTime(FixedTime()) + ":";
  const std::string failing =
      "DTP_DiagServiceRecord:DTP_DiagService:Failing:" + CimDateTime(FixedTime()) + ":";
  EXPECT_THAT(Enumerate("DTP_DiagServiceRecord"),
              ElementsAre(failing + "1", passing + "3", passing + "4", passing + "5"));
  EXPECT_THAT(Associators(LogPath("Passing"), "CIM_LogManagesRecord"), SizeIs(3));
  EXPECT_THAT(Associators(DevicePath("disk1"), "CIM_RecordAppliesToElement"), SizeIs(4));
}

TEST_F(RetentionTest, WithoutRetentionRecordsCarryNoExpirationAndStay) {
  profiletestplugin::StartOptions options = AllOn();
  options.profile.retention = false;
  options.resultPersistence = "0";
  Start(options);
  ASSERT_EQ(RunOn("Passing", "disk1").status.rc, CMPI_RC_OK);
  SetClock(kCentury);
  const std::vector<cmpihost::InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_TRUE(Prop(records[0], "ExpirationDate").isNull());
}

}  // namespace
}  // namespace diagcore_test
