#include "diagcore/ServiceFactory.h"

#include "diagcore/CMPIUtil.h"

namespace NQENDRA20 {

ServiceFactory::~ServiceFactory() = default;

DiagService** ServiceFactory::CreateServices(const CMPIBroker* broker, const CMPIContext* context,
                                             unsigned int& serviceCount) {
  // Date-time first: the install date is the moment start-up began, before
  // the upcall that finds the system, which may take long.
  const std::string dateTime = CMPIUtil::GetDateTimeString(broker);
  const std::string systemName = CMPIUtil::GetSystemName(broker, context);
  return CreateServicesImpl(dateTime, systemName, serviceCount);
}

}  // namespace NQENDRA20
