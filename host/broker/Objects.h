// The front door is cmpihost/Host.h; this header is internal.
// The host's CMPI encapsulated objects. Each derives from the CMPI struct it
// stands for (so a CMPI pointer converts back with static_cast) and from
// HostObject (so a scope can own it). An object is recognised as the host's
// by its function table pointer.
#ifndef CMPIHOST_BROKER_OBJECTS_H_
#define CMPIHOST_BROKER_OBJECTS_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "broker/Scope.h"
#include "broker/Values.h"

namespace cmpihost {

extern const CMPIStringFT kStringFT;
extern const CMPIArrayFT kArrayFT;
extern const CMPIDateTimeFT kDateTimeFT;
extern const CMPIObjectPathFT kObjectPathFT;
extern const CMPIInstanceFT kInstanceFT;
extern const CMPIArgsFT kArgsFT;
extern const CMPIEnumerationFT kEnumerationFT;
extern const CMPIContextFT kContextFT;
extern const CMPIResultFT kResultFT;
extern const CMPIErrorFT kErrorFT;
extern const CMPISelectExpFT kSelectExpFT;

// The `ft` member's type differs between header sets (const or not).
template <typename Object, typename Table>
void SetTable(Object& object, const Table& table) {
  object.ft = const_cast<Table*>(&table);
}

struct StringObject final : HostObject, CMPIString {
  explicit StringObject(std::string text, bool isImmortal = false);
  const std::string chars;
  const bool immortal;  // the static "no scope" message, never freed
};

struct ArrayObject final : HostObject, CMPIArray {
  ArrayObject(CMPIType type, std::vector<HostValue> values);
  CMPIType elementType;
  std::vector<HostValue> elements;
};

struct DateTimeObject final : HostObject, CMPIDateTime {
  explicit DateTimeObject(DateTime dateTime);
  DateTime value;
};

struct ObjectPathObject final : HostObject, CMPIObjectPath {
  explicit ObjectPathObject(PathData data);
  PathData path;
};

// An instance's data is shared with the results it was returned into, so
// that returning a kept instance copies nothing; whoever changes it first
// gets a copy of its own (a result keeps what was returned).
struct InstanceObject final : HostObject, CMPIInstance {
  explicit InstanceObject(InstanceData instance);
  explicit InstanceObject(std::shared_ptr<const InstanceData> shared);
  const InstanceData& data() const { return *data_; }
  InstanceData& mutableData();
  void setData(InstanceData instance);
  std::shared_ptr<const InstanceData> share() const { return data_; }
  // Non-zero when newInstance made it while the log was read (see BuildWatch.h).
  std::uint64_t buildSerial = 0;

