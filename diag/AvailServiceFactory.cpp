#include "diagcore/AvailServiceFactory.h"

#include <memory>
#include <string>
#include <utility>

#include "core/Trace.h"
#include "diag/RegistryHandOver.h"
#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

namespace {

// The object path of an enumerated user element, or null when the item is
// not an instance or has no path: such an item cannot be linked to.
const CMPIObjectPath* UserPath(const CMPIData& item) {
  if (item.type != CMPI_instance || (item.state & CMPI_nullValue) != 0 ||
      item.value.inst == nullptr) {
    return nullptr;
  }
  const CMPIInstance* user = item.value.inst;
  return user->ft->getObjectPath(user, nullptr);
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
  CMPIEnumeration* users = EnumerateUsers(broker, context, userClassName);
  if (users == nullptr) {
    return;
  }
  if (service == nullptr) {
    Trace(broker, CMPI_SEV_WARNING,
          "CreateAvailableServices was given no service for " + associationClassName);
    return;
  }
  unsigned int enumOrder = firstEnumOrder;
  while (users->ft->hasNext(users, nullptr) != 0) {
    const CMPIData item = users->ft->getNext(users, nullptr);
    const CMPIObjectPath* userPath = UserPath(item);
    if (userPath == nullptr) {
      Trace(broker, CMPI_SEV_WARNING,
            "CreateAvailableServices skipped a " + userClassName + " item that is not an instance");
      continue;
    }
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
  }
}

}  // namespace NQENDRA20
