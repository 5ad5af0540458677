#include "profile/ProfileTestPlugin.h"

#include <memory>
#include <utility>
#include <vector>

#include "diagcore/AvailServiceFactory.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/InstanceRegistry.h"
#include "plugin/DiagTestPlugin.h"

namespace profiletestplugin {

namespace {

std::string answers;

// A setting data that says nothing about how long results are kept.
class SilentSetting : public NQENDRA20::InstanceImpl {
 public:
  explicit SilentSetting(const std::string& name) : InstanceImpl(diagtestplugin::kSettingClass) {
    (*this)["InstanceID"] = "DTP:Setting:" + name;
    (*this)["ElementName"] = "Silent setting of " + name;
  }
  void init() override {}
};

std::unique_ptr<NQENDRA20::InstanceImpl> SettingFor(const std::string& name,
                                                    const std::optional<std::string>& persistence) {
  if (!persistence) {
    return std::make_unique<SilentSetting>(name);
  }
  auto setting = std::make_unique<NQENDRA20::DiagServiceSettingData>(diagtestplugin::kSettingClass);
  (*setting)["InstanceID"] = "DTP:Setting:" + name;
  (*setting)["ResultPersistence"] = *persistence;
  return setting;
}

// Hands `bag` to the registry and returns it (the registry's from now on).
template <typename Bag>
Bag* Register(const CMPIBroker* broker, const CMPIContext* context, std::unique_ptr<Bag> bag) {
  Bag* raw = bag.release();
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, raw);
  return raw;
}

void Start(const CMPIBroker* broker, const CMPIContext* context) {
  const StartOptions& options = NextStart();
  unsigned int count = 0;
  const std::unique_ptr<NQENDRA20::DiagService*[]> created(
      diagtestplugin::TestServiceFactory().CreateServices(broker, context, count));
  NQENDRA20::AvailServiceFactory availability;
  for (unsigned int i = 0; i < count; ++i) {
    NQENDRA20::DiagService* service =
        Register(broker, context, std::unique_ptr<NQENDRA20::DiagService>(created[i]));
    const std::string name = (*service)["Name"];
    NQENDRA20::InstanceImpl* settingData =
        Register(broker, context, SettingFor(name, options.resultPersistence));
    auto capabilities = std::make_unique<NQENDRA20::DiagServiceCapabilitiesData>(
        diagtestplugin::kCapabilitiesClass);
    (*capabilities)["InstanceID"] = "DTP:Capabilities:" + name;
    NQENDRA20::InstanceImpl* capabilitiesData = Register(broker, context, std::move(capabilities));
    availability.CreateAvailableServices(broker, context, service, diagtestplugin::kDeviceClass,
                                         diagtestplugin::kAvailabilityClass, 10 + 100 * i, 5);
    if (options.offer) {
      answers += NQENDRA20::OfferDiagnosticsProfile(broker, context, service, settingData,
                                                    capabilitiesData, options.profile)
                     ? "1"
                     : "0";
    }
  }
}

}  // namespace

StartOptions& NextStart() {
  static StartOptions options;
  return options;
}

std::string OfferAnswers() {
  return answers;
}

}  // namespace profiletestplugin

DIAGCORE_CIM_PROVIDER(ProfileTestPlugin, profiletestplugin::Start);
