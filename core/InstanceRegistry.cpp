#include "diagcore/InstanceRegistry.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <list>
#include <mutex>
#include <sstream>
#include <unordered_map>
#include <utility>

#include "core/PathIdentity.h"
#include "core/Reclamation.h"
#include "core/Trace.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"

namespace NQENDRA20 {

namespace {

// Guards `containers` and every per-class container. Held only around map
// accesses: never while the broker is called back (it may call into the
// provider again) nor while a bag's method runs (a plug-in's test can take
// long, and may register objects itself).
std::mutex registryMutex;

using Container = std::map<std::string, InstanceRegistry::Instance*>;
using Slot = InstanceRegistry::Instance*;

// The registry's two allocations that are kept for the life of the process
// have functions of their own, so that the leak checker's suppressions
// (tests/lsan.supp) can name exactly them and nothing else that registration
// allocates. Everything reachable only from them (slots, bags, clones) is
// kept with them. Never inlined, so that an optimised build keeps the names
// on the allocation's stack too.
[[gnu::noinline]] Container* NewRegistryContainer() {
  return new Container();
}

[[gnu::noinline]] InstanceRegistry::Instance* NewRegistryEntry(InstanceImpl* bag,
                                                               CMPIInstance* clone) {
  return new InstanceRegistry::Instance(bag, clone);
}

// Beside each class's container, its entries by key identity: requests name
// an object with its keys in any order and their names in any case (SFCB
// hands the provider the client's order). Filled at registration, guarded by
// registryMutex, and kept for the life of the process like the containers.
using IdentityIndex = std::unordered_map<std::string, Slot>;

IdentityIndex& IdentitiesOf(const Container* container) {
  static auto* const indexes = new std::unordered_map<const Container*, IdentityIndex>();
  return (*indexes)[container];
}

std::string PointerText(const void* pointer) {
  std::ostringstream text;
  text << pointer;
  return text.str();
}

}  // namespace

// One built object and where it is (to be) filed.
struct InstanceRegistry::Batch::Built {
  Instance* entry;
  const CMPIObjectPath* path;
  std::string classKey;
  std::string pathText;
  std::string identity;
};

namespace {

using Built = InstanceRegistry::Batch::Built;
using Containers = std::map<std::string, Container*>;
using BatchId = std::uint64_t;

// Builds `bag` into a clone, traced as registration always traced it; null
// (traced as a warning) when its class cannot be built. The bag stays the
// caller's.
std::unique_ptr<Built> BuildEntry(const CMPIBroker* broker, const CMPIContext* context,
                                  InstanceImpl* bag) {
  const InstanceBuilder builder(cimNameSpace);
  // Built twice on purpose: the clone operation is taken from the first
  // build's function table and applied to the second build.
  CMPIInstance* first = builder.build(broker, context, bag->getClassName(), *bag);
  CMPIInstance* second = builder.build(broker, context, bag->getClassName(), *bag);
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  CMPIInstance* clone =
      first != nullptr && second != nullptr ? first->ft->clone(second, &status) : nullptr;
  if (clone == nullptr) {
    Trace(broker, CMPI_SEV_WARNING, "Could not build instance of class " + bag->getClassName());
    return nullptr;
  }

  Trace(broker, CMPI_DEV_DEBUG,
        {"Created instance: ", PointerText(clone), ", hdl = ", PointerText(clone->hdl)});

  const CMPIObjectPath* path = clone->ft->getObjectPath(clone, &status);
  auto built = std::make_unique<Built>();
  built->entry = NewRegistryEntry(bag, clone);
  built->path = path;
  built->classKey = InstanceRegistry::Singleton()->NormalizeClassName(CMPIUtil::GetClassName(path));
  built->pathText = CMPIUtil::GetObjectPathString(path);
  built->identity = KeyIdentity(path);
  // Written before the entry is published, so that a request served from
  // another thread never sees the bag without its path text.
  bag->setObjectPath(built->pathText);
  return built;
}

// Under registryMutex.
void FileEntry(Containers& containers, const Built& built) {
  auto*& container = containers[built.classKey];
  if (container == nullptr) {
    container = NewRegistryContainer();
  }
  // A later registration under the same text wins; the earlier entry stays
  // allocated, as everything once registered does.
  (*container)[built.pathText] = built.entry;
  IdentitiesOf(container)[built.identity] = built.entry;
}

// Under registryMutex. An object that a later registration replaced is no
// longer filed under its texts, and the replacement stays.
void UnfileEntry(Containers& containers, const Built& built) {
  const auto found = containers.find(built.classKey);
  if (found == containers.end() || found->second == nullptr) {
    return;
  }
  Container& container = *found->second;
  const auto byText = container.find(built.pathText);
  if (byText != container.end() && byText->second == built.entry) {
    container.erase(byText);
  }
  IdentityIndex& identities = IdentitiesOf(&container);
  const auto byIdentity = identities.find(built.identity);
  if (byIdentity != identities.end() && byIdentity->second == built.entry) {
    identities.erase(byIdentity);
  }
}

// The filed batches whose lifetime can end, guarded by registryMutex.
struct FiledBatch {
  std::vector<Built> members;
  bool expires = false;
  std::multimap<CMPIUint64, BatchId>::iterator expiry;
  std::list<BatchId>* ownerBatches = nullptr;
  std::list<BatchId>::iterator inOwner;
};

struct Lifetimes {
  BatchId lastId = 0;
  std::unordered_map<BatchId, FiledBatch> batches;
  std::multimap<CMPIUint64, BatchId> byExpiry;
  std::unordered_map<std::string, std::list<BatchId>> byOwner;
};

Lifetimes& TheLifetimes() {
  static auto* const lifetimes = new Lifetimes();
  return *lifetimes;
}

// Read without the lock on every request: only while it is not 0 is the
// broker asked for the time.
std::atomic<std::size_t> expiringBatches{0};

// What a removal unlinked: the entries to free and the texts to trace.
struct Unlinked {
  std::vector<InstanceRegistry::Instance*> entries;
  std::vector<std::string> pathTexts;
};

// Under registryMutex.
void UnlinkBatch(Containers& containers, BatchId id, Unlinked& unlinked) {
  Lifetimes& lifetimes = TheLifetimes();
  const auto found = lifetimes.batches.find(id);
  if (found == lifetimes.batches.end()) {
    return;
  }
  FiledBatch& batch = found->second;
  for (const Built& member : batch.members) {
    UnfileEntry(containers, member);
    unlinked.entries.push_back(member.entry);
    unlinked.pathTexts.push_back(member.pathText);
  }
  if (batch.expires) {
    lifetimes.byExpiry.erase(batch.expiry);
    expiringBatches.fetch_sub(1, std::memory_order_relaxed);
  }
  if (batch.ownerBatches != nullptr) {
    batch.ownerBatches->erase(batch.inOwner);
  }
  lifetimes.batches.erase(found);
}

// Traced and handed over outside the lock.
void Release(const CMPIBroker* broker, Unlinked unlinked) {
  for (const std::string& pathText : unlinked.pathTexts) {
    Trace(broker, CMPI_DEV_DEBUG, {"<<<<< Removed ", pathText});
  }
  Reclaim(std::move(unlinked.entries));
}

// The broker's time in microseconds since the epoch, or 0 when it has none.
CMPIUint64 NowMicros(const CMPIBroker* broker) {
  CMPIDateTime* now = broker->eft->newDateTime(broker, nullptr);
  if (now == nullptr) {
    return 0;
  }
  const CMPIUint64 micros = now->ft->getBinaryFormat(now, nullptr);
  now->ft->release(now);
  return micros;
}

}  // namespace

InstanceRegistry::Instance::Instance(InstanceImpl* impl, CMPIInstance* ci) : impl(impl), ci(ci) {}

InstanceRegistry::InstanceRegistry() = default;

// Frees the outer map only: entries, bags and clones may still be referred to
// by whoever unloads the library last, so they are left alone.
InstanceRegistry::~InstanceRegistry() = default;

InstanceRegistry* InstanceRegistry::Singleton() {
  static InstanceRegistry registry;
  return &registry;
}

std::string InstanceRegistry::NormalizeClassName(std::string name) {
  for (char& c : name) {
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return name;
}

void InstanceRegistry::RegisterInstance(const CMPIBroker* broker, const CMPIContext* context,
                                        InstanceImpl* bag) {
  const std::unique_ptr<Built> built = BuildEntry(broker, context, bag);
  if (built == nullptr) {
    return;
  }
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    FileEntry(containers, *built);
  }
  Trace(broker, CMPI_DEV_DEBUG, {">>>>> Registered ", built->pathText});
}

InstanceRegistry::Batch::~Batch() {
  for (Built* built : built_) {
    FreeEntry(built->entry);
    delete built;
  }
}

InstanceRegistry::Batch::Added InstanceRegistry::Batch::Add(const CMPIBroker* broker,
                                                            const CMPIContext* context,
                                                            std::unique_ptr<InstanceImpl> bag) {
  std::unique_ptr<Built> built = BuildEntry(broker, context, bag.get());
  if (built == nullptr) {
    return Added{"", nullptr};
  }
  static_cast<void>(bag.release());  // the entry's now
  built_.reserve(built_.size() + 1);
  built_.push_back(built.release());
  return Added{built_.back()->pathText, built_.back()->path};
}

void InstanceRegistry::Register(const CMPIBroker* broker, Batch& batch, const Lifetime& lifetime) {
  std::vector<std::string> filed;
  Unlinked evicted;
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    Lifetimes& lifetimes = TheLifetimes();
    const BatchId id = ++lifetimes.lastId;
    FiledBatch& filedBatch = lifetimes.batches[id];
    filedBatch.members.reserve(batch.built_.size());
    for (Built* built : batch.built_) {
      FileEntry(containers, *built);
      filed.push_back(built->pathText);
      filedBatch.members.push_back(std::move(*built));
      delete built;
    }
    batch.built_.clear();
    if (lifetime.expiresAt != Lifetime::kForever) {
      filedBatch.expires = true;
      filedBatch.expiry = lifetimes.byExpiry.emplace(lifetime.expiresAt, id);
      expiringBatches.fetch_add(1, std::memory_order_relaxed);
    }
    if (lifetime.bound != 0) {
      std::list<BatchId>& owned = lifetimes.byOwner[lifetime.owner];
      filedBatch.inOwner = owned.insert(owned.end(), id);
      filedBatch.ownerBatches = &owned;
      while (owned.size() > lifetime.bound) {
        UnlinkBatch(containers, owned.front(), evicted);
      }
    }
  }
  for (const std::string& pathText : filed) {
    Trace(broker, CMPI_DEV_DEBUG, {">>>>> Registered ", pathText});
  }
  Release(broker, std::move(evicted));
}

