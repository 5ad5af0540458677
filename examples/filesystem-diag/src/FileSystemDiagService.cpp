#include "FileSystemDiagService.h"

#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "ClassNames.h"
#include "MountTable.h"

namespace filesystemdiag {
namespace {

// CIM class names compare without regard to letter case.
bool SameClassName(const std::string& a, const std::string& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

bool IsTestableMountPoint(const std::string& path) {
  const std::vector<MountEntry> mounts = MountTable::ReadProcSelfMounts().testable();
  return std::any_of(mounts.begin(), mounts.end(),
                     [&path](const MountEntry& entry) { return entry.mountPoint == path; });
}

FileSystemDiagService::FileSystemDiagService(const ServiceTexts& texts,
                                             std::unique_ptr<FileSystemCheck> check,
                                             std::string installDate, std::string systemName,
                                             MountLookup isMounted)
    : DiagService(kServiceClass, kRecordClass, texts.name, std::move(installDate),
                  std::move(systemName)),
      check_(std::move(check)),
      isMounted_(std::move(isMounted)) {
  (*this)["Name"] = texts.name;
  (*this)["Caption"] = texts.caption;
  (*this)["Description"] = texts.description;
  (*this)["ElementName"] = texts.elementName;
}

unsigned int FileSystemDiagService::runTest(NQENDRA20::InstanceImpl& managedElement,
                                            NQENDRA20::DiagnosticRecord* record) {
  if (!SameClassName(managedElement.getClassName(), kFileSystemClass)) {
    record->fail(1, "NOT_A_FILE_SYSTEM", 1,
                 "the element is of class " + managedElement.getClassName() + ", not " +
                     kFileSystemClass + "; nothing was tested");
    return kInvalidParameter;
  }
  const auto deviceId = managedElement.find("DeviceID");
  if (deviceId == managedElement.end() || deviceId->second.empty()) {
    record->fail(1, "NO_DEVICE_ID", 1,
                 "the element names no DeviceID, so there is no mount point to test");
    return kInvalidParameter;
  }
  const std::string& mountPoint = deviceId->second;
  if (!isMounted_(mountPoint)) {
    record->fail(1, "NOT_MOUNTED", 1,
                 mountPoint +
                     " is not the mount point of a file system this diagnostic tests "
                     "(see /proc/self/mounts); nothing was tested");
    return kFailed;
  }
  return Report(check_->run(mountPoint), *record);
}

unsigned int Report(const CheckResult& result, NQENDRA20::DiagnosticRecord& record) {
  switch (result.outcome) {
    case CheckResult::Outcome::kPassed:
      record.pass(1);
      record["RecordData"] = "Test Passed: " + result.text;
      return kCompletedWithNoError;
    case CheckResult::Outcome::kSkipped:
      record.pass(0);
      record["RecordData"] = "Skipped: " + result.text;
      return kCompletedWithNoError;
    case CheckResult::Outcome::kFailed:
      break;
  }
  record.fail(1, result.errorCode, 1, result.text);
  return kFailed;
}

}  // namespace filesystemdiag
