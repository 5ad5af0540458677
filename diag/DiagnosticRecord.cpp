#include "diagcore/DiagnosticRecord.h"

#include <utility>

#include "diag/PropertyDefaults.h"

namespace NQENDRA20 {

DiagnosticRecord::DiagnosticRecord(std::string className) : InstanceImpl(std::move(className)) {
  DiagnosticRecord::init();
}

DiagnosticRecord::~DiagnosticRecord() = default;

void DiagnosticRecord::init() {
  AssignDefaults(*this, {{"RecordFormat", ""},
                         {"Locale", "en"},
                         {"RecordType", "2"},
                         {"LoopsFailed", "0"},
                         {"LoopsPassed", "0"}});
}

void DiagnosticRecord::pass(unsigned int loopsPassed) {
  (*this)["LoopsPassed"] = std::to_string(loopsPassed);
  (*this)["ErrorCount"] = "0";
  (*this)["RecordData"] = "Test Passed";
}

void DiagnosticRecord::fail(unsigned int loopsFailed, std::string errorCode,
                            unsigned int errorCount, std::string recordData) {
  (*this)["LoopsFailed"] = std::to_string(loopsFailed);
  (*this)["ErrorCode"] = std::move(errorCode);
  (*this)["ErrorCount"] = std::to_string(errorCount);
  (*this)["RecordData"] = std::move(recordData);
}

}  // namespace NQENDRA20
