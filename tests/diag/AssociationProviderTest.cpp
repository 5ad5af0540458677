// The association MI functions, driven through the host over the test
// plug-in's nine availability associations (three services, three disks):
// what is delivered for each role, result class and result role, in which
// order, and the three traces written for every reference compared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diag/DiagHost.h"
#include "diagcore/DiagServiceProviderCommon.h"

namespace diagcore_test {
namespace {

using cmpihost::AssociationFilter;
using cmpihost::InstanceSnapshot;
using cmpihost::Reply;
using cmpihost::ResultEvent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const char* const kAssociationClass = "DTP_AvailableDiagnosticService";
const char* const kNoAssociationClass = "Associators request named no association class";

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

// The object path text (no host, no namespace) of a printed path.
std::string Stripped(const std::string& printed) {
  return printed.substr(printed.find(':') + 1);
}

// "service/disk" for each delivered association.
std::vector<std::string> Pairs(const std::vector<InstanceSnapshot>& associations) {
  std::vector<std::string> pairs;
  for (const InstanceSnapshot& association : associations) {
    const std::string service = Prop(association, "ServiceProvided").text;
    const std::string device = Prop(association, "UserOfService").text;
    const std::string name = service.substr(service.find(",Name=\"") + 7);
    const std::string id = device.substr(device.find("DeviceID=\"") + 10);
    pairs.push_back(name.substr(0, name.find('"')) + "/" + id.substr(0, id.find('"')));
  }
  return pairs;
}

std::vector<std::string> Paths(const std::vector<InstanceSnapshot>& instances) {
  std::vector<std::string> paths;
  for (const InstanceSnapshot& instance : instances) {
    paths.push_back(instance.path);
  }
  return paths;
}

std::vector<ResultEvent::Kind> Kinds(const Reply& reply) {
  std::vector<ResultEvent::Kind> kinds;
  for (const ResultEvent& event : reply.events) {
    kinds.push_back(event.kind);
  }
  return kinds;
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
      const std::string text = Stripped(property.value.text);
      traces.push_back(Debug("$$$$ IsRefInstanceMatch"));
      traces.push_back(Debug(text));
      traces.push_back(Debug(sourceText));
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
  EXPECT_EQ(Kinds(reply).back(), ResultEvent::Kind::kDone);
  EXPECT_EQ(reply.doneCount(), 1U);
  const std::vector<InstanceSnapshot> delivered = reply.instances();
  EXPECT_THAT(Pairs(delivered), ElementsAre("Passing/disk1", "Failing/disk1", "Throwing/disk1"));
  EXPECT_EQ(delivered[0].className, kAssociationClass);
  EXPECT_EQ(Prop(delivered[0], "EnumOrder").toMof(), "15");
  EXPECT_EQ(Prop(delivered[2], "EnumOrder").toMof(), "215");

  const std::vector<TraceLine> traces = TakeTraces();
  EXPECT_THAT(traces, SizeIs(27));
  EXPECT_EQ(traces, SourceTraces(all_, DeviceText("disk1"), "UserOfService"));
  EXPECT_EQ(traces[1], Debug(DeviceText("disk0")));
  EXPECT_EQ(traces[2], Debug(DeviceText("disk1")));

  const Reply names = host().associatorNames(DevicePath("disk1"), Filter("UserOfService"));
  EXPECT_EQ(names.status.rc, CMPI_RC_OK);
  EXPECT_EQ(names.doneCount(), 1U);
  EXPECT_EQ(names.paths(), Paths(delivered));
  EXPECT_EQ(TakeTraces(), traces);
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

  const Reply fromService = host().associatorNames(ServicePath("Failing"), Filter(std::nullopt));
  EXPECT_THAT(fromService.paths(), SizeIs(3));
  EXPECT_EQ(TakeTraces(), SourceTraces(all_, ServiceText("Failing"), std::nullopt));
}

TEST_F(AssociationProviderTest, FromAServiceItsOwnAssociationsComeInEnumOrder) {
  const Reply reply = host().associators(ServicePath("Passing"), Filter("ServiceProvided"));
  EXPECT_THAT(Pairs(reply.instances()),
              ElementsAre("Passing/disk0", "Passing/disk1", "Passing/disk2"));
  EXPECT_EQ(TakeTraces(), SourceTraces(all_, ServiceText("Passing"), "ServiceProvided"));
}

TEST_F(AssociationProviderTest, ResultClassAndResultRoleSelectByTheOtherReference) {
  struct Case {
    std::optional<std::string> resultClass;
    std::optional<std::string> resultRole;
    std::size_t delivered;
  };
  const std::vector<Case> cases = {
      {"DTP_DiagService", "ServiceProvided", 3},
      {"CIM_DiagnosticService", "ServiceProvided", 3},  // a superclass
      {"CIM_ManagedElement", "UserOfService", 3},
      {"DTP_DiagService", std::nullopt, 3},
      // Without a result role the source's own reference may fit the result class.
      {"DTP_Device", std::nullopt, 3},
      {"DTP_Device", "ServiceProvided", 0},
      {"CIM_ComputerSystem", std::nullopt, 0},
      {"DTP_DiagService", "EnumOrder", 0},
      {"DTP_DiagService", "NoSuchProperty", 0},
      // A result role without a result class tests nothing.
      {std::nullopt, "NoSuchProperty", 3},
  };
  for (const Case& c : cases) {
    const std::string label =
        c.resultClass.value_or("(none)") + " " + c.resultRole.value_or("(none)");
    const Reply reply = host().associators(DevicePath("disk0"),
                                           Filter("UserOfService", c.resultClass, c.resultRole));
    EXPECT_EQ(reply.status.rc, CMPI_RC_OK) << label;
    EXPECT_EQ(reply.doneCount(), 1U) << label;
    EXPECT_THAT(reply.instances(), SizeIs(c.delivered)) << label;
    // Only the source comparisons trace: the class test writes nothing.
    EXPECT_EQ(TakeTraces(), SourceTraces(all_, DeviceText("disk0"), "UserOfService")) << label;
  }
  const Reply both = host().associators(ServicePath("Throwing"),
                                        Filter("ServiceProvided", "DTP_Device", "UserOfService"));
  EXPECT_THAT(Pairs(both.instances()),
              ElementsAre("Throwing/disk0", "Throwing/disk1", "Throwing/disk2"));
}

TEST_F(AssociationProviderTest, ARoleThatIsNoReferenceDeliversNothingAndComparesNothing) {
  for (const char* role : {"EnumOrder", "NoSuchProperty", "EstimatedDurationOfService"}) {
    for (const Reply& reply : {host().associators(DevicePath("disk0"), Filter(role)),
                               host().associatorNames(DevicePath("disk0"), Filter(role))}) {
      EXPECT_EQ(reply.status.rc, CMPI_RC_OK) << role;
      EXPECT_THAT(Kinds(reply), ElementsAre(ResultEvent::Kind::kDone)) << role;
    }
    EXPECT_THAT(TakeTraces(), IsEmpty()) << role;
  }
}

TEST_F(AssociationProviderTest, TheSourceIsComparedWithoutHostAndNamespaceButWithCase) {
  const Reply elsewhere =
      host().associators("//elsewhere.example/" + DevicePath("disk1"), Filter("UserOfService"));
  EXPECT_THAT(Pairs(elsewhere.instances()),
              ElementsAre("Passing/disk1", "Failing/disk1", "Throwing/disk1"));
  TakeTraces();

  const Reply otherCase = host().associators(DevicePath("DISK1"), Filter("UserOfService"));
  EXPECT_EQ(otherCase.status.rc, CMPI_RC_OK);
  EXPECT_THAT(Kinds(otherCase), ElementsAre(ResultEvent::Kind::kDone));
  EXPECT_EQ(TakeTraces(), SourceTraces(all_, DeviceText("DISK1"), "UserOfService"));
}

TEST_F(AssociationProviderTest, TheAssociationClassMatchesInAnyLetterCase) {
  AssociationFilter filter = Filter("UserOfService");
  filter.assocClass = "dtp_AVAILABLEdiagnosticservice";
  EXPECT_THAT(host().associators(DevicePath("disk1"), filter).instances(), SizeIs(3));
}

TEST_F(AssociationProviderTest, ARequestWithoutAssociationClassIsAnsweredEmptyWithAWarning) {
  const Reply instances = host().associators(DevicePath("disk1"));
  EXPECT_EQ(instances.status.rc, CMPI_RC_OK);
  EXPECT_FALSE(instances.status.hasMessage);
  EXPECT_THAT(Kinds(instances), ElementsAre(ResultEvent::Kind::kDone));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning(kNoAssociationClass)});

