// Memory per registered record, read from the allocator: what 10,000
// RunDiagnostic runs leave allocated, divided by 10,000. That is the bag, the
// registry's clone with the host's objects behind it, the registry's entry,
// map node and path text; everything a run makes only for its call is freed
// when the call returns, and is not counted.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <string>
#include <vector>

#include "bench/BenchHost.h"

namespace bench {
namespace {

constexpr std::size_t kRuns = 10000;

std::size_t AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

std::size_t RunOnce(const std::string& service, const std::vector<cmpihost::Argument>& arguments) {
  const cmpihost::Reply reply = Host().invokeMethod(service, "RunDiagnostic", arguments);
  return reply.status.rc == CMPI_RC_OK ? 0 : 1;
}

void BM_MemoryPerRecord(benchmark::State& state) {
  const std::string service =
      "root/cimv2:BENCH_MemService.Name=\"Bench\",SystemCreationClassName=\"TORSK_ComputerSystem\","
      "SystemName=\"bench.example\",CreationClassName=\"BENCH_MemService\"";
  const std::vector<cmpihost::Argument> arguments = {
      cmpihost::Argument{"ManagedElement", DevicePath(0), std::nullopt}};
  std::size_t failures = RunOnce(service, arguments);  // caches and the class's container
  double bytesPerRecord = 0;
  for (auto _ : state) {
    const std::size_t before = AllocatedBytes();
    for (std::size_t i = 0; i < kRuns; ++i) {
      failures += RunOnce(service, arguments);
    }
    const std::size_t after = AllocatedBytes();
    bytesPerRecord = (static_cast<double>(after) - static_cast<double>(before)) / kRuns;
  }
  state.counters["bytes_per_record"] = bytesPerRecord;
  if (failures != 0) {
    state.SkipWithError("a RunDiagnostic call failed");
  }
}
BENCHMARK(BM_MemoryPerRecord)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
