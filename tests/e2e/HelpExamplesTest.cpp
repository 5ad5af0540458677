// Every example of cmpihost's help, run as a user would paste it into a
// shell: the general help's own definitions of $FSD, $SERVICE and $ROOT
// against a prefix laid out as the installed tree is (its folders linked to
// the sources and the build), then the example. An example that names a
// class the shipped schema lacks, or an object the example does not serve,
// fails here.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "E2eSupport.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

// The text between the line that ends with `from` and the line that starts
// with `to` ("" for the end), each line without `indent` leading spaces.
std::string Block(const std::string& text, const std::string& from, const std::string& to,
                  std::size_t indent) {
  const std::size_t start = text.find(from + "\n");
  if (start == std::string::npos) {
    return "";
  }
  const std::size_t begin = start + from.size() + 1;
  const std::size_t end = to.empty() ? text.size() : text.find("\n" + to, begin) + 1;
  std::string block;
  for (const std::string& line : Lines(text.substr(begin, end - begin))) {
    const bool indented = line.compare(0, indent, std::string(indent, ' ')) == 0;
    block += (indented ? line.substr(indent) : line) + "\n";
  }
  return block;
}

// The verbs the general help lists, in its order.
std::vector<std::string> VerbsOf(const std::string& help) {
  std::vector<std::string> verbs;
  for (const std::string& line : Lines(Block(help, "Verbs:", "\nPaths:", 0))) {
    if (line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ') {
      verbs.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
  }
  return verbs;
}

// share/diagcore and lib/diagcore as installed, made of links.
void LayOutPrefix(const fs::path& prefix) {
  const fs::path share = prefix / "share/diagcore";
  const fs::path example = share / "examples/filesystem-diag";
  fs::create_directories(example);
  fs::create_directories(prefix / "lib");
  fs::create_directories(prefix / "bin");
  fs::create_directory_symlink(fs::path(kSchemaMof).parent_path(), share / "schema");
  fs::create_directory_symlink(kExampleDir + "/mof", example / "mof");
  fs::create_directory_symlink(kExampleDir + "/deploy", example / "deploy");
  fs::create_directory_symlink(kExampleLibDir, prefix / "lib/diagcore");
  fs::create_symlink(kCmpihost, prefix / "bin/cmpihost");
}

ProgramResult RunExample(const ScratchDir& scratch, const std::string& definitions,
                         const std::string& example) {
  const std::string prefix = scratch.path() + "/prefix";
  const std::string script = "set -e\ncd '" + scratch.path() + "'\nP='" + prefix +
                             "'\nPATH=\"$P/bin:$PATH\"\n" + definitions + example;
  return RunProgram({"/bin/sh", "-c", script});
}

TEST(HelpExamplesTest, EveryExampleRunsAgainstTheShippedSchemaAndExample) {
  const ScratchDir scratch;
  LayOutPrefix(scratch.path() + "/prefix");
  const std::string help = RunProgram({kCmpihost, "--help"}).out;
  const std::string definitions = Block(help,
                                        "the prefix P, and name two of the example's "
                                        "objects. In a shell:",
                                        "  Then:", 4);
  ASSERT_NE(definitions.find("FSD="), std::string::npos) << help;

  std::vector<std::string> examples = {Block(help, "  Then:", "  Each verb's help", 4)};
  const std::vector<std::string> verbs = VerbsOf(help);
  ASSERT_GE(verbs.size(), 14U) << help;
  for (const std::string& verb : verbs) {
    if (verb != "help") {
      const std::string verbHelp = RunProgram({kCmpihost, verb, "--help"}).out;
      examples.push_back(Block(verbHelp, "  Example:", "", 4));
      EXPECT_NE(examples.back(), "") << "no example in the help of " << verb;
    }
  }
  for (const std::string& example : examples) {
    const ProgramResult result = RunExample(scratch, definitions, example);
    EXPECT_EQ(result.exitCode, 0) << example << result.err;
    EXPECT_NE(result.out, "") << example;
  }
}

}  // namespace
}  // namespace e2e
