// The registry: what registration traces (the double build included), where
// objects are filed, lookups that insert on a miss, enumeration order by path
// text or "EnumOrder", method dispatch, and classes that cannot be built.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
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

InstanceRegistry& Registry() {
  return *InstanceRegistry::Singleton();
}

class InstanceRegistryTest : public CoreHostTest {
 protected:
  // The values of `property` of the instances `className` enumerates, in order.
  std::vector<std::string> Enumerate(const std::string& className,
                                     const std::string& property = "DeviceID") {
    cmpihost::CallScope scope(host());
    std::vector<CMPIInstance*> out;
    Registry().GetCMPIInstances(scope.broker(), className, out);
    return Values(scope, out, property);
  }

  static std::vector<std::string> Values(cmpihost::CallScope& scope,
                                         const std::vector<CMPIInstance*>& instances,
                                         const std::string& property) {
    std::vector<std::string> values;
    for (const CMPIInstance* instance : instances) {
      const cmpihost::InstanceSnapshot snapshot = scope.snapshot(instance);
      const cmpihost::Value* value = snapshot.find(property);
      values.push_back(value == nullptr             ? "<none>"
                       : value->type == CMPI_string ? value->text
                                                    : value->toMof());
    }
    return values;
  }

  InstanceRegistry::Instance* Lookup(cmpihost::CallScope& scope, const std::string& text) {
    return Registry().GetInstance(scope.broker(), scope.objectPath(text));
  }
};

TEST_F(InstanceRegistryTest, RegistrationBuildsTwiceClonesAndFilesUnderThePathText) {
  TestBag* bag = Register(NewElement("d1", {{"Caption", "c"}}));

  const std::vector<TraceLine> oneBuild = {
      Debug("Setting property Caption to 'c'"),
      Debug("Setting property CreationClassName to 'DCT_Element'"),
      Debug("Setting property DeviceID to 'd1'"), Debug("Exiting InstanceBuilder::build")};
  const std::vector<TraceLine> traces = TakeTraces();
  ASSERT_EQ(traces.size(), 10U);
  EXPECT_EQ(std::vector<TraceLine>(traces.begin(), traces.begin() + 8), Repeat(oneBuild, 2));
  EXPECT_EQ(traces[9], Debug(">>>>> Registered " + ElementText("d1")));
  EXPECT_EQ(bag->getObjectPath(), ElementText("d1"));

  // The trace names the kept clone, which is what lookups hand out.
  {
    cmpihost::CallScope scope(host());
    InstanceRegistry::Instance* entry = Lookup(scope, ElementText("d1"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->impl, bag);
    std::ostringstream created;
    created << "Created instance: " << static_cast<const void*>(entry->ci)
            << ", hdl = " << static_cast<const void*>(entry->ci->hdl);
    EXPECT_EQ(traces[8], Debug(created.str()));
    EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), scope.objectPath(ElementText("d1"))),
              entry->ci);
  }
  // The clone outlives the registering call's scope.
  const cmpihost::Reply reply = host().getInstance("root/cimv2:" + ElementText("d1"));
  ASSERT_EQ(reply.instances().size(), 1U);
  EXPECT_EQ(reply.instances()[0].find("Caption")->text, "c");
}

TEST_F(InstanceRegistryTest, AMissFindsNothingUntilARegistrationAndTheLastRegistrationWins) {
  Register(NewElement("b", {{"EnumOrder", "2"}}));
  Register(NewElement("c", {{"EnumOrder", "1"}}));
  TakeTraces();
  cmpihost::CallScope scope(host());
  // "a" sorts before every registered text: its empty slot is the first.
  const CMPIObjectPath* missing = scope.objectPath(ElementText("a"));
  EXPECT_EQ(Registry().GetInstance(scope.broker(), missing), nullptr);
  EXPECT_EQ(Registry().GetInstance(scope.broker(), missing), nullptr);
  EXPECT_THAT(TakeTraces(), IsEmpty());
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), missing), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning("Didn't find instance")});
  // The empty slot is skipped: the first real entry has "EnumOrder".
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("c", "b"));

  TestBag* first = Register(NewElement("a", {{"EnumOrder", "3"}, {"Caption", "first"}}));
  EXPECT_EQ(Registry().GetInstance(scope.broker(), missing)->impl, first);
  TestBag* second = Register(NewElement("a", {{"EnumOrder", "3"}, {"Caption", "second"}}));
  EXPECT_EQ(Repeat({Debug(">>>>> Registered " + ElementText("a"))}, 2), [&] {
    std::vector<TraceLine> registered;
    for (const TraceLine& line : TakeTraces()) {
      if (line.text.rfind(">>>>> ", 0) == 0) {
        registered.push_back(line);
      }
    }
    return registered;
  }());
  EXPECT_EQ(Registry().GetInstance(scope.broker(), missing)->impl, second);
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), missing),
            Lookup(scope, ElementText("a"))->ci);
  EXPECT_THAT(Enumerate("DCT_Element", "Caption"), ElementsAre("", "", "second"));
}

