// One host serving many threads at once: lazy activation happens once, log
// capture keeps every record within its bound, requests and upcalls run in
// parallel (run under the tsan preset).
#include <atomic>
#include <thread>
#include <vector>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

std::atomic<int> gFactoryCalls{0};
const CMPIBroker* gBroker = nullptr;

CMPIStatus Enumerate(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                     const CMPIObjectPath* reference, const char**) {
  gBroker->eft->logMessage(gBroker, CMPI_DEV_DEBUG, "diagcore", "+++ EnumInstances", nullptr);
  CMPIInstance* instance = gBroker->eft->newInstance(gBroker, reference, nullptr);
  instance->ft->setProperty(instance, "Name", reinterpret_cast<const CMPIValue*>("only"),
                            CMPI_chars);
  result->ft->returnInstance(result, instance);
  // An upcall from inside the call, as the library's system-name lookup does.
  CMPIObjectPath* statics =
      gBroker->eft->newObjectPath(gBroker, "root/cimv2", "Test_Static", nullptr);
  gBroker->bft->enumerateInstances(gBroker, nullptr, statics, nullptr, nullptr);
  result->ft->returnDone(result);
  return CMPIStatus{CMPI_RC_OK, nullptr};
}

CMPIInstanceMI* Factory(const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  static CMPIInstanceMIFT table{};
  table.ftVersion = CMPIVersion200;
  table.miVersion = CMPIVersion200;
  table.miName = "concurrent";
  table.enumerateInstances = Enumerate;
  static CMPIInstanceMI mi{nullptr, &table};
  gBroker = broker;
  ++gFactoryCalls;
  std::this_thread::yield();
  return &mi;
}

TEST(HostConcurrencyTest, ManyThreadsShareOneHost) {
  Host host;
  host.loadMof(HOST_TEST_MOF);
  MiFactories factories;
  factories.instance = Factory;
  host.registerProvider(Registration("Concurrent", {"Test_Keyed"}, true), factories);
  host.captureLog(true, 1000);

  constexpr int kThreads = 8;
  constexpr int kRounds = 25;
  std::atomic<int> good{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const Reply reply = host.enumerateInstances("root/cimv2", "Test_Keyed");
        if (reply.status.rc == CMPI_RC_OK && reply.instances().size() == 1 &&
            reply.doneCount() == 1) {
          ++good;
        }
        CallScope scope(host);
        CMPIStatus rc;
        CMPIEnumeration* statics = scope.broker()->bft->enumerateInstances(
            scope.broker(), scope.context(), scope.objectPath("Test_Static"), nullptr, &rc);
        const CMPIArray* array =
            rc.rc == CMPI_RC_OK ? statics->ft->toArray(statics, nullptr) : nullptr;
        if (array != nullptr && array->ft->getSize(array, nullptr) == 3) {
          ++good;
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(gFactoryCalls.load(), 1);
  EXPECT_EQ(good.load(), 2 * kThreads * kRounds);
  const std::vector<LogRecord> records = host.logRecords();
  EXPECT_EQ(records.size(), 200u);
  for (const LogRecord& record : records) {
    EXPECT_EQ(record.text, "+++ EnumInstances");
  }
}

}  // namespace
}  // namespace cmpihost::testing
