#include "bench/PairTimer.h"

#include <ctime>

namespace bench {

double ThreadCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

PairTimer::PairTimer(std::size_t batch) : batch_(batch) {}

double PairTimer::Measure(const Side& side) const {
  if (side.prepare) {
    side.prepare(batch_);
  }
  const double start = ThreadCpuSeconds();
  side.run(batch_);
  return ThreadCpuSeconds() - start;
}

void PairTimer::Run(benchmark::State& state, const Side& subject, const Side& baseline) {
  double subjectSeconds = 0;
  double baselineSeconds = 0;
  std::size_t rounds = 0;
  // One untimed round first: the first calls grow the heap and fault its
  // pages in, which would be charged to whichever side ran first.
  Measure(subject);
  Measure(baseline);
  for (auto _ : state) {
    // Alternating the order cancels what one side leaves in the caches for
    // the other.
    double first = 0;
    double second = 0;
    if (rounds % 2 == 0) {
      first = Measure(subject);
      second = Measure(baseline);
      subjectSeconds += first;
      baselineSeconds += second;
    } else {
      first = Measure(baseline);
      second = Measure(subject);
      baselineSeconds += first;
      subjectSeconds += second;
    }
    state.SetIterationTime(first + second);
    ++rounds;
  }
  const auto ops = static_cast<double>(rounds * batch_);
  if (ops > 0 && subjectSeconds > 0 && baselineSeconds > 0) {
    const double subjectNs = subjectSeconds * 1e9 / (ops * subject.unitsPerOp);
    const double baselineNs = baselineSeconds * 1e9 / (ops * baseline.unitsPerOp);
    state.counters["subject_ns"] = subjectNs;
    state.counters["baseline_ns"] = baselineNs;
    state.counters["ratio"] = subjectNs / baselineNs;
  }
}

}  // namespace bench
