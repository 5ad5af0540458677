// The Diagnostics Profile's two figures. Memory: what 1,000,000 runs of a
// service bounded to 1,000 leave allocated, against what its first 1,000
// runs left (the allocator's bytes in use, less those before the runs).
// Retention per request: a GetInstance through the host while a record
// can expire (the time asked of the broker, the check), against the same
// while none can.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/PairTimer.h"
#include "broker/Scope.h"
#include "diagcore/InstanceRegistry.h"

namespace bench {
namespace {

constexpr std::size_t kRuns = 1000000;
constexpr std::size_t kBatch = 200;

std::size_t AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void BM_MemoryBoundedRuns(benchmark::State& state) {
  const std::string service = ServicePath("BENCH_ProfileService");
  const std::vector<cmpihost::Argument> arguments = {
      cmpihost::Argument{"ManagedElement", DevicePath(0), std::nullopt}};
  std::size_t failures = 0;
  const auto run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Reply reply = Host().invokeMethod(service, "RunDiagnostic", arguments);
      failures += reply.status.rc == CMPI_RC_OK ? 0 : 1;
    }
  };
  for (auto _ : state) {
    const std::size_t before = AllocatedBytes();
    run(kProfileBound);
    const std::size_t atBound = AllocatedBytes();
    run(kRuns - kProfileBound);
    const std::size_t atEnd = AllocatedBytes();
    const double first = static_cast<double>(atBound) - static_cast<double>(before);
    const double all = static_cast<double>(atEnd) - static_cast<double>(before);
    state.counters["bytes_first_1000"] = first;
    state.counters["bytes_after_1000000"] = all;
    state.counters["growth"] = all / first;
  }
  if (failures != 0) {
    state.SkipWithError("a RunDiagnostic call failed");
  }
}
BENCHMARK(BM_MemoryBoundedRuns)->Iterations(1)->Repetitions(1)->Unit(benchmark::kSecond);

// Files one record of BENCH_Expiring under one owner bounded to one batch,
// so that each filing replaces the last: expiring (far in the future) or not.
void FileExpiring(bool expires) {
  static std::size_t serial = 500000000;
  const Session session;
  const cmpihost::Scope call;
  NQENDRA20::InstanceRegistry::Batch batch;
  batch.Add(session.broker(), session.context(), RunRecord("BENCH_Expiring", serial++));
  NQENDRA20::InstanceRegistry::Lifetime lifetime;
  lifetime.owner = "retention-bench";
  lifetime.bound = 1;
  if (expires) {
    lifetime.expiresAt = NQENDRA20::InstanceRegistry::Lifetime::kForever - 1;
  }
  NQENDRA20::InstanceRegistry::Singleton()->Register(session.broker(), batch, lifetime);
}

void BM_RetentionPerRequest(benchmark::State& state) {
  const std::string service = ServicePath();
  std::size_t failures = 0;
  const auto get = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      failures += Host().getInstance(service).status.rc == CMPI_RC_OK ? 0 : 1;
    }
  };
  Side subject;
  subject.prepare = [](std::size_t) { FileExpiring(true); };
  subject.run = get;
  Side baseline;
  baseline.prepare = [](std::size_t) { FileExpiring(false); };
  baseline.run = get;
  PairTimer(kBatch).Run(state, subject, baseline);
  if (failures != 0) {
    state.SkipWithError("a GetInstance failed");
  }
}
BENCHMARK(BM_RetentionPerRequest)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
