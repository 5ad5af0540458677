#include "FreeSpaceCheck.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace filesystemdiag {
namespace {

// part / whole < percent / 100, exactly, for any 64-bit counts.
bool BelowShare(std::uint64_t part, std::uint64_t whole, unsigned int percent) {
  using Wide = unsigned __int128;
  return static_cast<Wide>(part) * 100U < static_cast<Wide>(whole) * percent;
}

double Share(std::uint64_t part, std::uint64_t whole) {
  return static_cast<double>(part) * 100.0 / static_cast<double>(whole);
}

}  // namespace

std::string HumanBytes(double bytes) {
  static const char* const kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  std::size_t unit = 0;
  while (bytes >= 1024.0 && unit + 1 < sizeof kUnits / sizeof kUnits[0]) {
    bytes /= 1024.0;
    ++unit;
  }
  char text[32];
  if (unit == 0) {
    std::snprintf(text, sizeof text, "%.0f B", bytes);
  } else {
    std::snprintf(text, sizeof text, "%.1f %s", bytes, kUnits[unit]);
  }
  return text;
}

std::string Percent(double share) {
  // Rounded down, so that a share just under a threshold never reads as
  // the threshold itself; the nudge keeps 99.9 (binary 99.89999...) at 99.9.
  char text[32];
  std::snprintf(text, sizeof text, "%.1f%%", std::floor(share * 10.0 + 1e-9) / 10.0);
  return text;
}

FreeSpaceCheck::FreeSpaceCheck(unsigned int minFreePercent, UsageReader readUsage)
    : minFreePercent_(minFreePercent), readUsage_(std::move(readUsage)) {}

CheckResult FreeSpaceCheck::run(const std::string& mountPoint) const {
  FileSystemUsage usage;
  const int error = readUsage_(mountPoint, usage);
  if (error != 0) {
    return UsageFailure(mountPoint, error);
  }
  return evaluate(mountPoint, usage);
}

CheckResult FreeSpaceCheck::evaluate(const std::string& mountPoint,
                                     const FileSystemUsage& usage) const {
  if (usage.totalBlocks == 0) {
    return CheckResult::Skipped(mountPoint +
                                " reports no blocks, so it has no space to run out of");
  }
  const auto blockSize = static_cast<double>(usage.blockSize);
  const std::string space =
      Percent(Share(usage.availableBlocks, usage.totalBlocks)) + " of the space free (" +
      HumanBytes(static_cast<double>(usage.availableBlocks) * blockSize) + " of " +
      HumanBytes(static_cast<double>(usage.totalBlocks) * blockSize) + ")";
  const std::string threshold = "the threshold is " + std::to_string(minFreePercent_) + "%";
  if (BelowShare(usage.availableBlocks, usage.totalBlocks, minFreePercent_)) {
    return CheckResult::Failed("LOW_SPACE", mountPoint + " has only " + space + "; " + threshold);
  }
  if (usage.totalInodes == 0) {
    return CheckResult::Passed(mountPoint + " has " + space + "; it does not count inodes");
  }
  const std::string inodes = Percent(Share(usage.availableInodes, usage.totalInodes)) +
                             " of the inodes free (" + std::to_string(usage.availableInodes) +
                             " of " + std::to_string(usage.totalInodes) + ")";
  if (BelowShare(usage.availableInodes, usage.totalInodes, minFreePercent_)) {
    return CheckResult::Failed("LOW_INODES", mountPoint + " has only " + inodes + "; " + threshold);
  }
  return CheckResult::Passed(mountPoint + " has " + space + " and " + inodes);
}

}  // namespace filesystemdiag
