// Association MI functions with CIM's semantics, for plug-ins whose clients
// navigate associations the standard way (wbemcli ai/ri, any WBEM client).
//
// DiagServiceProviderCommonAssociators and ...AssociatorNames deliver the
// association objects themselves and answer References with
// CMPI_RC_ERR_NOT_SUPPORTED. These deliver what CIM defines instead:
// - Associators / AssociatorNames: the objects at the other end of every
//   registered association that references `source`. Objects registered in
//   this process are delivered from the registry; others are fetched with the
//   broker's getInstance (AssociatorNames delivers their paths as they stand).
//   Each object is delivered once, however many associations lead to it.
// - References / ReferenceNames: the association objects that reference
//   `source`.
// The filters follow CIM: `assocClass` (References: `resultClass`) names an
// association class or a superclass of one (CIM_AvailableDiagnosticService
// finds a plug-in's subclass); null considers every registered association
// class, that is every registered class whose objects hold references.
// `role` names the property that must reference the source, `resultRole` the
// one that holds the result, `resultClass` the class (or a superclass) of the
// result. Names compare without regard to case; the source matches whatever
// the order of its keys. Results follow the registry's class order, then its
// enumeration order; returnDone is called once. Always CMPI_RC_OK. No C++
// exception leaves them (CMPI_RC_ERR_FAILED with the exception's text).
//
// A plug-in selects them with DIAGCORE_CIM_PROVIDER (DiagProvider.h). Safe to
// call from several threads at once, as the registry is.
#ifndef DIAGCORE_DIAGSERVICEPROVIDERCIM_H_
#define DIAGCORE_DIAGSERVICEPROVIDERCIM_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

CMPI_EXTERN_C CMPIStatus DiagServiceProviderCimAssociators(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole, const char** properties);

CMPI_EXTERN_C CMPIStatus DiagServiceProviderCimAssociatorNames(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole);

CMPI_EXTERN_C CMPIStatus DiagServiceProviderCimReferences(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* resultClass,
    const char* role, const char** properties);

CMPI_EXTERN_C CMPIStatus DiagServiceProviderCimReferenceNames(
    const CMPIBroker* broker, CMPIAssociationMI* mi, const CMPIContext* context,
    const CMPIResult* result, const CMPIObjectPath* source, const char* resultClass,
    const char* role);

#endif  // DIAGCORE_DIAGSERVICEPROVIDERCIM_H_
