#include "profile/ProfileHost.h"

#include <utility>

#include "plugin/DiagTestPlugin.h"
#include "support/ProviderHost.h"

namespace diagcore_test {

namespace {

const char* const kNameSpacePrefix = "root/cimv2:";

void RegisterProfilePlugin(cmpihost::Host& host) {
  cmpihost::MiFactories factories;
  factories.instance = ProfileTestPlugin_Create_InstanceMI;
  factories.method = ProfileTestPlugin_Create_MethodMI;
  factories.association = ProfileTestPlugin_Create_AssociationMI;
  const std::vector<std::string> associations = {diagtestplugin::kAvailabilityClass,
                                                 "PTP_ElementSettingData",
                                                 "PTP_ElementCapabilities",
                                                 "PTP_UseOfLog",
                                                 "PTP_LogManagesRecord",
                                                 "PTP_RecordAppliesToElement",
                                                 "PTP_OwningJobElement",
                                                 "PTP_AffectedJobElement"};

  cmpihost::ProviderRegistration served;
  served.providerName = "ProfileTestPlugin";
  served.classNames = {diagtestplugin::kServiceClass, diagtestplugin::kRecordClass,
                       diagtestplugin::kSettingClass, diagtestplugin::kCapabilitiesClass,
                       "PTP_DiagnosticLog",           "PTP_ConcreteJob"};
  served.classNames.insert(served.classNames.end(), associations.begin(), associations.end());
  served.instance = true;
  served.method = true;
  served.unloadNever = true;
  host.registerProvider(served, factories);

  cmpihost::ProviderRegistration navigable;
  navigable.providerName = "ProfileTestPlugin";
  navigable.classNames = associations;
  navigable.association = true;
  navigable.unloadNever = true;
  host.registerProvider(navigable, factories);
}

std::string KeyOf(const cmpihost::InstanceSnapshot& instance) {
  for (const char* key : {"InstanceID", "Name", "DeviceID"}) {
    const cmpihost::Value* value = instance.find(key);
    if (value != nullptr && !value->isNull()) {
      return value->text;
    }
  }
  return "?";
}

}  // namespace

profiletestplugin::StartOptions AllOn() {
  profiletestplugin::StartOptions options;
  options.profile.classes = NQENDRA20::ProfileClasses::WithPrefix("PTP");
  options.profile.retention = true;
  options.profile.runDiagnosticService = true;
  return options;
}

std::string SettingPath(const std::string& service) {
  return std::string(kNameSpacePrefix) + "DTP_DiagSettingData.InstanceID=\"DTP:Setting:" + service +
         "\"";
}

std::string CapabilitiesPath(const std::string& service) {
  return std::string(kNameSpacePrefix) +
         "DTP_DiagCapabilities.InstanceID=\"DTP:Capabilities:" + service + "\"";
}

std::string LogPath(const std::string& service) {
  return std::string(kNameSpacePrefix) +
         "PTP_DiagnosticLog.InstanceID=\"PTP_DiagnosticLog:" + service + "\"";
}

std::string ProfileRecordPath(const std::string& service, int run) {
  return RecordPath("DTP_DiagService:" + service + ":" + CimDateTime(FixedTime()) + ":" +
                    std::to_string(run));
}

std::string Summary(const cmpihost::InstanceSnapshot& instance) {
  return instance.className + ":" + KeyOf(instance);
}

ProfileTest::ProfileTest() {
  host().loadMof(SourcePath("tests/profile/profiletestplugin.mof"));
  RegisterProfilePlugin(host());
  SetClock(std::chrono::microseconds(0));
}

void ProfileTest::Start(const profiletestplugin::StartOptions& options) {
  profiletestplugin::NextStart() = options;
  host().activateProviders();
  host().clearLog();
}

void ProfileTest::SetClock(std::chrono::microseconds offset) {
  offsetMicros_ = offset.count();
  host().setClock([this] { return FixedTime() + std::chrono::microseconds(offsetMicros_.load()); });
}

cmpihost::Reply ProfileTest::Run(const std::string& service, const std::string& device) {
  return host().invokeMethod(
      ServicePath(service), "RunDiagnostic",
      {cmpihost::Argument{"ManagedElement", DevicePath(device), std::nullopt}});
}

cmpihost::Reply ProfileTest::RunService(const std::string& service, const std::string& device,
                                        std::vector<cmpihost::Argument> extra,
                                        std::vector<cmpihost::Property>* out) {
  std::vector<cmpihost::Argument> in = {
      cmpihost::Argument{"ManagedElement", DevicePath(device), std::nullopt}};
  in.insert(in.end(), extra.begin(), extra.end());
  return host().invokeMethod(ServicePath(service), "RunDiagnosticService", in, out);
}

std::vector<cmpihost::InstanceSnapshot> ProfileTest::Records() {
  return host().enumerateInstances("root/cimv2", diagtestplugin::kRecordClass).instances();
}

std::vector<std::string> ProfileTest::Enumerate(const std::string& className) {
  std::vector<std::string> summaries;
  for (const cmpihost::InstanceSnapshot& instance :
       host().enumerateInstances("root/cimv2", className).instances()) {
    summaries.push_back(Summary(instance));
  }
  return summaries;
}

std::vector<std::string> ProfileTest::Associators(const std::string& path,
                                                  const std::string& assocClass) {
  cmpihost::AssociationFilter filter;
  filter.assocClass = assocClass;
  std::vector<std::string> summaries;
  for (const cmpihost::InstanceSnapshot& instance : host().associators(path, filter).instances()) {
    summaries.push_back(Summary(instance));
  }
  return summaries;
}

std::vector<std::string> ProfileTest::References(const std::string& path,
                                                 const std::string& assocClass) {
  // A references request names the association class as its result class.
  cmpihost::AssociationFilter filter;
  filter.resultClass = assocClass;
  std::vector<std::string> classes;
  for (const cmpihost::InstanceSnapshot& instance : host().references(path, filter).instances()) {
    classes.push_back(instance.className);
  }
  return classes;
}

}  // namespace diagcore_test
