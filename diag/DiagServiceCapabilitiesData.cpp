#include "diagcore/DiagServiceCapabilitiesData.h"

#include <utility>

#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

DiagServiceCapabilitiesData::DiagServiceCapabilitiesData(std::string className)
    : InstanceImpl(std::move(className)) {
  DiagServiceCapabilitiesData::init();
}

DiagServiceCapabilitiesData::~DiagServiceCapabilitiesData() = default;

// The description properties are the text "0", not empty, on purpose.
void DiagServiceCapabilitiesData::init() {
  InsertAbsentDefaults(*this, {{"InstanceID", "ACME:TestCapabilities"},
                               {"Caption", "TestCapabilities"},
                               {"SupportedServiceModes", "0"},
                               {"OtherSupportedServiceModesDescriptions", "0"},
                               {"SupportedLoopControl", "0"},
                               {"OtherSupportedLoopControlDescriptions", "0"},
                               {"SupportedLogOptions", "0"},
                               {"OtherSupportedLogOptionsDescriptions", "0"},
                               {"SupportedExecutionControls", "0"},
                               {"OtherSupportedExecutionControlsDescriptions", "0"}});
}

}  // namespace NQENDRA20
