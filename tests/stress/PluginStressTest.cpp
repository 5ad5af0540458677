// Eight clients at once through one host serving the test plug-in: runs of
// the passing, failing and throwing services, enumerations of services,
// setting data, capabilities, associations and records, gets of what exists
// and of what does not, and associator requests. Afterwards every record a
// run left is enumerable and gettable, once, with the texts of its run.
//
// Every run's record must be told apart: its InstanceID ends in the time of
// its run, and two runs in the same time text would file one record under
// the other (by design, a later registration under the same text wins). The
// host's clock therefore advances one second per newDateTime, so each run
// gets a time of its own and the records must equal the successful runs
// exactly.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "diag/DiagHost.h"
#include "plugin/DiagTestPlugin.h"
#include "stress/StressRounds.h"

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using cmpihost::Reply;

constexpr int kThreads = 8;
constexpr int kRounds = 400;
constexpr std::chrono::milliseconds kBudget{6000};

const char* const kRecordClass = "DTP_DiagServiceRecord";
const std::array<const char*, 3> kDevices = {"disk0", "disk1", "disk2"};
// The services whose runs leave records.
const std::array<const char*, 2> kRecording = {"Passing", "Failing"};

// Strings and date-times as their text, anything else as its MOF literal.
std::string Text(const InstanceSnapshot& instance, const std::string& property) {
  const cmpihost::Value* value = instance.find(property);
  if (value == nullptr) {
    return "<missing>";
  }
  return value->type == CMPI_string || value->type == CMPI_dateTime ? value->text : value->toMof();
}

std::string Texts(const std::vector<InstanceSnapshot>& instances, const std::string& property) {
  std::string texts;
  for (const InstanceSnapshot& instance : instances) {
    texts += Text(instance, property) + " ";
  }
  return texts;
}

class PluginStressTest : public PluginHostTest {
 protected:
  PluginStressTest() : rounds_(kThreads, kRounds, kBudget) { AdvanceClockPerCall(); }

  // One client's round: which request it makes turns with the round, and
  // differs between neighbouring threads, so that all kinds overlap.
  void Round(int thread, int round) {
    const int turn = thread + round;
    switch (turn % 6) {
      case 0:
      case 1:
        RunRecording(static_cast<std::size_t>(turn % 2),
                     static_cast<std::size_t>((thread + round / 6) % 3));
        break;
      case 2:
        EnumerateAndGetRecords(round);
        break;
      case 3:
        EnumerateServiceObjects();
        break;
      case 4:
        Associate(round);
        break;
      default:
        MissAndThrow(thread, round);
        break;
    }
  }

  void RunRecording(std::size_t service, std::size_t device) {
    const Reply reply = Run(kRecording[service], DevicePath(kDevices[device]));
    if (reply.status.rc != CMPI_RC_OK || reply.data().size() != 1 ||
        reply.data()[0].uint != (service == 0 ? 0U : 4U) || reply.doneCount() != 1) {
      rounds_.Fail(std::string("run of ") + kRecording[service] + " answered rc " +
                   std::to_string(reply.status.rc) + " " + reply.status.message);
      return;
    }
    ++succeeded_[service][device];
    ++successes_;
  }

  // Every run that had ended before the request is in its answer.
  void EnumerateAndGetRecords(int round) {
    const long before = successes_.load();
    std::size_t seen = 0;
    std::string id;
    if (round % 2 == 0) {
      const Reply reply = host().enumerateInstances("root/cimv2", kRecordClass);
      const std::vector<InstanceSnapshot> records = reply.instances();
      seen = reply.status.rc == CMPI_RC_OK ? records.size() : 0;
      id = records.empty() ? "" : Text(records[records.size() / 2], "InstanceID");
    } else {
      const Reply reply = host().enumerateInstanceNames("root/cimv2", kRecordClass);
      seen = reply.status.rc == CMPI_RC_OK ? reply.paths().size() : 0;
    }
    if (static_cast<long>(seen) < before) {
      rounds_.Fail("records: " + std::to_string(seen) + " seen, " + std::to_string(before) +
                   " runs had ended");
    }
    if (!id.empty()) {
      const Reply got = host().getInstance(RecordPath(id));
      if (got.status.rc != CMPI_RC_OK || got.instances().size() != 1 ||
          Text(got.instances()[0], "InstanceID") != id) {
        rounds_.Fail("get " + id + ": rc " + std::to_string(got.status.rc));
      }
    }
  }

