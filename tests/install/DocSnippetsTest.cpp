// The documents show code that is built and tested: every fenced block that
// follows a line "<!-- from PATH -->" must be a run of whole lines of PATH
// (relative to the project), and every C++ block must follow such a line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace diagcore_test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSourceDir = DIAGCORE_SOURCE_DIR;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

struct Block {
  std::string document;
  unsigned line = 0;     // of the opening fence
  std::string language;  // after the fence: "cpp", "text", ...
  std::string source;    // from the marker line before it; "" when none
  std::string text;      // the lines inside the fences, each ending in '\n'
};

// The fenced blocks of a Markdown document, with the marker before each.
std::vector<Block> BlocksOf(const fs::path& document) {
  static const std::regex kMarker(R"(^<!-- from (\S+) -->$)");
  std::istringstream in(ReadFile(document));
  std::vector<Block> blocks;
  std::string line;
  std::string source;
  unsigned number = 0;
  bool inBlock = false;
  while (std::getline(in, line)) {
    ++number;
    std::smatch match;
    if (inBlock) {
      if (line == "```") {
        inBlock = false;
      } else {
        blocks.back().text += line + "\n";
      }
    } else if (std::regex_match(line, match, kMarker)) {
      source = match[1];
    } else if (line.rfind("```", 0) == 0) {
      inBlock = true;
      blocks.push_back(Block{fs::relative(document, fs::path(kSourceDir)).string(), number,
                             line.substr(3), source, ""});
      source.clear();
    } else if (!line.empty()) {
      source.clear();  // a marker names the block right after it
    }
  }
  return blocks;
}

std::vector<fs::path> Documents() {
  std::vector<fs::path> documents = {fs::path(kSourceDir) / "README.md"};
  if (fs::is_directory(fs::path(kSourceDir) / "docs")) {
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(kSourceDir) / "docs")) {
      if (entry.path().extension() == ".md") {
        documents.push_back(entry.path());
      }
    }
  }
  return documents;
}

TEST(DocSnippetsTest, EveryMarkedBlockIsARunOfLinesOfTheFileItNames) {
  unsigned marked = 0;
  for (const fs::path& document : Documents()) {
    for (const Block& block : BlocksOf(document)) {
      const std::string where = block.document + ":" + std::to_string(block.line);
      if (block.language == "cpp") {
        EXPECT_FALSE(block.source.empty()) << where << ": a C++ block needs a <!-- from --> line";
      }
      if (block.source.empty()) {
        continue;
      }
      ++marked;
      const fs::path source = fs::path(kSourceDir) / block.source;
      ASSERT_TRUE(fs::is_regular_file(source)) << where << ": no file " << block.source;
      EXPECT_NE(("\n" + ReadFile(source)).find("\n" + block.text), std::string::npos)
          << where << ": the block is not a run of lines of " << block.source << ":\n"
          << block.text;
    }
  }
  EXPECT_GT(marked, 0U);
}

// What .ci/run does with the README: from the marker to the first line that
// ends in ``` (sed's range), the first line that is neither a marker nor a
// fence. A bare ``` opening the block would end the range at once.
std::string CommandAfter(const std::string& marker) {
  std::istringstream in(ReadFile(fs::path(kSourceDir) / "README.md"));
  std::string line;
  while (std::getline(in, line) && line != marker) {
  }
  while (std::getline(in, line)) {
    const bool fence = line.rfind("```", 0) == 0;
    if (!fence && line.rfind("<!--", 0) != 0) {
      return line;
    }
    if (line.size() >= 3 && line.compare(line.size() - 3, 3, "```") == 0) {
      return "";
    }
  }
  return "";
}

TEST(DocSnippetsTest, CiReadsTheReadmeCommandsAsWritten) {
  EXPECT_EQ(CommandAfter("<!-- demo-command -->"), "cmake --workflow --preset demo");
  EXPECT_EQ(CommandAfter("<!-- test-command -->"),
            "cmake --workflow --preset test && cmake --workflow --preset test-asan");
}

}  // namespace
}  // namespace diagcore_test
