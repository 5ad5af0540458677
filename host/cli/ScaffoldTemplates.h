// The files `cmpihost new` writes, with @P@ for the class prefix, @N@ for the
// provider name and @L@ for the library name. They follow the plug-in guide
// and TinyDiag (tests/install/plugin), the guide's model, which CI builds
// against an installed tree the same way as a generated project.
#ifndef CMPIHOST_CLI_SCAFFOLDTEMPLATES_H_
#define CMPIHOST_CLI_SCAFFOLDTEMPLATES_H_

namespace cmpihost::cli::scaffold {

inline const char* const kSource =
    R"TPL(// @N@: a diagnostic plug-in. Its service tests the devices that the
// start-up registers; fill in runTest (and the devices) with the real check.
#include <memory>
#include <string>
#include <utility>

#include <diagcore/diagcore.h>

// The library's namespace, under a name that reads better in a plug-in.
namespace diag = NQENDRA20;

namespace {

constexpr const char* kServiceClass = "@P@_DiagService";
constexpr const char* kRecordClass = "@P@_DiagRecord";
constexpr const char* kDeviceClass = "@P@_Device";

class SelfTest : public diag::DiagService {
 public:
  SelfTest(std::string date, std::string system)
      : DiagService(kServiceClass, kRecordClass, "", date, system) {
    (*this)["Name"] = "SelfTest";
    (*this)["Caption"] = "Self test";
    (*this)["Description"] = "Checks that the device answers";
    (*this)["ElementName"] = "SelfTest";
  }

  // The test itself: look at the element, say in the record how it went,
  // and return 0 for passed, anything else for failed.
  unsigned int runTest(diag::InstanceImpl& element, diag::DiagnosticRecord* record) override {
    const std::string device = element["DeviceID"];
    if (device.empty()) {
      record->fail(1, "NODEVICE", 1, "The element names no device");
      return 1;
    }
    record->pass(1);
    return 0;
  }
};

class @N@Factory : public diag::ServiceFactory {
  diag::DiagService** CreateServicesImpl(std::string date, std::string system,
                                         unsigned int& count) override {
    auto** services = new diag::DiagService*[1];  // the caller's, with each service
    services[0] = new SelfTest(date, system);
    count = 1;
    return services;
  }
};

// An element the service tests. The plug-in serves its devices itself: a
// CIMOM cannot answer an upcall for them while this provider is starting.
class Device : public diag::InstanceImpl {
 public:
  Device(std::string system, std::string id)
      : InstanceImpl(kDeviceClass), system_(std::move(system)), id_(std::move(id)) {
    Device::init();
  }

  void init() override {
    (*this)["SystemCreationClassName"] = diag::cimComputerSystemClass;
    (*this)["SystemName"] = system_;
    (*this)["CreationClassName"] = kDeviceClass;
    (*this)["DeviceID"] = id_;
    (*this)["ElementName"] = id_;
  }

 private:
  std::string system_;
  std::string id_;
};

void RegisterDevices(const CMPIBroker* broker, const CMPIContext* context) {
  const std::string system = diag::CMPIUtil::GetSystemName(broker, context);
  diag::InstanceRegistry::Singleton()->RegisterInstance(broker, context,
                                                        new Device(system, "device0"));
}

// Registers each service with its setting data and capabilities, then links
// it to the devices it can test.
void RegisterServices(const CMPIBroker* broker, const CMPIContext* context) {
  unsigned int count = 0;
  const std::unique_ptr<diag::DiagService*[]> services(
      @N@Factory().CreateServices(broker, context, count));
  diag::InstanceRegistry* registry = diag::InstanceRegistry::Singleton();
  for (unsigned int i = 0; i < count; ++i) {
    const std::string name = (*services[i])["Name"];
    registry->RegisterInstance(broker, context, services[i]);  // the registry's for good
    auto* setting = new diag::DiagServiceSettingData("@P@_DiagSetting");
    (*setting)["InstanceID"] = "@P@:Setting:" + name;
    registry->RegisterInstance(broker, context, setting);
    auto* capabilities = new diag::DiagServiceCapabilitiesData("@P@_DiagCapabilities");
    (*capabilities)["InstanceID"] = "@P@:Capabilities:" + name;
    registry->RegisterInstance(broker, context, capabilities);
    diag::AvailServiceFactory().CreateAvailableServices(broker, context, services[i], kDeviceClass,
                                                        "@P@_AvailableDiagnosticService", 1, 1);
  }
}

// Runs once, at the first MI factory call.
void Start@N@(const CMPIBroker* broker, const CMPIContext* context) {
  RegisterDevices(broker, context);
  RegisterServices(broker, context);
}

}  // namespace

DIAGCORE_CIM_PROVIDER(@N@, Start@N@);
)TPL";

