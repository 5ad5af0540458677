// The broker's services (upcalls): thread attachment and the instance
// requests a provider may make of the CIMOM. Enumerations are served by the
// providers and static instances of the class and its subclasses; the other
// requests are not offered.
#include <memory>
#include <vector>

#include "broker/Broker.h"
#include "broker/BrokerHost.h"
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOffered = "cmpihost does not offer this upcall";

thread_local std::vector<std::unique_ptr<Scope>> tAttached;

BrokerHost* HostFor(const CMPIBroker* broker, CMPIStatus* rc) {
  BrokerHost* host = BrokerHost::Of(broker);
  if (host == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost (null or foreign handle)");
  }
  return host;
}

std::unique_ptr<std::vector<std::string>> PropertyList(const char** properties) {
  if (properties == nullptr) {
    return nullptr;
  }
  auto list = std::make_unique<std::vector<std::string>>();
  for (const char** name = properties; *name != nullptr; ++name) {
    list->emplace_back(*name);
  }
  return list;
}

// What an instance upcall works with once its arguments are checked.
struct Upcall {
  BrokerHost& host;
  PathData path;  // in the host's default namespace when it names none
};

// Checks what every instance upcall needs: one of our brokers, one of its
// paths, and a scope open for what the upcall returns. Null, with `rc` set,
// when anything is missing.
std::optional<Upcall> BeginUpcall(const CMPIBroker* broker, const CMPIObjectPath* path,
                                  CMPIStatus* rc) {
  BrokerHost* host = HostFor(broker, rc);
  if (host == nullptr) {
    return std::nullopt;
  }
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, path == nullptr ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_ERR_INVALID_HANDLE,
              "the object path is null or not one of this broker");
    return std::nullopt;
  }
  if (Scope::Current() == nullptr) {
    SetNoScopeStatus(rc);
    return std::nullopt;
  }
  Upcall upcall{*host, object->path};
  if (upcall.path.nameSpace.empty()) {
    upcall.path.nameSpace = host->nameSpaceOfUnnamed();
  }
  return upcall;
}

// CMPI_RC_OK for one of our brokers; otherwise the status that says it is not.
CMPIStatus CheckBroker(const CMPIBroker* broker) {
  return BrokerHost::Of(broker) == nullptr
             ? MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost")
             : MakeStatus(CMPI_RC_OK);
}

void SetGatheredStatus(CMPIStatus* rc, const Status& status) {
  SetStatus(rc, status.rc, status.hasMessage ? status.message : std::string());
}

CMPIEnumeration* Enumerate(const CMPIBroker* broker, const CMPIObjectPath* path,
                           const char** properties, bool namesOnly, CMPIStatus* rc) {
  const std::optional<Upcall> upcall = BeginUpcall(broker, path, rc);
  if (!upcall) {
    return nullptr;
  }
  const auto list = PropertyList(properties);
  // An unknown class is answered like one without instances: empty.
  const Gathered gathered = upcall->host.enumerate(upcall->path, list.get(), namesOnly);
  if (gathered.status.rc != CMPI_RC_OK && gathered.status.rc != CMPI_RC_ERR_INVALID_CLASS) {
    SetGatheredStatus(rc, gathered.status);
    return nullptr;
  }
  std::vector<HostValue> items;
  for (const ResultRecord& record : gathered.records) {
    const bool wanted = namesOnly ? record.kind == ResultRecord::Kind::kObjectPath
                                  : record.kind == ResultRecord::Kind::kInstance;
    if (wanted) {
      items.push_back(record.value);
    }
  }
  return CreateInScope<EnumerationObject>(rc, namesOnly ? CMPI_ref : CMPI_instance,
                                          std::move(items));
}

CMPIEnumeration* EnumerateInstanceNames(const CMPIBroker* broker, const CMPIContext*,
                                        const CMPIObjectPath* path, CMPIStatus* rc) {
  return Enumerate(broker, path, nullptr, true, rc);
}

