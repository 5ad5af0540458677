// RunDiagnostic of a service whose test does nothing, end to end through the
// host (request path, arguments, MI call, record, reply), against one
// registration of the record such a run leaves.
#include <memory>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/PairTimer.h"
#include "broker/Scope.h"
#include "diagcore/InstanceRegistry.h"

namespace bench {
namespace {

constexpr std::size_t kBatch = 50;

void BM_RunDiagnostic(benchmark::State& state) {
  const Session session;
  NQENDRA20::InstanceRegistry* registry = NQENDRA20::InstanceRegistry::Singleton();
  const std::string service = ServicePath();
  const std::vector<cmpihost::Argument> arguments = {
      cmpihost::Argument{"ManagedElement", DevicePath(0), std::nullopt}};
  std::size_t failures = 0;
  static std::size_t serial = 300000000;
  std::vector<std::unique_ptr<NQENDRA20::DiagnosticRecord>> bags;

  Side subject;
  subject.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Reply reply = Host().invokeMethod(service, "RunDiagnostic", arguments);
      failures += reply.status.rc == CMPI_RC_OK && reply.events.size() == 2 ? 0 : 1;
    }
  };
  Side baseline;
  baseline.prepare = [&](std::size_t count) {
    bags.clear();
    for (std::size_t i = 0; i < count; ++i) {
      bags.push_back(RunRecord("BENCH_RunBaselineRecord", serial++));
    }
  };
  baseline.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Scope call;
      registry->RegisterInstance(session.broker(), session.context(), bags[i].get());
      static_cast<void>(bags[i].release());  // the registry's now
    }
  };
  PairTimer(kBatch).Run(state, subject, baseline);
  if (failures != 0) {
    state.SkipWithError("a RunDiagnostic call failed");
  }
}
BENCHMARK(BM_RunDiagnostic)->UseManualTime()->Iterations(40)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
