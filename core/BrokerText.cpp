#include "core/BrokerText.h"

namespace NQENDRA20 {

std::string CharsOf(const CMPIString* text) {
  if (text == nullptr || text->ft == nullptr) {
    return "";
  }
  const char* chars = text->ft->getCharPtr(text, nullptr);
  return chars == nullptr ? std::string() : std::string(chars);
}

// One pass from the first backslash on (most texts have none): each escape
// is read and its character written in place.
std::string ResolveBackslashEscapes(std::string text) {
  std::string::size_type read = text.find('\\');
  if (read == std::string::npos) {
    return text;
  }
  std::string::size_type write = read;
  const std::string::size_type length = text.length();
  while (read < length) {
    char c = text[read++];
    if (c == '\\') {
      if (read == length) {
        break;  // a backslash at the very end is dropped
      }
      c = text[read++];
      switch (c) {
        case 'r':
          c = '\r';
          break;
        case 't':
          c = '\t';
          break;
        case 'n':
          c = '\n';
          break;
        default:
          break;  // an escaped character stands for itself, and is not an escape itself
      }
    }
    text[write++] = c;
  }
  text.resize(write);
  return text;
}

}  // namespace NQENDRA20
