// The broker's encapsulated-object functions: factories, classPathIsA,
// toString and friends, messages, logging and errors.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "broker/Broker.h"
#include "broker/BrokerHost.h"
#include "broker/BuildWatch.h"
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

BrokerHost* HostFor(const CMPIBroker* broker, CMPIStatus* rc) {
  BrokerHost* host = BrokerHost::Of(broker);
  if (host == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost (null or foreign handle)");
  }
  return host;
}

const ObjectPathObject* PathArgument(const CMPIObjectPath* path, CMPIStatus* rc) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, path == nullptr ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_ERR_INVALID_HANDLE,
              path == nullptr ? "the object path is null"
                              : "not an object path of this broker (foreign handle)");
  }
  return object;
}

// Keys of the creation path that name declared properties of the right type
// become property values, as CIMOMs do.
void TakeKeysFromPath(InstanceData& instance, const PathData& path) {
  for (const NamedValue& key : path.keys.items()) {
    const auto index = instance.shape->find(key.name);
    if (index && !key.value.null && key.value.type == instance.shape->properties[*index].type) {
      instance.values[*index] = key.value;
    }
  }
}

// What newInstance made (or null), known to the build watch while the log is
// read: the builder traces "Exiting" after a failed newInstance too.
InstanceObject* Watched(BrokerHost& host, InstanceObject* made) {
  if (host.logBook().wanted()) {
    const std::uint64_t serial = WatchNewInstance(host.logBook(), made != nullptr);
    if (made != nullptr) {
      made->buildSerial = serial;
    }
  }
  return made;
}

CMPIInstance* NewInstance(const CMPIBroker* broker, const CMPIObjectPath* path, CMPIStatus* rc) {
  BrokerHost* host = HostFor(broker, rc);
  const ObjectPathObject* object = host == nullptr ? nullptr : PathArgument(path, rc);
  if (object == nullptr) {
    return nullptr;
  }
  const PathData& where = object->path;
  std::shared_ptr<const ClassShape> shape = host->shapeOf(where.nameSpace, where.className);
  if (!shape) {
    Watched(*host, nullptr);
    SetStatus(
        rc, CMPI_RC_ERR_INVALID_CLASS,
        "class " + where.className + " is not declared in namespace '" + where.nameSpace + "'");
    return nullptr;
  }
  InstanceData instance;
  instance.shape = shape;
  instance.host = where.host;
  instance.nameSpace = where.nameSpace;
  instance.values.reserve(shape->properties.size());
  for (const PropertyShape& property : shape->properties) {
    instance.values.push_back(property.initial);
  }
  TakeKeysFromPath(instance, where);
  return Watched(*host, CreateInScope<InstanceObject>(rc, std::move(instance)));
}

CMPIObjectPath* NewObjectPath(const CMPIBroker* broker, const char* nameSpace,
                              const char* className, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  if (className == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "newObjectPath: the class name is null");
    return nullptr;
  }
  PathData path;
  path.nameSpace = nameSpace == nullptr ? "" : nameSpace;
  path.className = className;
  return CreateInScope<ObjectPathObject>(rc, std::move(path));
}

CMPIArgs* NewArgs(const CMPIBroker* broker, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  return CreateInScope<ArgsObject>(rc);
}

CMPIString* NewString(const CMPIBroker* broker, const char* text, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  if (text == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "newString: the text is null");
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, text);
}

CMPIArray* NewArray(const CMPIBroker* broker, CMPICount size, CMPIType type, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  // The element type, whether or not the caller set the array flag.
  const CMPIType elementType = NormalizedType(static_cast<CMPIType>(type & ~CMPI_ARRAY));
  return CreateInScope<ArrayObject>(rc, elementType,
                                    std::vector<HostValue>(size, HostValue::Null(elementType)));
}

CMPIDateTime* NewDateTime(const CMPIBroker* broker, CMPIStatus* rc) {
  BrokerHost* host = HostFor(broker, rc);
  if (host == nullptr) {
    return nullptr;
  }
  return CreateInScope<DateTimeObject>(rc, LocalDateTime(host->now()));
}

CMPIDateTime* NewDateTimeFromBinary(const CMPIBroker* broker, CMPIUint64 binary,
                                    CMPIBoolean interval, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  return CreateInScope<DateTimeObject>(rc, DateTimeFromBinary(binary, interval != 0));
}

CMPIDateTime* NewDateTimeFromChars(const CMPIBroker* broker, const char* text, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  const std::optional<DateTime> parsed =
      text == nullptr ? std::nullopt : ParseDateTime(std::string(text));
  if (!parsed) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER,
              text == nullptr ? std::string("newDateTimeFromChars: the text is null")
                              : "newDateTimeFromChars: '" + std::string(text) +
                                    "' is neither yyyymmddhhmmss.mmmmmmsutc nor "
                                    "ddddddddhhmmss.mmmmmm:000");
    return nullptr;
  }
  return CreateInScope<DateTimeObject>(rc, *parsed);
}

