// Splits one script line into words the way a POSIX shell would for the
// simple cases a script needs: blanks separate words, 'single quotes' keep
// everything, "double quotes" keep everything but \" \\ \$ \`, a backslash
// outside quotes keeps the next character, and # at the start of a word
// begins a comment. Object paths therefore read the same in a script as on
// the command line.
#ifndef CMPIHOST_CLI_TOKENIZER_H_
#define CMPIHOST_CLI_TOKENIZER_H_

#include <string>
#include <vector>

namespace cmpihost::cli {

// The words of `line` (none for a blank or comment line). Throws UsageError
// "column N: problem" for an unterminated quote or a trailing backslash.
std::vector<std::string> Tokenize(const std::string& line);

// True when the line ends in an unquoted backslash, i.e. continues on the
// next line.
bool ContinuesOnNextLine(const std::string& line);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_TOKENIZER_H_
