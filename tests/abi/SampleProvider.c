/*
 * A provider of all five MI kinds, written only with the CMPI headers'
 * convenience macros. It is built twice, as C and as C++ (SampleProvider.cpp
 * includes this file), so that a macro that expands to something either
 * language rejects breaks the build.
 */
#include <cmpidt.h>
#include <cmpift.h>
#include <cmpimacs.h>

/* The MI functions only answer their own names: their parameters are there
 * for the table's signature, not for use. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

static const CMPIBroker* sampleBroker;
static int sampleHookRuns;

static CMPIData sampleAccessor(const char* name, void* parm) {
  CMPIData data;
  data.type = CMPI_null;
  data.state = CMPI_nullValue;
  data.value.uint64 = 0;
  return data;
}

/*
 * Calls every convenience macro once, so that each is compiled in both
 * languages against the exact table types. Only reached through the
 * "useEveryMacro" method, which the tests never call: the point is the build.
 */
static CMPIrc sampleUseEveryMacro(const CMPIBroker* b, const CMPIContext* c, const CMPIResult* r,
                                  const CMPIObjectPath* p, CMPIInstance* i, CMPIArgs* a,
                                  CMPISelectExp* se, CMPIError* e) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  CMPIStatus* rc = &st;
  CMPIString* name = NULL;
  CMPIArray* projection = NULL;
  CMPIMsgFileHandle handle = NULL;
  CMPIValue v;
  CMPIData d;
  CMPIType type = CMPI_null;
  CMPIPredOp op = CMPI_PredOp_Equals;
  CMPIString* lhs = NULL;
  CMPIString* rhs = NULL;
  int condType = CMPI_COND_DOC;
  unsigned long total = 0;
  const char* props[] = {"Name", NULL};

  CMPIInstance* inst = CMNewInstance(b, p, rc);
  CMPIObjectPath* path = CMNewObjectPath(b, "root/cimv2", "CIM_Sample", rc);
  CMPIArgs* args = CMNewArgs(b, rc);
  CMPIString* str = CMNewString(b, "text", rc);
  CMPIArray* arr = CMNewArray(b, 2, CMPI_uint32, rc);
  CMPIDateTime* now = CMNewDateTime(b, rc);
  CMPIDateTime* bin = CMNewDateTimeFromBinary(b, 1000000ULL, 1, rc);
  CMPIDateTime* chars = CMNewDateTimeFromChars(b, "20240101000000.000000+000", rc);
  CMPISelectExp* query = CMNewSelectExp(b, "SELECT * FROM CIM_Sample", "WQL", &projection, rc);
  CMPIError* err = CMNewCMPIError(b, "owner", "MSG1", "message", ErrorSevLow, Disk_Failure,
                                  CMPI_RC_ERR_FAILED, rc);
  CMPIEnumeration* en = NULL;
  CMPIContext* attached = NULL;
  CMPISelectCond* cond = NULL;
  CMPISubCond* sub = NULL;
  CMPIPredicate* pred = NULL;

  v.uint32 = 7;
  (void)query;
  (void)err;

  total += CMClassPathIsA(b, p, "CIM_Sample", rc);
  (void)CDToString(b, inst, rc);
  total += CDIsOfType(b, inst, "CMPIInstance", rc);
  (void)CDGetType(b, path, rc);
  CMLogMessage(b, CMPI_SEV_INFO, "Sample", "text", NULL);
  CMTraceMessage(b, CMPI_LEV_VERBOSE, "Sample", NULL, str);
  (void)CMGetMessage(b, "MSG2", "default", rc, CMFmtArgs0());
  (void)CMGetMessage(b, "MSG3", "$0 $1 $2 $3", rc,
                     CMFmtArgs4(CMFmtSint(-1), CMFmtUint(1), CMFmtSint64(-2), CMFmtUint64(2)));
  CMOpenMessageFile(b, "sample.msg", &handle);
  (void)CMGetMessage2(
      b, "MSG4", handle, "$0 $1 $2 $3", rc,
      CMFmtArgs4(CMFmtReal(1.5), CMFmtBoolean(1), CMFmtChars("c"), CMFmtString(str)));
  CMCloseMessageFile(b, handle);

  CMReturnInstance(r, inst);
  CMReturnObjectPath(r, path);
  CMReturnData(r, &v, CMPI_uint32);
  CMReturnError(r, e);
  CMReturnDone(r);

  d = CMGetProperty(i, "Name", rc);
  total += CMIsNullValue(d) + CMIsKeyValue(d) + CMIsArray(d);
  d = CMGetPropertyAt(i, 0, &name, rc);
  total += CMGetPropertyCount(i, rc);
  CMSetProperty(i, "Count", &v, CMPI_uint32);
  (void)CMGetObjectPath(i, rc);
  CMSetObjectPath(i, path);
  CMSetPropertyFilter(i, props, NULL);
  CMSetPropertyWithOrigin(i, "Count", &v, CMPI_uint32, "CIM_Sample");

  CMSetNameSpace(path, "root/interop");
  (void)CMGetNameSpace(path, rc);
  CMSetHostname(path, "localhost");
  (void)CMGetHostname(path, rc);
  CMSetClassName(path, "CIM_Other");
  (void)CMGetClassName(path, rc);
  CMAddKey(path, "Name", "key", CMPI_chars);
  d = CMGetKey(path, "Name", rc);
  d = CMGetKeyAt(path, 0, &name, rc);
  total += CMGetKeyCount(path, rc);
  CMSetNameSpaceFromObjectPath(path, p);
  CMSetHostAndNameSpaceFromObjectPath(path, p);
  d = CMGetClassQualifier(path, "Abstract", rc);
  d = CMGetPropertyQualifier(path, "Name", "Key", rc);
  d = CMGetMethodQualifier(path, "Run", "Static", rc);
  d = CMGetParameterQualifier(path, "Run", "Arg", "In", rc);
  (void)CMObjectPathToString(path, rc);

  CMAddArg(a, "In", &v, CMPI_uint32);
  d = CMGetArg(a, "In", rc);
  d = CMGetArgAt(a, 0, &name, rc);
  total += CMGetArgCount(a, rc);
  (void)args;

  total += (CMGetCharPtr(str) != NULL) + (CMGetCharsPtr(str, rc) != NULL);

  total += CMGetArrayCount(arr, rc) + CMGetArrayType(arr, rc);
  CMSetArrayElementAt(arr, 0, &v, CMPI_uint32);
  d = CMGetArrayElementAt(arr, 0, rc);

  en = CBEnumInstanceNames(b, c, p, rc);
  while (CMHasNext(en, rc)) {
    d = CMGetNext(en, rc);
  }
  (void)CMToArray(en, rc);
  en = CBEnumInstances(b, c, p, props, rc);
  (void)CBGetInstance(b, c, p, props, rc);
  (void)CBCreateInstance(b, c, p, inst, rc);
  CBModifyInstance(b, c, p, inst, props);
  CBSetInstance(b, c, p, inst, NULL);
  CBDeleteInstance(b, c, p);
  en = CBExecQuery(b, c, p, "SELECT * FROM CIM_Sample", "WQL", rc);
  en = CBAssociators(b, c, p, "CIM_Assoc", "CIM_Sample", "A", "B", props, rc);
  en = CBAssociatorNames(b, c, p, "CIM_Assoc", "CIM_Sample", "A", "B", rc);
  en = CBReferences(b, c, p, "CIM_Assoc", "A", props, rc);
  en = CBReferenceNames(b, c, p, "CIM_Assoc", "A", rc);
  d = CBInvokeMethod(b, c, p, "Run", a, args, rc);
  CBSetProperty(b, c, p, "Count", &v, CMPI_uint32);
  d = CBGetProperty(b, c, p, "Count", rc);
  attached = CBPrepareAttachThread(b, c);
  CBAttachThread(b, attached);
  CBDetachThread(b, attached);
  CBDeliverIndication(b, c, "root/cimv2", inst);
  total += CBBrokerVersion(b) + CBGetClassification(b) + (CBBrokerName(b) != NULL);

  total += CMGetBinaryFormat(bin, rc) + CMIsInterval(bin, rc);
  (void)CMGetStringFormat(chars, rc);
  (void)now;

  d = CMGetContextEntry(c, CMPIInvocationFlags, rc);
  d = CMGetContextEntryAt(c, 0, &name, rc);
  total += CMGetContextEntryCount(c, rc);
  CMAddContextEntry(c, "SampleEntry", &v, CMPI_uint32);

  total += CMEvaluateSelExp(se, inst, rc);
  total += CMEvaluateSelExpUsingAccessor(se, sampleAccessor, NULL, rc);
  (void)CMGetSelExpString(se, rc);
  cond = CMGetDoc(se, rc);
  cond = CMGetCod(se, rc);
  total += CMGetSubCondCountAndType(cond, &condType, rc);
  sub = CMGetSubCondAt(cond, 0, rc);
  total += CMGetPredicateCount(sub, rc);
  pred = CMGetPredicateAt(sub, 0, rc);
  pred = CMGetPredicate(sub, "Name", rc);
  CMGetPredicateData(pred, &type, &op, &lhs, &rhs);
  total += CMEvaluatePredicateUsingAccessor(pred, sampleAccessor, NULL, rc);

  total += CMGetErrorType(e, rc) + CMGetPerceivedSeverity(e, rc) + CMGetProbableCause(e, rc) +
           CMGetErrorSourceFormat(e, rc) + CMGetCIMStatusCode(e, rc);
  (void)CMGetOtherErrorType(e, rc);
  (void)CMGetOwningEntity(e, rc);
  (void)CMGetMessageID(e, rc);
  (void)CMGetErrorMessage(e, rc);
  (void)CMGetProbableCauseDescription(e, rc);
  (void)CMGetRecommendedActions(e, rc);
  (void)CMGetErrorSource(e, rc);
  (void)CMGetOtherErrorSourceFormat(e, rc);
  (void)CMGetCIMStatusCodeDescription(e, rc);
  (void)CMGetMessageArguments(e, rc);
  CMSetErrorType(e, SoftwareError);
  CMSetOtherErrorType(e, "other");
  CMSetProbableCauseDescription(e, "description");
  CMSetRecommendedActions(e, arr);
  CMSetErrorSource(e, "source");
  CMSetErrorSourceFormat(e, CIMObjectHandle);
  CMSetOtherErrorSourceFormat(e, "format");
  CMSetCIMStatusCodeDescription(e, "status");
  CMSetMessageArguments(e, arr);

  if (CMIsNullObject(inst)) {
    CMSetStatusWithChars(b, rc, CMPI_RC_ERR_FAILED, "no instance");
  } else if (CMIsNullObject(str)) {
    CMSetStatusWithString(rc, CMPI_RC_ERR_FAILED, str);
  } else {
    CMSetStatus(rc, CMPI_RC_OK);
  }

  (void)CMClone(str, rc);
  CMRelease(str);
  (void)d;
  (void)type;
  (void)op;
  (void)lhs;
  (void)rhs;
  return total > 0 ? st.rc : CMPI_RC_ERR_FAILED;
}

