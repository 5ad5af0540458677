// The one home of the names of CMPI's type and status codes. The MOF names
// of ordinary types and the common status codes also show in the command's
// output tests; what only shows here are the names of codes no MOF type has.
#include <gtest/gtest.h>

#include <string>

#include "cmpihost/CmpiNames.h"

namespace cmpihost::testing {
namespace {

TEST(CmpiNamesTest, CodesWithoutAMofNameReadAsCmpisOwnOrTheirNumber) {
  const struct {
    CMPIType type;
    const char* name;
  } cases[] = {
      {CMPI_null, "null"},
      {CMPI_sint64A, "sint64[]"},
      {CMPI_chars, "chars"},
      {CMPI_args, "args"},
      {CMPI_ptr, "ptr"},
      {static_cast<CMPIType>(77), "type 77"},
      {static_cast<CMPIType>(77 | CMPI_ARRAY), "type 77[]"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CmpiTypeName(c.type), c.name) << "type code " << c.type;
  }
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_NEVER_UNLOAD), "CMPI_RC_NEVER_UNLOAD");
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_ERROR), "CMPI_RC_ERROR");
  EXPECT_STREQ(CmpiStatusName(static_cast<CMPIrc>(77)), "CMPI_RC_UNKNOWN");
}

}  // namespace
}  // namespace cmpihost::testing
