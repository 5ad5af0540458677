// The front door is cmpihost/Host.h; this header is internal.
// Splits MOF text into tokens in one pass over the bytes, skipping white
// space and comments, and decoding literals in place.
#ifndef CMPIHOST_REPOSITORY_MOFLEXER_H_
#define CMPIHOST_REPOSITORY_MOFLEXER_H_

#include <string>
#include <string_view>

#include "repository/MofToken.h"

namespace cmpihost {

class MofLexer {
 public:
  // `text` and `fileName` must outlive the lexer; `fileName` names errors.
  MofLexer(std::string_view text, const std::string& fileName);

  // Reads the next token into `token` (kEnd at the end, repeatedly).
  // Throws MofError on text that forms no token.
  void next(Token& token);

  const std::string& fileName() const { return fileName_; }

 private:
  void skipSpaceAndComments();
  void lexIdentifier(Token& token);
  void lexAlias(Token& token);
  void lexNumber(Token& token);
  void lexString(Token& token);
  void lexChar16(Token& token);
  // Decodes the escape at pos_ (just after the backslash) onto `out`.
  void lexEscape(std::string& out);
  [[noreturn]] void fail(SourcePos pos, const std::string& problem) const;
  SourcePos here() const;
  bool atEnd() const { return pos_ >= text_.size(); }
  char peek(std::size_t ahead = 0) const {
    return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : '\0';
  }
  void newLine() {
    ++line_;
    lineStart_ = pos_;
  }

  std::string_view text_;
  const std::string& fileName_;
  std::size_t pos_ = 0;
  std::size_t lineStart_ = 0;  // offset of the current line's first byte
  unsigned line_ = 1;
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFLEXER_H_
