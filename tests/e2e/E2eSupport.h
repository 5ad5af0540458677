// What the end-to-end tests share: where the built programs and the
// example's files are, how cmpihost is started on the example, how
// machine-dependent text is masked, and golden-file comparison.
#ifndef TESTS_E2E_E2ESUPPORT_H_
#define TESTS_E2E_E2ESUPPORT_H_

#include <string>
#include <vector>

#include "support/ProgramRun.h"

namespace e2e {

using diagcore_test::ProgramResult;
using diagcore_test::ReadFile;
using diagcore_test::RunProgram;
using diagcore_test::ScratchDir;

// Files of the source tree and the build.
inline const std::string kCmpihost = CMPIHOST_BINARY;
inline const std::string kSchemaMof = DIAGCORE_SOURCE_DIR "/schema/diagcore.mof";
inline const std::string kExampleDir = DIAGCORE_SOURCE_DIR "/examples/filesystem-diag";
inline const std::string kExampleLibDir = FSD_LIB_DIR;  // where libfilesystemdiag.so was built

// cmpihost with the schema, the example's MOF and its registration file
// (libraries from the build), followed by `args`.
ProgramResult RunOnExample(const std::vector<std::string>& args);

// This machine's name, as the example's provider names the system.
std::string HostName();

// `text` with every CIM date-time ("20261121063324.680570+000") replaced by
// "@DATETIME@", and every quoted occurrence of `systemName` ("name" and the
// escaped \"name\" inside a reference) by the same quotes around "@SYSTEM@".
std::string Masked(const std::string& text, const std::string& systemName);

// The example's service path of `serviceName` on this host.
std::string ServicePath(const std::string& serviceName);
// The example's FSD_MountedFileSystem path of `deviceId` on this host.
std::string FileSystemPath(const std::string& deviceId);

// Compares `actual` with tests/e2e/expected/<name>; with E2E_UPDATE_GOLDEN=1
// in the environment, rewrites the file instead (review the diff!).
void ExpectGolden(const std::string& actual, const std::string& name);

// The lines of `text`, without their line ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace e2e

#endif  // TESTS_E2E_E2ESUPPORT_H_
