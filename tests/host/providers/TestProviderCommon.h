/* Shared by the test provider libraries: an instance MI over two fixed
 * Test_Keyed instances, whose Note says which factory made the MI. It only
 * enumerates; the host answers the missing entries itself. */
#ifndef TESTS_HOST_PROVIDERS_TESTPROVIDERCOMMON_H_
#define TESTS_HOST_PROVIDERS_TESTPROVIDERCOMMON_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpimacs.h>
#include <string.h>

static const CMPIBroker* gBroker;
static char gNote[128];

static CMPIInstance* MakeKeyed(const CMPIObjectPath* reference, const char* name,
                               CMPIUint32 number) {
  CMPIString* nameSpace = CMGetNameSpace(reference, NULL);
  CMPIString* className = CMGetClassName(reference, NULL);
  CMPIObjectPath* path = CMNewObjectPath(gBroker, CMGetCharsPtr(nameSpace, NULL),
                                         CMGetCharsPtr(className, NULL), NULL);
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

static CMPIInstanceMIFT gInstanceFT = {
    CMPICurrentVersion,
    CMPICurrentVersion,
    "testInstance",
    TestCleanup,
    TestEnumNames,
    TestEnum,
    NULL,
    NULL,
    NULL,
    NULL,
    NULL,
};

static CMPIInstanceMI gInstanceMI = {NULL, &gInstanceFT};

#endif /* TESTS_HOST_PROVIDERS_TESTPROVIDERCOMMON_H_ */