/*
 * Every MI function answers with its own name as the status message; the
 * cleanups answer by return code only.
 */
#define SAMPLE_ANSWER(operation) CMReturnWithChars(sampleBroker, CMPI_RC_OK, operation)
#define SAMPLE_OP(operation, ...)                    \
  static CMPIStatus Sample##operation(__VA_ARGS__) { \
    SAMPLE_ANSWER(#operation);                       \
  }
#define SAMPLE_CLEANUP(name, MI)                                                            \
  static CMPIStatus Sample##name(MI* mi, const CMPIContext* ctx, CMPIBoolean terminating) { \
    CMReturn(CMPI_RC_OK);                                                                   \
  }

/* ---- Instance MI --------------------------------------------------------- */

static CMPIStatus SampleCleanup(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                CMPIBoolean terminating) {
  /* An if/else without braces around the statement macros must compile. */
  if (terminating)
    CMReturn(CMPI_RC_OK);
  else
    CMReturn(CMPI_RC_DO_NOT_UNLOAD);
}

SAMPLE_OP(EnumInstanceNames, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref)

SAMPLE_OP(EnumInstances, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref, const char** properties)

SAMPLE_OP(GetInstance, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref, const char** properties)

SAMPLE_OP(CreateInstance, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref, const CMPIInstance* inst)

