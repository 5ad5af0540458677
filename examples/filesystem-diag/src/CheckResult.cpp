#include "CheckResult.h"

#include <utility>

namespace filesystemdiag {

CheckResult CheckResult::Passed(std::string text) {
  CheckResult result;
  result.outcome = Outcome::kPassed;
  result.text = std::move(text);
  return result;
}

CheckResult CheckResult::Skipped(std::string text) {
  CheckResult result;
  result.outcome = Outcome::kSkipped;
  result.text = std::move(text);
  return result;
}

CheckResult CheckResult::Failed(std::string errorCode, std::string text) {
  CheckResult result;
  result.outcome = Outcome::kFailed;
  result.errorCode = std::move(errorCode);
  result.text = std::move(text);
  return result;
}

}  // namespace filesystemdiag
