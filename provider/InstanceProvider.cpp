// The instance and method MI functions: each traces the request, asks the
// registry and hands what it finds to the CIMOM's result.
#include <string>
#include <vector>

#include "core/Trace.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "diagcore/InstanceRegistry.h"
#include "provider/EntryGuard.h"
#include "provider/ResultDelivery.h"

using NQENDRA20::GuardEntry;
using NQENDRA20::InstanceRegistry;
using NQENDRA20::Trace;

namespace {

CMPIStatus Status(CMPIrc rc) {
  CMPIStatus status = {rc, nullptr};
  return status;
}

}  // namespace

CMPIStatus DiagServiceProviderCommonCleanup(const CMPIBroker* /*broker*/, CMPIInstanceMI* /*mi*/,
                                            const CMPIContext* /*context*/,
                                            CMPIBoolean /*terminating*/) {
  return Status(CMPI_RC_OK);
}

CMPIStatus DiagServiceProviderCommonEnumInstanceNames(const CMPIBroker* broker,
                                                      CMPIInstanceMI* /*mi*/,
                                                      const CMPIContext* /*context*/,
                                                      const CMPIResult* result,
                                                      const CMPIObjectPath* reference) {
  return GuardEntry(broker, "EnumInstanceNames", [&] {
    Trace(broker, CMPI_DEV_DEBUG, "+++ EnumInstanceNames");
    CMPIStatus status = Status(CMPI_RC_OK);
    std::vector<CMPIInstance*> instances;
    InstanceRegistry::Singleton()->GetCMPIInstances(broker, reference, instances);
    for (CMPIInstance* instance : instances) {
      // Each call overwrites the status: the last one is the answer.
      const CMPIObjectPath* path = instance->ft->getObjectPath(instance, &status);
      if (path != nullptr) {
        result->ft->returnObjectPath(result, path);
      }
    }
    result->ft->returnDone(result);
    return status;
  });
}

CMPIStatus DiagServiceProviderCommonEnumInstances(const CMPIBroker* broker, CMPIInstanceMI* /*mi*/,
                                                  const CMPIContext* /*context*/,
                                                  const CMPIResult* result,
                                                  const CMPIObjectPath* reference,
                                                  const char** /*properties*/) {
  return GuardEntry(broker, "EnumInstances", [&] {
    Trace(broker, CMPI_DEV_DEBUG, "+++ EnumInstances");
    std::vector<CMPIInstance*> instances;
    InstanceRegistry::Singleton()->GetCMPIInstances(broker, reference, instances);
    for (CMPIInstance* instance : instances) {
      NQENDRA20::ReturnInstance(result, instance);
    }
    result->ft->returnDone(result);
    return Status(CMPI_RC_OK);
  });
}

CMPIStatus DiagServiceProviderCommonGetInstance(const CMPIBroker* broker, CMPIInstanceMI* /*mi*/,
                                                const CMPIContext* /*context*/,
                                                const CMPIResult* result,
                                                const CMPIObjectPath* path,
                                                const char** /*properties*/) {
  return GuardEntry(broker, "GetInstance", [&] {
    Trace(broker, CMPI_DEV_DEBUG, "+++ GetInstance");
    CMPIInstance* instance = InstanceRegistry::Singleton()->GetCMPIInstance(broker, path);
    if (instance == nullptr) {
      CMPIStatus failed = Status(CMPI_RC_ERR_FAILED);
      failed.msg = broker->eft->newString(broker, "Could not find or construct instance", nullptr);
      return failed;
    }
    NQENDRA20::ReturnInstance(result, instance);
    result->ft->returnDone(result);
    return Status(CMPI_RC_OK);
  });
}

CMPIStatus DiagServiceProviderCommonCreateInstance(const CMPIBroker* /*broker*/,
                                                   CMPIInstanceMI* /*mi*/,
                                                   const CMPIContext* /*context*/,
                                                   const CMPIResult* /*result*/,
                                                   const CMPIObjectPath* /*path*/,
                                                   const CMPIInstance* /*instance*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DiagServiceProviderCommonModifyInstance(
    const CMPIBroker* /*broker*/, CMPIInstanceMI* /*mi*/, const CMPIContext* /*context*/,
    const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/, const CMPIInstance* /*instance*/,
    const char** /*properties*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DiagServiceProviderCommonDeleteInstance(const CMPIBroker* /*broker*/,
                                                   CMPIInstanceMI* /*mi*/,
                                                   const CMPIContext* /*context*/,
                                                   const CMPIResult* /*result*/,
                                                   const CMPIObjectPath* /*path*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DiagServiceProviderCommonExecQuery(const CMPIBroker* /*broker*/, CMPIInstanceMI* /*mi*/,
                                              const CMPIContext* /*context*/,
                                              const CMPIResult* /*result*/,
                                              const CMPIObjectPath* /*reference*/,
                                              const char* /*query*/, const char* /*language*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DiagServiceProviderCommonMethodCleanup(const CMPIBroker* /*broker*/,
                                                  CMPIMethodMI* /*mi*/,
                                                  const CMPIContext* /*context*/,
                                                  CMPIBoolean /*terminating*/) {
  return Status(CMPI_RC_OK);
}

CMPIStatus DiagServiceProviderCommonInvokeMethod(const CMPIBroker* broker, CMPIMethodMI* /*mi*/,
                                                 const CMPIContext* context,
                                                 const CMPIResult* result,
                                                 const CMPIObjectPath* path, const char* methodName,
                                                 const CMPIArgs* in, CMPIArgs* out) {
  return GuardEntry(broker, "InvokeMethod", [&] {
    Trace(broker, CMPI_DEV_DEBUG, "+++ InvokeMethod");
    return InstanceRegistry::Singleton()->InvokeMethod(
        broker, context, result, path, std::string(methodName != nullptr ? methodName : ""), in,
        out);
  });
}