SAMPLE_OP(ModifyInstance, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref, const CMPIInstance* inst, const char** properties)

SAMPLE_OP(DeleteInstance, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref)

SAMPLE_OP(ExecQuery, CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* ref, const char* query, const char* lang)

/* ---- Association MI ------------------------------------------------------ */

SAMPLE_CLEANUP(AssociationCleanup, CMPIAssociationMI)

SAMPLE_OP(Associators, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* op, const char* assocClass, const char* resultClass,
          const char* role, const char* resultRole, const char** properties)

SAMPLE_OP(AssociatorNames, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* op, const char* assocClass, const char* resultClass,
          const char* role, const char* resultRole)

SAMPLE_OP(References, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* op, const char* resultClass, const char* role,
          const char** properties)

SAMPLE_OP(ReferenceNames, CMPIAssociationMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* op, const char* resultClass, const char* role)

/* ---- Method MI ----------------------------------------------------------- */

SAMPLE_CLEANUP(MethodCleanup, CMPIMethodMI)

/* Answers 42 as the method's return value, and the method's name as message. */
static CMPIStatus SampleInvokeMethod(CMPIMethodMI* mi, const CMPIContext* ctx,
                                     const CMPIResult* rslt, const CMPIObjectPath* ref,
                                     const char* method, const CMPIArgs* in, CMPIArgs* out) {
  CMPIValue answer;
  if (method[0] == 'u') { /* "useEveryMacro": never called, see above */
    CMReturn(sampleUseEveryMacro(sampleBroker, ctx, rslt, ref, NULL, out, NULL, NULL));
  }
  answer.uint32 = 42;
  CMReturnData(rslt, &answer, CMPI_uint32);
  CMReturnDone(rslt);
  CMReturnWithString(CMPI_RC_OK, CMNewString(sampleBroker, method, NULL));
}

