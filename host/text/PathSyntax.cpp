#include "text/PathSyntax.h"

#include <algorithm>

#include "cmpihost/HostError.h"
#include "text/Literals.h"
#include "text/NoCase.h"

namespace cmpihost {

[[noreturn]] void FailPathText(const std::string& text, std::size_t column,
                               const std::string& problem) {
  throw HostError("path text '" + text + "': column " + std::to_string(column) + ": " + problem);
}

PathSyntax ParsePathSyntax(const std::string& text) {
  PathSyntax syntax;
  if (text.empty()) {
    FailPathText(text, 1, "the text is empty");
  }
  const std::size_t n = text.size();
  std::size_t pos = 0;
  if (text.compare(0, 2, "//") == 0) {
    const std::size_t slash = text.find('/', 2);
    if (slash == std::string::npos) {
      FailPathText(text, n + 1, "expected '/' after the host name");
    }
    syntax.host = text.substr(2, slash - 2);
    if (syntax.host.empty()) {
      FailPathText(text, 3, "the host name is empty");
    }
    pos = slash + 1;
  }
  const std::size_t dot = text.find('.', pos);
  const std::size_t colon = text.find(':', pos);
  if (colon != std::string::npos && (dot == std::string::npos || colon < dot)) {
    if (colon == pos) {
      FailPathText(text, pos + 1, "the namespace before ':' is empty");
    }
    for (std::size_t i = pos; i < colon; ++i) {
      if (!IsNameChar(text[i]) && text[i] != '/') {
        FailPathText(text, i + 1,
                     std::string("unexpected character '") + text[i] + "' in the namespace");
      }
    }
    syntax.nameSpace = text.substr(pos, colon - pos);
    pos = colon + 1;
  }
  const std::size_t classStart = pos;
  while (pos < n && IsNameChar(text[pos])) {
    ++pos;
  }
  if (pos == classStart || !IsNameStart(text[classStart])) {
    FailPathText(text, classStart + 1, "expected a class name");
  }
  syntax.className = text.substr(classStart, pos - classStart);
  if (pos == n) {
    return syntax;
  }
  if (text[pos] != '.') {
    FailPathText(
        text, pos + 1,
        std::string("expected '.' and keys after the class name, found '") + text[pos] + "'");
  }
  ++pos;
  syntax.keys.reserve(static_cast<std::size_t>(std::count(text.begin() + pos, text.end(), ',')) +
                      1);
  while (true) {
    const std::size_t nameStart = pos;
    while (pos < n && IsNameChar(text[pos])) {
      ++pos;
    }
    if (pos == nameStart || !IsNameStart(text[nameStart])) {
      FailPathText(text, nameStart + 1, "expected a key name");
    }
    PathSyntax::Key key;
    key.name = text.substr(nameStart, pos - nameStart);
    for (const PathSyntax::Key& earlier : syntax.keys) {
      if (NoCaseEqual(earlier.name, key.name)) {
        FailPathText(text, nameStart + 1, "key '" + key.name + "' is given twice");
      }
    }
    if (pos == n || text[pos] != '=') {
      FailPathText(text, pos + 1, "expected '=' after the key name '" + key.name + "'");
    }
    ++pos;
    key.column = pos + 1;
    if (pos < n && text[pos] == '"') {
      pos = ReadQuoted(text, pos, key.text);
      if (pos == std::string::npos) {
        FailPathText(text, key.column, "the string value of '" + key.name + "' is not terminated");
      }
      key.quoted = true;
    } else {
      const std::size_t comma = text.find(',', pos);
      const std::size_t end = comma == std::string::npos ? n : comma;
      key.text = text.substr(pos, end - pos);
      if (key.text.empty()) {
        FailPathText(text, key.column, "the key '" + key.name + "' has no value");
      }
      pos = end;
    }
    syntax.keys.push_back(std::move(key));
    if (pos == n) {
      return syntax;
    }
    if (text[pos] != ',') {
      FailPathText(text, pos + 1,
                   "expected ',' or the end of the text after the value of '" +
                       syntax.keys.back().name + "'");
    }
    ++pos;
  }
}

std::string PathText(const std::string& host, const std::string& nameSpace,
                     const std::string& className,
                     const std::vector<std::pair<std::string, std::string>>& keys) {
  std::string out;
  if (!host.empty()) {
    out += "//" + host + "/";
  }
  if (!nameSpace.empty()) {
    out += nameSpace + ":";
  }
  out += className;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    out += i == 0 ? '.' : ',';
    out += keys[i].first + "=" + keys[i].second;
  }
  return out;
}

}  // namespace cmpihost
