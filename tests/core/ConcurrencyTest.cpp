// Several CIMOM threads at once: registering, enumerating, getting and
// invoking. Nothing may be lost and (under ThreadSanitizer) nothing may race.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CoreHost.h"

namespace diagcore_test {
namespace {

constexpr int kThreads = 4;
constexpr int kObjectsPerThread = 40;

// Holds every thread until all have started, so their work overlaps.
class StartLine {
 public:
  explicit StartLine(int count) : waiting_(count) {}
  void ArriveAndWait() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (--waiting_ == 0) {
      ready_.notify_all();
      return;
    }
    ready_.wait(lock, [this] { return waiting_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable ready_;
  int waiting_;
};

TEST(ConcurrencyTest, ThreadsRegisteringEnumeratingGettingAndInvokingLoseNothing) {
  ProviderHostOptions options = CoreHostOptions();
  options.logBound = 0;  // tracing is not under test here
  ProviderHost provider(options);
  cmpihost::Host& host = provider.host();

  MethodBag* shared =
      NewBag<MethodBag>(std::string("DCT_Element"),
                        PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "shared"}},
                        [](const MethodCall& call) {
                          call.result->ft->returnDone(call.result);
                          CMPIStatus status = {CMPI_RC_OK, nullptr};
                          return status;
                        });
  RegisterInScope(host, shared);

  StartLine start(kThreads);
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.ArriveAndWait();
      const std::vector<cmpihost::Argument> args = {{"Text", "hi", std::nullopt}};
      for (int i = 0; i < kObjectsPerThread; ++i) {
        const std::string id = "t" + std::to_string(t) + "-" + std::to_string(i);
        RegisterInScope(host, NewElement(id, {{"Caption", id}}));

        const cmpihost::Reply got = host.getInstance("root/cimv2:" + ElementText(id));
        if (got.status.rc != CMPI_RC_OK || got.instances().size() != 1 ||
            got.instances()[0].find("Caption")->text != id) {
          ++failures;
        }
        const cmpihost::Reply called =
            host.invokeMethod("root/cimv2:" + ElementText("shared"), "Ping", args);
        if (called.status.rc != CMPI_RC_OK || called.doneCount() != 1) {
          ++failures;
        }
        if (i % 8 == 0) {
          const cmpihost::Reply all = host.enumerateInstances("root/cimv2", "DCT_Element");
          // At least this thread's own objects so far, and the shared one.
          if (all.status.rc != CMPI_RC_OK || all.doneCount() != 1 ||
              all.instances().size() < static_cast<std::size_t>(i + 2)) {
            ++failures;
          }
          // Misses insert empty slots while others enumerate.
          host.getInstance("root/cimv2:" + ElementText("missing-" + id));
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(shared->calls(), kThreads * kObjectsPerThread);
  const cmpihost::Reply names = host.enumerateInstanceNames("root/cimv2", "DCT_Element");
  const std::vector<std::string> paths = names.paths();
  const std::set<std::string> unique(paths.begin(), paths.end());
  EXPECT_EQ(paths.size(), static_cast<std::size_t>(kThreads * kObjectsPerThread + 1));
  EXPECT_EQ(unique.size(), paths.size());
  for (int t = 0; t < kThreads; ++t) {
    for (int i = 0; i < kObjectsPerThread; ++i) {
      const std::string id = "t" + std::to_string(t) + "-" + std::to_string(i);
      EXPECT_EQ(unique.count("//localhost/root/cimv2:" + ElementText(id)), 1U) << id;
    }
  }
}

}  // namespace
}  // namespace diagcore_test