TEST_F(InstanceRegistryTest, ClassNamesMatchInAnyCasePathTextsExactly) {
  EXPECT_EQ(Registry().NormalizeClassName("Cim_Foo-bar9 x\xe9"), "CIM_FOO-BAR9 X\xe9");
  Register(NewElement("a"));
  TestBag* lower =
      Register(NewBag(std::string("dct_element"),
                      PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "b"}}));
  Register(NewElement("A"));

  for (const char* name : {"DCT_Element", "dct_element", "Dct_ElemenT"}) {
    EXPECT_THAT(Enumerate(name), ElementsAre("A", "a", "b")) << name;
  }
  cmpihost::CallScope scope(host());
  EXPECT_NE(Lookup(scope, ElementText("A")), Lookup(scope, ElementText("a")));
  // The bag of a lower-case class name is found under the text it was told.
  EXPECT_EQ(Lookup(scope, lower->getObjectPath())->impl, lower);
}

// CIM keys are an unordered set, and SFCB hands the provider a client's path
// with the keys in the client's order.
TEST_F(InstanceRegistryTest, LookupsFindTheObjectWhateverTheKeyOrderAndKeyNameCase) {
  TestBag* element = Register(NewElement("d1"));
  TestBag* link =
      Register(NewBag(std::string("DCT_Link"), PropertyList{{"Antecedent", ElementText("a")},
                                                            {"Dependent", ElementText("d1")}}));
  TakeTraces();
  const struct {
    const char* text;
    TestBag* expected;
  } cases[] = {
      {R"(DCT_Element.CreationClassName="DCT_Element",DeviceID="d1")", element},
      {R"(DCT_Element.DeviceID="d1",CreationClassName="DCT_Element")", element},
      {R"(//h/root/cimv2:dct_element.deviceid="d1",CREATIONCLASSNAME="DCT_Element")", element},
      {R"(DCT_Element.DeviceID="D1",CreationClassName="DCT_Element")", nullptr},
      {R"(DCT_Element.DeviceID="d1")", nullptr},
      {R"(DCT_Link.Dependent="DCT_Element.DeviceID=\"d1\",CreationClassName=\"DCT_Element\"",)"
       R"(Antecedent="DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"a\"")",
       link},
      {R"(DCT_Link.Dependent="DCT_Element.DeviceID=\"a\",CreationClassName=\"DCT_Element\"",)"
       R"(Antecedent="DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"d1\"")",
       nullptr},
  };
  cmpihost::CallScope scope(host());
  for (const auto& c : cases) {
    const InstanceRegistry::Instance* found = Lookup(scope, c.text);
    EXPECT_EQ(found != nullptr ? found->impl : nullptr, c.expected) << c.text;
  }
  // A miss is traced as before.
  EXPECT_THAT(TakeTraces(), IsEmpty());
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), scope.objectPath(cases[3].text)), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning("Didn't find instance")});
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), scope.objectPath(cases[2].text)),
            Lookup(scope, ElementText("d1"))->ci);
}

TEST_F(InstanceRegistryTest, LookupOfAnUnregisteredClassTracesAndIsSilentLater) {
  cmpihost::CallScope scope(host());
  const CMPIObjectPath* path = scope.objectPath("DCT_NumberKey.Id=1");
  EXPECT_EQ(Registry().GetInstance(scope.broker(), path), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning(" Couldn't find instanceContainer")});
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), path), nullptr);
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Warning(" Couldn't find instanceContainer"),
                                                  Warning("Didn't find instance")}));
  // The class slot left by the miss holds nothing: enumeration is empty, silently.
  EXPECT_THAT(Enumerate("dct_numberkey"), IsEmpty());
  EXPECT_THAT(TakeTraces(), IsEmpty());
}

TEST_F(InstanceRegistryTest, EnumerationFollowsPathTextOrderWithoutEnumOrder) {
  for (const char* id : {"c", "a", "B", "b"}) {
    Register(NewElement(id));
  }
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("B", "a", "b", "c"));
  // By path: its keys are ignored.
  cmpihost::CallScope scope(host());
  std::vector<CMPIInstance*> out;
  Registry().GetCMPIInstances(scope.broker(), scope.objectPath(ElementText("zzz")), out);
  EXPECT_THAT(Values(scope, out, "DeviceID"), ElementsAre("B", "a", "b", "c"));
}

