// The one home of the names of CMPI's type and status codes: what the
// broker's messages and the cmpihost command both print.
#include <gtest/gtest.h>

#include <string>

#include "cmpihost/CmpiNames.h"

namespace cmpihost::testing {
namespace {

TEST(CmpiNamesTest, TypesReadAsMofNamesWithArraysMarked) {
  const struct {
    CMPIType type;
    const char* name;
  } cases[] = {
      {CMPI_null, "null"},
      {CMPI_boolean, "boolean"},
      {CMPI_char16, "char16"},
      {CMPI_real32, "real32"},
      {CMPI_uint8, "uint8"},
      {CMPI_sint64A, "sint64[]"},
      {CMPI_string, "string"},
      {CMPI_stringA, "string[]"},
      {CMPI_dateTime, "datetime"},
      {CMPI_ref, "ref"},
      {CMPI_refA, "ref[]"},
      {CMPI_instance, "instance"},
      // No MOF name: CMPI's own, so a provider author sees what was passed.
      {CMPI_chars, "chars"},
      {CMPI_args, "args"},
      {CMPI_ptr, "ptr"},
      {static_cast<CMPIType>(77), "type 77"},
      {static_cast<CMPIType>(77 | CMPI_ARRAY), "type 77[]"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CmpiTypeName(c.type), c.name) << "type code " << c.type;
  }
}

TEST(CmpiNamesTest, StatusCodesReadAsTheirCmpiNames) {
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_OK), "CMPI_RC_OK");
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_ERR_FAILED), "CMPI_RC_ERR_FAILED");
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_ERR_METHOD_NOT_FOUND), "CMPI_RC_ERR_METHOD_NOT_FOUND");
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_NEVER_UNLOAD), "CMPI_RC_NEVER_UNLOAD");
  EXPECT_STREQ(CmpiStatusName(CMPI_RC_ERROR), "CMPI_RC_ERROR");
  EXPECT_STREQ(CmpiStatusName(static_cast<CMPIrc>(77)), "CMPI_RC_UNKNOWN");
}

}  // namespace
}  // namespace cmpihost::testing
