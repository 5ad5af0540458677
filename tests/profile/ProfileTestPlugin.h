// The profile test plug-in: the test plug-in's three services (Passing,
// Failing, Throwing) with their setting data, capabilities and availability,
// each offered the Diagnostics Profile with the options a test chose before
// the first request, served through DIAGCORE_CIM_PROVIDER(ProfileTestPlugin,
// ...). Its profile classes (prefix PTP) are in profiletestplugin.mof.
#ifndef DIAGCORE_TESTS_PROFILE_PROFILETESTPLUGIN_H_
#define DIAGCORE_TESTS_PROFILE_PROFILETESTPLUGIN_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

#include <optional>
#include <string>

#include "diagcore/DiagnosticsProfile.h"

namespace profiletestplugin {

struct StartOptions {
  NQENDRA20::ProfileOptions profile;
  // The setting data's ResultPersistence text; nullopt: the property is absent.
  std::optional<std::string> resultPersistence = "900";
  // Whether the start-up offers the profile at all.
  bool offer = true;
};

// Read by the next start-up; set it before the first request.
StartOptions& NextStart();

// What OfferDiagnosticsProfile answered for each service, in order.
std::string OfferAnswers();

}  // namespace profiletestplugin

CMPI_EXTERN_C CMPIInstanceMI* ProfileTestPlugin_Create_InstanceMI(const CMPIBroker* broker,
                                                                  const CMPIContext* context,
                                                                  CMPIStatus* rc);
CMPI_EXTERN_C CMPIMethodMI* ProfileTestPlugin_Create_MethodMI(const CMPIBroker* broker,
                                                              const CMPIContext* context,
                                                              CMPIStatus* rc);
CMPI_EXTERN_C CMPIAssociationMI* ProfileTestPlugin_Create_AssociationMI(const CMPIBroker* broker,
                                                                        const CMPIContext* context,
                                                                        CMPIStatus* rc);

#endif  // DIAGCORE_TESTS_PROFILE_PROFILETESTPLUGIN_H_
