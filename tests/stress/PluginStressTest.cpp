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
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "diag/DiagHost.h"
#include "plugin/DiagTestPlugin.h"
#include "stress/StressRounds.h"

namespace diagcore_test {
namespace {

using cmpihost::AssociationFilter;
using cmpihost::InstanceSnapshot;
using cmpihost::Reply;

constexpr int kThreads = 8;
constexpr int kRounds = 400;
constexpr std::chrono::milliseconds kBudget{6000};

const char* const kRecordClass = "DTP_DiagServiceRecord";
const char* const kAssociationClass = "DTP_AvailableDiagnosticService";
const std::array<const char*, 3> kDevices = {"disk0", "disk1", "disk2"};
// The services whose runs leave records, and what their tests write.
const std::array<const char*, 2> kRecording = {"Passing", "Failing"};

// Strings and date-times as their text, anything else as its MOF literal.
std::string Text(const InstanceSnapshot& instance, const std::string& property) {
  const cmpihost::Value* value = instance.find(property);
  if (value == nullptr) {
    return "<missing>";
  }
  return value->type == CMPI_string || value->type == CMPI_dateTime ? value->text : value->toMof();
}

std::vector<std::string> Texts(const std::vector<InstanceSnapshot>& instances,
                               const std::string& property) {
  std::vector<std::string> texts;
  for (const InstanceSnapshot& instance : instances) {
    texts.push_back(Text(instance, property));
  }
  return texts;
}

AssociationFilter Through(const char* associationClass) {
  AssociationFilter filter;
  filter.assocClass = associationClass;
  return filter;
}

class PluginStressTest : public PluginHostTest {
 protected:
  PluginStressTest() : rounds_(kThreads, kRounds, kBudget) { AdvanceClockPerCall(); }

  // One client's round: which request it makes turns with the round, and
  // differs between neighbouring threads, so that all kinds overlap.
  void Round(int thread, int round) {
    switch ((thread + round) % 9) {
      case 0:
      case 1:
        RunRecording(static_cast<std::size_t>((thread + round) % 2), (thread + round / 9) % 3);
        break;
      case 2:
        EnumerateRecords(thread);
        break;
      case 3:
        GetKnownRecord(thread);
        break;
      case 4:
        EnumerateServiceObjects();
        break;
      case 5:
        EnumerateAssociations();
        break;
      case 6:
        Associate(round);
        break;
      case 7:
        MissAndThrow(thread, round);
        break;
      default:
        EnumerateRecordNames(thread);
        break;
    }
  }

  void RunRecording(std::size_t service, int device) {
    const Reply reply = Run(kRecording[service], DevicePath(kDevices[device]));
    const unsigned expected = service == 0 ? 0U : 4U;
    if (reply.status.rc != CMPI_RC_OK || reply.data().size() != 1 ||
        reply.data()[0].uint != expected || reply.doneCount() != 1) {
      rounds_.Fail(std::string("run of ") + kRecording[service] + " answered rc " +
                   std::to_string(reply.status.rc) + " " + reply.status.message);
      return;
    }
    ++succeeded_[service][static_cast<std::size_t>(device)];
    ++successes_;
  }

  void EnumerateRecords(int thread) {
    // Taken before the request: every run that had ended by then is in it.
    const long before = successes_.load();
    const Reply reply = host().enumerateInstances("root/cimv2", kRecordClass);
    const std::vector<InstanceSnapshot> records = reply.instances();
    if (reply.status.rc != CMPI_RC_OK || static_cast<long>(records.size()) < before) {
      rounds_.Fail("records: rc " + std::to_string(reply.status.rc) + ", " +
                   std::to_string(records.size()) + " seen, " + std::to_string(before) +
                   " runs had ended");
      return;
    }
    if (!records.empty()) {
      const std::lock_guard<std::mutex> lock(seenMutex_);
      seen_[thread] = Text(records[records.size() / 2], "InstanceID");
    }
  }

