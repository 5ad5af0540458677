// The front door is cmpihost/Host.h; this header is internal.
// The life of MIs: created from their factories on first need, cleaned up
// when idle or when the host goes.
#ifndef CMPIHOST_PROVIDERS_ACTIVATION_H_
#define CMPIHOST_PROVIDERS_ACTIVATION_H_

#include <cmpift.h>

#include <string>
#include <vector>

#include "cmpihost/HostTypes.h"
#include "providers/HostState.h"

namespace cmpihost {

// A failed status with a message.
Status Failure(CMPIrc rc, std::string message);
// A provider's status as host values (its message copied out).
Status CopyStatus(const CMPIStatus& status);

// The MI of that kind, created now if need be; null with `refusal` set when
// the provider cannot give one.
void* ActivateMi(HostState& host, ProviderEntry& provider, MiKind kind, std::string& refusal);
// Every MI of every registered kind; returns "provider P, Kind MI: reason" lines.
std::vector<std::string> ActivateAll(HostState& host);
// Calls cleanup(terminating) on every created MI, newest first.
void CleanupAll(HostState& host);
// Host::unloadIdleProviders.
std::vector<UnloadAnswer> UnloadIdle(HostState& host);

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_ACTIVATION_H_
