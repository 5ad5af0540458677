// EnumInstances of 100,000 registered records through the host (the
// library's MI), against a minimal provider that returns the same 100,000
// instances prebuilt. Both go through the same host, so the ratio is what
// the library adds per instance to what any provider costs.
#include <string>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/PairTimer.h"
#include "diagcore/InstanceRegistry.h"

namespace bench {
namespace {

constexpr std::size_t kRecords = 100000;
const char* const kClass = "BENCH_EnumRecord";

// Registers the population once and hands clones of the library's instances,
// in the library's order, to the minimal provider.
bool Populate() {
  static const bool done = [] {
    RegisterRecords(kClass, 20000000, kRecords);
    const Session session;
    std::vector<CMPIInstance*> registered;
    NQENDRA20::InstanceRegistry::Singleton()->GetCMPIInstances(session.broker(), kClass,
                                                               registered);
    std::vector<CMPIInstance*> clones;
    for (CMPIInstance* instance : registered) {
      clones.push_back(instance->ft->clone(instance, nullptr));
    }
    SetBaselineInstances(std::move(clones));
    return registered.size() == kRecords;
  }();
  return done;
}

void BM_EnumInstances(benchmark::State& state) {
  if (!Populate()) {
    state.SkipWithError("the registry does not hold the 100,000 records");
    return;
  }
  std::size_t subjectCount = 0;
  std::size_t baselineCount = 0;
  Side subject;
  subject.unitsPerOp = kRecords;
  subject.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      subjectCount = Host().enumerateInstances(kNameSpace, kClass).events.size();
    }
  };
  Side baseline;
  baseline.unitsPerOp = kRecords;
  baseline.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      baselineCount = Host().enumerateInstances(kBaselineNameSpace, kClass).events.size();
    }
  };
  PairTimer(1).Run(state, subject, baseline);
  // Every instance and one returnDone, from both.
  if (subjectCount != kRecords + 1 || baselineCount != kRecords + 1) {
    state.SkipWithError("an enumeration did not deliver the 100,000 instances");
  }
}
BENCHMARK(BM_EnumInstances)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
