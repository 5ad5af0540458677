// The front door is cmpihost/Host.h; this header is internal.
// The host's own copies of CMPI data. Every CMPI object keeps its content in
// these plain values, and every value handed across the CMPI boundary is
// copied in or out, so no object ever points into another one (a scope can
// free any object without leaving dangling pointers behind).
#ifndef CMPIHOST_BROKER_VALUES_H_
#define CMPIHOST_BROKER_VALUES_H_

#include <cmpidt.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "broker/DateTime.h"
#include "cmpihost/CmpiNames.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Value.h"
#include "text/NoCase.h"

namespace cmpihost {

struct PathData;
struct InstanceData;

// One value, kept small: an instance holds one per declared property for as
// long as it lives (a provider may keep thousands), so what only references,
// embedded instances and arrays need sits behind one shared pointer.
struct HostValue {
 private:
  // First, so that it shares the word of type and null.
  enum class Nested : unsigned char { kNone, kPath, kInstance, kElements };
  Nested nested_ = Nested::kNone;

 public:
  CMPIType type = CMPI_null;
  bool null = true;
  bool interval = false;  // CMPI_dateTime: an interval rather than a point in time
  CMPIValue scalar{};     // booleans, char16, integers, reals; a date-time's binary form
  std::string text;       // CMPI_string and CMPI_chars; a date-time's text

  // The reference's path (CMPI_ref), the embedded instance (CMPI_instance) or
  // the elements (arrays): null, or empty, when the value holds none. Made
  // once and shared by every copy of the value; never changed.
  const PathData* path() const;
  const InstanceData* instance() const;
  std::shared_ptr<const InstanceData> sharedInstance() const;
  const std::vector<HostValue>& elements() const;
  void setPath(PathData path);
  void setInstance(InstanceData instance);
  void setInstance(std::shared_ptr<const InstanceData> instance);
  void setElements(std::vector<HostValue> elements);

  // The date-time that text, scalar and interval hold (CMPI_dateTime).
  DateTime dateTime() const;
  void setDateTime(const DateTime& dateTime);

  static HostValue Null(CMPIType type);
  static HostValue String(std::string text);
  static HostValue Boolean(bool flag);
  static HostValue Unsigned(CMPIType type, std::uint64_t number);
  static HostValue Signed(CMPIType type, std::int64_t number);
  static HostValue Real(CMPIType type, double number);
  static HostValue Date(DateTime dateTime);
  static HostValue Reference(PathData path);

 private:
  std::shared_ptr<const void> nestedData_;
};

struct NamedValue {
  std::string name;
  HostValue value;
};

// The ordered name/value list behind args, contexts and path keys.
// Names compare case-insensitively and keep the spelling first given.
class NamedValues {
 public:
  const NamedValue* find(const std::string& name) const;
  // Replaces the value of an existing name, or appends.
  void set(const std::string& name, HostValue value);
  // Appends a name known to differ from every name already held.
  void append(const std::string& name, HostValue value);
  void reserve(std::size_t count) { items_.reserve(count); }
  const std::vector<NamedValue>& items() const { return items_; }
  std::size_t size() const { return items_.size(); }

 private:
  std::vector<NamedValue> items_;
};

struct PathData {
  std::string host;
  std::string nameSpace;
  std::string className;
  NamedValues keys;
};

// The declared shape of a class, taken once from the repository and shared
// by every instance of it, so instances outlive the Host that made them.
struct PropertyShape {
  std::string name;  // declared spelling
  CMPIType type = CMPI_null;
  bool isKey = false;
  HostValue initial;  // the MOF default, or null
};

struct ClassShape {
  std::string className;  // declared spelling
  std::vector<PropertyShape> properties;
  // Index of the property (case-insensitive), or nullopt.
  std::optional<std::size_t> find(std::string_view name) const;
};

struct InstanceData {
  std::shared_ptr<const ClassShape> shape;
  std::string host;               // of the path the instance was created with
  std::string nameSpace;          // of the path the instance was created with
  std::vector<HostValue> values;  // parallel to shape->properties
  // setPropertyFilter: when set, only these names (and keys) may be set.
  // (Behind a pointer: an instance rarely has one, and a kept one is small.)
  std::shared_ptr<const std::vector<std::string>> filter;

  // Host and namespace of the creation path; keys from the Key properties,
  // in the class's declaration order.
  PathData objectPath() const;
};

// `//host/namespace:Class.k1="v",k2=5`: host and namespace only when set,
// keys in the path's own order.
std::string PathToString(const PathData& path);
// Whether two paths name the same object: names without regard to case,
// keys as a set (any order) with the same values.
bool SamePath(const PathData& a, const PathData& b);
// One key value as toString prints it.
std::string KeyValueText(const HostValue& value);
// Whether two values are the same CIM value (types and contents).
bool SameValue(const HostValue& a, const HostValue& b);
// Shortest decimal text that reads back as the same real.
std::string RealText(double value, bool single);

// CMPI_chars (and its array) read as CMPI_string: what the host stores.
CMPIType NormalizedType(CMPIType type);

// Copies into the public, plain C++ form.
Value ToPublicValue(const HostValue& value);
InstanceSnapshot ToSnapshot(const InstanceData& instance);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_VALUES_H_
