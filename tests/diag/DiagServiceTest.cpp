// DiagService on its own: its sixteen properties, and RunDiagnostic called
// directly with the host's broker: the order of its steps, the record it
// completes, bad arguments, and what a throwing test leaves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
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

const char* const kInstallDate = "20240101000000.000000+000";

Properties PropertiesOf(const InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

// A service whose test is a function of the test's choosing, and which
// remembers the record it was handed.
class ProbeService : public DiagService {
 public:
  using Test = std::function<unsigned int(DiagnosticRecord&)>;

  ProbeService(std::string className, std::string recordClassName, Test test)
      : DiagService(std::move(className), std::move(recordClassName), "spare", kInstallDate,
                    "sys.example"),
        test_(std::move(test)) {}

  unsigned int runTest(InstanceImpl& /*element*/, DiagnosticRecord* record) override {
    ++calls;
    lastRecord = record;
    return test_(*record);
  }

  int calls = 0;
  DiagnosticRecord* lastRecord = nullptr;

 private:
  Test test_;
};

unsigned int PassFour(DiagnosticRecord& record) {
  record.pass(1);
  return 4;
}

TEST(DiagServiceBagTest, AServiceHoldsExactlyTheSixteenPropertiesAndInitRestoresThem) {
  const Properties defaults = {{"InstallDate", kInstallDate},
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
  ProbeService service("ACME_Service", "ACME_Record", PassFour);
  EXPECT_EQ(PropertiesOf(service), defaults);
  EXPECT_EQ(service.getRecordClassName(), "ACME_Record");
  EXPECT_EQ(service.getSpareName(), "spare");
  EXPECT_EQ(service.getInstallDate(), kInstallDate);
  EXPECT_EQ(service.getSystemName(), "sys.example");

  service["Status"] = "Degraded";
  service["Name"] = "kept";
  service.init();
  Properties expected = defaults;
  expected["Name"] = "kept";
  EXPECT_EQ(PropertiesOf(service), expected);
}

// A CMPIResult that runs `observe` at each call, to show what had happened by then.
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
      for (const char* text : {"Caption", "Description", "ElementName"}) {
        (*service)[text] = name + " " + text;
      }
      (*service)["Name"] = name;
    }
    RegisterInScope(host(), service);
    TakeTraces();
    return service;
  }

  // RunDiagnostic called directly, with `in` as its arguments.
  CMPIStatus Invoke(DiagService& service, cmpihost::CallScope& scope, const CMPIArgs* in,
                    const CMPIResult* result, const std::string& method = "RunDiagnostic") {
    const CMPIBroker* broker = scope.broker();
    CMPIStatus status = service.invokeMethod(broker, scope.context(), result,
                                             scope.objectPath(service.getObjectPath()), method, in,
                                             broker->eft->newArgs(broker, nullptr));
    lastMessage_ = status.msg != nullptr ? status.msg->ft->getCharPtr(status.msg, nullptr) : "";
    return status;
  }

  // An argument list with ManagedElement of `type`.
  static CMPIArgs* Arguments(cmpihost::CallScope& scope, const CMPIValue* value, CMPIType type) {
    CMPIArgs* in = scope.broker()->eft->newArgs(scope.broker(), nullptr);
    in->ft->addArg(in, "ManagedElement", value, type);
    return in;
  }

  CMPIStatus Run(DiagService& service, const std::string& element, const CMPIResult* result) {
    cmpihost::CallScope scope(host());
    CMPIValue value{};
    value.ref = scope.objectPath(element);
    return Invoke(service, scope, Arguments(scope, &value, CMPI_ref), result);
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

  const CMPIStatus status = Run(*service, DevicePath("disk1"), &result.result);
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
  EXPECT_EQ(record.getObjectPath(), "DTP_DiagServiceRecord.InstanceID=\"" + instanceId + "\"");
  EXPECT_EQ(PropertiesOf(record), (Properties{{"Caption", "Result for Probe Caption"},
                                              {"CreationTimeStamp", now},
                                              {"Description", "Result for Probe Description"},
                                              {"ElementName", "Result for Probe ElementName"},
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
  Properties after = PropertiesOf(*service);
  cmpihost::CallScope scope(host());
  EXPECT_EQ(Run(*service, DevicePath("disk0"), scope.newResult()).rc, CMPI_RC_OK);

  const DiagnosticRecord& record = *service->lastRecord;
  for (const char* text : {"Caption", "Description", "ElementName"}) {
    EXPECT_EQ(record.find(text)->second, "Result for ") << text;
    after[text] = "";
  }
  EXPECT_EQ(record.find("ServiceName")->second, "");
  EXPECT_EQ(record.find("InstanceID")->second, "DTP_DiagService::" + CimDateTime(FixedTime()));
  after["Name"] = "";
  EXPECT_EQ(PropertiesOf(*service), after);
}

TEST_F(DiagServiceRunTest, NoTestRunsForAnotherMethodOrWithoutAManagedElementReference) {
  ProbeService* service = NewService("Probe", PassFour);
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  CMPIValue reference{};
  reference.ref = scope.objectPath(DevicePath("disk0"));
  for (const char* method : {"rundiagnostic", "RunDiagnostic ", "", "RunDiagnosticService"}) {
    const CMPIStatus status =
        Invoke(*service, scope, Arguments(scope, &reference, CMPI_ref), result, method);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND) << method;
    EXPECT_EQ(status.msg, nullptr) << method;
  }

  CMPIValue chars{};
  chars.chars = const_cast<char*>("DTP_Device.DeviceID=\"disk0\"");
  const CMPIArgs* refused[] = {
      nullptr,                                                // no argument list
      scope.broker()->eft->newArgs(scope.broker(), nullptr),  // no arguments
      Arguments(scope, nullptr, CMPI_ref),                    // a reference type, no reference
      Arguments(scope, &chars, CMPI_chars),                   // the path as a string
  };
  for (const CMPIArgs* in : refused) {
    EXPECT_EQ(Invoke(*service, scope, in, result).rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(lastMessage_, "RunDiagnostic needs a ManagedElement reference");
  }
  EXPECT_EQ(service->calls, 0);
  EXPECT_THAT(scope.recorded(result).events, IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(DiagServiceRunTest, AThrowingTestPropagatesAndLeavesNoRecord) {
  // Run under the address sanitizer, this also shows the record was freed.
  ProbeService* service = NewService("Probe", [](DiagnosticRecord& record) -> unsigned int {
    record.fail(1, "E", 1, "half written");
    throw std::runtime_error("probe broke");
  });
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  EXPECT_THROW(Run(*service, DevicePath("disk0"), result), std::runtime_error);
  EXPECT_EQ(service->calls, 1);
  EXPECT_THAT(scope.recorded(result).events, IsEmpty());
  EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(DiagServiceRunTest, ARecordClassTheCimomCannotBuildIsFreedAndTheResultStillDelivered) {
  ProbeService* service = NewService("Probe", PassFour, "ACME_NoSuchRecord");
  cmpihost::CallScope scope(host());
  CMPIResult* result = scope.newResult();
  EXPECT_EQ(Run(*service, DevicePath("disk0"), result).rc, CMPI_RC_OK);
  ASSERT_THAT(scope.recorded(result).data(), SizeIs(1));
  EXPECT_EQ(scope.recorded(result).data()[0].uint, 4U);
  EXPECT_THAT(TakeTraces(),
              ::testing::Contains(Warning("Could not build instance of class ACME_NoSuchRecord")));
  std::vector<CMPIInstance*> records;
  InstanceRegistry::Singleton()->GetCMPIInstances(nullptr, "ACME_NoSuchRecord", records);
  EXPECT_THAT(records, IsEmpty());
}

TEST_F(DiagServiceRunTest, TwoRunsWithinOneDateTimeShareTheInstanceIdAndTheLaterWins) {
  ProbeService* service = NewService("Probe", PassFour);
  cmpihost::CallScope scope(host());
  Run(*service, DevicePath("disk0"), scope.newResult());
  const std::vector<TraceLine> first = TakeTraces();
  Run(*service, DevicePath("disk2"), scope.newResult());
  EXPECT_EQ(TakeTraces().back(), first.back());
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
