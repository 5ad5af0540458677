// Every bad input gives one MofError naming the file, line, column and the
// exact problem, and leaves the repository as it was before the load.
#include <gtest/gtest.h>

#include <string>

#include "HostTestSupport.h"
#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

constexpr const char* kNamespace = "root/test";

std::string Base() {
  return std::string(testing::kQualifierDecls) + R"(
[Abstract] class Test_Element { [Key] string Id; uint16 Count = 3; };
class Test_Thing : Test_Element { };
[Association] class Test_Link { [Key] Test_Element REF Left; [Key] Test_Element REF Right; };
instance of Test_Thing as $known { Id = "known"; };
class Test_Pair { [Key] string A; [Key] uint8 B; };
[Association] class Test_PairLink { [Key] Test_Pair REF P; };
instance of Test_PairLink { P = "//h.example/Root/Test:Test_Pair.A=\"x,y.z\",B=2"; };
)";
}

// Each text follows a good class on line 1 that the failed load must discard;
// the error is "line:column: problem" of the file "bad.mof".
const struct {
  const char* text;
  const char* error;
} kBadInputs[] = {
    {"class Bad { string Name };", "2:25: expected ';' after the property declaration, found '}'"},
    {"class Bad { }", "2:14: expected ';' after the class body, found end of file"},
    {R"([Description("x")] Qualifier Q;)",
     R"(2:20: expected "class" or "instance" after the qualifier list, found "Qualifier")"},
    {"class Bad { string @x; };", "2:20: unexpected character '@'"},
    {"class Bad { strng Name; };",
     R"(2:13: unknown type "strng": not a CIM data type, and no REF follows it)"},
    {"Qualifier Q : text, Scope(any);", R"(2:15: unknown type "text": not a CIM data type)"},
    {"class Bad : Test_Nope { };",
     R"(2:13: superclass "Test_Nope" of class "Bad" is not defined in namespace "root/test")"},
    {"[Nope] class Bad { };",
     R"(2:2: qualifier "Nope" is not declared in namespace "root/test" (a "Qualifier" declaration must come first))"},
    {"class test_thing { };",
     R"(2:7: class "test_thing" is already defined in namespace "root/test" as "Test_Thing")"},
    {"class Staged_A { };", R"(2:7: class "Staged_A" is already defined in namespace "root/test")"},
    {R"([Description("abc)] class Bad { };)",
     R"(2:14: unterminated string: no closing '"' on this line)"},
    {"/* open\n\n", R"(2:1: unterminated comment: no "*/" closes this "/*")"},
    {R"(#pragma include ("no-such-dir/missing.mof"))",
     R"(2:1: cannot read include file "no-such-dir/missing.mof": No such file or directory)"},
    {"instance of Test_Nope { };",
     R"(2:13: instance of undefined class "Test_Nope" (not in namespace "root/test"))"},
    {R"(instance of Test_Thing { Id = "a"; Nope = 1; };)",
     R"(2:36: class "Test_Thing" has no property "Nope")"},
    {"instance of Test_Link { Left = $nope; Right = $nope; };",
     R"(2:32: undefined alias $nope (an "instance of ... as $nope" must come first))"},
    {"instance of Test_Link { Left = $later; Right = $later; };\ninstance of Test_Thing as $later "
     "{ Id = \"later\"; };",
     R"(2:32: undefined alias $later (an "instance of ... as $later" must come first))"},
    {"instance of Test_Link { Left = $known; Right = $known; };",
     R"(2:32: undefined alias $known (an "instance of ... as $known" must come first))"},
    {"instance of Test_Thing as $a { Id = \"one\"; };\ninstance of Test_Thing as $A { Id = "
     "\"two\"; };",
     "3:27: alias $A is already defined"},
    {R"([Description("a\qb")] class Bad { };)",
     R"(2:16: unknown escape sequence \q (known: \b \t \n \f \r \" \' \\ \xHHHH))"},
    {"class Bad { uint8 Small = 256; };",
     R"(2:27: default of property "Small": 256 is out of range for uint8)"},
    {"class Bad { sint8 X = 128; };",
     R"(2:23: default of property "X": 128 is out of range for sint8)"},
    {"class Bad { uint32 U = -1; };",
     R"(2:24: default of property "U": -1 is out of range for uint32)"},
    {"class Bad { uint64 Big = 18446744073709551616; };",
     "2:26: integer 18446744073709551616 does not fit in 64 bits"},
    {"class Bad { uint8 X = 09; };", "2:23: octal number 09 holds the digit 9"},
    {"class Bad { uint8 X = 12ab; };", "2:23: malformed number 12ab"},
    {R"(class Bad { uint16 X = "5"; };)",
     R"(2:24: default of property "X": uint16 takes an integer, found a string)"},
    {"class Bad { uint16 X = {1}; };",
     R"(2:24: default of property "X": uint16 takes a single value, found an array)"},
    {"class Bad { uint16 X[] = 1; };",
     R"(2:26: default of property "X": uint16[] takes an array value {...}, found an integer)"},
    {"class Bad { uint8 X[2] = {1, 2, 3}; };",
     R"(2:26: default of property "X": uint8[2] holds at most 2 values, found 3)"},
    {R"(class Bad { datetime D = "2024"; };)",
     R"(2:26: default of property "D": "2024" is not a datetime (yyyymmddhhmmss.mmmmmm with +utc or -utc, or ddddddddhhmmss.mmmmmm:000))"},
    {"class Bad { char16 C = 'ab'; };", "2:24: char16 literal holds more than one character"},
    {R"(class Bad { [MaxLen("x")] string S; };)",
     R"(2:21: qualifier "MaxLen": uint32 takes an integer, found a string)"},
    {R"(class Bad { [ValueMap {"1", 2}] uint8 S; };)",
     R"(2:29: qualifier "ValueMap": string takes a string, found an integer)"},
    {"class Bad { [Key, key] string S; };", R"(2:19: qualifier "Key" is given twice)"},
    {"[Key] class Bad { };",
     R"(2:2: qualifier "Key" does not apply to a class (its scope: property, reference))"},
    {"Qualifier Key : string, Scope(any);",
     R"(2:17: qualifier "Key" is already declared with type boolean, not string)"},
    {"Qualifier Q : string, Scope(everything);",
     R"(2:29: unknown scope "everything" (known: class, association, indication, qualifier, property, reference, method, parameter, any))"},
    {"Qualifier Q : string, Scope(any), Flavor(ToSubclass, Restricted);",
     "2:54: flavor Restricted contradicts ToSubclass"},
    {R"(class Bad : Test_Element { [Override("Nope")] string Nope; };)",
     R"(2:29: Override("Nope"): class "Bad" inherits no property "Nope")"},
    {R"(class Bad : Test_Element { [Override("Id")] string Other; };)",
     R"(2:29: Override("Id") on property "Other" must name that property)"},
    {"class Bad : Test_Element { uint32 Count; };",
     R"(2:28: property "Count" overrides one of type uint16 with uint32)"},
    {"class Bad { Test_Element REF Other; };",
     R"(2:13: reference "Other" can only be declared in an association, and "Bad" has no Association qualifier)"},
    {"[Association] class Bad { Test_Nope REF X; };",
     R"(2:27: reference "X" refers to class "Test_Nope", which is not defined in namespace "root/test")"},
    {"class Bad { [Key] string Ids[]; };", R"(2:26: key property "Ids" cannot be an array)"},
    {"class Bad { string A; string a; };",
     R"(2:30: property "a" is declared twice in class "Bad")"},
    {"class Bad { uint32 Run(string P, uint8 p); };",
     R"(2:40: parameter "p" is declared twice in method "Run")"},
    {R"(instance of Test_Element { Id = "x"; };)",
     R"(2:13: class "Test_Element" is abstract and cannot have instances)"},
    {"instance of Test_Thing { Count = 1; };",
     R"(2:1: instance of "Test_Thing" gives no value for key property "Id")"},
    {R"(instance of Test_Thing { Id = "known"; };)",
     R"(2:1: an instance with the same keys is already defined: Test_Thing.Id="known")"},
    {R"(instance of Test_PairLink { P = "//h.example/root/test:test_pair.b=2,a=\"x,y.z\""; };)",
     R"(2:1: an instance with the same keys is already defined: Test_PairLink.P="//h.example/root/test:test_pair.b=2,a=\"x,y.z\"")"},
    {R"(instance of Test_Thing { Id = "a"; ID = "b"; };)", R"(2:36: property "Id" is given twice)"},
    {"class Bad { string S = $known; };",
     "2:24: alias $known used outside an instance's property value"},
    {"#pragma namespace ()", "2:1: #pragma namespace takes one string argument"},
    {"/* one\r\n two */ class Bad\r\n  { string; };",
     "4:11: expected a property or method name, found ';'"},
    {"#pragma namespace (\"root/other\")\nclass Other { };\n[Key] class Bad { };",
     R"(4:2: qualifier "Key" is not declared in namespace "root/other" (a "Qualifier" declaration must come first))"}};

