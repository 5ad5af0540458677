/* A provider library whose factories refuse: the instance factory returns an
 * MI but a failing status, the method factory returns no MI, and there is
 * no association factory at all. */
#include "TestProviderCommon.h"

CMPI_EXTERN_C CMPIInstanceMI* TestRefusing_Create_InstanceMI(const CMPIBroker* broker,
                                                             const CMPIContext* context,
                                                             CMPIStatus* rc) {
  (void)context;
  gBroker = broker;
  rc->rc = CMPI_RC_ERR_FAILED;
  rc->msg = CMNewString(broker, "not today", NULL);
  return &gInstanceMI;
}

CMPI_EXTERN_C CMPIMethodMI* TestRefusing_Create_MethodMI(const CMPIBroker* broker,
                                                         const CMPIContext* context,
                                                         CMPIStatus* rc) {
  (void)broker;
  (void)context;
  (void)rc;
  return NULL;
}
