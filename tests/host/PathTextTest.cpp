// Path texts written to the host: keys typed from the class declaration,
// and every bad text answered with the problem and its column.
#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

class PathTextTest : public HostTest {};

TEST_F(PathTextTest, KeysAreTypedFromTheDeclaration) {
  CMPIObjectPath* parsed =
      scope_->objectPath(R"(//h/root/cimv2:test_keyed.number=5,NAME="a\"b\\c",Flag=true)");
  ASSERT_NE(parsed, nullptr);
  // The keys stay in the order written: a provider gets them as the client sent them.
  EXPECT_EQ(pathText(parsed), R"(//h/root/cimv2:Test_Keyed.Number=5,Name="a\"b\\c",Flag=TRUE)");
  EXPECT_EQ(parsed->ft->getKey(parsed, "Number", nullptr).type, CMPI_uint32);
  EXPECT_EQ(parsed->ft->getKey(parsed, "Flag", nullptr).type, CMPI_boolean);

  CMPIObjectPath* dated =
      scope_->objectPath(R"(Test_DatedKey.When="20240102030405.000006+060",Small=-128,Ratio=0.25)");
  ASSERT_NE(dated, nullptr);
  EXPECT_EQ(dated->ft->getKey(dated, "When", nullptr).type, CMPI_dateTime);
  EXPECT_EQ(dated->ft->getKey(dated, "Small", nullptr).value.sint8, -128);
  EXPECT_EQ(dated->ft->getKey(dated, "Ratio", nullptr).value.real64, 0.25);

  CMPIObjectPath* link = scope_->objectPath(
      R"(Test_Link.Left="Test_Keyed.Name=\"l\",Number=1,Flag=FALSE",Right="Test_Keyed.Name=\"r\"")");
  ASSERT_NE(link, nullptr);
  const CMPIData left = link->ft->getKey(link, "Left", nullptr);
  ASSERT_EQ(left.type, CMPI_ref);
  EXPECT_EQ(pathText(left.value.ref), R"(root/cimv2:Test_Keyed.Name="l",Number=1,Flag=FALSE)");
}

TEST_F(PathTextTest, KeysOfUnknownClassesTakeTheLiteralsTypes) {
  CMPIObjectPath* parsed = scope_->objectPath(R"(Other_Class.S="x",N=7,M=-7,R=1.5,B=FALSE)");
  ASSERT_NE(parsed, nullptr);
  EXPECT_EQ(parsed->ft->getKey(parsed, "S", nullptr).type, CMPI_string);
  EXPECT_EQ(parsed->ft->getKey(parsed, "N", nullptr).type, CMPI_uint64);
  EXPECT_EQ(parsed->ft->getKey(parsed, "M", nullptr).type, CMPI_sint64);
  EXPECT_EQ(parsed->ft->getKey(parsed, "R", nullptr).type, CMPI_real64);
  EXPECT_EQ(parsed->ft->getKey(parsed, "B", nullptr).type, CMPI_boolean);
  EXPECT_EQ(scope_->objectPath("Other_Class.S=bare"), nullptr);
}

TEST_F(PathTextTest, BadTextsNameTheProblemAndColumn) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"", "path text '': column 1: the text is empty"},
      {"//host", "column 7: expected '/' after the host name"},
      {"///root/cimv2:Test_Keyed", "column 3: the host name is empty"},
      {":Test_Keyed", "column 1: the namespace before ':' is empty"},
      {"root cimv2:Test_Keyed", "column 5: unexpected character ' ' in the namespace"},
      {"root/cimv2:9abc", "column 12: expected a class name"},
      {"Test_Keyed Name", "column 11: expected '.' and keys after the class name, found ' '"},
      {"Test_Keyed.", "column 12: expected a key name"},
      {"Test_Keyed.Name", "column 16: expected '=' after the key name 'Name'"},
      {"Test_Keyed.Name=", "column 17: the key 'Name' has no value"},
      {R"(Test_Keyed.Name="abc)", "column 17: the string value of 'Name' is not terminated"},
      {R"(Test_Keyed.Name="a" ,Number=1)",
       "column 20: expected ',' or the end of the text after the value of 'Name'"},
      {R"(Test_Keyed.Name="a",name="b")", "column 21: key 'name' is given twice"},
      {"Test_Keyed.Name=bare", "column 17: key Name: 'bare' must be written in double quotes"},
      {"Test_Keyed.Number=abc", "column 19: key Number: 'abc' is not a uint32 (0 to 4294967295)"},
      {"Test_Keyed.Number=4294967296", "key Number: '4294967296' is not a uint32"},
      {"Test_Keyed.Flag=yes", "column 17: key Flag: 'yes' is not TRUE or FALSE"},
      {R"(Test_Keyed.Nope="x")", "column 17: class Test_Keyed has no property 'Nope'"},
      {R"(Test_Keyed.Note="x")", "column 17: property Note of class Test_Keyed is not a key"},
      {R"(Test_DatedKey.When="2024")", "key When: '2024' is not a CIM date-time"},
      {"Test_DatedKey.Small=128", "key Small: '128' is not a sint8 (-128 to 127)"},
      {"Test_DatedKey.Ratio=1.5x", "key Ratio: '1.5x' is not a real number"},
      {R"(Test_Link.Left="Test_Keyed.Name=")",
       "key Left: bad reference: path text 'Test_Keyed.Name=': column 17: the key 'Name' has no "
       "value"},
  };
  for (const auto& c : cases) {
    const std::string error = HostErrorOf([&] { host_.getInstance(c.text); });
    EXPECT_NE(error.find(c.message), std::string::npos)
        << c.text << "\n  gave: " << error << "\n  want: " << c.message;
    std::string problem;
    EXPECT_EQ(scope_->objectPath(c.text, &problem), nullptr) << c.text;
    EXPECT_NE(problem.find(c.message), std::string::npos) << problem;
  }
}

TEST_F(PathTextTest, AnUnknownClassIsAnAnswerNotABadText) {
  const Reply reply = host_.getInstance(R"(root/cimv2:No_Such.Name="x")");
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_INVALID_CLASS);
  EXPECT_EQ(reply.status.message, "class No_Such is not declared in namespace root/cimv2");
  EXPECT_EQ(host_.enumerateInstances("root/cimv2", "No_Such").status.rc, CMPI_RC_ERR_INVALID_CLASS);
}

}  // namespace
}  // namespace cmpihost::testing