TEST(MofReaderErrorTest, EachBadInputNamesItsPlaceAndProblemAndChangesNothing) {
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  reader.loadText(Base(), "base.mof");
  const std::size_t classCount = repository.classes(kNamespace).size();
  const std::vector<std::string> namespaces = repository.namespaces();

  for (const auto& bad : kBadInputs) {
    SCOPED_TRACE(bad.text);
    try {
      reader.loadText(std::string("class Staged_A { };\n") + bad.text, "bad.mof");
      ADD_FAILURE() << "loaded without error";
    } catch (const MofError& error) {
      EXPECT_EQ(error.what(), "bad.mof:" + std::string(bad.error));
      EXPECT_EQ(error.file() + ":" + std::to_string(error.line()) + ":" +
                    std::to_string(error.column()) + ": " + error.problem(),
                error.what());
    }
    EXPECT_EQ(repository.findClass(kNamespace, "Staged_A"), nullptr);
    EXPECT_EQ(repository.classes(kNamespace).size(), classCount);
    EXPECT_EQ(repository.namespaces(), namespaces);
    EXPECT_EQ(repository.staticInstances(kNamespace, "Test_Thing").size(), 1u);
    EXPECT_EQ(repository.findQualifier(kNamespace, "Key")->type.type, CimType::kBoolean);
  }
}

TEST(MofReaderErrorTest, HostileInputEndsInAnErrorNotAHangOrCrash) {
  const std::vector<std::string> inputs = {std::string("class A { string S = \"\0\"; };", 27),
                                           "\xEF\xBB",
                                           "class",
                                           "[",
                                           "#",
                                           "#pragma",
                                           "instance of",
                                           "class A { uint8 X[] = {",
                                           "class A { uint8 X[] = {{1}}; };",
                                           "'",
                                           "'\\",
                                           "\"\\x",
                                           "class A { char16 C = '\\x0'; };",
                                           "class A { string S = \"\\xD800\"; };",
                                           "$",
                                           std::string(100000, '['),
                                           std::string(100000, '{'),
                                           "class A { uint8 X[4294967296]; };",
                                           "class A { uint8 X[0]; };"};
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  for (const std::string& input : inputs) {
    SCOPED_TRACE(input.substr(0, 40));
    EXPECT_THROW(reader.loadText(input, "hostile.mof"), MofError);
  }
  EXPECT_TRUE(repository.namespaces().empty());
}

}  // namespace
}  // namespace cmpihost
