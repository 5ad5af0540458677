// What a correct MOF text turns into: literals, types, defaults, qualifiers,
// inheritance and overrides, methods, static instances and aliases.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "HostTestSupport.h"
#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

constexpr const char* kNamespace = "root/test";
using testing::Lines;
using testing::Show;
using Strings = std::vector<std::string>;

class MofReaderTest : public ::testing::Test {
 protected:
  void SetUp() override { reader_.loadText(testing::kQualifierDecls, "qualifiers.mof"); }

  const ClassDecl& load(const std::string& text, const std::string& className) {
    reader_.loadText(text, "test.mof");
    return classNamed(className);
  }

  const ClassDecl& classNamed(const std::string& className) const {
    const ClassDecl* decl = repository_.findClass(kNamespace, className);
    if (decl == nullptr) {
      throw std::runtime_error("no class " + className);
    }
    return *decl;
  }

  ClassRepository repository_;
  MofReader reader_{repository_, kNamespace};
};

TEST_F(MofReaderTest, LiteralsOfEveryKindAreDecodedAndTyped) {
  const std::pair<const char*, const char*> literals[] = {
      {"boolean B = TRUE", "true"},
      {"boolean F = False", "false"},
      {R"(string S = "tab\there" " quote\" \'s\\" /* a comment between */ " \x41\x00e9")",
       "\"tab\there quote\" 's\\ A\xC3\xA9\""},
      {R"(string Empty = "")", R"("")"},
      {"string Nothing = NULL", "null"},
      {"char16 C = 'x'", "'x'"},
      {R"(char16 Newline = '\n')", "'\n'"},
      {"uint8 Hex = 0x1F", "31"},
      {"uint8 Binary = 101b", "5"},
      {"uint16 Octal = 017", "15"},
      {"uint16 Zero = 0", "0"},
      {"sint8 Low = -128", "-128"},
      {"sint64 Min = -9223372036854775808", "-9223372036854775808"},
      {"uint64 Max = 0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
      {"real64 R = -1.5e3", "real -1500"},
      {"real32 WholeReal = 2", "real 2"},
      {"real64 Fraction = .25", "real 0.25"},
      {R"(datetime When = "20240102030405.000000+060")", R"("20240102030405.000000+060")"},
      {R"(datetime Interval = "00000001020304.000005:000")", R"("00000001020304.000005:000")"},
      {"sint32 List[] = {1, -2, 0x3, null}", "{1, -2, 3, null}"},
      {"string NoValues[] = {}", "{}"}};
  std::string text = "CLASS Test_Literals {\n";  // keywords compare without case
  for (const auto& literal : literals) {
    text += std::string(literal.first) + ";\n";
  }
  const ClassDecl& decl = load(text + "};", "Test_Literals");
  ASSERT_EQ(decl.properties().size(), std::size(literals));
  for (std::size_t i = 0; i < std::size(literals); ++i) {
    EXPECT_EQ(Show(decl.properties()[i].defaultValue), literals[i].second) << literals[i].first;
  }
}

TEST_F(MofReaderTest, PropertiesAndMethodsKeepTypesDirectionsAndQualifiers) {
  const ClassDecl& typed = load(R"(
    class Test_Base { [Key] string Id; };
    [Association, Description("links" " things"), Version("1.0")]
    class Test_Typed {
      [Key, Description("first" " second")] test_base REF Owner;
      uint8 Fixed[4];
      string Names[];
      [ValueMap("1")] uint16 Single;
      [ValueMap{"1", "2"}, MaxLen(10)] uint16 Both;
      Test_Typed REF Previous;
    };)",
                                "Test_Typed");
  // A reference names its class in the declared spelling, not "test_base", and
  // may name its own class;
  // one value given to an array-typed qualifier becomes a one-element array.
  EXPECT_EQ(Lines(typed),
            (Strings{"class Test_Typed association [Association=true, Description=\"links "
                     "things\", Version=\"1.0\"]",
                     "Owner: Test_Base REF key from Test_Typed [Key=true, Description=\"first "
                     "second\"]",
                     "Fixed: uint8[4] from Test_Typed", "Names: string[] from Test_Typed",
                     "Single: uint16 from Test_Typed [ValueMap={\"1\"}]",
                     "Both: uint16 from Test_Typed [ValueMap={\"1\", \"2\"}, MaxLen=10]",
                     "Previous: Test_Typed REF from Test_Typed"}));
  EXPECT_EQ(typed.keyProperties().size(), 1u);

  const ClassDecl& service = load(R"(
    class Test_Job { [Key] string Id; };
    class Test_Service {
      [Description("runs")]
      uint32 Run([IN, Description("what")] string Name,
                 [IN(false), OUT] Test_Job REF Job,
                 [In] uint16 Codes[],
                 [Out] string Messages[],
                 Test_Service REF Peer);
      Test_Service REF Current();
    };)",
                                  "Test_Service");
  // In defaults to true, as its declaration says, even for an Out parameter.
  EXPECT_EQ(
      Lines(service),
      (Strings{"class Test_Service", "Run(): uint32 from Test_Service [Description=\"runs\"]",
               "Run(Name): string in [In=true, Description=\"what\"]",
               "Run(Job): Test_Job REF out [In=false, Out=true]",
               "Run(Codes): uint16[] in [In=true]", "Run(Messages): string[] in out [Out=true]",
               "Run(Peer): Test_Service REF in", "Current(): Test_Service REF from Test_Service"}));
}

