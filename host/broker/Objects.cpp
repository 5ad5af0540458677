#include "broker/Objects.h"

namespace cmpihost {

StringObject::StringObject(std::string text, bool isImmortal)
    : chars(std::move(text)), immortal(isImmortal) {
  // Old provider macros read the characters straight from hdl.
  hdl = const_cast<char*>(chars.c_str());
  SetTable(*this, kStringFT);
}

ArrayObject::ArrayObject(CMPIType type, std::vector<HostValue> values)
    : elementType(type), elements(std::move(values)) {
  hdl = this;
  SetTable(*this, kArrayFT);
}

DateTimeObject::DateTimeObject(DateTime dateTime) : value(std::move(dateTime)) {
  hdl = this;
  SetTable(*this, kDateTimeFT);
}

ObjectPathObject::ObjectPathObject(PathData data) : path(std::move(data)) {
  hdl = this;
  SetTable(*this, kObjectPathFT);
}

InstanceObject::InstanceObject(InstanceData instance)
    : data_(std::make_shared<InstanceData>(std::move(instance))) {
  hdl = this;
  SetTable(*this, kInstanceFT);
}

// Shared, not copied: mutableData copies it before the first change.
InstanceObject::InstanceObject(std::shared_ptr<const InstanceData> shared)
    : data_(std::const_pointer_cast<InstanceData>(std::move(shared))) {
  hdl = this;
  SetTable(*this, kInstanceFT);
}

void InstanceObject::setData(InstanceData instance) {
  data_ = std::make_shared<InstanceData>(std::move(instance));
}

InstanceData& InstanceObject::mutableData() {
  if (data_.use_count() > 1) {
    data_ = std::make_shared<InstanceData>(*data_);
  }
  return *data_;
}

ArgsObject::ArgsObject(NamedValues values) : args(std::move(values)) {
  hdl = this;
  SetTable(*this, kArgsFT);
}

EnumerationObject::EnumerationObject(CMPIType type, std::vector<HostValue> values)
    : itemType(type), items(std::move(values)) {
  hdl = this;
  SetTable(*this, kEnumerationFT);
}

ContextObject::ContextObject(NamedValues values) : entries(std::move(values)) {
  hdl = this;
  SetTable(*this, kContextFT);
}

ResultObject::ResultObject() {
  hdl = this;
  SetTable(*this, kResultFT);
}

ErrorObject::ErrorObject(ErrorData error) : data(std::move(error)) {
  hdl = this;
  SetTable(*this, kErrorFT);
}

SelectExpObject::SelectExpObject(std::string text, std::string lang)
    : query(std::move(text)), language(std::move(lang)) {
  hdl = this;
  SetTable(*this, kSelectExpFT);
}

namespace {

template <typename Object, typename Cmpi, typename Table>
Object* Downcast(const Cmpi* object, const Table& table) {
  if (object == nullptr ||
      static_cast<const void*>(object->ft) != static_cast<const void*>(&table)) {
    return nullptr;
  }
  return static_cast<Object*>(const_cast<Cmpi*>(object));
}

// Every encapsulated CMPI object starts with hdl and ft; this reads ft.
const void* TableOf(const void* object) {
  return static_cast<const void*>(static_cast<const CMPIString*>(object)->ft);
}

}  // namespace

const StringObject* AsString(const CMPIString* object) {
  return Downcast<StringObject>(object, kStringFT);
}
ArrayObject* AsArray(const CMPIArray* object) {
  return Downcast<ArrayObject>(object, kArrayFT);
}
const DateTimeObject* AsDateTime(const CMPIDateTime* object) {
  return Downcast<DateTimeObject>(object, kDateTimeFT);
}
ObjectPathObject* AsObjectPath(const CMPIObjectPath* object) {
  return Downcast<ObjectPathObject>(object, kObjectPathFT);
}
InstanceObject* AsInstance(const CMPIInstance* object) {
  return Downcast<InstanceObject>(object, kInstanceFT);
}
ArgsObject* AsArgs(const CMPIArgs* object) {
  return Downcast<ArgsObject>(object, kArgsFT);
}
EnumerationObject* AsEnumeration(const CMPIEnumeration* object) {
  return Downcast<EnumerationObject>(object, kEnumerationFT);
}
ContextObject* AsContext(const CMPIContext* object) {
  return Downcast<ContextObject>(object, kContextFT);
}
ResultObject* AsResult(const CMPIResult* object) {
  return Downcast<ResultObject>(object, kResultFT);
}
ErrorObject* AsError(const CMPIError* object) {
  return Downcast<ErrorObject>(object, kErrorFT);
}
SelectExpObject* AsSelectExp(const CMPISelectExp* object) {
  return Downcast<SelectExpObject>(object, kSelectExpFT);
}

HostObject* AsAnyObject(const void* object) {
  if (object == nullptr) {
    return nullptr;
  }
  const void* table = TableOf(object);
  if (table == &kStringFT) {
    return const_cast<StringObject*>(AsString(static_cast<const CMPIString*>(object)));
  }
  if (table == &kArrayFT) {
    return AsArray(static_cast<const CMPIArray*>(object));
  }
  if (table == &kDateTimeFT) {
    return const_cast<DateTimeObject*>(AsDateTime(static_cast<const CMPIDateTime*>(object)));
  }
  if (table == &kObjectPathFT) {
    return AsObjectPath(static_cast<const CMPIObjectPath*>(object));
  }
  if (table == &kInstanceFT) {
    return AsInstance(static_cast<const CMPIInstance*>(object));
  }
  if (table == &kArgsFT) {
    return AsArgs(static_cast<const CMPIArgs*>(object));
  }
  if (table == &kEnumerationFT) {
    return AsEnumeration(static_cast<const CMPIEnumeration*>(object));
  }
  if (table == &kContextFT) {
    return AsContext(static_cast<const CMPIContext*>(object));
  }
  if (table == &kResultFT) {
    return AsResult(static_cast<const CMPIResult*>(object));
  }
  if (table == &kErrorFT) {
    return AsError(static_cast<const CMPIError*>(object));
  }
  if (table == &kSelectExpFT) {
    return AsSelectExp(static_cast<const CMPISelectExp*>(object));
  }
  return nullptr;
}

const char* TypeNameOf(const void* object) {
  if (object == nullptr) {
    return nullptr;
  }
  const void* table = TableOf(object);
  const std::pair<const void*, const char*> names[] = {
      {&kStringFT, "CMPIString"},           {&kArrayFT, "CMPIArray"},
      {&kDateTimeFT, "CMPIDateTime"},       {&kObjectPathFT, "CMPIObjectPath"},
      {&kInstanceFT, "CMPIInstance"},       {&kArgsFT, "CMPIArgs"},
      {&kEnumerationFT, "CMPIEnumeration"}, {&kContextFT, "CMPIContext"},
      {&kResultFT, "CMPIResult"},           {&kErrorFT, "CMPIError"},
      {&kSelectExpFT, "CMPISelectExp"},
  };
  for (const auto& [candidate, name] : names) {
    if (candidate == table) {
      return name;
    }
  }
  return nullptr;
}

CMPIString* NewMessageString(const std::string& text) {
  Scope* scope = Scope::Current();
  if (scope == nullptr) {
    return nullptr;
  }
  auto object = std::make_unique<StringObject>(text);
  scope->adopt(object.get());
  return object.release();
}

CMPIStatus MakeStatus(CMPIrc rc, std::string_view message) {
  CMPIStatus status;
  status.rc = rc;
  status.msg = message.empty() ? nullptr : NewMessageString(std::string(message));
  return status;
}

void SetStatus(CMPIStatus* out, CMPIrc rc, std::string_view message) {
  if (out != nullptr) {
    *out = MakeStatus(rc, message);
  }
}

CMPIStatus NoScopeStatus() {
  // No scope can own a message now, so the message is one that is never freed.
  static auto* const message = new StringObject(
      "cmpihost: no call scope is open on this thread; the broker creates objects only during "
      "an MI call, after attachThread, after mark, or inside a test's CallScope",
      true);
  CMPIStatus status;
  status.rc = CMPI_RC_ERR_FAILED;
  status.msg = message;
  return status;
}

CMPIStatus ReleaseIfOurs(const HostObject* object, const char* notOurs) {
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, notOurs);
  }
  // Handles are const where CMPI reads them; releasing is still the owner's.
  ReleaseObject(const_cast<HostObject*>(object));
  return MakeStatus(CMPI_RC_OK);
}

