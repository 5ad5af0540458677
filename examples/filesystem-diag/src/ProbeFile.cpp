#include "ProbeFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace filesystemdiag {

const char* const ProbeFile::kNamePrefix = ".fsd-probe-";

ProbeFile::ProbeFile(const std::string& folder) {
  std::string pattern = folder;
  if (pattern.empty() || pattern.back() != '/') {
    pattern += '/';
  }
  pattern += kNamePrefix;
  pattern += "XXXXXX";
  // mkostemp: O_EXCL and mode 0600, so the probe never opens someone else's
  // file; O_CLOEXEC, so a CIMOM's child processes do not inherit it.
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  fd_ = mkostemp(name.data(), O_CLOEXEC);
  if (fd_ < 0) {
    error_ = errno;
    return;
  }
  path_ = name.data();
}

ProbeFile::~ProbeFile() {
  static_cast<void>(remove());
}

int ProbeFile::write(const std::string& data) {
  if (fd_ < 0) {
    return EBADF;
  }
  std::size_t done = 0;
  while (done < data.size()) {
    const ssize_t written =
        pwrite(fd_, data.data() + done, data.size() - done, static_cast<off_t>(done));
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno;
    }
    done += static_cast<std::size_t>(written);
  }
  // A device error often shows only when the data goes out.
  return fsync(fd_) == 0 ? 0 : errno;
}

int ProbeFile::readBack(std::size_t size, std::string& data) const {
  if (fd_ < 0) {
    return EBADF;
  }
  data.assign(size, '\0');
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got = pread(fd_, &data[done], size - done, static_cast<off_t>(done));
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno;
    }
    if (got == 0) {
      break;
    }
    done += static_cast<std::size_t>(got);
  }
  data.resize(done);
  return 0;
}

int ProbeFile::remove() {
  if (fd_ < 0 || removed_) {
    return 0;
  }
  removed_ = true;
  close(fd_);
  fd_ = -1;
  return unlink(path_.c_str()) == 0 ? 0 : errno;
}

}  // namespace filesystemdiag