 private:
  std::shared_ptr<InstanceData> data_;
};

struct ArgsObject final : HostObject, CMPIArgs {
  explicit ArgsObject(NamedValues values = {});
  NamedValues args;
};

struct EnumerationObject final : HostObject, CMPIEnumeration {
  EnumerationObject(CMPIType type, std::vector<HostValue> values);
  CMPIType itemType;
  std::vector<HostValue> items;
  std::size_t next = 0;
};

struct ContextObject final : HostObject, CMPIContext {
  explicit ContextObject(NamedValues values = {});
  NamedValues entries;
};

// One call a provider made on a result, kept as host values.
struct ResultRecord {
  enum class Kind { kInstance, kObjectPath, kData, kDone, kError };
  Kind kind = Kind::kDone;
  HostValue value;    // the instance (CMPI_instance), path (CMPI_ref) or data
  std::string error;  // kError: the error's message
};

struct ResultObject final : HostObject, CMPIResult {
  ResultObject();
  std::vector<ResultRecord> records;
};

struct ErrorData {
  CMPIErrorType errorType = UnknownErrorType;
  std::optional<std::string> otherErrorType;
  std::optional<std::string> owningEntity;
  std::optional<std::string> messageId;
  std::optional<std::string> message;
  CMPIErrorSeverity severity = ErrorSevUnknown;
  CMPIErrorProbableCause probableCause = ErrorProbCauseUnknown;
  std::optional<std::string> probableCauseDescription;
  std::optional<HostValue> recommendedActions;  // string array
  std::optional<std::string> errorSource;
  CMPIErrorSrcFormat errorSourceFormat = CMPIErrSrcUnknown;
  std::optional<std::string> otherErrorSourceFormat;
  CMPIrc cimStatusCode = CMPI_RC_OK;
  std::optional<std::string> cimStatusCodeDescription;
  std::optional<HostValue> messageArguments;  // string array
};

struct ErrorObject final : HostObject, CMPIError {
  explicit ErrorObject(ErrorData error);
  ErrorData data;
};

struct SelectExpObject final : HostObject, CMPISelectExp {
  SelectExpObject(std::string text, std::string lang);
  std::string query;
  std::string language;
};

// The host's object behind a CMPI pointer, or null when the pointer is null
// or the object is not the host's.
const StringObject* AsString(const CMPIString* object);
ArrayObject* AsArray(const CMPIArray* object);
const DateTimeObject* AsDateTime(const CMPIDateTime* object);
ObjectPathObject* AsObjectPath(const CMPIObjectPath* object);
InstanceObject* AsInstance(const CMPIInstance* object);
ArgsObject* AsArgs(const CMPIArgs* object);
EnumerationObject* AsEnumeration(const CMPIEnumeration* object);
ContextObject* AsContext(const CMPIContext* object);
ResultObject* AsResult(const CMPIResult* object);
ErrorObject* AsError(const CMPIError* object);
SelectExpObject* AsSelectExp(const CMPISelectExp* object);

// The object behind any encapsulated CMPI pointer (hdl, then ft), by its table.
HostObject* AsAnyObject(const void* object);
// "CMPIString", "CMPIInstance", ...; null when the object is not the host's.
const char* TypeNameOf(const void* object);

// Makes an object owned by the innermost scope. With no scope open, nothing
// is made: null, and `rc` says why.
template <typename T, typename... Args>
T* CreateInScope(CMPIStatus* rc, Args&&... args);

// The status helpers; messages become strings of the current scope (or the
// message is null when no scope is open).
// (A view, so that the OK status every broker function ends with makes no
// string.)
CMPIStatus MakeStatus(CMPIrc rc, std::string_view message = {});
void SetStatus(CMPIStatus* out, CMPIrc rc, std::string_view message = {});
void SetNoScopeStatus(CMPIStatus* out);
CMPIStatus NoScopeStatus();
CMPIString* NewMessageString(const std::string& text);
// Every handle's release: frees `object` at once, or answers
// CMPI_RC_ERR_INVALID_HANDLE with `notOurs` when it is null (a handle that
// is not the host's).
CMPIStatus ReleaseIfOurs(const HostObject* object, const char* notOurs);
CMPIData NullData(CMPIType type, CMPIValueState state = CMPI_nullValue);
// The name out-argument of the get...At functions: a string of the current
// scope; a failure to make it overrides an OK in `rc`.
void NameOut(CMPIString** name, const std::string& text, CMPIStatus* rc);

// Copies a provider's CMPI value in. CMPI_chars (whose value pointer is the
// C string itself, as CMPI has it) becomes CMPI_string. Objects
// must be the host's. Null value pointers and null object pointers give a
// null value of `type`. Answers the rc and, when not OK, why.
CMPIrc FromCmpiValue(const CMPIValue* value, CMPIType type, HostValue& out, std::string& problem);
// A CMPIData for the value, its objects made in the current scope.
CMPIData ToCmpiData(const HostValue& value, CMPIStatus* rc);

template <typename T, typename... Args>
T* CreateInScope(CMPIStatus* rc, Args&&... args) {
  Scope* scope = Scope::Current();
  if (scope == nullptr) {
    SetNoScopeStatus(rc);
    return nullptr;
  }
  auto object = std::make_unique<T>(std::forward<Args>(args)...);
  scope->adopt(object.get());
  SetStatus(rc, CMPI_RC_OK);
  return object.release();
}

// A caller-owned object (what clone() returns).
template <typename T, typename... Args>
T* CreateOwned(CMPIStatus* rc, Args&&... args) {
  auto object = std::make_unique<T>(std::forward<Args>(args)...);
  SetStatus(rc, CMPI_RC_OK);
  return object.release();
}

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_OBJECTS_H_
