// The instance and method MI functions as a CIMOM sees them through the
// host: traces, result calls in order, returnDone exactly once where due,
// status codes and messages, and exceptions kept inside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using cmpihost::Reply;
using cmpihost::ResultEvent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kInstance = ResultEvent::Kind::kInstance;
constexpr auto kPath = ResultEvent::Kind::kObjectPath;
constexpr auto kData = ResultEvent::Kind::kData;
constexpr auto kDone = ResultEvent::Kind::kDone;

std::vector<std::string> DeviceIds(const Reply& reply) {
  std::vector<std::string> ids;
  for (const cmpihost::InstanceSnapshot& instance : reply.instances()) {
    ids.push_back(instance.find("DeviceID")->text);
  }
  return ids;
}

// A method that answers `status`, or throws what `thrower` throws.
MethodBag* Method(const std::string& id, std::function<CMPIStatus(const MethodCall&)> method) {
  return NewBag<MethodBag>(std::string("DCT_Element"),
                           PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", id}},
                           std::move(method));
}

class ProviderEntryTest : public CoreHostTest {
 protected:
  ProviderEntryTest() {
    Register(NewElement("b", {{"Caption", "bee"}}));
    Register(NewElement("c", {{"Caption", "sea"}}));
    Register(NewElement("a", {{"Caption", "ay"}}));
    TakeTraces();
  }

  Reply Invoke(const std::string& id) {
    return host().invokeMethod("root/cimv2:" + ElementText(id), "Ping",
                               {cmpihost::Argument{"Text", "hi", std::nullopt}});
  }
};

