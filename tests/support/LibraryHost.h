// The one fixture of the library's tests: a cmpihost::Host that serves
// classes through the library's MI functions or through the test plug-in,
// the library's traces as the host captured them, test bags, and the path
// texts of the plug-in's objects.
#ifndef DIAGCORE_TESTS_SUPPORT_LIBRARYHOST_H_
#define DIAGCORE_TESTS_SUPPORT_LIBRARYHOST_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cmpihost/Host.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/ProviderRegistration.h"
#include "cmpihost/Reply.h"
#include "diagcore/InstanceImpl.h"
#include "plugin/DiagTestPlugin.h"

namespace diagcore_test {

// An absolute path below the project's source tree; tests/core/data/<file>.
std::string SourcePath(const std::string& relative);
std::string CoreData(const std::string& file);

// ---- Traces ------------------------------------------------------------------

constexpr int kWarning = 3;  // CMPI_SEV_WARNING
constexpr int kDebug = 4;    // CMPI_DEV_DEBUG

// One logMessage of the library: severity and text.
struct TraceLine {
  int severity = 0;
  std::string text;
};
bool operator==(const TraceLine& a, const TraceLine& b);
void PrintTo(const TraceLine& line, std::ostream* out);

// The library's records (id "diagcore"), in order; one of another kind than
// logMessage is kept with severity -1, so that a test sees it.
std::vector<TraceLine> LibraryTraces(const cmpihost::Host& host);
TraceLine Debug(std::string text);
TraceLine Warning(std::string text);
std::vector<TraceLine> Repeat(const std::vector<TraceLine>& lines, int times);
std::vector<TraceLine> Concat(std::vector<TraceLine> a, const std::vector<TraceLine>& b);

// ---- Bags --------------------------------------------------------------------

using PropertyList = std::initializer_list<std::pair<const std::string, std::string>>;

// A bag of a given class with given properties; init() adds nothing.
class TestBag : public NQENDRA20::InstanceImpl {
 public:
  explicit TestBag(std::string className, PropertyList properties = {});
  void init() override;
};

// What a MethodBag's method receives; it answers with its own status.
struct MethodCall {
  const CMPIBroker* broker;
  const CMPIContext* context;
  const CMPIResult* result;
  const CMPIObjectPath* path;
  const std::string& methodName;
};

class MethodBag : public TestBag {
 public:
  using Method = std::function<CMPIStatus(const MethodCall&)>;
  MethodBag(std::string className, PropertyList properties, Method method);
  CMPIStatus invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* path,
                          std::string methodName, const CMPIArgs* in, CMPIArgs* out) override;
  int calls() const { return calls_.load(); }

 private:
  Method method_;
  std::atomic<int> calls_{0};
};

// A bag to be handed to the registry, which keeps it for the rest of the
// process once registered; one whose registration failed is still the caller's.
template <typename Bag = TestBag, typename... Args>
Bag* NewBag(Args&&... args) {
  return new Bag(std::forward<Args>(args)...);
}

// A DCT_Element bag with its two keys and `extra`, and its path text.
TestBag* NewElement(const std::string& deviceId, PropertyList extra = {});
std::string ElementText(const std::string& deviceId);

// What is written to std::cout while it lives (the library's debugging lines).
class StdoutCapture {
 public:
  StdoutCapture();
  ~StdoutCapture();
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;
  std::string text() const { return buffer_.str(); }

 private:
  std::ostringstream buffer_;
  std::streambuf* saved_;
};

// ---- The host ----------------------------------------------------------------

struct ProviderHostOptions {
  bool projectSchema = false;         // schema/diagcore.mof first
  std::vector<std::string> mofFiles;  // then these, in order
  std::vector<std::string> classes;   // served by the library's MI functions
  std::string nameSpace = "root/cimv2";
  std::size_t logBound = 100000;  // records of log capture; 0: off
};

// The classes of tests/core/data (system.mof too on request), served.
ProviderHostOptions CoreHostOptions(bool withSystem = false);
// The schema and the test plug-in's MOF; with `servedByLibrary` the
// plug-in's classes are served by the library's MI functions, without the
// plug-in's start-up.
ProviderHostOptions DiagHostOptions(bool servedByLibrary = false);

class ProviderHost {
 public:
  explicit ProviderHost(const ProviderHostOptions& options);
  cmpihost::Host& host() { return *host_; }

 private:
  std::unique_ptr<cmpihost::Host> host_;
};

// Hands `bag` to the registry inside a call scope, as a plug-in's start-up does.
void RegisterInScope(cmpihost::Host& host, NQENDRA20::InstanceImpl* bag);

// Registers the in-process test plug-in (or the profile one) for its classes.
void RegisterTestPlugin(cmpihost::Host& host);
void RegisterProfilePlugin(cmpihost::Host& host);

