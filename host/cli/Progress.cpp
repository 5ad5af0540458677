#include "cli/Progress.h"

namespace cmpihost::cli {
namespace {

// A terminal line is not assumed to be wider than this.
constexpr std::size_t kInPlaceWidth = 79;
const char* const kEraseLine = "\r\x1b[K";

}  // namespace

void Progress::show(std::size_t number, std::size_t total, const std::string& command) {
  if (mode_ == Mode::kOff) {
    return;
  }
  std::string line = "[" + std::to_string(number);
  if (total != 0) {
    line += "/" + std::to_string(total);
  }
  line += "] " + command;
  if (mode_ == Mode::kLines) {
    out_ << line << '\n' << std::flush;
    return;
  }
  if (line.size() > kInPlaceWidth) {
    line = line.substr(0, kInPlaceWidth - 3) + "...";
  }
  out_ << kEraseLine << line << std::flush;
  drawn_ = true;
}

void Progress::clear() {
  if (drawn_) {
    out_ << kEraseLine << std::flush;
    drawn_ = false;
  }
}

}  // namespace cmpihost::cli
