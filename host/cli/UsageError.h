// Bad usage or bad input to the command (exit code 2): an unknown verb, a
// missing argument, a malformed path, a file that does not load. The message
// is one line and says what is wrong and where.
#ifndef CMPIHOST_CLI_USAGEERROR_H_
#define CMPIHOST_CLI_USAGEERROR_H_

#include <stdexcept>

namespace cmpihost::cli {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_USAGEERROR_H_
