// The host the diagnostic-model tests run in: the project's DMTF schema and
// the test plug-in's MOF, log capture on, and a clock the test controls.
#ifndef DIAGCORE_TESTS_DIAG_DIAGHOST_H_
#define DIAGCORE_TESTS_DIAG_DIAGHOST_H_

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "cmpihost/Host.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Reply.h"
#include "support/ProviderHost.h"
#include "support/Traces.h"

namespace diagcore_test {

// 2024-03-05 06:07:08 UTC: what the host's clock says unless a test advances it.
std::chrono::system_clock::time_point FixedTime();

// The CIM date-time text the host prints for `when` (local time with its
// UTC offset).
std::string CimDateTime(std::chrono::system_clock::time_point when);

// The schema and the plug-in's MOF. With `servedByLibrary`, the plug-in's
// classes are served by the library's instance and method MI functions (as
// tests/support sets them up), without the plug-in's start-up; otherwise
// nothing is served yet.
ProviderHostOptions DiagHostOptions(bool servedByLibrary = false);

// Registers the in-process test plug-in for the classes it serves, as
// diagtestplugin.reg does for the library.
void RegisterTestPlugin(cmpihost::Host& host);

// Path texts (namespace root/cimv2, no host) of the plug-in's objects.
std::string ServicePath(const std::string& name);
std::string DevicePath(const std::string& deviceId);
std::string RecordPath(const std::string& instanceId);

// The same without namespace: the library's object path text.
std::string ServiceText(const std::string& name);
std::string DeviceText(const std::string& deviceId);
// An availability association's object path text: its references keep the
// host and namespace the builder gave them.
std::string AvailabilityText(const std::string& service, const std::string& deviceId);

class DiagHostTest : public ::testing::Test {
 protected:
  explicit DiagHostTest(bool servedByLibrary = false);

  cmpihost::Host& host() { return provider_.host(); }

  // From now on each newDateTime is one second later than the one before,
  // starting at FixedTime(); returns what the first one will say.
  void AdvanceClockPerCall();

  // The library's traces since the last call (or since the start).
  std::vector<TraceLine> TakeTraces();

  ProviderHost provider_;
  std::atomic<int> clockCalls_{0};
  std::atomic<bool> advancing_{false};
};

// A test whose host serves the in-process test plug-in, started.
class PluginHostTest : public DiagHostTest {
 protected:
  PluginHostTest();

  // RunDiagnostic on the service `name` for the element path text `element`.
  cmpihost::Reply Run(const std::string& name, const std::string& element);
  // The records the host enumerates.
  std::vector<cmpihost::InstanceSnapshot> Records();
};

// The property of that name of `instance`; fails the test when missing.
const cmpihost::Value& Prop(const cmpihost::InstanceSnapshot& instance, const std::string& name);

// One property as a client sees it: its CIM type and its MOF literal.
struct Expected {
  const char* name;
  CMPIType type;
  std::string mof;
};

// Checks each expected property of `instance`.
void ExpectProperties(const cmpihost::InstanceSnapshot& instance,
                      const std::vector<Expected>& expected);

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_DIAG_DIAGHOST_H_
