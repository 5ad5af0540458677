// The instance and method MI functions as a CIMOM sees them through the
// host: traces, result calls in order, returnDone exactly once where due,
// status codes and messages, and exceptions kept inside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/DiagServiceProviderCommon.h"

namespace diagcore_test {
namespace {

using cmpihost::Reply;
using cmpihost::ResultEvent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<ResultEvent::Kind> Kinds(const Reply& reply) {
  std::vector<ResultEvent::Kind> kinds;
  for (const ResultEvent& event : reply.events) {
    kinds.push_back(event.kind);
  }
  return kinds;
}

std::vector<std::string> DeviceIds(const Reply& reply) {
  std::vector<std::string> ids;
  for (const cmpihost::InstanceSnapshot& instance : reply.instances()) {
    ids.push_back(instance.find("DeviceID")->text);
  }
  return ids;
}

constexpr auto kInstance = ResultEvent::Kind::kInstance;
constexpr auto kPath = ResultEvent::Kind::kObjectPath;
constexpr auto kData = ResultEvent::Kind::kData;
constexpr auto kDone = ResultEvent::Kind::kDone;

class ProviderEntryTest : public CoreHostTest {
 protected:
  void RegisterElements() {
    Register(NewElement("b", {{"Caption", "bee"}}));
    Register(NewElement("c", {{"Caption", "sea"}}));
    Register(NewElement("a", {{"Caption", "ay"}}));
    TakeTraces();
  }
};

TEST_F(ProviderEntryTest, EnumInstancesDeliversEachRegisteredInstanceThenDoneOnce) {
  RegisterElements();
  const Reply reply = host().enumerateInstances("root/cimv2", "DCT_Element");

  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(reply.status.hasMessage);
  EXPECT_THAT(Kinds(reply), ElementsAre(kInstance, kInstance, kInstance, kDone));
  EXPECT_THAT(DeviceIds(reply), ElementsAre("a", "b", "c"));
  EXPECT_EQ(reply.instances()[0].path, "//localhost/root/cimv2:" + ElementText("a"));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ EnumInstances")});
}

TEST_F(ProviderEntryTest, EnumInstanceNamesDeliversPathsInTheSameOrder) {
  RegisterElements();
  Register(NewElement("z", {{"EnumOrder", "1"}}));  // last by text: no sorting
  TakeTraces();
  const Reply instances = host().enumerateInstances("root/cimv2", "DCT_Element");
  TakeTraces();
  const Reply names = host().enumerateInstanceNames("root/cimv2", "dct_element");

  EXPECT_EQ(names.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(names.status.hasMessage);
  EXPECT_THAT(Kinds(names), ElementsAre(kPath, kPath, kPath, kPath, kDone));
  std::vector<std::string> instancePaths;
  for (const auto& instance : instances.instances()) {
    instancePaths.push_back(instance.path);
  }
  EXPECT_EQ(names.paths(), instancePaths);
  EXPECT_EQ(names.paths()[0], "//localhost/root/cimv2:" + ElementText("a"));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ EnumInstanceNames")});
}

TEST_F(ProviderEntryTest, EnumerationsOfAClassWithoutObjectsAreEmptyAndDone) {
  RegisterElements();
  for (const Reply& reply : {host().enumerateInstances("root/cimv2", "DCT_NumberKey"),
                             host().enumerateInstanceNames("root/cimv2", "DCT_NumberKey")}) {
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
    EXPECT_FALSE(reply.status.hasMessage);
    EXPECT_THAT(Kinds(reply), ElementsAre(kDone));
  }
  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ EnumInstances"), Debug("+++ EnumInstanceNames")}));
}

TEST_F(ProviderEntryTest, GetInstanceDeliversTheWholeInstanceThenDone) {
  RegisterElements();
  const std::vector<std::string> onlyCaption = {"Caption"};
  const Reply reply =
      host().getInstance("//elsewhere/root/cimv2:" + ElementText("b"), &onlyCaption);

  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(reply.status.hasMessage);
  EXPECT_THAT(Kinds(reply), ElementsAre(kInstance, kDone));
  const cmpihost::InstanceSnapshot& instance = reply.events[0].instance;
  EXPECT_EQ(instance.find("Caption")->text, "bee");
  // The property list is not applied.
  ASSERT_NE(instance.find("DeviceID"), nullptr);
  EXPECT_EQ(instance.find("DeviceID")->text, "b");
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ GetInstance")});
}

TEST_F(ProviderEntryTest, GetInstanceOfAnUnknownPathFailsWithoutResultCalls) {
  RegisterElements();
  const Reply unknownKey = host().getInstance("root/cimv2:" + ElementText("nobody"));
  EXPECT_EQ(unknownKey.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_TRUE(unknownKey.status.hasMessage);
  EXPECT_EQ(unknownKey.status.message, "Could not find or construct instance");
  EXPECT_THAT(unknownKey.events, IsEmpty());
  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ GetInstance"), Warning("Didn't find instance")}));

  const Reply unknownClass = host().getInstance("root/cimv2:DCT_NumberKey.Id=7");
  EXPECT_EQ(unknownClass.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(unknownClass.status.message, "Could not find or construct instance");
  EXPECT_THAT(unknownClass.events, IsEmpty());
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Debug("+++ GetInstance"),
                                                  Warning(" Couldn't find instanceContainer"),
                                                  Warning("Didn't find instance")}));
}

TEST_F(ProviderEntryTest, ClientsCannotCreateModifyDeleteOrQuery) {
  RegisterElements();
  const std::string path = "root/cimv2:" + ElementText("a");
  for (const Reply& reply :
       {host().createInstance("root/cimv2:" + ElementText("new"), {}),
        host().modifyInstance(path, {cmpihost::Argument{"Caption", "x", std::nullopt}}),
        host().deleteInstance(path),
        host().execQuery("root/cimv2", "DCT_Element", "SELECT * FROM DCT_Element", "WQL")}) {
    EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_FALSE(reply.status.hasMessage);
    EXPECT_THAT(reply.events, IsEmpty());
  }
  EXPECT_THAT(TakeTraces(), IsEmpty());
  // Nothing changed.
  EXPECT_THAT(DeviceIds(host().enumerateInstances("root/cimv2", "DCT_Element")),
              ElementsAre("a", "b", "c"));
}

TEST_F(ProviderEntryTest, UnsupportedAndCleanupFunctionsTouchNothing) {
  RegisterElements();
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIObjectPath* path = scope.objectPath(ElementText("a"));
  const CMPIBroker* broker = scope.broker();
  const CMPIContext* context = scope.context();
  CMPIInstanceMI* mi = LibraryInstanceMI();
  const CMPIStatus unsupported[] = {
      DiagServiceProviderCommonCreateInstance(broker, mi, context, result, path, nullptr),
      DiagServiceProviderCommonModifyInstance(broker, mi, context, result, path, nullptr, nullptr),
      DiagServiceProviderCommonDeleteInstance(broker, mi, context, result, path),
      DiagServiceProviderCommonExecQuery(broker, mi, context, result, path, "q", "WQL")};
  for (const CMPIStatus& status : unsupported) {
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(status.msg, nullptr);
  }
  for (const CMPIBoolean terminating : {CMPIBoolean{0}, CMPIBoolean{1}}) {
    const CMPIStatus instance = DiagServiceProviderCommonCleanup(broker, mi, context, terminating);
    const CMPIStatus method =
        DiagServiceProviderCommonMethodCleanup(broker, LibraryMethodMI(), context, terminating);
    EXPECT_EQ(instance.rc, CMPI_RC_OK);
    EXPECT_EQ(instance.msg, nullptr);
    EXPECT_EQ(method.rc, CMPI_RC_OK);
    EXPECT_EQ(method.msg, nullptr);
  }
  EXPECT_TRUE(scope.recorded(result).events.empty());
  EXPECT_THAT(TakeTraces(), IsEmpty());
}

TEST_F(ProviderEntryTest, InvokeMethodReturnsTheObjectsOwnAnswer) {
  Register(NewBag<MethodBag>(std::string("DCT_Element"),
                             PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "m"}},
                             [](const MethodCall& call) {
                               CMPIValue four{};
                               four.uint32 = 4;
                               call.result->ft->returnData(call.result, &four, CMPI_uint32);
                               call.result->ft->returnDone(call.result);
                               CMPIStatus status = {CMPI_RC_OK, nullptr};
                               return status;
                             }));
  Register(NewBag<MethodBag>(
      std::string("DCT_Element"),
      PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "quiet"}},
      [](const MethodCall& call) {
        CMPIStatus status = {CMPI_RC_ERR_METHOD_NOT_AVAILABLE,
                             call.broker->eft->newString(call.broker, "not now", nullptr)};
        return status;
      }));
  Register(NewElement("plain"));
  TakeTraces();

  const std::vector<cmpihost::Argument> args = {{"Text", "hi", std::nullopt}};
  const Reply answered = host().invokeMethod("root/cimv2:" + ElementText("m"), "Ping", args);
  EXPECT_EQ(answered.status.rc, CMPI_RC_OK);
  ASSERT_THAT(Kinds(answered), ElementsAre(kData, kDone));
  EXPECT_EQ(answered.events[0].data.uint, 4U);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ InvokeMethod")});

  // The entry point itself neither returns data nor calls returnDone.
  const Reply quiet = host().invokeMethod("root/cimv2:" + ElementText("quiet"), "Ping", args);
  EXPECT_EQ(quiet.status.rc, CMPI_RC_ERR_METHOD_NOT_AVAILABLE);
  EXPECT_EQ(quiet.status.message, "not now");
  EXPECT_THAT(quiet.events, IsEmpty());

  const Reply plain = host().invokeMethod("root/cimv2:" + ElementText("plain"), "Ping", args);
  EXPECT_EQ(plain.status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND);
  EXPECT_FALSE(plain.status.hasMessage);
  EXPECT_THAT(plain.events, IsEmpty());
}

