// The registry: what registration traces (the double build included), where
// objects are filed, lookups that insert on a miss, enumeration order by path
// text or "EnumOrder", method dispatch, and classes that cannot be built.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/InstanceRegistry.h"

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
};

TEST(InstanceRegistryNamesTest, ClassNamesAreUpperCasedByteByByte) {
  EXPECT_EQ(Registry().NormalizeClassName("Cim_Foo-bar9"), "CIM_FOO-BAR9");
  EXPECT_EQ(Registry().NormalizeClassName(""), "");
  EXPECT_EQ(Registry().NormalizeClassName(" x\xe9"), " X\xe9");
  EXPECT_EQ(InstanceRegistry::Singleton(), &Registry());
}

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
  cmpihost::CallScope scope(host());
  InstanceRegistry::Instance* entry =
      Registry().GetInstance(scope.broker(), scope.objectPath(ElementText("d1")));
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->impl, bag);
  std::ostringstream created;
  created << "Created instance: " << static_cast<const void*>(entry->ci)
          << ", hdl = " << static_cast<const void*>(entry->ci->hdl);
  EXPECT_EQ(traces[8], Debug(created.str()));
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), scope.objectPath(ElementText("d1"))),
            entry->ci);
  EXPECT_EQ(scope.snapshot(entry->ci).find("Caption")->text, "c");
}

TEST_F(InstanceRegistryTest, TheCloneOutlivesTheRegistrationCall) {
  Register(NewElement("kept", {{"Caption", "still here"}}));
  // New scopes: everything of the registering call has been freed.
  const cmpihost::Reply reply = host().getInstance("root/cimv2:" + ElementText("kept"));
  ASSERT_EQ(reply.instances().size(), 1U);
  EXPECT_EQ(reply.instances()[0].find("Caption")->text, "still here");
}

TEST_F(InstanceRegistryTest, LaterRegistrationUnderTheSamePathTextWins) {
  TestBag* first = Register(NewElement("same", {{"Caption", "first"}}));
  TestBag* second = Register(NewElement("same", {{"Caption", "second"}}));

  std::vector<TraceLine> registered;
  for (const TraceLine& line : TakeTraces()) {
    if (line.text.rfind(">>>>> ", 0) == 0) {
      registered.push_back(line);
    }
  }
  EXPECT_EQ(registered, Repeat({Debug(">>>>> Registered " + ElementText("same"))}, 2));
  EXPECT_EQ(first->getObjectPath(), second->getObjectPath());

  cmpihost::CallScope scope(host());
  InstanceRegistry::Instance* entry =
      Registry().GetInstance(scope.broker(), scope.objectPath(ElementText("same")));
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->impl, second);
  EXPECT_THAT(Enumerate("DCT_Element", "Caption"), ElementsAre("second"));
}

TEST_F(InstanceRegistryTest, ClassNamesMatchInAnyCasePathTextsExactly) {
  Register(NewElement("a"));
  TestBag* lower =
      Register(NewBag(std::string("dct_element"),
                      PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "b"}}));
  Register(NewElement("A"));

  // One container, whatever the spelling of the class.
  for (const char* name : {"DCT_Element", "dct_element", "DCT_ELEMENT", "Dct_ElemenT"}) {
    EXPECT_THAT(Enumerate(name), ElementsAre("A", "a", "b")) << name;
  }
  // Path texts that differ only in case are different objects.
  cmpihost::CallScope scope(host());
  InstanceRegistry::Instance* upper =
      Registry().GetInstance(scope.broker(), scope.objectPath(ElementText("A")));
  InstanceRegistry::Instance* small =
      Registry().GetInstance(scope.broker(), scope.objectPath(ElementText("a")));
  ASSERT_NE(upper, nullptr);
  ASSERT_NE(small, nullptr);
  EXPECT_NE(upper, small);
  // The bag of a lower-case class name is found under the text it was told.
  ASSERT_NE(scope.objectPath(lower->getObjectPath()), nullptr);
  EXPECT_EQ(Registry().GetInstance(scope.broker(), scope.objectPath(lower->getObjectPath()))->impl,
            lower);
}

TEST_F(InstanceRegistryTest, LookupOfAnUnregisteredClassTracesAndIsSilentLater) {
  cmpihost::CallScope scope(host());
  const CMPIObjectPath* path = scope.objectPath("DCT_NumberKey.Id=1");
  ASSERT_NE(path, nullptr);

  EXPECT_EQ(Registry().GetInstance(scope.broker(), path), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning(" Couldn't find instanceContainer")});

  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), path), nullptr);
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Warning(" Couldn't find instanceContainer"),
                                                  Warning("Didn't find instance")}));

  // The class slot left by the miss holds nothing: enumeration is empty, silently.
  std::vector<CMPIInstance*> out;
  Registry().GetCMPIInstances(scope.broker(), std::string("dct_numberkey"), out);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(TakeTraces(), IsEmpty());
}

