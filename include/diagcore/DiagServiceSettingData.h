// DiagServiceSettingData: a diagnostic service's default run settings.
//
// Plain data under the CIM class the plug-in names. Values are texts that
// the instance builder types by the class declaration; some are kept as they
// are although they do not read as their names suggest: HaltOnError "true"
// and QuickMode "false" are not booleans to the builder (write "1"/"0" for
// those), and a one-byte PercentOfTestCoverage reads "45" as 52.
#ifndef DIAGCORE_DIAGSERVICESETTINGDATA_H_
#define DIAGCORE_DIAGSERVICESETTINGDATA_H_

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT DiagServiceSettingData : public InstanceImpl {
 public:
  // Setting data served as the CIM class `className`, holding the defaults.
  explicit DiagServiceSettingData(std::string className);
  ~DiagServiceSettingData() override;

  // Adds, where absent: SettingID "DefaultSetting", LogOptions "2",
  // OtherLogOptionsDescriptions "", HaltOnError "true", QuickMode "false",
  // PercentOfTestCoverage "45", LoopControlParameter "0", LoopControl "2",
  // OtherLoopControlDescriptions "", ResultPersistence "900",
  // VerbosityLevel "3". A property already set keeps its value.
  void init() override;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGSERVICESETTINGDATA_H_
