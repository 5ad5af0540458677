#include "cmpihost/CallScope.h"

#include "HostImpl.h"
#include "broker/Objects.h"
#include "broker/PathText.h"
#include "broker/Scope.h"
#include "providers/Dispatcher.h"

namespace cmpihost {

struct CallScope::Impl {
  explicit Impl(Host& owner) : host(*owner.impl_) {}
  Host::Impl& host;
  Scope scope;  // opened here, on the constructing thread
  const ContextObject* context = nullptr;
};

CallScope::CallScope(Host& host) : impl_(std::make_unique<Impl>(host)) {
  impl_->context = CreateInScope<ContextObject>(
      nullptr, impl_->host.contextEntries(impl_->host.defaultNameSpace));
}

CallScope::~CallScope() = default;

const CMPIBroker* CallScope::broker() const {
  return impl_->host.cmpiBroker();
}

const CMPIContext* CallScope::context() const {
  return impl_->context;
}

CMPIObjectPath* CallScope::objectPath(const std::string& pathText, std::string* problem) {
  Host::Impl& host = impl_->host;
  try {
    PathData path = ParsePath(pathText, host.defaultNameSpace, host.lookup());
    return CreateInScope<ObjectPathObject>(nullptr, std::move(path));
  } catch (const HostError& error) {
    if (problem != nullptr) {
      *problem = error.what();
    }
    return nullptr;
  }
}

CMPIResult* CallScope::newResult() {
  return CreateInScope<ResultObject>(nullptr);
}

Reply CallScope::recorded(const CMPIResult* result) const {
  const ResultObject* object = AsResult(result);
  if (object == nullptr) {
    Reply reply;
    reply.status.rc = CMPI_RC_ERR_INVALID_HANDLE;
    reply.status.hasMessage = true;
    reply.status.message = "not a result of this host";
    return reply;
  }
  Gathered gathered;
  gathered.records = object->records;
  return ToReply(gathered);
}

InstanceSnapshot CallScope::snapshot(const CMPIInstance* instance) const {
  const InstanceObject* object = AsInstance(instance);
  return object == nullptr ? InstanceSnapshot{} : ToSnapshot(object->data());
}

std::size_t CallScope::liveObjects() const {
  return impl_->scope.liveObjects();
}

}  // namespace cmpihost
