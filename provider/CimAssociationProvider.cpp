// The association MI functions with CIM's semantics: associators deliver the
// objects at the far end, references the association objects, and every
// filter accepts subclasses.
#include <strings.h>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "core/BrokerText.h"
#include "core/PathIdentity.h"
#include "core/Trace.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/InstanceRegistry.h"
#include "provider/EntryGuard.h"

using NQENDRA20::CharsOf;
using NQENDRA20::GuardEntry;
using NQENDRA20::InstanceRegistry;
using NQENDRA20::ObjectIdentity;

namespace {

CMPIStatus Ok() {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  return status;
}

struct Reference {
  std::string property;
  CMPIObjectPath* path;
};

struct Association {
  CMPIInstance* instance;
  std::vector<Reference> references;
};

std::vector<Reference> ReferencesOf(CMPIInstance* association) {
  std::vector<Reference> references;
  const CMPICount count = association->ft->getPropertyCount(association, nullptr);
  for (CMPICount index = 0; index < count; ++index) {
    CMPIString* name = nullptr;
    const CMPIData data = association->ft->getPropertyAt(association, index, &name, nullptr);
    if (data.type == CMPI_ref && data.value.ref != nullptr) {
      references.push_back(Reference{CharsOf(name), data.value.ref});
    }
  }
  return references;
}

// A filter that is not given lets everything through.
bool NameFits(const std::string& name, const char* filter) {
  return filter == nullptr || strcasecmp(name.c_str(), filter) == 0;
}

bool IsA(const CMPIBroker* broker, const CMPIObjectPath* path, const char* className) {
  return className == nullptr || broker->eft->classPathIsA(broker, path, className, nullptr) != 0;
}

bool ClassIsA(const CMPIBroker* broker, const std::string& className, const char* superclass) {
  if (superclass == nullptr) {
    return true;
  }
  const CMPIObjectPath* path =
      broker->eft->newObjectPath(broker, NQENDRA20::cimNameSpace, className.c_str(), nullptr);
  return path != nullptr && IsA(broker, path, superclass);
}

// Every registered association of a class that fits `classFilter`, with its
// references, in the registry's order. A class is an association when its
// objects hold references.
std::vector<Association> AssociationsOf(const CMPIBroker* broker, const char* classFilter) {
  InstanceRegistry* registry = InstanceRegistry::Singleton();
  std::vector<Association> associations;
  for (const std::string& className : registry->GetClassNames()) {
    if (!ClassIsA(broker, className, classFilter)) {
      continue;
    }
    std::vector<CMPIInstance*> instances;
    registry->GetCMPIInstances(broker, className, instances);
    for (CMPIInstance* instance : instances) {
      std::vector<Reference> references = ReferencesOf(instance);
      if (references.empty()) {
        break;  // not an association class
      }
      associations.push_back(Association{instance, std::move(references)});
    }
  }
  return associations;
}

bool ReferencesSource(const Reference& reference, const std::string& sourceIdentity,
                      const char* role) {
  return NameFits(reference.property, role) && ObjectIdentity(reference.path) == sourceIdentity;
}

// The far ends of the associations that reference the source: each
// reference other than the one that names the source, once per object.
std::vector<CMPIObjectPath*> FarEnds(const CMPIBroker* broker, const CMPIObjectPath* source,
                                     const char* assocClass, const char* resultClass,
                                     const char* role, const char* resultRole) {
  const std::string sourceIdentity = ObjectIdentity(source);
  std::vector<CMPIObjectPath*> farEnds;
  std::set<std::string> seen;
  for (const Association& association : AssociationsOf(broker, assocClass)) {
    const std::vector<Reference>& references = association.references;
    for (std::size_t near = 0; near < references.size(); ++near) {
      if (!ReferencesSource(references[near], sourceIdentity, role)) {
        continue;
      }
      for (std::size_t far = 0; far < references.size(); ++far) {
        const Reference& candidate = references[far];
        if (far == near || !NameFits(candidate.property, resultRole) ||
            !IsA(broker, candidate.path, resultClass)) {
          continue;
        }
        if (seen.insert(ObjectIdentity(candidate.path)).second) {
          farEnds.push_back(candidate.path);
        }
      }
    }
  }
  return farEnds;
}

std::vector<CMPIInstance*> ReferencingAssociations(const CMPIBroker* broker,
                                                   const CMPIObjectPath* source,
                                                   const char* assocClass, const char* role) {
  const std::string sourceIdentity = ObjectIdentity(source);
  std::vector<CMPIInstance*> found;
  for (const Association& association : AssociationsOf(broker, assocClass)) {
    for (const Reference& reference : association.references) {
      if (ReferencesSource(reference, sourceIdentity, role)) {
        found.push_back(association.instance);
        break;
      }
    }
  }
  return found;
}

}  // namespace