void InstanceRegistry::RemoveExpired(const CMPIBroker* broker) {
  if (expiringBatches.load(std::memory_order_relaxed) == 0) {
    return;
  }
  const CMPIUint64 now = NowMicros(broker);
  Unlinked expired;
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    Lifetimes& lifetimes = TheLifetimes();
    while (!lifetimes.byExpiry.empty() && lifetimes.byExpiry.begin()->first <= now) {
      UnlinkBatch(containers, lifetimes.byExpiry.begin()->second, expired);
    }
  }
  Release(broker, std::move(expired));
}

std::size_t InstanceRegistry::BatchCount() {
  const std::lock_guard<std::mutex> lock(registryMutex);
  return TheLifetimes().batches.size();
}

InstanceRegistry::Instance* InstanceRegistry::GetInstance(const CMPIBroker* broker,
                                                          const CMPIObjectPath* path) {
  const std::string classKey = NormalizeClassName(CMPIUtil::GetClassName(path));
  const std::string identity = KeyIdentity(path);
  bool classKnown = false;
  Instance* found = nullptr;
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    auto* container = containers[classKey];
    classKnown = container != nullptr;
    if (classKnown) {
      const IdentityIndex& identities = IdentitiesOf(container);
      const auto match = identities.find(identity);
      found = match != identities.end() ? match->second : nullptr;
    }
  }
  if (!classKnown) {
    Trace(broker, CMPI_SEV_WARNING, " Couldn't find instanceContainer");
  }
  return found;
}

