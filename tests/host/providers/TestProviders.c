/* The provider libraries the host tests load, built once per kind:
 * NAMED offers its instance MI only through the provider-specific factory;
 * GENERIC exports both forms, and the host must take the generic one and hand
 * it the provider name; REFUSING's instance factory answers a failing status,
 * its method factory no MI, and it has no association factory at all.
 * The instance MI serves two fixed Test_Keyed instances whose Note says which
 * factory made it, and only enumerates: the host answers the rest itself. */
#include <cmpidt.h>
#include <cmpift.h>
#include <cmpimacs.h>
#include <stdio.h>

static const CMPIBroker* gBroker;
static char gNote[128];

static CMPIInstance* MakeKeyed(const CMPIObjectPath* reference, const char* name,
                               CMPIUint32 number) {
  CMPIObjectPath* path =
      CMNewObjectPath(gBroker, CMGetCharsPtr(CMGetNameSpace(reference, NULL), NULL),
                      CMGetCharsPtr(CMGetClassName(reference, NULL), NULL), NULL);
  CMPIInstance* instance = CMNewInstance(gBroker, path, NULL);
  CMPIBoolean flag = 1;
  if (instance == NULL) {
    return NULL;
  }
  CMSetProperty(instance, "Name", name, CMPI_chars);
  CMSetProperty(instance, "Number", &number, CMPI_uint32);
  CMSetProperty(instance, "Flag", &flag, CMPI_boolean);
  CMSetProperty(instance, "Note", gNote, CMPI_chars);
  return instance;
}

static CMPIStatus TestCleanup(CMPIInstanceMI* mi, const CMPIContext* context,
                              CMPIBoolean terminating) {
  (void)mi;
  (void)context;
  (void)terminating;
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus TestEnumNames(CMPIInstanceMI* mi, const CMPIContext* context,
                                const CMPIResult* result, const CMPIObjectPath* reference) {
  (void)mi;
  (void)context;
  CMReturnObjectPath(result, CMGetObjectPath(MakeKeyed(reference, "n1", 1), NULL));
  CMReturnObjectPath(result, CMGetObjectPath(MakeKeyed(reference, "n2", 2), NULL));
  CMReturnDone(result);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus TestEnum(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                           const CMPIObjectPath* reference, const char** properties) {
  (void)mi;
  (void)context;
  (void)properties;
  CMReturnInstance(result, MakeKeyed(reference, "n1", 1));
  CMReturnInstance(result, MakeKeyed(reference, "n2", 2));
  CMReturnDone(result);
  CMReturn(CMPI_RC_OK);
}

/* The entries it lacks stay null on purpose: the host answers them. */
static CMPIInstanceMIFT gInstanceFT = {.ftVersion = CMPICurrentVersion,
                                       .miVersion = CMPICurrentVersion,
                                       .miName = "testInstance",
                                       .cleanup = TestCleanup,
                                       .enumerateInstanceNames = TestEnumNames,
                                       .enumerateInstances = TestEnum};
static CMPIInstanceMI gInstanceMI = {NULL, &gInstanceFT};

/* The factory name PROVIDER_Create_InstanceMI, spelled out by the preprocessor. */
#define FACTORY_OF(provider, kind) provider##_Create_##kind##MI
#define FACTORY(provider, kind) FACTORY_OF(provider, kind)

#if defined(TEST_PROVIDER_GENERIC)
CMPI_EXTERN_C CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker* broker,
                                                         const CMPIContext* context,
                                                         const char* name, CMPIStatus* rc) {
  (void)context;
  (void)rc;
  gBroker = broker;
  snprintf(gNote, sizeof gNote, "generic:%s", name);
  return &gInstanceMI;
}
#endif

CMPI_EXTERN_C CMPIInstanceMI* FACTORY(TEST_PROVIDER, Instance)(const CMPIBroker* broker,
                                                               const CMPIContext* context,
                                                               CMPIStatus* rc) {
  (void)context;
  gBroker = broker;
#if defined(TEST_PROVIDER_REFUSING)
  rc->rc = CMPI_RC_ERR_FAILED;
  rc->msg = CMNewString(broker, "not today", NULL);
#else
  (void)rc;
  snprintf(gNote, sizeof gNote, "named");
#endif
  return &gInstanceMI;
}

#if defined(TEST_PROVIDER_REFUSING)
CMPI_EXTERN_C CMPIMethodMI* FACTORY(TEST_PROVIDER, Method)(const CMPIBroker* broker,
                                                           const CMPIContext* context,
                                                           CMPIStatus* rc) {
  (void)broker;
  (void)context;
  (void)rc;
  return NULL;
}
#endif
