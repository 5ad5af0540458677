// DIAGCORE_PROVIDER: the factories it defines, the tables they hand out, and
// the plug-in's start-up, run once, whether it succeeds, throws or calls a
// factory itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/AvailServiceFactory.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/DiagUser.h"
#include "diagcore/InstanceRegistry.h"
#include "support/LibraryHost.h"

namespace {

int countingStarts = 0;
const CMPIBroker* countingBroker = nullptr;

void CountingStartup(const CMPIBroker* broker, const CMPIContext* context) {
  ++countingStarts;
  countingBroker = broker;
  auto* capabilities = new NQENDRA20::DiagServiceCapabilitiesData("DTP_DiagCapabilities");
  (*capabilities)["InstanceID"] = "counting";
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, capabilities);
}

int failingStarts = 0;

void FailingStartup(const CMPIBroker* /*broker*/, const CMPIContext* /*context*/) {
  ++failingStarts;
  throw std::runtime_error("no disks here");
}

void OddStartup(const CMPIBroker* /*broker*/, const CMPIContext* /*context*/) {
  throw 42;
}

void NestedStartup(const CMPIBroker* broker, const CMPIContext* context);

NQENDRA20::InstanceImpl* Registered(const CMPIBroker* broker, const CMPIContext* context,
                                    NQENDRA20::InstanceImpl* bag) {
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, bag);
  return bag;
}

NQENDRA20::InstanceImpl* CapabilitiesAsService(const CMPIBroker* broker, const CMPIContext* context,
                                               const char* id) {
  auto* service = new NQENDRA20::DiagServiceCapabilitiesData("DTP_DiagCapabilities");
  (*service)["InstanceID"] = id;
  return Registered(broker, context, service);
}

// A plug-in that serves the elements it tests: its own DTP_Device, which the
// CIMOM could not enumerate for it while it starts.
void OwnElementsStartup(const CMPIBroker* broker, const CMPIContext* context) {
  auto* device = new NQENDRA20::DiagUser();
  device->setClassName("DTP_Device");
  (*device)["CreationClassName"] = "DTP_Device";
  (*device)["DeviceID"] = "own0";
  (*device)["SystemCreationClassName"] = "TORSK_ComputerSystem";
  (*device)["SystemName"] = "testhost.example";
  Registered(broker, context, device);
  NQENDRA20::AvailServiceFactory().CreateAvailableServices(
      broker, context, CapabilitiesAsService(broker, context, "own"), "DTP_Device",
      "DTP_AvailableDiagnosticService", 1, 1);
}

// A plug-in that links its service to a class nobody serves.
void NoElementsStartup(const CMPIBroker* broker, const CMPIContext* context) {
  NQENDRA20::AvailServiceFactory().CreateAvailableServices(
      broker, context, CapabilitiesAsService(broker, context, "none"), "DTP_Nowhere",
      "DTP_AvailableDiagnosticService", 1, 1);
}

}  // namespace

DIAGCORE_PROVIDER(CountingPlugin, CountingStartup);
DIAGCORE_PROVIDER(FailingPlugin, FailingStartup);
DIAGCORE_PROVIDER(OddPlugin, OddStartup);
DIAGCORE_PROVIDER(NestedPlugin, NestedStartup);
DIAGCORE_CIM_PROVIDER(OwnElementsPlugin, OwnElementsStartup);
DIAGCORE_CIM_PROVIDER(NoElementsPlugin, NoElementsStartup);

namespace {

int nestedStarts = 0;
CMPIMethodMI* nestedMethodMi = nullptr;
CMPIrc nestedRc = CMPI_RC_ERR_FAILED;

// A start-up that needs another of its plug-in's MIs, as one whose upcalls
// reach its own classes does.
void NestedStartup(const CMPIBroker* broker, const CMPIContext* context) {
  ++nestedStarts;
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  nestedMethodMi = NestedPlugin_Create_MethodMI(broker, context, &rc);
  nestedRc = rc.rc;
}

}  // namespace

