// The association functions with CIM's semantics, over the test plug-in's
// nine availability associations (three services, three static disks that
// the host serves itself): what each request delivers for each filter, from
// either end, with the source's keys in any order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using cmpihost::InstanceSnapshot;
using cmpihost::Reply;
using ::testing::ElementsAreArray;

// A service's or a disk's path with its keys in the reverse of the class's
// order and the key names in another case.
const char* const kReversedDisk1 =
    R"(root/cimv2:DTP_Device.systemname="testhost.example",SYSTEMCREATIONCLASSNAME="TORSK_ComputerSystem",deviceid="disk1",CreationClassName="DTP_Device")";
const char* const kReversedFailing =
    R"(root/cimv2:DTP_DiagService.Name="Failing",CreationClassName="DTP_DiagService",SystemName="testhost.example",SystemCreationClassName="TORSK_ComputerSystem")";

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
