#include "FuzzCheck.h"

#include <cstdio>
#include <cstdlib>

namespace diagcore_fuzz {

void Fail(const char* what) {
  std::fprintf(stderr, "broken invariant: %s\n", what);
  std::abort();
}

namespace {

// `text` in C escapes, so that control bytes show in the report.
std::string Printable(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\' || c == '"') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte >= 0x7f) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
      out += escaped;
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

void RequireEqual(const std::string& actual, const std::string& expected, const char* what) {
  if (actual != expected) {
    std::fprintf(stderr, "actual:   \"%s\"\nexpected: \"%s\"\n", Printable(actual).c_str(),
                 Printable(expected).c_str());
    Fail(what);
  }
}

std::string InputText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

std::string InputCText(const std::uint8_t* data, std::size_t size) {
  std::string text = InputText(data, size);
  const std::string::size_type nul = text.find('\0');
  if (nul != std::string::npos) {
    text.erase(nul);
  }
  return text;
}

std::string TakeLine(std::string& text) {
  const std::string::size_type end = text.find('\n');
  std::string line = text.substr(0, end);
  text.erase(0, end == std::string::npos ? end : end + 1);
  return line;
}

}  // namespace diagcore_fuzz
