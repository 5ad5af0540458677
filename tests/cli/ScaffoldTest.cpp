// `cmpihost new`: what it prints and writes, and the folders and prefixes
// it refuses. That the project builds, passes its test and is served is
// proven against the installed tree (tests/install, install_scaffold).
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "RunCommand.h"

namespace cmpihost::testing {
namespace {

const char* const kFiles[] = {"CMakeLists.txt", "NETDDiag.cpp",      "NETDDiagTest.cpp",
                              "netddiag.mof",   "netddiag-host.mof", "netddiag.reg",
                              "README.md"};

TEST(ScaffoldTest, WritesTheProjectAndSaysHowToBuildIt) {
  const ScratchDir scratch;
  const std::string dir = scratch.path() + "/netd";
  const CommandResult result = RunCmpihost({"new", "NETD", dir});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  std::string expected;
  for (const char* file : kFiles) {
    expected += "wrote " + dir + "/" + file + "\n";
  }
  expected += "build and test: cmake -S " + dir + " -B " + dir +
              "/build -DCMAKE_PREFIX_PATH=<diagcore's prefix> && cmake --build " + dir +
              "/build && ctest --test-dir " + dir + "/build\n";
  EXPECT_EQ(result.out, expected);
  for (const char* file : kFiles) {
    const std::string text = diagcore_test::ReadFile(dir + "/" + file);
    EXPECT_EQ(text.find("@"), text.find("@P@")) << file;  // no placeholder is left
    EXPECT_EQ(text.find("@P@"), std::string::npos) << file;
    EXPECT_EQ(text.find("@N@"), std::string::npos) << file;
    EXPECT_EQ(text.find("@L@"), std::string::npos) << file;
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir),
                          std::filesystem::directory_iterator()),
            static_cast<long>(std::size(kFiles)));

  const std::string empty = scratch.path() + "/empty";
  std::filesystem::create_directory(empty);
  const CommandResult intoEmpty = RunCmpihost({"new", "Acme2", empty});
  EXPECT_EQ(intoEmpty.exitCode, 0) << intoEmpty.err;
  EXPECT_NE(diagcore_test::ReadFile(empty + "/acme2diag.reg").find("provider: Acme2Diag\n"),
            std::string::npos);
}

TEST(ScaffoldTest, RefusesBadPrefixesAndFoldersItWouldOverwrite) {
  const ScratchDir scratch;
  const std::string full = scratch.path() + "/full";
  std::filesystem::create_directory(full);
  scratch.write("full/mine.cpp", "int mine;\n");
  const std::string file = scratch.write("afile", "");
  const struct {
    std::vector<std::string> args;
    std::string err;
  } cases[] = {
      {{"new"}, "cmpihost: new: missing PREFIX (usage: cmpihost new PREFIX DIR)\n"},
      {{"new", "NETD"}, "cmpihost: new: missing DIR (usage: cmpihost new PREFIX DIR)\n"},
      {{"new", "NETD", "a", "b"},
       "cmpihost: new: unexpected argument \"b\" (usage: cmpihost new PREFIX DIR)\n"},
      {{"new", "NET_D", scratch.path() + "/x"},
       "cmpihost: new: class prefix \"NET_D\" is not a letter followed by letters and digits "
       "(e.g. NETD)\n"},
      {{"new", "1NET", scratch.path() + "/x"},
       "cmpihost: new: class prefix \"1NET\" is not a letter followed by letters and digits "
       "(e.g. NETD)\n"},
      {{"new", "cim", scratch.path() + "/x"},
       "cmpihost: new: class prefix CIM is the DMTF's; choose one of your own (e.g. NETD)\n"},
      {{"new", "NETD", full},
       "cmpihost: new: " + full + " is not empty; give a new or empty folder\n"},
      {{"new", "NETD", file}, "cmpihost: new: " + file + " exists and is not a folder\n"},
      {{"new", "NETD", file + "/sub"},
       "cmpihost: new: cannot create the folder " + file + "/sub: Not a directory\n"},
  };
  for (const auto& c : cases) {
    const CommandResult result = RunCmpihost(c.args);
    EXPECT_EQ(result.exitCode, 2) << c.err;
    EXPECT_EQ(result.out, "") << c.err;
    EXPECT_EQ(result.err, c.err);
  }
  EXPECT_FALSE(std::filesystem::exists(scratch.path() + "/x"));
  EXPECT_EQ(diagcore_test::ReadFile(full + "/mine.cpp"), "int mine;\n");
}

}  // namespace
}  // namespace cmpihost::testing
