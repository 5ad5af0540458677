// Handing a new bag to the registry without leaking it or freeing it twice.
// Internal to the library.
#ifndef DIAGCORE_DIAG_REGISTRYHANDOVER_H_
#define DIAGCORE_DIAG_REGISTRYHANDOVER_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <memory>

#include "diagcore/InstanceImpl.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

// Registers `bag`, which must not have an object path yet. The registry
// shows that it took a bag by writing the path text into it; a bag it did
// not take (its class could not be built) is freed here. Should registration
// throw after taking the bag, the bag is left to the registry.
void HandToRegistry(InstanceRegistry* registry, const CMPIBroker* broker,
                    const CMPIContext* context, std::unique_ptr<InstanceImpl> bag);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_REGISTRYHANDOVER_H_