TEST_F(InstanceRegistryTest, LookupOfAnUnknownKeyIsSilentAndItsSlotIsSkippedLater) {
  Register(NewElement("b", {{"EnumOrder", "2"}}));
  Register(NewElement("c", {{"EnumOrder", "1"}}));
  TakeTraces();
  cmpihost::CallScope scope(host());
  // "a" sorts before every registered text: its empty slot is the first.
  const CMPIObjectPath* missing = scope.objectPath(ElementText("a"));

  EXPECT_EQ(Registry().GetInstance(scope.broker(), missing), nullptr);
  EXPECT_THAT(TakeTraces(), IsEmpty());
  EXPECT_EQ(Registry().GetCMPIInstance(scope.broker(), missing), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning("Didn't find instance")});

  // The first entry is the first real one, and it has "EnumOrder".
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("c", "b"));
  // A later registration fills the empty slot.
  Register(NewElement("a", {{"EnumOrder", "3"}}));
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("c", "b", "a"));
}

TEST_F(InstanceRegistryTest, EnumerationFollowsPathTextOrderWithoutEnumOrder) {
  for (const char* id : {"c", "a", "B", "b"}) {
    Register(NewElement(id));
  }
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("B", "a", "b", "c"));
}

TEST_F(InstanceRegistryTest, EnumOrderOfTheFirstEntryOrdersTheWholeClassNumerically) {
  Register(NewElement("a", {{"EnumOrder", "10"}}));
  Register(NewElement("b", {{"EnumOrder", "9"}}));
  Register(NewElement("c", {{"EnumOrder", "100"}}));
  Register(NewElement("d", {{"EnumOrder", "0"}}));
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("d", "b", "a", "c"));
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

  // Without sorting, the new instances follow the old ones.
  std::vector<CMPIInstance*> appended;
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_AllTypes"), appended);
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_NumberKey"), appended);
  EXPECT_THAT(Values(scope, appended, "EnumOrder"), ElementsAre("5", "<none>"));
  // An unknown class leaves the vector as it was.
  Registry().GetCMPIInstances(scope.broker(), std::string("DCT_Nope"), appended);
  EXPECT_EQ(appended.size(), 2U);
}

TEST_F(InstanceRegistryTest, NarrowEnumOrderIsComparedAsA32BitField) {
  // uint8 texts are read as one character: "C" is 67, "A" 65, "B" 66.
  for (const auto& item :
       {std::make_pair("x", "C"), std::make_pair("y", "A"), std::make_pair("z", "B")}) {
    Register(NewBag(std::string("DCT_NarrowOrder"),
                    PropertyList{{"Name", item.first}, {"EnumOrder", item.second}}));
  }
  EXPECT_THAT(Enumerate("DCT_NarrowOrder", "Name"), ElementsAre("y", "z", "x"));
}

TEST_F(InstanceRegistryTest, EnumerationByPathIgnoresItsKeys) {
  Register(NewElement("a"));
  Register(NewElement("b"));
  cmpihost::CallScope scope(host());
  std::vector<CMPIInstance*> out;
  Registry().GetCMPIInstances(scope.broker(), scope.objectPath(ElementText("zzz")), out);
  EXPECT_THAT(Values(scope, out, "DeviceID"), ElementsAre("a", "b"));
}

TEST_F(InstanceRegistryTest, ReferenceKeysAreFiledUnderTheNestedPathTexts) {
  Register(NewBag(std::string("DCT_Link"), PropertyList{{"Antecedent", ElementText("a")},
                                                        {"Dependent", ElementText("b")},
                                                        {"Note", "n"}}));
  const std::string nested = "//localhost/root/cimv2:";
  const std::string text = "DCT_Link.Antecedent=\"" + nested + ElementText("a") +
                           "\",Dependent=\"" + nested + ElementText("b") + "\"";
  const std::vector<TraceLine> traces = TakeTraces();
  // Each of the two builds sets each reference (1 trace) after building it
  // twice (3 traces each), then Note and the exit: 2 x 16, then the two
  // registration traces.
  ASSERT_EQ(traces.size(), 2U * 16U + 2U);
  EXPECT_EQ(traces.back(), Debug(">>>>> Registered " + text));
  EXPECT_THAT(Enumerate("DCT_Link", "Note"), ElementsAre("n"));
}

