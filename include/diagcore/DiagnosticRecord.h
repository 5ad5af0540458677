// DiagnosticRecord: the result that one run of a diagnostic service leaves.
//
// A service's RunDiagnostic creates one per run, hands it to the plug-in's
// test (which reports with pass or fail), completes its descriptive
// properties and registers it, from where it is served like any other
// instance. Counts are written as plain decimal text; each call overwrites.
#ifndef DIAGCORE_DIAGNOSTICRECORD_H_
#define DIAGCORE_DIAGNOSTICRECORD_H_

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT DiagnosticRecord : public InstanceImpl {
 public:
  // A record of the CIM class `className` holding the defaults of init().
  explicit DiagnosticRecord(std::string className);
  ~DiagnosticRecord() override;

  // Assigns RecordFormat "", Locale "en", RecordType "2" (Results),
  // LoopsFailed "0" and LoopsPassed "0".
  void init() override;

  // A passed test: LoopsPassed, ErrorCount "0", RecordData "Test Passed".
  // LoopsFailed and ErrorCode keep what they hold.
  void pass(unsigned int loopsPassed);

  // A failed test: LoopsFailed, ErrorCode, ErrorCount and RecordData, in that
  // order. LoopsPassed keeps what it holds.
  void fail(unsigned int loopsFailed, std::string errorCode, unsigned int errorCount,
            std::string recordData);
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGNOSTICRECORD_H_
