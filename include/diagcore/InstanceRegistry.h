// InstanceRegistry: the process-wide store of every object the library serves.
//
// Each registered bag is built into a CMPIInstance, and a clone of it is kept
// for the life of the process, filed under the upper-cased class name and the
// object path text. Every get, enumeration and method call is answered from
// here. Nothing is ever removed; a later registration under the same class and
// path text replaces the earlier one. A lookup by path finds the object
// whatever the order of the path's keys and the letter case of their names
// (CIM keys are an unordered set); key values, host and namespace are
// compared as before: values exactly, host and namespace not at all.
//
// All operations may be called from several threads at once: the maps are
// guarded by one mutex, which is never held while the broker is called back
// or while a bag's invokeMethod runs.
#ifndef DIAGCORE_INSTANCEREGISTRY_H_
#define DIAGCORE_INSTANCEREGISTRY_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <map>
#include <string>
#include <vector>

#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class InstanceRegistry {
 public:
  // One registered object: its bag (not owned; never deleted) and the
  // registry's long-lived clone of the instance built from it.
  struct Instance {
    Instance(InstanceImpl* impl, CMPIInstance* ci);

    InstanceImpl* impl;
    CMPIInstance* ci;
  };

  // The one registry, created on first use.
  static InstanceRegistry* Singleton();

  // `name` in upper case: the key under which a class's objects are filed.
  std::string NormalizeClassName(std::string name);

  // Builds `bag` (twice, keeping a clone of the second build), files it under
  // its class and object path text and writes that text into the bag. The bag
  // is handed over for good. When the class cannot be built, a warning is
  // traced and nothing is registered.
  void RegisterInstance(const CMPIBroker* broker, const CMPIContext* context, InstanceImpl* bag);

  // The entry filed under `path`'s class and object path text, or null.
  Instance* GetInstance(const CMPIBroker* broker, const CMPIObjectPath* path);

  // The registered instance of `path`, or null (traced as a warning).
  CMPIInstance* GetCMPIInstance(const CMPIBroker* broker, const CMPIObjectPath* path);

  // Appends the registered instances of `className` to `out`, in object path
  // text order; when the class's first entry has an "EnumOrder" property, the
  // whole of `out` is then sorted by EnumOrder instead.
  void GetCMPIInstances(const CMPIBroker* broker, std::string className,
                        std::vector<CMPIInstance*>& out);
  // The same for the class of `path`; its keys are ignored.
  void GetCMPIInstances(const CMPIBroker* broker, const CMPIObjectPath* path,
                        std::vector<CMPIInstance*>& out);

  // The names of the registered classes, each as its first registered bag
  // spells it, in the order of their upper-cased names.
  std::vector<std::string> GetClassNames();

  // Calls invokeMethod of the bag registered under `path`; CMPI_RC_ERR_NOT_FOUND
  // when there is none.
  CMPIStatus InvokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* path,
                          std::string methodName, const CMPIArgs* in, CMPIArgs* out);

 private:
  InstanceRegistry();
  ~InstanceRegistry();

  std::map<std::string, std::map<std::string, InstanceRegistry::Instance*>*> containers;
};

// Strict less-than of two instances by their "EnumOrder" values, read as
// unsigned 32-bit numbers.
struct CompareInstanceEnumOrder {
  bool operator()(CMPIInstance* a, CMPIInstance* b) const;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_INSTANCEREGISTRY_H_