void SetNoScopeStatus(CMPIStatus* out) {
  if (out != nullptr) {
    *out = NoScopeStatus();
  }
}

CMPIData NullData(CMPIType type, CMPIValueState state) {
  CMPIData data{};
  data.type = type;
  data.state = state;
  return data;
}

void NameOut(CMPIString** name, const std::string& text, CMPIStatus* rc) {
  if (name == nullptr) {
    return;
  }
  CMPIStatus made;
  *name = CreateInScope<StringObject>(&made, text);
  if (*name == nullptr && rc != nullptr && rc->rc == CMPI_RC_OK) {
    *rc = made;
  }
}

namespace {

CMPIrc CopyScalar(const CMPIValue& value, CMPIType type, HostValue& out, std::string& problem) {
  out.type = type;
  out.null = false;
  switch (type) {
    case CMPI_boolean:
      out.scalar.boolean = value.boolean != 0 ? 1 : 0;
      return CMPI_RC_OK;
    case CMPI_char16:
      out.scalar.char16 = value.char16;
      return CMPI_RC_OK;
    case CMPI_uint8:
      out.scalar.uint8 = value.uint8;
      return CMPI_RC_OK;
    case CMPI_sint8:
      out.scalar.sint8 = value.sint8;
      return CMPI_RC_OK;
    case CMPI_uint16:
      out.scalar.uint16 = value.uint16;
      return CMPI_RC_OK;
    case CMPI_sint16:
      out.scalar.sint16 = value.sint16;
      return CMPI_RC_OK;
    case CMPI_uint32:
      out.scalar.uint32 = value.uint32;
      return CMPI_RC_OK;
    case CMPI_sint32:
      out.scalar.sint32 = value.sint32;
      return CMPI_RC_OK;
    case CMPI_uint64:
      out.scalar.uint64 = value.uint64;
      return CMPI_RC_OK;
    case CMPI_sint64:
      out.scalar.sint64 = value.sint64;
      return CMPI_RC_OK;
    case CMPI_real32:
      out.scalar.real32 = value.real32;
      return CMPI_RC_OK;
    case CMPI_real64:
      out.scalar.real64 = value.real64;
      return CMPI_RC_OK;
    default:
      break;
  }
  out.null = true;
  problem = "type " + std::to_string(type) + " cannot be held as a value by this host";
  return CMPI_RC_ERR_INVALID_DATA_TYPE;
}

CMPIrc CopyObject(const CMPIValue& value, CMPIType type, HostValue& out, std::string& problem) {
  out.type = type;
  out.null = false;
  switch (type) {
    case CMPI_string: {
      const StringObject* string = AsString(value.string);
      if (string == nullptr) {
        problem = "the CMPIString is not one this broker made";
        return CMPI_RC_ERR_INVALID_HANDLE;
      }
      out.text = string->chars;
      return CMPI_RC_OK;
    }
    case CMPI_dateTime: {
      const DateTimeObject* dateTime = AsDateTime(value.dateTime);
      if (dateTime == nullptr) {
        problem = "the CMPIDateTime is not one this broker made";
        return CMPI_RC_ERR_INVALID_HANDLE;
      }
      out.setDateTime(dateTime->value);
      return CMPI_RC_OK;
    }
    case CMPI_ref: {
      const ObjectPathObject* path = AsObjectPath(value.ref);
      if (path == nullptr) {
        problem = "the CMPIObjectPath is not one this broker made";
        return CMPI_RC_ERR_INVALID_HANDLE;
      }
      out.setPath(path->path);
      return CMPI_RC_OK;
    }
    case CMPI_instance: {
      const InstanceObject* instance = AsInstance(value.inst);
      if (instance == nullptr) {
        problem = "the CMPIInstance is not one this broker made";
        return CMPI_RC_ERR_INVALID_HANDLE;
      }
      out.setInstance(instance->data());
      return CMPI_RC_OK;
    }
    default:
      return CopyScalar(value, type, out, problem);
  }
}

const void* ObjectPointer(const CMPIValue& value, CMPIType type) {
  if ((type & CMPI_ARRAY) != 0) {
    return value.array;
  }
  switch (type) {
    case CMPI_string:
      return value.string;
    case CMPI_dateTime:
      return value.dateTime;
    case CMPI_ref:
      return value.ref;
    case CMPI_instance:
      return value.inst;
    default:
      return &value;  // scalars are never null pointers
  }
}

}  // namespace

