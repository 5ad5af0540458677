#include "FileSystemUsage.h"

#include <sys/statvfs.h>

#include <cerrno>
#include <system_error>

namespace filesystemdiag {

int ReadFileSystemUsage(const std::string& path, FileSystemUsage& usage) {
  struct statvfs info {};
  if (statvfs(path.c_str(), &info) != 0) {
    return errno;
  }
  // f_frsize is the unit of the block counts; some file systems leave it 0.
  usage.blockSize = info.f_frsize != 0 ? info.f_frsize : info.f_bsize;
  usage.totalBlocks = info.f_blocks;
  usage.availableBlocks = info.f_bavail;
  usage.totalInodes = info.f_files;
  usage.availableInodes = info.f_favail;
  usage.readOnly = (info.f_flag & ST_RDONLY) != 0;
  return 0;
}

std::string ErrorText(int error) {
  return std::generic_category().message(error);
}

CheckResult UsageFailure(const std::string& mountPoint, int error) {
  const std::string what = "cannot stat the file system at " + mountPoint + ": " + ErrorText(error);
  if (error == EACCES || error == EPERM) {
    return CheckResult::Skipped(what + "; nothing was tested");
  }
  return CheckResult::Failed("STAT_FAILED", what);
}

}  // namespace filesystemdiag