inline const char* const kMof =
    R"TPL(// @N@'s classes, derived from the DMTF classes of the schema that the
// CIMOM holds (for cmpihost: share/diagcore/schema/diagcore.mof, loaded first).

// The elements the service tests.
class @P@_Device : CIM_LogicalDevice {
};

class @P@_DiagService : CIM_DiagnosticService {
};

class @P@_DiagRecord : CIM_DiagnosticServiceRecord {
};

class @P@_DiagSetting : CIM_DiagnosticSettingData {
};

class @P@_DiagCapabilities : CIM_DiagnosticServiceCapabilities {
};

// EnumOrder: the registry serves the associations in the order the
// availability factory numbered them.
[Association]
class @P@_AvailableDiagnosticService : CIM_AvailableDiagnosticService {
    uint32 EnumOrder;
};
)TPL";

inline const char* const kHostMof =
    R"TPL(// What a CIMOM already has and cmpihost does not: the computer system whose
// first instance names the system of every service. Load it in cmpihost
// only; in a CIMOM another provider serves the system.
class TORSK_ComputerSystem : CIM_ComputerSystem {
};

instance of TORSK_ComputerSystem {
    CreationClassName = "TORSK_ComputerSystem";
    Name = "host.example";
};
)TPL";

inline const char* const kRegistration =
    R"TPL(# @N@, for the small-footprint CIMOM and for cmpihost: every class it
# serves, from lib@L@.so. "unload: never": a CIMOM that unloads an idle
# provider would lose every diagnostic record.
[@P@_Device]
   provider: @N@
   location: @L@
   type: instance
   namespace: root/cimv2
   unload: never

[@P@_DiagService]
   provider: @N@
   location: @L@
   type: instance method
   namespace: root/cimv2
   unload: never

[@P@_DiagRecord]
   provider: @N@
   location: @L@
   type: instance
   namespace: root/cimv2
   unload: never

[@P@_DiagSetting]
   provider: @N@
   location: @L@
   type: instance
   namespace: root/cimv2
   unload: never

[@P@_DiagCapabilities]
   provider: @N@
   location: @L@
   type: instance
   namespace: root/cimv2
   unload: never

[@P@_AvailableDiagnosticService]
   provider: @N@
   location: @L@
   type: instance association
   namespace: root/cimv2
   unload: never
)TPL";

inline const char* const kCMakeLists = R"TPL(# @N@ built against an installed libdiagcore:
#   cmake -S . -B build -DCMAKE_PREFIX_PATH=<diagcore's prefix>
#   cmake --build build && ctest --test-dir build
cmake_minimum_required(VERSION 3.25)
project(@L@ LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)

find_package(diagcore 1 REQUIRED)

# The plug-in: lib@L@.so, which a CIMOM (or cmpihost) loads through
# @L@.reg ("location: @L@").
add_library(@L@ MODULE @N@.cpp)
target_link_libraries(@L@ PRIVATE diagcore::diagcore)
target_compile_options(@L@ PRIVATE -Wall -Wextra -Werror)

# Its test, in the embedded host (diagcore::cmpihost), which loads the
# schema, the plug-in's MOF and its registration file as a CIMOM would.
enable_testing()
find_package(GTest REQUIRED)
add_executable(@L@_test @N@Test.cpp)
target_link_libraries(@L@_test PRIVATE diagcore::cmpihost diagcore::diagcore GTest::gtest_main)
target_compile_options(@L@_test PRIVATE -Wall -Wextra -Werror)
target_compile_definitions(@L@_test PRIVATE
  DIAGCORE_SCHEMA_DIR="${DIAGCORE_SCHEMA_DIR}"
  PLUGIN_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}"
  PLUGIN_LIBRARY_DIR="$<TARGET_FILE_DIR:@L@>")
add_dependencies(@L@_test @L@)
add_test(NAME @L@_test COMMAND @L@_test)
)TPL";

inline const char* const kTest =
    R"TPL(// @N@ in the embedded host: the plug-in loaded as a CIMOM loads it, and
// asked what a client would ask.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <cmpihost/Host.h>

