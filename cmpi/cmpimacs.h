/*
 * CMPI 2.0 convenience macros: short forms of the function-table calls, the
 * status helpers, and the MI stubs that define a provider's factory
 * functions.
 *
 * Letters in the parameter names: b broker, c context, r result, i instance,
 * p object path, a args or array, e enumeration, d date-time, s string or
 * select expression, n name, v pointer to a value, t CMPIType, rc a
 * CMPIStatus* that may be NULL.
 *
 * Like every function-like macro, most of these evaluate the object argument
 * more than once: pass a plain variable, not an expression with side effects.
 */
#ifndef CMPI_CMPIMACS_H
#define CMPI_CMPIMACS_H

#include "cmpidt.h"
#include "cmpift.h"

/* ---- Status and return helpers (statements) ------------------------------ */

/*
 * The statement macros expand to do { ... } while (0) so that they can be
 * used as the single statement of an if or else without braces.
 */

/* Returns a status with code rc and no message from the enclosing function. */
#define CMReturn(rc)                                     \
  do {                                                   \
    CMPIStatus cmpiReturnStatus_ = {(CMPIrc)(rc), NULL}; \
    return cmpiReturnStatus_;                            \
  } while (0)

/* Returns a status with code rc and the CMPIString* str as its message. */
#define CMReturnWithString(rc, str)                       \
  do {                                                    \
    CMPIStatus cmpiReturnStatus_ = {(CMPIrc)(rc), (str)}; \
    return cmpiReturnStatus_;                             \
  } while (0)

/* Returns a status with code rc and a new string made from the C string chars. */
#define CMReturnWithChars(b, rc, chars)                              \
  do {                                                               \
    CMPIStatus cmpiReturnStatus_ = {(CMPIrc)(rc), NULL};             \
    cmpiReturnStatus_.msg = (b)->eft->newString((b), (chars), NULL); \
    return cmpiReturnStatus_;                                        \
  } while (0)

/*
 * The CMSetStatus family fills *st, which must not be NULL. (A NULL test
 * inside the macro would make compilers warn about every call that passes the
 * address of a local, the common use.)
 */
#define CMSetStatus(st, rc_)  \
  do {                        \
    (st)->rc = (CMPIrc)(rc_); \
    (st)->msg = NULL;         \
  } while (0)

#define CMSetStatusWithString(st, rc_, str) \
  do {                                      \
    (st)->rc = (CMPIrc)(rc_);               \
    (st)->msg = (str);                      \
  } while (0)

#define CMSetStatusWithChars(b, st, rc_, chars)          \
  do {                                                   \
    (st)->rc = (CMPIrc)(rc_);                            \
    (st)->msg = (b)->eft->newString((b), (chars), NULL); \
  } while (0)

/* ---- Tests on values and objects (expressions) --------------------------- */

/* v is a CMPIData. */
#define CMIsNullValue(v) ((v).state & CMPI_nullValue)
#define CMIsKeyValue(v) ((v).state & CMPI_keyValue)
#define CMIsArray(v) ((v).type & CMPI_ARRAY)

/* True for a NULL object pointer and for an object whose handle is NULL. */
#define CMIsNullObject(o) ((o) == NULL || *((void* const*)(o)) == NULL)

/* ---- Any encapsulated object --------------------------------------------- */

#define CMRelease(o) ((o)->ft->release((o)))
#define CMClone(o, rc) ((o)->ft->clone((o), (rc)))

/* ---- Broker factories and utilities (b->eft) ----------------------------- */

#define CMNewInstance(b, p, rc) ((b)->eft->newInstance((b), (p), (rc)))
#define CMNewObjectPath(b, ns, cn, rc) ((b)->eft->newObjectPath((b), (ns), (cn), (rc)))
#define CMNewArgs(b, rc) ((b)->eft->newArgs((b), (rc)))
#define CMNewString(b, data, rc) ((b)->eft->newString((b), (data), (rc)))
#define CMNewArray(b, count, t, rc) ((b)->eft->newArray((b), (count), (t), (rc)))
#define CMNewDateTime(b, rc) ((b)->eft->newDateTime((b), (rc)))
#define CMNewDateTimeFromBinary(b, binTime, interval, rc) \
  ((b)->eft->newDateTimeFromBinary((b), (binTime), (interval), (rc)))
