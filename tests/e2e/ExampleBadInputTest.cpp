// Bad input to cmpihost around the example: the mistakes an administrator
// makes deploying it (library not found, wrong provider name, the schema not
// loaded) and a client makes calling it. Each
// is one clear line on standard error with the right exit code: 2 for bad
// input, 1 for a request the provider refused; nothing on standard output.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "E2eSupport.h"

namespace e2e {
namespace {

struct BadInput {
  const char* what;
  std::vector<std::string> argv;
  int exitCode;
  std::string err;  // all of standard error, or its start when it ends in "..."
};

void ExpectRefused(const BadInput& c) {
  const ProgramResult result = RunProgram(c.argv);
  EXPECT_EQ(result.exitCode, c.exitCode) << c.what << "\n" << result.err;
  EXPECT_EQ(result.out, "") << c.what;
  const std::string ellipsis = "...";
  if (c.err.size() > ellipsis.size() &&
      c.err.compare(c.err.size() - ellipsis.size(), ellipsis.size(), ellipsis) == 0) {
    const std::string start = c.err.substr(0, c.err.size() - ellipsis.size());
    EXPECT_EQ(result.err.substr(0, start.size()), start) << c.what;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << c.what << ": not one line";
  } else {
    EXPECT_EQ(result.err, c.err) << c.what;
  }
}

// cmpihost with the schema and the example's MOF, then `args`.
std::vector<std::string> WithMof(const std::vector<std::string>& args) {
  std::vector<std::string> argv = {CmpihostBinary(), "--mof", SchemaMof(), "--mof", ExampleMof()};
  argv.insert(argv.end(), args.begin(), args.end());
  return argv;
}

// cmpihost on the example as deployed, then `args`.
std::vector<std::string> Deployed(const std::vector<std::string>& args) {
  std::vector<std::string> all = {"--lib-dir", ExampleLibDir(), "--providers",
                                  ExampleRegistration()};
  all.insert(all.end(), args.begin(), args.end());
  return WithMof(all);
}

// The line number of the first line of `file` that is `text`.
int LineOf(const std::string& file, const std::string& text) {
  std::ifstream in(file);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line == text) {
      return number;
    }
  }
  return 0;
}

TEST(ExampleBadInputTest, DeploymentMistakes) {
  const ScratchDir scratch;
  const std::string wrongName = scratch.write("wrongname.reg",
                                              "[FSD_FileSystemDiagnosticService]\n"
                                              "   provider: FileSystemDiagnostics\n"
                                              "   location: filesystemdiag\n"
                                              "   type: instance method\n"
                                              "   namespace: root/cimv2\n"
                                              "   unload: never\n");
  const std::string deployDir = ExampleDir() + "/deploy";
  const int firstStanza = LineOf(ExampleRegistration(), "[TORSK_ComputerSystem]");
  ASSERT_GT(firstStanza, 0);

  const BadInput cases[] = {
      {"library not in the folders searched (no --lib-dir)",
       WithMof({"--providers", ExampleRegistration(), "ecn"}), 2,
       "cmpihost: " + ExampleRegistration() + ":" + std::to_string(firstStanza) +
           ": libfilesystemdiag.so of provider FileSystemElements is not in " + deployDir + "\n"},
      {"library not in --lib-dir either",
       WithMof({"--lib-dir", scratch.path(), "--providers", ExampleRegistration(), "ecn"}), 2,
       "cmpihost: " + ExampleRegistration() + ":" + std::to_string(firstStanza) +
           ": libfilesystemdiag.so of provider FileSystemElements is not in " + scratch.path() +
           ", " + deployDir + "\n"},
      {"provider name the library has no factory for",
       WithMof({"--lib-dir", ExampleLibDir(), "--providers", wrongName, "ecn"}), 2,
       "cmpihost: " + wrongName + ":2: provider FileSystemDiagnostics: " + ExampleLibDir() +
           "/libfilesystemdiag.so exports no FileSystemDiagnostics_Create_<Kind>MI nor "
           "_Generic_Create_<Kind>MI for Instance, Method; \"provider:\" must be the name the "
           "plug-in gives its provider macro\n"},
      {"the example's MOF without the DMTF schema",
       {CmpihostBinary(), "--mof", ExampleMof(), "ecn"},
       2,
       "cmpihost: " + ExampleMof() + ":" +
           std::to_string(
               LineOf(ExampleMof(), "class TORSK_ComputerSystem : CIM_ComputerSystem {")) +
           ":30: superclass \"CIM_ComputerSystem\" of class \"TORSK_ComputerSystem\" is not "
           "defined in namespace \"root/cimv2\"\n"},
  };
  for (const BadInput& c : cases) {
    ExpectRefused(c);
  }
}

TEST(ExampleBadInputTest, ClientMistakes) {
  const std::string service = ServicePath("FreeSpaceCheck");
  const std::string root = "ManagedElement=" + FileSystemPath("/");
  std::string otherHost = service;
  otherHost.replace(otherHost.rfind(HostName()), HostName().size(), "elsewhere.example");
  const BadInput cases[] = {
      {"method name misspelt", Deployed({"cm", service, "RunDiagnostics", root}), 2,
       "cmpihost: cm: class FSD_FileSystemDiagnosticService has no method RunDiagnostics (its "
       "methods: RequestStateChange, StartService, StopService, RunDiagnostic, "
       "RunDiagnosticService)\n"},
      {"argument name misspelt", Deployed({"cm", service, "RunDiagnostic", "Element=x"}), 2,
       "cmpihost: cm: method RunDiagnostic of class FSD_FileSystemDiagnosticService has no input "
       "parameter Element (its input parameters: ManagedElement, DiagSetting, JobSetting)\n"},
      {"element path with a key the class lacks",
       Deployed({"cm", service, "RunDiagnostic",
                 "ManagedElement=FSD_MountedFileSystem.MountPoint=\"/\""}),
       2, "cmpihost: cm: argument ManagedElement: ..."},
      {"unknown class", Deployed({"ei", "FSD_FileSystem"}), 2,
       "cmpihost: ei: unknown class FSD_FileSystem in namespace root/cimv2\n"},
      {"service of another host", Deployed({"cm", otherHost, "RunDiagnostic", root}), 1,
       "cmpihost: InvokeMethod failed: CMPI_RC_ERR_NOT_FOUND (6): No object of this provider at " +
           otherHost + "\n"},
      {"no element to test", Deployed({"cm", service, "RunDiagnostic"}), 1,
       "cmpihost: InvokeMethod failed: CMPI_RC_ERR_INVALID_PARAMETER (4): RunDiagnostic needs a "
       "ManagedElement reference\n"},
      {"record that no run left",
       Deployed({"gi", "FSD_FileSystemDiagnosticRecord.InstanceID=\"FSD:none\""}), 1,
       "cmpihost: GetInstance failed: CMPI_RC_ERR_FAILED (1): Could not find or construct "
       "instance\n"},
      {"a method the service does not implement", Deployed({"cm", service, "StopService"}), 1,
       "cmpihost: InvokeMethod failed: CMPI_RC_ERR_METHOD_NOT_FOUND (17): No method StopService "
       "on " +
           service + "\n"},
  };
  for (const BadInput& c : cases) {
    ExpectRefused(c);
  }
}

}  // namespace
}  // namespace e2e
