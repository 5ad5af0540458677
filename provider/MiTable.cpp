// The CMPI-signature MI functions that DIAGCORE_PROVIDER's tables hold: the
// broker travels in the MI's hdl, set by the plug-in's factory.
#include <string>

#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/DiagServiceProviderCommon.h"

namespace NQENDRA20::mi_table {

namespace {

template <typename Mi>
const CMPIBroker* BrokerOf(const Mi* mi) {
  return mi != nullptr ? static_cast<const CMPIBroker*>(mi->hdl) : nullptr;
}

// The library's refusals carry no message; a client of a deployed plug-in
// (wbemcli prints only the code) is told why. A status that has a message
// already, or no failure, is passed on as it is.
CMPIStatus Explained(const CMPIBroker* broker, CMPIStatus status, const std::string& why) {
  if (status.rc == CMPI_RC_OK || status.msg != nullptr || broker == nullptr) {
    return status;
  }
  status.msg = broker->eft->newString(broker, why.c_str(), nullptr);
  return status;
}

const char* const kReferencesRefused =
    "Reference requests are not supported by this provider (DIAGCORE_PROVIDER); "
    "DIAGCORE_CIM_PROVIDER serves them";

std::string PathText(const CMPIObjectPath* path) {
  return path != nullptr ? CMPIUtil::GetObjectPathString(path) : std::string("(no path)");
}

CMPIStatus ReadOnly(const CMPIBroker* broker, CMPIStatus status, const char* operation) {
  return Explained(broker, status,
                   std::string(operation) +
                       " is not supported: this provider's objects are made by the provider "
                       "and its diagnostic runs only");
}

// A client's ManagedElement that names no instance of a managed element (a
// path without keys, a class the CIMOM does not know or that is no
// CIM_ManagedElement) is its mistake, not something to test: it is refused
// with a status that says so, before a test runs and leaves a record.
CMPIStatus CheckManagedElement(const CMPIBroker* broker, const char* methodName,
                               const CMPIArgs* in) {
  CMPIStatus ok = {CMPI_RC_OK, nullptr};
  if (broker == nullptr || in == nullptr || methodName == nullptr) {
    return ok;
  }
  const std::string method = methodName;
  if (method != "RunDiagnostic" && method != "RunDiagnosticService") {
    return ok;
  }
  CMPIStatus status = ok;
  const CMPIData element = in->ft->getArg(in, "ManagedElement", &status);
  if (status.rc != CMPI_RC_OK || element.type != CMPI_ref || element.value.ref == nullptr) {
    return ok;  // the service itself says what is missing
  }
  const CMPIObjectPath* path = element.value.ref;
  const bool hasKeys = path->ft->getKeyCount(path, nullptr) > 0;
  // Asked of a path of its own: the CIMOMs hand a method's reference
  // argument over without a namespace, and then know no class of it.
  const std::string className = CMPIUtil::GetClassName(path);
  const CMPIObjectPath* classPath =
      broker->eft->newObjectPath(broker, cimNameSpace, className.c_str(), nullptr);
  if (hasKeys && classPath != nullptr &&
      broker->eft->classPathIsA(broker, classPath, "CIM_ManagedElement", nullptr) != 0) {
    return ok;
  }
  CMPIStatus invalid = {CMPI_RC_ERR_INVALID_PARAMETER, nullptr};
  return Explained(broker, invalid,
                   method + ": ManagedElement " + PathText(path) +
                       (hasKeys ? " is not an instance of a CIM_ManagedElement class"
                                : " names no instance (the path has no keys)"));
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
  return ReadOnly(
      BrokerOf(mi),
      DiagServiceProviderCommonCreateInstance(BrokerOf(mi), mi, context, result, path, instance),
      "CreateInstance");
}

CMPIStatus ModifyInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path, const CMPIInstance* instance,
                          const char** properties) {
  return ReadOnly(BrokerOf(mi),
                  DiagServiceProviderCommonModifyInstance(BrokerOf(mi), mi, context, result, path,
                                                          instance, properties),
                  "ModifyInstance");
}

CMPIStatus DeleteInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path) {
  return ReadOnly(BrokerOf(mi),
                  DiagServiceProviderCommonDeleteInstance(BrokerOf(mi), mi, context, result, path),
                  "DeleteInstance");
}

CMPIStatus ExecQuery(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                     const CMPIObjectPath* reference, const char* query, const char* language) {
  return Explained(BrokerOf(mi),
                   DiagServiceProviderCommonExecQuery(BrokerOf(mi), mi, context, result, reference,
                                                      query, language),
                   "ExecQuery is not supported: enumerate the class instead");
}

CMPIStatus MethodCleanup(CMPIMethodMI* mi, const CMPIContext* context, CMPIBoolean terminating) {
  return RefuseIdleUnload(terminating, [&] {
    return DiagServiceProviderCommonMethodCleanup(BrokerOf(mi), mi, context, terminating);
  });
}

CMPIStatus InvokeMethod(CMPIMethodMI* mi, const CMPIContext* context, const CMPIResult* result,
                        const CMPIObjectPath* path, const char* methodName, const CMPIArgs* in,
                        CMPIArgs* out) {
  const CMPIStatus refused = CheckManagedElement(BrokerOf(mi), methodName, in);
  if (refused.rc != CMPI_RC_OK) {
    return refused;
  }
  const CMPIStatus status = DiagServiceProviderCommonInvokeMethod(BrokerOf(mi), mi, context, result,
                                                                  path, methodName, in, out);
  const std::string method = methodName != nullptr ? methodName : "";
  if (status.rc == CMPI_RC_ERR_NOT_FOUND) {
    return Explained(BrokerOf(mi), status, "No object of this provider at " + PathText(path));
  }
  if (status.rc == CMPI_RC_ERR_METHOD_NOT_FOUND) {
    return Explained(BrokerOf(mi), status, "No method " + method + " on " + PathText(path));
  }
  return status;
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
  return Explained(BrokerOf(mi),
                   DiagServiceProviderCommonReferences(BrokerOf(mi), mi, context, result, source,
                                                       resultClass, role, properties),
                   kReferencesRefused);
}

CMPIStatus ReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* source,
                          const char* resultClass, const char* role) {
  return Explained(BrokerOf(mi),
                   DiagServiceProviderCommonReferenceNames(BrokerOf(mi), mi, context, result,
                                                           source, resultClass, role),
                   kReferencesRefused);
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