#define CMNewDateTimeFromChars(b, utcTime, rc) \
  ((b)->eft->newDateTimeFromChars((b), (utcTime), (rc)))
#define CMNewSelectExp(b, query, lang, projection, rc) \
  ((b)->eft->newSelectExp((b), (query), (lang), (projection), (rc)))
#define CMNewCMPIError(b, owner, msgID, msg, sev, pc, cimStatus, rc) \
  ((b)->eft->newCMPIError((b), (owner), (msgID), (msg), (sev), (pc), (cimStatus), (rc)))
#define CMClassPathIsA(b, p, cn, rc) ((b)->eft->classPathIsA((b), (p), (cn), (rc)))

#define CDToString(b, o, rc) ((b)->eft->toString((b), (const void*)(o), (rc)))
#define CDIsOfType(b, o, type, rc) ((b)->eft->isOfType((b), (const void*)(o), (type), (rc)))
#define CDGetType(b, o, rc) ((b)->eft->getType((b), (const void*)(o), (rc)))

/* ---- Logging, tracing and messages (b->eft) ------------------------------ */

/* Pass either text (a C string) or string (a CMPIString*); the other may be NULL. */
#define CMLogMessage(b, severity, id, text, string) \
  ((b)->eft->logMessage((b), (severity), (id), (text), (string)))
#define CMTraceMessage(b, level, component, text, string) \
  ((b)->eft->trace((b), (level), (component), (text), (string)))

/*
 * Message inserts for CMGetMessage and CMGetMessage2: args is one of
 * CMFmtArgs0() .. CMFmtArgs10(...), each argument made with a CMFmt<Type>
 * macro, e.g. CMFmtArgs2(CMFmtChars(name), CMFmtSint(count)). Integers travel
 * at 64-bit width so that a broker reading either int or long gets the value.
 */
#define CMFmtSint(v) CMPI_sint32, ((long)(v))
#define CMFmtUint(v) CMPI_uint32, ((unsigned long)(v))
#define CMFmtSint64(v) CMPI_sint64, ((long long)(v))
#define CMFmtUint64(v) CMPI_uint64, ((unsigned long long)(v))
#define CMFmtReal(v) CMPI_real64, ((double)(v))
#define CMFmtBoolean(v) CMPI_boolean, ((int)(v))
#define CMFmtChars(v) CMPI_chars, ((const char*)(v))
#define CMFmtString(v) CMPI_string, ((CMPIString*)(v))

#define CMFmtArgs0() 0
#define CMFmtArgs1(v1) 1, v1
#define CMFmtArgs2(v1, v2) 2, v1, v2
#define CMFmtArgs3(v1, v2, v3) 3, v1, v2, v3
#define CMFmtArgs4(v1, v2, v3, v4) 4, v1, v2, v3, v4
#define CMFmtArgs5(v1, v2, v3, v4, v5) 5, v1, v2, v3, v4, v5
#define CMFmtArgs6(v1, v2, v3, v4, v5, v6) 6, v1, v2, v3, v4, v5, v6
#define CMFmtArgs7(v1, v2, v3, v4, v5, v6, v7) 7, v1, v2, v3, v4, v5, v6, v7
#define CMFmtArgs8(v1, v2, v3, v4, v5, v6, v7, v8) 8, v1, v2, v3, v4, v5, v6, v7, v8
#define CMFmtArgs9(v1, v2, v3, v4, v5, v6, v7, v8, v9) 9, v1, v2, v3, v4, v5, v6, v7, v8, v9
#define CMFmtArgs10(v1, v2, v3, v4, v5, v6, v7, v8, v9, v10) \
  10, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10

#define CMGetMessage(b, id, def, rc, args) ((b)->eft->getMessage((b), (id), (def), (rc), args))
#define CMGetMessage2(b, id, handle, def, rc, args) \
  ((b)->eft->getMessage2((b), (id), (handle), (def), (rc), args))
