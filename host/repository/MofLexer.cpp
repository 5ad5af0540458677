#include "repository/MofLexer.h"

#include <charconv>
#include <cstdio>
#include <limits>

#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

constexpr std::size_t kMaxShownToken = 32;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

unsigned HexValue(char c) {
  if (IsDigit(c)) {
    return static_cast<unsigned>(c - '0');
  }
  return static_cast<unsigned>((c | 0x20) - 'a' + 10);
}

// Identifiers may hold UTF-8 letters: every byte from 0x80 counts.
bool IsIdentifierStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsIdentifierChar(char c) {
  return IsIdentifierStart(c) || IsDigit(c);
}

std::string Shown(std::string_view text) {
  if (text.size() <= kMaxShownToken) {
    return std::string(text);
  }
  return std::string(text.substr(0, kMaxShownToken)) + "...";
}

std::string ByteText(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte > 0x20 && byte < 0x7f) {
    return std::string("character '") + c + "'";
  }
  char hex[8];
  std::snprintf(hex, sizeof hex, "0x%02X", byte);
  return std::string("byte ") + hex;
}

void AppendUtf8(std::string& out, unsigned codePoint) {
  if (codePoint < 0x80) {
    out += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    out += static_cast<char>(0xC0 | (codePoint >> 6));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (codePoint >> 12));
    out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  }
}

// The byte length of the UTF-8 sequence a lead byte starts (1 for anything odd).
std::size_t Utf8Length(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte >= 0xF0) {
    return 4;
  }
  if (byte >= 0xE0) {
    return 3;
  }
  if (byte >= 0xC0) {
    return 2;
  }
  return 1;
}

}  // namespace

std::string DescribeToken(const Token& token) {
  switch (token.kind) {
    case TokenKind::kEnd:
      return "end of file";
    case TokenKind::kIdentifier:
      return "\"" + Shown(token.text) + "\"";
    case TokenKind::kInteger:
    case TokenKind::kReal:
      return "number " + Shown(token.text);
    case TokenKind::kString:
      return "string " + Shown(token.text);
    case TokenKind::kChar16:
      return "char16 " + Shown(token.text);
    case TokenKind::kAlias:
      return "alias $" + Shown(token.text);
    case TokenKind::kPunct:
      return "'" + std::string(token.text) + "'";
  }
  return "?";
}

MofLexer::MofLexer(std::string_view text, const std::string& fileName)
    : text_(text), fileName_(fileName) {
  // A UTF-8 byte order mark is not MOF text.
  if (text_.substr(0, 3) == "\xEF\xBB\xBF") {
    pos_ = 3;
    lineStart_ = 3;
  }
}

SourcePos MofLexer::here() const {
  return SourcePos{line_, static_cast<unsigned>(pos_ - lineStart_ + 1)};
}

void MofLexer::fail(SourcePos pos, const std::string& problem) const {
  throw MofError(fileName_, pos.line, pos.column, problem);
}

