// A constant written in MOF: a qualifier value, a property default or a value
// of a static instance. Kept as written; it is typed only when the broker
// turns it into a CMPI value for a declared property.
#ifndef CMPIHOST_REPOSITORY_MOFVALUE_H_
#define CMPIHOST_REPOSITORY_MOFVALUE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace cmpihost {

struct MofValue {
  enum class Kind {
    kNull,
    kBoolean,
    kInteger,    // sign in `negative`, magnitude in `integer`
    kReal,
    kString,     // escapes resolved, concatenation applied
    kChar16,     // 'c'
    kAlias,      // $alias, resolved by the reader for static instances
    kReference,  // an object path text given as a reference value
    kArray,      // { v1, v2 }
  };
  Kind kind = Kind::kNull;
  bool boolean = false;
  bool negative = false;
  std::uint64_t integer = 0;
  double real = 0.0;
  std::string text;  // kString, kChar16, kAlias, kReference
  std::vector<MofValue> elements;  // kArray
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFVALUE_H_
