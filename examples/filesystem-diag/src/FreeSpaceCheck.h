// FreeSpaceCheck: can the file system be stat'ed, and is enough of its space
// and of its inodes free?
#ifndef FILESYSTEMDIAG_FREESPACECHECK_H_
#define FILESYSTEMDIAG_FREESPACECHECK_H_

#include <string>

#include "CheckResult.h"
#include "FileSystemCheck.h"
#include "FileSystemUsage.h"

namespace filesystemdiag {

class FreeSpaceCheck : public FileSystemCheck {
 public:
  // Fails when less than `minFreePercent` of the blocks, or of the inodes,
  // are available to an unprivileged user.
  explicit FreeSpaceCheck(unsigned int minFreePercent, UsageReader readUsage = ReadFileSystemUsage);

  // UsageFailure() when statvfs fails; otherwise evaluate()'s verdict.
  CheckResult run(const std::string& mountPoint) const override;

  // The verdict on `usage`: skipped when the file system counts no blocks
  // (nothing to run out of), LOW_SPACE or LOW_INODES below the threshold
  // (space is judged first), otherwise passed with the free shares.
  CheckResult evaluate(const std::string& mountPoint, const FileSystemUsage& usage) const;

  unsigned int minFreePercent() const { return minFreePercent_; }

 private:
  unsigned int minFreePercent_;
  UsageReader readUsage_;
};

// `bytes` for a person: "512 B", "4.0 KiB", "77.1 GiB" (binary units, one decimal).
std::string HumanBytes(double bytes);

// `share` (0..100) with one decimal: "30.6%".
std::string Percent(double share);

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_FREESPACECHECK_H_