/* handlePtr is a CMPIMsgFileHandle*. */
#define CMOpenMessageFile(b, file, handlePtr) ((b)->eft->openMessageFile((b), (file), (handlePtr)))
#define CMCloseMessageFile(b, handle) ((b)->eft->closeMessageFile((b), (handle)))

/* ---- Results (r->ft): expressions yielding a CMPIStatus ------------------ */

#define CMReturnInstance(r, i) ((r)->ft->returnInstance((r), (i)))
#define CMReturnObjectPath(r, p) ((r)->ft->returnObjectPath((r), (p)))
#define CMReturnData(r, v, t) ((r)->ft->returnData((r), (const CMPIValue*)(v), (t)))
#define CMReturnDone(r) ((r)->ft->returnDone((r)))
#define CMReturnError(r, e) ((r)->ft->returnError((r), (e)))

/* ---- Instances (i->ft) --------------------------------------------------- */

#define CMGetProperty(i, n, rc) ((i)->ft->getProperty((i), (n), (rc)))
#define CMGetPropertyAt(i, index, name, rc) ((i)->ft->getPropertyAt((i), (index), (name), (rc)))
#define CMGetPropertyCount(i, rc) ((i)->ft->getPropertyCount((i), (rc)))
#define CMSetProperty(i, n, v, t) ((i)->ft->setProperty((i), (n), (const CMPIValue*)(v), (t)))
#define CMGetObjectPath(i, rc) ((i)->ft->getObjectPath((i), (rc)))
#define CMSetObjectPath(i, p) ((i)->ft->setObjectPath((i), (p)))
#define CMSetPropertyFilter(i, properties, keys) \
  ((i)->ft->setPropertyFilter((i), (properties), (keys)))
#define CMSetPropertyWithOrigin(i, n, v, t, origin) \
  ((i)->ft->setPropertyWithOrigin((i), (n), (const CMPIValue*)(v), (t), (origin)))

/* ---- Object paths (p->ft) ------------------------------------------------ */

#define CMSetNameSpace(p, ns) ((p)->ft->setNameSpace((p), (ns)))
#define CMGetNameSpace(p, rc) ((p)->ft->getNameSpace((p), (rc)))
#define CMSetHostname(p, hn) ((p)->ft->setHostname((p), (hn)))
#define CMGetHostname(p, rc) ((p)->ft->getHostname((p), (rc)))
#define CMSetClassName(p, cn) ((p)->ft->setClassName((p), (cn)))
#define CMGetClassName(p, rc) ((p)->ft->getClassName((p), (rc)))
#define CMAddKey(p, n, v, t) ((p)->ft->addKey((p), (n), (const CMPIValue*)(v), (t)))
#define CMGetKey(p, n, rc) ((p)->ft->getKey((p), (n), (rc)))
#define CMGetKeyAt(p, index, name, rc) ((p)->ft->getKeyAt((p), (index), (name), (rc)))
#define CMGetKeyCount(p, rc) ((p)->ft->getKeyCount((p), (rc)))
#define CMSetNameSpaceFromObjectPath(p, src) ((p)->ft->setNameSpaceFromObjectPath((p), (src)))
#define CMSetHostAndNameSpaceFromObjectPath(p, src) \
  ((p)->ft->setHostAndNameSpaceFromObjectPath((p), (src)))
#define CMGetClassQualifier(p, qName, rc) ((p)->ft->getClassQualifier((p), (qName), (rc)))
#define CMGetPropertyQualifier(p, pName, qName, rc) \
  ((p)->ft->getPropertyQualifier((p), (pName), (qName), (rc)))
#define CMGetMethodQualifier(p, mName, qName, rc) \
  ((p)->ft->getMethodQualifier((p), (mName), (qName), (rc)))
#define CMGetParameterQualifier(p, mName, pName, qName, rc) \
  ((p)->ft->getParameterQualifier((p), (mName), (pName), (qName), (rc)))
#define CMObjectPathToString(p, rc) ((p)->ft->toString((p), (rc)))

/* ---- Method arguments (a->ft) -------------------------------------------- */

