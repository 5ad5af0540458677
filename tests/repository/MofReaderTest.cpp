// What a correct MOF text turns into: literals, types, defaults, qualifiers,
// inheritance and overrides, methods, static instances and aliases.
#include <gtest/gtest.h>

#include <string>

#include "RepositoryTestSupport.h"
#include "repository/MofReader.h"

namespace cmpihost {
namespace {

constexpr const char* kNamespace = "root/test";
using Kind = MofValue::Kind;

class MofReaderTest : public ::testing::Test {
 protected:
  void SetUp() override { reader_.loadText(testing::kQualifierDecls, "qualifiers.mof"); }

  const ClassDecl& load(const std::string& text, const std::string& className) {
    reader_.loadText(text, "test.mof");
    const ClassDecl* decl = repository_.findClass(kNamespace, className);
    if (decl == nullptr) {
      throw std::runtime_error("no class " + className);
    }
    return *decl;
  }

  static const MofValue& defaultOf(const ClassDecl& decl, const char* property) {
    const PropertyDecl* found = decl.findProperty(property);
    if (found == nullptr) {
      throw std::runtime_error(std::string("no property ") + property);
    }
    return found->defaultValue;
  }

  static std::vector<std::string> propertyNames(const ClassDecl& decl) {
    std::vector<std::string> names;
    for (const PropertyDecl& property : decl.properties()) {
      names.push_back(property.name);
    }
    return names;
  }

  ClassRepository repository_;
  MofReader reader_{repository_, kNamespace};
};

TEST_F(MofReaderTest, LiteralsOfEveryKindAreDecodedAndTyped) {
  const ClassDecl& decl = load(R"(
    // Keywords compare without case.
    CLASS Test_Literals {
      boolean B = TRUE;
      boolean F = False;
      string S = "tab\there" " quote\" \'s\\" /* a comment between */ " \x41\x00e9";
      string Empty = "";
      string Nothing = NULL;
      char16 C = 'x';
      char16 Newline = '\n';
      uint8 Hex = 0x1F;
      uint8 Binary = 101b;
      uint16 Octal = 017;
      uint16 Zero = 0;
      sint8 Low = -128;
      sint64 Min = -9223372036854775808;
      uint64 Max = 0xFFFFFFFFFFFFFFFF;
      real64 R = -1.5e3;
      real32 WholeReal = 2;
      real64 Fraction = .25;
      datetime When = "20240102030405.000000+060";
      datetime Interval = "00000001020304.000005:000";
      sint32 List[] = {1, -2, 0x3, null};
      string NoValues[] = {};
    };)",
                               "Test_Literals");
  EXPECT_EQ(defaultOf(decl, "B").kind, Kind::kBoolean);
  EXPECT_TRUE(defaultOf(decl, "B").boolean);
  EXPECT_FALSE(defaultOf(decl, "F").boolean);
  EXPECT_EQ(defaultOf(decl, "S").kind, Kind::kString);
  EXPECT_EQ(defaultOf(decl, "S").text, "tab\there quote\" 's\\ A\xC3\xA9");
  EXPECT_EQ(defaultOf(decl, "Empty").kind, Kind::kString);
  EXPECT_EQ(defaultOf(decl, "Empty").text, "");
  EXPECT_EQ(defaultOf(decl, "Nothing").kind, Kind::kNull);
  EXPECT_EQ(defaultOf(decl, "C").kind, Kind::kChar16);
  EXPECT_EQ(defaultOf(decl, "C").text, "x");
  EXPECT_EQ(defaultOf(decl, "Newline").text, "\n");
  EXPECT_EQ(defaultOf(decl, "Hex").integer, 31u);
  EXPECT_EQ(defaultOf(decl, "Binary").integer, 5u);
  EXPECT_EQ(defaultOf(decl, "Octal").integer, 15u);
  EXPECT_EQ(defaultOf(decl, "Zero").kind, Kind::kInteger);
  EXPECT_FALSE(defaultOf(decl, "Zero").negative);
  EXPECT_TRUE(defaultOf(decl, "Low").negative);
  EXPECT_EQ(defaultOf(decl, "Low").integer, 128u);
  EXPECT_TRUE(defaultOf(decl, "Min").negative);
  EXPECT_EQ(defaultOf(decl, "Min").integer, 9223372036854775808u);
  EXPECT_EQ(defaultOf(decl, "Max").integer, 18446744073709551615u);
  EXPECT_EQ(defaultOf(decl, "R").kind, Kind::kReal);
  EXPECT_DOUBLE_EQ(defaultOf(decl, "R").real, -1500.0);
  EXPECT_EQ(defaultOf(decl, "WholeReal").kind, Kind::kReal);
  EXPECT_DOUBLE_EQ(defaultOf(decl, "WholeReal").real, 2.0);
  EXPECT_DOUBLE_EQ(defaultOf(decl, "Fraction").real, 0.25);
  EXPECT_EQ(defaultOf(decl, "When").text, "20240102030405.000000+060");
  EXPECT_EQ(defaultOf(decl, "Interval").text, "00000001020304.000005:000");

