#include "broker/Values.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "text/Literals.h"
#include "text/PathSyntax.h"

namespace cmpihost {

HostValue HostValue::Null(CMPIType type) {
  HostValue value;
  value.type = type;
  return value;
}

HostValue HostValue::String(std::string text) {
  HostValue value;
  value.type = CMPI_string;
  value.null = false;
  value.text = std::move(text);
  return value;
}

HostValue HostValue::Boolean(bool flag) {
  HostValue value;
  value.type = CMPI_boolean;
  value.null = false;
  value.scalar.boolean = flag ? 1 : 0;
  return value;
}

HostValue HostValue::Unsigned(CMPIType type, std::uint64_t number) {
  HostValue value;
  value.type = type;
  value.null = false;
  switch (type) {
    case CMPI_uint8:
      value.scalar.uint8 = static_cast<CMPIUint8>(number);
      break;
    case CMPI_uint16:
      value.scalar.uint16 = static_cast<CMPIUint16>(number);
      break;
    case CMPI_char16:
      value.scalar.char16 = static_cast<CMPIChar16>(number);
      break;
    case CMPI_uint32:
      value.scalar.uint32 = static_cast<CMPIUint32>(number);
      break;
    default:
      value.scalar.uint64 = number;
  }
  return value;
}

HostValue HostValue::Signed(CMPIType type, std::int64_t number) {
  HostValue value;
  value.type = type;
  value.null = false;
  switch (type) {
    case CMPI_sint8:
      value.scalar.sint8 = static_cast<CMPISint8>(number);
      break;
    case CMPI_sint16:
      value.scalar.sint16 = static_cast<CMPISint16>(number);
      break;
    case CMPI_sint32:
      value.scalar.sint32 = static_cast<CMPISint32>(number);
      break;
    default:
      value.scalar.sint64 = number;
  }
  return value;
}

HostValue HostValue::Real(CMPIType type, double number) {
  HostValue value;
  value.type = type;
  value.null = false;
  if (type == CMPI_real32) {
    value.scalar.real32 = static_cast<CMPIReal32>(number);
  } else {
    value.scalar.real64 = number;
  }
  return value;
}

HostValue HostValue::Date(DateTime dateTime) {
  HostValue value;
  value.type = CMPI_dateTime;
  value.null = false;
  value.setDateTime(dateTime);
  return value;
}

HostValue HostValue::Reference(PathData path) {
  HostValue value;
  value.type = CMPI_ref;
  value.null = false;
  value.setPath(std::move(path));
  return value;
}

const PathData* HostValue::path() const {
  return nested_ == Nested::kPath ? static_cast<const PathData*>(nestedData_.get()) : nullptr;
}

const InstanceData* HostValue::instance() const {
  return nested_ == Nested::kInstance ? static_cast<const InstanceData*>(nestedData_.get())
                                      : nullptr;
}

std::shared_ptr<const InstanceData> HostValue::sharedInstance() const {
  return nested_ == Nested::kInstance ? std::static_pointer_cast<const InstanceData>(nestedData_)
                                      : nullptr;
}

const std::vector<HostValue>& HostValue::elements() const {
  static const std::vector<HostValue> kNoElements;
  return nested_ == Nested::kElements
             ? *static_cast<const std::vector<HostValue>*>(nestedData_.get())
             : kNoElements;
}

void HostValue::setPath(PathData path) {
  nested_ = Nested::kPath;
  nestedData_ = std::make_shared<const PathData>(std::move(path));
}

void HostValue::setInstance(InstanceData instance) {
  nested_ = Nested::kInstance;
  nestedData_ = std::make_shared<const InstanceData>(std::move(instance));
}

void HostValue::setInstance(std::shared_ptr<const InstanceData> instance) {
  nested_ = Nested::kInstance;
  nestedData_ = std::move(instance);
}

void HostValue::setElements(std::vector<HostValue> elements) {
  nested_ = Nested::kElements;
  nestedData_ = std::make_shared<const std::vector<HostValue>>(std::move(elements));
}

DateTime HostValue::dateTime() const {
  DateTime value;
  value.interval = interval;
  value.binary = scalar.uint64;
  value.text = text;
  return value;
}

void HostValue::setDateTime(const DateTime& dateTime) {
  interval = dateTime.interval;
  scalar.uint64 = dateTime.binary;
  text = dateTime.text;
}

const NamedValue* NamedValues::find(const std::string& name) const {
  for (const NamedValue& item : items_) {
    if (NoCaseEqual(item.name, name)) {
      return &item;
    }
  }
  return nullptr;
}

void NamedValues::append(const std::string& name, HostValue value) {
  items_.push_back(NamedValue{name, std::move(value)});
}

void NamedValues::set(const std::string& name, HostValue value) {
  for (NamedValue& item : items_) {
    if (NoCaseEqual(item.name, name)) {
      item.value = std::move(value);
      return;
    }
  }
  items_.push_back(NamedValue{name, std::move(value)});
}

std::optional<std::size_t> ClassShape::find(std::string_view name) const {
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (NoCaseEqual(properties[i].name, name)) {
      return i;
    }
  }
  return std::nullopt;
}

