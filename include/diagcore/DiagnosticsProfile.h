// DiagnosticsProfile: what a client that follows the DMTF Diagnostics Profile
// walks, offered to a plug-in per service, each part chosen by the plug-in.
//
// A plug-in calls OfferDiagnosticsProfile in its start-up, once per service,
// after registering the service, its setting data and its capabilities:
//
//   NQENDRA20::ProfileOptions options;
//   options.classes = NQENDRA20::ProfileClasses::WithPrefix("ACME");
//   options.retention = true;          // records expire by ResultPersistence
//   options.recordBound = 1000;        // and at most 1000 are kept
//   options.runDiagnosticService = true;
//   NQENDRA20::OfferDiagnosticsProfile(broker, context, service, setting,
//                                      capabilities, options);
//
// Its association classes are served by the conformant association functions
// (DIAGCORE_CIM_PROVIDER), navigable both ways. A service that is not offered
// the profile behaves as it always did.
#ifndef DIAGCORE_DIAGNOSTICSPROFILE_H_
#define DIAGCORE_DIAGNOSTICSPROFILE_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/DiagService.h"
#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

// The plug-in's subclasses under which the profile's objects are served.
struct DIAGCORE_EXPORT ProfileClasses {
  std::string elementSettingData;      // of CIM_ElementSettingData
  std::string elementCapabilities;     // of CIM_ElementCapabilities
  std::string log;                     // of CIM_DiagnosticLog
  std::string useOfLog;                // of CIM_UseOfLog
  std::string logManagesRecord;        // of CIM_LogManagesRecord
  std::string recordAppliesToElement;  // of CIM_RecordAppliesToElement
  std::string job;                     // of CIM_ConcreteJob
  std::string owningJobElement;        // of CIM_OwningJobElement
  std::string affectedJobElement;      // of CIM_AffectedJobElement

  // Each class named `prefix`, "_" and the DMTF name less its "CIM_"
  // ("ACME_ElementSettingData", ..., "ACME_ConcreteJob", ...).
  static ProfileClasses WithPrefix(const std::string& prefix);
};

struct DIAGCORE_EXPORT ProfileOptions {
  ProfileClasses classes;

  // Each record gets an ExpirationDate from the ResultPersistence (seconds)
  // that the service's setting data holds at the time of the run, and is
  // removed with its associations (and its job) once that time has passed,
  // before any request that could serve it. 0: removed before the next
  // request; 4294967295, absent or not a number: kept.
  bool retention = false;

  // At most this many runs (each a record, its job and their associations)
  // kept per service; a run beyond it removes the oldest first. 0: no bound.
  unsigned int recordBound = 0;

  // The service answers RunDiagnosticService with a job.
  bool runDiagnosticService = false;
};

// Registers, for the registered `service`, an ElementSettingData to
// `settingData` (IsDefault and IsCurrent 1), an ElementCapabilities to
// `capabilities` (Characteristics 2, Default), a DiagnosticLog (InstanceID
// "<log class>:<service Name>") and a UseOfLog from the log to the service.
// From then on every run of the service ties its record to that log
// (LogManagesRecord) and to the tested element (RecordAppliesToElement), and
// the record's InstanceID ends in ":<n>", the run's number, so that two runs
// in one second leave two records. Traces a warning and returns false, with
// nothing registered, when the service, the setting data or the
// capabilities are null or not registered, when a class of `options` is
// empty, or when the service was already offered the profile.
DIAGCORE_EXPORT bool OfferDiagnosticsProfile(const CMPIBroker* broker, const CMPIContext* context,
                                             DiagService* service, InstanceImpl* settingData,
                                             InstanceImpl* capabilities,
                                             const ProfileOptions& options);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGNOSTICSPROFILE_H_