  const MofValue& list = defaultOf(decl, "List");
  ASSERT_EQ(list.kind, Kind::kArray);
  ASSERT_EQ(list.elements.size(), 4u);
  EXPECT_EQ(list.elements[1].integer, 2u);
  EXPECT_TRUE(list.elements[1].negative);
  EXPECT_EQ(list.elements[2].integer, 3u);
  EXPECT_EQ(list.elements[3].kind, Kind::kNull);
  EXPECT_EQ(defaultOf(decl, "NoValues").kind, Kind::kArray);
  EXPECT_TRUE(defaultOf(decl, "NoValues").elements.empty());
}

TEST_F(MofReaderTest, PropertiesKeepTypesArraysReferencesAndQualifiers) {
  const ClassDecl& decl = load(R"(
    class Test_Base { [Key] string Id; };
    [Association, Description("links" " things"), Version("1.0")]
    class Test_Typed {
      [Key, Description("first" " second")] test_base REF Owner;
      uint8 Fixed[4];
      string Names[];
      [ValueMap("1")] uint16 Single;
      [ValueMap{"1", "2"}, MaxLen(10)] uint16 Both;
    };)",
                               "Test_Typed");
  EXPECT_TRUE(decl.isAssociation());
  EXPECT_FALSE(decl.isAbstract());
  ASSERT_NE(decl.findQualifier("description"), nullptr);
  EXPECT_EQ(decl.findQualifier("DESCRIPTION")->value.text, "links things");
  EXPECT_EQ(decl.findQualifier("Association")->name, "Association");

  const PropertyDecl* owner = decl.findProperty("owner");
  ASSERT_NE(owner, nullptr);
  EXPECT_EQ(owner->name, "Owner");
  EXPECT_EQ(owner->type.type, CimType::kReference);
  EXPECT_EQ(owner->type.refClass, "Test_Base");  // the declared spelling, not "test_base"
  EXPECT_TRUE(owner->isKey);
  EXPECT_EQ(owner->classOrigin, "Test_Typed");
  ASSERT_EQ(owner->qualifiers.size(), 2u);
  EXPECT_EQ(owner->qualifiers[1].value.text, "first second");

  const PropertyDecl* fixed = decl.findProperty("Fixed");
  EXPECT_TRUE(fixed->type.isArray);
  EXPECT_EQ(fixed->type.arraySize, 4u);
  EXPECT_TRUE(decl.findProperty("Names")->type.isArray);
  EXPECT_FALSE(decl.findProperty("Names")->type.arraySize.has_value());

  // One value given to an array-typed qualifier becomes a one-element array.
  const MofValue& single = decl.findProperty("Single")->qualifiers[0].value;
  ASSERT_EQ(single.kind, Kind::kArray);
  ASSERT_EQ(single.elements.size(), 1u);
  EXPECT_EQ(single.elements[0].text, "1");
  EXPECT_EQ(decl.findProperty("Both")->qualifiers[0].value.elements.size(), 2u);
  EXPECT_EQ(decl.findProperty("Both")->qualifiers[1].value.integer, 10u);
  EXPECT_EQ(decl.keyProperties().size(), 1u);
  EXPECT_EQ(decl.findProperty("Nope"), nullptr);
}

