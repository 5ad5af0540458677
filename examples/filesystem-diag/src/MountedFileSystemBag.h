// MountedFileSystemBag: one mounted file system, an FSD_MountedFileSystem
// whose DeviceID is the mount point.
#ifndef FILESYSTEMDIAG_MOUNTEDFILESYSTEMBAG_H_
#define FILESYSTEMDIAG_MOUNTEDFILESYSTEMBAG_H_

#include <string>

#include "MountTable.h"
#include "diagcore/InstanceImpl.h"

namespace filesystemdiag {

class MountedFileSystemBag : public NQENDRA20::InstanceImpl {
 public:
  // `mount` as an element of the system `systemName`.
  MountedFileSystemBag(const MountEntry& mount, const std::string& systemName);

  // Adds the keys, the mount's facts and descriptive texts that are missing.
  void init() override;

 private:
  MountEntry mount_;
  std::string systemName_;
};

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_MOUNTEDFILESYSTEMBAG_H_
