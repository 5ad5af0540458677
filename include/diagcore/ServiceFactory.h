// ServiceFactory: how a plug-in creates its diagnostic services at start-up.
//
// The plug-in derives from it and implements CreateServicesImpl; calling
// CreateServices gathers what every service is created with (the current
// CIM date-time text as install date, and the managed system's name) and
// hands both to the hook, so that all services of one start-up share them.
//
// Example:
//   class MyFactory : public NQENDRA20::ServiceFactory {
//     NQENDRA20::DiagService** CreateServicesImpl(std::string date, std::string system,
//                                                 unsigned int& count) override {
//       count = 1;
//       auto** services = new NQENDRA20::DiagService*[1];
//       services[0] = new DiskTest(date, system);
//       return services;
//     }
//   };
//   unsigned int count = 0;
//   std::unique_ptr<NQENDRA20::DiagService*[]> services(
//       MyFactory().CreateServices(broker, context, count));
#ifndef DIAGCORE_SERVICEFACTORY_H_
#define DIAGCORE_SERVICEFACTORY_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/DiagService.h"
#include "diagcore/Export.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT ServiceFactory {
 public:
  // The plug-in's hook: creates the services with `dateTime` as install date
  // and `systemName` as system name, writes their number into `serviceCount`
  // and returns them as an array allocated with new[] of that many services,
  // each allocated with new. The caller owns the array (delete[]) and hands
  // each service to the InstanceRegistry.
  virtual DiagService** CreateServicesImpl(std::string dateTime, std::string systemName,
                                           unsigned int& serviceCount) = 0;

  virtual ~ServiceFactory();

  // Asks the broker for the current date-time text, then for the system name
  // ("" when there is no computer system), and returns what the hook returns
  // for them. `serviceCount` is passed to the hook untouched. Whatever the
  // hook throws passes through.
  DiagService** CreateServices(const CMPIBroker* broker, const CMPIContext* context,
                               unsigned int& serviceCount);
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_SERVICEFACTORY_H_