CMPIEnumeration* EnumerateInstances(const CMPIBroker* broker, const CMPIContext*,
                                    const CMPIObjectPath* path, const char** properties,
                                    CMPIStatus* rc) {
  return Enumerate(broker, path, properties, false, rc);
}

CMPIInstance* GetInstance(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath* path,
                          const char** properties, CMPIStatus* rc) {
  const std::optional<Upcall> upcall = BeginUpcall(broker, path, rc);
  if (!upcall) {
    return nullptr;
  }
  const auto list = PropertyList(properties);
  const Gathered gathered = upcall->host.getInstance(upcall->path, list.get());
  if (gathered.status.rc != CMPI_RC_OK) {
    SetGatheredStatus(rc, gathered.status);
    return nullptr;
  }
  for (const ResultRecord& record : gathered.records) {
    if (record.kind == ResultRecord::Kind::kInstance) {
      return CreateInScope<InstanceObject>(rc, record.value.sharedInstance());
    }
  }
  SetStatus(rc, CMPI_RC_ERR_NOT_FOUND, "no instance " + PathToString(upcall->path));
  return nullptr;
}

// --- threads ---

CMPIContext* PrepareAttachThread(const CMPIBroker* broker, const CMPIContext* context) {
  if (BrokerHost::Of(broker) == nullptr) {
    return nullptr;
  }
  const ContextObject* object = AsContext(context);
  if (object == nullptr) {
    return nullptr;
  }
  // Owned by the caller until detachThread, like a clone.
  return CreateOwned<ContextObject>(nullptr, object->entries);
}

CMPIStatus AttachThread(const CMPIBroker* broker, const CMPIContext* context) {
  if (const CMPIStatus checked = CheckBroker(broker); checked.rc != CMPI_RC_OK) {
    return checked;
  }
  if (AsContext(context) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, "attachThread: not a context of this broker");
  }
  // The thread's own scope: what it creates lives until detachThread.
  tAttached.push_back(std::make_unique<Scope>());
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus DetachThread(const CMPIBroker* broker, const CMPIContext* context) {
  if (const CMPIStatus checked = CheckBroker(broker); checked.rc != CMPI_RC_OK) {
    return checked;
  }
  if (tAttached.empty()) {
    return MakeStatus(CMPI_RC_ERR_FAILED, "detachThread: this thread is not attached");
  }
  tAttached.pop_back();
  ContextObject* object = AsContext(context);
  if (object != nullptr && object->scope() == nullptr) {
    ReleaseObject(object);  // the context prepareAttachThread made
  }
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus DeliverIndication(const CMPIBroker* broker, const CMPIContext*, const char*,
                             const CMPIInstance*) {
  const CMPIStatus checked = CheckBroker(broker);
  return checked.rc != CMPI_RC_OK
             ? checked
             : MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED, "cmpihost does not deliver indications");
}

// --- requests the host does not offer ---

template <typename Result>
Result NotOffered(const CMPIBroker* broker, CMPIStatus* rc) {
  if (HostFor(broker, rc) != nullptr) {
    SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, kNotOffered);
  }
  if constexpr (std::is_same_v<Result, CMPIData>) {
    return NullData(CMPI_null);
  } else {
    return nullptr;
  }
}

CMPIObjectPath* CreateInstance(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                               const CMPIInstance*, CMPIStatus* rc) {
  return NotOffered<CMPIObjectPath*>(broker, rc);
}

CMPIStatus StatusNotOffered(const CMPIBroker* broker) {
  const CMPIStatus checked = CheckBroker(broker);
  return checked.rc != CMPI_RC_OK ? checked : MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED, kNotOffered);
}

CMPIStatus ModifyInstance(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                          const CMPIInstance*, const char**) {
  return StatusNotOffered(broker);
}

CMPIStatus DeleteInstance(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*) {
  return StatusNotOffered(broker);
}

CMPIEnumeration* ExecQuery(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                           const char*, const char*, CMPIStatus* rc) {
  return NotOffered<CMPIEnumeration*>(broker, rc);
}

CMPIEnumeration* Associators(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                             const char*, const char*, const char*, const char*, const char**,
                             CMPIStatus* rc) {
  return NotOffered<CMPIEnumeration*>(broker, rc);
}

