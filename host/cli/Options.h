// The command's global options, which come before the verb:
// cmpihost [--mof FILE]... [--providers FILE]... [--lib-dir DIR]...
//          [--namespace NS] [--json] [--trace] [--progress] VERB ARGS...
#ifndef CMPIHOST_CLI_OPTIONS_H_
#define CMPIHOST_CLI_OPTIONS_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

struct Options {
  std::vector<std::string> mofFiles;           // loaded in the order given
  std::vector<std::string> registrationFiles;  // loaded after every MOF file
  std::vector<std::string> libraryDirs;        // searched before a registration file's folder
  std::string nameSpace = "root/cimv2";
  bool json = false;
  bool trace = false;
  bool progress = false;
  bool help = false;
  bool version = false;
  std::vector<std::string> words;  // the verb and its arguments (may be empty)
};

// Reads argv[1..argc-1]. Options end at the first word that does not start
// with "--" (a lone "-" is the verb that reads standard input) or after "--".
// Throws UsageError for an unknown option or one without its value.
Options ParseOptions(int argc, const char* const* argv);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_OPTIONS_H_
