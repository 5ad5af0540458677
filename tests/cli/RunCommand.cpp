#include "RunCommand.h"

namespace cmpihost::testing {

CommandResult RunCmpihost(const std::vector<std::string>& args, const std::string& input) {
  std::vector<std::string> argv = {CMPIHOST_BINARY};
  argv.insert(argv.end(), args.begin(), args.end());
  return diagcore_test::RunProgram(argv, input);
}

std::string DataFile(const std::string& name) {
  return std::string(CLI_DATA_DIR) + "/" + name;
}

std::string ProviderDir() {
  return CLI_PROVIDER_DIR;
}

std::vector<std::string> WithMof(std::vector<std::string> args) {
  args.insert(args.begin(), {"--mof", DataFile("widgets.mof")});
  return args;
}

std::vector<std::string> WithProvider(std::vector<std::string> args) {
  args.insert(args.begin(), {"--lib-dir", ProviderDir(), "--providers", DataFile("clitest.reg")});
  return WithMof(std::move(args));
}

std::string BareShelfText(const std::string& id) {
  return "// root/cimv2:Cli_Shelf.Id=\"" + id +
         "\"\n"
         "instance of Cli_Shelf {\n"
         "    Id = \"" +
         id +
         "\";\n"
         "    Location = NULL;\n"
         "    Height = NULL;\n"
         "    Installed = NULL;\n"
         "    Offset = NULL;\n"
         "    Row = NULL;\n"
         "    Levels = NULL;\n"
         "};\n";
}

}  // namespace cmpihost::testing
