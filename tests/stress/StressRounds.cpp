#include "stress/StressRounds.h"

#include <thread>

namespace diagcore_test {

namespace {

constexpr std::size_t kKeptTexts = 20;

}  // namespace

StressRounds::StressRounds(int threads, int rounds, std::chrono::milliseconds budget)
    : threads_(threads), rounds_(rounds), budget_(budget) {}

void StressRounds::Run(const std::function<void(int thread, int round)>& body) {
  std::atomic<int> ready{0};
  std::atomic<bool> go{false};
  std::chrono::steady_clock::time_point deadline;
  std::vector<std::thread> workers;
  workers.reserve(static_cast<std::size_t>(threads_));
  for (int thread = 0; thread < threads_; ++thread) {
    workers.emplace_back([&, thread] {
      ++ready;
      while (!go.load()) {
        std::this_thread::yield();
      }
      for (int round = 0; round < rounds_ && std::chrono::steady_clock::now() < deadline; ++round) {
        body(thread, round);
        ++roundsDone_;
      }
    });
  }
  while (ready.load() < threads_) {
    std::this_thread::yield();
  }
  deadline = std::chrono::steady_clock::now() + budget_;
  go = true;
  for (std::thread& worker : workers) {
    worker.join();
  }
}

void StressRounds::Fail(const std::string& what) {
  ++failures_;
  const std::lock_guard<std::mutex> lock(textsMutex_);
  if (texts_.size() < kKeptTexts) {
    texts_.push_back(what);
  }
}

std::string StressRounds::report() const {
  const std::lock_guard<std::mutex> lock(textsMutex_);
  std::string text;
  for (const std::string& line : texts_) {
    text += line + "\n";
  }
  return text;
}

}  // namespace diagcore_test
