// The test plug-ins' start-up and their provider macro expansions.
#include "plugin/DiagTestPlugin.h"

#include <memory>
#include <utility>

#include "diagcore/AvailServiceFactory.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/InstanceRegistry.h"

namespace diagtestplugin {

const char* const kServiceClass = "DTP_DiagService";
const char* const kRecordClass = "DTP_DiagServiceRecord";
const char* const kSettingClass = "DTP_DiagSettingData";
const char* const kCapabilitiesClass = "DTP_DiagCapabilities";
const char* const kAvailabilityClass = "DTP_AvailableDiagnosticService";
const char* const kDeviceClass = "DTP_Device";

namespace {

constexpr unsigned int kFirstEnumOrder = 10;
constexpr unsigned int kEnumOrdersPerService = 100;
constexpr unsigned int kEnumOrderStep = 5;

std::mutex startedMutex;
std::vector<TestDiagService*>& Started() {
  static std::vector<TestDiagService*> started;
  return started;
}

// Hands `bag` to the registry; returns it, or null (and frees it) when the
// registry did not take it, which it shows by leaving the path text empty.
template <typename Bag>
Bag* Register(const CMPIBroker* broker, const CMPIContext* context, std::unique_ptr<Bag> bag) {
  Bag* raw = bag.get();
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, raw);
  if (raw->getObjectPath().empty()) {
    return nullptr;
  }
  static_cast<void>(bag.release());  // the registry's now
  return raw;
}

Behaviour Passing() {
  Behaviour behaviour;
  behaviour.outcome = Behaviour::Outcome::kPass;
  behaviour.loops = 3;
  return behaviour;
}

Behaviour Failing() {
  Behaviour behaviour;
  behaviour.outcome = Behaviour::Outcome::kFail;
  behaviour.result = 4;
  behaviour.loops = 2;
  behaviour.errorCode = "E042";
  behaviour.errorCount = 5;
  behaviour.text = "Sector 7 unreadable";
  return behaviour;
}

Behaviour Throwing() {
  Behaviour behaviour;
  behaviour.outcome = Behaviour::Outcome::kThrow;
  behaviour.text = "the test rig fell over";
  return behaviour;
}

// A setting data that says nothing about how long results are kept.
class SilentSetting : public NQENDRA20::InstanceImpl {
 public:
  explicit SilentSetting(const std::string& name) : InstanceImpl(kSettingClass) {
    (*this)["InstanceID"] = "DTP:Setting:" + name;
    (*this)["ElementName"] = "Silent setting of " + name;
  }
  void init() override {}
};

// The DMTF key of the setting data and the capabilities is InstanceID, whose
// default is the same for every service: each service's own text keeps them
// apart in the registry.
std::unique_ptr<NQENDRA20::InstanceImpl> SettingFor(const std::string& name,
                                                    const std::optional<std::string>& persistence) {
  if (!persistence) {
    return std::make_unique<SilentSetting>(name);
  }
  auto setting = std::make_unique<NQENDRA20::DiagServiceSettingData>(kSettingClass);
  (*setting)["InstanceID"] = "DTP:Setting:" + name;
  (*setting)["ResultPersistence"] = *persistence;
  return setting;
}

std::string offerAnswers;

void Start(const CMPIBroker* broker, const CMPIContext* context,
           const profiletestplugin::StartOptions& options) {
  unsigned int count = 0;
  const std::unique_ptr<NQENDRA20::DiagService*[]> created(
      TestServiceFactory().CreateServices(broker, context, count));
  std::vector<std::unique_ptr<NQENDRA20::DiagService>> services;
  for (unsigned int i = 0; i < count; ++i) {
    services.emplace_back(created[i]);
  }

  NQENDRA20::AvailServiceFactory availability;
  unsigned int firstEnumOrder = kFirstEnumOrder;
  for (std::unique_ptr<NQENDRA20::DiagService>& owned : services) {
    const std::string name = (*owned)["Name"];
    NQENDRA20::DiagService* service = Register(broker, context, std::move(owned));
    if (service == nullptr) {
      continue;
    }
    {
      const std::lock_guard<std::mutex> lock(startedMutex);
      Started().push_back(static_cast<TestDiagService*>(service));
    }
    NQENDRA20::InstanceImpl* setting =
        Register(broker, context, SettingFor(name, options.resultPersistence));
    auto capabilities =
        std::make_unique<NQENDRA20::DiagServiceCapabilitiesData>(kCapabilitiesClass);
    (*capabilities)["InstanceID"] = "DTP:Capabilities:" + name;
    NQENDRA20::InstanceImpl* capabilitiesData = Register(broker, context, std::move(capabilities));

    availability.CreateAvailableServices(broker, context, service, kDeviceClass, kAvailabilityClass,
                                         firstEnumOrder, kEnumOrderStep);
    firstEnumOrder += kEnumOrdersPerService;
    if (options.offer) {
      offerAnswers += NQENDRA20::OfferDiagnosticsProfile(broker, context, service, setting,
                                                         capabilitiesData, options.profile)
                          ? "1"
                          : "0";
    }
  }
}

void StartProfileTestPlugin(const CMPIBroker* broker, const CMPIContext* context) {
  Start(broker, context, profiletestplugin::NextStart());
}

}  // namespace

NQENDRA20::DiagService** TestServiceFactory::CreateServicesImpl(std::string dateTime,
                                                                std::string systemName,
                                                                unsigned int& serviceCount) {
  auto services = std::make_unique<NQENDRA20::DiagService*[]>(3);
  services[0] = new TestDiagService("Passing", "Passing test", Passing(), dateTime, systemName);
  services[1] = new TestDiagService("Failing", "Failing test", Failing(), dateTime, systemName);
  services[2] = new TestDiagService("Throwing", "Throwing test", Throwing(), dateTime, systemName);
  serviceCount = 3;
  return services.release();
}

void StartDiagTestPlugin(const CMPIBroker* broker, const CMPIContext* context) {
  profiletestplugin::StartOptions options;
  options.offer = false;
  Start(broker, context, options);
}

std::vector<TestDiagService*> StartedServices() {
  const std::lock_guard<std::mutex> lock(startedMutex);
  return Started();
}

TestDiagService* StartedService(const std::string& name) {
  for (TestDiagService* service : StartedServices()) {
    const auto found = service->find("Name");
    if (found != service->end() && found->second == name) {
      return service;
    }
  }
  return nullptr;
}

}  // namespace diagtestplugin

namespace profiletestplugin {

StartOptions& NextStart() {
  static StartOptions options;
  return options;
}

std::string OfferAnswers() {
  return diagtestplugin::offerAnswers;
}

}  // namespace profiletestplugin

DIAGCORE_PROVIDER(DiagTestPlugin, diagtestplugin::StartDiagTestPlugin);
DIAGCORE_CIM_PROVIDER(ProfileTestPlugin, diagtestplugin::StartProfileTestPlugin);