#define CMAddArg(a, n, v, t) ((a)->ft->addArg((a), (n), (const CMPIValue*)(v), (t)))
#define CMGetArg(a, n, rc) ((a)->ft->getArg((a), (n), (rc)))
#define CMGetArgAt(a, index, name, rc) ((a)->ft->getArgAt((a), (index), (name), (rc)))
#define CMGetArgCount(a, rc) ((a)->ft->getArgCount((a), (rc)))

/* ---- Strings ------------------------------------------------------------- */

/*
 * Reads the characters straight from the handle, without a call: brokers keep
 * a CMPIString's NUL-terminated text in hdl. CMGetCharsPtr asks the table.
 */
#define CMGetCharPtr(s) ((char*)(s)->hdl)
#define CMGetCharsPtr(s, rc) ((s)->ft->getCharPtr((s), (rc)))

/* ---- Arrays, enumerations, date-times ------------------------------------ */

#define CMGetArrayCount(a, rc) ((a)->ft->getSize((a), (rc)))
#define CMGetArrayType(a, rc) ((a)->ft->getSimpleType((a), (rc)))
#define CMGetArrayElementAt(a, index, rc) ((a)->ft->getElementAt((a), (index), (rc)))
#define CMSetArrayElementAt(a, index, v, t) \
  ((a)->ft->setElementAt((a), (index), (const CMPIValue*)(v), (t)))

#define CMGetNext(e, rc) ((e)->ft->getNext((e), (rc)))
#define CMHasNext(e, rc) ((e)->ft->hasNext((e), (rc)))
#define CMToArray(e, rc) ((e)->ft->toArray((e), (rc)))

#define CMGetBinaryFormat(d, rc) ((d)->ft->getBinaryFormat((d), (rc)))
#define CMGetStringFormat(d, rc) ((d)->ft->getStringFormat((d), (rc)))
#define CMIsInterval(d, rc) ((d)->ft->isInterval((d), (rc)))

/* ---- Context (c->ft) ----------------------------------------------------- */

#define CMGetContextEntry(c, n, rc) ((c)->ft->getEntry((c), (n), (rc)))
#define CMGetContextEntryAt(c, index, name, rc) ((c)->ft->getEntryAt((c), (index), (name), (rc)))
#define CMGetContextEntryCount(c, rc) ((c)->ft->getEntryCount((c), (rc)))
#define CMAddContextEntry(c, n, v, t) ((c)->ft->addEntry((c), (n), (const CMPIValue*)(v), (t)))

/* ---- Select expressions, conditions and predicates ----------------------- */

#define CMEvaluateSelExp(s, i, rc) ((s)->ft->evaluate((s), (i), (rc)))
#define CMEvaluateSelExpUsingAccessor(s, accessor, parm, rc) \
  ((s)->ft->evaluateUsingAccessor((s), (accessor), (parm), (rc)))
#define CMGetSelExpString(s, rc) ((s)->ft->getString((s), (rc)))
#define CMGetDoc(s, rc) ((s)->ft->getDOC((s), (rc)))
#define CMGetCod(s, rc) ((s)->ft->getCOD((s), (rc)))

/* sc is a CMPISelectCond; typePtr receives a CMPISelectCondType. */
#define CMGetSubCondCountAndType(sc, typePtr, rc) ((sc)->ft->getCountAndType((sc), (typePtr), (rc)))
#define CMGetSubCondAt(sc, index, rc) ((sc)->ft->getSubCondAt((sc), (index), (rc)))

/* sub is a CMPISubCond. */
#define CMGetPredicateCount(sub, rc) ((sub)->ft->getCount((sub), (rc)))
#define CMGetPredicateAt(sub, index, rc) ((sub)->ft->getPredicateAt((sub), (index), (rc)))
#define CMGetPredicate(sub, n, rc) ((sub)->ft->getPredicate((sub), (n), (rc)))

/* pr is a CMPIPredicate. */
#define CMGetPredicateData(pr, typePtr, opPtr, lhsPtr, rhsPtr) \
  ((pr)->ft->getData((pr), (typePtr), (opPtr), (lhsPtr), (rhsPtr)))
