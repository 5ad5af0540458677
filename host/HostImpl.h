// The front door is cmpihost/Host.h; this header is internal.
// What a Host holds, for Host.cpp and CallScope.cpp.
#ifndef CMPIHOST_HOSTIMPL_H_
#define CMPIHOST_HOSTIMPL_H_

#include "cmpihost/Host.h"
#include "providers/HostState.h"

namespace cmpihost {

struct Host::Impl final : HostState {};

}  // namespace cmpihost

#endif  // CMPIHOST_HOSTIMPL_H_
