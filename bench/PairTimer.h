// Interleaved measurement of a subject against its baseline in one process.
//
// The machine is shared and noisy, so a figure is never an absolute time but
// the ratio of two costs measured side by side: each benchmark iteration
// runs one batch of the subject and one of the baseline, alternating which
// goes first, and each batch is timed by the thread's CPU clock (other
// processes' load does not count; reading that clock costs about a
// microsecond, so it is read per batch, never per operation).
#ifndef DIAGCORE_BENCH_PAIRTIMER_H_
#define DIAGCORE_BENCH_PAIRTIMER_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>

namespace bench {

// Seconds of CPU time the calling thread has used.
double ThreadCpuSeconds();

// One side of a pair: `prepare(count)` readies `count` operations untimed,
// then `run(count)` performs them and is timed. Costs are published per
// unit: `unitsPerOp` is 100000 for "per instance" of an enumeration of
// 100,000 instances.
struct Side {
  std::function<void(std::size_t)> prepare;
  std::function<void(std::size_t)> run;
  double unitsPerOp = 1.0;
};

class PairTimer {
 public:
  // `batch` operations per side and iteration.
  explicit PairTimer(std::size_t batch);

  // Runs the benchmark loop and publishes, as counters, the subject's and
  // the baseline's CPU nanoseconds per unit and their ratio.
  void Run(benchmark::State& state, const Side& subject, const Side& baseline);

 private:
  double Measure(const Side& side) const;

  std::size_t batch_;
};

}  // namespace bench

#endif  // DIAGCORE_BENCH_PAIRTIMER_H_
