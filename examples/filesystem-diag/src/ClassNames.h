// The CIM class names the file-system diagnostic serves (mof/filesystemdiag.mof).
#ifndef FILESYSTEMDIAG_CLASSNAMES_H_
#define FILESYSTEMDIAG_CLASSNAMES_H_

namespace filesystemdiag {

// The name libdiagcore reads the managed system's name from.
inline constexpr const char* kComputerSystemClass = "TORSK_ComputerSystem";
inline constexpr const char* kFileSystemClass = "FSD_MountedFileSystem";
inline constexpr const char* kServiceClass = "FSD_FileSystemDiagnosticService";
inline constexpr const char* kRecordClass = "FSD_FileSystemDiagnosticRecord";
inline constexpr const char* kSettingDataClass = "FSD_FileSystemDiagnosticSettingData";
inline constexpr const char* kCapabilitiesClass = "FSD_FileSystemDiagnosticCapabilities";
inline constexpr const char* kAvailabilityClass = "FSD_AvailableDiagnosticService";
// The prefix of the Diagnostics Profile's classes: FSD_DiagnosticLog,
// FSD_ConcreteJob, FSD_ElementSettingData, ...
inline constexpr const char* kClassPrefix = "FSD";

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_CLASSNAMES_H_