#define CMEvaluatePredicateUsingAccessor(pr, accessor, parm, rc) \
  ((pr)->ft->evaluateUsingAccessor((pr), (accessor), (parm), (rc)))

/* ---- Extended errors (CMPIError) ----------------------------------------- */

#define CMGetErrorType(e, rc) ((e)->ft->getErrorType((e), (rc)))
#define CMGetOtherErrorType(e, rc) ((e)->ft->getOtherErrorType((e), (rc)))
#define CMGetOwningEntity(e, rc) ((e)->ft->getOwningEntity((e), (rc)))
#define CMGetMessageID(e, rc) ((e)->ft->getMessageID((e), (rc)))
/* Not CMGetMessage: that name belongs to the broker's message catalogue. */
#define CMGetErrorMessage(e, rc) ((e)->ft->getMessage((e), (rc)))
#define CMGetPerceivedSeverity(e, rc) ((e)->ft->getPerceivedSeverity((e), (rc)))
#define CMGetProbableCause(e, rc) ((e)->ft->getProbableCause((e), (rc)))
#define CMGetProbableCauseDescription(e, rc) ((e)->ft->getProbableCauseDescription((e), (rc)))
#define CMGetRecommendedActions(e, rc) ((e)->ft->getRecommendedActions((e), (rc)))
#define CMGetErrorSource(e, rc) ((e)->ft->getErrorSource((e), (rc)))
#define CMGetErrorSourceFormat(e, rc) ((e)->ft->getErrorSourceFormat((e), (rc)))
#define CMGetOtherErrorSourceFormat(e, rc) ((e)->ft->getOtherErrorSourceFormat((e), (rc)))
#define CMGetCIMStatusCode(e, rc) ((e)->ft->getCIMStatusCode((e), (rc)))
#define CMGetCIMStatusCodeDescription(e, rc) ((e)->ft->getCIMStatusCodeDescription((e), (rc)))
#define CMGetMessageArguments(e, rc) ((e)->ft->getMessageArguments((e), (rc)))

#define CMSetErrorType(e, et) ((e)->ft->setErrorType((e), (et)))
#define CMSetOtherErrorType(e, ot) ((e)->ft->setOtherErrorType((e), (ot)))
#define CMSetProbableCauseDescription(e, pcd) ((e)->ft->setProbableCauseDescription((e), (pcd)))
#define CMSetRecommendedActions(e, ra) ((e)->ft->setRecommendedActions((e), (ra)))
#define CMSetErrorSource(e, es) ((e)->ft->setErrorSource((e), (es)))
#define CMSetErrorSourceFormat(e, esf) ((e)->ft->setErrorSourceFormat((e), (esf)))
#define CMSetOtherErrorSourceFormat(e, oesf) ((e)->ft->setOtherErrorSourceFormat((e), (oesf)))
#define CMSetCIMStatusCodeDescription(e, cd) ((e)->ft->setCIMStatusCodeDescription((e), (cd)))
#define CMSetMessageArguments(e, values) ((e)->ft->setMessageArguments((e), (values)))

/* ---- Broker services (b->bft) -------------------------------------------- */

#define CBBrokerName(b) ((b)->bft->brokerName)
#define CBBrokerVersion(b) ((b)->bft->brokerVersion)
/* The broker's class is expressed in its capability bits (CMPI_MB_Class_*). */
#define CBGetClassification(b) ((b)->bft->brokerCapabilities)

#define CBPrepareAttachThread(b, c) ((b)->bft->prepareAttachThread((b), (c)))
#define CBAttachThread(b, c) ((b)->bft->attachThread((b), (c)))
#define CBDetachThread(b, c) ((b)->bft->detachThread((b), (c)))
#define CBDeliverIndication(b, c, ns, ind) ((b)->bft->deliverIndication((b), (c), (ns), (ind)))

#define CBEnumInstanceNames(b, c, p, rc) ((b)->bft->enumerateInstanceNames((b), (c), (p), (rc)))
#define CBEnumInstances(b, c, p, props, rc) \
  ((b)->bft->enumerateInstances((b), (c), (p), (props), (rc)))
