// Eight callers at once: of a plug-in's factories while its start-up runs,
// and, as clients, through one host serving the test plug-in, whose
// start-up the first requests race for: runs of the passing, failing and
// throwing services, enumerations, gets of what exists and of what does not,
// and associator requests. Afterwards every record a run left is served
// once, with the texts of its run. Run under the thread sanitizer too.
//
// Each run's record must be told apart by the time in its InstanceID (a
// later registration under the same text wins), so the host's clock
// advances one second per newDateTime.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/DiagProvider.h"
#include "plugin/DiagTestPlugin.h"
#include "support/LibraryHost.h"

namespace {

std::atomic<int> slowStarts{0};
std::atomic<bool> slowDone{false};

void SlowStartup(const CMPIBroker* /*broker*/, const CMPIContext* /*context*/) {
  ++slowStarts;
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  slowDone = true;
}

}  // namespace

DIAGCORE_PROVIDER(SlowPlugin, SlowStartup);

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using cmpihost::Reply;

constexpr int kThreads = 8;
constexpr int kRounds = 200;
// Bounded in time too, so that a sanitizer build ends; nothing asserts speed.
constexpr std::chrono::seconds kBudget{3};

const char* const kRecordClass = "DTP_DiagServiceRecord";
const std::array<const char*, 3> kDevices = {"disk0", "disk1", "disk2"};
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

// Runs body(thread) on kThreads threads that start together.
void OnAllThreads(const std::function<void(int)>& body) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ++ready;
      while (ready.load() < kThreads) {
        std::this_thread::yield();
      }
      body(t);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(StartupSoakTest, FactoriesCalledAtOnceRunTheStartupOnceAndWaitForIt) {
  cmpihost::Host host;
  std::atomic<int> failures{0};
  OnAllThreads([&](int t) {
    cmpihost::CallScope scope(host);
    CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
    const void* mi = t % 3 == 0   ? static_cast<const void*>(SlowPlugin_Create_InstanceMI(
                                        scope.broker(), scope.context(), &rc))
                     : t % 3 == 1 ? static_cast<const void*>(SlowPlugin_Create_MethodMI(
                                        scope.broker(), scope.context(), &rc))
                                  : static_cast<const void*>(SlowPlugin_Create_AssociationMI(
                                        scope.broker(), scope.context(), &rc));
    // No caller may use the plug-in before its start-up finished.
    if (mi == nullptr || rc.rc != CMPI_RC_OK || !slowDone.load()) {
      ++failures;
    }
  });
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(slowStarts.load(), 1);
}

class SoakTest : public DiagHostTest {
 protected:
  // The plug-in is registered, not started: the first requests start it.
  SoakTest() {
    RegisterTestPlugin(host());
    AdvanceClockPerCall();
  }

  void RunAll() {
    const auto deadline = std::chrono::steady_clock::now() + kBudget;
    OnAllThreads([&](int thread) {
      for (int round = 0; round < kRounds && std::chrono::steady_clock::now() < deadline; ++round) {
        Round(thread, round);
      }
    });
  }

