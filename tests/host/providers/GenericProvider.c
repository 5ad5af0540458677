/* A provider library that exports both factory forms: the host must take
 * the generic one, and hand it the provider name. */
#include <stdio.h>

#include "TestProviderCommon.h"

CMPI_EXTERN_C CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker* broker,
                                                         const CMPIContext* context,
                                                         const char* name, CMPIStatus* rc) {
  (void)context;
  (void)rc;
  gBroker = broker;
  snprintf(gNote, sizeof gNote, "generic:%s", name);
  return &gInstanceMI;
}

CMPI_EXTERN_C CMPIInstanceMI* TestGeneric_Create_InstanceMI(const CMPIBroker* broker,
                                                            const CMPIContext* context,
                                                            CMPIStatus* rc) {
  (void)context;
  (void)rc;
  gBroker = broker;
  snprintf(gNote, sizeof gNote, "named");
  return &gInstanceMI;
}
