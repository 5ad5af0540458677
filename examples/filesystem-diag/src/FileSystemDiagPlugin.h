// The file-system diagnostic's two providers, both in libfilesystemdiag.so:
//
//   FileSystemElements  serves TORSK_ComputerSystem (this host) and one
//                       FSD_MountedFileSystem per tested mount
//   FileSystemDiag      serves the two services, their setting data and
//                       capabilities, the records of their runs, and the
//                       associations that make each service available to
//                       each mounted file system
//
// FileSystemDiag's start-up asks the CIMOM for the system and the file
// systems (broker upcalls), which the CIMOM routes to FileSystemElements, so
// the two may run in one process or in two.
#ifndef FILESYSTEMDIAG_FILESYSTEMDIAGPLUGIN_H_
#define FILESYSTEMDIAG_FILESYSTEMDIAGPLUGIN_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

#include <string>

#include "diagcore/DiagService.h"
#include "diagcore/ServiceFactory.h"

namespace filesystemdiag {

// The free-space check fails below this share of free blocks or inodes.
inline constexpr unsigned int kMinFreePercent = 5;

// Creates "FreeSpaceCheck" and "WriteReadCheck", in that order.
class FileSystemServiceFactory : public NQENDRA20::ServiceFactory {
 public:
  NQENDRA20::DiagService** CreateServicesImpl(std::string dateTime, std::string systemName,
                                              unsigned int& serviceCount) override;
};

// FileSystemElements' start-up: registers the computer system and every
// testable mount (MountTable::testable()) whose mount point is a folder.
void StartFileSystemElements(const CMPIBroker* broker, const CMPIContext* context);

// FileSystemDiag's start-up: registers each service with its setting data
// ("FSD:Setting:<Name>") and capabilities ("FSD:Capabilities:<Name>"), and
// its availability to every FSD_MountedFileSystem, numbered from
// 1000 * (position + 1) by 1; then offers it the Diagnostics Profile
// (classes FSD_*, retention, at most 1000 runs kept, RunDiagnosticService).
void StartFileSystemDiag(const CMPIBroker* broker, const CMPIContext* context);

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_FILESYSTEMDIAGPLUGIN_H_
