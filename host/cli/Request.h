// One request verb and its arguments, checked for shape (how many
// arguments, which options) but not yet against the loaded classes.
#ifndef CMPIHOST_CLI_REQUEST_H_
#define CMPIHOST_CLI_REQUEST_H_

#include <string>
#include <vector>

#include "cli/Verbs.h"
#include "cmpihost/Host.h"

namespace cmpihost::cli {

struct MethodArgument {
  std::string name;
  std::string value;
};

struct Request {
  const VerbInfo* verb = nullptr;
  std::string target;  // CLASS (ecn, gc, ei, ein; "" for ecn of the whole namespace) or PATH
  std::string method;  // cm
  std::vector<MethodArgument> arguments;  // cm, in the order given
  AssociationFilter filter;               // ai, ain, ri, rin
};

// Reads `words` (the verb first). Throws UsageError for an unknown verb, a
// missing or surplus argument, an option the verb does not take, or a
// method argument that is not NAME=VALUE. The verb must be a request verb
// (not run, -, help).
Request ParseRequest(const std::vector<std::string>& words);

// Reads the words after `verb` as its synopsis names them, the filter
// options into `filter`; returns the positional words in order. Throws
// UsageError for a missing, empty or surplus word and an unknown, repeated
// or empty option.
std::vector<std::string> ReadArguments(const VerbInfo& verb, std::vector<std::string> words,
                                       AssociationFilter& filter);

// True when the words ask for help: "help ..." or any "--help"/"-h" word.
bool AsksForHelp(const std::vector<std::string>& words);

// The verb named by words[0]; throws UsageError naming the known verbs.
const VerbInfo& VerbOf(const std::vector<std::string>& words);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_REQUEST_H_
