// What a trace costs the library when the host drops it (log capture off, as
// in every other benchmark): one logMessage of a typical registration trace.
// Informational; no target.
#include "bench/BenchHost.h"
#include "bench/PairTimer.h"

namespace bench {
namespace {

void BM_DroppedTrace(benchmark::State& state) {
  const Session session;
  const CMPIBroker* broker = session.broker();
  const char* text =
      ">>>>> Registered BENCH_RunRecord.InstanceID=\"BENCH_DiagService:Bench:"
      "20240305060708.000000+000\"";
  for (auto _ : state) {
    broker->eft->logMessage(broker, CMPI_DEV_DEBUG, "diagcore", text, nullptr);
  }
}
BENCHMARK(BM_DroppedTrace);

}  // namespace
}  // namespace bench
