#include "support/ProviderHost.h"

#include <atomic>
#include <fstream>

#include "cmpihost/CallScope.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "diagcore/InstanceRegistry.h"

namespace diagcore_test {

namespace {

std::atomic<const CMPIBroker*> miBroker{nullptr};

const CMPIBroker* Broker() {
  return miBroker.load();
}

// --- instance MI table ---

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

// --- method MI table ---

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

CMPIInstanceMI* CreateInstanceMI(const CMPIBroker* broker, const CMPIContext* /*ctx*/,
                                 CMPIStatus* rc) {
  miBroker.store(broker);
  if (rc != nullptr) {
    *rc = {CMPI_RC_OK, nullptr};
  }
  return &instanceMi;
}

CMPIMethodMI* CreateMethodMI(const CMPIBroker* broker, const CMPIContext* /*ctx*/, CMPIStatus* rc) {
  miBroker.store(broker);
  if (rc != nullptr) {
    *rc = {CMPI_RC_OK, nullptr};
  }
  return &methodMi;
}

}  // namespace

std::string SourcePath(const std::string& relative) {
  return std::string(DIAGCORE_SOURCE_DIR) + "/" + relative;
}

bool HaveProjectSchema() {
  return std::ifstream(SourcePath("schema/diagcore.mof")).good();
}

void RegisterInScope(cmpihost::Host& host, NQENDRA20::InstanceImpl* bag) {
  cmpihost::CallScope scope(host);
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(scope.broker(), scope.context(), bag);
}

cmpihost::MiFactories LibraryMiFactories() {
  cmpihost::MiFactories factories;
  factories.instance = CreateInstanceMI;
  factories.method = CreateMethodMI;
  return factories;
}

const CMPIBroker* LibraryMiBroker() {
  return Broker();
}

CMPIInstanceMI* LibraryInstanceMI() {
  return &instanceMi;
}

CMPIMethodMI* LibraryMethodMI() {
  return &methodMi;
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
    host_->registerProvider(registration, LibraryMiFactories());
    host_->activateProviders();
  }
}

ProviderHost::~ProviderHost() = default;

}  // namespace diagcore_test
