// The whole DMTF CIM schema 2.41 loads, and what it declares comes out
// right: inheritance chains, keys at their inherited positions, types,
// references and method parameters.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "HostTestSupport.h"
#include "cmpihost/MofReader.h"

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

TEST_F(DmtfSchemaTest, DiagnosticClassesKeepInheritanceKeysTypesAndParameters) {
  std::vector<std::string> chain;
  for (const ClassDecl* decl = &classNamed("cim_diagnosticservice"); decl != nullptr;
       decl = repository_->findClass(kNamespace, decl->superName())) {
    chain.push_back(decl->name());
  }
  EXPECT_EQ(chain, (std::vector<std::string>{"CIM_DiagnosticService", "CIM_Service",
                                             "CIM_EnabledLogicalElement", "CIM_LogicalElement",
                                             "CIM_ManagedSystemElement", "CIM_ManagedElement"}));
  EXPECT_TRUE(classNamed("CIM_DiagnosticService").isAbstract());
  for (const ClassDecl* decl : repository_->classAndSubclasses(kNamespace, "CIM_Service")) {
    EXPECT_TRUE(repository_->isA(kNamespace, decl->name(), "CIM_ManagedElement")) << decl->name();
  }

  // Name overrides CIM_ManagedSystemElement's (not a key there) and keeps
  // its place; inherited defaults and methods come along.
  std::vector<std::string> keys;
  for (const PropertyDecl* key : classNamed("CIM_DiagnosticService").keyProperties()) {
    keys.push_back(key->name + ": " + testing::Show(key->type) + " from " + key->classOrigin);
  }
  EXPECT_EQ(keys, (std::vector<std::string>{"Name: string from CIM_ManagedSystemElement",
                                            "SystemCreationClassName: string from CIM_Service",
                                            "SystemName: string from CIM_Service",
                                            "CreationClassName: string from CIM_Service"}));
  EXPECT_FALSE(classNamed("CIM_ManagedSystemElement").findProperty("Name")->isKey);
  EXPECT_EQ(
      testing::Show(classNamed("CIM_DiagnosticService").findProperty("EnabledState")->defaultValue),
      "5");
  EXPECT_EQ(classNamed("CIM_DiagnosticService").findMethod("RequestStateChange")->classOrigin,
            "CIM_EnabledLogicalElement");

  const std::vector<std::string> expected = {
      "CIM_DiagnosticSettingData.InstanceID: string key",
      "CIM_DiagnosticSettingData.HaltOnError: boolean",
      "CIM_DiagnosticSettingData.PercentOfTestCoverage: uint8",
      "CIM_DiagnosticSettingData.LoopControlParameter: string[]",
      "CIM_DiagnosticSettingData.LoopControl: uint16[]",
      "CIM_DiagnosticSettingData.ResultPersistence: uint32",
      "CIM_DiagnosticSettingData.NonDestructive: boolean = false",
      "CIM_ServiceAffectsElement.AffectedElement: CIM_ManagedElement REF key",
      "CIM_ServiceAffectsElement.AffectingElement: CIM_Service REF key",
  };
  for (const std::string& line : expected) {
    const std::string className = line.substr(0, line.find('.'));
    const std::string name =
        line.substr(className.size() + 1, line.find(':') - className.size() - 1);
    const PropertyDecl* property = classNamed(className.c_str()).findProperty(name);
    ASSERT_NE(property, nullptr) << line;
    EXPECT_EQ(className + "." + property->name + ": " + testing::Show(property->type) +
                  (property->isKey ? " key" : "") +
                  (property->defaultValue.kind == MofValue::Kind::kNull
                       ? ""
                       : " = " + testing::Show(property->defaultValue)),
              line);
  }
  // A subclass of an association is one without saying so again.
  EXPECT_TRUE(classNamed("CIM_ServiceAffectsElement").isAssociation());
  for (const ClassDecl* sub :
       repository_->classAndSubclasses(kNamespace, "CIM_ServiceAffectsElement")) {
    EXPECT_TRUE(sub->isAssociation()) << sub->name();
  }

  const MethodDecl* run = classNamed("CIM_DiagnosticService").findMethod("RunDiagnostic");
  ASSERT_NE(run, nullptr);
  std::vector<std::string> parameters{testing::Show(run->returnType)};
  for (const ParameterDecl& parameter : run->parameters) {
    parameters.push_back(parameter.name + ": " + testing::Show(parameter.type) +
                         (parameter.isIn ? " in" : "") + (parameter.isOut ? " out" : ""));
  }
  EXPECT_EQ(parameters,
            (std::vector<std::string>{"uint32", "ManagedElement: CIM_ManagedElement REF in",
                                      "DiagSetting: CIM_DiagnosticSetting REF in",
                                      "JobSetting: CIM_JobSettingData REF in",
                                      "Job: CIM_ConcreteJob REF out"}));
}

}  // namespace
}  // namespace cmpihost
