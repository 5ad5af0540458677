// A constant written in MOF: a qualifier value, a property default or a value
// of a static instance. The reader has checked it against the declared type
// (integer ranges, date-time shape, array or not) and brought it to that
// type's form: an integer written for a real is kReal, a string written for
// a reference is kReference, a single value given to an array-typed
// qualifier is a one-element kArray. The broker turns it into a CMPI value.
#ifndef CMPIHOST_MOFVALUE_H_
#define CMPIHOST_MOFVALUE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "cmpihost/Export.h"

namespace cmpihost {

struct CMPIHOST_EXPORT MofValue {
  enum class Kind {
    kNull,
    kBoolean,
    kInteger,  // sign in `negative`, magnitude in `integer`
    kReal,
    kString,     // escapes resolved, concatenation applied
    kChar16,     // 'c'
    kAlias,      // $alias; never left in a loaded repository (resolved to kReference)
    kReference,  // an object path text given as a reference value
    kArray,      // { v1, v2 }
  };
  Kind kind = Kind::kNull;
  bool boolean = false;
  bool negative = false;
  std::uint64_t integer = 0;
  double real = 0.0;
  std::string text;                // kString, kChar16, kAlias, kReference
  std::vector<MofValue> elements;  // kArray
};

}  // namespace cmpihost

#endif  // CMPIHOST_MOFVALUE_H_
