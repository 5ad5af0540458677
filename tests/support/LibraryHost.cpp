#include "support/LibraryHost.h"

#include <cstdio>
#include <ctime>
#include <iostream>

#include "cmpihost/CallScope.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "diagcore/InstanceRegistry.h"

namespace diagcore_test {

namespace {

const char* const kNameSpacePrefix = "root/cimv2:";

// The in-process MI tables pass the broker the host created them with, then
// the call's own arguments, to the library's functions (the library defines
// no MI factory of its own).
std::atomic<const CMPIBroker*> miBroker{nullptr};

const CMPIBroker* Broker() {
  return miBroker.load();
}

CMPIStatus InstanceCleanup(CMPIInstanceMI* mi, const CMPIContext* ctx, CMPIBoolean terminating) {
  return DiagServiceProviderCommonCleanup(Broker(), mi, ctx, terminating);
}
CMPIStatus EnumInstanceNames(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                             const CMPIObjectPath* ref) {
  return DiagServiceProviderCommonEnumInstanceNames(Broker(), mi, ctx, rslt, ref);
}
CMPIStatus EnumInstances(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                         const CMPIObjectPath* ref, const char** properties) {
  return DiagServiceProviderCommonEnumInstances(Broker(), mi, ctx, rslt, ref, properties);
}
CMPIStatus GetInstance(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                       const CMPIObjectPath* path, const char** properties) {
  return DiagServiceProviderCommonGetInstance(Broker(), mi, ctx, rslt, path, properties);
}
CMPIStatus CreateInstance(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                          const CMPIObjectPath* path, const CMPIInstance* inst) {
  return DiagServiceProviderCommonCreateInstance(Broker(), mi, ctx, rslt, path, inst);
}
CMPIStatus ModifyInstance(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                          const CMPIObjectPath* path, const CMPIInstance* inst,
                          const char** properties) {
  return DiagServiceProviderCommonModifyInstance(Broker(), mi, ctx, rslt, path, inst, properties);
}
CMPIStatus DeleteInstance(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                          const CMPIObjectPath* path) {
  return DiagServiceProviderCommonDeleteInstance(Broker(), mi, ctx, rslt, path);
}
CMPIStatus ExecQuery(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                     const CMPIObjectPath* ref, const char* query, const char* language) {
  return DiagServiceProviderCommonExecQuery(Broker(), mi, ctx, rslt, ref, query, language);
}
CMPIInstanceMIFT instanceTable = {CMPICurrentVersion, CMPICurrentVersion, "instanceDiagcoreTest",
                                  InstanceCleanup,    EnumInstanceNames,  EnumInstances,
                                  GetInstance,        CreateInstance,     ModifyInstance,
                                  DeleteInstance,     ExecQuery};
CMPIInstanceMI instanceMi = {nullptr, &instanceTable};

CMPIStatus MethodCleanup(CMPIMethodMI* mi, const CMPIContext* ctx, CMPIBoolean terminating) {
  return DiagServiceProviderCommonMethodCleanup(Broker(), mi, ctx, terminating);
}
CMPIStatus InvokeMethod(CMPIMethodMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                        const CMPIObjectPath* path, const char* method, const CMPIArgs* in,
                        CMPIArgs* out) {
  return DiagServiceProviderCommonInvokeMethod(Broker(), mi, ctx, rslt, path, method, in, out);
}
CMPIMethodMIFT methodTable = {CMPICurrentVersion, CMPICurrentVersion, "methodDiagcoreTest",
                              MethodCleanup, InvokeMethod};
CMPIMethodMI methodMi = {nullptr, &methodTable};

template <typename MI>
MI* Created(MI* mi, const CMPIBroker* broker, CMPIStatus* rc) {
  miBroker.store(broker);
  if (rc != nullptr) {
    *rc = {CMPI_RC_OK, nullptr};
  }
  return mi;
}

CMPIInstanceMI* CreateInstanceMI(const CMPIBroker* broker, const CMPIContext* /*ctx*/,
                                 CMPIStatus* rc) {
  return Created(&instanceMi, broker, rc);
}

CMPIMethodMI* CreateMethodMI(const CMPIBroker* broker, const CMPIContext* /*ctx*/, CMPIStatus* rc) {
  return Created(&methodMi, broker, rc);
}

// Registers `factories` for `served` (instance and method) and for
// `associations` (association, and instance and method too).
void RegisterPlugin(cmpihost::Host& host, const std::string& name,
                    const cmpihost::MiFactories& factories, std::vector<std::string> served,
                    const std::vector<std::string>& associations) {
  served.insert(served.end(), associations.begin(), associations.end());
  cmpihost::ProviderRegistration registration;
  registration.providerName = name;
  registration.classNames = served;
  registration.instance = true;
  registration.method = true;
  registration.unloadNever = true;
  host.registerProvider(registration, factories);
  cmpihost::ProviderRegistration navigable;
  navigable.providerName = name;
  navigable.classNames = associations;
  navigable.association = true;
  navigable.unloadNever = true;
  host.registerProvider(navigable, factories);
}

std::vector<std::string> PluginClasses() {
  return {diagtestplugin::kServiceClass, diagtestplugin::kRecordClass,
          diagtestplugin::kSettingClass, diagtestplugin::kCapabilitiesClass};
}

}  // namespace

std::string SourcePath(const std::string& relative) {
  return std::string(DIAGCORE_SOURCE_DIR) + "/" + relative;
}

std::string CoreData(const std::string& file) {
  return SourcePath("tests/core/data/" + file);
}

bool operator==(const TraceLine& a, const TraceLine& b) {
  return a.severity == b.severity && a.text == b.text;
}

void PrintTo(const TraceLine& line, std::ostream* out) {
  *out << line.severity << " '" << line.text << "'";
}

std::vector<TraceLine> LibraryTraces(const cmpihost::Host& host) {
  std::vector<TraceLine> lines;
  for (const cmpihost::LogRecord& record : host.logRecords()) {
    if (record.id == "diagcore") {
      const bool isLog = record.kind == cmpihost::LogRecord::Kind::kLog;
      lines.push_back({isLog ? record.severity : -1, record.text});
    }
  }
  return lines;
}

TraceLine Debug(std::string text) {
  return {kDebug, std::move(text)};
}

TraceLine Warning(std::string text) {
  return {kWarning, std::move(text)};
}

std::vector<TraceLine> Repeat(const std::vector<TraceLine>& lines, int times) {
  std::vector<TraceLine> out;
  for (int i = 0; i < times; ++i) {
    out.insert(out.end(), lines.begin(), lines.end());
  }
  return out;
}

std::vector<TraceLine> Concat(std::vector<TraceLine> a, const std::vector<TraceLine>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TestBag::TestBag(std::string className, PropertyList properties)
    : NQENDRA20::InstanceImpl(std::move(className)) {
  for (const auto& property : properties) {
    (*this)[property.first] = property.second;
  }
}

void TestBag::init() {}

MethodBag::MethodBag(std::string className, PropertyList properties, Method method)
    : TestBag(std::move(className), properties), method_(std::move(method)) {}

CMPIStatus MethodBag::invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                                   const CMPIResult* result, const CMPIObjectPath* path,
                                   std::string methodName, const CMPIArgs* /*in*/,
                                   CMPIArgs* /*out*/) {
  calls_.fetch_add(1);
  return method_(MethodCall{broker, context, result, path, methodName});
}

TestBag* NewElement(const std::string& deviceId, PropertyList extra) {
  TestBag* bag = NewBag(std::string("DCT_Element"), extra);
  (*bag)["CreationClassName"] = "DCT_Element";
  (*bag)["DeviceID"] = deviceId;
  return bag;
}

std::string ElementText(const std::string& deviceId) {
  return R"(DCT_Element.CreationClassName="DCT_Element",DeviceID=")" + deviceId + "\"";
}