TEST_F(MofReaderTest, InheritanceKeepsPositionsDefaultsAndPropagatingQualifiers) {
  reader_.loadText(R"(
    [Abstract, Version("1"), Description("base")]
    class Test_Base {
      [Key, Description("base id")] string Id;
      uint16 Level = 3;
      [Description("note"), MaxLen(10)] string Note;
      uint32 Run();
    };
    class Test_Derived : Test_Base {
      string Extra = "x";
      [Override("Level"), Description("derived level")] uint16 Level;
      [Override("Test_Base.Note")] string Note = "n";
      [Override("Run")] uint32 Run();
      uint32 Stop();
    };
    class Test_Leaf : test_derived { uint16 level = 9; };
    [Association] class Test_Link { [Key] Test_Base REF A; [Key] Test_Base REF B; };
    class Test_SubLink : Test_Link { [Override("A")] Test_Derived REF A; };
  )",
                   "test.mof");
  // Restricted qualifiers (Abstract, Version, Override) stay with their
  // class; ToSubclass ones (Description) propagate. An override keeps the
  // inherited position and origin, and the inherited default unless it
  // gives one.
  EXPECT_TRUE(classNamed("Test_Base").isAbstract());
  EXPECT_EQ(Lines(classNamed("Test_Derived")),
            (Strings{"class Test_Derived : Test_Base [Description=\"base\"]",
                     "Id: string key from Test_Base [Key=true, Description=\"base id\"]",
                     "Level: uint16 = 3 from Test_Base [Override=\"Level\", "
                     "Description=\"derived level\"]",
                     "Note: string = \"n\" from Test_Base [Override=\"Test_Base.Note\", "
                     "Description=\"note\", MaxLen=10]",
                     "Extra: string = \"x\" from Test_Derived",
                     "Run(): uint32 from Test_Base [Override=\"Run\"]",
                     "Stop(): uint32 from Test_Derived"}));
  // The redeclared property takes the subclass's spelling and default.
  EXPECT_EQ(Lines(classNamed("TEST_LEAF")),
            (Strings{"class Test_Leaf : Test_Derived [Description=\"base\"]",
                     "Id: string key from Test_Base [Key=true, Description=\"base id\"]",
                     "level: uint16 = 9 from Test_Base [Description=\"derived level\"]",
                     "Note: string = \"n\" from Test_Base [Description=\"note\", MaxLen=10]",
                     "Extra: string = \"x\" from Test_Derived", "Run(): uint32 from Test_Base",
                     "Stop(): uint32 from Test_Derived"}));
  EXPECT_EQ(classNamed("Test_Leaf").keyProperties().size(), 1u);
  // A subclass of an association is one too, and may narrow a reference.
  EXPECT_EQ(Lines(classNamed("Test_SubLink")),
            (Strings{"class Test_SubLink : Test_Link association [Association=true]",
                     "A: Test_Derived REF key from Test_Link [Override=\"A\", Key=true]",
                     "B: Test_Base REF key from Test_Link [Key=true]"}));
  EXPECT_EQ(classNamed("Test_SubLink").keyProperties().size(), 2u);
}

TEST_F(MofReaderTest, StaticInstancesResolveAliasesToPathsWithKeysInDeclarationOrder) {
  reader_.loadText(R"(
    class Test_Thing { [Key] string Id; uint16 Count; };
    class Test_Multi { [Key] string zeta; [Key] uint32 Alpha; [Key] boolean beta;
                       [Key] string Defaulted = "d"; };
    [Association] class Test_Link { [Key] Test_Thing REF Left; [Key] Test_Multi REF Right; };
    instance of Test_Thing as $T1 { id = "a\"b\\c"; Count = 7; };
    instance of Test_Multi as $M { zeta = "n"; Alpha = 5; beta = true; };
    instance of Test_Link { Right = $M; Left = $t1; };
    instance of Test_Link { Left = "Test_Thing.Id=\"z\""; Right = $M; };
  )",
                   "instances.mof");
  // Class and property names in their declared spelling, values in the
  // order written.
  const auto shown = [this](const char* className) {
    Strings instances;
    for (const StaticInstance* instance : repository_.staticInstances(kNamespace, className)) {
      std::string text = instance->className;
      for (const auto& [name, value] : instance->values) {
        text += " " + name + "=" + Show(value);
      }
      instances.push_back(text);
    }
    return instances;
  };
  EXPECT_EQ(shown("test_thing"), Strings{"Test_Thing Id=\"a\"b\\c\" Count=7"});
  EXPECT_EQ(shown("Test_Link"),
            (Strings{"Test_Link Right=ref \"Test_Multi.zeta=\"n\",Alpha=5,beta=TRUE,"
                     "Defaulted=\"d\"\" Left=ref \"Test_Thing.Id=\"a\\\"b\\\\c\"\"",
                     "Test_Link Left=ref \"Test_Thing.Id=\"z\"\" Right=ref "
                     "\"Test_Multi.zeta=\"n\",Alpha=5,beta=TRUE,Defaulted=\"d\"\""}));
  // Only exactly that class; subclasses have their own lists.
  EXPECT_EQ(repository_.staticInstances(kNamespace, "Test_Multi").size(), 1u);
  EXPECT_TRUE(repository_.staticInstances(kNamespace, "Nope").empty());
  EXPECT_TRUE(repository_.staticInstances("root/none", "Test_Thing").empty());
}

