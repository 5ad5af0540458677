// Loading the whole DMTF CIM schema 2.41 with the host's MOF reader into a
// fresh host: the CPU time of the load itself (the host's teardown is not
// counted). Skipped where the schema is not on the machine.
#include <fstream>
#include <memory>
#include <string>

#include "bench/PairTimer.h"
#include "cmpihost/Host.h"

namespace bench {
namespace {

std::string SchemaFile() {
  return std::string(DIAGCORE_SHARED_DIR) + "/dmtf-cim-schema-2.41/cim_schema_2.41.0.mof";
}

void BM_LoadDmtfSchema(benchmark::State& state) {
  const std::string file = SchemaFile();
  if (!std::ifstream(file).good()) {
    state.SkipWithError(("absent: " + file).c_str());
    return;
  }
  double cpuSeconds = 0;
  std::size_t loads = 0;
  for (auto _ : state) {
    auto host = std::make_unique<cmpihost::Host>();
    const double start = ThreadCpuSeconds();
    host->loadMof(file);
    const double spent = ThreadCpuSeconds() - start;
    cpuSeconds += spent;
    ++loads;
    state.SetIterationTime(spent);
  }
  state.counters["seconds"] = cpuSeconds / static_cast<double>(loads);
}
BENCHMARK(BM_LoadDmtfSchema)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
