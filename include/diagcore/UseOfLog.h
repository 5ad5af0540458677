// UseOfLog: the association between a diagnostic service and a record of it.
//
// Offered to plug-ins; the library creates none. The two references start as
// placeholder texts that the creator replaces with object path texts.
#ifndef DIAGCORE_USEOFLOG_H_
#define DIAGCORE_USEOFLOG_H_

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT UseOfLog : public InstanceImpl {
 public:
  // An association served as the CIM class `className`, holding the defaults.
  explicit UseOfLog(std::string className);
  ~UseOfLog() override;

  // Adds Antecedent "CIM_DiagnosicRecord" and Dependent
  // "CIM_DiagnosticService" where they are absent. The first placeholder is
  // spelled so on purpose.
  void init() override;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_USEOFLOG_H_
