#include "diagcore/InstanceRegistry.h"

#include <algorithm>
#include <cctype>
#include <mutex>
#include <sstream>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "core/TextStreams.h"
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

// A hash index beside each class's container, by path text: among a million
// records a lookup in the ordered map alone compares texts at some twenty
// levels of a tree spread over the heap. Its keys view the container's own
// key strings; each value points at the container's slot and holds a copy of
// what the slot holds, so that a lookup does not read the map node either.
// Map nodes never move and nothing is ever removed, so both stay valid for
// good. Guarded by registryMutex, and kept for the life of the process like
// the containers.
struct Indexed {
  Slot* slot;
  Slot entry;
  CMPIInstance* ci;  // the entry's, or null
};
using PathIndex = std::unordered_map<std::string_view, Indexed>;

PathIndex& IndexOf(const Container* container) {
  static auto* const indexes = new std::unordered_map<const Container*, PathIndex>();
  return (*indexes)[container];
}

// The index's record of the slot filed under `pathText`; the slot is
// inserted empty when there is none (as the container's operator[] does),
// and is known to the index from then on.
Indexed& IndexedOf(Container& container, const std::string& pathText) {
  PathIndex& index = IndexOf(&container);
  const auto found = index.find(pathText);
  if (found != index.end()) {
    return found->second;
  }
  const auto slot = container.try_emplace(pathText, nullptr).first;
  const Slot entry = slot->second;
  return index
      .emplace(std::string_view(slot->first),
               Indexed{&slot->second, entry, entry != nullptr ? entry->ci : nullptr})
      .first->second;
}

// Files `entry` under `pathText`, replacing what was filed there.
void File(Container& container, const std::string& pathText, Slot entry) {
  Indexed& indexed = IndexedOf(container, pathText);
  *indexed.slot = entry;
  indexed.entry = entry;
  indexed.ci = entry->ci;
}

// Asks the memory for the entry and its instance at once, before the caller
// reads the one to find the other: among a million records both are far.
InstanceRegistry::Instance* Fetched(const Indexed& indexed) {
  if (indexed.entry != nullptr) {
    __builtin_prefetch(indexed.entry);
    __builtin_prefetch(indexed.ci);
  }
  return indexed.entry;
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
    return;
  }

  Trace(broker, CMPI_DEV_DEBUG,
        {"Created instance: ", PointerText(clone), ", hdl = ", PointerText(clone->hdl)});

  Instance* entry = NewRegistryEntry(bag, clone);
  const CMPIObjectPath* path = clone->ft->getObjectPath(clone, &status);
  const std::string classKey = NormalizeClassName(CMPIUtil::GetClassName(path));
  const std::string pathText = CMPIUtil::GetObjectPathString(path);
  // Written before the entry is published, so that a request served from
  // another thread never sees the bag without its path text.
  bag->setObjectPath(pathText);
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    auto*& container = containers[classKey];
    if (container == nullptr) {
      container = NewRegistryContainer();
    }
    // A later registration under the same text wins; the earlier entry stays
    // allocated, as everything once registered does.
    File(*container, pathText, entry);
  }
  Trace(broker, CMPI_DEV_DEBUG, {">>>>> Registered ", pathText});
}

InstanceRegistry::Instance* InstanceRegistry::GetInstance(const CMPIBroker* broker,
                                                          const CMPIObjectPath* path) {
  const std::string classKey = NormalizeClassName(CMPIUtil::GetClassName(path));
  const std::string pathText = CMPIUtil::GetObjectPathString(path);
  bool classKnown = false;
  Instance* found = nullptr;
  {
    const std::lock_guard<std::mutex> lock(registryMutex);
    auto* container = containers[classKey];
    classKnown = container != nullptr;
    if (classKnown) {
      found = Fetched(IndexedOf(*container, pathText));
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
