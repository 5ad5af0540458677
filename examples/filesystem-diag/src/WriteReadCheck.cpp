#include "WriteReadCheck.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "ProbeFile.h"

namespace filesystemdiag {
namespace {

bool IsFolder(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Errors that mean "not allowed to write here", not "the file system is broken".
bool IsPermissionError(int error) {
  return error == EACCES || error == EPERM || error == EROFS;
}

std::string Failure(const std::string& step, const std::string& path, int error) {
  return step + " " + path + ": " + ErrorText(error);
}

}  // namespace

WriteReadCheck::WriteReadCheck(UsageReader readUsage) : readUsage_(std::move(readUsage)) {}

std::string WriteReadCheck::ProbeData() {
  static const char kAlphabet[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::size_t kLine = 64;
  constexpr std::size_t kLetters = sizeof kAlphabet - 1;
  std::string data;
  data.reserve(kProbeSize);
  for (std::size_t line = 0; data.size() < kProbeSize; ++line) {
    // Each line starts with its number, so no two lines are alike, and its
    // letters run one further than the line before, so a shift shows.
    char number[8];
    std::snprintf(number, sizeof number, "%04zx:", line);
    std::string text = number;
    for (std::size_t column = text.size(); column + 1 < kLine; ++column) {
      text += kAlphabet[(line + column) % kLetters];
    }
    text += '\n';
    data += text;
  }
  data.resize(kProbeSize);
  return data;
}

CheckResult WriteReadCheck::run(const std::string& mountPoint) const {
  FileSystemUsage usage;
  const int statError = readUsage_(mountPoint, usage);
  if (statError != 0) {
    return UsageFailure(mountPoint, statError);
  }
  if (usage.readOnly) {
    return CheckResult::Skipped(mountPoint + " is mounted read-only; nothing was written");
  }
  if (!IsFolder(mountPoint)) {
    return CheckResult::Skipped(mountPoint + " is not a folder; nothing was written");
  }
  if (access(mountPoint.c_str(), W_OK) != 0) {
    return CheckResult::Skipped(mountPoint + " is not writable by this provider (user " +
                                std::to_string(geteuid()) + "); nothing was written");
  }

  ProbeFile probe(mountPoint);
  if (probe.error() != 0) {
    if (IsPermissionError(probe.error())) {
      return CheckResult::Skipped(Failure("may not create a file in", mountPoint, probe.error()) +
                                  "; nothing was written");
    }
    return CheckResult::Failed("PROBE_FAILED",
                               Failure("cannot create a file in", mountPoint, probe.error()));
  }
  const std::string data = ProbeData();
  if (const int error = probe.write(data); error != 0) {
    return CheckResult::Failed("WRITE_FAILED", Failure("cannot write", probe.path(), error));
  }
  std::string back;
  if (const int error = probe.readBack(data.size(), back); error != 0) {
    return CheckResult::Failed("READ_FAILED", Failure("cannot read back", probe.path(), error));
  }
  if (back != data) {
    return CheckResult::Failed(
        "MISMATCH", "read back " + std::to_string(back.size()) + " bytes from " + probe.path() +
                        " that differ from the " + std::to_string(data.size()) + " bytes written");
  }
  if (const int error = probe.remove(); error != 0) {
    return CheckResult::Failed("REMOVE_FAILED", Failure("cannot remove", probe.path(), error));
  }
  return CheckResult::Passed("wrote, read back and removed " + std::to_string(data.size()) +
                             " bytes in " + mountPoint);
}

}  // namespace filesystemdiag
