#include "diagcore/InstanceRegistry.h"

#include <algorithm>
#include <cctype>
#include <mutex>
#include <sstream>
#include <unordered_map>
#include <utility>

#include "core/PathIdentity.h"
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

// Beside each class's container, its entries by key identity: requests name
// an object with its keys in any order and their names in any case (SFCB
// hands the provider the client's order). Filled at registration, guarded by
// registryMutex, and kept for the life of the process like the containers.
using IdentityIndex = std::unordered_map<std::string, Slot>;

IdentityIndex& IdentitiesOf(const Container* container) {
  static auto* const indexes = new std::unordered_map<const Container*, IdentityIndex>();
  return (*indexes)[container];
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
  const std::string identity = KeyIdentity(path);
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
    (*container)[pathText] = entry;
    IdentitiesOf(container)[identity] = entry;
  }
  Trace(broker, CMPI_DEV_DEBUG, {">>>>> Registered ", pathText});
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
