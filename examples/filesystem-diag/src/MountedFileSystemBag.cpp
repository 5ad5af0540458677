#include "MountedFileSystemBag.h"

#include "BagDefaults.h"
#include "ClassNames.h"

namespace filesystemdiag {
MountedFileSystemBag::MountedFileSystemBag(const MountEntry& mount, const std::string& systemName)
    : InstanceImpl(kFileSystemClass), mount_(mount), systemName_(systemName) {
  MountedFileSystemBag::init();
}

void MountedFileSystemBag::init() {
  AddIfAbsent(*this, "SystemCreationClassName", kComputerSystemClass);
  AddIfAbsent(*this, "SystemName", systemName_);
  AddIfAbsent(*this, "CreationClassName", kFileSystemClass);
  AddIfAbsent(*this, "DeviceID", mount_.mountPoint);
  AddIfAbsent(*this, "Name", mount_.mountPoint);
  AddIfAbsent(*this, "ElementName", mount_.source + " on " + mount_.mountPoint);
  AddIfAbsent(*this, "Caption", mount_.type + " file system mounted at " + mount_.mountPoint);
  AddIfAbsent(*this, "FileSystemType", mount_.type);
  AddIfAbsent(*this, "MountSource", mount_.source);
  AddIfAbsent(*this, "MountOptions", mount_.options);
  // Booleans are built from "1" and "0".
  AddIfAbsent(*this, "ReadOnly", mount_.readOnly() ? "1" : "0");
}

}  // namespace filesystemdiag