TEST_F(MofReaderTest, MethodsKeepParametersWithDirectionsAndTypes) {
  const ClassDecl& decl = load(R"(
    class Test_Job { [Key] string Id; };
    class Test_Service {
      [Description("runs")]
      uint32 Run([IN, Description("what")] string Name,
                 [IN(false), OUT] Test_Job REF Job,
                 [In] uint16 Codes[],
                 [Out] string Messages[]);
      Test_Job REF Current();
    };)",
                               "Test_Service");
  ASSERT_EQ(decl.methods().size(), 2u);
  const MethodDecl* run = decl.findMethod("RUN");
  ASSERT_NE(run, nullptr);
  EXPECT_EQ(run->returnType.type, CimType::kUint32);
  EXPECT_EQ(run->classOrigin, "Test_Service");
  EXPECT_EQ(run->qualifiers[0].value.text, "runs");
  ASSERT_EQ(run->parameters.size(), 4u);

  const ParameterDecl& name = run->parameters[0];
  EXPECT_EQ(name.name, "Name");
  EXPECT_EQ(name.type.type, CimType::kString);
  EXPECT_TRUE(name.isIn);
  EXPECT_FALSE(name.isOut);
  EXPECT_EQ(name.qualifiers.size(), 2u);

  const ParameterDecl& job = run->parameters[1];
  EXPECT_EQ(job.type.type, CimType::kReference);
  EXPECT_EQ(job.type.refClass, "Test_Job");
  EXPECT_FALSE(job.isIn);
  EXPECT_TRUE(job.isOut);

  EXPECT_TRUE(run->parameters[2].type.isArray);
  EXPECT_EQ(run->parameters[2].type.type, CimType::kUint16);
  // In defaults to true, as its declaration says, even for an Out parameter.
  EXPECT_TRUE(run->parameters[3].isIn);
  EXPECT_TRUE(run->parameters[3].isOut);

  const MethodDecl* current = decl.findMethod("Current");
  EXPECT_EQ(current->returnType.type, CimType::kReference);
  EXPECT_TRUE(current->parameters.empty());
}

TEST_F(MofReaderTest, AClassMayReferToItselfInParametersAndAssociations) {
  const ClassDecl& node = load(R"(
    class Test_Node {
      [Key] string Id;
      uint32 LinkTo([IN] Test_Node REF Other);
      Test_Node REF Parent();
    };)",
                               "Test_Node");
  EXPECT_EQ(node.findMethod("LinkTo")->parameters[0].type.refClass, "Test_Node");
  EXPECT_EQ(node.findMethod("Parent")->returnType.refClass, "Test_Node");

  const ClassDecl& link = load(R"(
    [Association] class Test_Link {
      [Key] Test_Link REF Previous;
      [Key] Test_Node REF Node;
    };)",
                               "TEST_LINK");
  EXPECT_EQ(link.findProperty("Previous")->type.refClass, "Test_Link");
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
  const ClassDecl& derived = *repository_.findClass(kNamespace, "Test_Derived");
  EXPECT_EQ(derived.superName(), "Test_Base");
  EXPECT_EQ(propertyNames(derived), (std::vector<std::string>{"Id", "Level", "Note", "Extra"}));

  // Restricted qualifiers (Abstract, Version) stay with their class;
  // ToSubclass ones (Description) propagate.
  EXPECT_TRUE(repository_.findClass(kNamespace, "Test_Base")->isAbstract());
  EXPECT_FALSE(derived.isAbstract());
  EXPECT_EQ(derived.findQualifier("Version"), nullptr);
  EXPECT_EQ(derived.findQualifier("Description")->value.text, "base");

  const PropertyDecl* id = derived.findProperty("Id");
  EXPECT_TRUE(id->isKey);
  EXPECT_EQ(id->classOrigin, "Test_Base");
  EXPECT_EQ(id->qualifiers.size(), 2u);

  const PropertyDecl* level = derived.findProperty("Level");
  EXPECT_EQ(level->classOrigin, "Test_Base");
  EXPECT_EQ(level->defaultValue.integer, 3u);  // no new default: the inherited one stays
  EXPECT_EQ(level->qualifiers[0].name, "Override");
  EXPECT_EQ(level->qualifiers[1].value.text, "derived level");
  EXPECT_EQ(level->qualifiers.size(), 2u);

  const PropertyDecl* note = derived.findProperty("Note");
  EXPECT_EQ(note->defaultValue.text, "n");
  ASSERT_NE(derived.findProperty("Note"), nullptr);
  std::vector<std::string> noteQualifiers;
  for (const Qualifier& qualifier : note->qualifiers) {
    noteQualifiers.push_back(qualifier.name);
  }
  EXPECT_EQ(noteQualifiers, (std::vector<std::string>{"Override", "Description", "MaxLen"}));

  ASSERT_EQ(derived.methods().size(), 2u);
  EXPECT_EQ(derived.methods()[0].name, "Run");
  EXPECT_EQ(derived.methods()[0].classOrigin, "Test_Base");
  EXPECT_EQ(derived.methods()[1].name, "Stop");

  // A further subclass: Override (Restricted) is gone, the redeclared
  // property keeps its place, takes the subclass's spelling and default.
  const ClassDecl& leaf = *repository_.findClass(kNamespace, "TEST_LEAF");
  EXPECT_EQ(leaf.superName(), "Test_Derived");
  EXPECT_EQ(propertyNames(leaf), (std::vector<std::string>{"Id", "level", "Note", "Extra"}));
  EXPECT_EQ(leaf.findProperty("Level")->defaultValue.integer, 9u);
  EXPECT_EQ(leaf.findProperty("Level")->qualifiers.size(), 1u);  // Description only
  EXPECT_EQ(leaf.findProperty("Note")->qualifiers.size(), 2u);
  EXPECT_EQ(leaf.keyProperties().size(), 1u);

  // A subclass of an association is one too, and may narrow a reference.
  const ClassDecl& subLink = *repository_.findClass(kNamespace, "Test_SubLink");
  EXPECT_TRUE(subLink.isAssociation());
  EXPECT_EQ(subLink.findProperty("A")->type.refClass, "Test_Derived");
  EXPECT_TRUE(subLink.findProperty("A")->isKey);
  EXPECT_EQ(subLink.keyProperties().size(), 2u);
}

