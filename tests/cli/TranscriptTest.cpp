// The built cmpihost run as a user runs it, on the transcripts in
// transcripts/: each case names files to write, a shell command line, its
// standard input, and the exact exit code and output it must give. Paths
// that differ from build to build read $S (the case's scratch folder, also
// the working folder), $DATA (data/) and $LIB (the test providers).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/ProgramRun.h"

namespace cmpihost::testing {
namespace {

using diagcore_test::ScratchDir;

struct Case {
  std::string title;
  std::vector<std::pair<std::string, std::string>> files;  // name, text
  std::string command;
  std::string input;
  std::string out;
  std::string err;  // ending in "...": the start of standard error and its line count
  int exitCode = 0;
};

// Lines are "## title", "+ FILE" then "| text" lines, "$ command", and
// "< input", "> output", "! error", "? exit code"; "#" starts a comment.
std::vector<Case> ReadTranscript(const std::string& path) {
  std::vector<Case> cases;
  std::istringstream in(diagcore_test::ReadFile(path));
  std::string line;
  while (std::getline(in, line)) {
    const std::string tag = line.substr(0, line.find(' '));
    const std::string text = line.size() > tag.size() ? line.substr(tag.size() + 1) : "";
    if (tag == "##") {
      cases.push_back(Case{text, {}, "", "", "", "", 0});
    } else if (tag.empty() || tag[0] == '#') {
      continue;
    } else if (cases.empty()) {
      ADD_FAILURE() << path << ": a line before the first case: " << line;
    } else if (tag == "+") {
      cases.back().files.emplace_back(text, "");
    } else if (tag == "|" && !cases.back().files.empty()) {
      cases.back().files.back().second += text + "\n";
    } else if (tag == "$") {
      cases.back().command += text + "\n";
    } else if (tag == "<" || tag == ">" || tag == "!") {
      (tag == "<"   ? cases.back().input
       : tag == ">" ? cases.back().out
                    : cases.back().err) += text + "\n";
    } else if (tag == "?") {
      cases.back().exitCode = std::stoi(text);
    } else {
      ADD_FAILURE() << path << ": unknown line: " << line;
    }
  }
  return cases;
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// The names a transcript uses for this run's folders, longest value first.
using Names = std::vector<std::pair<std::string, std::string>>;

std::string Unmask(std::string text, const Names& names) {
  for (const auto& [name, value] : names) {
    text = ReplaceAll(text, name, value);
  }
  return text;
}

std::string Mask(std::string text, const Names& names) {
  for (const auto& [name, value] : names) {
    text = ReplaceAll(text, value, name);
  }
  return text;
}

void ExpectError(const std::string& actual, const std::string& expected) {
  const std::string ellipsis = "...\n";
  if (expected.size() < ellipsis.size() ||
      expected.compare(expected.size() - ellipsis.size(), ellipsis.size(), ellipsis) != 0) {
    EXPECT_EQ(actual, expected);
    return;
  }
  const std::string start = expected.substr(0, expected.size() - ellipsis.size());
  EXPECT_EQ(actual.substr(0, start.size()), start) << actual;
  EXPECT_EQ(std::count(actual.begin(), actual.end(), '\n'),
            std::count(expected.begin(), expected.end(), '\n'))
      << actual;
}

void RunTranscript(const std::string& name) {
  const std::vector<Case> cases = ReadTranscript(std::string(CLI_DATA_DIR) + "/" + name);
  ASSERT_FALSE(cases.empty()) << name;
  for (const Case& c : cases) {
    SCOPED_TRACE(name + ": " + c.title);
    const ScratchDir scratch;
    const Names names = {
        {"$DATA", CLI_DATA_DIR}, {"$LIB", CLI_PROVIDER_DIR}, {"$S", scratch.path()}};
    for (const auto& [file, text] : c.files) {
      std::filesystem::create_directories(
          std::filesystem::path(scratch.path() + "/" + file).parent_path());
      scratch.write(file, Unmask(text, names));
    }
    const std::string shell =
        "S='" + scratch.path() + "' DATA='" + CLI_DATA_DIR + "' LIB='" + CLI_PROVIDER_DIR +
        "'\ncd \"$S\" || exit 99\n"
        "cmpihost() { '" CMPIHOST_BINARY
        "' \"$@\"; }\n"
        "cmpihost_mof() { cmpihost --mof \"$DATA/widgets.mof\" \"$@\"; }\n"
        "cmpihost_all() { cmpihost_mof --lib-dir \"$LIB\" --providers \"$DATA/clitest.reg\" "
        "\"$@\"; }\n" +
        c.command;
    const diagcore_test::ProgramResult result =
        diagcore_test::RunProgram({"/bin/sh", "-c", shell}, Unmask(c.input, names));
    EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
    EXPECT_EQ(Mask(result.out, names), c.out);
    ExpectError(Mask(result.err, names), c.err);
  }
}

TEST(TranscriptTest, BadUsageAndInput) {
  RunTranscript("bad-input.txt");
}

TEST(TranscriptTest, Scripts) {
  RunTranscript("scripts.txt");
}

TEST(TranscriptTest, Scaffold) {
  RunTranscript("scaffold.txt");
}

}  // namespace
}  // namespace cmpihost::testing