  void GetKnownRecord(int thread) {
    std::string id;
    {
      const std::lock_guard<std::mutex> lock(seenMutex_);
      id = seen_[thread];
    }
    const Reply reply = id.empty() ? host().getInstance(ServicePath("Passing"))
                                   : host().getInstance(RecordPath(id));
    const std::vector<InstanceSnapshot> got = reply.instances();
    const std::string want = id.empty() ? "Passing" : id;
    const std::string have =
        got.size() == 1 ? Text(got[0], id.empty() ? "Name" : "InstanceID") : "<none>";
    if (reply.status.rc != CMPI_RC_OK || have != want) {
      rounds_.Fail("get " + want + ": rc " + std::to_string(reply.status.rc) + ", got " + have);
    }
  }

  void EnumerateServiceObjects() {
    const std::vector<std::string> names = {"Failing", "Passing", "Throwing"};
    if (Texts(host().enumerateInstances("root/cimv2", "DTP_DiagService").instances(), "Name") !=
        names) {
      rounds_.Fail("services changed");
    }
    if (host().enumerateInstances("root/cimv2", "DTP_DiagSettingData").instances().size() != 3 ||
        host().enumerateInstances("root/cimv2", "DTP_DiagCapabilities").instances().size() != 3) {
      rounds_.Fail("setting data or capabilities changed");
    }
  }

  void EnumerateAssociations() {
    const std::vector<std::string> order = {"10",  "15",  "20",  "110", "115",
                                            "120", "210", "215", "220"};
    const Reply reply = host().enumerateInstances("root/cimv2", kAssociationClass);
    if (Texts(reply.instances(), "EnumOrder") != order) {
      rounds_.Fail("associations not served in EnumOrder order");
    }
  }

  void Associate(int round) {
    const Reply ofDevice =
        host().associators(DevicePath(kDevices[round % 3]), Through(kAssociationClass));
    const Reply ofService =
        host().associatorNames(ServicePath(kRecording[round % 2]), Through(kAssociationClass));
    if (ofDevice.status.rc != CMPI_RC_OK || ofDevice.instances().size() != 3 ||
        ofService.status.rc != CMPI_RC_OK || ofService.paths().size() != 3) {
      rounds_.Fail("associators of " + std::string(kDevices[round % 3]) + " gave " +
                   std::to_string(ofDevice.instances().size()) + ", names of " +
                   kRecording[round % 2] + " gave " + std::to_string(ofService.paths().size()));
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

  void EnumerateRecordNames(int thread) {
    const long before = successes_.load();
    const Reply reply = host().enumerateInstanceNames("root/cimv2", kRecordClass);
    if (reply.status.rc != CMPI_RC_OK || static_cast<long>(reply.paths().size()) < before) {
      rounds_.Fail("record names of thread " + std::to_string(thread) + ": " +
                   std::to_string(reply.paths().size()) + " seen, " + std::to_string(before) +
                   " runs had ended");
    }
  }

  StressRounds rounds_;
  std::atomic<long> successes_{0};
  std::array<std::array<std::atomic<long>, 3>, 2> succeeded_{};
  std::mutex seenMutex_;
  std::map<int, std::string> seen_;
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
    if (service == "Passing") {
      EXPECT_EQ(Text(record, "LoopsPassed"), "3") << id;
      EXPECT_EQ(Text(record, "RecordData"), "Test Passed") << id;
    } else {
      EXPECT_EQ(Text(record, "LoopsFailed"), "2") << id;
      EXPECT_EQ(Text(record, "RecordData"), "Sector 7 unreadable") << id;
    }
    const Reply got = host().getInstance(RecordPath(id));
    ASSERT_EQ(got.status.rc, CMPI_RC_OK) << id;
    ASSERT_EQ(got.instances().size(), 1U) << id;
    EXPECT_EQ(Text(got.instances()[0], "InstanceID"), id);
  }
  for (std::size_t service = 0; service < kRecording.size(); ++service) {
    for (std::size_t device = 0; device < kDevices.size(); ++device) {
      const std::string pair = std::string(kRecording[service]) + "/" + kDevices[device];
      EXPECT_EQ(perPair[pair], succeeded_[service][device].load()) << pair;
    }
    EXPECT_EQ(static_cast<long>(diagtestplugin::StartedService(kRecording[service])->runs().size()),
              succeeded_[service][0] + succeeded_[service][1] + succeeded_[service][2])
        << kRecording[service];
  }
}

}  // namespace
}  // namespace diagcore_test
