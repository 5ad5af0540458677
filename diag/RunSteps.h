// The steps that RunDiagnostic and the profile's runs share. Internal to the
// library.
#ifndef DIAGCORE_DIAG_RUNSTEPS_H_
#define DIAGCORE_DIAG_RUNSTEPS_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/DiagnosticRecord.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

CMPIStatus StatusOf(CMPIrc rc);
// `rc` with `message`, made by the broker.
CMPIStatus StatusOf(const CMPIBroker* broker, CMPIrc rc, const std::string& message);

// The "ManagedElement" argument, or null when it is missing or is not a
// reference: a test must never run on an element it cannot name.
const CMPIObjectPath* ManagedElementOf(const CMPIArgs* in);

// The service's texts that a run's record repeats.
struct ServiceTexts {
  std::string caption;
  std::string description;
  std::string elementName;
  std::string name;
};

// Reads them as RunDiagnostic always did: a text the plug-in never set is
// added to the service's bag, empty. Safe with runs on other threads.
ServiceTexts ReadServiceTexts(InstanceImpl& service);

// Writes the record's descriptive properties, in the order RunDiagnostic
// always wrote them.
void CompleteRecord(DiagnosticRecord& record, const ServiceTexts& texts,
                    const std::string& managedElementName, const std::string& instanceId,
                    const std::string& now);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_RUNSTEPS_H_
