// The broker's memory services. mark/release open and close a scope of
// their own; cmpiMalloc and friends hand out blocks owned by the current
// scope; the free* entries are early releases.
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "broker/Broker.h"
#include "broker/BrokerHost.h"
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

thread_local std::unordered_set<Scope*> tMarks;

CMPIGcStat* Mark(const CMPIBroker* broker, CMPIStatus* rc) {
  if (BrokerHost::Of(broker) == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost");
    return nullptr;
  }
  auto scope = std::make_unique<Scope>();
  tMarks.insert(scope.get());
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPIGcStat*>(static_cast<void*>(scope.release()));
}

CMPIStatus ReleaseMark(const CMPIBroker* broker, const CMPIGcStat* mark) {
  if (BrokerHost::Of(broker) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost");
  }
  auto* scope = static_cast<Scope*>(static_cast<void*>(const_cast<CMPIGcStat*>(mark)));
  if (tMarks.erase(scope) == 0) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER,
                      "release: not a mark made on this thread, or already released");
  }
  delete scope;
  return MakeStatus(CMPI_RC_OK);
}

void* Malloc(const CMPIBroker* broker, std::size_t size) {
  Scope* scope = Scope::Current();
  return BrokerHost::Of(broker) == nullptr || scope == nullptr ? nullptr
                                                               : scope->allocate(size, false);
}

void* Calloc(const CMPIBroker* broker, std::size_t count, std::size_t size) {
  Scope* scope = Scope::Current();
  if (BrokerHost::Of(broker) == nullptr || scope == nullptr ||
      (size != 0 && count > SIZE_MAX / size)) {
    return nullptr;
  }
  return scope->allocate(count * size, true);
}

void* Realloc(const CMPIBroker* broker, void* block, std::size_t size) {
  if (block == nullptr) {
    return Malloc(broker, size);
  }
  Scope* owner = Scope::OwnerOfBlock(block);
  return BrokerHost::Of(broker) == nullptr || owner == nullptr ? nullptr
                                                               : owner->reallocate(block, size);
}

char* StrDup(const CMPIBroker* broker, const char* text) {
  if (text == nullptr) {
    return nullptr;
  }
  const std::size_t size = std::strlen(text) + 1;
  void* copy = Malloc(broker, size);
  if (copy != nullptr) {
    std::memcpy(copy, text, size);
  }
  return static_cast<char*>(copy);
}

void Free(const CMPIBroker*, void* block) {
  if (Scope* owner = Scope::OwnerOfBlock(block)) {
    owner->free(block);
  }
}

template <typename Cmpi>
void FreeObject(const CMPIBroker*, Cmpi* object) {
  HostObject* any = AsAnyObject(object);
  if (auto* string = dynamic_cast<StringObject*>(any); string != nullptr && string->immortal) {
    return;
  }
  ReleaseObject(any);
}

}  // namespace

const CMPIBrokerMemFT kBrokerMemFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIBrokerMemFT, mark, Mark),
    CMPIHOST_SLOT(CMPIBrokerMemFT, release, ReleaseMark),
    CMPIHOST_SLOT(CMPIBrokerMemFT, cmpiMalloc, Malloc),
    CMPIHOST_SLOT(CMPIBrokerMemFT, cmpiCalloc, Calloc),
    CMPIHOST_SLOT(CMPIBrokerMemFT, cmpiRealloc, Realloc),
    CMPIHOST_SLOT(CMPIBrokerMemFT, cmpiStrDup, StrDup),
    CMPIHOST_SLOT(CMPIBrokerMemFT, cmpiFree, Free),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeInstance, FreeObject<CMPIInstance>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeObjectPath, FreeObject<CMPIObjectPath>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeArgs, FreeObject<CMPIArgs>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeString, FreeObject<CMPIString>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeArray, FreeObject<CMPIArray>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeDateTime, FreeObject<CMPIDateTime>),
    CMPIHOST_SLOT(CMPIBrokerMemFT, freeSelectExp, FreeObject<CMPISelectExp>),
};

}  // namespace cmpihost
