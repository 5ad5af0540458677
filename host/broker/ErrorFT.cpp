// CMPIError (every field readable and settable) and a minimal CMPISelectExp
// that keeps its query text but evaluates nothing.
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not an error of this broker (null or foreign handle)";

CMPIStatus ErrorRelease(CMPIError* error) {
  return ReleaseIfOurs(AsError(error), kNotOurs);
}

CMPIError* ErrorClone(const CMPIError* error, CMPIStatus* rc) {
  const ErrorObject* object = AsError(error);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<ErrorObject>(rc, object->data);
}

template <typename T, T ErrorData::*Field>
T GetEnum(const CMPIError* error, CMPIStatus* rc) {
  const ErrorObject* object = AsError(error);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return T{};
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->data.*Field;
}

template <typename T, T ErrorData::*Field>
CMPIStatus SetEnum(CMPIError* error, T value) {
  ErrorObject* object = AsError(error);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  object->data.*Field = value;
  return MakeStatus(CMPI_RC_OK);
}

using OptionalText = std::optional<std::string>;

template <OptionalText ErrorData::*Field>
CMPIString* GetText(const CMPIError* error, CMPIStatus* rc) {
  const ErrorObject* object = AsError(error);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  const OptionalText& text = object->data.*Field;
  if (!text) {
    SetStatus(rc, CMPI_RC_OK);
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, *text);
}

template <OptionalText ErrorData::*Field>
CMPIStatus SetText(CMPIError* error, const char* text) {
  ErrorObject* object = AsError(error);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  object->data.*Field = text == nullptr ? OptionalText() : OptionalText(text);
  return MakeStatus(CMPI_RC_OK);
}

using OptionalArray = std::optional<HostValue>;

template <OptionalArray ErrorData::*Field>
CMPIArray* GetArray(const CMPIError* error, CMPIStatus* rc) {
  const ErrorObject* object = AsError(error);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  const OptionalArray& array = object->data.*Field;
  if (!array) {
    SetStatus(rc, CMPI_RC_OK);
    return nullptr;
  }
  return CreateInScope<ArrayObject>(rc, CMPI_string, array->elements());
}

template <OptionalArray ErrorData::*Field>
CMPIStatus SetArray(CMPIError* error, const CMPIArray* array) {
  ErrorObject* object = AsError(error);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (array == nullptr) {
    (object->data.*Field).reset();
    return MakeStatus(CMPI_RC_OK);
  }
  CMPIValue value;
  value.array = const_cast<CMPIArray*>(array);
  HostValue copy;
  std::string problem;
  const CMPIrc rc = FromCmpiValue(&value, CMPI_stringA, copy, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, problem);
  }
  object->data.*Field = std::move(copy);
  return MakeStatus(CMPI_RC_OK);
}

// --- CMPISelectExp ---

const char* const kNoQueries = "cmpihost does not evaluate queries";

const char* const kNotOurSelectExp = "not a select expression of this broker";

CMPIStatus SelectExpRelease(CMPISelectExp* expression) {
  return ReleaseIfOurs(AsSelectExp(expression), kNotOurSelectExp);
}

CMPISelectExp* SelectExpClone(const CMPISelectExp* expression, CMPIStatus* rc) {
  const SelectExpObject* object = AsSelectExp(expression);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurSelectExp);
    return nullptr;
  }
  return CreateOwned<SelectExpObject>(rc, object->query, object->language);
}

CMPIBoolean SelectExpEvaluate(const CMPISelectExp*, const CMPIInstance*, CMPIStatus* rc) {
  SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, kNoQueries);
  return 0;
}

CMPIString* SelectExpGetString(const CMPISelectExp* expression, CMPIStatus* rc) {
  const SelectExpObject* object = AsSelectExp(expression);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurSelectExp);
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, object->query);
}

CMPISelectCond* SelectExpGetCondition(const CMPISelectExp*, CMPIStatus* rc) {
  SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, kNoQueries);
  return nullptr;
}

CMPIBoolean SelectExpEvaluateUsingAccessor(const CMPISelectExp*, CMPIAccessor*, void*,
                                           CMPIStatus* rc) {
  SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, kNoQueries);
  return 0;
}

}  // namespace

