// The DMTF check is only as good as the comparison behind it: each kind of
// disagreement must be reported, exactly once and by name, and agreement
// must report nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <vector>

#include "SchemaComparison.h"
#include "repository/ClassRepository.h"
#include "repository/MofReader.h"

namespace diagcore_test {
namespace {

using cmpihost::ClassDecl;
using cmpihost::ClassRepository;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char kNameSpace[] = "root/test";

constexpr const char kQualifiers[] = R"(
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Abstract : boolean = false, Scope(class, association, indication),
    Flavor(EnableOverride, Restricted);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Write : boolean = false, Scope(property);
Qualifier Note : string = null, Scope(any);
)";

constexpr const char kClasses[] = R"(
[Abstract] class T_Base {
  [Key] string Id;
  [Key] string Scope;
};
[Abstract] class T_Peer : T_Base {
};
class T_Thing : T_Base {
  uint16 Codes[];
  [Write] uint32 Count = 3;
  uint32 Run([In] T_Base REF Target, [In(false), Out] string Result[]);
};
[Association] class T_Link {
  [Key] T_Base REF Left;
  [Key] T_Base REF Right;
};
)";

std::string Reference() {
  return std::string(kQualifiers) + kClasses;
}

// The reference text with its one occurrence of `from` replaced.
std::string Mutated(const std::string& from, const std::string& to) {
  std::string text = Reference();
  const std::size_t at = text.find(from);
  if (at == std::string::npos || text.find(from, at + 1) != std::string::npos) {
    ADD_FAILURE() << "'" << from << "' does not occur exactly once";
    return text;
  }
  return text.replace(at, from.size(), to);
}

