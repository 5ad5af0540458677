#include "diagcore/DiagServiceSettingData.h"

#include <utility>

#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

DiagServiceSettingData::DiagServiceSettingData(std::string className)
    : InstanceImpl(std::move(className)) {
  DiagServiceSettingData::init();
}

DiagServiceSettingData::~DiagServiceSettingData() = default;

void DiagServiceSettingData::init() {
  InsertAbsentDefaults(*this, {{"SettingID", "DefaultSetting"},
                               {"LogOptions", "2"},
                               {"OtherLogOptionsDescriptions", ""},
                               {"HaltOnError", "true"},
                               {"QuickMode", "false"},
                               {"PercentOfTestCoverage", "45"},
                               {"LoopControlParameter", "0"},
                               {"LoopControl", "2"},
                               {"OtherLoopControlDescriptions", ""},
                               {"ResultPersistence", "900"},
                               {"VerbosityLevel", "3"}});
}

}  // namespace NQENDRA20
