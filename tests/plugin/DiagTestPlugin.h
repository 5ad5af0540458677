// The test plug-in: diagnostic services whose test does what a test tells it
// (return a value, pass, fail or throw), with their setting data,
// capabilities and availability associations, served through
// DIAGCORE_PROVIDER(DiagTestPlugin, StartDiagTestPlugin). Its classes are in
// diagtestplugin.mof; diagtestplugin.reg registers libdiagtestplugin.so.
//
// The same services, each offered the Diagnostics Profile with the options a
// test chose before the first request, are served through
// DIAGCORE_CIM_PROVIDER(ProfileTestPlugin, ...); its profile classes (prefix
// PTP) are in tests/profile/profiletestplugin.mof.
#ifndef DIAGCORE_TESTS_PLUGIN_DIAGTESTPLUGIN_H_
#define DIAGCORE_TESTS_PLUGIN_DIAGTESTPLUGIN_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "diagcore/DiagService.h"
#include "diagcore/DiagnosticRecord.h"
#include "diagcore/DiagnosticsProfile.h"
#include "diagcore/InstanceImpl.h"
#include "diagcore/ServiceFactory.h"

namespace diagtestplugin {

extern const char* const kServiceClass;       // "DTP_DiagService"
extern const char* const kRecordClass;        // "DTP_DiagServiceRecord"
extern const char* const kSettingClass;       // "DTP_DiagSettingData"
extern const char* const kCapabilitiesClass;  // "DTP_DiagCapabilities"
extern const char* const kAvailabilityClass;  // "DTP_AvailableDiagnosticService"
extern const char* const kDeviceClass;        // "DTP_Device", the tested elements

// What a service's test does.
struct Behaviour {
  enum class Outcome { kPass, kFail, kThrow };
  Outcome outcome = Outcome::kPass;
  unsigned int result = 0;      // returned to the client
  unsigned int loops = 1;       // to pass() or fail()
  std::string errorCode;        // to fail()
  unsigned int errorCount = 0;  // to fail()
  std::string text;             // fail(): the record data; kThrow: the exception's text
};

// What one run's test was handed.
struct TestRun {
  std::string elementClass;
  std::map<std::string, std::string> element;
  std::map<std::string, std::string> record;  // as the test found it
};

class TestDiagService : public NQENDRA20::DiagService {
 public:
  // A service named `name` whose record data texts start from `caption`.
  TestDiagService(const std::string& name, const std::string& caption, Behaviour behaviour,
                  std::string installDate, std::string systemName);

  unsigned int runTest(NQENDRA20::InstanceImpl& managedElement,
                       NQENDRA20::DiagnosticRecord* record) override;

  void setBehaviour(const Behaviour& behaviour);
  std::vector<TestRun> runs() const;

 private:
  mutable std::mutex mutex_;
  Behaviour behaviour_;
  std::vector<TestRun> runs_;
};

// Creates "Passing" (pass(3), returns 0), "Failing" (fail(2, "E042", 5,
// "Sector 7 unreadable"), returns 4) and "Throwing" (throws
// std::runtime_error "the test rig fell over"), in that order.
class TestServiceFactory : public NQENDRA20::ServiceFactory {
 public:
  NQENDRA20::DiagService** CreateServicesImpl(std::string dateTime, std::string systemName,
                                              unsigned int& serviceCount) override;
};

// The plug-in's start-up: registers each service, a setting data and a
// capabilities object for it (InstanceID "DTP:Setting:<Name>" and
// "DTP:Capabilities:<Name>"), and its availability to every DTP_Device,
// numbered from 10 + 100 * (its index) by 5.
void StartDiagTestPlugin(const CMPIBroker* broker, const CMPIContext* context);

// The services the start-up registered, in creation order (the registry's).
std::vector<TestDiagService*> StartedServices();
// The one named `name`, or null.
TestDiagService* StartedService(const std::string& name);

}  // namespace diagtestplugin

namespace profiletestplugin {

struct StartOptions {
  NQENDRA20::ProfileOptions profile;
  // The setting data's ResultPersistence text; nullopt: the property is absent.
  std::optional<std::string> resultPersistence = "900";
  // Whether the start-up offers the profile at all.
  bool offer = true;
};

// Read by the next start-up; set it before the first request.
StartOptions& NextStart();

// What OfferDiagnosticsProfile answered for each service, in order.
std::string OfferAnswers();

}  // namespace profiletestplugin

// The factories DIAGCORE_PROVIDER and DIAGCORE_CIM_PROVIDER define.
#define DTP_DECLARE_FACTORIES(Name)                                                             \
  CMPI_EXTERN_C CMPIInstanceMI* Name##_Create_InstanceMI(const CMPIBroker*, const CMPIContext*, \
                                                         CMPIStatus*);                          \
  CMPI_EXTERN_C CMPIMethodMI* Name##_Create_MethodMI(const CMPIBroker*, const CMPIContext*,     \
                                                     CMPIStatus*);                              \
  CMPI_EXTERN_C CMPIAssociationMI* Name##_Create_AssociationMI(const CMPIBroker*,               \
                                                               const CMPIContext*, CMPIStatus*);

DTP_DECLARE_FACTORIES(DiagTestPlugin)
DTP_DECLARE_FACTORIES(ProfileTestPlugin)

#endif  // DIAGCORE_TESTS_PLUGIN_DIAGTESTPLUGIN_H_
