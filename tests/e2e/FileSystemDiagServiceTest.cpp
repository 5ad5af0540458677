// The CMPI side of the example without a host: how a check's verdict lands
// on a record, what a run refuses to test, and the element bags.
#include "FileSystemDiagService.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "MountTable.h"
#include "MountedFileSystemBag.h"
#include "diagcore/DiagUser.h"

namespace filesystemdiag {
namespace {

using Properties = std::map<std::string, std::string>;

Properties Of(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

// A check that answers what it is told and notes where it was run.
class ScriptedCheck : public FileSystemCheck {
 public:
  ScriptedCheck(CheckResult result, std::vector<std::string>* runs)
      : result_(std::move(result)), runs_(runs) {}
  CheckResult run(const std::string& mountPoint) const override {
    runs_->push_back(mountPoint);
    return result_;
  }

 private:
  CheckResult result_;
  std::vector<std::string>* runs_;
};

std::unique_ptr<FileSystemDiagService> ServiceWith(std::vector<std::string>* runs,
                                                   MountLookup isMounted) {
  return std::make_unique<FileSystemDiagService>(
      ServiceTexts{"TestCheck", "Test check", "A check for tests.", "Test"},
      std::make_unique<ScriptedCheck>(CheckResult::Passed("fine"), runs),
      "20260101000000.000000+000", "host.example", std::move(isMounted));
}

NQENDRA20::DiagUser Element(const std::string& className, const Properties& keys) {
  NQENDRA20::DiagUser element;
  element.setClassName(className);
  for (const auto& [name, value] : keys) {
    element[name] = value;
  }
  return element;
}

TEST(FileSystemDiagServiceTest, ReportWritesEachOutcomeOnTheRecord) {
  const Properties defaults = {{"RecordFormat", ""}, {"Locale", "en"}, {"RecordType", "2"}};
  const struct {
    CheckResult result;
    unsigned int returned;
    Properties record;
  } cases[] = {
      {CheckResult::Passed("/ has room"),
       kCompletedWithNoError,
       {{"LoopsFailed", "0"},
        {"LoopsPassed", "1"},
        {"ErrorCount", "0"},
        {"RecordData", "Test Passed: / has room"}}},
      {CheckResult::Skipped("/cd is mounted read-only; nothing was written"),
       kCompletedWithNoError,
       {{"LoopsFailed", "0"},
        {"LoopsPassed", "0"},
        {"ErrorCount", "0"},
        {"RecordData", "Skipped: /cd is mounted read-only; nothing was written"}}},
      {CheckResult::Failed("LOW_SPACE", "/data has only 1.0% free"),
       kFailed,
       {{"LoopsFailed", "1"},
        {"LoopsPassed", "0"},
        {"ErrorCode", "LOW_SPACE"},
        {"ErrorCount", "1"},
        {"RecordData", "/data has only 1.0% free"}}},
  };
  for (const auto& c : cases) {
    NQENDRA20::DiagnosticRecord record("FSD_FileSystemDiagnosticRecord");
    EXPECT_EQ(Report(c.result, record), c.returned) << c.result.text;
    Properties expected = defaults;
    expected.insert(c.record.begin(), c.record.end());
    EXPECT_EQ(Of(record), expected) << c.result.text;
  }
}

TEST(FileSystemDiagServiceTest, RunsTheCheckOnlyOnTheMountPointOfAMountedFileSystem) {
  std::vector<std::string> runs;
  std::vector<std::string> looked;
  auto service = ServiceWith(&runs, [&looked](const std::string& point) {
    looked.push_back(point);
    return point != "/etc";
  });
  // Class names compare without regard to case, as everywhere in CIM.
  NQENDRA20::DiagUser element =
      Element("fsd_mountedfilesystem", {{"DeviceID", "/srv/data"}, {"SystemName", "h"}});
  NQENDRA20::DiagnosticRecord passed("FSD_FileSystemDiagnosticRecord");
  EXPECT_EQ(service->runTest(element, &passed), kCompletedWithNoError);
  EXPECT_EQ(runs, std::vector<std::string>{"/srv/data"});
  EXPECT_EQ(looked, std::vector<std::string>{"/srv/data"});
  EXPECT_EQ(passed["RecordData"], "Test Passed: fine");

  // Not const, and walked by reference: a copied bag loses its class name.
  struct {
    NQENDRA20::DiagUser element;
    unsigned int returned;
    const char* errorCode;
    std::string recordData;
  } refused[] = {
      {Element("CIM_LogicalDevice", {{"DeviceID", "/"}}), kInvalidParameter, "NOT_A_FILE_SYSTEM",
       "the element is of class CIM_LogicalDevice, not FSD_MountedFileSystem; nothing was "
       "tested"},
      {Element("FSD_MountedFileSystem", {{"SystemName", "h"}}), kInvalidParameter, "NO_DEVICE_ID",
       "the element names no DeviceID, so there is no mount point to test"},
      {Element("FSD_MountedFileSystem", {{"DeviceID", ""}}), kInvalidParameter, "NO_DEVICE_ID",
       "the element names no DeviceID, so there is no mount point to test"},
      {Element("FSD_MountedFileSystem", {{"DeviceID", "/etc"}}), kFailed, "NOT_MOUNTED",
       "/etc is not the mount point of a file system this diagnostic tests (see "
       "/proc/self/mounts); nothing was tested"},
  };
  for (auto& c : refused) {
    NQENDRA20::DiagnosticRecord record("FSD_FileSystemDiagnosticRecord");
    EXPECT_EQ(service->runTest(c.element, &record), c.returned) << c.errorCode;
    EXPECT_EQ(record["ErrorCode"], c.errorCode);
    EXPECT_EQ(record["ErrorCount"], "1");
    EXPECT_EQ(record["LoopsFailed"], "1");
    EXPECT_EQ(record["RecordData"], c.recordData);
  }
  EXPECT_EQ(runs.size(), 1U) << "the check ran for a refused element";
}

TEST(FileSystemDiagServiceTest, TheServiceCarriesItsTextsOnTopOfTheLibrarysDefaults) {
  std::vector<std::string> runs;
  auto service = ServiceWith(&runs, IsTestableMountPoint);
  const Properties properties = Of(*service);
  EXPECT_EQ(properties.size(), 20U);  // the library's sixteen and our four
  EXPECT_EQ(properties.at("Name"), "TestCheck");
  EXPECT_EQ(properties.at("Caption"), "Test check");
  EXPECT_EQ(properties.at("Description"), "A check for tests.");
  EXPECT_EQ(properties.at("ElementName"), "Test");
  EXPECT_EQ(properties.at("CreationClassName"), "FSD_FileSystemDiagnosticService");
  EXPECT_EQ(properties.at("SystemName"), "host.example");
  EXPECT_EQ(service->getRecordClassName(), "FSD_FileSystemDiagnosticRecord");

  // The default lookup knows what is mounted now.
  EXPECT_TRUE(IsTestableMountPoint("/"));
  EXPECT_FALSE(IsTestableMountPoint("/proc"));  // a kernel interface
  EXPECT_FALSE(IsTestableMountPoint("/nonexistent/fsd-test"));
}

TEST(ElementBagsTest, AMountBecomesAFileSystemElementKeyedByItsMountPoint) {
  MountEntry mount;
  mount.source = "/dev/sdb1";
  mount.mountPoint = "/srv/data";
  mount.type = "xfs";
  mount.options = "ro,noatime";
  const MountedFileSystemBag bag(mount, "host.example");
  EXPECT_EQ(bag.getClassName(), "FSD_MountedFileSystem");
  EXPECT_EQ(Of(bag), (Properties{{"SystemCreationClassName", "TORSK_ComputerSystem"},
                                 {"SystemName", "host.example"},
                                 {"CreationClassName", "FSD_MountedFileSystem"},
                                 {"DeviceID", "/srv/data"},
                                 {"Name", "/srv/data"},
                                 {"ElementName", "/dev/sdb1 on /srv/data"},
                                 {"Caption", "xfs file system mounted at /srv/data"},
                                 {"FileSystemType", "xfs"},
                                 {"MountSource", "/dev/sdb1"},
                                 {"MountOptions", "ro,noatime"},
                                 {"ReadOnly", "1"}}));
}

}  // namespace
}  // namespace filesystemdiag
