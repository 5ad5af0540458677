// One method call on a service that was offered the Diagnostics Profile:
// RunDiagnostic, whose record is tied to the service's log and the tested
// element and may expire, and RunDiagnosticService, which leaves a job too.
// Internal to the library; see diagcore/DiagnosticsProfile.h.
#ifndef DIAGCORE_DIAG_PROFILERUN_H_
#define DIAGCORE_DIAG_PROFILERUN_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <memory>
#include <optional>
#include <string>

#include "diag/CimTime.h"
#include "diag/RunSteps.h"
#include "diag/ServiceProfile.h"
#include "diagcore/DiagService.h"
#include "diagcore/DiagnosticRecord.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

class ProfileRun {
 public:
  ProfileRun(DiagService& service, const ServiceProfile& profile, const CMPIBroker* broker,
             const CMPIContext* context);

  // As DiagService::invokeMethod, for "RunDiagnostic" and, when the profile
  // says so, "RunDiagnosticService".
  CMPIStatus invoke(const CMPIResult* result, const std::string& methodName, const CMPIArgs* in,
                    CMPIArgs* out) const;

 private:
  // How long a run's objects are kept.
  struct Retention {
    InstanceRegistry::Lifetime lifetime;
    std::string expirationDate;     // "" when kept for good
    std::string timeBeforeRemoval;  // the same as an interval
  };

  // What the test did when run for a job.
  struct Outcome {
    unsigned int result = 0;
    bool threw = false;
    std::string failure;
  };

  CMPIStatus runDiagnostic(const CMPIResult* result, const std::string& elementText,
                           std::unique_ptr<DiagnosticRecord> record) const;
  CMPIStatus runDiagnosticService(const CMPIResult* result, CMPIArgs* out,
                                  const std::string& elementText,
                                  std::unique_ptr<DiagnosticRecord> record,
                                  std::optional<CMPIUint32> persistence) const;

  Outcome runForJob(InstanceImpl& element, DiagnosticRecord& record) const;
  // The record completed as RunDiagnostic completes it, its InstanceID
  // numbered `run`; the service's texts it repeats.
  ServiceTexts complete(DiagnosticRecord& record, InstanceImpl& element, const CimTime& now,
                        unsigned long long run) const;
  std::optional<CMPIUint32> defaultPersistence() const;
  Retention retentionFor(const CimTime& now, std::optional<CMPIUint32> persistence) const;
  // Adds the record, its LogManagesRecord and its RecordAppliesToElement;
  // the record's path text, or "" when it could not be built.
  std::string addRecord(InstanceRegistry::Batch& batch, std::unique_ptr<DiagnosticRecord> record,
                        const std::string& elementText) const;
  std::unique_ptr<InstanceImpl> newJob(const Outcome& outcome, const DiagnosticRecord& record,
                                       const ServiceTexts& texts, const CimTime& start,
                                       const CimTime& end, const Retention& retention,
                                       unsigned long long run) const;

  DiagService& service_;
  const ServiceProfile& profile_;
  const CMPIBroker* broker_;
  const CMPIContext* context_;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_PROFILERUN_H_
