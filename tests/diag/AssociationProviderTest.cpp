// The association MI functions, driven through the host over the test
// plug-in's nine availability associations (three services, three disks):
// what is delivered for each role, result class and result role, in which
// order, and the three traces written for every reference compared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using cmpihost::AssociationFilter;
using cmpihost::InstanceSnapshot;
using cmpihost::Reply;
using cmpihost::ResultEvent;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const char* const kAssociationClass = "DTP_AvailableDiagnosticService";
const char* const kNoAssociationClass = "Associators request named no association class";
constexpr auto kDone = ResultEvent::Kind::kDone;

AssociationFilter Filter(std::optional<std::string> role,
                         std::optional<std::string> resultClass = std::nullopt,
                         std::optional<std::string> resultRole = std::nullopt) {
  AssociationFilter filter;
  filter.assocClass = kAssociationClass;
  filter.role = std::move(role);
  filter.resultClass = std::move(resultClass);
  filter.resultRole = std::move(resultRole);
  return filter;
}

// "DeviceID" of a disk, "Name" of a service, "service/disk" of an association.
std::string Summary(const InstanceSnapshot& instance) {
  if (instance.className == "DTP_Device") {
    return Prop(instance, "DeviceID").text;
  }
  if (instance.className == "DTP_DiagService") {
    return Prop(instance, "Name").text;
  }
  const std::string service = Prop(instance, "ServiceProvided").text;
  const std::string device = Prop(instance, "UserOfService").text;
  const auto quoted = [](const std::string& text, const char* key) {
    std::smatch match;
    return std::regex_search(text, match, std::regex(std::string("[.,]") + key + "=\"([^\"]*)\""))
               ? match[1].str()
               : std::string();
  };
  return quoted(service, "Name") + "/" + quoted(device, "DeviceID");
}

// A path text without its host: a reference value carries the host the
// builder gave it, an instance fetched from the CIMOM none.
std::string WithoutHost(const std::string& path) {
  return path.rfind("//", 0) == 0 ? path.substr(path.find('/', 2) + 1) : path;
}

std::vector<std::string> Pairs(const std::vector<InstanceSnapshot>& associations) {
  std::vector<std::string> pairs;
  for (const InstanceSnapshot& association : associations) {
    pairs.push_back(Summary(association));
  }
  return pairs;
}

// The traces the source test writes: for each association in order, each
// reference compared (only `role` when given, else every reference in the
// instance's property order until one names the source).
std::vector<TraceLine> SourceTraces(const std::vector<InstanceSnapshot>& associations,
                                    const std::string& sourceText,
                                    const std::optional<std::string>& role) {
  std::vector<TraceLine> traces;
  for (const InstanceSnapshot& association : associations) {
    for (const cmpihost::Property& property : association.properties) {
      if (property.value.type != CMPI_ref || (role && *role != property.name)) {
        continue;
      }
      const std::string text = property.value.text.substr(property.value.text.find(':') + 1);
      traces.insert(traces.end(),
                    {Debug("$$$$ IsRefInstanceMatch"), Debug(text), Debug(sourceText)});
      if (text == sourceText) {
        break;
      }
    }
  }
  return traces;
}

class AssociationProviderTest : public PluginHostTest {
 protected:
  AssociationProviderTest() {
    all_ = host().enumerateInstances("root/cimv2", kAssociationClass).instances();
    TakeTraces();
  }

  std::vector<InstanceSnapshot> all_;  // in the registry's order
};

TEST_F(AssociationProviderTest, ByRoleTheAssociationObjectsAreDeliveredInRegistryOrder) {
  ASSERT_THAT(all_, SizeIs(9));
  const Reply reply = host().associators(DevicePath("disk1"), Filter("UserOfService"));
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(reply.status.hasMessage);
  EXPECT_EQ(Kinds(reply).back(), kDone);
  EXPECT_EQ(reply.doneCount(), 1U);
  const std::vector<InstanceSnapshot> delivered = reply.instances();
  EXPECT_THAT(Pairs(delivered), ElementsAre("Passing/disk1", "Failing/disk1", "Throwing/disk1"));
  EXPECT_EQ(delivered[0].className, kAssociationClass);
  EXPECT_EQ(Prop(delivered[2], "EnumOrder").toMof(), "215");

  const std::vector<TraceLine> traces = TakeTraces();
  EXPECT_THAT(traces, SizeIs(27));
  EXPECT_EQ(traces, SourceTraces(all_, DeviceText("disk1"), "UserOfService"));
  EXPECT_EQ(traces[1], Debug(DeviceText("disk0")));
  EXPECT_EQ(traces[2], Debug(DeviceText("disk1")));

  const Reply names = host().associatorNames(DevicePath("disk1"), Filter("UserOfService"));
  EXPECT_EQ(names.status.rc, CMPI_RC_OK);
  EXPECT_EQ(names.doneCount(), 1U);
  std::vector<std::string> paths;
  for (const InstanceSnapshot& instance : delivered) {
    paths.push_back(instance.path);
  }
  EXPECT_EQ(names.paths(), paths);
  EXPECT_EQ(TakeTraces(), traces);

  // From a service, its own associations in EnumOrder.
  const Reply fromService = host().associators(ServicePath("Passing"), Filter("ServiceProvided"));
  EXPECT_THAT(Pairs(fromService.instances()),
              ElementsAre("Passing/disk0", "Passing/disk1", "Passing/disk2"));
  EXPECT_EQ(TakeTraces(), SourceTraces(all_, ServiceText("Passing"), "ServiceProvided"));
}