std::string LoadText(ClassRepository& repository, const std::string& text) {
  try {
    cmpihost::MofReader(repository, kNameSpace).loadText(text, "test.mof");
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

struct Case {
  const char* what;
  const char* name;  // of the class or qualifier compared, looked up case-insensitively
  std::string from;
  std::string to;
  std::string expected;  // "" when the two must agree
};

// Compares the reference text with each case's mutation of it.
template <typename Differences>
void ExpectEachCase(const std::vector<Case>& cases, Differences differences) {
  ClassRepository dmtf;
  ASSERT_EQ(LoadText(dmtf, Reference()), "");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ClassRepository ours;
    ASSERT_EQ(LoadText(ours, Mutated(c.from, c.to)), "");
    const std::vector<std::string> found =
        differences(SchemaComparison(ours, dmtf, kNameSpace), ours, c.name);
    if (c.expected.empty()) {
      EXPECT_THAT(found, IsEmpty());
    } else {
      EXPECT_THAT(found, ElementsAre(c.expected));
    }
  }
}

TEST(SchemaComparison, ReportsEachKindOfClassDisagreementByName) {
  const auto classDifferences = [](const SchemaComparison& comparison, const ClassRepository& ours,
                                   const char* name) {
    const ClassDecl* decl = ours.findClass(kNameSpace, name);
    return decl == nullptr ? std::vector<std::string>{"no class"}
                           : comparison.classDifferences(*decl);
  };
  ExpectEachCase(
      {
          {"identical", "T_Thing", "class T_Thing", "class T_Thing", ""},
          {"property type", "T_Thing", "uint16 Codes[]", "uint32 Codes[]",
           "T_Thing.Codes: type uint32[] here but uint16[] in DMTF"},
          {"array-ness", "T_Thing", "uint16 Codes[]", "uint16 Codes",
           "T_Thing.Codes: type uint16 here but uint16[] in DMTF"},
          {"property spelling", "T_Thing", "uint16 Codes[]", "uint16 CODES[]",
           "T_Thing.Codes: spelt 'CODES' here but 'Codes' in DMTF"},
          {"Key", "T_Thing", "[Key] string Scope", "string Scope",
           "T_Thing.Scope: Key false here but true in DMTF"},
          {"default value", "T_Thing", "Count = 3", "Count = 4",
           "T_Thing.Count: default 4 here but 3 in DMTF"},
          {"default missing", "T_Thing", "Count = 3", "Count",
           "T_Thing.Count: default null here but 3 in DMTF"},
          {"property qualifier", "T_Thing", "[Write] uint32", "uint32",
           "T_Thing.Count: qualifier Write false here but true in DMTF"},
          {"missing property", "T_Thing", "  uint16 Codes[];\n", "", "T_Thing.Codes: missing here"},
          {"extra property", "T_Thing", "  uint16 Codes[];\n",
           "  uint16 Codes[];\n  string Extra;\n", "T_Thing.Extra: not in DMTF"},
          {"property order", "T_Thing", "  uint16 Codes[];\n  [Write] uint32 Count = 3;\n",
           "  [Write] uint32 Count = 3;\n  uint16 Codes[];\n",
           "T_Thing: properties in order (Id, Scope, Count, Codes) here but "
           "(Id, Scope, Codes, Count) in DMTF"},
          {"superclass", "T_Thing", "class T_Thing : T_Base", "class T_Thing : T_Peer",
           "T_Thing: superclass T_Peer here but T_Base in DMTF"},
          {"class qualifier", "T_Thing", "class T_Thing : T_Base",
           "[Abstract] class T_Thing : T_Base",
           "T_Thing: qualifier Abstract true here but false in DMTF"},
          {"class spelling", "T_Thing", "class T_Thing", "class T_THING",
           "T_Thing: spelt 'T_THING' here but 'T_Thing' in DMTF"},
          {"class unknown to DMTF", "T_Thang", "class T_Thing", "class T_Thang",
           "T_Thang: no such class in DMTF"},
          {"reference class", "T_Link", "T_Base REF Left", "T_Peer REF Left",
           "T_Link.Left: type T_Peer REF here but T_Base REF in DMTF"},
          {"return type", "T_Thing", "uint32 Run(", "uint16 Run(",
           "T_Thing.Run: returns uint16 here but uint32 in DMTF"},
          {"missing method", "T_Thing",
           "  uint32 Run([In] T_Base REF Target, [In(false), Out] string Result[]);\n", "",
           "T_Thing.Run: missing here"},
          {"parameter order", "T_Thing", "[In] T_Base REF Target, [In(false), Out] string Result[]",
           "[In(false), Out] string Result[], [In] T_Base REF Target",
           "T_Thing.Run: parameters (Result, Target) here but (Target, Result) in DMTF"},
          {"parameter spelling", "T_Thing", "REF Target", "REF target",
           "T_Thing.Run(Target): spelt 'target' here but 'Target' in DMTF"},
          {"parameter reference class", "T_Thing", "[In] T_Base REF", "[In] T_Peer REF",
           "T_Thing.Run(Target): type T_Peer REF here but T_Base REF in DMTF"},
          {"parameter array-ness", "T_Thing", "string Result[]", "string Result",
           "T_Thing.Run(Result): type string here but string[] in DMTF"},
          {"parameter direction", "T_Thing", "[In(false), Out]", "[Out]",
           "T_Thing.Run(Result): direction In, Out here but Out in DMTF"},
      },
      classDifferences);
}

TEST(SchemaComparison, ReportsEachKindOfQualifierDisagreementByName) {
  const auto qualifierDifferences = [](const SchemaComparison& comparison,
                                       const ClassRepository& /*ours*/, const char* name) {
    return comparison.qualifierDifferences(name);
  };
  ExpectEachCase(
      {
          {"identical", "Key", "Qualifier Key", "Qualifier Key", ""},
          {"scope order does not matter", "Key", "Scope(property, reference)",
           "Scope(reference, property)", ""},
          {"type", "Note", "Note : string", "Note : uint32",
           "Qualifier Note: type uint32 here but string in DMTF"},
          {"default", "In", "In : boolean = true", "In : boolean = false",
           "Qualifier In: default false here but true in DMTF"},
          {"scopes", "Note", "Scope(any)", "Scope(property, class)",
           "Qualifier Note: scopes (class, property) here but (any) in DMTF"},
          {"flavors", "Write", "Scope(property);", "Scope(property), Flavor(DisableOverride);",
           "Qualifier Write: flavors (DisableOverride) here but () in DMTF"},
          {"spelling", "Key", "Qualifier Key", "Qualifier KEY",
           "Qualifier Key: spelt 'KEY' here but 'Key' in DMTF"},
          {"undeclared here", "Note", "Qualifier Note : string = null, Scope(any);\n", "",
           "Qualifier Note: not declared here"},
      },
      qualifierDifferences);
}

}  // namespace
}  // namespace diagcore_test
