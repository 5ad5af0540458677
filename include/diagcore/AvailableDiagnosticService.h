// AvailableDiagnosticService: the association that makes a diagnostic
// service available to an element it tests.
//
// Both references start empty; whoever creates the association fills them
// with object path texts (AvailServiceFactory does, for every tested element).
#ifndef DIAGCORE_AVAILABLEDIAGNOSTICSERVICE_H_
#define DIAGCORE_AVAILABLEDIAGNOSTICSERVICE_H_

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT AvailableDiagnosticService : public InstanceImpl {
 public:
  // An association served as the CIM class `className`, holding the defaults.
  explicit AvailableDiagnosticService(std::string className);
  ~AvailableDiagnosticService() override;

  // Adds ServiceProvided "" and UserOfService "" where they are absent.
  void init() override;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_AVAILABLEDIAGNOSTICSERVICE_H_
