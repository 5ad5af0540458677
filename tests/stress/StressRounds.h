// Runs a body on many threads at once for a bounded number of rounds and a
// bounded time, and collects what went wrong. Bounded both ways so that a
// slow sanitizer build ends in time and a fast build still does every round;
// nothing here measures or asserts on speed.
#ifndef DIAGCORE_TESTS_STRESS_STRESSROUNDS_H_
#define DIAGCORE_TESTS_STRESS_STRESSROUNDS_H_

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace diagcore_test {

class StressRounds {
 public:
  StressRounds(int threads, int rounds, std::chrono::milliseconds budget);

  // Calls body(thread, round) on every thread, all starting together, until
  // each has done its rounds or the budget is spent; returns when all ended.
  void Run(const std::function<void(int thread, int round)>& body);

  // Notes a failure; the first few texts are kept for the report.
  void Fail(const std::string& what);

  int threads() const { return threads_; }
  long roundsDone() const { return roundsDone_.load(); }
  long failures() const { return failures_.load(); }
  // The kept failure texts, one per line.
  std::string report() const;

 private:
  const int threads_;
  const int rounds_;
  const std::chrono::milliseconds budget_;
  std::atomic<long> roundsDone_{0};
  std::atomic<long> failures_{0};
  mutable std::mutex textsMutex_;
  std::vector<std::string> texts_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_STRESS_STRESSROUNDS_H_
