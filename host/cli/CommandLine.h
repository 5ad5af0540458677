// The whole command: options, loading, then one verb, a script file or the
// commands on standard input. Returns the exit code (0 success, 1 a request
// failed, 2 bad usage or input).
#ifndef CMPIHOST_CLI_COMMANDLINE_H_
#define CMPIHOST_CLI_COMMANDLINE_H_

namespace cmpihost::cli {

int RunCommandLine(int argc, const char* const* argv);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_COMMANDLINE_H_
