// Freeing what the registry no longer files only when no request can still
// hold it. Internal to the library; see diagcore/InstanceRegistry.h.
//
// A request takes registered instances and bags out of the registry and uses
// them after the registry's lock is released (it hands them to the CIMOM, or
// runs a bag's method). A removed object is therefore unlinked at once, so
// that no later request finds it, but freed only after every request that
// began before the removal has ended.
#ifndef DIAGCORE_CORE_RECLAMATION_H_
#define DIAGCORE_CORE_RECLAMATION_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <cstdint>
#include <vector>

#include "diagcore/Export.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

// Frees an unlinked entry: its bag, its clone and the entry itself.
void FreeEntry(InstanceRegistry::Instance* entry);

// Hands unlinked entries over to be freed when no request that may hold them
// runs any more (at once when none runs).
void Reclaim(std::vector<InstanceRegistry::Instance*> unlinked);

// Marks one request as running for its lifetime, and first removes what has
// expired, so that the request cannot serve it.
// Exported for the registry's lifetime tests alone, which hold a request open.
class DIAGCORE_EXPORT RequestScope {
 public:
  explicit RequestScope(const CMPIBroker* broker);
  ~RequestScope();
  RequestScope(const RequestScope&) = delete;
  RequestScope& operator=(const RequestScope&) = delete;

 private:
  std::uint64_t ticket_;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_RECLAMATION_H_
