// DiagService on its own: its sixteen properties, and RunDiagnostic called
// directly with the host's broker: the order of its steps, the record it
// completes, bad arguments, and what a throwing test leaves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diag/DiagHost.h"
#include "diagcore/DiagService.h"
#include "diagcore/InstanceRegistry.h"
#include "support/Bags.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagnosticRecord;
using NQENDRA20::DiagService;
using NQENDRA20::InstanceImpl;
using NQENDRA20::InstanceRegistry;
using Properties = std::map<std::string, std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

static_assert(std::is_abstract<DiagService>::value, "plug-ins supply the test");
static_assert(std::has_virtual_destructor<DiagService>::value, "the registry holds base pointers");

const char* const kInstallDate = "20240101000000.000000+000";

Properties PropertiesOf(const InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

// A service whose test is a function of the test's choosing, and which
// remembers the record it was handed.
class ProbeService : public DiagService {
 public:
  using Test = std::function<unsigned int(InstanceImpl&, DiagnosticRecord*)>;

  ProbeService(std::string className, std::string recordClassName, Test test)
      : DiagService(std::move(className), std::move(recordClassName), "spare", kInstallDate,
                    "sys.example"),
        test_(std::move(test)) {}

  unsigned int runTest(InstanceImpl& managedElement, DiagnosticRecord* record) override {
    ++calls;
    lastRecord = record;
    return test_(managedElement, record);
  }

  int calls = 0;
  DiagnosticRecord* lastRecord = nullptr;

 private:
  Test test_;
};

unsigned int PassFour(InstanceImpl& /*element*/, DiagnosticRecord* record) {
  record->pass(1);
  return 4;
}

const Properties kServiceDefaults = {{"InstallDate", kInstallDate},
                                     {"OperationalStatus", "2"},
                                     {"StatusDescriptions", "Status OK"},
                                     {"Status", "OK"},
                                     {"EnabledState", "2"},
                                     {"OtherEnabledState", "Enabled"},
                                     {"RequestedState", "5"},
                                     {"EnabledDefault", "2"},
                                     {"TimeOfLastStateChange", "0"},
                                     {"SystemCreationClassName", "TORSK_ComputerSystem"},
                                     {"SystemName", "sys.example"},
                                     {"CreationClassName", "ACME_Service"},
                                     {"PrimaryOwnerName", "Velmora"},
                                     {"PrimaryOwnerContact", "Velmora"},
                                     {"StartMode", "Automatic"},
                                     {"Started", "1"}};

TEST(DiagServiceBagTest, AFreshServiceHoldsExactlyTheSixteenPropertiesAndItsArguments) {
  const ProbeService service("ACME_Service", "ACME_Record", PassFour);
  EXPECT_EQ(kServiceDefaults.size(), 16U);
  EXPECT_EQ(PropertiesOf(service), kServiceDefaults);
  EXPECT_EQ(service.getClassName(), "ACME_Service");
  EXPECT_EQ(service.getObjectPath(), "");
  EXPECT_EQ(service.getRecordClassName(), "ACME_Record");
  EXPECT_EQ(service.getSpareName(), "spare");
  EXPECT_EQ(service.getInstallDate(), kInstallDate);
  EXPECT_EQ(service.getSystemName(), "sys.example");
}

TEST(DiagServiceBagTest, InitAssignsTheDefaultsOverWhatThePluginChanged) {
  ProbeService service("ACME_Service", "ACME_Record", PassFour);
  service["Status"] = "Degraded";
  service["Started"] = "0";
  service["Name"] = "kept";
  service.init();
  Properties expected = kServiceDefaults;
  expected["Name"] = "kept";
  EXPECT_EQ(PropertiesOf(service), expected);
}

// A CMPIResult that asks a question of the registry and the record at each
// call, to show what had happened by then.
struct ObservingResult {
  CMPIResult result{};
  CMPIResultFT table{};
  std::function<void(const std::string&)> observe;
  std::vector<std::string> calls;
  unsigned int value = 0;

  ObservingResult() {
    result.hdl = this;
    result.ft = &table;
    table.returnData = [](const CMPIResult* rslt, const CMPIValue* data, CMPIType type) {
      auto* self = static_cast<ObservingResult*>(rslt->hdl);
      self->calls.emplace_back(type == CMPI_uint32 ? "data uint32" : "data other");
      self->value = data->uint32;
      self->observe("data");
      return CMPIStatus{CMPI_RC_OK, nullptr};
    };
    table.returnDone = [](const CMPIResult* rslt) {
      auto* self = static_cast<ObservingResult*>(rslt->hdl);
      self->calls.emplace_back("done");
      self->observe("done");
      return CMPIStatus{CMPI_RC_OK, nullptr};
    };
  }
};

class DiagServiceRunTest : public DiagHostTest {
 protected:
  DiagServiceRunTest() : DiagHostTest(true) {}

  ProbeService* NewService(const std::string& name, ProbeService::Test test,
                           const std::string& recordClass = "DTP_DiagServiceRecord") {
    auto* service = NewBag<ProbeService>(std::string("DTP_DiagService"), recordClass, test);
    if (!name.empty()) {
      (*service)["Name"] = name;
      (*service)["Caption"] = name + " caption";
      (*service)["Description"] = name + " description";
      (*service)["ElementName"] = name + " element";
    }
    RegisterInScope(host(), service);
    return service;
  }

  // RunDiagnostic called directly, with `element` as the ManagedElement
  // reference (none when empty), into `result`.
  CMPIStatus Invoke(DiagService& service, const std::string& element, const CMPIResult* result,
                    const std::string& method = "RunDiagnostic") {
    cmpihost::CallScope scope(host());
    const CMPIBroker* broker = scope.broker();
    CMPIArgs* in = broker->eft->newArgs(broker, nullptr);
    if (!element.empty()) {
      CMPIValue value{};
      value.ref = scope.objectPath(element);
      in->ft->addArg(in, "ManagedElement", &value, CMPI_ref);
    }
    CMPIArgs* out = broker->eft->newArgs(broker, nullptr);
    CMPIStatus status =
        service.invokeMethod(broker, scope.context(), result,
                             scope.objectPath(service.getObjectPath()), method, in, out);
    // The message belongs to the scope: keep its text only.
    lastMessage_ = status.msg != nullptr ? status.msg->ft->getCharPtr(status.msg, nullptr) : "";
    return status;
  }

  std::vector<cmpihost::InstanceSnapshot> Records() {
    return host().enumerateInstances("root/cimv2", "DTP_DiagServiceRecord").instances();
  }

  std::string lastMessage_;
};

TEST_F(DiagServiceRunTest, TheResultReachesTheClientBeforeTheRecordIsCompletedAndRegistered) {
  ProbeService* service = NewService("Probe", PassFour);
  ObservingResult result;
  std::vector<std::string> seen;
  result.observe = [&](const std::string& call) {
    std::vector<CMPIInstance*> records;
    InstanceRegistry::Singleton()->GetCMPIInstances(nullptr, "DTP_DiagServiceRecord", records);
    const DiagnosticRecord* record = service->lastRecord;
    seen.push_back(call + ": records " + std::to_string(records.size()) + ", caption " +
                   (record->find("Caption") == record->end() ? "absent" : "present"));
  };
  TakeTraces();

  const CMPIStatus status = Invoke(*service, DevicePath("disk1"), &result.result);

  EXPECT_EQ(status.rc, CMPI_RC_OK);
  EXPECT_EQ(status.msg, nullptr);
  EXPECT_THAT(result.calls, ElementsAre("data uint32", "done"));
  EXPECT_EQ(result.value, 4U);
  EXPECT_THAT(seen,
              ElementsAre("data: records 0, caption absent", "done: records 0, caption absent"));

  const std::string now = CimDateTime(FixedTime());
  const std::string instanceId = "DTP_DiagService:Probe:" + now;
  const std::vector<TraceLine> traces = TakeTraces();
  ASSERT_THAT(traces, SizeIs(::testing::Gt(2U)));
  EXPECT_EQ(traces.front(), Debug("^^^^ opString = " + DeviceText("disk1")));
  EXPECT_EQ(traces.back(),
            Debug(">>>>> Registered DTP_DiagServiceRecord.InstanceID=\"" + instanceId + "\""));

  const DiagnosticRecord& record = *service->lastRecord;
  EXPECT_EQ(record.getClassName(), "DTP_DiagServiceRecord");
  EXPECT_EQ(record.getObjectPath(), "DTP_DiagServiceRecord.InstanceID=\"" + instanceId + "\"");
  EXPECT_EQ(PropertiesOf(record), (Properties{{"Caption", "Result for Probe caption"},
                                              {"CreationTimeStamp", now},
                                              {"Description", "Result for Probe description"},
                                              {"ElementName", "Result for Probe element"},
                                              {"ErrorCount", "0"},
                                              {"InstanceID", instanceId},
                                              {"Locale", "en"},
                                              {"LoopsFailed", "0"},
                                              {"LoopsPassed", "1"},
                                              {"ManagedElementName", "disk1"},
                                              {"RecordData", "Test Passed"},
                                              {"RecordFormat", ""},
                                              {"RecordType", "2"},
                                              {"ServiceName", "Probe"}}));
  EXPECT_THAT(Records(), SizeIs(1));
}

TEST_F(DiagServiceRunTest, MissingServiceTextsGiveBareRecordTextsAndAreAddedEmptyToTheService) {
  ProbeService* service = NewService("", PassFour);
  const Properties before = PropertiesOf(*service);
  cmpihost::CallScope scope(host());
  const CMPIStatus status = Invoke(*service, DevicePath("disk0"), scope.newResult());
  EXPECT_EQ(status.rc, CMPI_RC_OK);

  const DiagnosticRecord& record = *service->lastRecord;
  EXPECT_EQ(record.find("Caption")->second, "Result for ");
  EXPECT_EQ(record.find("Description")->second, "Result for ");
  EXPECT_EQ(record.find("ElementName")->second, "Result for ");
  EXPECT_EQ(record.find("ServiceName")->second, "");
  EXPECT_EQ(record.find("InstanceID")->second, "DTP_DiagService::" + CimDateTime(FixedTime()));

  Properties after = before;
  after["Caption"] = "";
  after["Description"] = "";
  after["ElementName"] = "";
  after["Name"] = "";
  EXPECT_EQ(PropertiesOf(*service), after);
}

TEST_F(DiagServiceRunTest, OnlyRunDiagnosticInItsExactSpellingRuns) {
  ProbeService* service = NewService("Probe", PassFour);
  for (const char* method : {"rundiagnostic", "RunDiagnostic ", "", "RunDiagnosticService"}) {
    cmpihost::CallScope scope(host());
    CMPIResult* result = scope.newResult();
    const CMPIStatus status = Invoke(*service, DevicePath("disk0"), result, method);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND) << method;
    EXPECT_EQ(status.msg, nullptr) << method;
    EXPECT_THAT(scope.recorded(result).events, IsEmpty()) << method;
  }
  EXPECT_EQ(service->calls, 0);
  EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(DiagServiceRunTest, NoTestRunsWithoutAManagedElementReference) {
  ProbeService* service = NewService("Probe", PassFour);
  cmpihost::CallScope scope(host());
  const CMPIBroker* broker = scope.broker();
  CMPIResult* result = scope.newResult();

  // No arguments at all, and no argument list.
  EXPECT_EQ(Invoke(*service, "", result).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(lastMessage_, "RunDiagnostic needs a ManagedElement reference");
  const CMPIStatus noList = service->invokeMethod(broker, scope.context(), result, nullptr,
                                                  "RunDiagnostic", nullptr, nullptr);
  EXPECT_EQ(noList.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  ASSERT_NE(noList.msg, nullptr);
  EXPECT_STREQ(noList.msg->ft->getCharPtr(noList.msg, nullptr),
               "RunDiagnostic needs a ManagedElement reference");

  // A reference type without a reference in it.
  CMPIArgs* nullReference = broker->eft->newArgs(broker, nullptr);
  nullReference->ft->addArg(nullReference, "ManagedElement", nullptr, CMPI_ref);
  EXPECT_EQ(service
                ->invokeMethod(broker, scope.context(), result, nullptr, "RunDiagnostic",
                               nullReference, nullptr)
                .rc,
            CMPI_RC_ERR_INVALID_PARAMETER);

  // The path as a string.
  CMPIArgs* text = broker->eft->newArgs(broker, nullptr);
  CMPIValue chars{};
  chars.chars = const_cast<char*>("DTP_Device.DeviceID=\"disk0\"");
  text->ft->addArg(text, "ManagedElement", &chars, CMPI_chars);
  EXPECT_EQ(
      service
          ->invokeMethod(broker, scope.context(), result, nullptr, "RunDiagnostic", text, nullptr)
          .rc,
      CMPI_RC_ERR_INVALID_PARAMETER);

  EXPECT_EQ(service->calls, 0);
  EXPECT_THAT(scope.recorded(result).events, IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(DiagServiceRunTest, AThrowingTestPropagatesAndLeavesNoRecord) {
  ProbeService* service =
      NewService("Probe", [](InstanceImpl& /*element*/, DiagnosticRecord* record) -> unsigned int {
        record->fail(1, "E", 1, "half written");
        throw std::runtime_error("probe broke");
      });
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  EXPECT_THROW(Invoke(*service, DevicePath("disk0"), result), std::runtime_error);
  EXPECT_EQ(service->calls, 1);
  EXPECT_THAT(scope.recorded(result).events, IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
  // Run under the address sanitizer, this also shows the record was freed.
}

TEST_F(DiagServiceRunTest, ARecordClassTheCimomCannotBuildIsFreedAndTheResultStillDelivered) {
  ProbeService* service = NewService("Probe", PassFour, "ACME_NoSuchRecord");
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  TakeTraces();
  const CMPIStatus status = Invoke(*service, DevicePath("disk0"), result);
  EXPECT_EQ(status.rc, CMPI_RC_OK);
  ASSERT_THAT(scope.recorded(result).data(), SizeIs(1));
  EXPECT_EQ(scope.recorded(result).data()[0].uint, 4U);
  const std::vector<TraceLine> traces = TakeTraces();
  EXPECT_THAT(traces,
              ::testing::Contains(Warning("Could not build instance of class ACME_NoSuchRecord")));
  std::vector<CMPIInstance*> records;
  InstanceRegistry::Singleton()->GetCMPIInstances(nullptr, "ACME_NoSuchRecord", records);
  EXPECT_THAT(records, IsEmpty());
}

// Records replaced in the registry by a later one of the same InstanceID stay
// allocated, as everything once registered does; held here so that the leak
// checker knows.
std::vector<const DiagnosticRecord*> replacedRecords;

TEST_F(DiagServiceRunTest, TwoRunsWithinOneDateTimeShareTheInstanceIdAndTheLaterWins) {
  ProbeService* service = NewService("Probe", PassFour);
  cmpihost::CallScope scope(host());
  TakeTraces();
  Invoke(*service, DevicePath("disk0"), scope.newResult());
  replacedRecords.push_back(service->lastRecord);
  const std::vector<TraceLine> first = TakeTraces();
  Invoke(*service, DevicePath("disk2"), scope.newResult());
  const std::vector<TraceLine> second = TakeTraces();

  EXPECT_EQ(first.back(), second.back());
  EXPECT_EQ(first.back().text,
            ">>>>> Registered DTP_DiagServiceRecord.InstanceID=\"DTP_DiagService:Probe:" +
                CimDateTime(FixedTime()) + "\"");
  const std::vector<cmpihost::InstanceSnapshot> records = Records();
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_EQ(Prop(records[0], "ManagedElementName").toMof(), "\"disk2\"");
  EXPECT_EQ(service->calls, 2);
}

}  // namespace
}  // namespace diagcore_test
