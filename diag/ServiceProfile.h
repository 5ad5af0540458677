// What a service that was offered the Diagnostics Profile keeps for its
// runs. Internal to the library; see diagcore/DiagnosticsProfile.h.
#ifndef DIAGCORE_DIAG_SERVICEPROFILE_H_
#define DIAGCORE_DIAG_SERVICEPROFILE_H_

#include <atomic>
#include <memory>
#include <string>

#include "diagcore/DiagService.h"
#include "diagcore/DiagnosticsProfile.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

struct ServiceProfile {
  ProfileOptions options;
  std::string servicePathText;
  std::string logPathText;
  // Registered, and so kept for the life of the process.
  const InstanceImpl* settingData = nullptr;
  // Numbers the runs, so that each run's objects have keys of their own.
  mutable std::atomic<unsigned long long> runs{0};
};

// The profile `service` was offered, or null: a service without one runs as
// it always did.
std::shared_ptr<const ServiceProfile> ProfileOf(const DiagService* service);

// Gives `service` its profile; false when it has one already.
bool AttachProfile(const DiagService* service, std::shared_ptr<const ServiceProfile> profile);

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_SERVICEPROFILE_H_
