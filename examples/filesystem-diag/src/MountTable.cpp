#include "MountTable.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace filesystemdiag {
namespace {

bool IsOctalDigit(char c) {
  return c >= '0' && c <= '7';
}

bool IsAtOrBelow(const std::string& path, const std::string& folder) {
  return path == folder || path.compare(0, folder.size() + 1, folder + "/") == 0;
}

}  // namespace

bool MountEntry::readOnly() const {
  std::istringstream list(options);
  std::string option;
  while (std::getline(list, option, ',')) {
    if (option == "ro") {
      return true;
    }
  }
  return false;
}

std::string UnescapeMountField(const std::string& field) {
  std::string text;
  text.reserve(field.size());
  for (std::size_t i = 0; i < field.size(); ++i) {
    // A byte is at most \377; anything else is kept as written.
    if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '3' &&
        IsOctalDigit(field[i + 2]) && IsOctalDigit(field[i + 3])) {
      const int code = (field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0');
      text += static_cast<char>(code);
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

MountTable MountTable::Parse(std::istream& in) {
  MountTable table;
  std::map<std::string, std::size_t> indexOf;
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    MountEntry entry;
    if (!(words >> entry.source >> entry.mountPoint >> entry.type >> entry.options)) {
      continue;
    }
    entry.source = UnescapeMountField(entry.source);
    entry.mountPoint = UnescapeMountField(entry.mountPoint);
    entry.type = UnescapeMountField(entry.type);
    const auto known = indexOf.find(entry.mountPoint);
    if (known != indexOf.end()) {
      table.entries_[known->second] = std::move(entry);
    } else {
      indexOf.emplace(entry.mountPoint, table.entries_.size());
      table.entries_.push_back(std::move(entry));
    }
  }
  return table;
}

MountTable MountTable::ReadProcSelfMounts() {
  std::ifstream mounts("/proc/self/mounts");
  return Parse(mounts);
}

std::vector<MountEntry> MountTable::testable() const {
  std::vector<MountEntry> kept;
  for (const MountEntry& entry : entries_) {
    if (!IsPseudoFileSystem(entry) && CanBeDeviceId(entry.mountPoint)) {
      kept.push_back(entry);
    }
  }
  return kept;
}

bool IsPseudoFileSystem(const MountEntry& entry) {
  static const char* const kPseudoTypes[] = {
      "proc",      "sysfs",   "devtmpfs",    "devpts",   "cgroup",    "cgroup2",  "mqueue",
      "debugfs",   "tracefs", "securityfs",  "pstore",   "bpf",       "configfs", "fusectl",
      "hugetlbfs", "autofs",  "binfmt_misc", "efivarfs", "selinuxfs", "nsfs",     "rpc_pipefs"};
  static const char* const kKernelFolders[] = {"/proc", "/sys", "/dev"};
  return std::any_of(std::begin(kPseudoTypes), std::end(kPseudoTypes),
                     [&entry](const char* type) { return entry.type == type; }) ||
         std::any_of(
             std::begin(kKernelFolders), std::end(kKernelFolders),
             [&entry](const char* folder) { return IsAtOrBelow(entry.mountPoint, folder); });
}

bool CanBeDeviceId(const std::string& mountPoint) {
  return !mountPoint.empty() && std::none_of(mountPoint.begin(), mountPoint.end(), [](char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
  });
}

}  // namespace filesystemdiag
