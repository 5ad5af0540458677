#include "cli/PathHead.h"

#include <cctype>

#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

[[noreturn]] void Fail(const std::string& text, std::size_t index, const std::string& problem) {
  throw UsageError("path text '" + text + "': column " + std::to_string(index + 1) + ": " +
                   problem);
}

bool IsNameStart(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool IsNameChar(char c) {
  return IsNameStart(c) || std::isdigit(static_cast<unsigned char>(c));
}

std::string Describe(const std::string& text, std::size_t index) {
  return index < text.size() ? "'" + std::string(1, text[index]) + "'" : "the end";
}

}  // namespace

PathHead ReadPathHead(const std::string& text) {
  PathHead head;
  std::size_t pos = 0;
  if (text.compare(0, 2, "//") == 0) {
    const std::size_t slash = text.find('/', 2);
    if (slash == std::string::npos || slash == 2) {
      Fail(text, 2, "expected //host/ before the namespace or class");
    }
    pos = slash + 1;
  }
  // A namespace is whatever comes before the first ':' that precedes any
  // key (keys always hold '=', and quoted values may hold ':').
  const std::size_t colon = text.find(':', pos);
  const std::size_t keyMark = text.find_first_of("=\"", pos);
  if (colon != std::string::npos && (keyMark == std::string::npos || colon < keyMark)) {
    if (colon == pos) {
      Fail(text, pos, "empty namespace before ':'");
    }
    head.nameSpace = text.substr(pos, colon - pos);
    pos = colon + 1;
  }
  const std::size_t classStart = pos;
  if (pos >= text.size() || !IsNameStart(text[pos])) {
    Fail(text, pos, "expected a class name, found " + Describe(text, pos));
  }
  while (pos < text.size() && IsNameChar(text[pos])) {
    ++pos;
  }
  head.className = text.substr(classStart, pos - classStart);
  if (pos < text.size()) {
    if (text[pos] != '.') {
      Fail(text, pos, "expected '.' and keys after the class name, found " + Describe(text, pos));
    }
    if (pos + 1 >= text.size()) {
      Fail(text, pos + 1, "expected keys after '.', found the end");
    }
    head.hasKeys = true;
  }
  return head;
}

}  // namespace cmpihost::cli
