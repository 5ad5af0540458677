// Names shared by the library and its sibling providers: the namespace every
// object is served in, and the class and property names they agree on.
#ifndef DIAGCORE_CIMNAMES_H_
#define DIAGCORE_CIMNAMES_H_

#include "diagcore/Export.h"

namespace NQENDRA20 {

// The CIM namespace of every instance and object path the library builds.
extern DIAGCORE_EXPORT const char* const cimNameSpace;

// The hosting computer system's class, whose first instance names the system.
extern DIAGCORE_EXPORT const char* const cimComputerSystemClass;

// The host name written into every object path the library builds: one fixed
// word rather than the machine's name, so that path texts do not depend on
// where the provider runs.
extern DIAGCORE_EXPORT const char* const cimHostName;

}  // namespace NQENDRA20

#endif  // DIAGCORE_CIMNAMES_H_
