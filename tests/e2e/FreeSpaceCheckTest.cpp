// The free-space check: its verdict and text at and around the threshold,
// for space and inodes, for huge and degenerate file systems, and a real
// statvfs on folders of the test's own.
#include "FreeSpaceCheck.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <string>

#include "support/ProgramRun.h"

namespace filesystemdiag {
namespace {

using Outcome = CheckResult::Outcome;

FileSystemUsage Usage(std::uint64_t totalBlocks, std::uint64_t availableBlocks,
                      std::uint64_t totalInodes, std::uint64_t availableInodes) {
  FileSystemUsage usage;
  usage.blockSize = 1024;
  usage.totalBlocks = totalBlocks;
  usage.availableBlocks = availableBlocks;
  usage.totalInodes = totalInodes;
  usage.availableInodes = availableInodes;
  return usage;
}

TEST(FreeSpaceCheckTest, VerdictAndTextAtAndAroundTheThreshold) {
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  const struct {
    unsigned threshold;
    FileSystemUsage usage;
    Outcome outcome;
    const char* errorCode;
    std::string text;  // not checked when empty
  } cases[] = {
      {5, Usage(1000, 50, 1000, 50), Outcome::kPassed, "", ""},
      {5, Usage(1000, 49, 1000, 500), Outcome::kFailed, "LOW_SPACE",
       "/data has only 4.9% of the space free (49.0 KiB of 1000.0 KiB); the threshold is 5%"},
      {5, Usage(1000, 500, 1000, 49), Outcome::kFailed, "LOW_INODES",
       "/data has only 4.9% of the inodes free (49 of 1000); the threshold is 5%"},
      {5, Usage(1000, 0, 1000, 0), Outcome::kFailed, "LOW_SPACE", ""},  // space first
      {5, Usage(2048, 1024, 1000, 999), Outcome::kPassed, "",
       "/data has 50.0% of the space free (1.0 MiB of 2.0 MiB) and 99.9% of the inodes free "
       "(999 of 1000)"},
      {5, Usage(1000, 500, 0, 0), Outcome::kPassed, "",
       "/data has 50.0% of the space free (500.0 KiB of 1000.0 KiB); it does not count inodes"},
      {5, Usage(0, 0, 100, 100), Outcome::kSkipped, "",
       "/data reports no blocks, so it has no space to run out of"},
      // Products past 64 bits must not wrap: kMax / 20 is just under 5%.
      {5, Usage(kMax, kMax / 20, 0, 0), Outcome::kFailed, "LOW_SPACE", ""},
      {5, Usage(kMax, kMax / 20 + 1, 0, 0), Outcome::kPassed, "", ""},
      {0, Usage(100, 0, 100, 0), Outcome::kPassed, "", ""},
      {100, Usage(100, 99, 100, 100), Outcome::kFailed, "LOW_SPACE", ""},
      {100, Usage(100, 100, 100, 100), Outcome::kPassed, "", ""},
  };
  for (const auto& c : cases) {
    const CheckResult result = FreeSpaceCheck(c.threshold).evaluate("/data", c.usage);
    SCOPED_TRACE(result.text);
    EXPECT_EQ(result.outcome, c.outcome);
    EXPECT_EQ(result.errorCode, c.errorCode);
    if (!c.text.empty()) {
      EXPECT_EQ(result.text, c.text);
    }
  }
}

TEST(FreeSpaceCheckTest, NumbersForAPerson) {
  const struct {
    double bytes;
    const char* text;
  } sizes[] = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1536, "1.5 KiB"},
      {1073741824.0 * 77.1, "77.1 GiB"},
      {1152921504606846976.0 * 3, "3.0 EiB"},
  };
  for (const auto& s : sizes) {
    EXPECT_EQ(HumanBytes(s.bytes), s.text) << s.bytes;
  }
  // Rounded down, so a share just under a threshold never shows as it.
  EXPECT_EQ(Percent(4.99), "4.9%");
  EXPECT_EQ(Percent(100.0), "100.0%");
}

TEST(FreeSpaceCheckTest, ReadingUsageFailsOrIsRefused) {
  const auto failing = [](int error) {
    return [error](const std::string&, FileSystemUsage&) { return error; };
  };
  const CheckResult io = FreeSpaceCheck(5, failing(EIO)).run("/broken");
  EXPECT_EQ(io.outcome, Outcome::kFailed);
  EXPECT_EQ(io.errorCode, "STAT_FAILED");
  EXPECT_EQ(io.text, "cannot stat the file system at /broken: Input/output error");
  // Not allowed to look says nothing about the file system.
  const CheckResult refused = FreeSpaceCheck(5, failing(EACCES)).run("/secret");
  EXPECT_EQ(refused.outcome, Outcome::kSkipped);
  EXPECT_EQ(refused.text,
            "cannot stat the file system at /secret: Permission denied; nothing was tested");
}

TEST(FreeSpaceCheckTest, RealStatvfsOnFoldersOfItsOwn) {
  const diagcore_test::ScratchDir scratch;
  ASSERT_FALSE(scratch.path().empty());
  // Whatever the machine's free space, a real file system answers.
  const CheckResult result = FreeSpaceCheck(5).run(scratch.path());
  EXPECT_NE(result.errorCode, "STAT_FAILED") << result.text;
  EXPECT_EQ(result.text.rfind(scratch.path() + " has ", 0), 0U) << result.text;
  FileSystemUsage usage;
  EXPECT_EQ(ReadFileSystemUsage(scratch.path(), usage), 0);
  EXPECT_GT(usage.blockSize, 0U);
  EXPECT_GE(usage.totalBlocks, usage.availableBlocks);
  EXPECT_FALSE(usage.readOnly);

  const CheckResult gone = FreeSpaceCheck(5).run(scratch.path() + "/no/such/folder");
  EXPECT_EQ(gone.errorCode, "STAT_FAILED");
  EXPECT_EQ(gone.text, "cannot stat the file system at " + scratch.path() +
                           "/no/such/folder: No such file or directory");
}

}  // namespace
}  // namespace filesystemdiag
