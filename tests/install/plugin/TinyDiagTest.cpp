// TinyDiag in the embedded host: the plug-in loaded as a CIMOM loads it, and
// asked what a client would ask.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include <cmpihost/CallScope.h>
#include <cmpihost/Host.h>
#include <diagcore/CMPIUtil.h>

namespace {

const std::string kSystem =
    R"(SystemCreationClassName="TORSK_ComputerSystem",SystemName="tinyhost.example")";
// Keys in the classes' declaration order, as the plug-in's instances give them.
const std::string kService =
    R"(TINY_DiagService.Name="PathExists",)" + kSystem + R"(,CreationClassName="TINY_DiagService")";

std::string PathElement(const std::string& path) {
  return "TINY_Path." + kSystem + R"(,CreationClassName="TINY_Path",DeviceID=")" + path + "\"";
}

// The host's "now": 2024-01-01 00:00:00, one second later at every reading,
// so that dates are known and no two runs share a record's InstanceID.
std::chrono::system_clock::time_point Tick() {
  static std::atomic<int> seconds{0};
  return std::chrono::system_clock::from_time_t(1704067200) + std::chrono::seconds(seconds++);
}

// The record of the last run on `path`, or null.
const cmpihost::InstanceSnapshot* RecordOf(const std::vector<cmpihost::InstanceSnapshot>& records,
                                           const std::string& path) {
  const cmpihost::InstanceSnapshot* last = nullptr;
  for (const cmpihost::InstanceSnapshot& record : records) {
    if (record.find("ManagedElementName")->text == path) {
      last = &record;
    }
  }
  return last;
}

class TinyDiagTest : public ::testing::Test {
 protected:
  // One host for the whole program: the library's registry and the
  // plug-in's start-up are process-wide, so a second host would meet
  // objects that the first one made.
  static void SetUpTestSuite() {
    setenv("TZ", "UTC", 1);  // the host writes local time
    tzset();
    host_ = std::make_unique<cmpihost::Host>();
    host_->loadMof(DIAGCORE_SCHEMA_DIR "/diagcore.mof");
    host_->loadMof(TINYDIAG_SOURCE_DIR "/tinydiag.mof");
    host_->loadRegistrationFile(TINYDIAG_SOURCE_DIR "/tinydiag.reg", {TINYDIAG_PLUGIN_DIR});
    host_->setClock(Tick);
    host_->captureLog(true);
    host_->activateProviders();  // creates the MIs: the plug-in's start-up runs now
  }
  static void TearDownTestSuite() { host_.reset(); }

  static cmpihost::Reply Run(const std::string& path) {
    return host_->invokeMethod(kService, "RunDiagnostic",
                               {cmpihost::Argument{"ManagedElement", PathElement(path), {}}});
  }

  static std::vector<cmpihost::InstanceSnapshot> Records() {
    return host_->enumerateInstances("root/cimv2", "TINY_DiagRecord").instances();
  }

  static std::unique_ptr<cmpihost::Host> host_;
};

std::unique_ptr<cmpihost::Host> TinyDiagTest::host_;

TEST_F(TinyDiagTest, ServesItsServiceSettingAndCapabilities) {
  const cmpihost::Reply services = host_->enumerateInstances("root/cimv2", "TINY_DiagService");
  ASSERT_EQ(services.status.rc, CMPI_RC_OK);
  ASSERT_EQ(services.instances().size(), 1U);
  const cmpihost::InstanceSnapshot service = services.instances()[0];
  EXPECT_EQ(service.path, "//localhost/root/cimv2:" + kService);
  EXPECT_EQ(service.find("InstallDate")->text, "20240101000000.000000+000");  // the first tick
  EXPECT_EQ(services.doneCount(), 1U);

  const cmpihost::Reply setting =
      host_->getInstance(R"(TINY_DiagSetting.InstanceID="TINY:Setting:PathExists")");
  ASSERT_EQ(setting.instances().size(), 1U);
  EXPECT_EQ(setting.instances()[0].find("HaltOnError")->toMof(), "TRUE");  // written "1"
  EXPECT_EQ(setting.instances()[0].find("QuickMode")->toMof(), "FALSE");   // the default "false"
  EXPECT_EQ(host_->enumerateInstanceNames("root/cimv2", "TINY_DiagCapabilities").paths().size(),
            1U);

  cmpihost::AssociationFilter filter;
  filter.assocClass = "TINY_AvailableDiagnosticService";
  EXPECT_EQ(host_->associatorNames(kService, filter).paths().size(), 2U);  // both TINY_Paths
}

TEST_F(TinyDiagTest, RunOnAPathThatExistsPassesAndLeavesARecord) {
  host_->clearLog();
  const cmpihost::Reply run = Run("/");
  ASSERT_EQ(run.status.rc, CMPI_RC_OK);
  ASSERT_EQ(run.data().size(), 1U);
  EXPECT_EQ(run.data()[0].uint, 0U);

  const std::vector<cmpihost::InstanceSnapshot> records = Records();
  const cmpihost::InstanceSnapshot* record = RecordOf(records, "/");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->find("RecordData")->text, "Test Passed");
  EXPECT_EQ(record->find("LoopsPassed")->uint, 1U);
  EXPECT_EQ(record->find("InstanceID")->text,
            "TINY_DiagService:PathExists:" + record->find("CreationTimeStamp")->text);

  bool registered = false;
  for (const cmpihost::LogRecord& log : host_->logRecords()) {
    registered = registered || log.text.rfind(">>>>> Registered TINY_DiagRecord.", 0) == 0;
  }
  EXPECT_TRUE(registered);
}

TEST_F(TinyDiagTest, RunOnAMissingPathFailsWithItsErrorCode) {
  const std::size_t before = Records().size();
  const cmpihost::Reply run = Run("/no/such/path");
  ASSERT_EQ(run.status.rc, CMPI_RC_OK);  // the test failed, not the call
  EXPECT_EQ(run.data()[0].uint, 1U);

  const std::vector<cmpihost::InstanceSnapshot> records = Records();
  EXPECT_EQ(records.size(), before + 1);  // records accumulate
  const cmpihost::InstanceSnapshot* record = RecordOf(records, "/no/such/path");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->find("ErrorCode")->toMof(), R"({"ENOENT"})");
  EXPECT_EQ(record->find("LoopsFailed")->uint, 1U);
}

TEST_F(TinyDiagTest, BadCallsAreRefusedWithAStatus) {
  EXPECT_EQ(host_->invokeMethod(kService, "RunDiagnostic", {}).status.rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(host_->invokeMethod(kService, "rundiagnostic", {}).status.rc,
            CMPI_RC_ERR_METHOD_NOT_FOUND);
  EXPECT_EQ(host_->getInstance(R"(TINY_DiagSetting.InstanceID="no such")").status.rc,
            CMPI_RC_ERR_FAILED);
}

TEST_F(TinyDiagTest, LibraryCodeRunsInACallScope) {
  const cmpihost::CallScope scope(*host_);
  EXPECT_EQ(NQENDRA20::CMPIUtil::GetSystemName(scope.broker(), scope.context()),
            "tinyhost.example");
}  // every object that the broker made in the scope is freed here

}  // namespace
