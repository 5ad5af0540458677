// The progress line of a script run on standard error: "[12/40] cm ...".
// On a terminal it is drawn in place and erased before anything else is
// printed; otherwise (--progress into a file or pipe) each is a whole line.
#ifndef CMPIHOST_CLI_PROGRESS_H_
#define CMPIHOST_CLI_PROGRESS_H_

#include <cstddef>
#include <ostream>
#include <string>

namespace cmpihost::cli {

class Progress {
 public:
  enum class Mode { kOff, kLines, kInPlace };

  Progress(std::ostream& out, Mode mode) : out_(out), mode_(mode) {}

  // Shows that command `number` of `total` (0: not known) starts.
  void show(std::size_t number, std::size_t total, const std::string& command);
  // Erases an in-place line, so that the next output starts on a clean line.
  void clear();

 private:
  std::ostream& out_;
  Mode mode_;
  bool drawn_ = false;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_PROGRESS_H_