  void EnumerateServiceObjects() {
    const auto all = [this](const char* className) {
      return host().enumerateInstances("root/cimv2", className).instances();
    };
    if (Texts(all("DTP_DiagService"), "Name") != "Failing Passing Throwing " ||
        all("DTP_DiagSettingData").size() != 3 || all("DTP_DiagCapabilities").size() != 3 ||
        Texts(all("DTP_AvailableDiagnosticService"), "EnumOrder") !=
            "10 15 20 110 115 120 210 215 220 ") {
      rounds_.Fail("the plug-in's objects changed or left EnumOrder order");
    }
  }

  void Associate(int round) {
    cmpihost::AssociationFilter filter;
    filter.assocClass = "DTP_AvailableDiagnosticService";
    const Reply ofDevice = host().associators(DevicePath(kDevices[round % 3]), filter);
    const Reply ofService = host().associatorNames(ServicePath(kRecording[round % 2]), filter);
    if (ofDevice.status.rc != CMPI_RC_OK || ofDevice.instances().size() != 3 ||
        ofService.status.rc != CMPI_RC_OK || ofService.paths().size() != 3) {
      rounds_.Fail("associators gave " + std::to_string(ofDevice.instances().size()) +
                   ", names gave " + std::to_string(ofService.paths().size()));
    }
  }

  // A lookup that misses leaves an empty slot in the registry while others
  // enumerate; a test that throws leaves no record.
  void MissAndThrow(int thread, int round) {
    const Reply missing = host().getInstance(
        RecordPath("nowhere:" + std::to_string(thread) + ":" + std::to_string(round)));
    if (missing.status.rc == CMPI_RC_OK || !missing.instances().empty()) {
      rounds_.Fail("a record that was never made was found");
    }
    if (round % 4 == 0) {
      const Reply thrown = Run("Throwing", DevicePath("disk0"));
      if (thrown.status.rc != CMPI_RC_ERR_FAILED || !thrown.data().empty()) {
        rounds_.Fail("a throwing test answered rc " + std::to_string(thrown.status.rc));
      }
    }
  }

  StressRounds rounds_;
  std::atomic<long> successes_{0};
  std::array<std::array<std::atomic<long>, 3>, 2> succeeded_{};
};

TEST_F(PluginStressTest, EveryRunsRecordIsServedOnceAfterEightClientsAtOnce) {
  rounds_.Run([this](int thread, int round) { Round(thread, round); });
  RecordProperty("rounds", std::to_string(rounds_.roundsDone()));
  EXPECT_EQ(rounds_.failures(), 0) << rounds_.report();
  ASSERT_GT(successes_.load(), 0);

  const std::vector<InstanceSnapshot> records =
      host().enumerateInstances("root/cimv2", kRecordClass).instances();
  ASSERT_EQ(static_cast<long>(records.size()), successes_.load());
  EXPECT_EQ(
      static_cast<long>(host().enumerateInstanceNames("root/cimv2", kRecordClass).paths().size()),
      successes_.load());

  std::set<std::string> ids;
  std::map<std::string, long> perPair;
  for (const InstanceSnapshot& record : records) {
    const std::string id = Text(record, "InstanceID");
    const std::string service = Text(record, "ServiceName");
    EXPECT_TRUE(ids.insert(id).second) << "twice: " << id;
    EXPECT_EQ(id, "DTP_DiagService:" + service + ":" + Text(record, "CreationTimeStamp"));
    ++perPair[service + "/" + Text(record, "ManagedElementName")];
    const bool passing = service == "Passing";
    EXPECT_EQ(Text(record, passing ? "LoopsPassed" : "LoopsFailed"), passing ? "3" : "2") << id;
    EXPECT_EQ(Text(record, "RecordData"), passing ? "Test Passed" : "Sector 7 unreadable") << id;
    const Reply got = host().getInstance(RecordPath(id));
    ASSERT_EQ(got.instances().size(), 1U) << id;
    EXPECT_EQ(Text(got.instances()[0], "InstanceID"), id);
  }
  for (std::size_t service = 0; service < kRecording.size(); ++service) {
    long runs = 0;
    for (std::size_t device = 0; device < kDevices.size(); ++device) {
      const std::string pair = std::string(kRecording[service]) + "/" + kDevices[device];
      EXPECT_EQ(perPair[pair], succeeded_[service][device].load()) << pair;
      runs += succeeded_[service][device].load();
    }
    EXPECT_EQ(static_cast<long>(diagtestplugin::StartedService(kRecording[service])->runs().size()),
              runs)
        << kRecording[service];
  }
}

}  // namespace
}  // namespace diagcore_test
