#include "diagcore/DiagnosticsProfile.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "core/Trace.h"
#include "diag/PlainBag.h"
#include "diag/ServiceProfile.h"
#include "diagcore/InstanceRegistry.h"
#include "diagcore/UseOfLog.h"

namespace NQENDRA20 {

namespace {

using Profiles = std::map<const DiagService*, std::shared_ptr<const ServiceProfile>>;

std::mutex profilesMutex;
// Read by every run of every service: while no service has a profile, no
// run takes the lock.
std::atomic<bool> anyProfile{false};

Profiles& TheProfiles() {
  static auto* const profiles = new Profiles();
  return *profiles;
}

// The first class the options need but do not name, or "".
std::string MissingClass(const ProfileOptions& options) {
  const ProfileClasses& classes = options.classes;
  std::vector<std::pair<const char*, const std::string*>> needed = {
      {"elementSettingData", &classes.elementSettingData},
      {"elementCapabilities", &classes.elementCapabilities},
      {"log", &classes.log},
      {"useOfLog", &classes.useOfLog},
      {"logManagesRecord", &classes.logManagesRecord},
      {"recordAppliesToElement", &classes.recordAppliesToElement}};
  if (options.runDiagnosticService) {
    needed.insert(needed.end(), {{"job", &classes.job},
                                 {"owningJobElement", &classes.owningJobElement},
                                 {"affectedJobElement", &classes.affectedJobElement}});
  }
  for (const auto& [field, name] : needed) {
    if (name->empty()) {
      return std::string("no class is named for ") + field;
    }
  }
  return "";
}

bool Registered(const InstanceImpl* bag) {
  return bag != nullptr && !bag->getObjectPath().empty();
}

// Why the profile cannot be offered, or "".
std::string WhyNot(const DiagService* service, const InstanceImpl* settingData,
                   const InstanceImpl* capabilities, const ProfileOptions& options) {
  if (!Registered(service)) {
    return "the service is not registered";
  }
  if (!Registered(settingData)) {
    return "its setting data is not registered";
  }
  if (!Registered(capabilities)) {
    return "its capabilities are not registered";
  }
  return MissingClass(options);
}

bool Refuse(const CMPIBroker* broker, const DiagService* service, const std::string& reason) {
  Trace(broker, CMPI_SEV_WARNING,
        "OfferDiagnosticsProfile: " + reason + "; " +
            (service != nullptr ? service->getObjectPath() : std::string("a null service")) +
            " runs without the profile");
  return false;
}

std::string ServiceName(const DiagService& service) {
  const auto name = service.find("Name");
  return name != service.end() ? name->second : "";
}

// The log and the associations that tie the service to its setting data,
// capabilities and log, filed at once; the log's path text, or "" when one
// of them could not be built (then none is registered).
std::string RegisterServiceObjects(const CMPIBroker* broker, const CMPIContext* context,
                                   const DiagService& service, const InstanceImpl& settingData,
                                   const InstanceImpl& capabilities,
                                   const ProfileOptions& options) {
  const ProfileClasses& classes = options.classes;
  const std::string servicePath = service.getObjectPath();
  InstanceRegistry::Batch batch;
  auto log = NewBag(classes.log, {{"InstanceID", classes.log + ":" + ServiceName(service)},
                                  {"ElementName", "Log of " + ServiceName(service)},
                                  {"EnabledState", "2"},
                                  {"LogState", "2"},
                                  {"OverwritePolicy", options.recordBound != 0 ? "2" : "7"}});
  if (options.recordBound != 0) {
    (*log)["MaxNumberOfRecords"] = std::to_string(options.recordBound);
  }
  std::string logPath = batch.Add(broker, context, std::move(log)).pathText;
  auto useOfLog = std::make_unique<UseOfLog>(classes.useOfLog);
  (*useOfLog)["Antecedent"] = logPath;
  (*useOfLog)["Dependent"] = servicePath;
  const bool built =
      !logPath.empty() && !batch.Add(broker, context, std::move(useOfLog)).pathText.empty() &&
      !batch
           .Add(broker, context,
                NewBag(classes.elementSettingData, {{"ManagedElement", servicePath},
                                                    {"SettingData", settingData.getObjectPath()},
                                                    {"IsDefault", "1"},
                                                    {"IsCurrent", "1"}}))
           .pathText.empty() &&
      !batch
           .Add(broker, context,
                NewBag(classes.elementCapabilities, {{"ManagedElement", servicePath},
                                                     {"Capabilities", capabilities.getObjectPath()},
                                                     {"Characteristics", "2"}}))
           .pathText.empty();
  if (!built) {
    return "";
  }
  InstanceRegistry::Singleton()->Register(broker, batch, InstanceRegistry::Lifetime());
  return logPath;
}

}  // namespace

ProfileClasses ProfileClasses::WithPrefix(const std::string& prefix) {
  const std::string p = prefix + "_";
  return ProfileClasses{
      p + "ElementSettingData", p + "ElementCapabilities", p + "DiagnosticLog",
      p + "UseOfLog",           p + "LogManagesRecord",    p + "RecordAppliesToElement",
      p + "ConcreteJob",        p + "OwningJobElement",    p + "AffectedJobElement"};
}

std::shared_ptr<const ServiceProfile> ProfileOf(const DiagService* service) {
  if (!anyProfile.load(std::memory_order_acquire)) {
    return nullptr;
  }
  const std::lock_guard<std::mutex> lock(profilesMutex);
  const auto found = TheProfiles().find(service);
  return found != TheProfiles().end() ? found->second : nullptr;
}

bool AttachProfile(const DiagService* service, std::shared_ptr<const ServiceProfile> profile) {
  const std::lock_guard<std::mutex> lock(profilesMutex);
  const bool attached = TheProfiles().emplace(service, std::move(profile)).second;
  anyProfile.store(true, std::memory_order_release);
  return attached;
}

bool OfferDiagnosticsProfile(const CMPIBroker* broker, const CMPIContext* context,
                             DiagService* service, InstanceImpl* settingData,
                             InstanceImpl* capabilities, const ProfileOptions& options) {
  const std::string reason = WhyNot(service, settingData, capabilities, options);
  if (!reason.empty()) {
    return Refuse(broker, service, reason);
  }
  if (ProfileOf(service) != nullptr) {
    return Refuse(broker, service, "the service was offered the profile before");
  }
  auto profile = std::make_shared<ServiceProfile>();
  profile->options = options;
  profile->servicePathText = service->getObjectPath();
  profile->settingData = settingData;
  profile->logPathText =
      RegisterServiceObjects(broker, context, *service, *settingData, *capabilities, options);
  if (profile->logPathText.empty()) {
    return Refuse(broker, service, "its log or an association could not be built");
  }
  return AttachProfile(service, std::move(profile)) ||
         Refuse(broker, service, "the service was offered the profile before");
}

}  // namespace NQENDRA20