CMPIInstance* InstanceRegistry::GetCMPIInstance(const CMPIBroker* broker,
                                                const CMPIObjectPath* path) {
  Instance* entry = GetInstance(broker, path);
  if (entry != nullptr) {
    return entry->ci;
  }
  Trace(broker, CMPI_SEV_WARNING, "Didn't find instance");
  return nullptr;
}

void InstanceRegistry::GetCMPIInstances(const CMPIBroker* /*broker*/, std::string className,
                                        std::vector<CMPIInstance*>& out) {
  bool sortByEnumOrder = false;
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    auto* container = containers[NormalizeClassName(className)];
    if (container == nullptr) {
      return;
    }
    const Instance* firstEntry = nullptr;
    for (const auto& slot : *container) {
      // An empty slot is left by a lookup that missed; it holds no object.
      if (slot.second == nullptr) {
        continue;
      }
      if (firstEntry == nullptr) {
        firstEntry = slot.second;
      }
      out.push_back(slot.second->ci);
    }
    if (out.empty() || firstEntry == nullptr) {
      return;
    }
    sortByEnumOrder = firstEntry->impl->find("EnumOrder") != firstEntry->impl->end();
  }
  // The comparison asks the broker for property values: outside the lock.
  // Each value is read once, not at every comparison; std::sort moves the
  // elements by the outcomes of its comparisons alone, and those are the
  // ones CompareInstanceEnumOrder gives, so the order is the same.
  if (sortByEnumOrder) {
    std::vector<std::pair<CMPIUint32, CMPIInstance*>> keyed;
    keyed.reserve(out.size());
    for (CMPIInstance* instance : out) {
      keyed.emplace_back(instance->ft->getProperty(instance, "EnumOrder", nullptr).value.uint32,
                         instance);
    }
    std::sort(keyed.begin(), keyed.end(),
              [](const std::pair<CMPIUint32, CMPIInstance*>& a,
                 const std::pair<CMPIUint32, CMPIInstance*>& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < keyed.size(); ++i) {
      out[i] = keyed[i].second;
    }
  }
}