/* ---- Property MI --------------------------------------------------------- */

SAMPLE_CLEANUP(PropertyCleanup, CMPIPropertyMI)

static CMPIStatus SampleSetProperty(CMPIPropertyMI* mi, const CMPIContext* ctx,
                                    const CMPIResult* rslt, const CMPIObjectPath* op,
                                    const char* name, const CMPIData data) {
  if (CMIsNullValue(data)) {
    CMReturnWithChars(sampleBroker, CMPI_RC_ERR_INVALID_PARAMETER, "SetProperty");
  }
  SAMPLE_ANSWER("SetProperty");
}

SAMPLE_OP(GetProperty, CMPIPropertyMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          const CMPIObjectPath* op, const char* name)

SAMPLE_OP(SetPropertyWithOrigin, CMPIPropertyMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
          CMPIObjectPath* op, const char* name, const CMPIData data, const char* origin)

/* ---- Indication MI ------------------------------------------------------- */

SAMPLE_CLEANUP(IndicationCleanup, CMPIIndicationMI)

SAMPLE_OP(AuthorizeFilter, CMPIIndicationMI* mi, const CMPIContext* ctx,
          const CMPISelectExp* filter, const char* className, const CMPIObjectPath* op,
          const char* owner)

SAMPLE_OP(MustPoll, CMPIIndicationMI* mi, const CMPIContext* ctx, const CMPISelectExp* filter,
          const char* className, const CMPIObjectPath* op)

SAMPLE_OP(ActivateFilter, CMPIIndicationMI* mi, const CMPIContext* ctx, const CMPISelectExp* filter,
          const char* className, const CMPIObjectPath* op, CMPIBoolean first)

SAMPLE_OP(DeActivateFilter, CMPIIndicationMI* mi, const CMPIContext* ctx,
          const CMPISelectExp* filter, const char* className, const CMPIObjectPath* op,
          CMPIBoolean last)

SAMPLE_OP(EnableIndications, CMPIIndicationMI* mi, const CMPIContext* ctx)

SAMPLE_OP(DisableIndications, CMPIIndicationMI* mi, const CMPIContext* ctx)

/* ---- Factories ----------------------------------------------------------- */

/* The hook counts factory calls; the indication stub shows CMNoHook. */
CMInstanceMIStub(Sample, Sample, sampleBroker, sampleHookRuns++)
    CMAssociationMIStub(Sample, Sample, sampleBroker, sampleHookRuns++)
        CMMethodMIStub(Sample, Sample, sampleBroker, sampleHookRuns++)
            CMPropertyMIStub(Sample, Sample, sampleBroker, sampleHookRuns++)
                CMIndicationMIStub(Sample, Sample, sampleBroker, CMNoHook)
