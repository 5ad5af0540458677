// The front door is cmpihost/Host.h; this header is internal.
// One token of MOF text, as the lexer hands it to the parser.
#ifndef CMPIHOST_REPOSITORY_MOFTOKEN_H_
#define CMPIHOST_REPOSITORY_MOFTOKEN_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace cmpihost {

// Where something was written: 1-based line and column (in bytes).
struct SourcePos {
  unsigned line = 0;
  unsigned column = 0;
};

enum class TokenKind {
  kEnd,
  kIdentifier,  // keywords too: MOF keywords are identifiers compared without case
  kInteger,
  kReal,
  kString,  // one literal; the parser joins adjacent ones
  kChar16,
  kAlias,  // $name; `text` holds the name without '$'
  kPunct,  // one of { } ( ) [ ] ; , : = #
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string_view text;  // the source spelling (points into the MOF text)
  SourcePos pos;
  std::string decoded;  // kString, kChar16: escapes resolved (UTF-8)
  bool negative = false;
  std::uint64_t integer = 0;  // kInteger: magnitude
  double real = 0.0;          // kReal

  bool isPunct(char c) const { return kind == TokenKind::kPunct && text[0] == c; }
};

// How a token is named in an error: `'{'`, `"CIM_Foo"`, `string "abc"`, ...
std::string DescribeToken(const Token& token);

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFTOKEN_H_
