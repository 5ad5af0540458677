// FileSystemDiagService: a diagnostic service that runs one FileSystemCheck
// on the mount point a RunDiagnostic names, and reports it on the record.
#ifndef FILESYSTEMDIAG_FILESYSTEMDIAGSERVICE_H_
#define FILESYSTEMDIAG_FILESYSTEMDIAGSERVICE_H_

#include <functional>
#include <memory>
#include <string>

#include "CheckResult.h"
#include "FileSystemCheck.h"
#include "diagcore/DiagService.h"
#include "diagcore/DiagnosticRecord.h"
#include "diagcore/InstanceImpl.h"

namespace filesystemdiag {

// RunDiagnostic's return values, from the DMTF value map of the method.
inline constexpr unsigned int kCompletedWithNoError = 0;
inline constexpr unsigned int kFailed = 4;
inline constexpr unsigned int kInvalidParameter = 5;

// What a service's texts say about it.
struct ServiceTexts {
  std::string name;         // the key Name, e.g. "FreeSpaceCheck"
  std::string caption;      // short; records say "Result for <caption>"
  std::string description;  // what the check does, in a sentence or two
  std::string elementName;  // the name a console shows
};

// Whether a path is the mount point of a file system the diagnostic tests.
using MountLookup = std::function<bool(const std::string&)>;

// The default lookup: the path is a mount point that MountTable's
// testable() lists in /proc/self/mounts now.
bool IsTestableMountPoint(const std::string& path);

class FileSystemDiagService : public NQENDRA20::DiagService {
 public:
  FileSystemDiagService(const ServiceTexts& texts, std::unique_ptr<FileSystemCheck> check,
                        std::string installDate, std::string systemName,
                        MountLookup isMounted = IsTestableMountPoint);

  // Runs the check on the element's DeviceID (its mount point) and reports
  // it with Report(). Nothing is tested, and the record fails, when the
  // element is not an FSD_MountedFileSystem (NOT_A_FILE_SYSTEM,
  // kInvalidParameter), names no DeviceID (NO_DEVICE_ID, kInvalidParameter),
  // or when the DeviceID is not the mount point of a tested file system now
  // (NOT_MOUNTED, kFailed): a client cannot make the provider write into an
  // arbitrary folder.
  unsigned int runTest(NQENDRA20::InstanceImpl& managedElement,
                       NQENDRA20::DiagnosticRecord* record) override;

 private:
  std::unique_ptr<FileSystemCheck> check_;
  MountLookup isMounted_;
};

// Writes `result` on `record` and returns RunDiagnostic's value: passed:
// pass(1), RecordData "Test Passed: <text>", kCompletedWithNoError; skipped:
// pass(0), RecordData "Skipped: <text>", kCompletedWithNoError; failed:
// fail(1, code, 1, <text>), kFailed.
unsigned int Report(const CheckResult& result, NQENDRA20::DiagnosticRecord& record);

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_FILESYSTEMDIAGSERVICE_H_
