// The CMPI-signature MI functions that DIAGCORE_PROVIDER's tables hold: the
// broker travels in the MI's hdl, set by the plug-in's factory.
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/DiagServiceProviderCommon.h"

namespace NQENDRA20::mi_table {

namespace {

template <typename Mi>
const CMPIBroker* BrokerOf(const Mi* mi) {
  return mi != nullptr ? static_cast<const CMPIBroker*>(mi->hdl) : nullptr;
}

// Every object the plug-in serves lives only in this process: a CIMOM that
// unloads an idle provider would lose them all, and OpenPegasus has no
// setting against it. Only a terminating CIMOM gets its OK.
template <typename Cleanup>
CMPIStatus RefuseIdleUnload(CMPIBoolean terminating, Cleanup cleanup) {
  if (terminating == 0) {
    CMPIStatus refused = {CMPI_RC_NEVER_UNLOAD, nullptr};
    return refused;
  }
  return cleanup();
}

}  // namespace

CMPIStatus InstanceCleanup(CMPIInstanceMI* mi, const CMPIContext* context,
                           CMPIBoolean terminating) {
  return RefuseIdleUnload(terminating, [&] {
    return DiagServiceProviderCommonCleanup(BrokerOf(mi), mi, context, terminating);
  });
}

CMPIStatus EnumInstanceNames(CMPIInstanceMI* mi, const CMPIContext* context,
                             const CMPIResult* result, const CMPIObjectPath* reference) {
  return DiagServiceProviderCommonEnumInstanceNames(BrokerOf(mi), mi, context, result, reference);
}

CMPIStatus EnumInstances(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                         const CMPIObjectPath* reference, const char** properties) {
  return DiagServiceProviderCommonEnumInstances(BrokerOf(mi), mi, context, result, reference,
                                                properties);
}

CMPIStatus GetInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                       const CMPIObjectPath* path, const char** properties) {
  return DiagServiceProviderCommonGetInstance(BrokerOf(mi), mi, context, result, path, properties);
}

CMPIStatus CreateInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path, const CMPIInstance* instance) {
  return DiagServiceProviderCommonCreateInstance(BrokerOf(mi), mi, context, result, path, instance);
}

CMPIStatus ModifyInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path, const CMPIInstance* instance,
                          const char** properties) {
  return DiagServiceProviderCommonModifyInstance(BrokerOf(mi), mi, context, result, path, instance,
                                                 properties);
}

CMPIStatus DeleteInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path) {
  return DiagServiceProviderCommonDeleteInstance(BrokerOf(mi), mi, context, result, path);
}

CMPIStatus ExecQuery(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                     const CMPIObjectPath* reference, const char* query, const char* language) {
  return DiagServiceProviderCommonExecQuery(BrokerOf(mi), mi, context, result, reference, query,
                                            language);
}

CMPIStatus MethodCleanup(CMPIMethodMI* mi, const CMPIContext* context, CMPIBoolean terminating) {
  return RefuseIdleUnload(terminating, [&] {
    return DiagServiceProviderCommonMethodCleanup(BrokerOf(mi), mi, context, terminating);
  });
}

CMPIStatus InvokeMethod(CMPIMethodMI* mi, const CMPIContext* context, const CMPIResult* result,
                        const CMPIObjectPath* path, const char* methodName, const CMPIArgs* in,
                        CMPIArgs* out) {
  return DiagServiceProviderCommonInvokeMethod(BrokerOf(mi), mi, context, result, path, methodName,
                                               in, out);
}

CMPIStatus AssociationCleanup(CMPIAssociationMI* mi, const CMPIContext* context,
                              CMPIBoolean terminating) {
  return RefuseIdleUnload(terminating, [&] {
    return DiagServiceProviderCommonAssociationCleanup(BrokerOf(mi), mi, context, terminating);
  });
}

CMPIStatus Associators(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                       const CMPIObjectPath* source, const char* assocClass,
                       const char* resultClass, const char* role, const char* resultRole,
                       const char** properties) {
  return DiagServiceProviderCommonAssociators(BrokerOf(mi), mi, context, result, source, assocClass,
                                              resultClass, role, resultRole, properties);
}

CMPIStatus AssociatorNames(CMPIAssociationMI* mi, const CMPIContext* context,
                           const CMPIResult* result, const CMPIObjectPath* source,
                           const char* assocClass, const char* resultClass, const char* role,
                           const char* resultRole) {
  return DiagServiceProviderCommonAssociatorNames(BrokerOf(mi), mi, context, result, source,
                                                  assocClass, resultClass, role, resultRole);
}

CMPIStatus References(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                      const CMPIObjectPath* source, const char* resultClass, const char* role,
                      const char** properties) {
  return DiagServiceProviderCommonReferences(BrokerOf(mi), mi, context, result, source, resultClass,
                                             role, properties);
}

CMPIStatus ReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* source,
                          const char* resultClass, const char* role) {
  return DiagServiceProviderCommonReferenceNames(BrokerOf(mi), mi, context, result, source,
                                                 resultClass, role);
}

CMPIStatus CimAssociators(CMPIAssociationMI* mi, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* source,
                          const char* assocClass, const char* resultClass, const char* role,
                          const char* resultRole, const char** properties) {
  return DiagServiceProviderCimAssociators(BrokerOf(mi), mi, context, result, source, assocClass,
                                           resultClass, role, resultRole, properties);
}

CMPIStatus CimAssociatorNames(CMPIAssociationMI* mi, const CMPIContext* context,
                              const CMPIResult* result, const CMPIObjectPath* source,
                              const char* assocClass, const char* resultClass, const char* role,
                              const char* resultRole) {
  return DiagServiceProviderCimAssociatorNames(BrokerOf(mi), mi, context, result, source,
                                               assocClass, resultClass, role, resultRole);
}

CMPIStatus CimReferences(CMPIAssociationMI* mi, const CMPIContext* context,
                         const CMPIResult* result, const CMPIObjectPath* source,
                         const char* resultClass, const char* role, const char** properties) {
  return DiagServiceProviderCimReferences(BrokerOf(mi), mi, context, result, source, resultClass,
                                          role, properties);
}

CMPIStatus CimReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context,
                             const CMPIResult* result, const CMPIObjectPath* source,
                             const char* resultClass, const char* role) {
  return DiagServiceProviderCimReferenceNames(BrokerOf(mi), mi, context, result, source,
                                              resultClass, role);
}

}  // namespace NQENDRA20::mi_table