TEST_F(InstanceRegistryTest, ClassTheRepositoryDoesNotKnowIsNotRegistered) {
  Register(NewElement("kept"));
  TakeTraces();

  // Refused, so the bag is still the test's to free.
  const std::unique_ptr<TestBag> bag(
      Register(NewBag(std::string("DCT_Nope"), PropertyList{{"Name", "x"}})));

  EXPECT_EQ(TakeTraces(), Concat(Repeat({Debug("Exiting InstanceBuilder::build")}, 2),
                                 {Warning("Could not build instance of class DCT_Nope")}));
  EXPECT_EQ(bag->getObjectPath(), "");
  EXPECT_THAT(Enumerate("DCT_Nope"), IsEmpty());
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("kept"));
}

TEST_F(InstanceRegistryTest, UnparsableReferenceTextStopsRegistrationWithOutOfRange) {
  Register(NewElement("kept"));
  cmpihost::CallScope scope(host());
  // Refused, so the bag is still the test's to free.
  const std::unique_ptr<TestBag> bag(
      NewBag(std::string("DCT_Link"),
             PropertyList{{"Antecedent", ElementText("a") + ","}, {"Note", "n"}}));
  EXPECT_THROW(Registry().RegisterInstance(scope.broker(), scope.context(), bag.get()),
               std::out_of_range);
  EXPECT_EQ(bag->getObjectPath(), "");
  EXPECT_THAT(Enumerate("DCT_Link", "Note"), IsEmpty());
  EXPECT_THAT(Enumerate("DCT_Element"), ElementsAre("kept"));
}

TEST_F(InstanceRegistryTest, UnquotedReferenceKeyTextEndsAndRegisters) {
  // Parsing stops where the value has no quotes; what it read is used.
  Register(NewBag(std::string("DCT_Link"),
                  PropertyList{{"Antecedent", "DCT_Element.DeviceID=d1"}, {"Note", "n"}}));
  EXPECT_THAT(Enumerate("DCT_Link", "Note"), ElementsAre("n"));
}

TEST_F(InstanceRegistryTest, MethodCallsReachTheRegisteredBagWithTheCallsArguments) {
  const CMPIResult* seenResult = nullptr;
  const CMPIObjectPath* seenPath = nullptr;
  const CMPIContext* seenContext = nullptr;
  const CMPIBroker* seenBroker = nullptr;
  std::string seenName;
  MethodBag* bag = Register(
      NewBag<MethodBag>(std::string("DCT_Element"),
                        PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "m"}},
                        [&](const MethodCall& call) {
                          seenResult = call.result;
                          seenPath = call.path;
                          seenContext = call.context;
                          seenBroker = call.broker;
                          seenName = call.methodName;
                          CMPIStatus status = {CMPI_RC_ERR_METHOD_NOT_AVAILABLE, nullptr};
                          return status;
                        }));
  Register(NewElement("plain"));
  TakeTraces();

  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIObjectPath* path = scope.objectPath(ElementText("m"));
  const CMPIStatus status = Registry().InvokeMethod(scope.broker(), scope.context(), result, path,
                                                    "Ping", nullptr, nullptr);
  EXPECT_EQ(status.rc, CMPI_RC_ERR_METHOD_NOT_AVAILABLE);
  EXPECT_EQ(bag->calls(), 1);
  EXPECT_EQ(seenName, "Ping");
  EXPECT_EQ(seenResult, result);
  EXPECT_EQ(seenPath, path);
  EXPECT_EQ(seenContext, scope.context());
  EXPECT_EQ(seenBroker, scope.broker());

  // A bag that does not override invokeMethod: the default answer.
  EXPECT_EQ(Registry()
                .InvokeMethod(scope.broker(), scope.context(), result,
                              scope.objectPath(ElementText("plain")), "Ping", nullptr, nullptr)
                .rc,
            CMPI_RC_ERR_METHOD_NOT_FOUND);
  // Nobody under that path.
  const CMPIStatus missing =
      Registry().InvokeMethod(scope.broker(), scope.context(), result,
                              scope.objectPath(ElementText("gone")), "Ping", nullptr, nullptr);
  EXPECT_EQ(missing.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(missing.msg, nullptr);
  EXPECT_THAT(TakeTraces(), IsEmpty());
  EXPECT_TRUE(scope.recorded(result).events.empty());
}

}  // namespace
}  // namespace diagcore_test
