// The repository's own rules, apart from the reader: refusing bad adds,
// keeping handed-out pointers valid, and answering many readers at once.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "HostTestSupport.h"
#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

constexpr const char* kNamespace = "root/test";

TEST(ClassRepositoryTest, AddClassRefusesDuplicatesAndMissingSuperclassesAddingNothing) {
  ClassRepository repository;
  repository.addClass(kNamespace, std::make_unique<ClassDecl>("Test_A", ""));
  EXPECT_THROW(repository.addClass(kNamespace, std::make_unique<ClassDecl>("TEST_a", "")),
               std::invalid_argument);
  EXPECT_THROW(repository.addClass(kNamespace, std::make_unique<ClassDecl>("Test_B", "Test_Nope")),
               std::invalid_argument);
  EXPECT_THROW(repository.addClass("root/other", std::make_unique<ClassDecl>("Test_C", "Test_A")),
               std::invalid_argument);
  EXPECT_THROW(repository.addClass(kNamespace, nullptr), std::invalid_argument);
  EXPECT_EQ(repository.classes(kNamespace).size(), 1u);
  EXPECT_EQ(repository.findClass(kNamespace, "test_a")->name(), "Test_A");
  EXPECT_EQ(repository.namespaces(), std::vector<std::string>{kNamespace});

  repository.addClass("Root/Other", std::make_unique<ClassDecl>("Test_A", ""));
  repository.addClass("ROOT/OTHER", std::make_unique<ClassDecl>("Test_B", "test_a"));
  // One namespace, named as first used; namespaces sort without case.
  repository.addClass("a/first", std::make_unique<ClassDecl>("Test_A", ""));
  EXPECT_EQ(repository.namespaces(),
            (std::vector<std::string>{"a/first", "Root/Other", "root/test"}));
  EXPECT_TRUE(repository.isA("root/other", "Test_B", "TEST_A"));
}

TEST(ClassRepositoryTest, PointersHandedOutSurviveLaterLoads) {
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  reader.loadText(std::string(testing::kQualifierDecls) +
                      "class Test_Thing { [Key] uint32 N; };\n"
                      "instance of Test_Thing { N = 0; };\n",
                  "first.mof");
  const ClassDecl* decl = repository.findClass(kNamespace, "Test_Thing");
  const StaticInstance* first = repository.staticInstances(kNamespace, "Test_Thing").at(0);
  const QualifierDecl* key = repository.findQualifier(kNamespace, "Key");

  std::string more;
  for (int i = 1; i <= 200; ++i) {
    more += "class Test_More" + std::to_string(i) + " : Test_Thing { };\n";
    more += "instance of Test_Thing { N = " + std::to_string(i) + "; };\n";
  }
  reader.loadText(more, "more.mof");

  ASSERT_EQ(repository.staticInstances(kNamespace, "Test_Thing").size(), 201u);
  EXPECT_EQ(repository.staticInstances(kNamespace, "Test_Thing")[0], first);
  EXPECT_EQ(first->values.at(0).second.integer, 0u);
  EXPECT_EQ(repository.findClass(kNamespace, "Test_Thing"), decl);
  EXPECT_EQ(decl->name(), "Test_Thing");
  EXPECT_EQ(repository.findQualifier(kNamespace, "Key"), key);
  EXPECT_EQ(repository.classAndSubclasses(kNamespace, "Test_Thing").size(), 201u);
}

TEST(ClassRepositoryTest, ManyThreadsReadALoadedRepositoryAndAgree) {
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  std::string text = testing::kQualifierDecls;
  text += "class Test_Root { [Key] string Id; };\n";
  for (int i = 0; i < 100; ++i) {
    text += "class Test_C" + std::to_string(i) + " : " +
            (i == 0 ? std::string("Test_Root") : "Test_C" + std::to_string(i / 2)) + " { string P" +
            std::to_string(i) + "; };\n";
  }
  reader.loadText(text, "tree.mof");
  const std::size_t expected = repository.classAndSubclasses(kNamespace, "Test_Root").size();
  ASSERT_EQ(expected, 101u);

  std::vector<std::size_t> seen(4, 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < seen.size(); ++t) {
    threads.emplace_back([&repository, &seen, t] {
      for (int round = 0; round < 50; ++round) {
        std::size_t found = 0;
        for (const ClassDecl* decl : repository.classAndSubclasses(kNamespace, "test_root")) {
          if (repository.isA(kNamespace, decl->name(), "Test_Root") &&
              repository.findClass(kNamespace, decl->name()) == decl &&
              decl->findProperty("ID") != nullptr) {
            ++found;
          }
        }
        seen[t] = found;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(seen, std::vector<std::size_t>(4, expected));
}

}  // namespace
}  // namespace cmpihost
