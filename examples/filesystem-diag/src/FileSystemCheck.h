// FileSystemCheck: one test a diagnostic service runs on a mounted file
// system, knowing nothing of CMPI.
#ifndef FILESYSTEMDIAG_FILESYSTEMCHECK_H_
#define FILESYSTEMDIAG_FILESYSTEMCHECK_H_

#include <string>

#include "CheckResult.h"

namespace filesystemdiag {

class FileSystemCheck {
 public:
  virtual ~FileSystemCheck() = default;

  // Tests the file system mounted at `mountPoint`. Must be harmless and may
  // be called from several threads at once.
  virtual CheckResult run(const std::string& mountPoint) const = 0;
};

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_FILESYSTEMCHECK_H_
