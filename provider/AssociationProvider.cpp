// The association MI functions: associator requests walk the registered
// objects of the association class and deliver those whose references fit.
#include <string>
#include <vector>

#include "core/PathIdentity.h"
#include "core/Trace.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "diagcore/InstanceRegistry.h"
#include "provider/EntryGuard.h"
#include "provider/ResultDelivery.h"

using NQENDRA20::CMPIUtil;
using NQENDRA20::GuardEntry;
using NQENDRA20::InstanceRegistry;
using NQENDRA20::ObjectIdentity;
using NQENDRA20::Trace;

namespace {

// CIMOMs send associator requests without an association class when a client
// names none; the registry is filed by class, so there is nothing to walk.
const char* const kNoAssociationClass = "Associators request named no association class";

using Deliver = void (*)(const CMPIResult*, CMPIInstance*);

// What a reference is matched against: the source's path text (traced, as
// the comparison always was) and its key identity, or a class name.
struct Target {
  std::string text;
  std::string identity;
};
using ReferenceMatch = bool (*)(const CMPIBroker*, CMPIObjectPath*, const Target&);

CMPIStatus Status(CMPIrc rc) {
  CMPIStatus status = {rc, nullptr};
  return status;
}

// Whether `reference` names the source object. The classes are compared as
// names, the keys as an unordered set: a client's source path may hold its
// keys in any order.
bool IsRefInstanceMatch(const CMPIBroker* broker, CMPIObjectPath* reference, const Target& source) {
  const std::string referenceText = CMPIUtil::GetObjectPathString(reference);
  Trace(broker, CMPI_DEV_DEBUG, "$$$$ IsRefInstanceMatch");
  Trace(broker, CMPI_DEV_DEBUG, referenceText);
  Trace(broker, CMPI_DEV_DEBUG, source.text);
  return ObjectIdentity(reference) == source.identity;
}

// Whether `reference` names an object of the class `target.text` names, or of
// a subclass.
bool IsRefClassMatch(const CMPIBroker* broker, CMPIObjectPath* reference, const Target& target) {
  return broker->eft->classPathIsA(broker, reference, target.text.c_str(), nullptr) != 0;
}

bool IsReference(const CMPIData& data) {
  return data.type == CMPI_ref && data.value.ref != nullptr;
}

// Whether `association` has a reference, in `property` or (null) in any
// reference property, that `match` accepts for `target`.
bool HasReferenceTo(const CMPIBroker* broker, CMPIInstance* association, const Target& target,
                    const char* property, ReferenceMatch match) {
  if (property != nullptr) {
    const CMPIData data = association->ft->getProperty(association, property, nullptr);
    return IsReference(data) && match(broker, data.value.ref, target);
  }
  const CMPICount count = association->ft->getPropertyCount(association, nullptr);
  for (CMPICount index = 0; index < count; ++index) {
    const CMPIData data = association->ft->getPropertyAt(association, index, nullptr, nullptr);
    if (IsReference(data) && match(broker, data.value.ref, target)) {
      return true;
    }
  }
  return false;
}

void AssociatorsImpl(const CMPIBroker* broker, const CMPIResult* result,
                     const CMPIObjectPath* source, const char* assocClass, const char* resultClass,
                     const char* role, const char* resultRole, Deliver deliver) {
  if (assocClass == nullptr) {
    Trace(broker, CMPI_SEV_WARNING, kNoAssociationClass);
    result->ft->returnDone(result);
    return;
  }
  const Target sourceTarget{CMPIUtil::GetObjectPathString(source), ObjectIdentity(source)};
  std::vector<CMPIInstance*> candidates;
  InstanceRegistry::Singleton()->GetCMPIInstances(broker, std::string(assocClass), candidates);
  for (CMPIInstance* candidate : candidates) {
    if (!HasReferenceTo(broker, candidate, sourceTarget, role, IsRefInstanceMatch)) {
      continue;
    }
    if (resultClass != nullptr &&
        !HasReferenceTo(broker, candidate, Target{resultClass, ""}, resultRole, IsRefClassMatch)) {
      continue;
    }
    deliver(result, candidate);
  }
  result->ft->returnDone(result);
}

}  // namespace

CMPIStatus DiagServiceProviderCommonAssociationCleanup(const CMPIBroker* /*broker*/,
                                                       CMPIAssociationMI* /*mi*/,
                                                       const CMPIContext* /*context*/,
                                                       CMPIBoolean /*terminating*/) {
  return Status(CMPI_RC_OK);
}

CMPIStatus DiagServiceProviderCommonAssociators(const CMPIBroker* broker, CMPIAssociationMI* /*mi*/,
                                                const CMPIContext* /*context*/,
                                                const CMPIResult* result,
                                                const CMPIObjectPath* source,
                                                const char* assocClass, const char* resultClass,
                                                const char* role, const char* resultRole,
                                                const char** /*properties*/) {
  return GuardEntry(broker, "Associators", [&] {
    AssociatorsImpl(broker, result, source, assocClass, resultClass, role, resultRole,
                    NQENDRA20::ReturnInstance);
    return Status(CMPI_RC_OK);
  });
}

CMPIStatus DiagServiceProviderCommonAssociatorNames(
    const CMPIBroker* broker, CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole) {
  return GuardEntry(broker, "AssociatorNames", [&] {
    AssociatorsImpl(broker, result, source, assocClass, resultClass, role, resultRole,
                    NQENDRA20::ReturnObjectPath);
    return Status(CMPI_RC_OK);
  });
}

CMPIStatus DiagServiceProviderCommonReferences(
    const CMPIBroker* /*broker*/, CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
    const CMPIResult* /*result*/, const CMPIObjectPath* /*source*/, const char* /*resultClass*/,
    const char* /*role*/, const char** /*properties*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIStatus DiagServiceProviderCommonReferenceNames(
    const CMPIBroker* /*broker*/, CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
    const CMPIResult* /*result*/, const CMPIObjectPath* /*source*/, const char* /*resultClass*/,
    const char* /*role*/) {
  return Status(CMPI_RC_ERR_NOT_SUPPORTED);
}