void MofLexer::skipSpaceAndComments() {
  while (!atEnd()) {
    const char c = peek();
    if (c == '\n') {
      ++pos_;
      newLine();
    } else if (c == '\r') {
      ++pos_;
      if (peek() != '\n') {
        newLine();
      }
    } else if (c == ' ' || c == '\t' || c == '\f' || c == '\v') {
      ++pos_;
    } else if (c == '/' && peek(1) == '/') {
      while (!atEnd() && peek() != '\n' && peek() != '\r') {
        ++pos_;
      }
    } else if (c == '/' && peek(1) == '*') {
      const SourcePos start = here();
      pos_ += 2;
      for (;;) {
        if (atEnd()) {
          fail(start, R"(unterminated comment: no "*/" closes this "/*")");
        }
        const char inner = peek();
        if (inner == '*' && peek(1) == '/') {
          pos_ += 2;
          break;
        }
        ++pos_;
        if (inner == '\n' || (inner == '\r' && peek() != '\n')) {
          newLine();
        }
      }
    } else {
      return;
    }
  }
}

void MofLexer::next(Token& token) {
  skipSpaceAndComments();
  token.pos = here();
  token.negative = false;
  token.integer = 0;
  token.real = 0.0;
  if (atEnd()) {
    token.kind = TokenKind::kEnd;
    token.text = std::string_view();
    return;
  }
  const char c = peek();
  if (IsIdentifierStart(c)) {
    lexIdentifier(token);
  } else if (IsDigit(c) || (c == '.' && IsDigit(peek(1))) ||
             ((c == '+' || c == '-') &&
              (IsDigit(peek(1)) || (peek(1) == '.' && IsDigit(peek(2)))))) {
    lexNumber(token);
  } else if (c == '"') {
    lexString(token);
  } else if (c == '\'') {
    lexChar16(token);
  } else if (c == '$') {
    lexAlias(token);
  } else if (c == '{' || c == '}' || c == '(' || c == ')' || c == '[' || c == ']' || c == ';' ||
             c == ',' || c == ':' || c == '=' || c == '#') {
    token.kind = TokenKind::kPunct;
    token.text = text_.substr(pos_, 1);
    ++pos_;
  } else {
    fail(here(), "unexpected " + ByteText(c));
  }
}

void MofLexer::lexIdentifier(Token& token) {
  const std::size_t start = pos_;
  while (!atEnd() && IsIdentifierChar(peek())) {
    ++pos_;
  }
  token.kind = TokenKind::kIdentifier;
  token.text = text_.substr(start, pos_ - start);
}

void MofLexer::lexAlias(Token& token) {
  const SourcePos start = here();
  ++pos_;
  if (!IsIdentifierStart(peek())) {
    fail(start, "expected an alias name after '$'");
  }
  const std::size_t nameStart = pos_;
  while (!atEnd() && IsIdentifierChar(peek())) {
    ++pos_;
  }
  token.kind = TokenKind::kAlias;
  token.text = text_.substr(nameStart, pos_ - nameStart);
}

void MofLexer::lexNumber(Token& token) {
  const SourcePos start = here();
  const std::size_t startOffset = pos_;
  if (peek() == '+' || peek() == '-') {
    token.negative = peek() == '-';
    ++pos_;
  }
  const auto accumulate = [&](unsigned base, unsigned digit) {
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    if (token.integer > (kMax - digit) / base) {
      while (IsIdentifierChar(peek())) {
        ++pos_;
      }
      fail(start, "integer " + Shown(text_.substr(startOffset, pos_ - startOffset)) +
                      " does not fit in 64 bits");
    }
    token.integer = token.integer * base + digit;
  };
  token.kind = TokenKind::kInteger;
  if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
    pos_ += 2;
    if (!IsHexDigit(peek())) {
      fail(start, "hexadecimal number needs digits after \"0x\"");
    }
    while (IsHexDigit(peek())) {
      accumulate(16, HexValue(peek()));
      ++pos_;
    }
  } else {
    const std::size_t digitsStart = pos_;
    while (IsDigit(peek())) {
      ++pos_;
    }
    const std::string_view digits = text_.substr(digitsStart, pos_ - digitsStart);
    const bool binaryDigits =
        !digits.empty() && digits.find_first_not_of("01") == std::string_view::npos;
    if (peek() == '.' && IsDigit(peek(1))) {
      ++pos_;
      while (IsDigit(peek())) {
        ++pos_;
      }
      if ((peek() == 'e' || peek() == 'E') &&
          (IsDigit(peek(1)) || ((peek(1) == '+' || peek(1) == '-') && IsDigit(peek(2))))) {
        pos_ += 2;
        while (IsDigit(peek())) {
          ++pos_;
        }
      }
      token.kind = TokenKind::kReal;
      const std::string_view magnitude = text_.substr(digitsStart, pos_ - digitsStart);
      const auto [end, error] =
          std::from_chars(magnitude.data(), magnitude.data() + magnitude.size(), token.real);
      if (error != std::errc() || end != magnitude.data() + magnitude.size()) {
        fail(start, "real number " + Shown(magnitude) + " is out of range");
      }
      if (token.negative) {
        token.real = -token.real;
      }
    } else if ((peek() == 'b' || peek() == 'B') && binaryDigits) {
      for (const char digit : digits) {
        accumulate(2, static_cast<unsigned>(digit - '0'));
      }
      ++pos_;
    } else if (digits.size() > 1 && digits[0] == '0') {
      for (const char digit : digits) {
        if (digit > '7') {
          fail(start, "octal number " + Shown(digits) + " holds the digit " + digit);
        }
        accumulate(8, static_cast<unsigned>(digit - '0'));
      }
    } else {
      for (const char digit : digits) {
        accumulate(10, static_cast<unsigned>(digit - '0'));
      }
    }
  }
  if (IsIdentifierChar(peek()) || peek() == '.') {
    while (IsIdentifierChar(peek()) || peek() == '.') {
      ++pos_;
    }
    fail(start, "malformed number " + Shown(text_.substr(startOffset, pos_ - startOffset)));
  }
  token.text = text_.substr(startOffset, pos_ - startOffset);
}

void MofLexer::lexEscape(std::string& out) {
  const SourcePos start{line_, static_cast<unsigned>(pos_ - lineStart_)};  // the backslash
  const char c = peek();
  ++pos_;
  switch (c) {
    case 'b':
      out += '\b';
      return;
    case 't':
      out += '\t';
      return;
    case 'n':
      out += '\n';
      return;
    case 'f':
      out += '\f';
      return;
    case 'r':
      out += '\r';
      return;
    case '"':
    case '\'':
    case '\\':
      out += c;
      return;
    case 'x':
    case 'X': {
      unsigned codePoint = 0;
      unsigned count = 0;
      while (count < 4 && IsHexDigit(peek())) {
        codePoint = codePoint * 16 + HexValue(peek());
        ++pos_;
        ++count;
      }
      if (count == 0) {
        fail(start, "escape \\x needs one to four hexadecimal digits");
      }
      if (codePoint == 0) {
        fail(start, "escape \\x0 would put a NUL character into the text");
      }
      if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
        fail(start, "escape names a UTF-16 surrogate, which is no character");
      }
      AppendUtf8(out, codePoint);
      return;
    }
    default:
      fail(start, "unknown escape sequence \\" + std::string(1, c) +
                      R"( (known: \b \t \n \f \r \" \' \\ \xHHHH))");
  }
}

void MofLexer::lexString(Token& token) {
  const SourcePos start = here();
  const std::size_t startOffset = pos_;
  ++pos_;
  token.decoded.clear();
  std::size_t runStart = pos_;
  for (;;) {
    if (atEnd() || peek() == '\n' || peek() == '\r' ||
        (peek() == '\\' && (pos_ + 1 >= text_.size() || peek(1) == '\n' || peek(1) == '\r'))) {
      fail(start, "unterminated string: no closing '\"' on this line");
    }
    const char c = peek();
    if (c == '"') {
      token.decoded.append(text_.data() + runStart, pos_ - runStart);
      ++pos_;
      break;
    }
    if (c == '\\') {
      token.decoded.append(text_.data() + runStart, pos_ - runStart);
      ++pos_;
      lexEscape(token.decoded);
      runStart = pos_;
      continue;
    }
    if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
      fail(here(), "control " + ByteText(c) + " inside a string; write it as an escape");
    }
    ++pos_;
  }
  token.kind = TokenKind::kString;
  token.text = text_.substr(startOffset, pos_ - startOffset);
}

void MofLexer::lexChar16(Token& token) {
  const SourcePos start = here();
  const std::size_t startOffset = pos_;
  ++pos_;
  token.decoded.clear();
  const char c = peek();
  if (atEnd() || c == '\n' || c == '\r') {
    fail(start, "unterminated char16 literal");
  }
  if (c == '\'') {
    fail(start, "empty char16 literal");
  }
  if (c == '\\') {
    ++pos_;
    if (atEnd() || peek() == '\n' || peek() == '\r') {
      fail(start, "unterminated char16 literal");
    }
    lexEscape(token.decoded);
  } else if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
    fail(here(), "control " + ByteText(c) + " inside a char16 literal; write it as an escape");
  } else {
    const std::size_t length = Utf8Length(c);
    if (length == 4) {
      fail(start, "a char16 cannot hold a character beyond U+FFFF");
    }
    if (pos_ + length > text_.size()) {
      fail(start, "unterminated char16 literal");
    }
    token.decoded.append(text_.data() + pos_, length);
    pos_ += length;
  }
  if (peek() != '\'') {
    const std::size_t lineEnd = text_.find_first_of("\r\n", pos_);
    const std::size_t close = text_.find('\'', pos_);
    if (close == std::string_view::npos || close > lineEnd) {
      fail(start, "unterminated char16 literal");
    }
    fail(start, "char16 literal holds more than one character");
  }
  ++pos_;
  token.kind = TokenKind::kChar16;
  token.text = text_.substr(startOffset, pos_ - startOffset);
}

}  // namespace cmpihost
