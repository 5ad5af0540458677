#include "diagcore/AvailServiceFactory.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/StartupScope.h"
#include "core/Trace.h"
#include "diag/RegistryHandOver.h"
#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

namespace {

// The object path of an enumerated user element, or null when the item holds
// no instance at all. The item's type and state are not looked at:
// OpenPegasus marks good instances CMPI_nullValue.
const CMPIObjectPath* UserPath(const CMPIData& item) {
  if (item.value.inst == nullptr) {
    return nullptr;
  }
  const CMPIInstance* user = item.value.inst;
  return user->ft->getObjectPath(user, nullptr);
}

// A plug-in whose start-up links a service to nothing has almost always
// asked for elements that nobody could give it yet; it is told so.
void WarnIfNothingLinked(const CMPIBroker* broker, const char* startup, unsigned int linked,
                         const std::string& userClassName,
                         const std::string& associationClassName) {
  if (startup == nullptr || linked != 0) {
    return;
  }
  Trace(broker, CMPI_SEV_WARNING,
        "CreateAvailableServices found no " + userClassName + " to link by " +
            associationClassName + " in the start-up of plug-in " + startup +
            ": register the elements in this provider before the call, or serve them from "
            "another provider");
}

}  // namespace

CMPIEnumeration* AvailServiceFactory::EnumerateUsers(const CMPIBroker* broker,
                                                     const CMPIContext* context,
                                                     std::string userClassName) {
  const CMPIObjectPath* users =
      broker->eft->newObjectPath(broker, cimNameSpace, userClassName.c_str(), nullptr);
  if (users == nullptr) {
    return nullptr;
  }
  return broker->bft->enumerateInstances(broker, context, users, nullptr, nullptr);
}

AvailServiceFactory::~AvailServiceFactory() = default;

void AvailServiceFactory::CreateAvailableServices(const CMPIBroker* broker,
                                                  const CMPIContext* context, InstanceImpl* service,
                                                  std::string userClassName,
                                                  std::string associationClassName,
                                                  unsigned int firstEnumOrder,
                                                  unsigned int enumOrderStep) {
  InstanceRegistry* registry = InstanceRegistry::Singleton();
  // A provider's start-up cannot have the CIMOM enumerate classes that the
  // provider serves itself (the CIMOM is still waiting for it to start, and
  // may refuse or hang), so elements it has registered are taken from here.
  const char* startup = StartupScope::Current();
  std::vector<CMPIInstance*> registeredUsers;
  if (startup != nullptr) {
    registry->GetCMPIInstances(broker, userClassName, registeredUsers);
  }
  CMPIEnumeration* users =
      registeredUsers.empty() ? EnumerateUsers(broker, context, userClassName) : nullptr;
  if (users == nullptr && registeredUsers.empty()) {
    WarnIfNothingLinked(broker, startup, 0, userClassName, associationClassName);
    return;
  }
  if (service == nullptr) {
    Trace(broker, CMPI_SEV_WARNING,
          "CreateAvailableServices was given no service for " + associationClassName);
    return;
  }
  unsigned int enumOrder = firstEnumOrder;
  unsigned int linked = 0;
  const auto link = [&](const CMPIObjectPath* userPath) {
    // Owned here until the registry takes it.
    auto association = std::make_unique<AvailableDiagnosticService>(associationClassName);
    AvailableDiagnosticService& bag = *association;
    bag["EstimatedDurationOfService"] = "3";
    bag["EstimatedDurationQualifier"] = "0";
    bag["ServiceProvided"] = service->getObjectPath();
    bag["UserOfService"] = CMPIUtil::GetObjectPathString(userPath);
    bag["EnumOrder"] = std::to_string(enumOrder);
    enumOrder += enumOrderStep;
    HandToRegistry(registry, broker, context, std::move(association));
    ++linked;
  };
  for (const CMPIInstance* user : registeredUsers) {
    link(user->ft->getObjectPath(user, nullptr));
  }
  while (users != nullptr && users->ft->hasNext(users, nullptr) != 0) {
    const CMPIData item = users->ft->getNext(users, nullptr);
    const CMPIObjectPath* userPath = UserPath(item);
    if (userPath == nullptr) {
      Trace(broker, CMPI_SEV_WARNING,
            "CreateAvailableServices skipped a " + userClassName + " item that holds no instance");
      continue;
    }
    link(userPath);
  }
  WarnIfNothingLinked(broker, startup, linked, userClassName, associationClassName);
}

}  // namespace NQENDRA20