namespace diagcore_test {
namespace {

std::string MessageOf(const CMPIStatus& status) {
  return status.msg != nullptr ? status.msg->ft->getCharPtr(status.msg, nullptr) : "";
}

class ProviderMacroTest : public DiagHostTest {};

TEST_F(ProviderMacroTest, FactoriesHandOutNamedTablesAndRunTheStartupOnce) {
  cmpihost::CallScope scope(host());
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  CMPIInstanceMI* instance = CountingPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(rc.msg, nullptr);
  EXPECT_EQ(countingStarts, 1);
  EXPECT_EQ(countingBroker, scope.broker());

  CMPIMethodMI* method = CountingPlugin_Create_MethodMI(scope.broker(), scope.context(), &rc);
  CMPIAssociationMI* association =
      CountingPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr);
  ASSERT_NE(method, nullptr);
  ASSERT_NE(association, nullptr);
  EXPECT_EQ(CountingPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), instance);
  EXPECT_EQ(countingStarts, 1);

  EXPECT_STREQ(instance->ft->miName, "instanceCountingPlugin");
  EXPECT_STREQ(method->ft->miName, "methodCountingPlugin");
  EXPECT_STREQ(association->ft->miName, "associationCountingPlugin");
  for (const int version :
       {instance->ft->ftVersion, instance->ft->miVersion, method->ft->ftVersion,
        method->ft->miVersion, association->ft->ftVersion, association->ft->miVersion}) {
    EXPECT_EQ(version, CMPICurrentVersion);
  }
  // The broker travels in the MI for the table's functions.
  EXPECT_EQ(instance->hdl, scope.broker());
  EXPECT_EQ(method->hdl, scope.broker());
  EXPECT_EQ(association->hdl, scope.broker());
}

