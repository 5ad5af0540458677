// CheckResult: what one file-system check found, before it becomes a record.
#ifndef FILESYSTEMDIAG_CHECKRESULT_H_
#define FILESYSTEMDIAG_CHECKRESULT_H_

#include <string>

namespace filesystemdiag {

struct CheckResult {
  // kSkipped: the check does not apply (a read-only file system for the
  // write check, say); not a failure, but nothing was tested either.
  enum class Outcome { kPassed, kSkipped, kFailed };

  static CheckResult Passed(std::string text);
  static CheckResult Skipped(std::string text);
  static CheckResult Failed(std::string errorCode, std::string text);

  Outcome outcome = Outcome::kPassed;
  std::string errorCode;  // only for kFailed, e.g. "LOW_SPACE"
  std::string text;       // one sentence for a person to read
};

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_CHECKRESULT_H_