TEST_F(ProviderEntryTest, InvokeMethodOnAnUnregisteredPathIsNotFound) {
  RegisterElements();
  const std::vector<cmpihost::Argument> args = {{"Text", "hi", std::nullopt}};
  const Reply unknownKey = host().invokeMethod("root/cimv2:" + ElementText("gone"), "Ping", args);
  EXPECT_EQ(unknownKey.status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_FALSE(unknownKey.status.hasMessage);
  EXPECT_THAT(unknownKey.events, IsEmpty());
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ InvokeMethod")});

  const Reply unknownClass =
      host().invokeMethod("root/cimv2:DCT_AllTypes.InstanceID=\"x\"", "Ping", args);
  EXPECT_EQ(unknownClass.status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_FALSE(unknownClass.status.hasMessage);
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Debug("+++ InvokeMethod"),
                                                  Warning(" Couldn't find instanceContainer")}));
}

TEST_F(ProviderEntryTest, ExceptionsFromAMethodBecomeFailedStatuses) {
  Register(NewBag<MethodBag>(
      std::string("DCT_Element"),
      PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "boom"}},
      [](const MethodCall&) -> CMPIStatus { throw std::runtime_error("disk on fire"); }));
  Register(
      NewBag<MethodBag>(std::string("DCT_Element"),
                        PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", "odd"}},
                        [](const MethodCall&) -> CMPIStatus { throw 42; }));
  Register(NewElement("plain"));
  TakeTraces();
  const std::vector<cmpihost::Argument> args = {{"Text", "hi", std::nullopt}};

  const Reply boom = host().invokeMethod("root/cimv2:" + ElementText("boom"), "Ping", args);
  EXPECT_EQ(boom.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(boom.status.message, "InvokeMethod failed: disk on fire");
  EXPECT_THAT(boom.events, IsEmpty());

  const Reply odd = host().invokeMethod("root/cimv2:" + ElementText("odd"), "Ping", args);
  EXPECT_EQ(odd.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(odd.status.message, "InvokeMethod failed: unknown exception");

  // The registry is intact and still serves.
  EXPECT_THAT(DeviceIds(host().enumerateInstances("root/cimv2", "DCT_Element")),
              ElementsAre("boom", "odd", "plain"));
}

}  // namespace
}  // namespace diagcore_test
