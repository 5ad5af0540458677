// CMPIString, CMPIDateTime and CMPIArray.
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not an object of this broker (null or foreign handle)";

// --- CMPIString ---

CMPIStatus StringRelease(CMPIString* string) {
  const StringObject* object = AsString(string);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (!object->immortal) {
    ReleaseObject(const_cast<StringObject*>(object));
  }
  return MakeStatus(CMPI_RC_OK);
}

CMPIString* StringClone(const CMPIString* string, CMPIStatus* rc) {
  const StringObject* object = AsString(string);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<StringObject>(rc, object->chars);
}

const char* StringGetCharPtr(const CMPIString* string, CMPIStatus* rc) {
  const StringObject* object = AsString(string);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->chars.c_str();
}

// --- CMPIDateTime ---

CMPIStatus DateTimeRelease(CMPIDateTime* dateTime) {
  return ReleaseIfOurs(AsDateTime(dateTime), kNotOurs);
}

CMPIDateTime* DateTimeClone(const CMPIDateTime* dateTime, CMPIStatus* rc) {
  const DateTimeObject* object = AsDateTime(dateTime);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<DateTimeObject>(rc, object->value);
}

CMPIUint64 DateTimeGetBinaryFormat(const CMPIDateTime* dateTime, CMPIStatus* rc) {
  const DateTimeObject* object = AsDateTime(dateTime);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->value.binary;
}

CMPIString* DateTimeGetStringFormat(const CMPIDateTime* dateTime, CMPIStatus* rc) {
  const DateTimeObject* object = AsDateTime(dateTime);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, object->value.text);
}

CMPIBoolean DateTimeIsInterval(const CMPIDateTime* dateTime, CMPIStatus* rc) {
  const DateTimeObject* object = AsDateTime(dateTime);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->value.interval ? 1 : 0;
}

// --- CMPIArray ---

CMPIStatus ArrayRelease(CMPIArray* array) {
  return ReleaseIfOurs(AsArray(array), kNotOurs);
}

CMPIArray* ArrayClone(const CMPIArray* array, CMPIStatus* rc) {
  const ArrayObject* object = AsArray(array);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<ArrayObject>(rc, object->elementType, object->elements);
}

CMPICount ArrayGetSize(const CMPIArray* array, CMPIStatus* rc) {
  const ArrayObject* object = AsArray(array);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPICount>(object->elements.size());
}

CMPIType ArrayGetSimpleType(const CMPIArray* array, CMPIStatus* rc) {
  const ArrayObject* object = AsArray(array);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return CMPI_null;
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->elementType;
}

std::string OutOfRange(CMPICount index, std::size_t size) {
  return "index " + std::to_string(index) + " is out of range (the array has " +
         std::to_string(size) + " elements)";
}

CMPIData ArrayGetElementAt(const CMPIArray* array, CMPICount index, CMPIStatus* rc) {
  const ArrayObject* object = AsArray(array);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  if (index >= object->elements.size()) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY, OutOfRange(index, object->elements.size()));
    return NullData(object->elementType, CMPI_nullValue | CMPI_notFound);
  }
  return ToCmpiData(object->elements[index], rc);
}

CMPIStatus ArraySetElementAt(CMPIArray* array, CMPICount index, const CMPIValue* value,
                             CMPIType type) {
  ArrayObject* object = AsArray(array);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (index >= object->elements.size()) {
    return MakeStatus(CMPI_RC_ERR_NO_SUCH_PROPERTY, OutOfRange(index, object->elements.size()));
  }
  const CMPIType given = type == CMPI_chars ? CMPI_string : type;
  if (given != object->elementType && type != CMPI_null) {
    return MakeStatus(CMPI_RC_ERR_TYPE_MISMATCH, "a " + CmpiTypeName(type) +
                                                     " element given for an array of " +
                                                     CmpiTypeName(object->elementType));
  }
  HostValue element;
  std::string problem;
  const CMPIrc rc = type == CMPI_null
                        ? FromCmpiValue(nullptr, object->elementType, element, problem)
                        : FromCmpiValue(value, type, element, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, problem);
  }
  element.type = object->elementType;
  object->elements[index] = std::move(element);
  return MakeStatus(CMPI_RC_OK);
}

}  // namespace

const CMPIStringFT kStringFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIStringFT, release, StringRelease),
    CMPIHOST_SLOT(CMPIStringFT, clone, StringClone),
    CMPIHOST_SLOT(CMPIStringFT, getCharPtr, StringGetCharPtr),
};

const CMPIDateTimeFT kDateTimeFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIDateTimeFT, release, DateTimeRelease),
    CMPIHOST_SLOT(CMPIDateTimeFT, clone, DateTimeClone),
    CMPIHOST_SLOT(CMPIDateTimeFT, getBinaryFormat, DateTimeGetBinaryFormat),
    CMPIHOST_SLOT(CMPIDateTimeFT, getStringFormat, DateTimeGetStringFormat),
    CMPIHOST_SLOT(CMPIDateTimeFT, isInterval, DateTimeIsInterval),
};

const CMPIArrayFT kArrayFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIArrayFT, release, ArrayRelease),
    CMPIHOST_SLOT(CMPIArrayFT, clone, ArrayClone),
    CMPIHOST_SLOT(CMPIArrayFT, getSize, ArrayGetSize),
    CMPIHOST_SLOT(CMPIArrayFT, getSimpleType, ArrayGetSimpleType),
    CMPIHOST_SLOT(CMPIArrayFT, getElementAt, ArrayGetElementAt),
    CMPIHOST_SLOT(CMPIArrayFT, setElementAt, ArraySetElementAt),
};

}  // namespace cmpihost
