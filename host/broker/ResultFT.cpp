// CMPIResult: records every call in order, copying what it is given so the
// record outlives the call's objects.
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not a result of this broker (null or foreign handle)";

CMPIStatus ResultRelease(CMPIResult* result) {
  return ReleaseIfOurs(AsResult(result), kNotOurs);
}

CMPIResult* ResultClone(const CMPIResult* result, CMPIStatus* rc) {
  if (AsResult(result) == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  } else {
    SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, "a result cannot be cloned; deliver into the call's");
  }
  return nullptr;
}

CMPIStatus Record(const CMPIResult* result, ResultRecord record) {
  ResultObject* object = AsResult(result);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  object->records.push_back(std::move(record));
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus ResultReturnData(const CMPIResult* result, const CMPIValue* value, CMPIType type) {
  if (AsResult(result) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  ResultRecord record;
  record.kind = ResultRecord::Kind::kData;
  std::string problem;
  const CMPIrc rc = FromCmpiValue(value, type, record.value, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, "returnData: " + problem);
  }
  return Record(result, std::move(record));
}

CMPIStatus ResultReturnInstance(const CMPIResult* result, const CMPIInstance* instance) {
  if (AsResult(result) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER,
                      "returnInstance: not an instance of this broker (null or foreign handle)");
  }
  ResultRecord record;
  record.kind = ResultRecord::Kind::kInstance;
  record.value.type = CMPI_instance;
  record.value.null = false;
  record.value.setInstance(object->share());
  return Record(result, std::move(record));
}

CMPIStatus ResultReturnObjectPath(const CMPIResult* result, const CMPIObjectPath* path) {
  if (AsResult(result) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    return MakeStatus(
        CMPI_RC_ERR_INVALID_PARAMETER,
        "returnObjectPath: not an object path of this broker (null or foreign handle)");
  }
  ResultRecord record;
  record.kind = ResultRecord::Kind::kObjectPath;
  record.value = HostValue::Reference(object->path);
  return Record(result, std::move(record));
}

CMPIStatus ResultReturnDone(const CMPIResult* result) {
  ResultRecord record;
  record.kind = ResultRecord::Kind::kDone;
  return Record(result, std::move(record));
}

CMPIStatus ResultReturnError(const CMPIResult* result, const CMPIError* error) {
  if (AsResult(result) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  const ErrorObject* object = AsError(error);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER,
                      "returnError: not an error of this broker (null or foreign handle)");
  }
  ResultRecord record;
  record.kind = ResultRecord::Kind::kError;
  record.error = object->data.message.value_or("");
  return Record(result, std::move(record));
}

}  // namespace

const CMPIResultFT kResultFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIResultFT, release, ResultRelease),
    CMPIHOST_SLOT(CMPIResultFT, clone, ResultClone),
    CMPIHOST_SLOT(CMPIResultFT, returnData, ResultReturnData),
    CMPIHOST_SLOT(CMPIResultFT, returnInstance, ResultReturnInstance),
    CMPIHOST_SLOT(CMPIResultFT, returnObjectPath, ResultReturnObjectPath),
    CMPIHOST_SLOT(CMPIResultFT, returnDone, ResultReturnDone),
    CMPIHOST_SLOT(CMPIResultFT, returnError, ResultReturnError),
};

}  // namespace cmpihost
