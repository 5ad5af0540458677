// Runs the built cmpihost binary as a child process, the way a user or a
// script runs it, and captures its exit code and both output streams.
#ifndef TESTS_CLI_RUNCOMMAND_H_
#define TESTS_CLI_RUNCOMMAND_H_

#include <string>
#include <vector>

#include "support/ProgramRun.h"

namespace cmpihost::testing {

using CommandResult = diagcore_test::ProgramResult;
using diagcore_test::ScratchDir;

// Runs cmpihost with `args`; standard input is a file holding `input`, so it
// is never a terminal.
CommandResult RunCmpihost(const std::vector<std::string>& args, const std::string& input = "");

// The test data folder, the provider library folder and the common options
// that load the test MOF (and, with `providers`, the test provider).
std::string DataFile(const std::string& name);
std::string ProviderDir();
std::vector<std::string> WithMof(std::vector<std::string> args);
std::vector<std::string> WithProvider(std::vector<std::string> args);

// What `ei Cli_Widget` prints for the test provider's two widgets.
inline const std::string kWidgetsText =
    "// root/cimv2:Cli_Widget.Name=\"w1\"\n"
    "instance of Cli_Widget {\n"
    "    Name = \"w1\";\n"
    "    Count = 1;\n"
    "    Enabled = TRUE;\n"
    "    Tags = {\"a\", \"b \\\"quoted\\\"\"};\n"
    "};\n"
    "\n"
    "// root/cimv2:Cli_Widget.Name=\"w2\"\n"
    "instance of Cli_Widget {\n"
    "    Name = \"w2\";\n"
    "    Count = 3;\n"
    "    Enabled = NULL;\n"
    "    Tags = NULL;\n"
    "};\n";

// What `gi` prints for a shelf with nothing but its key set.
std::string BareShelfText(const std::string& id);

}  // namespace cmpihost::testing

#endif  // TESTS_CLI_RUNCOMMAND_H_
