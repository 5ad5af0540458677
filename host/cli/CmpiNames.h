// The names a user reads for CMPI's numeric codes.
#ifndef CMPIHOST_CLI_CMPINAMES_H_
#define CMPIHOST_CLI_CMPINAMES_H_

#include <cmpidt.h>

#include <string>

namespace cmpihost::cli {

// "CMPI_RC_ERR_NOT_FOUND"; "CMPI_RC_UNKNOWN" for a code CMPI does not define.
const char* StatusName(CMPIrc rc);

// The CIM type name of a value's type: "uint32", "string", "datetime",
// "ref", "instance", ...; arrays get "[]" ("string[]"); "null" for CMPI_null.
std::string TypeName(CMPIType type);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_CMPINAMES_H_
