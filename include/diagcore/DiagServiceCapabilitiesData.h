// DiagServiceCapabilitiesData: what a diagnostic service declares it supports.
//
// Plain data under the CIM class the plug-in names. Every service's
// capabilities carry the same InstanceID unless the plug-in overwrites it.
#ifndef DIAGCORE_DIAGSERVICECAPABILITIESDATA_H_
#define DIAGCORE_DIAGSERVICECAPABILITIESDATA_H_

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT DiagServiceCapabilitiesData : public InstanceImpl {
 public:
  // Capabilities served as the CIM class `className`, holding the defaults.
  explicit DiagServiceCapabilitiesData(std::string className);
  ~DiagServiceCapabilitiesData() override;

  // Adds, where absent: InstanceID "ACME:TestCapabilities", Caption
  // "TestCapabilities", and "0" for each of SupportedServiceModes,
  // SupportedLoopControl, SupportedLogOptions, SupportedExecutionControls and
  // their four Other...Descriptions. A property already set keeps its value.
  void init() override;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGSERVICECAPABILITIESDATA_H_
