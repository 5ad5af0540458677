// "#pragma include" and "#pragma namespace" across files: relative paths,
// namespaces that follow, and errors that name the file they are in.
#include <gtest/gtest.h>

#include <string>

#include "HostTestSupport.h"
#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

using testing::kQualifierDecls;
using testing::TempDir;

constexpr const char* kNamespace = "root/test";

// "file:line:column: problem" of the error loading `path` gives.
std::string LoadError(MofReader& reader, const std::string& path) {
  try {
    reader.loadFile(path);
  } catch (const MofError& error) {
    return error.what();
  }
  return "loaded without error: " + path;
}

TEST(MofIncludeTest, IncludesResolveAgainstTheIncludingFilesFolder) {
  TempDir dir;
  dir.write("sub/qualifiers.mof", kQualifierDecls);
  // A file that only declares qualifiers may be included twice.
  dir.write("sub/classes.mof",
            "#pragma include (\"qualifiers.mof\")\n"
            "#pragma include (\"deeper/more.mof\")\n"
            "class Test_Sub : Test_More { };\n");
  dir.write("sub/deeper/more.mof", "[Description(\"more\")] class Test_More { };\n");
  const std::string main = dir.write("main.mof",
                                     "#pragma locale (\"en_US\")\n"
                                     "#pragma include (\"sub/qualifiers.mof\")\n"
                                     "#pragma include (\"sub/classes.mof\")\n"
                                     "class Test_Main : Test_Sub { };\n");
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  reader.loadFile(main);
  std::vector<std::string> names;
  for (const ClassDecl* decl : repository.classes(kNamespace)) {
    names.push_back(decl->name());
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Test_More", "Test_Sub", "Test_Main"}));
}

TEST(MofIncludeTest, NamespacePragmaAppliesToWhateverFollowsIncludedFilesToo) {
  TempDir dir;
  dir.write("b.mof", std::string("#pragma namespace (\"root/b\")\n") + kQualifierDecls +
                         "class Test_B { [Key] string Id; };\n");
  const std::string main =
      dir.write("a.mof", std::string(kQualifierDecls) +
                             "class Test_Default { };\n"
                             "#pragma namespace (\"root/a\")\n" +
                             kQualifierDecls +
                             "class Test_A { };\n"
                             "#pragma include (\"b.mof\")\n"
                             "instance of Test_B { Id = \"after the include\"; };\n");
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  reader.loadFile(main);
  EXPECT_EQ(repository.namespaces(), (std::vector<std::string>{"root/a", "root/b", "root/test"}));
  EXPECT_NE(repository.findClass(kNamespace, "Test_Default"), nullptr);
  EXPECT_NE(repository.findClass("root/a", "Test_A"), nullptr);
  EXPECT_EQ(repository.findClass("root/a", "Test_B"), nullptr);
  EXPECT_NE(repository.findClass("root/b", "Test_B"), nullptr);
  // The include is read in place, so its namespace pragma holds after it.
  EXPECT_EQ(repository.staticInstances("root/b", "Test_B").size(), 1u);

  // The next load starts in the reader's namespace again.
  reader.loadText("class Test_Next { };", "next.mof");
  EXPECT_NE(repository.findClass(kNamespace, "Test_Next"), nullptr);
}

TEST(MofIncludeTest, ErrorInAnIncludedFileNamesThatFileAndUndoesTheWholeLoad) {
  TempDir dir;
  const std::string broken = dir.write("parts/broken.mof", "class Test_Fine { };\n\n  class }");
  const std::string main = dir.write("main.mof", std::string(kQualifierDecls) +
                                                     "class Test_Before { };\n"
                                                     "#pragma include (\"parts/broken.mof\")\n");
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  EXPECT_EQ(LoadError(reader, main),
            broken + ":3:9: expected a class name after \"class\", found '}'");
  EXPECT_TRUE(repository.namespaces().empty());
  EXPECT_EQ(repository.findQualifier(kNamespace, "Key"), nullptr);
}

TEST(MofIncludeTest, UnreadableFilesAndIncludeCyclesAreErrorsAtTheInclude) {
  TempDir dir;
  const std::string a = dir.write("a.mof", "class Test_A { };\n#pragma include (\"b.mof\")\n");
  const std::string b = dir.write("b.mof", "\n  #pragma include (\"./a.mof\")\n");
  const std::string folder = dir.write("folder.mof", "#pragma include (\"sub\")\n");
  dir.write("sub/placeholder.mof", "");
  ClassRepository repository;
  MofReader reader(repository, kNamespace);

  EXPECT_EQ(LoadError(reader, a), b + ":2:3: include cycle: \"" + (dir.path() / "a.mof").string() +
                                      "\" is already being read");
  EXPECT_EQ(LoadError(reader, folder), folder + ":1:1: cannot read include file \"" +
                                           (dir.path() / "sub").string() + "\": it is a directory");
  const std::string missing = (dir.path() / "missing.mof").string();
  EXPECT_EQ(LoadError(reader, missing),
            missing + ":0:0: cannot read MOF file: No such file or directory");
  EXPECT_TRUE(repository.namespaces().empty());
}

TEST(MofIncludeTest, AnIncludeChainDeeperThanTheLimitStops) {
  TempDir dir;
  constexpr int kFiles = 70;
  for (int i = 0; i < kFiles; ++i) {
    dir.write("f" + std::to_string(i) + ".mof",
              "#pragma include (\"f" + std::to_string(i + 1) + ".mof\")\n");
  }
  dir.write("f" + std::to_string(kFiles) + ".mof", "class Test_Deep { };\n");
  ClassRepository repository;
  MofReader reader(repository, kNamespace);
  EXPECT_EQ(LoadError(reader, (dir.path() / "f0.mof").string()),
            (dir.path() / "f63.mof").string() + ":1:1: includes nest more than 64 levels deep");
  EXPECT_TRUE(repository.namespaces().empty());
}

}  // namespace
}  // namespace cmpihost