TEST_F(ProviderMacroTest, TheTablesAnswerAsTheLibrarysFunctions) {
  cmpihost::CallScope scope(host());
  CMPIInstanceMI* instance =
      CountingPlugin_Create_InstanceMI(scope.broker(), scope.context(), nullptr);
  CMPIMethodMI* method = CountingPlugin_Create_MethodMI(scope.broker(), scope.context(), nullptr);
  CMPIAssociationMI* association =
      CountingPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr);
  const CMPIContext* context = scope.context();
  const CMPIObjectPath* path = scope.objectPath("DTP_DiagCapabilities.InstanceID=\"counting\"");
  CMPIResult* names = scope.newResult();
  CMPIResult* all = scope.newResult();
  CMPIResult* one = scope.newResult();
  CMPIResult* associators = scope.newResult();
  CMPIResult* associatorNames = scope.newResult();
  CMPIResult* untouched = scope.newResult();
  TakeTraces();

  const struct {
    const char* what;
    CMPIStatus status;
    CMPIrc rc;
  } calls[] = {
      {"enumerateInstanceNames",
       instance->ft->enumerateInstanceNames(instance, context, names, path), CMPI_RC_OK},
      {"enumerateInstances",
       instance->ft->enumerateInstances(instance, context, all, path, nullptr), CMPI_RC_OK},
      {"getInstance", instance->ft->getInstance(instance, context, one, path, nullptr), CMPI_RC_OK},
      {"createInstance", instance->ft->createInstance(instance, context, untouched, path, nullptr),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"modifyInstance",
       instance->ft->modifyInstance(instance, context, untouched, path, nullptr, nullptr),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"deleteInstance", instance->ft->deleteInstance(instance, context, untouched, path),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"execQuery", instance->ft->execQuery(instance, context, untouched, path, "q", "WQL"),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"idle instance cleanup", instance->ft->cleanup(instance, context, 0), CMPI_RC_NEVER_UNLOAD},
      {"terminating cleanup", instance->ft->cleanup(instance, context, 1), CMPI_RC_OK},
      {"invokeMethod",
       method->ft->invokeMethod(method, context, untouched,
                                scope.objectPath("DTP_DiagService.Name=\"none\""), "RunDiagnostic",
                                nullptr, nullptr),
       CMPI_RC_ERR_NOT_FOUND},
      {"idle method cleanup", method->ft->cleanup(method, context, 0), CMPI_RC_NEVER_UNLOAD},
      {"method cleanup", method->ft->cleanup(method, context, 1), CMPI_RC_OK},
      {"associators",
       association->ft->associators(association, context, associators, path, nullptr, nullptr,
                                    nullptr, nullptr, nullptr),
       CMPI_RC_OK},
      {"associatorNames",
       association->ft->associatorNames(association, context, associatorNames, path,
                                        "DTP_AvailableDiagnosticService", nullptr, nullptr,
                                        nullptr),
       CMPI_RC_OK},
      {"references",
       association->ft->references(association, context, untouched, path, nullptr, nullptr,
                                   nullptr),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"referenceNames",
       association->ft->referenceNames(association, context, untouched, path, nullptr, nullptr),
       CMPI_RC_ERR_NOT_SUPPORTED},
      {"idle association cleanup", association->ft->cleanup(association, context, 0),
       CMPI_RC_NEVER_UNLOAD},
      {"association cleanup", association->ft->cleanup(association, context, 1), CMPI_RC_OK},
  };
  // What the library refuses, the tables explain; everything else passes as it is.
  for (const auto& call : calls) {
    EXPECT_EQ(call.status.rc, call.rc) << call.what;
    const bool explained = call.rc == CMPI_RC_ERR_NOT_SUPPORTED || call.rc == CMPI_RC_ERR_NOT_FOUND;
    EXPECT_EQ(call.status.msg != nullptr, explained) << call.what;
  }
  EXPECT_EQ(MessageOf(calls[3].status),
            "CreateInstance is not supported: this provider's objects are made by the provider and "
            "its diagnostic runs only");
  EXPECT_EQ(MessageOf(calls[6].status), "ExecQuery is not supported: enumerate the class instead");
  EXPECT_EQ(MessageOf(calls[9].status),
            "No object of this provider at DTP_DiagService.Name=\"none\"");
  EXPECT_EQ(scope.recorded(names).paths().size(), 1U);
  EXPECT_EQ(scope.recorded(all).instances().size(), 1U);
  EXPECT_EQ(scope.recorded(one).instances().size(), 1U);
  EXPECT_EQ(scope.recorded(associators).doneCount(), 1U);
  EXPECT_EQ(scope.recorded(associatorNames).doneCount(), 1U);
  EXPECT_TRUE(scope.recorded(untouched).events.empty());
  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ EnumInstanceNames"), Debug("+++ EnumInstances"),
                                    Debug("+++ GetInstance"), Debug("+++ InvokeMethod"),
                                    Warning(" Couldn't find instanceContainer"),
                                    Warning("Associators request named no association class")}));
}

