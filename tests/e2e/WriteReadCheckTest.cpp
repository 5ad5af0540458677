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
#include "support/ProgramRun.h"

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

TEST(WriteReadCheckTest, PassesOnAWritableFolderAndLeavesNothingBehind) {
  const diagcore_test::ScratchDir scratch;
  ASSERT_FALSE(scratch.path().empty());
  for (int time = 0; time < 2; ++time) {  // the name is fresh each time
    const CheckResult result = WriteReadCheck().run(scratch.path());
    EXPECT_EQ(result.outcome, Outcome::kPassed) << result.text;
    EXPECT_EQ(result.errorCode, "");
    EXPECT_EQ(result.text, "wrote, read back and removed 4096 bytes in " + scratch.path());
    EXPECT_TRUE(Entries(scratch.path()).empty());
  }
}

TEST(WriteReadCheckTest, WritesNothingWhereItMayNotOrCannotLook) {
  const diagcore_test::ScratchDir scratch;
  const std::string file = scratch.write("hosts", "127.0.0.1 localhost\n");
  const auto healthy = [](bool readOnly) {
    return [readOnly](const std::string&, FileSystemUsage& usage) {
      usage.blockSize = 4096;
      usage.totalBlocks = 1000;
      usage.availableBlocks = 500;
      usage.readOnly = readOnly;
      return 0;
    };
  };
  const struct {
    CheckResult result;
    Outcome outcome;
    std::string text;
  } cases[] = {
      {WriteReadCheck(healthy(true)).run(scratch.path()), Outcome::kSkipped,
       scratch.path() + " is mounted read-only; nothing was written"},
      {WriteReadCheck(healthy(false)).run(file), Outcome::kSkipped,
       file + " is not a folder; nothing was written"},
      {WriteReadCheck().run(scratch.path() + "/gone"), Outcome::kFailed,
       "cannot stat the file system at " + scratch.path() + "/gone: No such file or directory"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.result.outcome, c.outcome) << c.text;
    EXPECT_EQ(c.result.text, c.text);
  }
  EXPECT_EQ(cases[2].result.errorCode, "STAT_FAILED");
  EXPECT_EQ(diagcore_test::ReadFile(file), "127.0.0.1 localhost\n");
  EXPECT_EQ(Entries(scratch.path()), std::vector<std::string>{"hosts"});
}

// Runs the check on `folder` as an unprivileged user: directly when the test
// is not root, in a child that drops to nobody (65534) when it is, so that
// the case is tested either way. Returns the verdict text, or an empty text
// when the privileges could not be dropped.
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
    if (write(channel[1], result.text.data(), result.text.size()) < 0) {
      _exit(4);
    }
    _exit(static_cast<int>(result.outcome == Outcome::kSkipped));
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
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) {
    return "";
  }
  outcome = WEXITSTATUS(status) == 1 ? Outcome::kSkipped : Outcome::kFailed;
  return text;
}

TEST(WriteReadCheckTest, SkipsAFolderTheProviderMayNotWrite) {
  const diagcore_test::ScratchDir scratch;
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
  EXPECT_EQ(data.substr(63, 11), "\n0001:6789a");  // the next line runs one further
  EXPECT_EQ(data.substr(4032, 5), "003f:");        // the last of 64 lines
  EXPECT_EQ(data.back(), '\n');
  // No two lines are the same, so a block read back from the wrong place shows.
  for (std::size_t line = 1; line < data.size() / 64; ++line) {
    EXPECT_NE(data.substr(0, 63), data.substr(line * 64, 63)) << "line " << line;
  }
}

TEST(ProbeFileTest, IsCreatedPrivateWrittenReadAndRemovedOnce) {
  const diagcore_test::ScratchDir scratch;
  std::string path;
  {
    ProbeFile probe(scratch.path() + "/");  // a trailing slash is fine
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
  EXPECT_TRUE(Entries(scratch.path()).empty()) << "the destructor removes the file";

  ProbeFile probe(scratch.path());
  EXPECT_EQ(probe.remove(), 0);
  EXPECT_EQ(probe.remove(), 0);
  // A file of the same name made afterwards is not the probe's to touch.
  { std::ofstream(probe.path()) << "mine"; }
  EXPECT_EQ(probe.write("x"), EBADF);
  std::string back;
  EXPECT_EQ(probe.readBack(1, back), EBADF);
  EXPECT_EQ(probe.remove(), 0);
  EXPECT_TRUE(std::filesystem::exists(probe.path()));

  const ProbeFile missing(scratch.path() + "/no/such/folder");
  EXPECT_EQ(missing.error(), ENOENT);
  EXPECT_EQ(missing.path(), "");
  EXPECT_EQ(ProbeFile(scratch.write("plain", "x")).error(), ENOTDIR);
}

}  // namespace
}  // namespace filesystemdiag
