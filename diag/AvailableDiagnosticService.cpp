#include "diagcore/AvailableDiagnosticService.h"

#include <utility>

#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

AvailableDiagnosticService::AvailableDiagnosticService(std::string className)
    : InstanceImpl(std::move(className)) {
  AvailableDiagnosticService::init();
}

AvailableDiagnosticService::~AvailableDiagnosticService() = default;

void AvailableDiagnosticService::init() {
  InsertAbsentDefaults(*this, {{"ServiceProvided", ""}, {"UserOfService", ""}});
}

}  // namespace NQENDRA20
