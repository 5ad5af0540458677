#include "bench/BenchHost.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <utility>

#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagService.h"
#include "diagcore/InstanceRegistry.h"

namespace bench {

const char* const kNameSpace = "root/cimv2";
const char* const kBaselineNameSpace = "root/baseline";
const char* const kServiceClass = "BENCH_DiagService";
const char* const kDeviceClass = "BENCH_Device";

namespace {

const char* const kSystemName = "bench.example";
const char* const kServiceName = "Bench";
const char* const kRunRecordClass = "BENCH_RunRecord";

// 2024-03-05 06:07:08 UTC.
constexpr std::time_t kBaseTime = 1709618828;

// The service whose test does nothing: what RunDiagnostic costs around a test.
class IdleService : public NQENDRA20::DiagService {
 public:
  IdleService(const std::string& className, const std::string& recordClassName,
              const std::string& name)
      : DiagService(className, recordClassName, "", DateTimeText(0), kSystemName) {
    (*this)["Name"] = name;
    (*this)["Caption"] = "Bench test";
    (*this)["Description"] = "Bench test that does nothing";
    (*this)["ElementName"] = "Bench diagnostic";
  }
  unsigned int runTest(NQENDRA20::InstanceImpl& /*element*/,
                       NQENDRA20::DiagnosticRecord* /*record*/) override {
    return 0;
  }
};

void RegisterBag(const CMPIBroker* broker, const CMPIContext* context,
                 std::unique_ptr<NQENDRA20::InstanceImpl> bag) {
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, bag.get());
  if (!bag->getObjectPath().empty()) {
    static_cast<void>(bag.release());  // the registry's for good
  }
}

void StartBenchPlugin(const CMPIBroker* broker, const CMPIContext* context) {
  RegisterBag(broker, context,
              std::make_unique<IdleService>(kServiceClass, kRunRecordClass, kServiceName));
  RegisterBag(broker, context,
              std::make_unique<IdleService>("BENCH_MemService", "BENCH_MemRecord", kServiceName));
}

// --- the minimal provider: returns prebuilt instances, nothing else ---

std::vector<CMPIInstance*>& BaselineInstances() {
  static std::vector<CMPIInstance*> instances;
  return instances;
}

CMPIStatus Ok() {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  return status;
}

CMPIStatus NotSupported() {
  CMPIStatus status = {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
  return status;
}

CMPIStatus BaselineCleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  return Ok();
}
CMPIStatus BaselineEnumNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                             const CMPIObjectPath*) {
  return NotSupported();
}
CMPIStatus BaselineEnum(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                        const CMPIObjectPath*, const char**) {
  for (CMPIInstance* instance : BaselineInstances()) {
    result->ft->returnInstance(result, instance);
  }
  result->ft->returnDone(result);
  return Ok();
}
CMPIStatus BaselineGet(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                       const CMPIObjectPath*, const char**) {
  return NotSupported();
}
CMPIStatus BaselineCreate(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*) {
  return NotSupported();
}
CMPIStatus BaselineModify(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*, const char**) {
  return NotSupported();
}
CMPIStatus BaselineDelete(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*) {
  return NotSupported();
}
CMPIStatus BaselineQuery(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                         const CMPIObjectPath*, const char*, const char*) {
  return NotSupported();
}

CMPIInstanceMIFT baselineTable = {CMPICurrentVersion, CMPICurrentVersion, "instanceBenchBaseline",
                                  BaselineCleanup,    BaselineEnumNames,  BaselineEnum,
                                  BaselineGet,        BaselineCreate,     BaselineModify,
                                  BaselineDelete,     BaselineQuery};
CMPIInstanceMI baselineMi = {nullptr, &baselineTable};

CMPIInstanceMI* CreateBaselineMI(const CMPIBroker*, const CMPIContext*, CMPIStatus* rc) {
  if (rc != nullptr) {
    *rc = Ok();
  }
  return &baselineMi;
}

std::atomic<CMPIInstanceMI*> pluginInstanceMi{nullptr};

std::string Source(const std::string& relative) {
  return std::string(DIAGCORE_SOURCE_DIR) + "/" + relative;
}

std::unique_ptr<cmpihost::Host> MakeHost();

}  // namespace
}  // namespace bench

DIAGCORE_PROVIDER(BenchPlugin, bench::StartBenchPlugin);