#define CBGetInstance(b, c, p, props, rc) ((b)->bft->getInstance((b), (c), (p), (props), (rc)))
#define CBCreateInstance(b, c, p, i, rc) ((b)->bft->createInstance((b), (c), (p), (i), (rc)))
#define CBModifyInstance(b, c, p, i, props) ((b)->bft->modifyInstance((b), (c), (p), (i), (props)))
/* The name modifyInstance had before CMPI 2.0; kept so that older providers compile. */
#define CBSetInstance(b, c, p, i, props) CBModifyInstance(b, c, p, i, props)
#define CBDeleteInstance(b, c, p) ((b)->bft->deleteInstance((b), (c), (p)))
#define CBExecQuery(b, c, p, query, lang, rc) \
  ((b)->bft->execQuery((b), (c), (p), (query), (lang), (rc)))
#define CBAssociators(b, c, p, assocClass, resultClass, role, resultRole, props, rc)       \
  ((b)->bft->associators((b), (c), (p), (assocClass), (resultClass), (role), (resultRole), \
                         (props), (rc)))
#define CBAssociatorNames(b, c, p, assocClass, resultClass, role, resultRole, rc)              \
  ((b)->bft->associatorNames((b), (c), (p), (assocClass), (resultClass), (role), (resultRole), \
                             (rc)))
#define CBReferences(b, c, p, resultClass, role, props, rc) \
  ((b)->bft->references((b), (c), (p), (resultClass), (role), (props), (rc)))
#define CBReferenceNames(b, c, p, resultClass, role, rc) \
  ((b)->bft->referenceNames((b), (c), (p), (resultClass), (role), (rc)))
#define CBInvokeMethod(b, c, p, method, in, out, rc) \
  ((b)->bft->invokeMethod((b), (c), (p), (method), (in), (out), (rc)))
#define CBSetProperty(b, c, p, n, v, t) \
  ((b)->bft->setProperty((b), (c), (p), (n), (const CMPIValue*)(v), (t)))
#define CBGetProperty(b, c, p, n, rc) ((b)->bft->getProperty((b), (c), (p), (n), (rc)))

/* ---- MI stubs ------------------------------------------------------------ */

/*
 * Each stub defines the factory <pn>_Create_<Kind>MI that a broker looks up
 * in the provider library, with a static function table filled from the
 * functions <pfx><Operation> (declared before the stub is expanded):
 *
 *   CMInstanceMIStub     pfx##Cleanup, EnumInstanceNames, EnumInstances,
 *                        GetInstance, CreateInstance, ModifyInstance,
 *                        DeleteInstance, ExecQuery
 *   CMAssociationMIStub  pfx##AssociationCleanup, Associators,
 *                        AssociatorNames, References, ReferenceNames
 *   CMMethodMIStub       pfx##MethodCleanup, InvokeMethod
 *   CMPropertyMIStub     pfx##PropertyCleanup, SetProperty, GetProperty,
 *                        SetPropertyWithOrigin
 *   CMIndicationMIStub   pfx##IndicationCleanup, AuthorizeFilter, MustPoll,
 *                        ActivateFilter, DeActivateFilter,
 *                        EnableIndications, DisableIndications
 *
 * ftVersion and miVersion are CMPICurrentVersion, miName is the kind followed
 * by pn ("instance" #pn, ...). The factory stores the broker in the variable
 * named by broker (a const CMPIBroker*), then runs hook, a statement that may
 * use the factory's parameters brkr, ctx and rc, and the MI it will return,
 * mi; CMNoHook does nothing. The MI's hdl is NULL and *rc is left as the
 * broker set it.
 */
#define CMNoHook

