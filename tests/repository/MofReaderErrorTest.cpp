// Every bad input gives one MofError naming the file, line, column and the
// exact problem, and leaves the repository as it was before the load.
#include <gtest/gtest.h>

#include <string>

#include "RepositoryTestSupport.h"
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

struct BadInput {
  const char* what;
  std::string text;  // each starts with a valid class that must not survive
  unsigned line;
  unsigned column;
  std::string problem;
};

// Line 1 of every case declares a class that is staged and then discarded.
std::string AfterGoodLine(const std::string& text) {
  return "class Staged_A { };\n" + text;
}

std::vector<BadInput> BadInputs() {
  return {
      {"syntax", AfterGoodLine("class Bad { string Name };"), 2, 25,
       "expected ';' after the property declaration, found '}'"},
      {"syntax at end of file", AfterGoodLine("class Bad { }"), 2, 14,
       "expected ';' after the class body, found end of file"},
      {"syntax after qualifier list", AfterGoodLine("[Description(\"x\")] Qualifier Q;"), 2, 20,
       "expected \"class\" or \"instance\" after the qualifier list, found \"Qualifier\""},
      {"unknown character", AfterGoodLine("class Bad { string @x; };"), 2, 20,
       "unexpected character '@'"},
      {"unknown type", AfterGoodLine("class Bad { strng Name; };"), 2, 13,
       "unknown type \"strng\": not a CIM data type, and no REF follows it"},
      {"unknown qualifier type", AfterGoodLine("Qualifier Q : text, Scope(any);"), 2, 15,
       "unknown type \"text\": not a CIM data type"},
      {"undefined superclass", AfterGoodLine("class Bad : Test_Nope { };"), 2, 13,
       "superclass \"Test_Nope\" of class \"Bad\" is not defined in namespace \"root/test\""},
      {"undefined qualifier", AfterGoodLine("[Nope] class Bad { };"), 2, 2,
       "qualifier \"Nope\" is not declared in namespace \"root/test\" (a \"Qualifier\" "
       "declaration must come first)"},
      {"duplicate class, other case", AfterGoodLine("class test_thing { };"), 2, 7,
       "class \"test_thing\" is already defined in namespace \"root/test\" as \"Test_Thing\""},
      {"duplicate class in one file", AfterGoodLine("class Staged_A { };"), 2, 7,
       "class \"Staged_A\" is already defined in namespace \"root/test\""},
      {"unterminated string", AfterGoodLine("[Description(\"abc)] class Bad { };"), 2, 14,
       "unterminated string: no closing '\"' on this line"},
      {"unterminated comment", AfterGoodLine("/* open\n\n"), 2, 1,
       "unterminated comment: no \"*/\" closes this \"/*\""},
      {"missing include file", AfterGoodLine("#pragma include (\"no-such-dir/missing.mof\")"), 2, 1,
       "cannot read include file \"no-such-dir/missing.mof\": No such file or directory"},
      {"instance of unknown class", AfterGoodLine("instance of Test_Nope { };"), 2, 13,
       "instance of undefined class \"Test_Nope\" (not in namespace \"root/test\")"},
      {"instance of unknown property",
       AfterGoodLine("instance of Test_Thing { Id = \"a\"; Nope = 1; };"), 2, 36,
       "class \"Test_Thing\" has no property \"Nope\""},
      {"undefined alias", AfterGoodLine("instance of Test_Link { Left = $nope; Right = $nope; };"),
       2, 32, "undefined alias $nope (an \"instance of ... as $nope\" must come first)"},
      {"alias used before it is defined",
       AfterGoodLine("instance of Test_Link { Left = $later; Right = $later; };\n"
                     "instance of Test_Thing as $later { Id = \"later\"; };"),
       2, 32, "undefined alias $later (an \"instance of ... as $later\" must come first)"},
      {"alias of an earlier load",
       AfterGoodLine("instance of Test_Link { Left = $known; Right = $known; };"), 2, 32,
       "undefined alias $known (an \"instance of ... as $known\" must come first)"},
      {"duplicate alias, other case",
       AfterGoodLine("instance of Test_Thing as $a { Id = \"one\"; };\n"
                     "instance of Test_Thing as $A { Id = \"two\"; };"),
       3, 27, "alias $A is already defined"},
      {"unknown escape", AfterGoodLine("[Description(\"a\\qb\")] class Bad { };"), 2, 16,
       "unknown escape sequence \\q (known: \\b \\t \\n \\f \\r \\\" \\' \\\\ \\xHHHH)"},
      {"integer out of range", AfterGoodLine("class Bad { uint8 Small = 256; };"), 2, 27,
       "default of property \"Small\": 256 is out of range for uint8"},
      {"one past the signed maximum", AfterGoodLine("class Bad { sint8 X = 128; };"), 2, 23,
       "default of property \"X\": 128 is out of range for sint8"},
      {"negative unsigned", AfterGoodLine("class Bad { uint32 U = -1; };"), 2, 24,
       "default of property \"U\": -1 is out of range for uint32"},
      {"integer beyond 64 bits", AfterGoodLine("class Bad { uint64 Big = 18446744073709551616; };"),
       2, 26, "integer 18446744073709551616 does not fit in 64 bits"},
      {"bad octal digit", AfterGoodLine("class Bad { uint8 X = 09; };"), 2, 23,
       "octal number 09 holds the digit 9"},
      {"malformed number", AfterGoodLine("class Bad { uint8 X = 12ab; };"), 2, 23,
       "malformed number 12ab"},
      {"string for an integer", AfterGoodLine("class Bad { uint16 X = \"5\"; };"), 2, 24,
       "default of property \"X\": uint16 takes an integer, found a string"},
      {"array for a scalar", AfterGoodLine("class Bad { uint16 X = {1}; };"), 2, 24,
       "default of property \"X\": uint16 takes a single value, found an array"},
      {"scalar for an array property", AfterGoodLine("class Bad { uint16 X[] = 1; };"), 2, 26,
       "default of property \"X\": uint16[] takes an array value {...}, found an integer"},
      {"too many values for a fixed array", AfterGoodLine("class Bad { uint8 X[2] = {1, 2, 3}; };"),
       2, 26, "default of property \"X\": uint8[2] holds at most 2 values, found 3"},
      {"bad datetime", AfterGoodLine("class Bad { datetime D = \"2024\"; };"), 2, 26,
       "default of property \"D\": \"2024\" is not a datetime (yyyymmddhhmmss.mmmmmm with +utc "
       "or -utc, or ddddddddhhmmss.mmmmmm:000)"},
      {"char16 with two characters", AfterGoodLine("class Bad { char16 C = 'ab'; };"), 2, 24,
       "char16 literal holds more than one character"},
      {"qualifier value of the wrong type",
       AfterGoodLine("class Bad { [MaxLen(\"x\")] string S; };"), 2, 21,
       "qualifier \"MaxLen\": uint32 takes an integer, found a string"},
      {"bad array element points at the element",
       AfterGoodLine("class Bad { [ValueMap {\"1\", 2}] uint8 S; };"), 2, 29,
       "qualifier \"ValueMap\": string takes a string, found an integer"},
      {"qualifier given twice", AfterGoodLine("class Bad { [Key, key] string S; };"), 2, 19,
       "qualifier \"Key\" is given twice"},
      {"qualifier out of scope", AfterGoodLine("[Key] class Bad { };"), 2, 2,
       "qualifier \"Key\" does not apply to a class (its scope: property, reference)"},
      {"qualifier redeclared with another type",
       AfterGoodLine("Qualifier Key : string, Scope(any);"), 2, 17,
       "qualifier \"Key\" is already declared with type boolean, not string"},
      {"unknown scope", AfterGoodLine("Qualifier Q : string, Scope(everything);"), 2, 29,
       "unknown scope \"everything\" (known: class, association, indication, qualifier, "
       "property, reference, method, parameter, any)"},
      {"contradicting flavors",
       AfterGoodLine("Qualifier Q : string, Scope(any), Flavor(ToSubclass, Restricted);"), 2, 54,
       "flavor Restricted contradicts ToSubclass"},
      {"override of nothing",
       AfterGoodLine("class Bad : Test_Element { [Override(\"Nope\")] string Nope; };"), 2, 29,
       "Override(\"Nope\"): class \"Bad\" inherits no property \"Nope\""},
      {"override naming another property",
       AfterGoodLine("class Bad : Test_Element { [Override(\"Id\")] string Other; };"), 2, 29,
       "Override(\"Id\") on property \"Other\" must name that property"},
      {"override with another type", AfterGoodLine("class Bad : Test_Element { uint32 Count; };"),
       2, 28, "property \"Count\" overrides one of type uint16 with uint32"},
      {"reference outside an association", AfterGoodLine("class Bad { Test_Element REF Other; };"),
       2, 13,
       "reference \"Other\" can only be declared in an association, and \"Bad\" has no "
       "Association qualifier"},
      {"reference to an unknown class",
       AfterGoodLine("[Association] class Bad { Test_Nope REF X; };"), 2, 27,
       "reference \"X\" refers to class \"Test_Nope\", which is not defined in namespace "
       "\"root/test\""},
      {"key array", AfterGoodLine("class Bad { [Key] string Ids[]; };"), 2, 26,
       "key property \"Ids\" cannot be an array"},
      {"duplicate property", AfterGoodLine("class Bad { string A; string a; };"), 2, 30,
       "property \"a\" is declared twice in class \"Bad\""},
      {"duplicate parameter", AfterGoodLine("class Bad { uint32 Run(string P, uint8 p); };"), 2, 40,
       "parameter \"p\" is declared twice in method \"Run\""},
      {"instance of an abstract class", AfterGoodLine("instance of Test_Element { Id = \"x\"; };"),
       2, 13, "class \"Test_Element\" is abstract and cannot have instances"},
      {"instance without its key", AfterGoodLine("instance of Test_Thing { Count = 1; };"), 2, 1,
       "instance of \"Test_Thing\" gives no value for key property \"Id\""},
      {"duplicate instance", AfterGoodLine("instance of Test_Thing { Id = \"known\"; };"), 2, 1,
       "an instance with the same keys is already defined: Test_Thing.Id=\"known\""},
      {"duplicate instance, its reference's keys in another order and case",
       AfterGoodLine("instance of Test_PairLink { P = "
                     "\"//h.example/root/test:test_pair.b=2,a=\\\"x,y.z\\\"\"; };"),
       2, 1,
       "an instance with the same keys is already defined: Test_PairLink.P="
       "\"//h.example/root/test:test_pair.b=2,a=\\\"x,y.z\\\"\""},
      {"property given twice", AfterGoodLine("instance of Test_Thing { Id = \"a\"; ID = \"b\"; };"),
       2, 36, "property \"Id\" is given twice"},
      {"alias outside an instance", AfterGoodLine("class Bad { string S = $known; };"), 2, 24,
       "alias $known used outside an instance's property value"},
      {"namespace pragma without argument", AfterGoodLine("#pragma namespace ()"), 2, 1,
       "#pragma namespace takes one string argument"},
      {"position counts lines of a block comment and CRLF",
       AfterGoodLine("/* one\r\n two */ class Bad\r\n  { string; };"), 4, 11,
       "expected a property or method name, found ';'"},
      {"error in a second namespace",
       AfterGoodLine("#pragma namespace (\"root/other\")\nclass Other { };\n[Key] class Bad { };"),
       4, 2,
       "qualifier \"Key\" is not declared in namespace \"root/other\" (a \"Qualifier\" "
       "declaration must come first)"},
  };
}

