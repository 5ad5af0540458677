#include "FileSystemDiagPlugin.h"

#include <sys/stat.h>

#include <memory>
#include <utility>
#include <vector>

#include "ClassNames.h"
#include "ComputerSystemBag.h"
#include "FileSystemDiagService.h"
#include "FreeSpaceCheck.h"
#include "MountTable.h"
#include "MountedFileSystemBag.h"
#include "WriteReadCheck.h"
#include "diagcore/AvailServiceFactory.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/InstanceRegistry.h"

namespace filesystemdiag {
namespace {

constexpr unsigned int kEnumOrdersPerService = 1000;
constexpr unsigned int kEnumOrderStep = 1;

void Log(const CMPIBroker* broker, int severity, const std::string& text) {
  broker->eft->logMessage(broker, severity, "filesystemdiag", text.c_str(), nullptr);
}

// Hands `bag` to the registry and returns it, or null (freeing it) when the
// registry did not take it, which it shows by leaving the path text empty.
template <typename Bag>
Bag* Register(const CMPIBroker* broker, const CMPIContext* context, std::unique_ptr<Bag> bag) {
  Bag* raw = bag.get();
  NQENDRA20::InstanceRegistry::Singleton()->RegisterInstance(broker, context, raw);
  if (raw->getObjectPath().empty()) {
    Log(broker, CMPI_SEV_WARNING, "could not register an instance of " + raw->getClassName());
    return nullptr;
  }
  static_cast<void>(bag.release());  // the registry's for good
  return raw;
}

bool IsFolder(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::unique_ptr<NQENDRA20::DiagServiceSettingData> SettingFor(const std::string& serviceName) {
  auto setting = std::make_unique<NQENDRA20::DiagServiceSettingData>(kSettingDataClass);
  NQENDRA20::DiagServiceSettingData& bag = *setting;
  // The key's default is the same for every service; the name keeps them apart.
  bag["InstanceID"] = "FSD:Setting:" + serviceName;
  bag["ElementName"] = "Default setting of " + serviceName;
  // What a run does: one pass over the file system, stopping at the first
  // fault, changing nothing that was there; records are kept until the
  // provider is unloaded (0xFFFFFFFF: for ever).
  bag["HaltOnError"] = "1";  // booleans are built from "1" and "0"
  bag["QuickMode"] = "0";
  bag["NonDestructive"] = "1";
  bag["LoopControl"] = "3";  // Count
  bag["LoopControlParameter"] = "1";
  bag["ResultPersistence"] = "4294967295";
  // The builder reads a uint8 as the code of one character: 100 is 'd'.
  bag["PercentOfTestCoverage"] = std::string(1, static_cast<char>(100));
  return setting;
}

std::unique_ptr<NQENDRA20::DiagServiceCapabilitiesData> CapabilitiesFor(
    const std::string& serviceName) {
  auto capabilities = std::make_unique<NQENDRA20::DiagServiceCapabilitiesData>(kCapabilitiesClass);
  (*capabilities)["InstanceID"] = "FSD:Capabilities:" + serviceName;
  (*capabilities)["Caption"] = "Capabilities of " + serviceName;
  (*capabilities)["ElementName"] = "Capabilities of " + serviceName;
  return capabilities;
}

}  // namespace

NQENDRA20::DiagService** FileSystemServiceFactory::CreateServicesImpl(std::string dateTime,
                                                                      std::string systemName,
                                                                      unsigned int& serviceCount) {
  const ServiceTexts freeSpace{
      "FreeSpaceCheck", "File system free space check",
      "Free space check of a mounted file system: statvfs must succeed, and at least " +
          std::to_string(kMinFreePercent) +
          "% of its space and of its inodes must be free to unprivileged users.",
      "Free space check"};
  const ServiceTexts writeRead{
      "WriteReadCheck", "File system write/read-back check",
      "Write/read-back check of a mounted file system: a " +
          std::to_string(WriteReadCheck::kProbeSize / 1024) +
          " KiB file is written in the mount point, read back, compared and removed; "
          "skipped where the file system is read-only or the provider may not write there.",
      "Write/read-back check"};

  std::vector<std::unique_ptr<NQENDRA20::DiagService>> created;
  created.push_back(std::make_unique<FileSystemDiagService>(
      freeSpace, std::make_unique<FreeSpaceCheck>(kMinFreePercent), dateTime, systemName));
  created.push_back(std::make_unique<FileSystemDiagService>(
      writeRead, std::make_unique<WriteReadCheck>(), dateTime, systemName));

  auto services = std::make_unique<NQENDRA20::DiagService*[]>(created.size());
  for (std::size_t i = 0; i < created.size(); ++i) {
    services[i] = created[i].release();
  }
  serviceCount = static_cast<unsigned int>(created.size());
  return services.release();
}

void StartFileSystemElements(const CMPIBroker* broker, const CMPIContext* context) {
  const std::string hostName = LocalHostName();
  Register(broker, context, std::make_unique<ComputerSystemBag>(hostName));

  const MountTable mounts = MountTable::ReadProcSelfMounts();
  unsigned int registered = 0;
  for (const MountEntry& mount : mounts.testable()) {
    // A bind-mounted file (a container's /etc/hosts) is no file system to test.
    if (!IsFolder(mount.mountPoint)) {
      continue;
    }
    if (Register(broker, context, std::make_unique<MountedFileSystemBag>(mount, hostName))) {
      ++registered;
    }
  }
  Log(broker, CMPI_SEV_INFO,
      "serving " + std::to_string(registered) + " of the " +
          std::to_string(mounts.entries().size()) + " mounted file systems of " + hostName);
}

void StartFileSystemDiag(const CMPIBroker* broker, const CMPIContext* context) {
  unsigned int count = 0;
  const std::unique_ptr<NQENDRA20::DiagService*[]> created(
      FileSystemServiceFactory().CreateServices(broker, context, count));
  std::vector<std::unique_ptr<NQENDRA20::DiagService>> services;
  for (unsigned int i = 0; i < count; ++i) {
    services.emplace_back(created[i]);
  }

  NQENDRA20::AvailServiceFactory availability;
  unsigned int firstEnumOrder = kEnumOrdersPerService;
  for (std::unique_ptr<NQENDRA20::DiagService>& owned : services) {
    const std::string name = (*owned)["Name"];
    NQENDRA20::DiagService* service = Register(broker, context, std::move(owned));
    if (service == nullptr) {
      continue;
    }
    Register(broker, context, SettingFor(name));
    Register(broker, context, CapabilitiesFor(name));
    availability.CreateAvailableServices(broker, context, service, kFileSystemClass,
                                         kAvailabilityClass, firstEnumOrder, kEnumOrderStep);
    firstEnumOrder += kEnumOrdersPerService;
  }
}

}  // namespace filesystemdiag

DIAGCORE_CIM_PROVIDER(FileSystemElements, filesystemdiag::StartFileSystemElements);
DIAGCORE_CIM_PROVIDER(FileSystemDiag, filesystemdiag::StartFileSystemDiag);
