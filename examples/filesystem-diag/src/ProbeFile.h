// ProbeFile: a small temporary file in a folder, which is always removed.
//
// The write/read-back check writes through one, so that no path through the
// check (an error, an exception) can leave the file behind on the tested
// file system.
#ifndef FILESYSTEMDIAG_PROBEFILE_H_
#define FILESYSTEMDIAG_PROBEFILE_H_

#include <cstddef>
#include <string>

namespace filesystemdiag {

class ProbeFile {
 public:
  // The prefix of every probe file's name, so a person who finds one left
  // by a crash knows what it is.
  static const char* const kNamePrefix;  // ".fsd-probe-"

  // Creates a new, empty file "<folder>/.fsd-probe-XXXXXX" (mode 0600,
  // O_EXCL), or sets error() when it cannot.
  explicit ProbeFile(const std::string& folder);
  // Closes and removes the file, if remove() has not.
  ~ProbeFile();
  ProbeFile(const ProbeFile&) = delete;
  ProbeFile& operator=(const ProbeFile&) = delete;

  // 0 when the file exists, else the errno of the failed creation.
  int error() const { return error_; }
  const std::string& path() const { return path_; }

  // Writes all of `data` at offset 0 and flushes it to the device (fsync).
  // Returns 0 or an errno.
  int write(const std::string& data);
  // Reads up to `size` bytes from offset 0 into `data`. Returns 0 or an errno.
  int readBack(std::size_t size, std::string& data) const;
  // Closes and removes the file now. Returns 0 or the errno of the unlink;
  // the file is not tried again by the destructor.
  int remove();

 private:
  std::string path_;
  int fd_ = -1;
  int error_ = 0;
  bool removed_ = false;
};

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_PROBEFILE_H_
