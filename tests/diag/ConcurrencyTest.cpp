// What real CIMOMs do: call a plug-in from several threads at once. Run
// under the thread sanitizer (test-tsan) as well.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diag/DiagHost.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagService.h"
#include "support/Bags.h"

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

constexpr int kThreads = 8;

// Runs body(t) on kThreads threads that start together.
void OnAllThreads(const std::function<void(int)>& body) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
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

TEST(DiagConcurrencyTest, FactoriesCalledAtOnceRunTheStartupOnceAndWaitForIt) {
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

// A service that sets none of its texts: each run reads (and so inserts)
// them into the service's bag while other runs do the same. The first runs
// wait here until all have arrived, so that they read the texts at once.
class BareService : public NQENDRA20::DiagService {
 public:
  BareService() : DiagService("DTP_DiagService", "DTP_DiagServiceRecord", "", "", "sys") {}
  unsigned int runTest(NQENDRA20::InstanceImpl& /*element*/,
                       NQENDRA20::DiagnosticRecord* record) override {
    if (arrived_.fetch_add(1) < kThreads) {
      while (arrived_.load() < kThreads) {
        std::this_thread::yield();
      }
    }
    record->pass(1);
    return 3;
  }

 private:
  std::atomic<int> arrived_{0};
};

class DiagRunConcurrencyTest : public DiagHostTest {
 protected:
  DiagRunConcurrencyTest() : DiagHostTest(true) {}
};

TEST_F(DiagRunConcurrencyTest, RunsOfOneServiceFromManyThreadsEachLeaveTheirRecord) {
  auto* service = NewBag<BareService>();
  RegisterInScope(host(), service);
  AdvanceClockPerCall();
  constexpr int kRunsPerThread = 5;
  std::atomic<int> failures{0};
  OnAllThreads([&](int) {
    for (int i = 0; i < kRunsPerThread; ++i) {
      const cmpihost::Reply reply = host().invokeMethod(
          "root/cimv2:" + service->getObjectPath(), "RunDiagnostic",
          {cmpihost::Argument{"ManagedElement", DevicePath("disk1"), std::nullopt}});
      if (reply.status.rc != CMPI_RC_OK || reply.data().size() != 1 || reply.data()[0].uint != 3U) {
        ++failures;
      }
    }
  });
  EXPECT_EQ(failures.load(), 0);
  const std::vector<cmpihost::InstanceSnapshot> records =
      host().enumerateInstances("root/cimv2", "DTP_DiagServiceRecord").instances();
  std::set<std::string> ids;
  for (const cmpihost::InstanceSnapshot& record : records) {
    ids.insert(Prop(record, "InstanceID").text);
  }
  EXPECT_THAT(records, ::testing::SizeIs(kThreads * kRunsPerThread));
  EXPECT_EQ(ids.size(), records.size());
  EXPECT_EQ((*service)["Caption"], "");
}

}  // namespace
}  // namespace diagcore_test