CMPISelectExp* NewSelectExp(const CMPIBroker* broker, const char* query, const char* language,
                            CMPIArray** projection, CMPIStatus* rc) {
  if (projection != nullptr) {
    *projection = nullptr;
  }
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  if (query == nullptr || language == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "newSelectExp: the query or language is null");
    return nullptr;
  }
  return CreateInScope<SelectExpObject>(rc, query, language);
}

CMPIBoolean ClassPathIsA(const CMPIBroker* broker, const CMPIObjectPath* path, const char* type,
                         CMPIStatus* rc) {
  BrokerHost* host = HostFor(broker, rc);
  const ObjectPathObject* object = host == nullptr ? nullptr : PathArgument(path, rc);
  if (object == nullptr) {
    return 0;
  }
  if (type == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "classPathIsA: the class name is null");
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  const std::string& className = object->path.className;
  if (NoCaseEqual(className, type)) {
    return 1;
  }
  const std::string nameSpace =
      object->path.nameSpace.empty() ? host->nameSpaceOfUnnamed() : object->path.nameSpace;
  return host->isA(nameSpace, className, type) ? 1 : 0;
}

std::string ObjectText(const void* object) {
  HostObject* any = AsAnyObject(object);
  if (const auto* path = dynamic_cast<ObjectPathObject*>(any)) {
    return PathToString(path->path);
  }
  if (const auto* string = dynamic_cast<StringObject*>(any)) {
    return string->chars;
  }
  if (const auto* dateTime = dynamic_cast<DateTimeObject*>(any)) {
    return dateTime->value.text;
  }
  if (const auto* instance = dynamic_cast<InstanceObject*>(any)) {
    return ToSnapshot(instance->data()).toMof();
  }
  return TypeNameOf(object);
}

CMPIString* ToStringEntry(const CMPIBroker* broker, const void* object, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  if (TypeNameOf(object) == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "toString: not an object of this broker");
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, ObjectText(object));
}

CMPIBoolean IsOfType(const CMPIBroker* broker, const void* object, const char* type,
                     CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return 0;
  }
  const char* name = TypeNameOf(object);
  if (name == nullptr || type == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "isOfType: null type or foreign object");
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return std::string(name) == type ? 1 : 0;
}

CMPIString* GetType(const CMPIBroker* broker, const void* object, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  const char* name = TypeNameOf(object);
  if (name == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "getType: not an object of this broker");
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, name);
}

// Reads `count` (type, value) pairs as the CMFmt macros push them.
std::vector<std::string> FormatArguments(CMPICount count, va_list arguments) {
  std::vector<std::string> texts;
  for (CMPICount i = 0; i < count; ++i) {
    const int type = va_arg(arguments, int);
    switch (type) {
      case CMPI_sint8:
      case CMPI_sint16:
      case CMPI_sint32:
        texts.push_back(std::to_string(va_arg(arguments, int)));
        break;
      case CMPI_uint8:
      case CMPI_uint16:
      case CMPI_uint32:
        texts.push_back(std::to_string(va_arg(arguments, unsigned int)));
        break;
      case CMPI_sint64:
        texts.push_back(std::to_string(va_arg(arguments, long long)));
        break;
      case CMPI_uint64:
        texts.push_back(std::to_string(va_arg(arguments, unsigned long long)));
        break;
      case CMPI_real32:
      case CMPI_real64:
        texts.push_back(RealText(va_arg(arguments, double), false));
        break;
      case CMPI_boolean:
        texts.emplace_back(va_arg(arguments, int) != 0 ? "true" : "false");
        break;
      case CMPI_chars: {
        const char* chars = va_arg(arguments, const char*);
        texts.emplace_back(chars == nullptr ? "" : chars);
        break;
      }
      case CMPI_string: {
        const StringObject* string = AsString(va_arg(arguments, CMPIString*));
        texts.push_back(string == nullptr ? "" : string->chars);
        break;
      }
      default:
        return texts;  // the size of an unknown argument is unknown: stop reading
    }
  }
  return texts;
}

// The default message with $0..$9 replaced by the arguments' texts.
std::string FormatMessage(const char* message, const std::vector<std::string>& arguments) {
  std::string out;
  for (const char* c = message; *c != '\0'; ++c) {
    if (*c == '$' && c[1] >= '0' && c[1] <= '9' &&
        static_cast<std::size_t>(c[1] - '0') < arguments.size()) {
      out += arguments[static_cast<std::size_t>(c[1] - '0')];
      ++c;
    } else {
      out += *c;
    }
  }
  return out;
}

CMPIString* MessageFrom(const CMPIBroker* broker, const char* defaultMessage, CMPIStatus* rc,
                        CMPICount count, va_list arguments) {
  try {
    if (HostFor(broker, rc) == nullptr) {
      return nullptr;
    }
    if (defaultMessage == nullptr) {
      SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "getMessage: the default message is null");
      return nullptr;
    }
    return CreateInScope<StringObject>(
        rc, FormatMessage(defaultMessage, FormatArguments(count, arguments)));
  } catch (...) {
    SetStatus(rc, CMPI_RC_ERR_FAILED);
    return nullptr;
  }
}

