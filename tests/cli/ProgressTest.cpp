// The progress line: whole lines into a file or pipe, one line redrawn in
// place on a terminal and erased before anything else is printed.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "cli/Progress.h"

namespace cmpihost::cli {
namespace {

TEST(ProgressTest, LinesModePrintsEveryCommandOnItsOwnLineAndOffModeNothing) {
  std::ostringstream out;
  Progress progress(out, Progress::Mode::kLines);
  progress.show(1, 2, "ecn");
  progress.clear();
  progress.show(2, 0, "ei Cli_Shelf");
  EXPECT_EQ(out.str(), "[1/2] ecn\n[2] ei Cli_Shelf\n");

  std::ostringstream none;
  Progress off(none, Progress::Mode::kOff);
  off.show(1, 1, "ecn");
  off.clear();
  EXPECT_EQ(none.str(), "");
}

TEST(ProgressTest, InPlaceModeRedrawsTruncatesAndErasesOnce) {
  std::ostringstream out;
  Progress progress(out, Progress::Mode::kInPlace);
  progress.clear();  // nothing drawn yet: nothing to erase
  progress.show(3, 40, "cm " + std::string(100, 'x'));
  progress.clear();
  progress.clear();
  const std::string line = "[3/40] cm " + std::string(66, 'x') + "...";
  ASSERT_EQ(line.size(), 79U);
  EXPECT_EQ(out.str(), "\r\x1b[K" + line + "\r\x1b[K");
}

}  // namespace
}  // namespace cmpihost::cli
