// Our schema/ declares DMTF classes by hand; these tests hold it to DMTF's
// facts, so that what a provider does in the embedded host also works in a
// CIMOM that holds the real DMTF schema.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "SchemaComparison.h"
#include "cmpihost/ClassRepository.h"
#include "cmpihost/MofReader.h"
#include "support/ProgramRun.h"

namespace diagcore_test {
namespace {

using cmpihost::CimType;
using cmpihost::ClassDecl;
using cmpihost::ClassRepository;
using cmpihost::MofValue;
using cmpihost::Qualifier;
using cmpihost::TypeDecl;
using diagcore_test::ReadFile;
using ::testing::IsEmpty;

const char kNameSpace[] = "root/cimv2";

std::string OurSchemaPath() {
  return std::string(DIAGCORE_SOURCE_DIR) + "/schema/diagcore.mof";
}

std::string DmtfSchemaPath() {
  return std::string(DIAGCORE_SHARED_DIR) + "/dmtf-cim-schema-2.41/cim_schema_2.41.0.mof";
}

// The reader's complaint about the file, or "" when it loaded.
std::string Load(ClassRepository& repository, const std::string& path) {
  try {
    cmpihost::MofReader(repository, kNameSpace).loadFile(path);
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

// The classes our schema must declare, in name order: those the library
// serves, their superclasses, and every class their references and embedded
// instances name.
std::vector<std::string> OurClasses() {
  std::istringstream in(
      ReadFile(std::string(DIAGCORE_SOURCE_DIR) + "/tests/schema/expected/our-classes.txt"));
  std::vector<std::string> names;
  for (std::string name; std::getline(in, name);) {
    names.push_back(name);
  }
  return names;
}

constexpr std::array<const char*, 15> kOurQualifiers{
    "Association", "Aggregation",      "Indication",     "Abstract", "Exception",
    "Aggregate",   "EmbeddedInstance", "EmbeddedObject", "In",       "Key",
    "Out",         "Override",         "Propagated",     "Required", "Write"};

// Names every class that `type` or an EmbeddedInstance qualifier refers to
// and that the repository lacks.
void CollectUnresolved(const ClassRepository& repository, const std::string& subject,
                       const TypeDecl& type, const std::vector<Qualifier>& qualifiers,
                       std::vector<std::string>& unresolved) {
  if (type.type == CimType::kReference &&
      repository.findClass(kNameSpace, type.refClass) == nullptr) {
    unresolved.push_back(subject + " refers to " + type.refClass);
  }
  for (const Qualifier& qualifier : qualifiers) {
    if (qualifier.name == "EmbeddedInstance" && qualifier.value.kind == MofValue::Kind::kString &&
        repository.findClass(kNameSpace, qualifier.value.text) == nullptr) {
      unresolved.push_back(subject + " embeds " + qualifier.value.text);
    }
  }
}

TEST(OurSchema, LoadsAloneAndDeclaresEveryClassItNames) {
  ClassRepository ours;
  ASSERT_EQ(Load(ours, OurSchemaPath()), "");

  std::vector<std::string> names;
  std::vector<std::string> unresolved;
  for (const ClassDecl* decl : ours.classes(kNameSpace)) {
    names.push_back(decl->name());
    if (!decl->superName().empty() && ours.findClass(kNameSpace, decl->superName()) == nullptr) {
      unresolved.push_back(decl->name() + " derives from " + decl->superName());
    }
    for (const auto& property : decl->properties()) {
      CollectUnresolved(ours, decl->name() + "." + property.name, property.type,
                        property.qualifiers, unresolved);
    }
    for (const auto& method : decl->methods()) {
      const std::string subject = decl->name() + "." + method.name;
      CollectUnresolved(ours, subject, method.returnType, method.qualifiers, unresolved);
      for (const auto& parameter : method.parameters) {
        CollectUnresolved(ours, subject + "(" + parameter.name + ")", parameter.type,
                          parameter.qualifiers, unresolved);
      }
    }
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, OurClasses());
  EXPECT_THAT(unresolved, IsEmpty());
}

TEST(OurSchema, EveryClassAgreesWithDmtf) {
  if (!std::filesystem::exists(DmtfSchemaPath())) {
    GTEST_SKIP() << "no DMTF schema at " << DmtfSchemaPath();
  }
  ClassRepository ours;
  ClassRepository dmtf;
  ASSERT_EQ(Load(ours, OurSchemaPath()), "");
  ASSERT_EQ(Load(dmtf, DmtfSchemaPath()), "");
  ASSERT_THAT(ours.classes(kNameSpace), ::testing::SizeIs(OurClasses().size()));

  const SchemaComparison comparison(ours, dmtf, kNameSpace);
  std::vector<std::string> differences;
  for (const ClassDecl* decl : ours.classes(kNameSpace)) {
    const std::vector<std::string> found = comparison.classDifferences(*decl);
    differences.insert(differences.end(), found.begin(), found.end());
  }
  for (const char* name : kOurQualifiers) {
    const std::vector<std::string> found = comparison.qualifierDifferences(name);
    differences.insert(differences.end(), found.begin(), found.end());
  }
  EXPECT_THAT(differences, IsEmpty());
}

}  // namespace
}  // namespace diagcore_test
