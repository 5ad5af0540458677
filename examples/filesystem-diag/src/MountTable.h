// MountTable: the mounted file systems as /proc/self/mounts lists them, and
// which of them the diagnostic tests.
#ifndef FILESYSTEMDIAG_MOUNTTABLE_H_
#define FILESYSTEMDIAG_MOUNTTABLE_H_

#include <istream>
#include <string>
#include <vector>

namespace filesystemdiag {

struct MountEntry {
  std::string source;      // e.g. "/dev/sda1", "server:/export", "tmpfs"
  std::string mountPoint;  // with the kernel's \ooo escapes resolved
  std::string type;        // e.g. "ext4"
  std::string options;     // e.g. "rw,relatime"

  // True when the options contain "ro".
  bool readOnly() const;
};

class MountTable {
 public:
  // Reads the lines of a mounts file: "source mountpoint type options ...".
  // Lines with fewer than four fields are skipped. When a mount point is
  // listed twice, the later mount hides the earlier: its entry replaces the
  // earlier one in the earlier one's place.
  static MountTable Parse(std::istream& in);
  // Parse() of /proc/self/mounts; empty when it cannot be read.
  static MountTable ReadProcSelfMounts();

  const std::vector<MountEntry>& entries() const { return entries_; }

  // The entries worth testing: without pseudo file systems (see
  // IsPseudoFileSystem) and without mount points whose text an object path
  // cannot carry (see CanBeDeviceId).
  std::vector<MountEntry> testable() const;

 private:
  std::vector<MountEntry> entries_;
};

// Kernel interfaces rather than storage: a type such as proc, sysfs,
// devtmpfs, devpts, cgroup, cgroup2, mqueue, debugfs, tracefs, securityfs,
// pstore, bpf, configfs, fusectl, hugetlbfs, autofs, binfmt_misc, efivarfs,
// selinuxfs, nsfs or rpc_pipefs; or anything mounted at or below /proc, /sys
// or /dev, whatever its type (a tmpfs for cgroups or shared memory there
// holds no files a person keeps).
bool IsPseudoFileSystem(const MountEntry& entry);

// False for an empty text and for one holding a double quote, a backslash or
// a control character: libdiagcore's object path texts keep key values
// between double quotes without escapes, so such a DeviceID would not come
// back intact.
bool CanBeDeviceId(const std::string& mountPoint);

// `field` with each "\ooo" (three octal digits) replaced by its byte, as the
// kernel escapes blanks, tabs, newlines and backslashes in mount points.
std::string UnescapeMountField(const std::string& field);

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_MOUNTTABLE_H_