const CMPIErrorFT kErrorFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIErrorFT, release, ErrorRelease),
    CMPIHOST_SLOT(CMPIErrorFT, clone, ErrorClone),
    CMPIHOST_SLOT(CMPIErrorFT, getErrorType, (GetEnum<CMPIErrorType, &ErrorData::errorType>)),
    CMPIHOST_SLOT(CMPIErrorFT, getOtherErrorType, GetText<&ErrorData::otherErrorType>),
    CMPIHOST_SLOT(CMPIErrorFT, getOwningEntity, GetText<&ErrorData::owningEntity>),
    CMPIHOST_SLOT(CMPIErrorFT, getMessageID, GetText<&ErrorData::messageId>),
    CMPIHOST_SLOT(CMPIErrorFT, getMessage, GetText<&ErrorData::message>),
    CMPIHOST_SLOT(CMPIErrorFT, getPerceivedSeverity,
                  (GetEnum<CMPIErrorSeverity, &ErrorData::severity>)),
    CMPIHOST_SLOT(CMPIErrorFT, getProbableCause,
                  (GetEnum<CMPIErrorProbableCause, &ErrorData::probableCause>)),
    CMPIHOST_SLOT(CMPIErrorFT, getProbableCauseDescription,
                  GetText<&ErrorData::probableCauseDescription>),
    CMPIHOST_SLOT(CMPIErrorFT, getRecommendedActions, GetArray<&ErrorData::recommendedActions>),
    CMPIHOST_SLOT(CMPIErrorFT, getErrorSource, GetText<&ErrorData::errorSource>),
    CMPIHOST_SLOT(CMPIErrorFT, getErrorSourceFormat,
                  (GetEnum<CMPIErrorSrcFormat, &ErrorData::errorSourceFormat>)),
    CMPIHOST_SLOT(CMPIErrorFT, getOtherErrorSourceFormat,
                  GetText<&ErrorData::otherErrorSourceFormat>),
    CMPIHOST_SLOT(CMPIErrorFT, getCIMStatusCode, (GetEnum<CMPIrc, &ErrorData::cimStatusCode>)),
    CMPIHOST_SLOT(CMPIErrorFT, getCIMStatusCodeDescription,
                  GetText<&ErrorData::cimStatusCodeDescription>),
    CMPIHOST_SLOT(CMPIErrorFT, getMessageArguments, GetArray<&ErrorData::messageArguments>),
    CMPIHOST_SLOT(CMPIErrorFT, setErrorType, (SetEnum<CMPIErrorType, &ErrorData::errorType>)),
    CMPIHOST_SLOT(CMPIErrorFT, setOtherErrorType, SetText<&ErrorData::otherErrorType>),
    CMPIHOST_SLOT(CMPIErrorFT, setProbableCauseDescription,
                  SetText<&ErrorData::probableCauseDescription>),
    CMPIHOST_SLOT(CMPIErrorFT, setRecommendedActions, SetArray<&ErrorData::recommendedActions>),
    CMPIHOST_SLOT(CMPIErrorFT, setErrorSource, SetText<&ErrorData::errorSource>),
    CMPIHOST_SLOT(CMPIErrorFT, setErrorSourceFormat,
                  (SetEnum<CMPIErrorSrcFormat, &ErrorData::errorSourceFormat>)),
    CMPIHOST_SLOT(CMPIErrorFT, setOtherErrorSourceFormat,
                  SetText<&ErrorData::otherErrorSourceFormat>),
    CMPIHOST_SLOT(CMPIErrorFT, setCIMStatusCodeDescription,
                  SetText<&ErrorData::cimStatusCodeDescription>),
    CMPIHOST_SLOT(CMPIErrorFT, setMessageArguments, SetArray<&ErrorData::messageArguments>),
};

const CMPISelectExpFT kSelectExpFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPISelectExpFT, release, SelectExpRelease),
    CMPIHOST_SLOT(CMPISelectExpFT, clone, SelectExpClone),
    CMPIHOST_SLOT(CMPISelectExpFT, evaluate, SelectExpEvaluate),
    CMPIHOST_SLOT(CMPISelectExpFT, getString, SelectExpGetString),
    CMPIHOST_SLOT(CMPISelectExpFT, getDOC, SelectExpGetCondition),
    CMPIHOST_SLOT(CMPISelectExpFT, getCOD, SelectExpGetCondition),
    CMPIHOST_SLOT(CMPISelectExpFT, evaluateUsingAccessor, SelectExpEvaluateUsingAccessor),
};

}  // namespace cmpihost
