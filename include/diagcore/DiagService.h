// DiagService: the abstract base of every diagnostic service a plug-in offers.
//
// The constructor fills the sixteen fixed properties of a DMTF diagnostic
// service; the plug-in's class then writes Name, Caption, Description and
// ElementName into the bag and implements runTest. A client's RunDiagnostic
// call reads the element to test, creates a DiagnosticRecord of the record
// class, runs the test, returns its result, completes the record and
// registers it with the InstanceRegistry.
//
// Example:
//   class DiskTest : public NQENDRA20::DiagService {
//    public:
//     DiskTest(std::string date, std::string system)
//         : DiagService("ACME_DiskTest", "ACME_DiskTestRecord", "", date, system) {
//       (*this)["Name"] = "DiskTest";
//       (*this)["Caption"] = "Disk test";
//     }
//     unsigned int runTest(NQENDRA20::InstanceImpl& element,
//                          NQENDRA20::DiagnosticRecord* record) override {
//       record->pass(1);
//       return 0;
//     }
//   };
#ifndef DIAGCORE_DIAGSERVICE_H_
#define DIAGCORE_DIAGSERVICE_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/DiagnosticRecord.h"
#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT DiagService : public InstanceImpl {
 public:
  // A service of the CIM class `className` whose runs leave records of
  // `recordClassName`. `spareName` is the plug-in's own; `installDate` (a CIM
  // date-time text) and `systemName` become InstallDate and SystemName.
  DiagService(std::string className, std::string recordClassName, std::string spareName,
              std::string installDate, std::string systemName);
  ~DiagService() override;

  // Handles "RunDiagnostic" (exact case) only; any other name answers
  // CMPI_RC_ERR_METHOD_NOT_FOUND. (A service offered the Diagnostics Profile
  // runs as DiagnosticsProfile.h describes, and may answer
  // "RunDiagnosticService" too.) The input argument "ManagedElement" must be
  // a reference, else CMPI_RC_ERR_INVALID_PARAMETER and nothing runs. The
  // test's result is returned as uint32 data, then returnDone; the record is
  // completed and registered after that, and the status is CMPI_RC_OK. An
  // exception from the test propagates, and no record is registered.
  CMPIStatus invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* path,
                          std::string methodName, const CMPIArgs* in, CMPIArgs* out) override;

  // Assigns the sixteen service properties (InstallDate ... Started).
  void init() override;

  // The test itself. `managedElement` holds the tested element's class name
  // and key properties as texts (DeviceID for a device) and lives for this
  // call only. `record` already holds its defaults; report on it with pass
  // or fail, and neither delete nor register it. The result is the method's
  // return value (0: completed without error).
  virtual unsigned int runTest(InstanceImpl& managedElement, DiagnosticRecord* record) = 0;

  // The constructor's arguments, as given.
  const std::string& getRecordClassName() const { return recordClassName; }
  const std::string& getSpareName() const { return spareName; }
  const std::string& getInstallDate() const { return installDate; }
  const std::string& getSystemName() const { return systemName; }

 protected:
  std::string recordClassName;
  std::string spareName;
  std::string installDate;
  std::string systemName;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGSERVICE_H_
