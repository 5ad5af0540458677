// The write/read-back check and its probe file: passes and leaves nothing on
// a writable folder, writes nothing where it may not (read-only, not
// writable, not a folder), and the probe file goes in every case.
#include "WriteReadCheck.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ProbeFile.h"
#include "ProgramRun.h"

namespace filesystemdiag {
namespace {

using Outcome = CheckResult::Outcome;

std::vector<std::string> Entries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

// A usage reader that answers like statvfs of a healthy file system, mounted
// read-only or not.
UsageReader HealthyUsage(bool readOnly) {
  return [readOnly](const std::string&, FileSystemUsage& usage) {
    usage.blockSize = 4096;
    usage.totalBlocks = 1000;
    usage.availableBlocks = 500;
    usage.readOnly = readOnly;
    return 0;
  };
}

TEST(WriteReadCheckTest, PassesOnAWritableFolderAndLeavesNothingBehind) {
  const e2e::ScratchDir scratch;
  ASSERT_FALSE(scratch.path().empty());
  const CheckResult result = WriteReadCheck().run(scratch.path());
  EXPECT_EQ(result.outcome, Outcome::kPassed) << result.text;
  EXPECT_EQ(result.errorCode, "");
  EXPECT_EQ(result.text, "wrote, read back and removed 4096 bytes in " + scratch.path());
  EXPECT_TRUE(Entries(scratch.path()).empty());
  // Twice in a row: the name is fresh each time and nothing accumulates.
  EXPECT_EQ(WriteReadCheck().run(scratch.path()).outcome, Outcome::kPassed);
  EXPECT_TRUE(Entries(scratch.path()).empty());
}

TEST(WriteReadCheckTest, WritesNothingOnAReadOnlyFileSystem) {
  const e2e::ScratchDir scratch;
  const CheckResult result = WriteReadCheck(HealthyUsage(true)).run(scratch.path());
  EXPECT_EQ(result.outcome, Outcome::kSkipped);
  EXPECT_EQ(result.text, scratch.path() + " is mounted read-only; nothing was written");
  EXPECT_TRUE(Entries(scratch.path()).empty());
}

TEST(WriteReadCheckTest, SkipsAMountPointThatIsNoFolder) {
  const e2e::ScratchDir scratch;
  const std::string file = scratch.write("hosts", "127.0.0.1 localhost\n");
  const CheckResult result = WriteReadCheck(HealthyUsage(false)).run(file);
  EXPECT_EQ(result.outcome, Outcome::kSkipped);
  EXPECT_EQ(result.text, file + " is not a folder; nothing was written");
  EXPECT_EQ(e2e::ReadFile(file), "127.0.0.1 localhost\n");
  EXPECT_EQ(Entries(scratch.path()), std::vector<std::string>{"hosts"});
}

TEST(WriteReadCheckTest, FailsWhenTheFileSystemCannotBeStated) {
  const e2e::ScratchDir scratch;
  const CheckResult result = WriteReadCheck().run(scratch.path() + "/gone");
  EXPECT_EQ(result.outcome, Outcome::kFailed);
  EXPECT_EQ(result.errorCode, "STAT_FAILED");
  EXPECT_EQ(result.text, "cannot stat the file system at " + scratch.path() +
                             "/gone: No such file or directory");
}

// Runs the check on `folder` as an unprivileged user: directly when the test
// is not root, in a child that drops to nobody (65534) when it is, so that
// the case is tested either way. Returns the child's verdict text, or an
// empty text when the privileges could not be dropped.
std::string RunAsUnprivileged(const std::string& folder, Outcome& outcome) {
  if (geteuid() != 0) {
    const CheckResult result = WriteReadCheck().run(folder);
    outcome = result.outcome;
    return result.text;
  }
  int channel[2];
  if (pipe(channel) != 0) {
    return "";
  }
  const pid_t child = fork();
  if (child == 0) {
    close(channel[0]);
    if (setgid(65534) != 0 || setuid(65534) != 0) {
      _exit(3);
    }
    const CheckResult result = WriteReadCheck().run(folder);
    const std::string text = result.text;
    if (write(channel[1], text.data(), text.size()) < 0) {
      _exit(4);
    }
    _exit(result.outcome == Outcome::kSkipped ? 0 : result.outcome == Outcome::kPassed ? 1 : 2);
  }
  close(channel[1]);
  std::string text;
  char buffer[256];
  ssize_t got = 0;
  while ((got = read(channel[0], buffer, sizeof buffer)) > 0) {
    text.append(buffer, static_cast<std::size_t>(got));
  }
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 2) {
    return "";
  }
  const int code = WEXITSTATUS(status);
  outcome = code == 0 ? Outcome::kSkipped : code == 1 ? Outcome::kPassed : Outcome::kFailed;
  return text;
}

TEST(WriteReadCheckTest, SkipsAFolderTheProviderMayNotWrite) {
  const e2e::ScratchDir scratch;
  const std::string folder = scratch.path() + "/locked";
  ASSERT_EQ(mkdir(folder.c_str(), 0555), 0);
  // Reachable by anyone, writable by no one but root.
  ASSERT_EQ(chmod(scratch.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(folder.c_str(), 0555), 0);

  Outcome outcome = Outcome::kFailed;
  const std::string text = RunAsUnprivileged(folder, outcome);
  if (text.empty()) {
    GTEST_SKIP() << "could not drop root's privileges to test an unwritable folder";
  }
  EXPECT_EQ(outcome, Outcome::kSkipped) << text;
  EXPECT_EQ(text.rfind(folder + " is not writable by this provider (user ", 0), 0U) << text;
  EXPECT_NE(text.find("); nothing was written"), std::string::npos) << text;
  EXPECT_TRUE(Entries(folder).empty());
}

TEST(WriteReadCheckTest, TheProbeDataShowsShiftsAndTruncation) {
  const std::string data = WriteReadCheck::ProbeData();
  ASSERT_EQ(data.size(), WriteReadCheck::kProbeSize);
  EXPECT_EQ(data.substr(0, 10), "0000:56789");
  EXPECT_EQ(data[63], '\n');
  EXPECT_EQ(data.substr(64, 10), "0001:6789a");  // the next line runs one further
  EXPECT_EQ(data.substr(4032, 5), "003f:");      // the last of 64 lines
  EXPECT_EQ(data.back(), '\n');
  // No two lines are the same, so a block read back from the wrong place shows.
  for (std::size_t line = 1; line < data.size() / 64; ++line) {
    EXPECT_NE(data.substr(0, 63), data.substr(line * 64, 63)) << "line " << line;
  }
}

TEST(ProbeFileTest, IsCreatedPrivateWrittenReadAndRemoved) {
  const e2e::ScratchDir scratch;
  std::string path;
  {
    ProbeFile probe(scratch.path());
    ASSERT_EQ(probe.error(), 0);
    path = probe.path();
    EXPECT_EQ(path.rfind(scratch.path() + "/.fsd-probe-", 0), 0U) << path;
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);

    EXPECT_EQ(probe.write("hello, disk"), 0);
    std::string back;
    EXPECT_EQ(probe.readBack(64, back), 0);
    EXPECT_EQ(back, "hello, disk");  // short file: only what is there
    EXPECT_EQ(probe.readBack(5, back), 0);
    EXPECT_EQ(back, "hello");
  }
  EXPECT_FALSE(std::filesystem::exists(path)) << "the destructor removes the file";
  EXPECT_TRUE(Entries(scratch.path()).empty());
}

TEST(ProbeFileTest, RemoveOnceThenTheDestructorLeavesItAlone) {
  const e2e::ScratchDir scratch;
  ProbeFile probe(scratch.path() + "/");  // a trailing slash is fine
  ASSERT_EQ(probe.error(), 0);
  EXPECT_EQ(probe.path().find("//"), std::string::npos);
  EXPECT_EQ(probe.remove(), 0);
  EXPECT_FALSE(std::filesystem::exists(probe.path()));
  EXPECT_EQ(probe.remove(), 0);
  // A file of the same name made afterwards is not the probe's to delete.
  const std::string stranger = probe.path();
  { std::ofstream(stranger) << "mine"; }
  EXPECT_EQ(probe.write("x"), EBADF);
  std::string back;
  EXPECT_EQ(probe.readBack(1, back), EBADF);
  EXPECT_EQ(probe.remove(), 0);
  EXPECT_TRUE(std::filesystem::exists(stranger));
}

TEST(ProbeFileTest, ReportsWhyItCouldNotBeCreated) {
  const e2e::ScratchDir scratch;
  const ProbeFile missing(scratch.path() + "/no/such/folder");
  EXPECT_EQ(missing.error(), ENOENT);
  EXPECT_EQ(missing.path(), "");
  const std::string file = scratch.write("plain", "x");
  const ProbeFile inFile(file);
  EXPECT_EQ(inFile.error(), ENOTDIR);
}

}  // namespace
}  // namespace filesystemdiag
