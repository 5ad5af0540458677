// The command's global options, before the verb or after it:
// cmpihost [--mof FILE]... [--providers FILE]... [--lib-dir DIR]...
//          [--namespace NS] [--json] [--trace[=LEVEL]] [--progress] VERB ARGS...
#ifndef CMPIHOST_CLI_OPTIONS_H_
#define CMPIHOST_CLI_OPTIONS_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

// Record severities, most severe first: --trace=LEVEL prints LEVEL and above.
enum class TraceLevel { kError = 1, kWarning, kInfo, kDebug };

struct Options {
  std::vector<std::string> mofFiles;           // loaded in the order given
  std::vector<std::string> registrationFiles;  // loaded after every MOF file
  std::vector<std::string> libraryDirs;        // searched before a registration file's folder
  std::string nameSpace = "root/cimv2";
  bool json = false;
  bool trace = false;
  TraceLevel traceLevel = TraceLevel::kDebug;  // the least severe record --trace prints
  bool progress = false;
  bool help = false;
  bool version = false;
  std::vector<std::string> words;  // the verb and its arguments (may be empty)
};

// Reads argv[1..argc-1]. Before the verb every word that starts with "--"
// must be an option; after it, the global options are taken out wherever
// they stand and the verb's own words (its options included) are left in
// order. "--" ends the options; a lone "-" is the verb that reads standard
// input. Throws UsageError for an unknown option before the verb, or an
// option without its value.
Options ParseOptions(int argc, const char* const* argv);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_OPTIONS_H_