PathData InstanceData::objectPath() const {
  PathData path;
  path.host = host;
  path.nameSpace = nameSpace;
  path.className = shape->className;
  // In the class's declaration order, inherited keys first (the shape's
  // order), as SFCB gives an instance's path. A class declares each name
  // once, so no key needs looking for first.
  for (std::size_t i = 0; i < shape->properties.size(); ++i) {
    if (shape->properties[i].isKey && !values[i].null) {
      path.keys.append(shape->properties[i].name, values[i]);
    }
  }
  return path;
}

CMPIType NormalizedType(CMPIType type) {
  const auto base = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  const CMPIType normalizedBase = base == CMPI_chars ? CMPI_string : base;
  return static_cast<CMPIType>(normalizedBase | (type & CMPI_ARRAY));
}

std::string RealText(double value, bool single) {
  char text[64];
  for (int precision = single ? 6 : 15; precision <= 17; ++precision) {
    std::snprintf(text, sizeof text, "%.*g", precision, value);
    const double back = std::strtod(text, nullptr);
    if (single ? static_cast<float>(back) == static_cast<float>(value) : back == value) {
      break;
    }
  }
  return text;
}

namespace {

std::uint64_t UnsignedOf(const HostValue& value) {
  switch (value.type & ~CMPI_ARRAY) {
    case CMPI_uint8:
      return value.scalar.uint8;
    case CMPI_uint16:
      return value.scalar.uint16;
    case CMPI_char16:
      return value.scalar.char16;
    case CMPI_uint32:
      return value.scalar.uint32;
    default:
      return value.scalar.uint64;
  }
}

std::int64_t SignedOf(const HostValue& value) {
  switch (value.type & ~CMPI_ARRAY) {
    case CMPI_sint8:
      return value.scalar.sint8;
    case CMPI_sint16:
      return value.scalar.sint16;
    case CMPI_sint32:
      return value.scalar.sint32;
    default:
      return value.scalar.sint64;
  }
}

bool IsUnsigned(CMPIType type) {
  return type == CMPI_uint8 || type == CMPI_uint16 || type == CMPI_uint32 || type == CMPI_uint64;
}

bool IsSigned(CMPIType type) {
  return type == CMPI_sint8 || type == CMPI_sint16 || type == CMPI_sint32 || type == CMPI_sint64;
}

}  // namespace

std::string KeyValueText(const HostValue& value) {
  if (value.null) {
    return "NULL";
  }
  const CMPIType type = value.type;
  if (IsUnsigned(type)) {
    return std::to_string(UnsignedOf(value));
  }
  if (IsSigned(type)) {
    return std::to_string(SignedOf(value));
  }
  switch (type) {
    case CMPI_boolean:
      return value.scalar.boolean ? "TRUE" : "FALSE";
    case CMPI_real32:
      return RealText(value.scalar.real32, true);
    case CMPI_real64:
      return RealText(value.scalar.real64, false);
    case CMPI_char16:
      return Quoted(std::string(1, static_cast<char>(value.scalar.char16)));
    case CMPI_dateTime:
      return Quoted(value.text);
    case CMPI_ref:
      return Quoted(value.path() != nullptr ? PathToString(*value.path()) : std::string());
    case CMPI_instance:
      return Quoted(value.instance() != nullptr ? PathToString(value.instance()->objectPath())
                                                : std::string());
    default:
      return Quoted(value.text);
  }
}