namespace bench {
namespace {

CMPIInstanceMI* CreatePluginInstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                       CMPIStatus* rc) {
  CMPIInstanceMI* mi = BenchPlugin_Create_InstanceMI(broker, context, rc);
  pluginInstanceMi.store(mi);
  return mi;
}

std::unique_ptr<cmpihost::Host> MakeHost() {
  auto host = std::make_unique<cmpihost::Host>();
  for (const char* nameSpace : {kNameSpace, kBaselineNameSpace}) {
    host->loadMof(Source("schema/diagcore.mof"), nameSpace);
    host->loadMof(Source("bench/bench.mof"), nameSpace);
  }
  auto clockCalls = std::make_shared<std::atomic<long>>(0);
  host->setClock([clockCalls] {
    return std::chrono::system_clock::from_time_t(kBaseTime) +
           std::chrono::microseconds(clockCalls->fetch_add(1));
  });

  cmpihost::MiFactories plugin;
  plugin.instance = CreatePluginInstanceMI;
  plugin.method = BenchPlugin_Create_MethodMI;
  plugin.association = BenchPlugin_Create_AssociationMI;
  cmpihost::ProviderRegistration served;
  served.providerName = "BenchPlugin";
  served.classNames = {kServiceClass,     kRunRecordClass,      "BENCH_RunBaselineRecord",
                       "BENCH_RegRecord", "BENCH_DirectRecord", "BENCH_EnumRecord",
                       "BENCH_BigRecord", "BENCH_SmallRecord",  "BENCH_MemService",
                       "BENCH_MemRecord", "BENCH_Available",    "BENCH_AvailableSmall"};
  served.instance = true;
  served.method = true;
  served.unloadNever = true;
  host->registerProvider(served, plugin);
  cmpihost::ProviderRegistration associations;
  associations.providerName = "BenchPlugin";
  associations.classNames = {"BENCH_Available", "BENCH_AvailableSmall"};
  associations.association = true;
  associations.unloadNever = true;
  host->registerProvider(associations, plugin);

  cmpihost::MiFactories minimal;
  minimal.instance = CreateBaselineMI;
  cmpihost::ProviderRegistration baseline;
  baseline.providerName = "BenchBaseline";
  baseline.classNames = {"BENCH_EnumRecord"};
  baseline.nameSpace = kBaselineNameSpace;
  baseline.instance = true;
  host->registerProvider(baseline, minimal);

  host->activateProviders();
  return host;
}

}  // namespace

cmpihost::Host& Host() {
  static const std::unique_ptr<cmpihost::Host> host = MakeHost();
  return *host;
}

std::string DateTimeText(std::size_t serial) {
  const std::time_t seconds = kBaseTime + static_cast<std::time_t>(serial / 1000000);
  const auto micros = static_cast<long>(serial % 1000000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", &utc);
  char text[48];
  std::snprintf(text, sizeof text, "%s.%06ld+000", stamp, micros);
  return text;
}

std::unique_ptr<NQENDRA20::DiagnosticRecord> RunRecord(const std::string& className,
                                                       std::size_t serial) {
  auto record = std::make_unique<NQENDRA20::DiagnosticRecord>(className);
  const std::string now = DateTimeText(serial);
  NQENDRA20::DiagnosticRecord& bag = *record;
  bag["Caption"] = "Result for Bench test";
  bag["Description"] = "Result for Bench test that does nothing";
  bag["ElementName"] = "Result for Bench diagnostic";
  bag["ServiceName"] = kServiceName;
  bag["ManagedElementName"] = "dev0";
  bag["InstanceID"] = std::string(kServiceClass) + ":" + kServiceName + ":" + now;
  bag["CreationTimeStamp"] = now;
  return record;
}

void RegisterRecords(const std::string& className, std::size_t first, std::size_t count) {
  for (std::size_t serial = first; serial < first + count; ++serial) {
    const Session session;
    RegisterBag(session.broker(), session.context(), RunRecord(className, serial));
  }
}

void RegisterAssociations(const std::string& className, std::size_t count) {
  const std::string service = ServicePath();
  for (std::size_t index = 0; index < count; ++index) {
    const Session session;
    auto association = std::make_unique<NQENDRA20::AvailableDiagnosticService>(className);
    NQENDRA20::AvailableDiagnosticService& bag = *association;
    bag["EstimatedDurationOfService"] = "3";
    bag["EstimatedDurationQualifier"] = "0";
    bag["ServiceProvided"] = service.substr(service.find(':') + 1);
    bag["UserOfService"] = DevicePath(index).substr(DevicePath(index).find(':') + 1);
    bag["EnumOrder"] = std::to_string(10 + 5 * index);
    RegisterBag(session.broker(), session.context(), std::move(association));
  }
}

// Keys in the classes' declaration order, as the registered instances give them.
std::string ServicePath() {
  return std::string(kNameSpace) + ":" + kServiceClass + ".Name=\"" + kServiceName +
         "\",SystemCreationClassName=\"TORSK_ComputerSystem\",SystemName=\"" + kSystemName +
         "\",CreationClassName=\"" + kServiceClass + "\"";
}

std::string DevicePath(std::size_t index) {
  return std::string(kNameSpace) + ":" + kDeviceClass +
         ".SystemCreationClassName=\"TORSK_ComputerSystem\",SystemName=\"" + kSystemName +
         "\",CreationClassName=\"" + kDeviceClass + "\",DeviceID=\"dev" + std::to_string(index) +
         "\"";
}

std::string RecordPath(const std::string& className, std::size_t serial) {
  return std::string(kNameSpace) + ":" + className + ".InstanceID=\"" + kServiceClass + ":" +
         kServiceName + ":" + DateTimeText(serial) + "\"";
}

CMPIInstanceMI* InstanceMI() {
  Host();
  return pluginInstanceMi.load();
}

void SetBaselineInstances(std::vector<CMPIInstance*> instances) {
  BaselineInstances() = std::move(instances);
}

}  // namespace bench