TEST_F(ProviderEntryTest, EnumerationsDeliverEachInstanceOrPathInOrderThenDoneOnce) {
  const Reply instances = host().enumerateInstances("root/cimv2", "DCT_Element");
  EXPECT_EQ(instances.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(instances.status.hasMessage);
  EXPECT_THAT(Kinds(instances), ElementsAre(kInstance, kInstance, kInstance, kDone));
  EXPECT_THAT(DeviceIds(instances), ElementsAre("a", "b", "c"));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ EnumInstances")});

  const Reply names = host().enumerateInstanceNames("root/cimv2", "dct_element");
  EXPECT_EQ(names.status.rc, CMPI_RC_OK);
  EXPECT_THAT(Kinds(names), ElementsAre(kPath, kPath, kPath, kDone));
  std::vector<std::string> instancePaths;
  for (const auto& instance : instances.instances()) {
    instancePaths.push_back(instance.path);
  }
  EXPECT_EQ(names.paths(), instancePaths);
  EXPECT_EQ(names.paths()[0], "//localhost/root/cimv2:" + ElementText("a"));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ EnumInstanceNames")});

  for (const Reply& reply : {host().enumerateInstances("root/cimv2", "DCT_NumberKey"),
                             host().enumerateInstanceNames("root/cimv2", "DCT_NumberKey")}) {
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
    EXPECT_THAT(Kinds(reply), ElementsAre(kDone));
  }
}

TEST_F(ProviderEntryTest, GetInstanceDeliversTheWholeInstanceOrFailsWithoutResultCalls) {
  const std::vector<std::string> onlyCaption = {"Caption"};
  const Reply reply =
      host().getInstance("//elsewhere/root/cimv2:" + ElementText("b"), &onlyCaption);
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(reply.status.hasMessage);
  EXPECT_THAT(Kinds(reply), ElementsAre(kInstance, kDone));
  EXPECT_EQ(reply.events[0].instance.find("Caption")->text, "bee");
  // The property list is not applied.
  ASSERT_NE(reply.events[0].instance.find("DeviceID"), nullptr);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ GetInstance")});

  const struct {
    std::string path;
    std::vector<TraceLine> traces;
  } misses[] = {
      {ElementText("nobody"), {Debug("+++ GetInstance"), Warning("Didn't find instance")}},
      {"DCT_NumberKey.Id=7",
       {Debug("+++ GetInstance"), Warning(" Couldn't find instanceContainer"),
        Warning("Didn't find instance")}},
  };
  for (const auto& miss : misses) {
    const Reply failed = host().getInstance("root/cimv2:" + miss.path);
    EXPECT_EQ(failed.status.rc, CMPI_RC_ERR_FAILED) << miss.path;
    EXPECT_EQ(failed.status.message, "Could not find or construct instance") << miss.path;
    EXPECT_THAT(failed.events, IsEmpty()) << miss.path;
    EXPECT_EQ(TakeTraces(), miss.traces) << miss.path;
  }
}

TEST_F(ProviderEntryTest, InvokeMethodReturnsTheObjectsOwnAnswer) {
  Register(Method("m", [](const MethodCall& call) {
    CMPIValue four{};
    four.uint32 = 4;
    call.result->ft->returnData(call.result, &four, CMPI_uint32);
    call.result->ft->returnDone(call.result);
    return CMPIStatus{CMPI_RC_OK, nullptr};
  }));
  Register(Method("quiet", [](const MethodCall& call) {
    return CMPIStatus{CMPI_RC_ERR_METHOD_NOT_AVAILABLE,
                      call.broker->eft->newString(call.broker, "not now", nullptr)};
  }));
  TakeTraces();

  const Reply answered = Invoke("m");
  EXPECT_EQ(answered.status.rc, CMPI_RC_OK);
  ASSERT_THAT(Kinds(answered), ElementsAre(kData, kDone));
  EXPECT_EQ(answered.events[0].data.uint, 4U);
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Debug("+++ InvokeMethod")});

  // The entry point itself neither returns data nor calls returnDone.
  const struct {
    std::string id;
    CMPIrc rc;
    std::string message;
    std::vector<TraceLine> traces;
  } cases[] = {
      {"quiet", CMPI_RC_ERR_METHOD_NOT_AVAILABLE, "not now", {Debug("+++ InvokeMethod")}},
      {"a", CMPI_RC_ERR_METHOD_NOT_FOUND, "", {Debug("+++ InvokeMethod")}},
      {"gone", CMPI_RC_ERR_NOT_FOUND, "", {Debug("+++ InvokeMethod")}},
  };
  for (const auto& c : cases) {
    const Reply reply = Invoke(c.id);
    EXPECT_EQ(reply.status.rc, c.rc) << c.id;
    EXPECT_EQ(reply.status.hasMessage, !c.message.empty()) << c.id;
    EXPECT_EQ(reply.status.message, c.message) << c.id;
    EXPECT_THAT(reply.events, IsEmpty()) << c.id;
    EXPECT_EQ(TakeTraces(), c.traces) << c.id;
  }
  const Reply unknownClass = host().invokeMethod("root/cimv2:DCT_AllTypes.InstanceID=\"x\"", "Ping",
                                                 {cmpihost::Argument{"Text", "hi", std::nullopt}});
  EXPECT_EQ(unknownClass.status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(TakeTraces(), (std::vector<TraceLine>{Debug("+++ InvokeMethod"),
                                                  Warning(" Couldn't find instanceContainer")}));
}

TEST_F(ProviderEntryTest, ExceptionsFromAMethodBecomeFailedStatuses) {
  Register(Method(
      "boom", [](const MethodCall&) -> CMPIStatus { throw std::runtime_error("disk on fire"); }));
  Register(Method("odd", [](const MethodCall&) -> CMPIStatus { throw 42; }));

  const Reply boom = Invoke("boom");
  EXPECT_EQ(boom.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(boom.status.message, "InvokeMethod failed: disk on fire");
  EXPECT_THAT(boom.events, IsEmpty());
  const Reply odd = Invoke("odd");
  EXPECT_EQ(odd.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(odd.status.message, "InvokeMethod failed: unknown exception");
  // The registry is intact and still serves.
  EXPECT_THAT(DeviceIds(host().enumerateInstances("root/cimv2", "DCT_Element")),
              ElementsAre("a", "b", "boom", "c", "odd"));
}

}  // namespace
}  // namespace diagcore_test