std::string PathToString(const PathData& path) {
  // Keys in the order they were added: a provider that depends on the order
  // must show it here, as it would in a CIMOM that hands paths on as sent.
  std::vector<std::pair<std::string, std::string>> keys;
  keys.reserve(path.keys.size());
  for (const NamedValue& key : path.keys.items()) {
    keys.emplace_back(key.name, KeyValueText(key.value));
  }
  return PathText(path.host, path.nameSpace, path.className, keys);
}

bool SamePath(const PathData& a, const PathData& b) {
  if (!NoCaseEqual(a.host, b.host) || !NoCaseEqual(a.nameSpace, b.nameSpace) ||
      !NoCaseEqual(a.className, b.className) || a.keys.size() != b.keys.size()) {
    return false;
  }
  // Keys are a set: two paths that differ only in their keys' order or the
  // case of their names name the same object.
  return std::all_of(a.keys.items().begin(), a.keys.items().end(), [&b](const NamedValue& key) {
    const NamedValue* other = b.keys.find(key.name);
    return other != nullptr && SameValue(key.value, other->value);
  });
}

bool SameValue(const HostValue& a, const HostValue& b) {
  const auto baseA = static_cast<CMPIType>(a.type & ~CMPI_ARRAY);
  const auto baseB = static_cast<CMPIType>(b.type & ~CMPI_ARRAY);
  const bool stringA = baseA == CMPI_string || baseA == CMPI_chars;
  const bool stringB = baseB == CMPI_string || baseB == CMPI_chars;
  if (a.null != b.null || (a.type != b.type && !(stringA && stringB))) {
    return false;
  }
  if (a.null) {
    return true;
  }
  if ((a.type & CMPI_ARRAY) != 0) {
    return std::equal(a.elements().begin(), a.elements().end(), b.elements().begin(),
                      b.elements().end(), SameValue);
  }
  if (a.type == CMPI_ref) {
    const PathData* pathA = a.path();
    const PathData* pathB = b.path();
    return pathA == nullptr || pathB == nullptr ? pathA == pathB : SamePath(*pathA, *pathB);
  }
  if (a.type == CMPI_instance) {
    const InstanceData* instanceA = a.instance();
    const InstanceData* instanceB = b.instance();
    return instanceA == nullptr || instanceB == nullptr
               ? instanceA == instanceB
               : SamePath(instanceA->objectPath(), instanceB->objectPath());
  }
  if (a.type == CMPI_dateTime) {
    return a.interval == b.interval && a.scalar.uint64 == b.scalar.uint64;
  }
  return KeyValueText(a) == KeyValueText(b);
}

Value ToPublicValue(const HostValue& value) {
  Value out;
  out.type = value.type;
  out.state = value.null ? CMPI_nullValue : CMPI_goodValue;
  if (value.null) {
    return out;
  }
  if ((value.type & CMPI_ARRAY) != 0) {
    for (const HostValue& element : value.elements()) {
      out.elements.push_back(ToPublicValue(element));
    }
    return out;
  }
  const CMPIType type = value.type;
  if (IsUnsigned(type) || type == CMPI_char16) {
    out.uint = UnsignedOf(value);
  } else if (IsSigned(type)) {
    out.sint = SignedOf(value);
  }
  switch (type) {
    case CMPI_boolean:
      out.boolean = value.scalar.boolean != 0;
      break;
    case CMPI_real32:
      out.real = value.scalar.real32;
      break;
    case CMPI_real64:
      out.real = value.scalar.real64;
      break;
    case CMPI_dateTime:
      out.text = value.text;
      break;
    case CMPI_ref:
      out.text = value.path() != nullptr ? PathToString(*value.path()) : std::string();
      break;
    case CMPI_instance:
      out.text = value.instance() != nullptr ? PathToString(value.instance()->objectPath())
                                             : std::string();
      break;
    case CMPI_string:
    case CMPI_chars:
      out.text = value.text;
      break;
    default:
      break;
  }
  return out;
}

InstanceSnapshot ToSnapshot(const InstanceData& instance) {
  InstanceSnapshot snapshot;
  snapshot.className = instance.shape->className;
  snapshot.nameSpace = instance.nameSpace;
  snapshot.path = PathToString(instance.objectPath());
  for (std::size_t i = 0; i < instance.shape->properties.size(); ++i) {
    snapshot.properties.push_back(
        Property{instance.shape->properties[i].name, ToPublicValue(instance.values[i])});
  }
  return snapshot;
}

}  // namespace cmpihost
