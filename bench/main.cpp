// The benchmark program: Google Benchmark's own flags (--benchmark_out=FILE
// writes its JSON), plus --figures_out=FILE for the figures table as JSON
// and --fail_on_miss to exit with 1 when a measured figure misses its target.
// Unless told otherwise it runs 5 repetitions, interleaved at random across
// the benchmarks, so that no figure is taken in one quiet or busy moment.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/Figures.h"

namespace {

bool StartsWith(const char* text, const char* prefix) {
  return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

// The commit the figures were measured at, as git describes the source tree.
std::string Commit() {
  const std::string command =
      std::string("git -C '") + DIAGCORE_SOURCE_DIR + "' describe --always --dirty 2>/dev/null";
  std::string text;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[128];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) {
      text += buffer;
    }
    pclose(pipe);
  }
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
    text.pop_back();
  }
  return text.empty() ? "unknown" : text;
}

}  // namespace

int main(int argc, char** argv) {
  std::string figuresOut;
  bool failOnMiss = false;
  bool repetitionsGiven = false;
  bool interleavingGiven = false;
  std::vector<char*> args = {argv[0]};
  for (int i = 1; i < argc; ++i) {
    if (StartsWith(argv[i], "--figures_out=")) {
      figuresOut = argv[i] + std::strlen("--figures_out=");
      continue;
    }
    if (std::strcmp(argv[i], "--fail_on_miss") == 0) {
      failOnMiss = true;
      continue;
    }
    repetitionsGiven = repetitionsGiven || StartsWith(argv[i], "--benchmark_repetitions");
    interleavingGiven =
        interleavingGiven || StartsWith(argv[i], "--benchmark_enable_random_interleaving");
    args.push_back(argv[i]);
  }
  static char repetitions[] = "--benchmark_repetitions=5";
  static char interleaving[] = "--benchmark_enable_random_interleaving=true";
  if (!repetitionsGiven) {
    args.push_back(repetitions);
  }
  if (!interleavingGiven) {
    args.push_back(interleaving);
  }
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) {
    return 1;
  }
  const std::string commit = Commit();
  benchmark::AddCustomContext("commit", commit);

  bench::FigureReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const bool allMet = reporter.PrintTable(std::cout);
  std::cout << "measured at " << commit << "\n";
  if (!figuresOut.empty()) {
    std::ofstream out(figuresOut);
    reporter.WriteJson(out, commit);
    if (!out) {
      std::cerr << "cannot write " << figuresOut << "\n";
      return 1;
    }
  }
  benchmark::Shutdown();
  return failOnMiss && !allMet ? 1 : 0;
}
