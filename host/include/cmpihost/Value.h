// A CMPI value copied out of the broker's objects, so that it outlives the
// call that produced it. What tests and the CLI read back from a provider.
#ifndef CMPIHOST_VALUE_H_
#define CMPIHOST_VALUE_H_

#include <cmpidt.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cmpihost/Export.h"

namespace cmpihost {

struct CMPIHOST_EXPORT Value {
  CMPIType type = CMPI_null;
  CMPIValueState state = CMPI_nullValue;
  bool boolean = false;         // CMPI_boolean
  std::uint64_t uint = 0;       // CMPI_uint8 .. CMPI_uint64, CMPI_char16
  std::int64_t sint = 0;        // CMPI_sint8 .. CMPI_sint64
  double real = 0.0;            // CMPI_real32, CMPI_real64
  std::string text;             // string chars, date-time text, reference path text (toString form)
  std::vector<Value> elements;  // arrays (type has CMPI_ARRAY)

  bool isNull() const { return (state & CMPI_nullValue) != 0; }
  bool isArray() const { return (type & CMPI_ARRAY) != 0; }
  // MOF-style literal: 52, TRUE, "text", {1, 2}, NULL; references as their quoted path text.
  std::string toMof() const;
};

}  // namespace cmpihost

#endif  // CMPIHOST_VALUE_H_