StdoutCapture::StdoutCapture() : saved_(std::cout.rdbuf(buffer_.rdbuf())) {}

StdoutCapture::~StdoutCapture() {
  std::cout.rdbuf(saved_);
}

ProviderHostOptions CoreHostOptions(bool withSystem) {
  ProviderHostOptions options;
  options.mofFiles = {CoreData("qualifiers.mof"), CoreData("core.mof")};
  if (withSystem) {
    options.mofFiles.push_back(CoreData("system.mof"));
  }
  options.classes = {"DCT_Element", "DCT_AllTypes", "DCT_Link", "DCT_NumberKey", "DCT_NarrowOrder"};
  return options;
}

ProviderHostOptions DiagHostOptions(bool servedByLibrary) {
  ProviderHostOptions options;
  options.projectSchema = true;
  options.mofFiles = {SourcePath("tests/plugin/diagtestplugin.mof")};
  if (servedByLibrary) {
    options.classes = PluginClasses();
    options.classes.emplace_back(diagtestplugin::kAvailabilityClass);
  }
  return options;
}

ProviderHost::ProviderHost(const ProviderHostOptions& options)
    : host_(std::make_unique<cmpihost::Host>()) {
  if (options.logBound > 0) {
    host_->captureLog(true, options.logBound);
  }
  if (options.projectSchema) {
    host_->loadMof(SourcePath("schema/diagcore.mof"), options.nameSpace);
  }
  for (const std::string& file : options.mofFiles) {
    host_->loadMof(file, options.nameSpace);
  }
  if (!options.classes.empty()) {
    cmpihost::ProviderRegistration registration;
    registration.providerName = "DiagcoreTest";
    registration.classNames = options.classes;
    registration.nameSpace = options.nameSpace;
    registration.instance = true;
    registration.method = true;
    registration.unloadNever = true;
    cmpihost::MiFactories factories;
    factories.instance = CreateInstanceMI;
    factories.method = CreateMethodMI;
    host_->registerProvider(registration, factories);
    host_->activateProviders();
  }
}

void RegisterInScope(cmpihost::Host& host, NQENDRA20::InstanceImpl* bag) {
  cmpihost::CallScope scope(host);
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(scope.broker(), scope.context(), bag);
}