TEST_F(AssociationProviderTest, WithoutRoleAnyReferenceMayNameTheSource) {
  const Reply reply = host().associators(DevicePath("disk2"), Filter(std::nullopt));
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_THAT(Pairs(reply.instances()),
              ElementsAre("Passing/disk2", "Failing/disk2", "Throwing/disk2"));
  const std::vector<TraceLine> traces = TakeTraces();
  EXPECT_EQ(traces, SourceTraces(all_, DeviceText("disk2"), std::nullopt));
  // Both references of the six others are compared: more than three each.
  EXPECT_GT(traces.size(), 27U);
}

TEST_F(AssociationProviderTest, ResultClassAndResultRoleSelectByTheOtherReference) {
  const struct {
    std::optional<std::string> resultClass;
    std::optional<std::string> resultRole;
    std::size_t delivered;
  } cases[] = {
      {"DTP_DiagService", "ServiceProvided", 3},
      {"CIM_DiagnosticService", "ServiceProvided", 3},  // a superclass
      {"CIM_ManagedElement", "UserOfService", 3},
      // Without a result role the source's own reference may fit the result class.
      {"DTP_Device", std::nullopt, 3},
      {"DTP_Device", "ServiceProvided", 0},
      {"CIM_ComputerSystem", std::nullopt, 0},
      {"DTP_DiagService", "EnumOrder", 0},
      {"DTP_DiagService", "NoSuchProperty", 0},
      // A result role without a result class tests nothing.
      {std::nullopt, "NoSuchProperty", 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.resultClass.value_or("(none)") + " " + c.resultRole.value_or("(none)"));
    const Reply reply = host().associators(DevicePath("disk0"),
                                           Filter("UserOfService", c.resultClass, c.resultRole));
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
    EXPECT_EQ(reply.doneCount(), 1U);
    EXPECT_THAT(reply.instances(), SizeIs(c.delivered));
    // Only the source comparisons trace: the class test writes nothing.
    EXPECT_EQ(TakeTraces(), SourceTraces(all_, DeviceText("disk0"), "UserOfService"));
  }
}