TEST_F(MofReaderTest, LookupsIgnoreCaseAndFollowTheHierarchyInLoadOrder) {
  reader_.loadText(R"(
    class T_A { };
    class T_B : T_A { };
    class T_C : T_A { };
    class T_D : T_B { };
    class T_E : T_C { };
    class T_F : T_B { };
    class T_Other { string PropName; uint8 DoIt(); };
  )",
                   "tree.mof");
  const auto names = [&](const char* root) {
    std::vector<std::string> result;
    for (const ClassDecl* decl : repository_.classAndSubclasses(kNamespace, root)) {
      result.push_back(decl->name());
    }
    return result;
  };
  EXPECT_EQ(names("t_a"), (std::vector<std::string>{"T_A", "T_B", "T_D", "T_F", "T_C", "T_E"}));
  EXPECT_EQ(names("T_B"), (std::vector<std::string>{"T_B", "T_D", "T_F"}));
  EXPECT_EQ(names("T_E"), (std::vector<std::string>{"T_E"}));
  EXPECT_TRUE(names("T_Nope").empty());
  // Names compare without case and keep their declared spelling.
  const ClassDecl* other = repository_.findClass("ROOT/TEST", "t_other");
  ASSERT_NE(other, nullptr);
  EXPECT_EQ(other->name(), "T_Other");
  EXPECT_EQ(other->findProperty("PROPNAME")->name, "PropName");
  EXPECT_EQ(other->findMethod("doit")->name, "DoIt");
  EXPECT_EQ(other->findProperty("Nope"), nullptr);
  EXPECT_EQ(repository_.findClass(kNamespace, "T_Othe"), nullptr);
  EXPECT_EQ(repository_.findClass("root/other", "T_Other"), nullptr);

  EXPECT_TRUE(repository_.isA(kNamespace, "T_D", "T_A"));
  EXPECT_TRUE(repository_.isA(kNamespace, "t_d", "T_b"));
  EXPECT_TRUE(repository_.isA(kNamespace, "T_A", "t_a"));
  EXPECT_FALSE(repository_.isA(kNamespace, "T_A", "T_D"));
  EXPECT_FALSE(repository_.isA(kNamespace, "T_E", "T_B"));
  EXPECT_FALSE(repository_.isA(kNamespace, "T_Other", "T_A"));
  EXPECT_FALSE(repository_.isA(kNamespace, "T_Nope", "T_Nope"));
  EXPECT_FALSE(repository_.isA("root/none", "T_A", "T_A"));

  std::vector<std::string> all;
  for (const ClassDecl* decl : repository_.classes(kNamespace)) {
    all.push_back(decl->name());
  }
  EXPECT_EQ(all, (std::vector<std::string>{"T_A", "T_B", "T_C", "T_D", "T_E", "T_F", "T_Other"}));
}

TEST_F(MofReaderTest, QualifierDeclarationsKeepTypeDefaultScopesAndFlavors) {
  reader_.loadText(R"(
    Qualifier Colors : string[] = {"red", "green"}, Scope(Property, METHOD), Flavor(Restricted);
    Qualifier Plain : uint8 = 1, scope(any);
    Qualifier key : boolean = true, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
    class Test_Q { [Plain, Colors] string S; };
  )",
                   "decls.mof");
  const QualifierDecl* colors = repository_.findQualifier(kNamespace, "colors");
  ASSERT_NE(colors, nullptr);
  EXPECT_TRUE(colors->type.isArray);
  EXPECT_EQ(colors->defaultValue.elements.size(), 2u);
  EXPECT_EQ(colors->scopes, (std::vector<std::string>{"property", "method"}));
  EXPECT_EQ(colors->flavors, (std::vector<std::string>{"Restricted"}));
  EXPECT_TRUE(repository_.findQualifier(kNamespace, "Plain")->flavors.empty());

  // A same-typed redeclaration replaces the default and keeps the first spelling.
  const QualifierDecl* key = repository_.findQualifier("Root/Test", "KEY");
  EXPECT_EQ(key->name, "Key");
  EXPECT_TRUE(key->defaultValue.boolean);

  // A bare non-boolean qualifier takes its declaration's default.
  const PropertyDecl* property = repository_.findClass(kNamespace, "Test_Q")->findProperty("S");
  EXPECT_EQ(property->qualifiers[0].value.integer, 1u);
  EXPECT_EQ(property->qualifiers[1].value.elements[1].text, "green");
}

}  // namespace
}  // namespace cmpihost
