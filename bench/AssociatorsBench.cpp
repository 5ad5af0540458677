// Associators over 100,000 registered associations. The enumeration step is
// defined as EnumInstances' cost per instance of the same 100,000
// associations through the same host; an associator request must cost no
// more than 3 enumeration steps per candidate, whether it delivers one
// association (a device's) or every one (the service's). Linearity: the cost
// per candidate over 100,000 against that over 10,000.
#include "bench/BenchHost.h"
#include "bench/PairTimer.h"

namespace bench {
namespace {

constexpr std::size_t kLarge = 100000;
constexpr std::size_t kSmall = 10000;
const char* const kLargeClass = "BENCH_Available";
const char* const kSmallClass = "BENCH_AvailableSmall";

void Populate() {
  static const bool done = [] {
    RegisterAssociations(kLargeClass, kLarge);
    RegisterAssociations(kSmallClass, kSmall);
    return true;
  }();
  static_cast<void>(done);
}

cmpihost::AssociationFilter Through(const char* associationClass) {
  cmpihost::AssociationFilter filter;
  filter.assocClass = associationClass;
  return filter;
}

// Associators of `source` through `associationClass`, per candidate, checking
// that `delivered` associations came back.
Side Associators(const std::string& source, const char* associationClass, std::size_t candidates,
                 std::size_t delivered, std::size_t& wrong) {
  Side side;
  side.unitsPerOp = static_cast<double>(candidates);
  side.run = [=, &wrong](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Reply reply = Host().associators(source, Through(associationClass));
      wrong += reply.status.rc == CMPI_RC_OK && reply.events.size() == delivered + 1 ? 0 : 1;
    }
  };
  return side;
}

Side EnumerationSteps(std::size_t& wrong) {
  Side side;
  side.unitsPerOp = static_cast<double>(kLarge);
  side.run = [&wrong](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Reply reply = Host().enumerateInstances(kNameSpace, kLargeClass);
      wrong += reply.status.rc == CMPI_RC_OK && reply.events.size() == kLarge + 1 ? 0 : 1;
    }
  };
  return side;
}

void Finish(benchmark::State& state, std::size_t wrong) {
  if (wrong != 0) {
    state.SkipWithError("a request did not deliver what was registered");
  }
}

void BM_AssociatorsOneMatch(benchmark::State& state) {
  Populate();
  std::size_t wrong = 0;
  PairTimer(1).Run(state, Associators(DevicePath(kLarge / 2), kLargeClass, kLarge, 1, wrong),
                   EnumerationSteps(wrong));
  Finish(state, wrong);
}
BENCHMARK(BM_AssociatorsOneMatch)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

void BM_AssociatorsAllMatch(benchmark::State& state) {
  Populate();
  std::size_t wrong = 0;
  PairTimer(1).Run(state, Associators(ServicePath(), kLargeClass, kLarge, kLarge, wrong),
                   EnumerationSteps(wrong));
  Finish(state, wrong);
}
BENCHMARK(BM_AssociatorsAllMatch)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

void BM_AssociatorsLinearity(benchmark::State& state) {
  Populate();
  std::size_t wrong = 0;
  PairTimer(1).Run(state, Associators(DevicePath(kSmall / 2), kLargeClass, kLarge, 1, wrong),
                   Associators(DevicePath(kSmall / 2), kSmallClass, kSmall, 1, wrong));
  Finish(state, wrong);
}
BENCHMARK(BM_AssociatorsLinearity)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