#define CMInstanceMIStub(pfx, pn, broker, hook)                                                  \
  CMPI_EXTERN_C CMPIInstanceMI* pn##_Create_InstanceMI(const CMPIBroker* brkr,                   \
                                                       const CMPIContext* ctx, CMPIStatus* rc) { \
    static CMPIInstanceMIFT miFT = {                                                             \
        CMPICurrentVersion,     CMPICurrentVersion,  "instance" #pn,   pfx##Cleanup,             \
        pfx##EnumInstanceNames, pfx##EnumInstances,  pfx##GetInstance, pfx##CreateInstance,      \
        pfx##ModifyInstance,    pfx##DeleteInstance, pfx##ExecQuery};                            \
    static CMPIInstanceMI mi = {NULL, &miFT};                                                    \
    (void)ctx;                                                                                   \
    (void)rc;                                                                                    \
    broker = brkr;                                                                               \
    hook;                                                                                        \
    return &mi;                                                                                  \
  }

#define CMAssociationMIStub(pfx, pn, broker, hook)                                            \
  CMPI_EXTERN_C CMPIAssociationMI* pn##_Create_AssociationMI(                                 \
      const CMPIBroker* brkr, const CMPIContext* ctx, CMPIStatus* rc) {                       \
    static CMPIAssociationMIFT miFT = {                                                       \
        CMPICurrentVersion, CMPICurrentVersion,   "association" #pn, pfx##AssociationCleanup, \
        pfx##Associators,   pfx##AssociatorNames, pfx##References,   pfx##ReferenceNames};    \
    static CMPIAssociationMI mi = {NULL, &miFT};                                              \
    (void)ctx;                                                                                \
    (void)rc;                                                                                 \
    broker = brkr;                                                                            \
    hook;                                                                                     \
    return &mi;                                                                               \
  }

#define CMMethodMIStub(pfx, pn, broker, hook)                                                      \
  CMPI_EXTERN_C CMPIMethodMI* pn##_Create_MethodMI(const CMPIBroker* brkr, const CMPIContext* ctx, \
                                                   CMPIStatus* rc) {                               \
    static CMPIMethodMIFT miFT = {CMPICurrentVersion, CMPICurrentVersion, "method" #pn,            \
                                  pfx##MethodCleanup, pfx##InvokeMethod};                          \
    static CMPIMethodMI mi = {NULL, &miFT};                                                        \
    (void)ctx;                                                                                     \
    (void)rc;                                                                                      \
    broker = brkr;                                                                                 \
    hook;                                                                                          \
    return &mi;                                                                                    \
  }

#define CMPropertyMIStub(pfx, pn, broker, hook)                                                  \
  CMPI_EXTERN_C CMPIPropertyMI* pn##_Create_PropertyMI(const CMPIBroker* brkr,                   \
                                                       const CMPIContext* ctx, CMPIStatus* rc) { \
    static CMPIPropertyMIFT miFT = {                                                             \
        CMPICurrentVersion,        CMPICurrentVersion, "property" #pn,                           \
        pfx##PropertyCleanup,      pfx##SetProperty,   pfx##GetProperty,                         \
        pfx##SetPropertyWithOrigin};                                                             \
    static CMPIPropertyMI mi = {NULL, &miFT};                                                    \
    (void)ctx;                                                                                   \
    (void)rc;                                                                                    \
    broker = brkr;                                                                               \
    hook;                                                                                        \
    return &mi;                                                                                  \
  }

#define CMIndicationMIStub(pfx, pn, broker, hook)                                       \
  CMPI_EXTERN_C CMPIIndicationMI* pn##_Create_IndicationMI(                             \
      const CMPIBroker* brkr, const CMPIContext* ctx, CMPIStatus* rc) {                 \
    static CMPIIndicationMIFT miFT = {CMPICurrentVersion,     CMPICurrentVersion,       \
                                      "indication" #pn,       pfx##IndicationCleanup,   \
                                      pfx##AuthorizeFilter,   pfx##MustPoll,            \
                                      pfx##ActivateFilter,    pfx##DeActivateFilter,    \
                                      pfx##EnableIndications, pfx##DisableIndications}; \
    static CMPIIndicationMI mi = {NULL, &miFT};                                         \
    (void)ctx;                                                                          \
    (void)rc;                                                                           \
    broker = brkr;                                                                      \
    hook;                                                                               \
    return &mi;                                                                         \
  }

#endif /* CMPI_CMPIMACS_H */