TEST_F(AssociationProviderTest, RequestsThatMatchNothingAreAnsweredEmpty) {
  // A role that is no reference compares nothing.
  for (const char* role : {"EnumOrder", "NoSuchProperty"}) {
    for (const Reply& reply : {host().associators(DevicePath("disk0"), Filter(role)),
                               host().associatorNames(DevicePath("disk0"), Filter(role))}) {
      EXPECT_EQ(reply.status.rc, CMPI_RC_OK) << role;
      EXPECT_THAT(Kinds(reply), ElementsAre(kDone)) << role;
    }
    EXPECT_THAT(TakeTraces(), IsEmpty()) << role;
  }
  // The source is compared without host and namespace but with case.
  EXPECT_THAT(
      host()
          .associators("//elsewhere.example/" + DevicePath("disk1"), Filter("UserOfService"))
          .instances(),
      SizeIs(3));
  TakeTraces();
  const Reply otherCase = host().associators(DevicePath("DISK1"), Filter("UserOfService"));
  EXPECT_THAT(Kinds(otherCase), ElementsAre(kDone));
  EXPECT_EQ(TakeTraces(), SourceTraces(all_, DeviceText("DISK1"), "UserOfService"));
  // The association class matches in any letter case.
  AssociationFilter anyCase = Filter("UserOfService");
  anyCase.assocClass = "dtp_AVAILABLEdiagnosticservice";
  EXPECT_THAT(host().associators(DevicePath("disk1"), anyCase).instances(), SizeIs(3));
  TakeTraces();

  // No association class: empty, with a warning.
  AssociationFilter noClass;
  noClass.role = "UserOfService";
  for (const Reply& reply : {host().associators(DevicePath("disk1")),
                             host().associatorNames(DevicePath("disk1"), noClass)}) {
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
    EXPECT_FALSE(reply.status.hasMessage);
    EXPECT_THAT(Kinds(reply), ElementsAre(kDone));
  }
  EXPECT_EQ(TakeTraces(), Repeat({Warning(kNoAssociationClass)}, 2));
  // An association class nobody registered, called directly.
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIStatus status = DiagServiceProviderCommonAssociators(
      scope.broker(), nullptr, scope.context(), result, scope.objectPath(DevicePath("disk1")),
      "ACME_NoSuchAssociation", nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(status.rc, CMPI_RC_OK);
  EXPECT_EQ(status.msg, nullptr);
  EXPECT_THAT(Kinds(scope.recorded(result)), ElementsAre(kDone));
}

TEST_F(AssociationProviderTest, ThePropertyListIsNotApplied) {
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const char* onlyOrder[] = {"EnumOrder", nullptr};
  DiagServiceProviderCommonAssociators(scope.broker(), nullptr, scope.context(), result,
                                       scope.objectPath(DevicePath("disk1")), kAssociationClass,
                                       nullptr, "UserOfService", nullptr, onlyOrder);
  const std::vector<InstanceSnapshot> delivered = scope.recorded(result).instances();
  ASSERT_THAT(delivered, SizeIs(3));
  EXPECT_EQ(Prop(delivered[0], "EstimatedDurationOfService").toMof(), "3");
}

// The association functions with CIM's semantics, over the same nine
// associations (the host serves the three disks itself): what each request
// delivers for each filter, from either end, with the source's keys in any order.

// A service's or a disk's path with its keys in the reverse of the class's
// order and the key names in another case.
const char* const kReversedDisk1 =
    R"(root/cimv2:DTP_Device.systemname="testhost.example",SYSTEMCREATIONCLASSNAME="TORSK_ComputerSystem",deviceid="disk1",CreationClassName="DTP_Device")";
const char* const kReversedFailing =
    R"(root/cimv2:DTP_DiagService.Name="Failing",CreationClassName="DTP_DiagService",SystemName="testhost.example",SystemCreationClassName="TORSK_ComputerSystem")";

struct Request {
  const char* source;
  const char* assocClass;
  const char* resultClass;
  const char* role;
  const char* resultRole;
  std::vector<std::string> expected;
};

class CimAssociationTest : public PluginHostTest {
 protected:
  std::vector<std::string> Associators(const Request& request) {
    cmpihost::CallScope scope(host());
    CMPIResult* instances = scope.newResult();
    CMPIResult* names = scope.newResult();
    const CMPIObjectPath* source = scope.objectPath(request.source);
    EXPECT_EQ(DiagServiceProviderCimAssociators(scope.broker(), nullptr, scope.context(), instances,
                                                source, request.assocClass, request.resultClass,
                                                request.role, request.resultRole, nullptr)
                  .rc,
              CMPI_RC_OK);
    EXPECT_EQ(DiagServiceProviderCimAssociatorNames(scope.broker(), nullptr, scope.context(), names,
                                                    source, request.assocClass, request.resultClass,
                                                    request.role, request.resultRole)
                  .rc,
              CMPI_RC_OK);
    return Delivered(scope.recorded(instances), scope.recorded(names));
  }

  std::vector<std::string> References(const Request& request) {
    cmpihost::CallScope scope(host());
    CMPIResult* instances = scope.newResult();
    CMPIResult* names = scope.newResult();
    const CMPIObjectPath* source = scope.objectPath(request.source);
    EXPECT_EQ(DiagServiceProviderCimReferences(scope.broker(), nullptr, scope.context(), instances,
                                               source, request.assocClass, request.role, nullptr)
                  .rc,
              CMPI_RC_OK);
    EXPECT_EQ(DiagServiceProviderCimReferenceNames(scope.broker(), nullptr, scope.context(), names,
                                                   source, request.assocClass, request.role)
                  .rc,
              CMPI_RC_OK);
    return Delivered(scope.recorded(instances), scope.recorded(names));
  }

 private:
  // The instances' summaries; the names request must deliver their paths,
  // in the same order, and each reply ends with one returnDone.
  static std::vector<std::string> Delivered(const Reply& instances, const Reply& names) {
    EXPECT_EQ(instances.doneCount(), 1U);
    EXPECT_EQ(names.doneCount(), 1U);
    std::vector<std::string> summaries;
    std::vector<std::string> paths;
    for (const InstanceSnapshot& instance : instances.instances()) {
      summaries.push_back(Summary(instance));
      paths.push_back(WithoutHost(instance.path));
    }
    std::vector<std::string> namePaths;
    for (const std::string& path : names.paths()) {
      namePaths.push_back(WithoutHost(path));
    }
    EXPECT_EQ(namePaths, paths);
    return summaries;
  }
};

TEST_F(CimAssociationTest, AssociatorsDeliverTheFarEndsThatFitEveryFilter) {
  const std::string disk1 = DevicePath("disk1");
  const std::string failing = ServicePath("Failing");
  const std::vector<std::string> services = {"Passing", "Failing", "Throwing"};
  const std::vector<std::string> disks = {"disk0", "disk1", "disk2"};
  const Request requests[] = {
      {disk1.c_str(), nullptr, nullptr, nullptr, nullptr, services},
      {disk1.c_str(), "DTP_AvailableDiagnosticService", nullptr, nullptr, nullptr, services},
      {disk1.c_str(), "CIM_AvailableDiagnosticService", nullptr, nullptr, nullptr, services},
      {disk1.c_str(), "cim_serviceavailabletoelement", nullptr, nullptr, nullptr, services},
      {disk1.c_str(), "CIM_ElementSettingData", nullptr, nullptr, nullptr, {}},
      {disk1.c_str(), nullptr, "CIM_DiagnosticService", nullptr, nullptr, services},
      {disk1.c_str(), nullptr, "CIM_LogicalDevice", nullptr, nullptr, {}},
      {disk1.c_str(), nullptr, nullptr, "UserOfService", nullptr, services},
      {disk1.c_str(), nullptr, nullptr, "userofservice", "SERVICEPROVIDED", services},
      {disk1.c_str(), nullptr, nullptr, "ServiceProvided", nullptr, {}},
      {disk1.c_str(), nullptr, nullptr, nullptr, "UserOfService", {}},
      {kReversedDisk1, "CIM_AvailableDiagnosticService", nullptr, nullptr, nullptr, services},
      {failing.c_str(), nullptr, nullptr, nullptr, nullptr, disks},
      {failing.c_str(), nullptr, "CIM_LogicalDevice", "ServiceProvided", "UserOfService", disks},
      {kReversedFailing, nullptr, nullptr, nullptr, nullptr, disks},
      {"root/cimv2:DTP_Device.DeviceID=\"disk9\"", nullptr, nullptr, nullptr, nullptr, {}},
  };
  for (const Request& request : requests) {
    SCOPED_TRACE(std::string(request.source) + " " +
                 (request.assocClass ? request.assocClass : "-") + " " +
                 (request.resultClass ? request.resultClass : "-") + " " +
                 (request.role ? request.role : "-") + " " +
                 (request.resultRole ? request.resultRole : "-"));
    EXPECT_THAT(Associators(request), ElementsAreArray(request.expected));
  }
}

TEST_F(CimAssociationTest, ReferencesDeliverTheAssociationsThatNameTheSource) {
  const std::string disk1 = DevicePath("disk1");
  const std::string failing = ServicePath("Failing");
  const std::vector<std::string> ofDisk1 = {"Passing/disk1", "Failing/disk1", "Throwing/disk1"};
  const std::vector<std::string> ofFailing = {"Failing/disk0", "Failing/disk1", "Failing/disk2"};
  const Request requests[] = {
      {disk1.c_str(), nullptr, nullptr, nullptr, nullptr, ofDisk1},
      {disk1.c_str(), "CIM_AvailableDiagnosticService", nullptr, nullptr, nullptr, ofDisk1},
      {disk1.c_str(), "CIM_ElementCapabilities", nullptr, nullptr, nullptr, {}},
      {disk1.c_str(), nullptr, nullptr, "UserOfService", nullptr, ofDisk1},
      {disk1.c_str(), nullptr, nullptr, "ServiceProvided", nullptr, {}},
      {kReversedDisk1, nullptr, nullptr, nullptr, nullptr, ofDisk1},
      {failing.c_str(), "DTP_AvailableDiagnosticService", nullptr, "ServiceProvided", nullptr,
       ofFailing},
      {kReversedFailing, nullptr, nullptr, nullptr, nullptr, ofFailing},
  };
  for (const Request& request : requests) {
    SCOPED_TRACE(std::string(request.source) + " " +
                 (request.assocClass ? request.assocClass : "-") + " " +
                 (request.role ? request.role : "-"));
    EXPECT_THAT(References(request), ElementsAreArray(request.expected));
  }
}

}  // namespace
}  // namespace diagcore_test
