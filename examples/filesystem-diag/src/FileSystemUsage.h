// FileSystemUsage: the numbers statvfs reports for one file system.
#ifndef FILESYSTEMDIAG_FILESYSTEMUSAGE_H_
#define FILESYSTEMDIAG_FILESYSTEMUSAGE_H_

#include <cstdint>
#include <functional>
#include <string>

#include "CheckResult.h"

namespace filesystemdiag {

struct FileSystemUsage {
  std::uint64_t blockSize = 0;  // bytes per block of the counts below
  std::uint64_t totalBlocks = 0;
  std::uint64_t availableBlocks = 0;  // free to an unprivileged user
  std::uint64_t totalInodes = 0;      // 0: the file system does not count them
  std::uint64_t availableInodes = 0;
  bool readOnly = false;
};

// Reads the usage of the file system holding `path` with statvfs. Returns 0,
// or the errno of the failure (and leaves `usage` alone).
int ReadFileSystemUsage(const std::string& path, FileSystemUsage& usage);

// The system's text for the errno `error`, e.g. "No such file or directory".
std::string ErrorText(int error);

// What a check reports when reading the usage of `mountPoint` failed with
// `error`: skipped when this process may not look (EACCES, EPERM), since
// that says nothing about the file system; otherwise STAT_FAILED.
CheckResult UsageFailure(const std::string& mountPoint, int error);

// How a check reads usage; tests give their own.
using UsageReader = std::function<int(const std::string&, FileSystemUsage&)>;

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_FILESYSTEMUSAGE_H_