void RegisterTestPlugin(cmpihost::Host& host) {
  cmpihost::MiFactories factories;
  factories.instance = DiagTestPlugin_Create_InstanceMI;
  factories.method = DiagTestPlugin_Create_MethodMI;
  factories.association = DiagTestPlugin_Create_AssociationMI;
  RegisterPlugin(host, "DiagTestPlugin", factories, PluginClasses(),
                 {diagtestplugin::kAvailabilityClass});
}

void RegisterProfilePlugin(cmpihost::Host& host) {
  cmpihost::MiFactories factories;
  factories.instance = ProfileTestPlugin_Create_InstanceMI;
  factories.method = ProfileTestPlugin_Create_MethodMI;
  factories.association = ProfileTestPlugin_Create_AssociationMI;
  std::vector<std::string> served = PluginClasses();
  served.insert(served.end(), {"PTP_DiagnosticLog", "PTP_ConcreteJob"});
  RegisterPlugin(host, "ProfileTestPlugin", factories, served,
                 {diagtestplugin::kAvailabilityClass, "PTP_ElementSettingData",
                  "PTP_ElementCapabilities", "PTP_UseOfLog", "PTP_LogManagesRecord",
                  "PTP_RecordAppliesToElement", "PTP_OwningJobElement", "PTP_AffectedJobElement"});
}

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

std::string ClassAndKey(const cmpihost::InstanceSnapshot& instance) {
  for (const char* key : {"InstanceID", "Name", "DeviceID"}) {
    const cmpihost::Value* value = instance.find(key);
    if (value != nullptr && !value->isNull()) {
      return instance.className + ":" + value->text;
    }
  }
  return instance.className + ":?";
}

std::vector<cmpihost::ResultEvent::Kind> Kinds(const cmpihost::Reply& reply) {
  std::vector<cmpihost::ResultEvent::Kind> kinds;
  for (const cmpihost::ResultEvent& event : reply.events) {
    kinds.push_back(event.kind);
  }
  return kinds;
}

std::vector<TraceLine> LibraryHostTest::TakeTraces() {
  std::vector<TraceLine> lines = LibraryTraces(host());
  host().clearLog();
  return lines;
}

DiagHostTest::DiagHostTest(bool servedByLibrary)
    : LibraryHostTest(DiagHostOptions(servedByLibrary)) {
  host().setClock([this] {
    const int call = clockCalls_++;
    return FixedTime() + std::chrono::microseconds(offsetMicros_.load()) +
           (advancing_ ? std::chrono::seconds(call) : std::chrono::seconds(0));
  });
}

void DiagHostTest::AdvanceClockPerCall() {
  clockCalls_ = 0;
  advancing_ = true;
}

void DiagHostTest::SetClock(std::chrono::microseconds offset) {
  offsetMicros_ = offset.count();
}

cmpihost::Reply DiagHostTest::Run(const std::string& name, const std::string& element) {
  return host().invokeMethod(ServicePath(name), "RunDiagnostic",
                             {cmpihost::Argument{"ManagedElement", element, std::nullopt}});
}

std::vector<cmpihost::InstanceSnapshot> DiagHostTest::Records() {
  return host().enumerateInstances("root/cimv2", diagtestplugin::kRecordClass).instances();
}

PluginHostTest::PluginHostTest() {
  RegisterTestPlugin(host());
  host().activateProviders();
}

namespace {

RecordingBroker* current = nullptr;

std::string ClassOf(const CMPIObjectPath* path) {
  const CMPIString* name = path->ft->getClassName(path, nullptr);
  return name != nullptr ? name->ft->getCharPtr(name, nullptr) : "";
}

}  // namespace

RecordingBroker::RecordingBroker(const CMPIBroker* real)
    : real_(real), bft_(*real->bft), eft_(*real->eft), broker_(*real) {
  bft_.enumerateInstances = EnumerateInstances;
  eft_.newDateTime = NewDateTime;
  eft_.newObjectPath = NewObjectPath;
  broker_.bft = &bft_;
  broker_.eft = &eft_;
  current = this;
}

RecordingBroker::~RecordingBroker() {
  current = nullptr;
}

CMPIDateTime* RecordingBroker::NewDateTime(const CMPIBroker* /*broker*/, CMPIStatus* rc) {
  current->calls.emplace_back("newDateTime");
  return current->real_->eft->newDateTime(current->real_, rc);
}

CMPIObjectPath* RecordingBroker::NewObjectPath(const CMPIBroker* /*broker*/, const char* nameSpace,
                                               const char* className, CMPIStatus* rc) {
  current->calls.push_back(std::string("newObjectPath ") + className);
  return current->real_->eft->newObjectPath(current->real_, nameSpace, className, rc);
}

CMPIEnumeration* RecordingBroker::EnumerateInstances(const CMPIBroker* /*broker*/,
                                                     const CMPIContext* context,
                                                     const CMPIObjectPath* path,
                                                     const char** properties, CMPIStatus* rc) {
  current->calls.push_back("enumerateInstances " + ClassOf(path));
  if (current->enumerate) {
    return current->enumerate(path, rc);
  }
  return current->real_->bft->enumerateInstances(current->real_, context, path, properties, rc);
}

}  // namespace diagcore_test
