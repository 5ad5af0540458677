/*
 * The provider the command's tests load: instances of Cli_Widget (w1, w2),
 * the methods Twice and Fail, and an association MI that answers nothing.
 * Every MI call logs "+++ <call>" (severity 4, id
 * "clitest"); Twice also traces, so --trace has both kinds to print.
 */
#include <cmpidt.h>
#include <cmpift.h>
#include <cmpimacs.h>
#include <stdio.h>
#include <string.h>

/* MI functions take the table's parameters, most of which they do not use. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

static const CMPIBroker* broker;

static void Log(const char* text) {
  CMLogMessage(broker, 4, "clitest", text, NULL);
}

static CMPIObjectPath* WidgetPath(const CMPIObjectPath* ref, const char* name) {
  CMPIObjectPath* path =
      CMNewObjectPath(broker, CMGetCharPtr(CMGetNameSpace(ref, NULL)), "Cli_Widget", NULL);
  CMAddKey(path, "Name", name, CMPI_chars);
  return path;
}

static CMPIInstance* Widget(const CMPIObjectPath* ref, const char* name) {
  CMPIInstance* instance = CMNewInstance(broker, WidgetPath(ref, name), NULL);
  CMSetProperty(instance, "Name", name, CMPI_chars);
  if (strcmp(name, "w1") == 0) {
    CMPIUint32 count = 1;
    CMPIBoolean enabled = 1;
    CMPIArray* tags = CMNewArray(broker, 2, CMPI_string, NULL);
    CMSetArrayElementAt(tags, 0, "a", CMPI_chars);
    CMSetArrayElementAt(tags, 1, "b \"quoted\"", CMPI_chars);
    CMSetProperty(instance, "Count", &count, CMPI_uint32);
    CMSetProperty(instance, "Enabled", &enabled, CMPI_boolean);
    CMSetProperty(instance, "Tags", &tags, CMPI_stringA);
  }
  return instance;
}

static const char* KeyOf(const CMPIObjectPath* path, const char* key) {
  CMPIStatus rc = {CMPI_RC_OK, NULL};
  CMPIData data = CMGetKey(path, key, &rc);
  if (rc.rc != CMPI_RC_OK || data.type != CMPI_string || data.value.string == NULL) {
    return "";
  }
  return CMGetCharPtr(data.value.string);
}

/* ---- instance MI ---- */

