#include "diag/DiagHost.h"

#include <cstdio>
#include <ctime>

#include "plugin/DiagTestPlugin.h"

namespace diagcore_test {

namespace {

const char* const kNameSpacePrefix = "root/cimv2:";

}  // namespace

std::chrono::system_clock::time_point FixedTime() {
  return std::chrono::system_clock::from_time_t(1709618828);
}

std::string CimDateTime(std::chrono::system_clock::time_point when) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(
                          when - std::chrono::system_clock::from_time_t(seconds))
                          .count();
  std::tm local{};
  localtime_r(&seconds, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", &local);
  const long offset = local.tm_gmtoff / 60;
  char text[64];
  std::snprintf(text, sizeof text, "%s.%06ld%c%03ld", stamp, static_cast<long>(micros),
                offset < 0 ? '-' : '+', offset < 0 ? -offset : offset);
  return text;
}

ProviderHostOptions DiagHostOptions(bool servedByLibrary) {
  ProviderHostOptions options;
  options.projectSchema = true;
  options.mofFiles = {SourcePath("tests/plugin/diagtestplugin.mof")};
  if (servedByLibrary) {
    options.classes = {diagtestplugin::kServiceClass, diagtestplugin::kRecordClass,
                       diagtestplugin::kSettingClass, diagtestplugin::kCapabilitiesClass,
                       diagtestplugin::kAvailabilityClass};
  }
  return options;
}

void RegisterTestPlugin(cmpihost::Host& host) {
  cmpihost::MiFactories factories;
  factories.instance = DiagTestPlugin_Create_InstanceMI;
  factories.method = DiagTestPlugin_Create_MethodMI;
  factories.association = DiagTestPlugin_Create_AssociationMI;

  cmpihost::ProviderRegistration served;
  served.providerName = "DiagTestPlugin";
  served.classNames = {diagtestplugin::kServiceClass, diagtestplugin::kRecordClass,
                       diagtestplugin::kSettingClass, diagtestplugin::kCapabilitiesClass,
                       diagtestplugin::kAvailabilityClass};
  served.instance = true;
  served.method = true;
  served.unloadNever = true;
  host.registerProvider(served, factories);

  cmpihost::ProviderRegistration associations;
  associations.providerName = "DiagTestPlugin";
  associations.classNames = {diagtestplugin::kAvailabilityClass};
  associations.association = true;
  associations.unloadNever = true;
  host.registerProvider(associations, factories);
}

std::string ServiceText(const std::string& name) {
  return R"(DTP_DiagService.Name=")" + name +
         R"(",SystemCreationClassName="TORSK_ComputerSystem",SystemName="testhost.example",)"
         R"(CreationClassName="DTP_DiagService")";
}

std::string DeviceText(const std::string& deviceId) {
  return R"(DTP_Device.SystemCreationClassName="TORSK_ComputerSystem",)"
         R"(SystemName="testhost.example",CreationClassName="DTP_Device",DeviceID=")" +
         deviceId + "\"";
}

std::string AvailabilityText(const std::string& service, const std::string& deviceId) {
  return "DTP_AvailableDiagnosticService.ServiceProvided=\"//localhost/" + ServicePath(service) +
         "\",UserOfService=\"//localhost/" + DevicePath(deviceId) + "\"";
}

std::string ServicePath(const std::string& name) {
  return kNameSpacePrefix + ServiceText(name);
}

std::string DevicePath(const std::string& deviceId) {
  return kNameSpacePrefix + DeviceText(deviceId);
}

std::string RecordPath(const std::string& instanceId) {
  return std::string(kNameSpacePrefix) + "DTP_DiagServiceRecord.InstanceID=\"" + instanceId + "\"";
}

DiagHostTest::DiagHostTest(bool servedByLibrary) : provider_(DiagHostOptions(servedByLibrary)) {
  host().setClock([this] {
    const int call = clockCalls_++;
    return advancing_ ? FixedTime() + std::chrono::seconds(call) : FixedTime();
  });
}

void DiagHostTest::AdvanceClockPerCall() {
  clockCalls_ = 0;
  advancing_ = true;
}

std::vector<TraceLine> DiagHostTest::TakeTraces() {
  std::vector<TraceLine> lines = LibraryTraces(host());
  host().clearLog();
  return lines;
}

PluginHostTest::PluginHostTest() {
  RegisterTestPlugin(host());
  host().activateProviders();
}

cmpihost::Reply PluginHostTest::Run(const std::string& name, const std::string& element) {
  return host().invokeMethod(ServicePath(name), "RunDiagnostic",
                             {cmpihost::Argument{"ManagedElement", element, std::nullopt}});
}

std::vector<cmpihost::InstanceSnapshot> PluginHostTest::Records() {
  return host().enumerateInstances("root/cimv2", diagtestplugin::kRecordClass).instances();
}

const cmpihost::Value& Prop(const cmpihost::InstanceSnapshot& instance, const std::string& name) {
  static const cmpihost::Value missing;
  const cmpihost::Value* value = instance.find(name);
  if (value == nullptr) {
    ADD_FAILURE() << instance.className << " has no property " << name;
    return missing;
  }
  return *value;
}

void ExpectProperties(const cmpihost::InstanceSnapshot& instance,
                      const std::vector<Expected>& expected) {
  for (const Expected& property : expected) {
    const cmpihost::Value& value = Prop(instance, property.name);
    EXPECT_EQ(value.type, property.type) << property.name;
    EXPECT_EQ(value.toMof(), property.mof) << property.name;
  }
}

}  // namespace diagcore_test
