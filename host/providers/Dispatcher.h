// The front door is cmpihost/Host.h; this header is internal.
// Turns requests into MI calls: finds the providers, runs each call in its
// own call scope and copies out what it delivered. Used by Host's requests
// and by the broker's upcalls.
#ifndef CMPIHOST_PROVIDERS_DISPATCHER_H_
#define CMPIHOST_PROVIDERS_DISPATCHER_H_

#include <cmpidt.h>

#include <string>
#include <vector>

#include "broker/BrokerHost.h"
#include "cmpihost/HostTypes.h"
#include "cmpihost/Reply.h"
#include "providers/HostState.h"

namespace cmpihost {

enum class AssociationOp { kAssociators, kAssociatorNames, kReferences, kReferenceNames };

// A null properties pointer means all properties.
Gathered DispatchEnumerate(HostState& host, const PathData& classPath,
                           const std::vector<std::string>* properties, bool namesOnly);
Gathered DispatchGetInstance(HostState& host, const PathData& path,
                             const std::vector<std::string>* properties);
Gathered DispatchCreateInstance(HostState& host, const PathData& path,
                                const InstanceData& instance);
Gathered DispatchModifyInstance(HostState& host, const PathData& path, const InstanceData& instance,
                                const std::vector<std::string>* properties);
Gathered DispatchDeleteInstance(HostState& host, const PathData& path);
Gathered DispatchExecQuery(HostState& host, const PathData& classPath, const std::string& query,
                           const std::string& language);
Gathered DispatchInvokeMethod(HostState& host, const PathData& path, const std::string& method,
                              const NamedValues& in);
Gathered DispatchAssociation(HostState& host, AssociationOp op, const PathData& path,
                             const AssociationFilter& filter,
                             const std::vector<std::string>* properties);

// A static instance of the repository as an instance value.
InstanceData BuildStaticInstance(HostState& host, const std::string& nameSpace,
                                 const StaticInstance& instance);

// The public form of what was gathered.
Reply ToReply(const Gathered& gathered);

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_DISPATCHER_H_