TEST(MofReaderErrorTest, EachBadInputNamesItsPlaceAndProblemAndChangesNothing) {
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  reader.loadText(Base(), "base.mof");
  const std::size_t classCount = repository.classes(kNamespace).size();
  const std::vector<std::string> namespaces = repository.namespaces();

  for (const BadInput& bad : BadInputs()) {
    SCOPED_TRACE(bad.what);
    try {
      reader.loadText(bad.text, "bad.mof");
      ADD_FAILURE() << "loaded without error";
    } catch (const MofError& error) {
      EXPECT_EQ(error.file(), "bad.mof");
      EXPECT_EQ(error.line(), bad.line);
      EXPECT_EQ(error.column(), bad.column);
      EXPECT_EQ(error.problem(), bad.problem);
      EXPECT_EQ(std::string(error.what()), "bad.mof:" + std::to_string(bad.line) + ":" +
                                               std::to_string(bad.column) + ": " + bad.problem);
    }
    EXPECT_EQ(repository.findClass(kNamespace, "Staged_A"), nullptr);
    EXPECT_EQ(repository.classes(kNamespace).size(), classCount);
    EXPECT_EQ(repository.namespaces(), namespaces);
    EXPECT_EQ(repository.staticInstances(kNamespace, "Test_Thing").size(), 1u);
    EXPECT_EQ(repository.findQualifier(kNamespace, "Key")->type.type, CimType::kBoolean);
  }
}

TEST(MofReaderErrorTest, HostileInputEndsInAnErrorNotAHangOrCrash) {
  const std::vector<std::string> inputs = {
      std::string("class A { string S = \"\0\"; };", 27),
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
      "class A { uint8 X[0]; };",
  };
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