// ---- Paths -------------------------------------------------------------------

// 2024-03-05 06:07:08 UTC: the host's clock unless a test moves it.
std::chrono::system_clock::time_point FixedTime();
// The CIM date-time text the host prints for `when` (local time and offset).
std::string CimDateTime(std::chrono::system_clock::time_point when);

// Path texts in root/cimv2 of the plug-in's objects, and without namespace.
std::string ServicePath(const std::string& name);
std::string DevicePath(const std::string& deviceId);
std::string RecordPath(const std::string& instanceId);
std::string ServiceText(const std::string& name);
std::string DeviceText(const std::string& deviceId);
// Its references keep the host and namespace the builder gave them.
std::string AvailabilityText(const std::string& service, const std::string& deviceId);

// ---- Instances ---------------------------------------------------------------

// The property of that name of `instance`; fails the test when missing.
const cmpihost::Value& Prop(const cmpihost::InstanceSnapshot& instance, const std::string& name);

// One property as a client sees it: its CIM type and its MOF literal.
struct Expected {
  const char* name;
  CMPIType type;
  std::string mof;
};
void ExpectProperties(const cmpihost::InstanceSnapshot& instance,
                      const std::vector<Expected>& expected);

// "Class:key" of an instance: its InstanceID, Name or DeviceID.
std::string ClassAndKey(const cmpihost::InstanceSnapshot& instance);

// The kind of each result call of a reply, in order.
std::vector<cmpihost::ResultEvent::Kind> Kinds(const cmpihost::Reply& reply);

// ---- Fixtures ----------------------------------------------------------------

class LibraryHostTest : public ::testing::Test {
 protected:
  explicit LibraryHostTest(const ProviderHostOptions& options) : provider_(options) {}

  cmpihost::Host& host() { return provider_.host(); }

  // Registers `bag` as a plug-in's start-up does and returns it.
  template <typename Bag>
  Bag* Register(Bag* bag) {
    RegisterInScope(host(), bag);
    return bag;
  }

  // The library's traces since the last call (or since the start).
  std::vector<TraceLine> TakeTraces();

  ProviderHost provider_;
};

class CoreHostTest : public LibraryHostTest {
 protected:
  explicit CoreHostTest(bool withSystem = false) : LibraryHostTest(CoreHostOptions(withSystem)) {}
};

// The schema and the plug-in's classes, and a clock the test controls.
class DiagHostTest : public LibraryHostTest {
 protected:
  explicit DiagHostTest(bool servedByLibrary = false);

  // From now on each newDateTime is one second later than the one before,
  // starting at FixedTime().
  void AdvanceClockPerCall();
  // From now on the clock says FixedTime() and `offset`.
  void SetClock(std::chrono::microseconds offset);

  // RunDiagnostic on the service `name` for the element path text `element`.
  cmpihost::Reply Run(const std::string& name, const std::string& element);
  std::vector<cmpihost::InstanceSnapshot> Records();

 private:
  std::atomic<int> clockCalls_{0};
  std::atomic<bool> advancing_{false};
  std::atomic<long long> offsetMicros_{0};
};

// The in-process test plug-in, started.
class PluginHostTest : public DiagHostTest {
 protected:
  PluginHostTest();
};

// ---- A broker in front of the host's one ---------------------------------------

// Notes, in order, the calls a test cares about and may answer them itself;
// passes every call on with the real broker (the host knows it by its tables).
class RecordingBroker {
 public:
  // In front of `real`; one at a time per process.
  explicit RecordingBroker(const CMPIBroker* real);
  ~RecordingBroker();
  RecordingBroker(const RecordingBroker&) = delete;
  RecordingBroker& operator=(const RecordingBroker&) = delete;

  const CMPIBroker* broker() const { return &broker_; }

  // "newDateTime", "newObjectPath <class>", "enumerateInstances <class>".
  std::vector<std::string> calls;
  // When set, answers enumerateInstances instead of the host.
  std::function<CMPIEnumeration*(const CMPIObjectPath*, CMPIStatus*)> enumerate;

 private:
  static CMPIDateTime* NewDateTime(const CMPIBroker* broker, CMPIStatus* rc);
  static CMPIObjectPath* NewObjectPath(const CMPIBroker* broker, const char* nameSpace,
                                       const char* className, CMPIStatus* rc);
  static CMPIEnumeration* EnumerateInstances(const CMPIBroker* broker, const CMPIContext* context,
                                             const CMPIObjectPath* path, const char** properties,
                                             CMPIStatus* rc);

  const CMPIBroker* real_;
  CMPIBrokerFT bft_;
  CMPIBrokerEncFT eft_;
  CMPIBroker broker_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SUPPORT_LIBRARYHOST_H_
