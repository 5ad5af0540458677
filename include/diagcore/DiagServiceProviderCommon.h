// The CMPI management-interface functions of the library.
//
// A plug-in builds its CMPIInstanceMI, CMPIMethodMI and CMPIAssociationMI
// function tables (DIAGCORE_PROVIDER in DiagProvider.h does it) from
// small functions that pass the broker it was created with, followed by the
// MI call's own arguments, to these. The library defines no MI factory.
//
// Each function answers from the process-wide InstanceRegistry. No C++
// exception leaves them: one is answered with CMPI_RC_ERR_FAILED and the
// message "<Operation> failed: <what>".
#ifndef DIAGCORE_DIAGSERVICEPROVIDERCOMMON_H_
#define DIAGCORE_DIAGSERVICEPROVIDERCOMMON_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

// --- instance MI ---

// Nothing to clean up: CMPI_RC_OK.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonCleanup(const CMPIBroker* broker,
                                                          CMPIInstanceMI* mi,
                                                          const CMPIContext* context,
                                                          CMPIBoolean terminating);

// The object paths of the registered instances of `reference`'s class, then
// returnDone. Returns the status of the last getObjectPath (OK when none).
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonEnumInstanceNames(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* reference);

// The registered instances of `reference`'s class, then returnDone; CMPI_RC_OK.
// The property list is not applied.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonEnumInstances(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* reference, const char** properties);

// The registered instance of `path`, then returnDone; CMPI_RC_OK. An unknown
// path: CMPI_RC_ERR_FAILED "Could not find or construct instance", no result.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonGetInstance(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* path, const char** properties);

// Clients cannot create, modify, delete or query: CMPI_RC_ERR_NOT_SUPPORTED.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonCreateInstance(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* path, const CMPIInstance* instance);
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonModifyInstance(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* path, const CMPIInstance* instance,
    const char** properties);
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonDeleteInstance(const CMPIBroker* broker,
                                                                 CMPIInstanceMI* mi,
                                                                 const CMPIContext* context,
                                                                 const CMPIResult* result,
                                                                 const CMPIObjectPath* path);
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonExecQuery(
    const CMPIBroker* broker, CMPIInstanceMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* reference, const char* query,
    const char* language);

// --- method MI ---

// Nothing to clean up: CMPI_RC_OK.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonMethodCleanup(const CMPIBroker* broker,
                                                                CMPIMethodMI* mi,
                                                                const CMPIContext* context,
                                                                CMPIBoolean terminating);

// Runs the method on the object registered under `path` and returns its
// status; CMPI_RC_ERR_NOT_FOUND when no object has that path.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonInvokeMethod(
    const CMPIBroker* broker, CMPIMethodMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* path, const char* methodName,
    const CMPIArgs* in, CMPIArgs* out);

// --- association MI ---
//
// Associations are registered objects of an association class whose
// reference properties hold object paths. Associator requests deliver the
// association objects themselves (not the objects at their far ends), in the
// registry's order, then returnDone once.

// Nothing to clean up: CMPI_RC_OK.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonAssociationCleanup(const CMPIBroker* broker,
                                                                     CMPIAssociationMI* mi,
                                                                     const CMPIContext* context,
                                                                     CMPIBoolean terminating);

// Every registered object of `assocClass` (no subclasses) that has a
// reference to `source` (in the property `role`, or in any reference property
// when `role` is null) and, when `resultClass` is given, a reference to an
// object of that class or a subclass (in `resultRole`, or in any). Each
// reference compared with the source writes three traces. Always CMPI_RC_OK;
// a request without an association class delivers nothing and traces a
// warning. The property list is not applied.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonAssociators(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole, const char** properties);

// The object paths of the objects Associators would deliver, in its order.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonAssociatorNames(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole);

// Reference requests are not served: CMPI_RC_ERR_NOT_SUPPORTED.
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonReferences(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* resultClass,
    const char* role, const char** properties);
CMPI_EXTERN_C CMPIStatus DiagServiceProviderCommonReferenceNames(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* resultClass,
    const char* role);

#endif  // DIAGCORE_DIAGSERVICEPROVIDERCOMMON_H_