TEST_F(InstanceRegistryTest, EnumOrderOfTheFirstEntryOrdersTheWholeClassNumerically) {
  Register(NewElement("a", {{"EnumOrder", "10"}}));
  Register(NewElement("b", {{"EnumOrder", "9"}}));
  Register(NewElement("c", {{"EnumOrder", "100"}}));
  Register(NewElement("d", {{"EnumOrder", "0"}}));
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("d", "b", "a", "c"));
  // uint8 texts are read as one character and compared as a 32-bit field.
  for (const auto& item :
       {std::make_pair("x", "C"), std::make_pair("y", "A"), std::make_pair("z", "B")}) {
    Register(NewBag(std::string("DCT_NarrowOrder"),
                    PropertyList{{"Name", item.first}, {"EnumOrder", item.second}}));
  }
  EXPECT_THAT(Enumerate("DCT_NarrowOrder", "Name"), ElementsAre("y", "z", "x"));
}

TEST_F(InstanceRegistryTest, OnlyTheFirstEntryDecidesWhetherToSort) {
  Register(NewElement("a"));
  Register(NewElement("b", {{"EnumOrder", "2"}}));
  Register(NewElement("c", {{"EnumOrder", "1"}}));
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("a", "b", "c"));
}

TEST_F(InstanceRegistryTest, OutputVectorIsAppendedToAndSortedWhole) {
  Register(NewBag(std::string("DCT_AllTypes"),
                  PropertyList{{"InstanceID", "five"}, {"EnumOrder", "5"}}));
  Register(NewElement("seven", {{"EnumOrder", "7"}}));
  Register(NewElement("one", {{"EnumOrder", "1"}}));
  Register(NewBag(std::string("DCT_NumberKey"), PropertyList{{"Id", "1"}, {"Text", "n"}}));

  cmpihost::CallScope scope(host());
  std::vector<CMPIInstance*> sorted;
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_AllTypes"), sorted);
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_Element"), sorted);
  EXPECT_THAT(Values(scope, sorted, "EnumOrder"), ElementsAre("1", "5", "7"));

  // Without sorting, the new instances follow the old ones; an unknown class
  // adds nothing.
  std::vector<CMPIInstance*> appended;
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_AllTypes"), appended);
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_NumberKey"), appended);
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_Nope"), appended);
  EXPECT_THAT(Values(scope, appended, "EnumOrder"), ElementsAre("5", "<none>"));
}

TEST_F(InstanceRegistryTest, EnumOrderSortGivesTheOrderOfSortingWithTheComparator) {
  // Many equal EnumOrders, registered in no particular order: the unstable
  // sort's order of ties must be the comparator's own over path text order.
  std::mt19937 random(7);
  std::vector<TestBag*> bags;
  for (int i = 0; i < 300; ++i) {
    bags.push_back(
        Register(NewBag(std::string("DCT_AllTypes"),
                        PropertyList{{"InstanceID", "e" + std::to_string(random() % 100000)},
                                     {"EnumOrder", std::to_string(random() % 7)}})));
  }
  cmpihost::CallScope scope(host());
  std::vector<std::pair<std::string, CMPIInstance*>> byPath;
  for (TestBag* bag : bags) {
    byPath.emplace_back(
        bag->getObjectPath(),
        Registry().GetCMPIInstance(scope.broker(), scope.objectPath(bag->getObjectPath())));
  }
  std::sort(byPath.begin(), byPath.end());
  byPath.erase(std::unique(byPath.begin(), byPath.end()), byPath.end());
  std::vector<CMPIInstance*> expected;
  for (const auto& entry : byPath) {
    expected.push_back(entry.second);
  }
  std::sort(expected.begin(), expected.end(), NQENDRA20::CompareInstanceEnumOrder());

  std::vector<CMPIInstance*> sorted;
  Registry().GetCMPIInstances(scope.broker(), "DCT_AllTypes", sorted);
  EXPECT_EQ(sorted, expected);
}

