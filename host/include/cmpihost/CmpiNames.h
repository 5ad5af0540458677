// The names people read for CMPI's numeric codes, shared by the host's own
// messages, the cmpihost command and tests, so that each code has one name.
#ifndef CMPIHOST_CMPINAMES_H_
#define CMPIHOST_CMPINAMES_H_

#include <cmpidt.h>

#include <string>

#include "cmpihost/Export.h"

namespace cmpihost {

// The MOF-style name of a type: "uint32", "string", "datetime", "ref",
// "instance", ...; arrays get "[]" ("string[]"). Codes MOF has no name for
// keep CMPI's ("chars", "args", "ptr"); "null" for CMPI_null; "type N" for
// a code CMPI does not define.
CMPIHOST_EXPORT std::string CmpiTypeName(CMPIType type);

// "CMPI_RC_ERR_NOT_FOUND"; "CMPI_RC_UNKNOWN" for a code CMPI does not define.
CMPIHOST_EXPORT const char* CmpiStatusName(CMPIrc rc);

}  // namespace cmpihost

#endif  // CMPIHOST_CMPINAMES_H_