TEST_F(ProviderMacroTest, AThrowingStartupFailsEveryFactoryCallAndIsNotRetried) {
  cmpihost::CallScope scope(host());
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(FailingPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in FailingPlugin failed: no disks here");
  rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(FailingPlugin_Create_MethodMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in FailingPlugin failed: no disks here");
  EXPECT_EQ(FailingPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr), nullptr);

  EXPECT_EQ(failingStarts, 1);

  // A non-standard exception is named as such.
  rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(OddPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in OddPlugin failed: unknown exception");
}

TEST_F(ProviderMacroTest, AFactoryCalledFromInsideTheStartupReturnsAtOnce) {
  cmpihost::CallScope scope(host());
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  ASSERT_NE(NestedPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(nestedRc, CMPI_RC_OK);
  ASSERT_NE(nestedMethodMi, nullptr);
  EXPECT_EQ(NestedPlugin_Create_MethodMI(scope.broker(), scope.context(), nullptr), nestedMethodMi);
  EXPECT_EQ(nestedStarts, 1);
}

// Started by a provider macro, the availability factory links the elements
// the plug-in registered itself, and says so when it linked nothing.
TEST_F(ProviderMacroTest, AStartupLinksItsOwnElementsAndIsToldWhenItLinkedNone) {
  cmpihost::CallScope scope(host());
  ASSERT_NE(OwnElementsPlugin_Create_InstanceMI(scope.broker(), scope.context(), nullptr), nullptr);
  std::vector<CMPIInstance*> associations;
  NQENDRA20::InstanceRegistry::Singleton()->GetCMPIInstances(
      scope.broker(), "DTP_AvailableDiagnosticService", associations);
  ASSERT_EQ(associations.size(), 1U);
  EXPECT_THAT(scope.snapshot(associations[0]).path, ::testing::HasSubstr("DeviceID=\\\"own0\\\""));
  for (const TraceLine& trace : TakeTraces()) {
    EXPECT_NE(trace.severity, CMPI_SEV_WARNING) << trace.text;
  }

  ASSERT_NE(NoElementsPlugin_Create_InstanceMI(scope.broker(), scope.context(), nullptr), nullptr);
  const std::vector<TraceLine> traces = TakeTraces();
  ASSERT_FALSE(traces.empty());
  EXPECT_EQ(traces.back(),
            Warning("CreateAvailableServices found no DTP_Nowhere to link by "
                    "DTP_AvailableDiagnosticService in the start-up of plug-in NoElementsPlugin: "
                    "register the elements in this provider before the call, or serve them from "
                    "another provider"));

  // The same call outside a start-up says nothing, as it always did.
  NQENDRA20::DiagServiceCapabilitiesData service("DTP_DiagCapabilities");
  NQENDRA20::AvailServiceFactory().CreateAvailableServices(scope.broker(), scope.context(),
                                                           &service, "DTP_Nowhere",
                                                           "DTP_AvailableDiagnosticService", 1, 1);
  EXPECT_THAT(TakeTraces(), ::testing::IsEmpty());

  // Its association table is CIM's: references are served.
  CMPIAssociationMI* association =
      OwnElementsPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr);
  CMPIResult* references = scope.newResult();
  EXPECT_EQ(association->ft
                ->references(association, scope.context(), references,
                             scope.objectPath("DTP_Device.CreationClassName=\"DTP_Device\","
                                              "DeviceID=\"own0\",SystemCreationClassName="
                                              "\"TORSK_ComputerSystem\",SystemName="
                                              "\"testhost.example\""),
                             nullptr, nullptr, nullptr)
                .rc,
            CMPI_RC_OK);
  EXPECT_EQ(scope.recorded(references).instances().size(), 1U);
}

// A ManagedElement that names no managed element is the client's mistake:
// refused with a reason before any service runs a test.
TEST_F(ProviderMacroTest, TheMethodTableRefusesAManagedElementThatNamesNoInstance) {
  cmpihost::CallScope scope(host());
  CMPIMethodMI* method = CountingPlugin_Create_MethodMI(scope.broker(), scope.context(), nullptr);
  ASSERT_NE(method, nullptr);
  const struct {
    const char* element;
    const char* message;
  } cases[] = {
      {"DTP_Nowhere.Id=\"1\"",
       "RunDiagnostic: ManagedElement DTP_Nowhere.Id=\"1\" is not an instance of a "
       "CIM_ManagedElement class"},
      {"DTP_Device",
       "RunDiagnostic: ManagedElement DTP_Device names no instance (the path has no keys)"},
  };
  for (const auto& c : cases) {
    CMPIArgs* in = scope.broker()->eft->newArgs(scope.broker(), nullptr);
    CMPIValue value{};
    value.ref = scope.objectPath(c.element);
    in->ft->addArg(in, "ManagedElement", &value, CMPI_ref);
    const CMPIStatus status =
        method->ft->invokeMethod(method, scope.context(), scope.newResult(),
                                 scope.objectPath("DTP_DiagCapabilities.InstanceID=\"counting\""),
                                 "RunDiagnostic", in, nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_PARAMETER) << c.element;
    EXPECT_EQ(MessageOf(status), c.message);
  }
}

}  // namespace
}  // namespace diagcore_test
