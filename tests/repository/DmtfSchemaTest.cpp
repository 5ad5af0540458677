// The whole DMTF CIM schema 2.41 loads, and what it declares comes out
// right: inheritance chains, keys at their inherited positions, types,
// references and method parameters.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "repository/MofReader.h"

namespace cmpihost {
namespace {

constexpr const char* kNamespace = "root/cimv2";

class DmtfSchemaTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    const std::filesystem::path schema = std::filesystem::path(DIAGCORE_SHARED_DIR) /
                                         "dmtf-cim-schema-2.41" / "cim_schema_2.41.0.mof";
    if (!std::filesystem::exists(schema)) {
      return;
    }
    repository_ = new ClassRepository();
    MofReader reader(*repository_, kNamespace);
    reader.loadFile(schema.string());
  }
  static void TearDownTestSuite() {
    delete repository_;
    repository_ = nullptr;
  }
  void SetUp() override {
    if (repository_ == nullptr) {
      GTEST_SKIP() << "the DMTF schema is not under " << DIAGCORE_SHARED_DIR;
    }
  }

  static const ClassDecl& classNamed(const char* name) {
    const ClassDecl* decl = repository_->findClass(kNamespace, name);
    if (decl == nullptr) {
      throw std::runtime_error(std::string("no class ") + name);
    }
    return *decl;
  }

  static ClassRepository* repository_;
};

ClassRepository* DmtfSchemaTest::repository_ = nullptr;

TEST_F(DmtfSchemaTest, LoadsEveryClassWithQualifiers) {
  EXPECT_GT(repository_->classes(kNamespace).size(), 1400u);
  EXPECT_EQ(repository_->namespaces(), std::vector<std::string>{kNamespace});
  ASSERT_NE(repository_->findQualifier(kNamespace, "ValueMap"), nullptr);
  EXPECT_TRUE(repository_->findQualifier(kNamespace, "ValueMap")->type.isArray);
}

TEST_F(DmtfSchemaTest, DiagnosticServiceDescendsFromManagedElement) {
  std::vector<std::string> chain;
  for (const ClassDecl* decl = &classNamed("cim_diagnosticservice"); decl != nullptr;
       decl = decl->superName().empty() ? nullptr
                                        : repository_->findClass(kNamespace, decl->superName())) {
    chain.push_back(decl->name());
  }
  EXPECT_EQ(chain, (std::vector<std::string>{"CIM_DiagnosticService", "CIM_Service",
                                             "CIM_EnabledLogicalElement", "CIM_LogicalElement",
                                             "CIM_ManagedSystemElement", "CIM_ManagedElement"}));
  EXPECT_TRUE(repository_->isA(kNamespace, "CIM_DiagnosticService", "CIM_ManagedElement"));
  EXPECT_TRUE(classNamed("CIM_DiagnosticService").isAbstract());

  const std::vector<const ClassDecl*> services =
      repository_->classAndSubclasses(kNamespace, "CIM_Service");
  ASSERT_FALSE(services.empty());
  EXPECT_EQ(services.front()->name(), "CIM_Service");
  for (const ClassDecl* decl : services) {
    EXPECT_TRUE(repository_->isA(kNamespace, decl->name(), "CIM_Service")) << decl->name();
  }
}

TEST_F(DmtfSchemaTest, ServiceKeysKeepTheirPositionsAndInheritance) {
  for (const char* name : {"CIM_Service", "CIM_DiagnosticService"}) {
    SCOPED_TRACE(name);
    std::vector<std::string> keys;
    for (const PropertyDecl* key : classNamed(name).keyProperties()) {
      keys.push_back(key->name);
      EXPECT_EQ(key->type.type, CimType::kString);
    }
    // Name overrides CIM_ManagedSystemElement's and keeps its place there.
    EXPECT_EQ(keys, (std::vector<std::string>{"Name", "SystemCreationClassName", "SystemName",
                                              "CreationClassName"}));
  }
  const PropertyDecl* name = classNamed("CIM_Service").findProperty("Name");
  EXPECT_EQ(name->classOrigin, "CIM_ManagedSystemElement");
  EXPECT_FALSE(classNamed("CIM_ManagedSystemElement").findProperty("Name")->isKey);
  // Inherited defaults come along.
  const PropertyDecl* enabled = classNamed("CIM_DiagnosticService").findProperty("EnabledState");
  EXPECT_EQ(enabled->defaultValue.integer, 5u);
}