  // Which request a client makes turns with the round and differs between
  // neighbouring threads, so that all kinds overlap.
  void Round(int thread, int round) {
    const int turn = thread + round;
    switch (turn % 6) {
      case 0:
      case 1:
        RunRecording(static_cast<std::size_t>(turn % 2),
                     static_cast<std::size_t>((thread + round / 6) % 3));
        break;
      case 2:
        EnumerateAndGetRecords();
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

  void Fail(const std::string& what) {
    const std::lock_guard<std::mutex> lock(failuresMutex_);
    failures_.push_back(what);
  }

  void RunRecording(std::size_t service, std::size_t device) {
    const Reply reply = Run(kRecording[service], DevicePath(kDevices[device]));
    if (reply.status.rc != CMPI_RC_OK || reply.data().size() != 1 ||
        reply.data()[0].uint != (service == 0 ? 0U : 4U) || reply.doneCount() != 1) {
      Fail(std::string("run of ") + kRecording[service] + ": " + reply.status.message);
      return;
    }
    ++succeeded_[service][device];
    ++successes_;
  }

  // Every run that had ended before the request is in its answer.
  void EnumerateAndGetRecords() {
    const long before = successes_.load();
    const Reply reply = host().enumerateInstances("root/cimv2", kRecordClass);
    const std::vector<InstanceSnapshot> records = reply.instances();
    if (reply.status.rc != CMPI_RC_OK || static_cast<long>(records.size()) < before) {
      Fail("records: " + std::to_string(records.size()) + " seen after " + std::to_string(before) +
           " runs");
    }
    if (!records.empty()) {
      const std::string id = Text(records[records.size() / 2], "InstanceID");
      const Reply got = host().getInstance(RecordPath(id));
      if (got.instances().size() != 1 || Text(got.instances()[0], "InstanceID") != id) {
        Fail("get " + id + ": rc " + std::to_string(got.status.rc));
      }
    }
  }

  void EnumerateServiceObjects() {
    const auto all = [this](const char* className) {
      return host().enumerateInstances("root/cimv2", className).instances();
    };
    if (Texts(all("DTP_DiagService"), "Name") != "Failing Passing Throwing " ||
        all("DTP_DiagSettingData").size() != 3 ||
        Texts(all("DTP_AvailableDiagnosticService"), "EnumOrder") !=
            "10 15 20 110 115 120 210 215 220 ") {
      Fail("the plug-in's objects changed or left EnumOrder order");
    }
  }

  void Associate(int round) {
    cmpihost::AssociationFilter filter;
    filter.assocClass = "DTP_AvailableDiagnosticService";
    const Reply ofDevice = host().associators(DevicePath(kDevices[round % 3]), filter);
    const Reply ofService = host().associatorNames(ServicePath(kRecording[round % 2]), filter);
    if (ofDevice.instances().size() != 3 || ofService.paths().size() != 3) {
      Fail("associators gave " + std::to_string(ofDevice.instances().size()) + ", names gave " +
           std::to_string(ofService.paths().size()));
    }
  }

  // A miss leaves an empty slot in the registry while others enumerate; a
  // test that throws leaves no record.
  void MissAndThrow(int thread, int round) {
    const Reply missing = host().getInstance(
        RecordPath("nowhere:" + std::to_string(thread) + ":" + std::to_string(round)));
    if (missing.status.rc == CMPI_RC_OK) {
      Fail("a record that was never made was found");
    }
    if (round % 4 == 0 && Run("Throwing", DevicePath("disk0")).status.rc != CMPI_RC_ERR_FAILED) {
      Fail("a throwing test did not fail its call");
    }
  }

  std::mutex failuresMutex_;
  std::vector<std::string> failures_;
  std::atomic<long> successes_{0};
  std::array<std::array<std::atomic<long>, 3>, 2> succeeded_{};
};

TEST_F(SoakTest, EveryRunsRecordIsServedOnceAfterEightClientsAtOnce) {
  RunAll();
  EXPECT_EQ(failures_.size(), 0U) << (failures_.empty() ? "" : failures_.front());
  // The racing first requests ran the start-up once.
  ASSERT_EQ(diagtestplugin::StartedServices().size(), 3U);
  ASSERT_GT(successes_.load(), 0);

  const std::vector<InstanceSnapshot> records =
      host().enumerateInstances("root/cimv2", kRecordClass).instances();
  ASSERT_EQ(static_cast<long>(records.size()), successes_.load());
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
  }
  for (std::size_t service = 0; service < kRecording.size(); ++service) {
    for (std::size_t device = 0; device < kDevices.size(); ++device) {
      const std::string pair = std::string(kRecording[service]) + "/" + kDevices[device];
      EXPECT_EQ(perPair[pair], succeeded_[service][device].load()) << pair;
    }
  }
}

}  // namespace
}  // namespace diagcore_test
