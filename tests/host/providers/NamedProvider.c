/* A provider library that offers its instance MI only through the
 * provider-specific factory symbol. */
#include <stdio.h>

#include "TestProviderCommon.h"

CMPI_EXTERN_C CMPIInstanceMI* TestNamed_Create_InstanceMI(const CMPIBroker* broker,
                                                          const CMPIContext* context,
                                                          CMPIStatus* rc) {
  (void)context;
  (void)rc;
  gBroker = broker;
  snprintf(gNote, sizeof gNote, "named");
  return &gInstanceMI;
}