CMPIrc FromCmpiValue(const CMPIValue* value, CMPIType type, HostValue& out, std::string& problem) {
  out = HostValue::Null(NormalizedType(type));
  if (type == CMPI_null || value == nullptr) {
    return CMPI_RC_OK;
  }
  if (type == CMPI_chars) {
    // By CMPI's convention the value pointer of CMPI_chars is the C string itself.
    out.null = false;
    out.text = reinterpret_cast<const char*>(value);
    return CMPI_RC_OK;
  }
  if (ObjectPointer(*value, type) == nullptr) {
    return CMPI_RC_OK;
  }
  if ((type & CMPI_ARRAY) == 0) {
    return CopyObject(*value, type, out, problem);
  }
  const ArrayObject* array = AsArray(value->array);
  if (array == nullptr) {
    problem = "the CMPIArray is not one this broker made";
    return CMPI_RC_ERR_INVALID_HANDLE;
  }
  if (NormalizedType(static_cast<CMPIType>(type & ~CMPI_ARRAY)) != array->elementType) {
    problem = "the array holds " + CmpiTypeName(array->elementType) + " elements, not " +
              CmpiTypeName(static_cast<CMPIType>(type & ~CMPI_ARRAY));
    return CMPI_RC_ERR_TYPE_MISMATCH;
  }
  out.null = false;
  out.setElements(array->elements);
  return CMPI_RC_OK;
}

