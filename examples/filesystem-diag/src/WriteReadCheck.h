// WriteReadCheck: can a small file be written on the file system, read back
// unchanged and removed?
//
// Harmless by construction: nothing is written where the file system is
// mounted read-only or the mount point is not writable by this process (the
// check is then skipped, not failed); otherwise one probe file of a few KiB
// is written in the mount point's own folder and always removed.
#ifndef FILESYSTEMDIAG_WRITEREADCHECK_H_
#define FILESYSTEMDIAG_WRITEREADCHECK_H_

#include <cstddef>
#include <string>

#include "CheckResult.h"
#include "FileSystemCheck.h"
#include "FileSystemUsage.h"

namespace filesystemdiag {

class WriteReadCheck : public FileSystemCheck {
 public:
  static constexpr std::size_t kProbeSize = 4096;

  explicit WriteReadCheck(UsageReader readUsage = ReadFileSystemUsage);

  // In order: UsageFailure() when statvfs fails; skipped when mounted
  // read-only, when the mount point is not a folder, or when this process may
  // not write there; PROBE_FAILED when the probe file cannot be created for
  // another reason (e.g. no space); WRITE_FAILED, READ_FAILED, MISMATCH or
  // REMOVE_FAILED at the step that went wrong; otherwise passed.
  CheckResult run(const std::string& mountPoint) const override;

  // The bytes written: 64-byte lines, each numbered ("0000:", "0001:", ...)
  // and with letters that differ at every offset and from line to line, so a
  // shifted, repeated or truncated read-back shows.
  static std::string ProbeData();

 private:
  UsageReader readUsage_;
};

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_WRITEREADCHECK_H_