CMPIStatus DiagServiceProviderCimAssociators(const CMPIBroker* broker, CMPIAssociationMI* /*mi*/,
                                             const CMPIContext* context, const CMPIResult* result,
                                             const CMPIObjectPath* source, const char* assocClass,
                                             const char* resultClass, const char* role,
                                             const char* resultRole, const char** properties) {
  return GuardEntry(broker, "Associators", [&] {
    InstanceRegistry* registry = InstanceRegistry::Singleton();
    for (CMPIObjectPath* farEnd :
         FarEnds(broker, source, assocClass, resultClass, role, resultRole)) {
      const InstanceRegistry::Instance* registered = registry->GetInstance(broker, farEnd);
      CMPIInstance* instance = registered != nullptr ? registered->ci : nullptr;
      if (instance == nullptr) {
        // Served by another provider: the CIMOM has it.
        CMPIStatus status = Ok();
        instance = broker->bft->getInstance(broker, context, farEnd, properties, &status);
        if (instance == nullptr) {
          NQENDRA20::Trace(broker, CMPI_SEV_WARNING,
                           "Associators could not get " +
                               NQENDRA20::CMPIUtil::GetObjectPathString(farEnd) +
                               " from the CIMOM (rc " + std::to_string(status.rc) + ")");
          continue;
        }
      }
      result->ft->returnInstance(result, instance);
    }
    result->ft->returnDone(result);
    return Ok();
  });
}

CMPIStatus DiagServiceProviderCimAssociatorNames(
    const CMPIBroker* broker, CMPIAssociationMI* /*mi*/, const CMPIContext* /*context*/,
    const CMPIResult* result, const CMPIObjectPath* source, const char* assocClass,
    const char* resultClass, const char* role, const char* resultRole) {
  return GuardEntry(broker, "AssociatorNames", [&] {
    InstanceRegistry* registry = InstanceRegistry::Singleton();
    for (CMPIObjectPath* farEnd :
         FarEnds(broker, source, assocClass, resultClass, role, resultRole)) {
      // A registered object's own path carries the namespace a reference
      // value may lack.
      const InstanceRegistry::Instance* registered = registry->GetInstance(broker, farEnd);
      const CMPIObjectPath* path = registered != nullptr
                                       ? registered->ci->ft->getObjectPath(registered->ci, nullptr)
                                       : farEnd;
      result->ft->returnObjectPath(result, path != nullptr ? path : farEnd);
    }
    result->ft->returnDone(result);
    return Ok();
  });
}

CMPIStatus DiagServiceProviderCimReferences(const CMPIBroker* broker, CMPIAssociationMI* /*mi*/,
                                            const CMPIContext* /*context*/,
                                            const CMPIResult* result, const CMPIObjectPath* source,
                                            const char* resultClass, const char* role,
                                            const char** /*properties*/) {
  return GuardEntry(broker, "References", [&] {
    for (CMPIInstance* association : ReferencingAssociations(broker, source, resultClass, role)) {
      result->ft->returnInstance(result, association);
    }
    result->ft->returnDone(result);
    return Ok();
  });
}

CMPIStatus DiagServiceProviderCimReferenceNames(const CMPIBroker* broker, CMPIAssociationMI* /*mi*/,
                                                const CMPIContext* /*context*/,
                                                const CMPIResult* result,
                                                const CMPIObjectPath* source,
                                                const char* resultClass, const char* role) {
  return GuardEntry(broker, "ReferenceNames", [&] {
    for (CMPIInstance* association : ReferencingAssociations(broker, source, resultClass, role)) {
      result->ft->returnObjectPath(result, association->ft->getObjectPath(association, nullptr));
    }
    result->ft->returnDone(result);
    return Ok();
  });
}