CMPIEnumeration* AssociatorNames(const CMPIBroker* broker, const CMPIContext*,
                                 const CMPIObjectPath*, const char*, const char*, const char*,
                                 const char*, CMPIStatus* rc) {
  return NotOffered<CMPIEnumeration*>(broker, rc);
}

CMPIEnumeration* References(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                            const char*, const char*, const char**, CMPIStatus* rc) {
  return NotOffered<CMPIEnumeration*>(broker, rc);
}

CMPIEnumeration* ReferenceNames(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                                const char*, const char*, CMPIStatus* rc) {
  return NotOffered<CMPIEnumeration*>(broker, rc);
}

CMPIData InvokeMethod(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                      const char*, const CMPIArgs*, CMPIArgs*, CMPIStatus* rc) {
  return NotOffered<CMPIData>(broker, rc);
}

CMPIStatus SetProperty(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                       const char*, const CMPIValue*, CMPIType) {
  return StatusNotOffered(broker);
}

CMPIData GetProperty(const CMPIBroker* broker, const CMPIContext*, const CMPIObjectPath*,
                     const char*, CMPIStatus* rc) {
  return NotOffered<CMPIData>(broker, rc);
}

}  // namespace

const CMPIBrokerFT kBrokerFT = {
    CMPI_MB_BasicRead,
    CMPIVersion200,
    "cmpihost",
    CMPIHOST_SLOT(CMPIBrokerFT, prepareAttachThread, PrepareAttachThread),
    CMPIHOST_SLOT(CMPIBrokerFT, attachThread, AttachThread),
    CMPIHOST_SLOT(CMPIBrokerFT, detachThread, DetachThread),
    CMPIHOST_SLOT(CMPIBrokerFT, deliverIndication, DeliverIndication),
    CMPIHOST_SLOT(CMPIBrokerFT, enumerateInstanceNames, EnumerateInstanceNames),
    CMPIHOST_SLOT(CMPIBrokerFT, getInstance, GetInstance),
    CMPIHOST_SLOT(CMPIBrokerFT, createInstance, CreateInstance),
    CMPIHOST_SLOT(CMPIBrokerFT, modifyInstance, ModifyInstance),
    CMPIHOST_SLOT(CMPIBrokerFT, deleteInstance, DeleteInstance),
    CMPIHOST_SLOT(CMPIBrokerFT, execQuery, ExecQuery),
    CMPIHOST_SLOT(CMPIBrokerFT, enumerateInstances, EnumerateInstances),
    CMPIHOST_SLOT(CMPIBrokerFT, associators, Associators),
    CMPIHOST_SLOT(CMPIBrokerFT, associatorNames, AssociatorNames),
    CMPIHOST_SLOT(CMPIBrokerFT, references, References),
    CMPIHOST_SLOT(CMPIBrokerFT, referenceNames, ReferenceNames),
    CMPIHOST_SLOT(CMPIBrokerFT, invokeMethod, InvokeMethod),
    CMPIHOST_SLOT(CMPIBrokerFT, setProperty, SetProperty),
    CMPIHOST_SLOT(CMPIBrokerFT, getProperty, GetProperty),
};

BrokerHost::BrokerHost() {
  broker_.hdl = this;
  broker_.bft = const_cast<CMPIBrokerFT*>(&kBrokerFT);
  broker_.eft = const_cast<CMPIBrokerEncFT*>(&kBrokerEncFT);
  broker_.xft = const_cast<CMPIBrokerExtFT*>(&kBrokerExtFT);
  broker_.mft = const_cast<CMPIBrokerMemFT*>(&kBrokerMemFT);
}

BrokerHost* BrokerHost::Of(const CMPIBroker* broker) {
  if (broker == nullptr ||
      static_cast<const void*>(broker->bft) != static_cast<const void*>(&kBrokerFT)) {
    return nullptr;
  }
  return static_cast<BrokerHost*>(const_cast<void*>(static_cast<const void*>(broker->hdl)));
}

}  // namespace cmpihost
