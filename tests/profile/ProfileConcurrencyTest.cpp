// Runs that leave records and jobs which expire at once, while other threads
// enumerate and navigate them: every object a request delivers is whole
// (the sanitizer builds check that nothing is freed under it), and once the
// runs end nothing of theirs is left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "profile/ProfileHost.h"

namespace diagcore_test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kRunsPerThread = 40;

class ProfileConcurrencyTest : public ProfileTest {};

TEST_F(ProfileConcurrencyTest, ReadersNeverSeeARunsObjectsHalfRemoved) {
  profiletestplugin::StartOptions options = AllOn();
  options.resultPersistence = "0";
  options.profile.recordBound = 5;
  Start(options);
  std::atomic<int> failures{0};
  std::atomic<bool> running{true};
  std::vector<std::thread> threads;
  for (const char* device : {"disk0", "disk1"}) {
    threads.emplace_back([&, device] {
      for (int run = 0; run < kRunsPerThread; ++run) {
        const bool withJob = run % 2 == 0;
        const cmpihost::Reply reply =
            withJob ? RunService("Failing", device) : Run("Passing", device);
        failures += reply.status.rc == CMPI_RC_OK ? 0 : 1;
      }
    });
  }
  std::atomic<int> reads{0};
  threads.emplace_back([&] {
    while (running) {
      for (const cmpihost::InstanceSnapshot& record : Records()) {
        failures += Prop(record, "ExpirationDate").isNull() ? 1 : 0;
      }
      for (const std::string& record : Associators(LogPath("Passing"), "CIM_LogManagesRecord")) {
        failures += record.rfind("DTP_DiagServiceRecord:", 0) == 0 ? 0 : 1;
      }
      References(DevicePath("disk1"), "CIM_RecordAppliesToElement");
      Enumerate("PTP_ConcreteJob");
      ++reads;
    }
  });
  threads[0].join();
  threads[1].join();
  running = false;
  threads[2].join();

  EXPECT_EQ(failures, 0);
  EXPECT_GT(reads, 0);
  EXPECT_THAT(Records(), IsEmpty());
  EXPECT_THAT(Enumerate("PTP_ConcreteJob"), IsEmpty());
  EXPECT_THAT(Enumerate("PTP_RecordAppliesToElement"), IsEmpty());
  EXPECT_THAT(Enumerate("PTP_LogManagesRecord"), IsEmpty());
  EXPECT_THAT(Enumerate("PTP_UseOfLog"), SizeIs(3));
}

}  // namespace
}  // namespace diagcore_test
