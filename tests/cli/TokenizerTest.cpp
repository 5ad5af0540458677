// Script lines split into the same words the shell would pass on the
// command line, and bad quoting is reported with its column.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/Tokenizer.h"
#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

using Words = std::vector<std::string>;

TEST(TokenizerTest, SplitsLikeTheShell) {
  const struct {
    std::string line;
    Words words;
  } cases[] = {
      {"", {}},
      {"   \t ", {}},
      {"# only a comment", {}},
      {"  ecn", {"ecn"}},
      {"ei  Cli_Shelf\t", {"ei", "Cli_Shelf"}},
      {"gi 'root/cimv2:Cli_Shelf.Id=\"s1\"'", {"gi", "root/cimv2:Cli_Shelf.Id=\"s1\""}},
      {R"(gi "Cli_Shelf.Id=\"s 1\"")", {"gi", "Cli_Shelf.Id=\"s 1\""}},
      {R"(echo a\ b c\\d)", {"echo", "a b", "c\\d"}},
      {R"(echo "keep \n and \x" '\')", {"echo", "keep \\n and \\x", "\\"}},
      {"echo 'it'\"'\"'s'", {"echo", "it's"}},
      {"echo '' \"\"", {"echo", "", ""}},
      {"cm P M Label=\"two words\" N=5", {"cm", "P", "M", "Label=two words", "N=5"}},
      {"echo a#b # comment", {"echo", "a#b"}},
      {"echo '#not a comment'", {"echo", "#not a comment"}},
      {"ecn\r", {"ecn"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Tokenize(c.line), c.words) << c.line;
  }
}

TEST(TokenizerTest, BadQuotingNamesTheColumn) {
  const struct {
    std::string line;
    std::string message;
  } cases[] = {
      {"gi 'Cli_Shelf.Id=\"s1\"", "column 4: unterminated single quote"},
      {"echo ok \"open", "column 9: unterminated double quote"},
      {R"(echo "a\")", "column 6: unterminated double quote"},
      {"echo x\\", "column 7: a backslash at the end of the line escapes nothing"},
  };
  for (const auto& c : cases) {
    try {
      Tokenize(c.line);
      ADD_FAILURE() << "no error for " << c.line;
    } catch (const UsageError& error) {
      EXPECT_EQ(error.what(), c.message) << c.line;
    }
  }
}

TEST(TokenizerTest, OnlyAnUnquotedTrailingBackslashContinuesTheLine) {
  EXPECT_TRUE(ContinuesOnNextLine("cm P M \\"));
  EXPECT_TRUE(ContinuesOnNextLine("cm P M \\\r"));
  EXPECT_TRUE(ContinuesOnNextLine("echo a\\\\\\"));
  EXPECT_FALSE(ContinuesOnNextLine("echo a\\\\"));
  EXPECT_FALSE(ContinuesOnNextLine("echo 'a\\"));
  EXPECT_FALSE(ContinuesOnNextLine("# comment \\"));
  EXPECT_FALSE(ContinuesOnNextLine("echo x # comment \\"));
  EXPECT_FALSE(ContinuesOnNextLine(""));
}

}  // namespace
}  // namespace cmpihost::cli
