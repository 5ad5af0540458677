// The front door is cmpihost/Host.h; this header is internal.
// How a written MOF value meets the type it is written for, and how a key
// value is spelled inside an object path text.
#ifndef CMPIHOST_REPOSITORY_MOFVALUERULES_H_
#define CMPIHOST_REPOSITORY_MOFVALUERULES_H_

#include <optional>
#include <string>

#include "cmpihost/CimType.h"
#include "cmpihost/MofValue.h"

namespace cmpihost {

// Why a value does not fit a type; `element` is the offending array
// element's index, or -1 when the value as a whole is at fault.
struct ValueProblem {
  std::string text;
  int element = -1;
};

// Checks `value` against `type` and brings it to the form the repository
// keeps: an integer written for a real becomes kReal, a string written for a
// reference becomes kReference, and, when `scalarFillsArray`, one value
// written for an array becomes a one-element array. Null fits every type;
// aliases fit references (the caller resolves them).
std::optional<ValueProblem> ConformValue(MofValue& value, const TypeDecl& type,
                                         bool scalarFillsArray);

// "uint8", "string[]", "uint8[4]", "CIM_Foo REF".
std::string TypeText(const TypeDecl& type);

// A key value as an object path prints it: strings, char16, date-times and
// references in double quotes with '\' and '"' escaped, integers and reals in
// decimal, booleans TRUE/FALSE.
std::string PathValueText(const MofValue& value);

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFVALUERULES_H_