// The host has no message catalogues: the default message is the message.
CMPIString* GetMessage(const CMPIBroker* broker, const char* /*id*/, const char* defaultMessage,
                       CMPIStatus* rc, CMPICount count, ...) {
  va_list arguments;
  va_start(arguments, count);
  CMPIString* message = MessageFrom(broker, defaultMessage, rc, count, arguments);
  va_end(arguments);
  return message;
}

CMPIString* GetMessage2(const CMPIBroker* broker, const char* /*id*/, CMPIMsgFileHandle /*file*/,
                        const char* defaultMessage, CMPIStatus* rc, CMPICount count, ...) {
  va_list arguments;
  va_start(arguments, count);
  CMPIString* message = MessageFrom(broker, defaultMessage, rc, count, arguments);
  va_end(arguments);
  return message;
}

CMPIStatus OpenMessageFile(const CMPIBroker* broker, const char* file, CMPIMsgFileHandle* handle) {
  if (BrokerHost::Of(broker) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost");
  }
  if (handle == nullptr || file == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, "openMessageFile: null file or handle");
  }
  // Any non-null handle will do: getMessage2 always answers the default message.
  static int catalogue = 0;
  *handle = &catalogue;
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus CloseMessageFile(const CMPIBroker* broker, CMPIMsgFileHandle) {
  if (BrokerHost::Of(broker) == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost");
  }
  return MakeStatus(CMPI_RC_OK);
}

std::string TextOf(const char* text, const CMPIString* string) {
  if (text != nullptr) {
    return text;
  }
  const StringObject* object = AsString(string);
  return object == nullptr ? std::string() : object->chars;
}

CMPIStatus Record(const CMPIBroker* broker, LogRecord::Kind kind, int severity, const char* id,
                  const char* text, const CMPIString* string) {
  BrokerHost* host = BrokerHost::Of(broker);
  if (host == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, "not a broker of cmpihost");
  }
  if (!host->logBook().wanted()) {
    return MakeStatus(CMPI_RC_OK);  // dropped at once: nobody would read it
  }
  LogRecord record;
  record.kind = kind;
  record.severity = severity;
  record.id = id == nullptr ? "" : id;
  record.text = TextOf(text, string);
  if (kind == LogRecord::Kind::kLog) {
    WatchLogMessage(record.severity, record.id, record.text);
  }
  host->logBook().add(std::move(record));
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus LogMessage(const CMPIBroker* broker, int severity, const char* id, const char* text,
                      const CMPIString* string) {
  // The common case, first and cheapest: nobody keeps or reads the record.
  BrokerHost* host = BrokerHost::Of(broker);
  if (host != nullptr && !host->logBook().wanted()) {
    CMPIStatus ok;
    ok.rc = CMPI_RC_OK;
    ok.msg = nullptr;
    return ok;
  }
  return Record(broker, LogRecord::Kind::kLog, severity, id, text, string);
}

CMPIStatus Trace(const CMPIBroker* broker, int level, const char* component, const char* text,
                 const CMPIString* string) {
  return Record(broker, LogRecord::Kind::kTrace, level, component, text, string);
}

CMPIError* NewCMPIError(const CMPIBroker* broker, const char* owner, const char* messageId,
                        const char* message, CMPIErrorSeverity severity,
                        CMPIErrorProbableCause cause, CMPIrc cimStatus, CMPIStatus* rc) {
  if (HostFor(broker, rc) == nullptr) {
    return nullptr;
  }
  ErrorData data;
  if (owner != nullptr) {
    data.owningEntity = owner;
  }
  if (messageId != nullptr) {
    data.messageId = messageId;
  }
  if (message != nullptr) {
    data.message = message;
  }
  data.severity = severity;
  data.probableCause = cause;
  data.cimStatusCode = cimStatus;
  return CreateInScope<ErrorObject>(rc, std::move(data));
}

}  // namespace

const CMPIBrokerEncFT kBrokerEncFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIBrokerEncFT, newInstance, NewInstance),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newObjectPath, NewObjectPath),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newArgs, NewArgs),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newString, NewString),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newArray, NewArray),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newDateTime, NewDateTime),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newDateTimeFromBinary, NewDateTimeFromBinary),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newDateTimeFromChars, NewDateTimeFromChars),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newSelectExp, NewSelectExp),
    CMPIHOST_SLOT(CMPIBrokerEncFT, classPathIsA, ClassPathIsA),
    CMPIHOST_SLOT(CMPIBrokerEncFT, toString, ToStringEntry),
    CMPIHOST_SLOT(CMPIBrokerEncFT, isOfType, IsOfType),
    CMPIHOST_SLOT(CMPIBrokerEncFT, getType, GetType),
    &GetMessage,
    CMPIHOST_SLOT(CMPIBrokerEncFT, logMessage, LogMessage),
    CMPIHOST_SLOT(CMPIBrokerEncFT, trace, Trace),
    CMPIHOST_SLOT(CMPIBrokerEncFT, newCMPIError, NewCMPIError),
    CMPIHOST_SLOT(CMPIBrokerEncFT, openMessageFile, OpenMessageFile),
    CMPIHOST_SLOT(CMPIBrokerEncFT, closeMessageFile, CloseMessageFile),
    &GetMessage2,
};

}  // namespace cmpihost
