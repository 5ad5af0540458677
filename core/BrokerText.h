// Small text helpers shared by the library's sources. Internal.
#ifndef DIAGCORE_CORE_BROKERTEXT_H_
#define DIAGCORE_CORE_BROKERTEXT_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/Export.h"

namespace NQENDRA20 {

// The characters of a broker string; "" for a null string or null characters,
// so that a broker's failure never becomes a crash.
std::string CharsOf(const CMPIString* text);

// `text` with backslash escapes resolved: "\r", "\t" and "\n" become CR, tab
// and LF, any other escaped character stands for itself, and a backslash at
// the very end is dropped.
// Exported for its table test and fuzzer alone.
DIAGCORE_EXPORT std::string ResolveBackslashEscapes(std::string text);

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_BROKERTEXT_H_
