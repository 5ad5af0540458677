// The registry itself under eight threads: registrations of new path texts
// and of texts already filed, lookups that hit and lookups that miss (each
// leaving an empty slot), and enumerations of a class sorted by EnumOrder,
// all at once. Afterwards each path text is found with its last
// registration, and the enumeration holds each text once, in EnumOrder.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/InstanceRegistry.h"
#include "stress/StressRounds.h"
#include "support/Bags.h"
#include "support/ProviderHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::InstanceRegistry;

constexpr int kThreads = 8;
constexpr int kRounds = 600;
constexpr std::chrono::milliseconds kBudget{5000};
// Path texts shared by all threads, so that registrations overwrite each
// other's entries and lookups meet registrations of the same text.
constexpr int kSharedIds = 64;

InstanceRegistry& Registry() {
  return *InstanceRegistry::Singleton();
}

std::string ElementText(const std::string& id) {
  return "DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"" + id + "\"";
}

ProviderHostOptions Options() {
  ProviderHostOptions options;
  options.mofFiles = {SourcePath("tests/core/data/qualifiers.mof"),
                      SourcePath("tests/core/data/core.mof")};
  options.classes = {"DCT_Element"};
  options.logBound = 0;  // tracing is not what is under test here
  return options;
}

// The EnumOrder of what a thread registers in a round: many equal values.
unsigned EnumOrderOf(int thread, int round) {
  return static_cast<unsigned>((thread * 7 + round) % 11);
}

class RegistryStressTest : public ::testing::Test {
 protected:
  RegistryStressTest() : provider_(Options()), rounds_(kThreads, kRounds, kBudget) {}

  cmpihost::Host& host() { return provider_.host(); }

  void Register(const std::string& id, unsigned enumOrder) {
    TestBag* bag =
        NewBag(std::string("DCT_Element"), PropertyList{{"CreationClassName", "DCT_Element"},
                                                        {"DeviceID", id},
                                                        {"EnumOrder", std::to_string(enumOrder)}});
    RegisterInScope(host(), bag);
    if (bag->getObjectPath() != ElementText(id)) {
      rounds_.Fail("registered " + id + " under '" + bag->getObjectPath() + "'");
    }
  }

  void Round(int thread, int round) {
    const std::string own = "t" + std::to_string(thread) + "-" + std::to_string(round);
    const std::string shared = "s" + std::to_string((thread * 13 + round) % kSharedIds);
    switch (round % 4) {
      case 0:
        Register(own, EnumOrderOf(thread, round));
        break;
      case 1:
        Register(shared, EnumOrderOf(thread, round));
        break;
      case 2:
        Lookups(thread, round);
        break;
      default:
        CheckSorted();
        break;
    }
  }

  void Lookups(int thread, int round) {
    cmpihost::CallScope scope(host());
    // Registered by this thread two rounds ago: must be there.
    const std::string earlier = "t" + std::to_string(thread) + "-" + std::to_string(round - 2);
    InstanceRegistry::Instance* found =
        Registry().GetInstance(scope.broker(), scope.objectPath(ElementText(earlier)));
    if (found == nullptr || found->impl->getObjectPath() != ElementText(earlier)) {
      rounds_.Fail("lost " + earlier);
    }
    const std::string never = "never-" + std::to_string(thread) + "-" + std::to_string(round);
    if (Registry().GetInstance(scope.broker(), scope.objectPath(ElementText(never))) != nullptr) {
      rounds_.Fail("found " + never);
    }
  }

  void CheckSorted() {
    cmpihost::CallScope scope(host());
    std::vector<CMPIInstance*> instances;
    Registry().GetCMPIInstances(scope.broker(), "DCT_Element", instances);
    std::vector<unsigned> orders;
    for (CMPIInstance* instance : instances) {
      orders.push_back(instance->ft->getProperty(instance, "EnumOrder", nullptr).value.uint32);
    }
    if (!std::is_sorted(orders.begin(), orders.end())) {
      rounds_.Fail("an enumeration was not in EnumOrder order");
    }
  }

  ProviderHost provider_;
  StressRounds rounds_;
};

TEST_F(RegistryStressTest, RegistrationsLookupsAndSortedEnumerationsAtOnceLoseNothing) {
  // Something for the first sorted enumeration to look at.
  Register("first", 5);
  rounds_.Run([this](int thread, int round) { Round(thread, round); });
  RecordProperty("rounds", std::to_string(rounds_.roundsDone()));
  EXPECT_EQ(rounds_.failures(), 0) << rounds_.report();

  cmpihost::CallScope scope(host());
  std::vector<CMPIInstance*> all;
  Registry().GetCMPIInstances(scope.broker(), "DCT_Element", all);
  std::vector<std::string> texts;
  for (CMPIInstance* instance : all) {
    texts.push_back(scope.snapshot(instance).path);
    // A lookup finds what the enumeration serves, for texts registered again
    // as much as for texts registered once.
    EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), scope.objectPath(texts.back())), instance)
        << texts.back();
  }
  std::sort(texts.begin(), texts.end());
  EXPECT_EQ(std::adjacent_find(texts.begin(), texts.end()), texts.end()) << "a text twice";

  // Each own text a thread registered is there, and is what a lookup finds.
  std::size_t own = 0;
  for (int thread = 0; thread < kThreads; ++thread) {
    for (int round = 0; round < kRounds; round += 4) {
      const std::string id = "t" + std::to_string(thread) + "-" + std::to_string(round);
      InstanceRegistry::Instance* entry =
          Registry().GetInstance(scope.broker(), scope.objectPath(ElementText(id)));
      if (entry == nullptr) {
        continue;  // the budget ended the thread's rounds before this one
      }
      ++own;
      EXPECT_EQ(entry->impl->getObjectPath(), ElementText(id));
      EXPECT_EQ((*entry->impl)["EnumOrder"], std::to_string(EnumOrderOf(thread, round)));
    }
  }
  EXPECT_GT(own, 0U);
  // Own texts, the shared texts that were registered, and "first": nothing
  // else, so the empty slots of the missed lookups are not served.
  EXPECT_LE(all.size(), own + kSharedIds + 1);
  EXPECT_GE(all.size(), own + 1);
}

}  // namespace
}  // namespace diagcore_test
