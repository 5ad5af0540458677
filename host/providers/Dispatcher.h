// Turns requests into MI calls: finds the providers, creates their MIs on
// first need, runs each call in its own call scope and copies out what it
// delivered. Used by Host's requests and by the broker's upcalls.
#ifndef CMPIHOST_PROVIDERS_DISPATCHER_H_
#define CMPIHOST_PROVIDERS_DISPATCHER_H_

#include <cmpidt.h>

#include <string>
#include <vector>

#include "HostImpl.h"
#include "broker/Objects.h"
#include "broker/Values.h"
#include "cmpihost/Host.h"
#include "cmpihost/Reply.h"

namespace cmpihost {

// What a request produced, as host values.
struct Gathered {
  Status status;
  std::vector<ResultRecord> records;
  unsigned providerCalls = 0;
  bool served = false;       // some provider or static instance answered for the class
  NamedValues outArguments;  // invokeMethod
};

enum class AssociationOp { kAssociators, kAssociatorNames, kReferences, kReferenceNames };

// The MI of that kind, created now if need be; null with `refusal` set when
// the provider cannot give one.
void* ActivateMi(Host::Impl& host, ProviderEntry& provider, MiKind kind, std::string& refusal);
// Every MI of every registered kind; returns "provider P, Kind MI: reason" lines.
std::vector<std::string> ActivateAll(Host::Impl& host);
// Calls cleanup(terminating) on every created MI, newest first.
void CleanupAll(Host::Impl& host);
// Host::unloadIdleProviders.
std::vector<UnloadAnswer> UnloadIdle(Host::Impl& host);

// A null properties pointer means all properties.
Gathered DispatchEnumerate(Host::Impl& host, const PathData& classPath,
                           const std::vector<std::string>* properties, bool namesOnly);
Gathered DispatchGetInstance(Host::Impl& host, const PathData& path,
                             const std::vector<std::string>* properties);
Gathered DispatchCreateInstance(Host::Impl& host, const PathData& path,
                                const InstanceData& instance);
Gathered DispatchModifyInstance(Host::Impl& host, const PathData& path,
                                const InstanceData& instance,
                                const std::vector<std::string>* properties);
Gathered DispatchDeleteInstance(Host::Impl& host, const PathData& path);
Gathered DispatchExecQuery(Host::Impl& host, const PathData& classPath, const std::string& query,
                           const std::string& language);
Gathered DispatchInvokeMethod(Host::Impl& host, const PathData& path, const std::string& method,
                              const NamedValues& in);
Gathered DispatchAssociation(Host::Impl& host, AssociationOp op, const PathData& path,
                             const AssociationFilter& filter,
                             const std::vector<std::string>* properties);

// A static instance of the repository as an instance value.
InstanceData BuildStaticInstance(Host::Impl& host, const std::string& nameSpace,
                                 const StaticInstance& instance);

// The public form of what was gathered.
Reply ToReply(const Gathered& gathered);

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_DISPATCHER_H_
