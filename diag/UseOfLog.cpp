#include "diagcore/UseOfLog.h"

#include <utility>

#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

UseOfLog::UseOfLog(std::string className) : InstanceImpl(std::move(className)) {
  UseOfLog::init();
}

UseOfLog::~UseOfLog() = default;

void UseOfLog::init() {
  InsertAbsentDefaults(
      *this, {{"Antecedent", "CIM_DiagnosicRecord"}, {"Dependent", "CIM_DiagnosticService"}});
}

}  // namespace NQENDRA20