CMPIData ToCmpiData(const HostValue& value, CMPIStatus* rc) {
  CMPIData data = NullData(value.type, value.null ? CMPI_nullValue : CMPI_goodValue);
  SetStatus(rc, CMPI_RC_OK);
  if (value.null) {
    return data;
  }
  const void* made = nullptr;
  if ((value.type & CMPI_ARRAY) != 0) {
    auto* array = CreateInScope<ArrayObject>(rc, static_cast<CMPIType>(value.type & ~CMPI_ARRAY),
                                             value.elements());
    data.value.array = array;
    made = array;
  } else if (value.type == CMPI_string || value.type == CMPI_chars) {
    auto* string = CreateInScope<StringObject>(rc, value.text);
    data.type = CMPI_string;
    data.value.string = string;
    made = string;
  } else if (value.type == CMPI_dateTime) {
    auto* dateTime = CreateInScope<DateTimeObject>(rc, value.dateTime());
    data.value.dateTime = dateTime;
    made = dateTime;
  } else if (value.type == CMPI_ref) {
    auto* path = CreateInScope<ObjectPathObject>(rc, *value.path());
    data.value.ref = path;
    made = path;
  } else if (value.type == CMPI_instance) {
    auto* instance = CreateInScope<InstanceObject>(rc, value.sharedInstance());
    data.value.inst = instance;
    made = instance;
  } else {
    data.value = value.scalar;
    return data;
  }
  if (made == nullptr) {  // no scope open: nothing could be made
    data.state = CMPI_nullValue;
  }
  return data;
}

}  // namespace cmpihost
