// The host the profile tests run in: the diagnostic tests' host, the profile
// test plug-in's classes and registration, and a clock the test moves.
#ifndef DIAGCORE_TESTS_PROFILE_PROFILEHOST_H_
#define DIAGCORE_TESTS_PROFILE_PROFILEHOST_H_

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Reply.h"
#include "diag/DiagHost.h"
#include "profile/ProfileTestPlugin.h"

namespace diagcore_test {

// Every option on: retention, no bound, RunDiagnosticService, classes PTP_*.
profiletestplugin::StartOptions AllOn();

// Path texts (namespace root/cimv2) of the profile's objects.
std::string SettingPath(const std::string& service);
std::string CapabilitiesPath(const std::string& service);
std::string LogPath(const std::string& service);
// The record of `service`'s `run`th run at the host's fixed time.
std::string ProfileRecordPath(const std::string& service, int run);

// "Class:key" of an instance: its InstanceID, Name or DeviceID.
std::string Summary(const cmpihost::InstanceSnapshot& instance);

class ProfileTest : public DiagHostTest {
 protected:
  ProfileTest();

  // Starts the plug-in with `options`.
  void Start(const profiletestplugin::StartOptions& options);
  // The host's clock from now on: FixedTime() and `offset`.
  void SetClock(std::chrono::microseconds offset);

  cmpihost::Reply Run(const std::string& service, const std::string& device);
  cmpihost::Reply RunService(const std::string& service, const std::string& device,
                             std::vector<cmpihost::Argument> extra = {},
                             std::vector<cmpihost::Property>* out = nullptr);

  // The records the host enumerates.
  std::vector<cmpihost::InstanceSnapshot> Records();
  // The summaries of what the host delivers for each request.
  std::vector<std::string> Enumerate(const std::string& className);
  std::vector<std::string> Associators(const std::string& path, const std::string& assocClass);
  // The classes of the associations that reference `path`.
  std::vector<std::string> References(const std::string& path, const std::string& assocClass);

 private:
  std::atomic<long long> offsetMicros_{0};
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_PROFILE_PROFILEHOST_H_
