// InstanceRegistry: the process-wide store of every object the library serves.
//
// Each registered bag is built into a CMPIInstance, and a clone of it is kept
// for the life of the process, filed under the upper-cased class name and the
// object path text. Every get, enumeration and method call is answered from
// here. A later registration under the same class and path text replaces the
// earlier one. Objects registered with RegisterInstance are never removed;
// only a Batch filed with a Lifetime that ends goes away again (a plug-in
// opts into that; see DiagnosticsProfile.h). A lookup by path finds the object
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
#include <memory>
#include <string>
#include <vector>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT InstanceRegistry {
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

  // When the objects of one Batch go away again, all at once.
  struct Lifetime {
    static constexpr CMPIUint64 kForever = ~CMPIUint64{0};

    // The broker's binary date-time (microseconds since the epoch) from which
    // the objects are expired; kForever: never.
    CMPIUint64 expiresAt = kForever;
    // Whose batches `bound` counts (e.g. a service's object path text).
    std::string owner;
    // How many batches of `owner` are kept at most; filing one more removes
    // the oldest first. 0: no bound.
    unsigned int bound = 0;
  };

  // Objects to be filed at once (a run's record with its associations): a
  // request sees all of them or none, and they are removed together. The
  // bags are built as they are added, so that later bags can refer to the
  // object paths of earlier ones. What is never filed is freed with it.
  class Batch {
   public:
    struct Added {
      std::string pathText;        // "" when the bag could not be built
      const CMPIObjectPath* path;  // the built instance's, with its namespace
    };

    Batch() = default;
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    // Takes `bag` and builds it as RegisterInstance does. A bag whose class
    // cannot be built is freed, traced as a warning, and left out.
    Added Add(const CMPIBroker* broker, const CMPIContext* context,
              std::unique_ptr<InstanceImpl> bag);

    struct Built;

   private:
    friend class InstanceRegistry;
    std::vector<Built*> built_;
  };

  // Files every object of `batch` (emptying it) and traces each as
  // RegisterInstance does. With an owner's bound reached, that owner's
  // oldest batches are removed first.
  void Register(const CMPIBroker* broker, Batch& batch, const Lifetime& lifetime);

  // Removes every filed batch whose Lifetime has ended by the broker's
  // current time, with all its objects, and frees their bags and clones as
  // soon as no request that began before the removal still runs. Asks the
  // broker for the time only while some batch can expire. The library's
  // entry points call it before serving any request.
  void RemoveExpired(const CMPIBroker* broker);

  // How many filed batches are kept (for tests and benchmarks).
  std::size_t BatchCount();

 private:
  InstanceRegistry();
  ~InstanceRegistry();

  std::map<std::string, std::map<std::string, InstanceRegistry::Instance*>*> containers;
};

// Strict less-than of two instances by their "EnumOrder" values, read as
// unsigned 32-bit numbers.
struct DIAGCORE_EXPORT CompareInstanceEnumOrder {
  bool operator()(CMPIInstance* a, CMPIInstance* b) const;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_INSTANCEREGISTRY_H_
