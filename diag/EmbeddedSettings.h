// The settings a RunDiagnosticService call embeds, checked against what
// CIM_DiagnosticSettingData declares. Internal to the library.
#ifndef DIAGCORE_DIAG_EMBEDDEDSETTINGS_H_
#define DIAGCORE_DIAG_EMBEDDEDSETTINGS_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <optional>
#include <string>

namespace NQENDRA20 {

// What the call asks for beyond the service's default setting data.
struct RunSettings {
  std::optional<CMPIUint32> resultPersistence;
};

// Reads the "DiagnosticSettings" argument: an instance as a CIMOM hands it
// over, or its MOF text ("instance of CIM_DiagnosticSettingData {
// ResultPersistence = 60; };") as a client without instance support sends
// it. An absent or null argument asks for nothing. Every property must be
// one of CIM_DiagnosticSettingData's and hold a value of its type; a
// "JobSettings" argument, when given, must be an instance or a text. Returns
// "" and fills `settings`, or the reason for CMPI_RC_ERR_INVALID_PARAMETER.
std::string ReadRunSettings(const CMPIBroker* broker, const CMPIArgs* in, RunSettings& settings);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_EMBEDDEDSETTINGS_H_
