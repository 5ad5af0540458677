// AvailServiceFactory: makes a diagnostic service available to the elements
// it tests.
//
// For one registered service and the CIM class of its users, it registers one
// AvailableDiagnosticService association per user element the broker
// enumerates, numbered through EnumOrder, so that the registry serves them in
// that order. A plug-in derives from it to choose the users differently.
#ifndef DIAGCORE_AVAILSERVICEFACTORY_H_
#define DIAGCORE_AVAILSERVICEFACTORY_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT AvailServiceFactory {
 public:
  // The user elements: by default the broker's enumerateInstances of
  // `userClassName` in root/cimv2. May return null (nothing to offer).
  virtual CMPIEnumeration* EnumerateUsers(const CMPIBroker* broker, const CMPIContext* context,
                                          std::string userClassName);

  virtual ~AvailServiceFactory();

  // Registers, for each instance that EnumerateUsers yields, in its order, an
  // association of `associationClassName` with EstimatedDurationOfService
  // "3", EstimatedDurationQualifier "0", ServiceProvided the service's object
  // path text (register the service first), UserOfService the element's
  // object path text, and EnumOrder counting from `firstEnumOrder` by
  // `enumOrderStep` (unsigned 32-bit, wrapping). A null enumeration creates
  // nothing; an item that holds no instance is skipped with a warning (its
  // type and state are not looked at).
  //
  // Called from a DIAGCORE_PROVIDER start-up, it takes the users from the
  // registry when this provider has registered instances of `userClassName`
  // (EnumerateUsers is then not asked: a CIMOM cannot serve a provider's own
  // classes while that provider starts), and it warns when it linked the
  // service to no element at all.
  void CreateAvailableServices(const CMPIBroker* broker, const CMPIContext* context,
                               InstanceImpl* service, std::string userClassName,
                               std::string associationClassName, unsigned int firstEnumOrder,
                               unsigned int enumOrderStep);
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_AVAILSERVICEFACTORY_H_
