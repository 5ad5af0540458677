#include "core/BrokerText.h"

namespace NQENDRA20 {

std::string CharsOf(const CMPIString* text) {
  if (text == nullptr || text->ft == nullptr) {
    return "";
  }
  const char* chars = text->ft->getCharPtr(text, nullptr);
  return chars == nullptr ? std::string() : std::string(chars);
}

std::string ResolveBackslashEscapes(std::string text) {
  for (std::string::size_type i = 0; i < text.length(); ++i) {
    if (text[i] != '\\') {
      continue;
    }
    text.erase(i, 1);
    if (i >= text.length()) {
      break;
    }
    switch (text[i]) {
      case 'r':
        text[i] = '\r';
        break;
      case 't':
        text[i] = '\t';
        break;
      case 'n':
        text[i] = '\n';
        break;
      default:
        break;  // an escaped character stands for itself, and is not an escape itself
    }
  }
  return text;
}

}  // namespace NQENDRA20
