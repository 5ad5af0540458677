#include "cli/Tokenizer.h"

#include <cstddef>

#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Characters a backslash escapes inside double quotes, as in the shell;
// before any other character the backslash stays.
bool EscapableInDoubleQuotes(char c) {
  return c == '"' || c == '\\' || c == '$' || c == '`';
}

[[noreturn]] void Fail(std::size_t index, const std::string& problem) {
  throw UsageError("column " + std::to_string(index + 1) + ": " + problem);
}

class WordReader {
 public:
  explicit WordReader(const std::string& line) : line_(line) {}

  std::vector<std::string> words() {
    std::vector<std::string> words;
    while (skipBlanks()) {
      if (line_[pos_] == '#') {
        break;
      }
      words.push_back(word());
    }
    return words;
  }

 private:
  // Moves past blanks; false at the end of the line.
  bool skipBlanks() {
    while (pos_ < line_.size() && IsBlank(line_[pos_])) {
      ++pos_;
    }
    return pos_ < line_.size();
  }

  std::string word() {
    std::string word;
    while (pos_ < line_.size() && !IsBlank(line_[pos_])) {
      const char c = line_[pos_];
      if (c == '\'') {
        singleQuoted(word);
      } else if (c == '"') {
        doubleQuoted(word);
      } else if (c == '\\') {
        if (pos_ + 1 >= line_.size()) {
          Fail(pos_, "a backslash at the end of the line escapes nothing");
        }
        word += line_[pos_ + 1];
        pos_ += 2;
      } else {
        word += c;
        ++pos_;
      }
    }
    return word;
  }

  void singleQuoted(std::string& word) {
    const std::size_t open = pos_++;
    const std::size_t close = line_.find('\'', pos_);
    if (close == std::string::npos) {
      Fail(open, "unterminated single quote");
    }
    word.append(line_, pos_, close - pos_);
    pos_ = close + 1;
  }

  void doubleQuoted(std::string& word) {
    const std::size_t open = pos_++;
    while (pos_ < line_.size() && line_[pos_] != '"') {
      if (line_[pos_] == '\\' && pos_ + 1 < line_.size() &&
          EscapableInDoubleQuotes(line_[pos_ + 1])) {
        ++pos_;
      }
      word += line_[pos_++];
    }
    if (pos_ >= line_.size()) {
      Fail(open, "unterminated double quote");
    }
    ++pos_;
  }

  const std::string& line_;
  std::size_t pos_ = 0;
};

}  // namespace

std::vector<std::string> Tokenize(const std::string& line) {
  return WordReader(line).words();
}

bool ContinuesOnNextLine(const std::string& line) {
  std::size_t end = line.size();
  while (end > 0 && line[end - 1] == '\r') {
    --end;
  }
  char quote = 0;
  bool atWordStart = true;
  for (std::size_t i = 0; i < end; ++i) {
    const char c = line[i];
    if (quote != 0) {
      if (c == quote) {
        quote = 0;
      } else if (quote == '"' && c == '\\') {
        ++i;
      }
    } else if (c == '#' && atWordStart) {
      return false;
    } else if (c == '\\') {
      if (i + 1 == end) {
        return true;
      }
      ++i;
    } else if (c == '\'' || c == '"') {
      quote = c;
    }
    atWordStart = i < end && IsBlank(line[i]);
  }
  return false;
}

}  // namespace cmpihost::cli
