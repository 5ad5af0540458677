// The command's help texts: the whole command, and each verb.
#ifndef CMPIHOST_CLI_HELP_H_
#define CMPIHOST_CLI_HELP_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

// Every option, verb, script directive, output format and exit code.
std::string GeneralHelp();

// The help that `words` ask for: "help" alone or "--help" with no verb gives
// the general help; "help VERB" or "VERB ... --help" gives the verb's.
// Throws UsageError for an unknown verb.
std::string HelpFor(const std::vector<std::string>& words);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_HELP_H_