  AssociationFilter roleOnly;
  roleOnly.role = "UserOfService";
  roleOnly.resultClass = "DTP_DiagService";
  const Reply names = host().associatorNames(DevicePath("disk1"), roleOnly);
  EXPECT_EQ(names.status.rc, CMPI_RC_OK);
  EXPECT_THAT(Kinds(names), ElementsAre(ResultEvent::Kind::kDone));
  EXPECT_EQ(TakeTraces(), std::vector<TraceLine>{Warning(kNoAssociationClass)});
}

TEST_F(AssociationProviderTest, ReferenceRequestsAreNotSupported) {
  const Reply references = host().references(DevicePath("disk1"), Filter(std::nullopt));
  EXPECT_EQ(references.status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_THAT(references.events, IsEmpty());
  const Reply names = host().referenceNames(DevicePath("disk1"), Filter(std::nullopt));
  EXPECT_EQ(names.status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_THAT(names.events, IsEmpty());
  EXPECT_THAT(TakeTraces(), IsEmpty());
}

// The MI functions called directly, for what the host never sends.
class AssociationEntryTest : public PluginHostTest {
 protected:
  AssociationEntryTest() { TakeTraces(); }
};

TEST_F(AssociationEntryTest, AnUnknownAssociationClassGivesAnEmptySuccessfulResult) {
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIStatus status = DiagServiceProviderCommonAssociators(
      scope.broker(), nullptr, scope.context(), result, scope.objectPath(DevicePath("disk1")),
      "ACME_NoSuchAssociation", nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(status.rc, CMPI_RC_OK);
  EXPECT_EQ(status.msg, nullptr);
  EXPECT_THAT(Kinds(scope.recorded(result)), ElementsAre(ResultEvent::Kind::kDone));
}

TEST_F(AssociationEntryTest, ThePropertyListIsNotApplied) {
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const char* onlyOrder[] = {"EnumOrder", nullptr};
  DiagServiceProviderCommonAssociators(scope.broker(), nullptr, scope.context(), result,
                                       scope.objectPath(DevicePath("disk1")), kAssociationClass,
                                       nullptr, "UserOfService", nullptr, onlyOrder);
  const std::vector<InstanceSnapshot> delivered = scope.recorded(result).instances();
  ASSERT_THAT(delivered, SizeIs(3));
  EXPECT_EQ(Prop(delivered[0], "EstimatedDurationOfService").toMof(), "3");
  EXPECT_EQ(Prop(delivered[0], "ServiceProvided").type, CMPI_ref);
}

TEST_F(AssociationEntryTest, UnsupportedAndCleanupFunctionsTouchNothing) {
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  const CMPIObjectPath* source = scope.objectPath(DevicePath("disk1"));
  const CMPIStatus references = DiagServiceProviderCommonReferences(
      scope.broker(), nullptr, scope.context(), result, source, nullptr, nullptr, nullptr);
  const CMPIStatus names = DiagServiceProviderCommonReferenceNames(
      scope.broker(), nullptr, scope.context(), result, source, "DTP_DiagService", "Dependent");
  for (const CMPIStatus& status : {references, names}) {
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(status.msg, nullptr);
  }
  for (const CMPIBoolean terminating : {CMPIBoolean{0}, CMPIBoolean{1}}) {
    const CMPIStatus cleanup = DiagServiceProviderCommonAssociationCleanup(
        scope.broker(), nullptr, scope.context(), terminating);
    EXPECT_EQ(cleanup.rc, CMPI_RC_OK);
    EXPECT_EQ(cleanup.msg, nullptr);
  }
  EXPECT_THAT(scope.recorded(result).events, IsEmpty());
  EXPECT_THAT(TakeTraces(), IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
