#include "text/Literals.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

#include "text/NoCase.h"

namespace cmpihost {

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool IsNameChar(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9');
}

std::string Trimmed(const std::string& text, const char* blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) {
    return "";
  }
  const std::size_t last = text.find_last_not_of(blanks);
  return text.substr(first, last - first + 1);
}

bool ReadUnsigned(const std::string& text, std::uint64_t max, std::uint64_t& out) {
  if (text.empty() || text[0] == '-' || std::isspace(static_cast<unsigned char>(text[0])) != 0) {
    return false;
  }
  errno = 0;
  char* end = nullptr;
  const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || value > max) {
    return false;
  }
  out = value;
  return true;
}

bool ReadSigned(const std::string& text, std::int64_t min, std::int64_t max, std::int64_t& out) {
  if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])) != 0) {
    return false;
  }
  errno = 0;
  char* end = nullptr;
  const long long value = std::strtoll(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || value < min || value > max) {
    return false;
  }
  out = value;
  return true;
}

bool ReadReal(const std::string& text, double& out) {
  if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])) != 0) {
    return false;
  }
  char* end = nullptr;
  out = std::strtod(text.c_str(), &end);
  return *end == '\0';
}

std::optional<bool> ReadBoolean(const std::string& text) {
  if (NoCaseEqual(text, "TRUE")) {
    return true;
  }
  if (NoCaseEqual(text, "FALSE")) {
    return false;
  }
  return std::nullopt;
}

// Reads a double-quoted string starting at text[pos] == '"'; resolves
// backslash escapes (\" and \\, and any other escaped character as itself).
// Returns the position after the closing quote, or npos when unterminated.
std::size_t ReadQuoted(const std::string& text, std::size_t pos, std::string& out) {
  std::size_t run = ++pos;  // start of the characters not yet copied
  for (; pos < text.size(); ++pos) {
    if (text[pos] == '\\' && pos + 1 < text.size()) {
      out.append(text, run, pos - run);
      out += text[++pos];
      run = pos + 1;
    } else if (text[pos] == '"') {
      out.append(text, run, pos - run);
      return pos + 1;
    }
  }
  out.append(text, run, pos - run);
  return std::string::npos;
}

std::string Quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
    }
    out += c;
  }
  return out + "\"";
}

std::string MofQuoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out += c;
    }
  }
  return out + "\"";
}

}  // namespace cmpihost