namespace {

const std::string kSystem =
    R"(SystemCreationClassName="TORSK_ComputerSystem",SystemName="host.example")";
// In the classes' key order, as the host prints paths.
const std::string kService = R"(@P@_DiagService.Name="SelfTest",)" + kSystem +
                             R"(,CreationClassName="@P@_DiagService")";
const std::string kDevice =
    R"(@P@_Device.)" + kSystem + R"(,CreationClassName="@P@_Device",DeviceID="device0")";

class @N@Test : public ::testing::Test {
 protected:
  // One host for the whole program: the library's registry and the
  // plug-in's start-up are process-wide.
  static void SetUpTestSuite() {
    host_ = std::make_unique<cmpihost::Host>();
    host_->loadMof(DIAGCORE_SCHEMA_DIR "/diagcore.mof");
    host_->loadMof(PLUGIN_SOURCE_DIR "/@L@.mof");
    host_->loadMof(PLUGIN_SOURCE_DIR "/@L@-host.mof");
    host_->loadRegistrationFile(PLUGIN_SOURCE_DIR "/@L@.reg", {PLUGIN_LIBRARY_DIR});
    host_->activateProviders();  // the plug-in's start-up runs now
  }
  static void TearDownTestSuite() { host_.reset(); }

  static std::unique_ptr<cmpihost::Host> host_;
};

std::unique_ptr<cmpihost::Host> @N@Test::host_;

TEST_F(@N@Test, ServesItsServiceForTheDevice) {
  const cmpihost::Reply services = host_->enumerateInstanceNames("root/cimv2", "@P@_DiagService");
  ASSERT_EQ(services.status.rc, CMPI_RC_OK);
  ASSERT_EQ(services.paths().size(), 1U);
  EXPECT_EQ(services.paths()[0], "//localhost/root/cimv2:" + kService);

  cmpihost::AssociationFilter filter;
  filter.assocClass = "@P@_AvailableDiagnosticService";
  const cmpihost::Reply devices = host_->associatorNames(kService, filter);
  ASSERT_EQ(devices.paths().size(), 1U);
  EXPECT_EQ(devices.paths()[0], "//localhost/root/cimv2:" + kDevice);
}

TEST_F(@N@Test, RunDiagnosticPassesAndLeavesARecord) {
  const cmpihost::Reply run = host_->invokeMethod(
      kService, "RunDiagnostic", {cmpihost::Argument{"ManagedElement", kDevice, {}}});
  ASSERT_EQ(run.status.rc, CMPI_RC_OK);
  ASSERT_EQ(run.data().size(), 1U);
  EXPECT_EQ(run.data()[0].uint, 0U);

  const std::vector<cmpihost::InstanceSnapshot> records =
      host_->enumerateInstances("root/cimv2", "@P@_DiagRecord").instances();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].find("ManagedElementName")->text, "device0");
  EXPECT_EQ(records[0].find("RecordData")->text, "Test Passed");
  EXPECT_EQ(records[0].find("LoopsPassed")->uint, 1U);
}

}  // namespace
)TPL";

inline const char* const kReadme = R"TPL(# @N@

A diagnostic plug-in for the classes @P@_*, written by `cmpihost new`.

| file | what it is |
|---|---|
| `@N@.cpp` | the service (fill in `runTest`), its start-up and the provider macro |
| `@L@.mof` | the classes, derived from the DMTF classes |
| `@L@-host.mof` | the computer system, for cmpihost only (a CIMOM has its own) |
| `@L@.reg` | the registration, for the small-footprint CIMOM and cmpihost |
| `@N@Test.cpp` | the test: the plug-in in the embedded host, RunDiagnostic and its record |

Build and test against an installed libdiagcore:

    cmake -S . -B build -DCMAKE_PREFIX_PATH=<diagcore's prefix>
    cmake --build build
    ctest --test-dir build

Ask it what a client would ask:

    cmpihost --mof <diagcore's prefix>/share/diagcore/schema/diagcore.mof \
      --mof @L@.mof --mof @L@-host.mof --providers @L@.reg --lib-dir build \
      cm '@P@_DiagService.CreationClassName="@P@_DiagService",Name="SelfTest",SystemCreationClassName="TORSK_ComputerSystem",SystemName="host.example"' \
      RunDiagnostic 'ManagedElement=@P@_Device.CreationClassName="@P@_Device",DeviceID="device0",SystemCreationClassName="TORSK_ComputerSystem",SystemName="host.example"'
)TPL";

}  // namespace cmpihost::cli::scaffold

#endif  // CMPIHOST_CLI_SCAFFOLDTEMPLATES_H_
