// The figures the benchmarks exist for: each names the benchmark and counter
// it is read from, what it means and the target it must meet. A reporter
// collects the counter from every repetition and, at the end, prints the
// median against the target and writes the same as JSON.
#ifndef DIAGCORE_BENCH_FIGURES_H_
#define DIAGCORE_BENCH_FIGURES_H_

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace bench {

struct Figure {
  std::string benchmark;  // the benchmark function's name
  std::string counter;    // the counter that carries the figure
  std::string what;       // what is compared with what
  double target;          // the figure must not exceed it; 0: for information only
  std::string unit;       // "x" (a ratio), "B", "s"
};

// Every figure, in the order of bench/README.md's table.
const std::vector<Figure>& Figures();

// The console reporter that also keeps each figure's counter per repetition.
class FigureReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  // One line per figure: median, target, met or missed (or why it is absent).
  // Returns whether every figure that was measured met its target.
  bool PrintTable(std::ostream& out) const;
  // The same as a JSON document, with the commit it was measured at.
  void WriteJson(std::ostream& out, const std::string& commit) const;

 private:
  struct Samples {
    std::vector<double> values;
    std::string error;
  };
  double Median(const Figure& figure) const;
  std::map<std::string, Samples> samples_;  // by benchmark name and counter
};

}  // namespace bench

#endif  // DIAGCORE_BENCH_FIGURES_H_