TEST_F(InstanceRegistryTest, ReferenceKeysAreFiledUnderTheNestedPathTexts) {
  Register(NewBag(std::string("DCT_Link"), PropertyList{{"Antecedent", ElementText("a")},
                                                        {"Dependent", ElementText("b")},
                                                        {"Note", "n"}}));
  const std::string nested = "//localhost/root/cimv2:";
  EXPECT_EQ(TakeTraces().back(),
            Debug(">>>>> Registered DCT_Link.Antecedent=\"" + nested + ElementText("a") +
                  "\",Dependent=\"" + nested + ElementText("b") + "\""));
  // Parsing stops where a value has no quotes; what it read is used.
  Register(NewBag(std::string("DCT_Link"),
                  PropertyList{{"Antecedent", "DCT_Element.DeviceID=d1"}, {"Note", "u"}}));
  EXPECT_THAT(Enumerate("DCT_Link", "Note"), ElementsAre("n", "u"));
}

TEST_F(InstanceRegistryTest, WhatCannotBeBuiltIsNotRegisteredAndStaysTheCallers) {
  Register(NewElement("kept"));
  TakeTraces();
  const std::unique_ptr<TestBag> unknown(
      Register(NewBag(std::string("DCT_Nope"), PropertyList{{"Name", "x"}})));
  EXPECT_EQ(TakeTraces(), Concat(Repeat({Debug("Exiting InstanceBuilder::build")}, 2),
                                 {Warning("Could not build instance of class DCT_Nope")}));
  EXPECT_EQ(unknown->getObjectPath(), "");
  EXPECT_THAT(Enumerate("DCT_Nope"), IsEmpty());

  cmpihost::CallScope scope(host());
  const std::unique_ptr<TestBag> unparsable(
      NewBag(std::string("DCT_Link"),
             PropertyList{{"Antecedent", ElementText("a") + ","}, {"Note", "n"}}));
  EXPECT_THROW(Registry().RegisterInstance(scope.broker(), scope.context(), unparsable.get()),
               std::out_of_range);
  EXPECT_EQ(unparsable->getObjectPath(), "");
  EXPECT_THAT(Enumerate("DCT_Link", "Note"), IsEmpty());
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("kept"));
}

TEST_F(InstanceRegistryTest, MethodCallsReachTheRegisteredBagWithTheCallsArguments) {
  std::vector<const void*> seen;
  std::string seenName;
  MethodBag* bag = Register(
      NewBag<MethodBag>(std::string("DCT_Element"),
                        PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "m"}},
                        [&](const MethodCall& call) {
                          seen = {call.broker, call.context, call.result, call.path};
                          seenName = call.methodName;
                          return CMPIStatus{CMPI_RC_ERR_METHOD_NOT_AVAILABLE, nullptr};
                        }));
  TakeTraces();
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIObjectPath* path = scope.objectPath(ElementText("m"));
  EXPECT_EQ(
      Registry()
          .InvokeMethod(scope.broker(), scope.context(), result, path, "Ping", nullptr, nullptr)
          .rc,
      CMPI_RC_ERR_METHOD_NOT_AVAILABLE);
  EXPECT_EQ(bag->calls(), 1);
  EXPECT_EQ(seenName, "Ping");
  EXPECT_EQ(seen, (std::vector<const void*>{scope.broker(), scope.context(), result, path}));
  const CMPIStatus missing =
      Registry().InvokeMethod(scope.broker(), scope.context(), result,
                              scope.objectPath(ElementText("gone")), "Ping", nullptr, nullptr);
  EXPECT_EQ(missing.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(missing.msg, nullptr);
  EXPECT_THAT(TakeTraces(), IsEmpty());
  EXPECT_TRUE(scope.recorded(result).events.empty());
}

// Batches that go away: filed at once, removed at once by time or by an
// owner's bound, their bags and clones freed only once no request that
// began before the removal still runs, and nothing else touched.

std::atomic<int> freedBags{0};

// An element that counts its destruction.
class CountedElement : public TestBag {
 public:
  explicit CountedElement(const std::string& deviceId)
      : TestBag("DCT_Element", {{"CreationClassName", "DCT_Element"}, {"DeviceID", deviceId}}) {}
  ~CountedElement() override { ++freedBags; }
};

class RegistryLifetimeTest : public InstanceRegistryTest {
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

  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("b1", "c1", "kept"));
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
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("o3", "o4", "x1"));
  EXPECT_EQ(freedBags, 2);
}

TEST_F(RegistryLifetimeTest, WhatARunningRequestMayHoldIsFreedWhenItEnds) {
  File({"held"}, ExpiringAt(1));
  auto running = std::make_unique<NQENDRA20::RequestScope>(nullptr);
  RemoveExpired();
  EXPECT_THAT(Enumerate("DCT_Element"), IsEmpty());
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
  EXPECT_THAT(Enumerate("DCT_Element"), IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
