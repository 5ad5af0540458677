// GetInstance among 1,000,000 registered records against the same among
// 1,000: what the registry's size costs a lookup. Keys are drawn at random,
// so the large population is read as a CIMOM would read it, mostly from
// outside the caches. The figure is taken end to end through the host, as a
// client asks (like the other request figures); the same at the library's
// MI alone is reported beside it for information, since there the lookup's
// few unavoidable cache misses weigh against very little other work.
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/PairTimer.h"
#include "broker/Scope.h"

namespace bench {
namespace {

constexpr std::size_t kBatch = 200;
constexpr std::size_t kSmall = 1000;
const char* const kBigClass = "BENCH_BigRecord";
const char* const kSmallClass = "BENCH_SmallRecord";
constexpr std::size_t kBigFirst = 100000000;
constexpr std::size_t kSmallFirst = 200000000;

// DIAGCORE_BENCH_BIG_RECORDS overrides the large population (for a quick
// look; the figure is defined at 1,000,000).
std::size_t BigCount() {
  const char* text = std::getenv("DIAGCORE_BENCH_BIG_RECORDS");
  return text != nullptr ? std::strtoul(text, nullptr, 10) : 1000000;
}

void Populate() {
  static const bool done = [] {
    RegisterRecords(kBigClass, kBigFirst, BigCount());
    RegisterRecords(kSmallClass, kSmallFirst, kSmall);
    return true;
  }();
  static_cast<void>(done);
}

// One side: `count` lookups of random records of a population, each an MI
// call in a call scope of its own; paths and results are made untimed.
class Lookups {
 public:
  Lookups(const Session& session, std::optional<cmpihost::Scope>& batch, const char* className,
          std::size_t first, std::size_t population, unsigned seed)
      : session_(session),
        batch_(batch),
        className_(className),
        first_(first),
        pick_(0, population - 1),
        random_(seed) {}

  Side side() {
    Side side;
    side.prepare = [this](std::size_t count) { Prepare(count); };
    side.run = [this](std::size_t count) { Run(count); };
    return side;
  }
  bool allFound() const { return misses_ == 0; }

 private:
  void Prepare(std::size_t count) {
    batch_.reset();
    batch_.emplace();
    paths_.clear();
    results_.clear();
    for (std::size_t i = 0; i < count; ++i) {
      const std::string text = RecordPath(className_, first_ + pick_(random_));
      paths_.push_back(const_cast<cmpihost::CallScope&>(session_.scope).objectPath(text));
      results_.push_back(const_cast<cmpihost::CallScope&>(session_.scope).newResult());
    }
  }
  void Run(std::size_t count) {
    CMPIInstanceMI* mi = InstanceMI();
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Scope call;
      const CMPIStatus status =
          mi->ft->getInstance(mi, session_.context(), results_[i], paths_[i], nullptr);
      misses_ += status.rc == CMPI_RC_OK ? 0 : 1;
    }
  }

  const Session& session_;
  std::optional<cmpihost::Scope>& batch_;
  const char* className_;
  std::size_t first_;
  std::uniform_int_distribution<std::size_t> pick_;
  std::mt19937_64 random_;
  std::vector<CMPIObjectPath*> paths_;
  std::vector<CMPIResult*> results_;
  std::size_t misses_ = 0;
};

// One side through the host: Host::getInstance of random records' path texts.
class HostLookups {
 public:
  HostLookups(const char* className, std::size_t first, std::size_t population, unsigned seed)
      : className_(className), first_(first), pick_(0, population - 1), random_(seed) {}

  Side side() {
    Side side;
    side.prepare = [this](std::size_t count) {
      texts_.clear();
      for (std::size_t i = 0; i < count; ++i) {
        texts_.push_back(RecordPath(className_, first_ + pick_(random_)));
      }
    };
    side.run = [this](std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) {
        const cmpihost::Reply reply = Host().getInstance(texts_[i]);
        misses_ += reply.status.rc == CMPI_RC_OK && reply.events.size() == 2 ? 0 : 1;
      }
    };
    return side;
  }
  bool allFound() const { return misses_ == 0; }

 private:
  const char* className_;
  std::size_t first_;
  std::uniform_int_distribution<std::size_t> pick_;
  std::mt19937_64 random_;
  std::vector<std::string> texts_;
  std::size_t misses_ = 0;
};

void BM_GetInstance(benchmark::State& state) {
  Populate();
  HostLookups big(kBigClass, kBigFirst, BigCount(), 1);
  HostLookups small(kSmallClass, kSmallFirst, kSmall, 2);
  PairTimer(kBatch).Run(state, big.side(), small.side());
  if (!big.allFound() || !small.allFound()) {
    state.SkipWithError("a registered record was not found");
  }
}
BENCHMARK(BM_GetInstance)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

void BM_GetInstanceAtMI(benchmark::State& state) {
  Populate();
  const Session session;
  std::optional<cmpihost::Scope> batch;
  Lookups big(session, batch, kBigClass, kBigFirst, BigCount(), 1);
  Lookups small(session, batch, kSmallClass, kSmallFirst, kSmall, 2);
  PairTimer(kBatch).Run(state, big.side(), small.side());
  batch.reset();
  if (!big.allFound() || !small.allFound()) {
    state.SkipWithError("a registered record was not found");
  }
}
BENCHMARK(BM_GetInstanceAtMI)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
