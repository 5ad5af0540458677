// DIAGCORE_PROVIDER: the factories it defines, the tables they hand out, and
// the plug-in's start-up, run once, whether it succeeds, throws or calls a
// factory itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diag/DiagHost.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/InstanceRegistry.h"

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

}  // namespace

DIAGCORE_PROVIDER(CountingPlugin, CountingStartup);
DIAGCORE_PROVIDER(FailingPlugin, FailingStartup);
DIAGCORE_PROVIDER(OddPlugin, OddStartup);

namespace {

int nestedStarts = 0;
CMPIMethodMI* nestedMethodMi = nullptr;
CMPIrc nestedRc = CMPI_RC_ERR_FAILED;

void NestedStartup(const CMPIBroker* broker, const CMPIContext* context);

}  // namespace

DIAGCORE_PROVIDER(NestedPlugin, NestedStartup);

namespace {

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

using cmpihost::Reply;
using ::testing::HasSubstr;
using ::testing::SizeIs;

std::string MessageOf(const CMPIStatus& status) {
  return status.msg != nullptr ? status.msg->ft->getCharPtr(status.msg, nullptr) : "";
}

class ProviderMacroTest : public DiagHostTest {
 protected:
  ProviderMacroTest() : DiagHostTest(false) {}

  // Serves the test plug-in's classes with `factories`, under `name`.
  void Serve(const std::string& name, const cmpihost::MiFactories& factories) {
    cmpihost::ProviderRegistration registration;
    registration.providerName = name;
    registration.classNames = {"DTP_DiagCapabilities", "DTP_DiagService",
                               "DTP_AvailableDiagnosticService"};
    registration.instance = true;
    registration.method = true;
    registration.association = true;
    host().registerProvider(registration, factories);
  }
};

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
  EXPECT_EQ(instance->ft->ftVersion, CMPICurrentVersion);
  EXPECT_EQ(instance->ft->miVersion, CMPICurrentVersion);
  EXPECT_EQ(method->ft->ftVersion, CMPICurrentVersion);
  EXPECT_EQ(method->ft->miVersion, CMPICurrentVersion);
  EXPECT_EQ(association->ft->ftVersion, CMPICurrentVersion);
  EXPECT_EQ(association->ft->miVersion, CMPICurrentVersion);
  // The broker travels in the MI for the table's functions.
  EXPECT_EQ(instance->hdl, scope.broker());
  EXPECT_EQ(method->hdl, scope.broker());
  EXPECT_EQ(association->hdl, scope.broker());
}