TEST_F(DmtfSchemaTest, DiagnosticSettingDataHasItsDeclaredTypes) {
  const ClassDecl& decl = classNamed("CIM_DiagnosticSettingData");
  struct Expected {
    const char* name;
    CimType type;
    bool isArray;
  };
  for (const Expected& expected : {
           Expected{"InstanceID", CimType::kString, false},
           Expected{"HaltOnError", CimType::kBoolean, false},
           Expected{"PercentOfTestCoverage", CimType::kUint8, false},
           Expected{"LoopControlParameter", CimType::kString, true},
           Expected{"LoopControl", CimType::kUint16, true},
           Expected{"ResultPersistence", CimType::kUint32, false},
           Expected{"QueryTimeout", CimType::kUint32, false},
       }) {
    SCOPED_TRACE(expected.name);
    const PropertyDecl* property = decl.findProperty(expected.name);
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(property->type.type, expected.type);
    EXPECT_EQ(property->type.isArray, expected.isArray);
  }
  EXPECT_TRUE(decl.findProperty("InstanceID")->isKey);
  EXPECT_EQ(decl.findProperty("NonDestructive")->defaultValue.kind, MofValue::Kind::kBoolean);
  EXPECT_FALSE(decl.findProperty("NonDestructive")->defaultValue.boolean);
}

TEST_F(DmtfSchemaTest, AssociationsDeclareKeyReferences) {
  const ClassDecl& decl = classNamed("CIM_ServiceAffectsElement");
  EXPECT_TRUE(decl.isAssociation());
  const PropertyDecl* affected = decl.findProperty("AffectedElement");
  ASSERT_NE(affected, nullptr);
  EXPECT_EQ(affected->type.type, CimType::kReference);
  EXPECT_EQ(affected->type.refClass, "CIM_ManagedElement");
  EXPECT_TRUE(affected->isKey);
  EXPECT_EQ(decl.findProperty("AffectingElement")->type.refClass, "CIM_Service");
  // A subclass of an association is one without saying so again.
  for (const ClassDecl* sub : repository_->classAndSubclasses(kNamespace, decl.name())) {
    EXPECT_TRUE(sub->isAssociation()) << sub->name();
  }
}

TEST_F(DmtfSchemaTest, RunDiagnosticTakesReferencesInAndJobOut) {
  const MethodDecl* run = classNamed("CIM_DiagnosticService").findMethod("RunDiagnostic");
  ASSERT_NE(run, nullptr);
  EXPECT_EQ(run->returnType.type, CimType::kUint32);
  ASSERT_EQ(run->parameters.size(), 4u);
  const char* names[] = {"ManagedElement", "DiagSetting", "JobSetting", "Job"};
  const char* targets[] = {"CIM_ManagedElement", "CIM_DiagnosticSetting", "CIM_JobSettingData",
                           "CIM_ConcreteJob"};
  for (std::size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(names[i]);
    EXPECT_EQ(run->parameters[i].name, names[i]);
    EXPECT_EQ(run->parameters[i].type.type, CimType::kReference);
    EXPECT_EQ(run->parameters[i].type.refClass, targets[i]);
  }
  EXPECT_TRUE(run->parameters[0].isIn);
  EXPECT_FALSE(run->parameters[0].isOut);
  EXPECT_FALSE(run->parameters[3].isIn);
  EXPECT_TRUE(run->parameters[3].isOut);
  // Inherited methods come first: RequestStateChange is CIM_EnabledLogicalElement's.
  const ClassDecl& service = classNamed("CIM_DiagnosticService");
  EXPECT_EQ(service.findMethod("RequestStateChange")->classOrigin, "CIM_EnabledLogicalElement");
}

}  // namespace
}  // namespace cmpihost