static CMPIStatus CliTestCleanup(CMPIInstanceMI* mi, const CMPIContext* ctx, CMPIBoolean end) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CliTestEnumInstanceNames(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                           const CMPIResult* rslt, const CMPIObjectPath* ref) {
  Log("+++ EnumInstanceNames");
  CMReturnObjectPath(rslt, WidgetPath(ref, "w1"));
  CMReturnObjectPath(rslt, WidgetPath(ref, "w2"));
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CliTestEnumInstances(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                       const CMPIResult* rslt, const CMPIObjectPath* ref,
                                       const char** properties) {
  Log("+++ EnumInstances");
  CMReturnInstance(rslt, Widget(ref, "w1"));
  CMReturnInstance(rslt, Widget(ref, "w2"));
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CliTestGetInstance(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                     const CMPIResult* rslt, const CMPIObjectPath* ref,
                                     const char** properties) {
  Log("+++ GetInstance");
  const char* name = KeyOf(ref, "Name");
  if (strcmp(name, "w1") != 0 && strcmp(name, "w2") != 0) {
    CMReturnWithChars(broker, CMPI_RC_ERR_FAILED, "Could not find or construct instance");
  }
  CMReturnInstance(rslt, Widget(ref, name));
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

/* Only what the tests call is served; the table needs the rest. */
#define CLI_TEST_UNSUPPORTED(operation, ...)          \
  static CMPIStatus CliTest##operation(__VA_ARGS__) { \
    CMReturn(CMPI_RC_ERR_NOT_SUPPORTED);              \
  }

CLI_TEST_UNSUPPORTED(CreateInstance, CMPIInstanceMI* mi, const CMPIContext* ctx,
                     const CMPIResult* rslt, const CMPIObjectPath* ref, const CMPIInstance* inst)
CLI_TEST_UNSUPPORTED(ModifyInstance, CMPIInstanceMI* mi, const CMPIContext* ctx,
                     const CMPIResult* rslt, const CMPIObjectPath* ref, const CMPIInstance* inst,
                     const char** properties)
CLI_TEST_UNSUPPORTED(DeleteInstance, CMPIInstanceMI* mi, const CMPIContext* ctx,
                     const CMPIResult* rslt, const CMPIObjectPath* ref)
CLI_TEST_UNSUPPORTED(ExecQuery, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                     const CMPIObjectPath* ref, const char* query, const char* lang)

/* ---- method MI ---- */

static CMPIStatus CliTestMethodCleanup(CMPIMethodMI* mi, const CMPIContext* ctx, CMPIBoolean end) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus Twice(const CMPIResult* rslt, const CMPIArgs* in, CMPIArgs* out) {
  CMTraceMessage(broker, 2, "clitest", "Twice called", NULL);
  CMPIData n = CMGetArg(in, "N", NULL);
  CMPIData label = CMGetArg(in, "Label", NULL);
  CMPIData peer = CMGetArg(in, "Peer", NULL);
  CMPIUint32 result = (n.state & CMPI_nullValue) ? 0 : 2 * n.value.uint32;
  char doubled[256] = "";
  if (!(label.state & CMPI_nullValue) && label.value.string != NULL) {
    const char* text = CMGetCharPtr(label.value.string);
    if (strlen(text) < sizeof doubled / 2) {
      snprintf(doubled, sizeof doubled, "%s%s", text, text);
    }
  }
  CMAddArg(out, "Doubled", doubled, CMPI_chars);
  if (!(peer.state & CMPI_nullValue) && peer.value.ref != NULL) {
    CMAddArg(out, "PeerName", KeyOf(peer.value.ref, "Name"), CMPI_chars);
  }
  CMReturnData(rslt, &result, CMPI_uint32);
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CliTestInvokeMethod(CMPIMethodMI* mi, const CMPIContext* ctx,
                                      const CMPIResult* rslt, const CMPIObjectPath* ref,
                                      const char* method, const CMPIArgs* in, CMPIArgs* out) {
  Log("+++ InvokeMethod");
  if (strcmp(method, "Twice") == 0) {
    return Twice(rslt, in, out);
  }
  CMReturnWithChars(broker, CMPI_RC_ERR_FAILED, "the widget refused");
}

/* ---- association MI: it serves no links ---- */

static CMPIStatus CliTestAssociationCleanup(CMPIAssociationMI* mi, const CMPIContext* ctx,
                                            CMPIBoolean end) {
  CMReturn(CMPI_RC_OK);
}

/* Answers nothing, so that the command's hint for an empty answer shows. */
#define CLI_TEST_NOTHING(operation, ...)              \
  static CMPIStatus CliTest##operation(__VA_ARGS__) { \
    Log("+++ " #operation);                           \
    CMReturnDone(rslt);                               \
    CMReturn(CMPI_RC_OK);                             \
  }

CLI_TEST_NOTHING(Associators, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                 const CMPIObjectPath* ref, const char* assocClass, const char* resultClass,
                 const char* role, const char* resultRole, const char** properties)
CLI_TEST_NOTHING(AssociatorNames, CMPIAssociationMI* mi, const CMPIContext* ctx,
                 const CMPIResult* rslt, const CMPIObjectPath* ref, const char* assocClass,
                 const char* resultClass, const char* role, const char* resultRole)
CLI_TEST_NOTHING(References, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                 const CMPIObjectPath* ref, const char* resultClass, const char* role,
                 const char** properties)
CLI_TEST_NOTHING(ReferenceNames, CMPIAssociationMI* mi, const CMPIContext* ctx,
                 const CMPIResult* rslt, const CMPIObjectPath* ref, const char* resultClass,
                 const char* role)

CMInstanceMIStub(CliTest, CliTest, broker, CMNoHook)
    CMMethodMIStub(CliTest, CliTest, broker, CMNoHook)
        CMAssociationMIStub(CliTest, CliTest, broker, CMNoHook)