TEST_F(ProviderMacroTest, TheTablesAnswerAsTheLibrarysFunctions) {
  cmpihost::CallScope scope(host());
  CountingPlugin_Create_InstanceMI(scope.broker(), scope.context(), nullptr);
  CMPIInstanceMI* instance =
      CountingPlugin_Create_InstanceMI(scope.broker(), scope.context(), nullptr);
  CMPIMethodMI* method = CountingPlugin_Create_MethodMI(scope.broker(), scope.context(), nullptr);
  CMPIAssociationMI* association =
      CountingPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr);
  const CMPIContext* context = scope.context();
  const CMPIObjectPath* capabilities =
      scope.objectPath("DTP_DiagCapabilities.InstanceID=\"counting\"");
  const CMPIObjectPath* unknown = scope.objectPath("DTP_DiagService.Name=\"none\"");
  TakeTraces();

  CMPIResult* names = scope.newResult();
  EXPECT_EQ(instance->ft->enumerateInstanceNames(instance, context, names, capabilities).rc,
            CMPI_RC_OK);
  EXPECT_THAT(scope.recorded(names).paths(), SizeIs(1));
  CMPIResult* all = scope.newResult();
  EXPECT_EQ(instance->ft->enumerateInstances(instance, context, all, capabilities, nullptr).rc,
            CMPI_RC_OK);
  EXPECT_THAT(scope.recorded(all).instances(), SizeIs(1));
  CMPIResult* one = scope.newResult();
  EXPECT_EQ(instance->ft->getInstance(instance, context, one, capabilities, nullptr).rc,
            CMPI_RC_OK);
  EXPECT_THAT(scope.recorded(one).instances(), SizeIs(1));
  CMPIResult* untouched = scope.newResult();
  EXPECT_EQ(instance->ft->createInstance(instance, context, untouched, capabilities, nullptr).rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(
      instance->ft->modifyInstance(instance, context, untouched, capabilities, nullptr, nullptr).rc,
      CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(instance->ft->deleteInstance(instance, context, untouched, capabilities).rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(instance->ft->execQuery(instance, context, untouched, capabilities, "q", "WQL").rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(instance->ft->cleanup(instance, context, 0).rc, CMPI_RC_OK);

  EXPECT_EQ(
      method->ft
          ->invokeMethod(method, context, untouched, unknown, "RunDiagnostic", nullptr, nullptr)
          .rc,
      CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(method->ft->cleanup(method, context, 1).rc, CMPI_RC_OK);

  CMPIResult* associators = scope.newResult();
  EXPECT_EQ(association->ft
                ->associators(association, context, associators, capabilities, nullptr, nullptr,
                              nullptr, nullptr, nullptr)
                .rc,
            CMPI_RC_OK);
  CMPIResult* associatorNames = scope.newResult();
  EXPECT_EQ(association->ft
                ->associatorNames(association, context, associatorNames, capabilities,
                                  "DTP_AvailableDiagnosticService", nullptr, nullptr, nullptr)
                .rc,
            CMPI_RC_OK);
  EXPECT_EQ(scope.recorded(associators).doneCount(), 1U);
  EXPECT_EQ(scope.recorded(associatorNames).doneCount(), 1U);
  EXPECT_EQ(
      association->ft
          ->references(association, context, untouched, capabilities, nullptr, nullptr, nullptr)
          .rc,
      CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(association->ft
                ->referenceNames(association, context, untouched, capabilities, nullptr, nullptr)
                .rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(association->ft->cleanup(association, context, 0).rc, CMPI_RC_OK);
  EXPECT_TRUE(scope.recorded(untouched).events.empty());

  EXPECT_EQ(TakeTraces(),
            (std::vector<TraceLine>{Debug("+++ EnumInstanceNames"), Debug("+++ EnumInstances"),
                                    Debug("+++ GetInstance"), Debug("+++ InvokeMethod"),
                                    Warning(" Couldn't find instanceContainer"),
                                    Warning("Associators request named no association class")}));
}

TEST_F(ProviderMacroTest, AHostServesThePluginThroughTheFactories) {
  cmpihost::MiFactories factories;
  factories.instance = CountingPlugin_Create_InstanceMI;
  factories.method = CountingPlugin_Create_MethodMI;
  factories.association = CountingPlugin_Create_AssociationMI;
  Serve("CountingPlugin", factories);
  host().activateProviders();
  EXPECT_EQ(countingStarts, 1);
  const Reply reply = host().enumerateInstances("root/cimv2", "DTP_DiagCapabilities");
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  ASSERT_THAT(reply.instances(), SizeIs(1));
  EXPECT_EQ(Prop(reply.instances()[0], "InstanceID").toMof(), "\"counting\"");
}

TEST_F(ProviderMacroTest, AThrowingStartupFailsEveryFactoryCallAndIsNotRetried) {
  cmpihost::CallScope scope(host());
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(FailingPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in FailingPlugin failed: no disks here");

  rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(FailingPlugin_Create_MethodMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in FailingPlugin failed: no disks here");
  EXPECT_EQ(FailingPlugin_Create_AssociationMI(scope.broker(), scope.context(), nullptr), nullptr);
  EXPECT_EQ(failingStarts, 1);

  // A non-standard exception is named as such.
  rc = {CMPI_RC_OK, nullptr};
  EXPECT_EQ(OddPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(MessageOf(rc), "Start-up of plug-in OddPlugin failed: unknown exception");
}

TEST_F(ProviderMacroTest, AHostRefusesAPluginWhoseStartupThrew) {
  cmpihost::MiFactories factories;
  factories.instance = FailingPlugin_Create_InstanceMI;
  factories.method = FailingPlugin_Create_MethodMI;
  factories.association = FailingPlugin_Create_AssociationMI;
  Serve("FailingPlugin", factories);
  try {
    host().activateProviders();
    ADD_FAILURE() << "the host took a plug-in whose start-up failed";
  } catch (const cmpihost::HostError& error) {
    EXPECT_THAT(error.what(), HasSubstr("Start-up of plug-in FailingPlugin failed: no disks here"));
  }
  EXPECT_EQ(failingStarts, 1);
}

TEST_F(ProviderMacroTest, AFactoryCalledFromInsideTheStartupReturnsAtOnce) {
  cmpihost::CallScope scope(host());
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  CMPIInstanceMI* instance = NestedPlugin_Create_InstanceMI(scope.broker(), scope.context(), &rc);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(nestedStarts, 1);
  EXPECT_EQ(nestedRc, CMPI_RC_OK);
  ASSERT_NE(nestedMethodMi, nullptr);
  EXPECT_EQ(NestedPlugin_Create_MethodMI(scope.broker(), scope.context(), nullptr), nestedMethodMi);
  EXPECT_EQ(nestedStarts, 1);
}

}  // namespace
}  // namespace diagcore_test
