// The demo as CI runs it: demo.sh on the built cmpihost and plug-in. It must
// succeed on any machine, as root or not, and show every section, a run of
// each service on each file system, and passed and failed records.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "E2eSupport.h"

namespace e2e {
namespace {

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++count;
  }
  return count;
}

ProgramResult RunDemo() {
  return RunProgram(
      {"sh", ExampleDir() + "/demo.sh", CmpihostBinary(), ExampleLibDir(), SchemaMof()});
}

TEST(DemoTest, ShowsEverySectionAndRunsEachServiceOnEachFileSystem) {
  const ProgramResult elements = RunOnExample({"ein", "FSD_MountedFileSystem"});
  const std::size_t fileSystems = Lines(elements.out).size();
  ASSERT_GT(fileSystems, 0U);

  const ProgramResult demo = RunDemo();
  ASSERT_EQ(demo.exitCode, 0) << demo.err;
  EXPECT_EQ(demo.err, "");
  EXPECT_NE(demo.out.find(" The file-system diagnostic on " + HostName() + "\n"),
            std::string::npos);
  for (int section = 1; section <= 9; ++section) {
    EXPECT_EQ(Count(demo.out, "\n=== " + std::to_string(section) + ". "), 1U)
        << "section " << section;
  }
  // Nothing left unfilled.
  EXPECT_EQ(demo.out.find('@'), std::string::npos);

  EXPECT_EQ(Count(demo.out, "\n--- FreeSpaceCheck on "), fileSystems + 1);
  EXPECT_EQ(Count(demo.out, "\n--- WriteReadCheck on "), fileSystems + 1);
  EXPECT_EQ(Count(demo.out, "ReturnValue = "), 2 * fileSystems + 2);
  EXPECT_EQ(Count(demo.out, "instance of FSD_FileSystemDiagnosticRecord {"), 2 * fileSystems + 2);
  EXPECT_EQ(Count(demo.out, "instance of FSD_FileSystemDiagnosticService {"), 2U);
  EXPECT_EQ(Count(demo.out, "instance of FSD_FileSystemDiagnosticSettingData {"), 2U);
  EXPECT_EQ(Count(demo.out, "instance of FSD_FileSystemDiagnosticCapabilities {"), 2U);
  // Listed once, then once per service it is available to.
  EXPECT_EQ(Count(demo.out, "\n//localhost/root/cimv2:FSD_MountedFileSystem."), 3 * fileSystems);
  EXPECT_EQ(Count(demo.out, "instance of FSD_MountedFileSystem {"), 1U);

  // Passed (or skipped) and failed records, the failed ones saying why.
  EXPECT_GE(Count(demo.out, "    LoopsFailed = 0;"), 1U);
  EXPECT_EQ(Count(demo.out, "    ErrorCode = {\"NOT_MOUNTED\"};"), 2U);
  EXPECT_EQ(Count(demo.out, "    ManagedElementName = \"/nonexistent/fsd-demo\";"), 2U);
  EXPECT_EQ(Count(demo.out, "\n--- WriteReadCheck on /nonexistent/fsd-demo\nReturnValue = 4\n"),
            1U);
}

TEST(DemoTest, RefusesToRunWithoutItsArgumentsOrWithAPlugInThatCannotLoad) {
  const ProgramResult usage = RunProgram({"sh", ExampleDir() + "/demo.sh", CmpihostBinary()});
  EXPECT_EQ(usage.exitCode, 2);
  EXPECT_EQ(usage.out, "");
  EXPECT_EQ(usage.err, "usage: sh demo.sh CMPIHOST LIBDIR SCHEMA_MOF\n");

  const ScratchDir empty;
  const ProgramResult result =
      RunProgram({"sh", ExampleDir() + "/demo.sh", CmpihostBinary(), empty.path(), SchemaMof()});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("libfilesystemdiag.so of provider FileSystemElements is not in " +
                            empty.path()),
            std::string::npos)
      << result.err;
}

}  // namespace
}  // namespace e2e
