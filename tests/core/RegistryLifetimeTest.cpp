// Batches that go away: filed at once, removed at once by time or by an
// owner's bound, their bags and clones freed only once no request that
// began before the removal still runs, and nothing else touched.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "core/Reclamation.h"
#include "diagcore/InstanceRegistry.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::InstanceRegistry;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::atomic<int> freedBags{0};

// An element that counts its destruction.
class CountedElement : public TestBag {
 public:
  explicit CountedElement(const std::string& deviceId)
      : TestBag("DCT_Element", {{"CreationClassName", "DCT_Element"}, {"DeviceID", deviceId}}) {}
  ~CountedElement() override { ++freedBags; }
};

InstanceRegistry& Registry() {
  return *InstanceRegistry::Singleton();
}

class RegistryLifetimeTest : public CoreHostTest {
 protected:
  RegistryLifetimeTest() { freedBags = 0; }

  // Files one batch of elements with `lifetime`.
  void File(const std::vector<std::string>& deviceIds, const InstanceRegistry::Lifetime& lifetime) {
    cmpihost::CallScope scope(host());
    InstanceRegistry::Batch batch;
    for (const std::string& id : deviceIds) {
      ASSERT_FALSE(batch.Add(scope.broker(), scope.context(), std::make_unique<CountedElement>(id))
                       .pathText.empty());
    }
    Registry().Register(scope.broker(), batch, lifetime);
  }

  std::vector<std::string> Elements() {
    cmpihost::CallScope scope(host());
    std::vector<CMPIInstance*> out;
    Registry().GetCMPIInstances(scope.broker(), "DCT_Element", out);
    std::vector<std::string> ids;
    ids.reserve(out.size());
    for (const CMPIInstance* instance : out) {
      ids.push_back(scope.snapshot(instance).find("DeviceID")->text);
    }
    return ids;
  }

  void RemoveExpired() {
    cmpihost::CallScope scope(host());
    Registry().RemoveExpired(scope.broker());
  }

  static CMPIUint64 Micros(std::chrono::system_clock::time_point when) {
    return static_cast<CMPIUint64>(
        std::chrono::duration_cast<std::chrono::microseconds>(when.time_since_epoch()).count());
  }
};

InstanceRegistry::Lifetime ExpiringAt(CMPIUint64 micros) {
  InstanceRegistry::Lifetime lifetime;
  lifetime.expiresAt = micros;
  return lifetime;
}

InstanceRegistry::Lifetime Bounded(const std::string& owner, unsigned int bound) {
  InstanceRegistry::Lifetime lifetime;
  lifetime.owner = owner;
  lifetime.bound = bound;
  return lifetime;
}

TEST_F(RegistryLifetimeTest, ABatchExpiresWholeAtItsTimeAndLeavesOthersAlone) {
  const auto fixed = std::chrono::system_clock::from_time_t(1709618828);
  host().setClock([fixed] { return fixed; });
  const CMPIUint64 now = Micros(fixed);
  Register(NewElement("kept"));
  File({"a1", "a2"}, ExpiringAt(now));
  File({"b1"}, ExpiringAt(now + 1));
  File({"c1"}, InstanceRegistry::Lifetime());
  TakeTraces();

  RemoveExpired();

  EXPECT_THAT(Elements(), ElementsAre("b1", "c1", "kept"));
  EXPECT_THAT(TakeTraces(), ElementsAre(Debug("<<<<< Removed " + ElementText("a1")),
                                        Debug("<<<<< Removed " + ElementText("a2"))));
  EXPECT_EQ(freedBags, 2);
  EXPECT_EQ(Registry().BatchCount(), 2U);
}

TEST_F(RegistryLifetimeTest, AnOwnersBoundRemovesItsOldestBatchesFirst) {
  for (const char* id : {"o1", "o2", "o3", "o4"}) {
    File({id}, Bounded("owner", 2));
  }
  File({"x1"}, Bounded("other", 2));
  EXPECT_THAT(Elements(), ElementsAre("o3", "o4", "x1"));
  EXPECT_EQ(freedBags, 2);
}

TEST_F(RegistryLifetimeTest, WhatARunningRequestMayHoldIsFreedWhenItEnds) {
  File({"held"}, ExpiringAt(1));
  auto running = std::make_unique<NQENDRA20::RequestScope>(nullptr);
  RemoveExpired();
  EXPECT_THAT(Elements(), IsEmpty());
  EXPECT_EQ(freedBags, 0);
  running.reset();
  EXPECT_EQ(freedBags, 1);
}

TEST_F(RegistryLifetimeTest, ALaterRegistrationUnderTheSameTextOutlivesTheBatchItReplaced) {
  File({"same"}, ExpiringAt(1));
  Register(NewElement("same", {{"Caption", "replacement"}}));
  RemoveExpired();
  cmpihost::CallScope scope(host());
  std::vector<CMPIInstance*> out;
  Registry().GetCMPIInstances(scope.broker(), "DCT_Element", out);
  ASSERT_EQ(out.size(), 1U);
  EXPECT_EQ(scope.snapshot(out[0]).find("Caption")->text, "replacement");
  const CMPIObjectPath* path = scope.objectPath(ElementText("same"));
  EXPECT_NE(Registry().GetInstance(scope.broker(), path), nullptr);
}

TEST_F(RegistryLifetimeTest, ABatchWithABagThatCannotBeBuiltLeavesItOutAndFreesIt) {
  cmpihost::CallScope scope(host());
  InstanceRegistry::Batch batch;
  const InstanceRegistry::Batch::Added added =
      batch.Add(scope.broker(), scope.context(), std::make_unique<TestBag>("DCT_Unknown"));
  EXPECT_EQ(added.pathText, "");
  EXPECT_EQ(added.path, nullptr);
  {
    InstanceRegistry::Batch unfiled;
    unfiled.Add(scope.broker(), scope.context(), std::make_unique<CountedElement>("never"));
  }
  EXPECT_EQ(freedBags, 1);
  EXPECT_THAT(Elements(), IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