void InstanceRegistry::GetCMPIInstances(const CMPIBroker* broker, const CMPIObjectPath* path,
                                        std::vector<CMPIInstance*>& out) {
  GetCMPIInstances(broker, CMPIUtil::GetClassName(path), out);
}

std::vector<std::string> InstanceRegistry::GetClassNames() {
  std::vector<std::string> names;
  const std::lock_guard<std::mutex> lock(registryMutex);
  for (const auto& slot : containers) {
    if (slot.second == nullptr) {
      continue;
    }
    for (const auto& entry : *slot.second) {
      if (entry.second != nullptr) {
        names.push_back(entry.second->impl->getClassName());
        break;
      }
    }
  }
  return names;
}

CMPIStatus InstanceRegistry::InvokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* path,
                                          std::string methodName, const CMPIArgs* in,
                                          CMPIArgs* out) {
  Instance* entry = GetInstance(broker, path);
  if (entry == nullptr) {
    CMPIStatus notFound = {CMPI_RC_ERR_NOT_FOUND, nullptr};
    return notFound;
  }
  return entry->impl->invokeMethod(broker, context, result, path, methodName, in, out);
}

bool CompareInstanceEnumOrder::operator()(CMPIInstance* a, CMPIInstance* b) const {
  const CMPIData left = a->ft->getProperty(a, "EnumOrder", nullptr);
  const CMPIData right = b->ft->getProperty(b, "EnumOrder", nullptr);
  return left.value.uint32 < right.value.uint32;
}

}  // namespace NQENDRA20