TEST_F(MofReaderTest, StaticInstancesResolveAliasesToPathsWithSortedKeys) {
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
  const std::vector<const StaticInstance*> things =
      repository_.staticInstances(kNamespace, "test_thing");
  ASSERT_EQ(things.size(), 1u);
  EXPECT_EQ(things[0]->className, "Test_Thing");
  ASSERT_EQ(things[0]->values.size(), 2u);
  EXPECT_EQ(things[0]->values[0].first, "Id");  // the declared spelling
  EXPECT_EQ(things[0]->values[0].second.text, "a\"b\\c");
  EXPECT_EQ(things[0]->values[1].second.integer, 7u);

  const std::vector<const StaticInstance*> links =
      repository_.staticInstances(kNamespace, "Test_Link");
  ASSERT_EQ(links.size(), 2u);
  // Values stay in the order written.
  EXPECT_EQ(links[0]->values[0].first, "Right");
  EXPECT_EQ(links[0]->values[0].second.kind, Kind::kReference);
  EXPECT_EQ(links[0]->values[0].second.text,
            "Test_Multi.Alpha=5,beta=TRUE,Defaulted=\"d\",zeta=\"n\"");
  EXPECT_EQ(links[0]->values[1].second.kind, Kind::kReference);
  EXPECT_EQ(links[0]->values[1].second.text, "Test_Thing.Id=\"a\\\"b\\\\c\"");
  EXPECT_EQ(links[1]->values[0].second.kind, Kind::kReference);
  EXPECT_EQ(links[1]->values[0].second.text, "Test_Thing.Id=\"z\"");

  // Only exactly that class; subclasses have their own lists.
  EXPECT_TRUE(repository_.staticInstances(kNamespace, "Test_Multi").size() == 1);
  EXPECT_TRUE(repository_.staticInstances(kNamespace, "Nope").empty());
  EXPECT_TRUE(repository_.staticInstances("root/none", "Test_Thing").empty());
}

TEST_F(MofReaderTest, LookupsIgnoreCaseAndKeepTheDeclaredSpelling) {
  reader_.loadText("class Test_MixedCase { string PropName; uint8 DoIt(); };", "case.mof");
  const ClassDecl* decl = repository_.findClass("ROOT/TEST", "test_mixedcase");
  ASSERT_NE(decl, nullptr);
  EXPECT_EQ(decl->name(), "Test_MixedCase");
  EXPECT_EQ(decl->findProperty("PROPNAME")->name, "PropName");
  EXPECT_EQ(decl->findMethod("doit")->name, "DoIt");
  EXPECT_EQ(repository_.findQualifier("Root/Test", "KEY")->name, "Key");
  EXPECT_EQ(repository_.findClass(kNamespace, "Test_MixedCas"), nullptr);
  EXPECT_EQ(repository_.findClass("root/other", "Test_MixedCase"), nullptr);
}

TEST_F(MofReaderTest, IsAAndClassAndSubclassesFollowTheHierarchyInLoadOrder) {
  reader_.loadText(R"(
    class T_A { };
    class T_B : T_A { };
    class T_C : T_A { };
    class T_D : T_B { };
    class T_E : T_C { };
    class T_F : T_B { };
    class T_Other { };
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
  const QualifierDecl* key = repository_.findQualifier(kNamespace, "Key");
  EXPECT_EQ(key->name, "Key");
  EXPECT_TRUE(key->defaultValue.boolean);

  // A bare non-boolean qualifier takes its declaration's default.
  const PropertyDecl* property = repository_.findClass(kNamespace, "Test_Q")->findProperty("S");
  EXPECT_EQ(property->qualifiers[0].value.integer, 1u);
  EXPECT_EQ(property->qualifiers[1].value.elements[1].text, "green");
}

}  // namespace
}  // namespace cmpihost
