#include "core/TextStreams.h"

#include <cstdint>
#include <locale>

namespace NQENDRA20 {

namespace {

// A new stream takes the global locale of the moment it is made; a reused
// one must follow a plug-in that changes the global locale meanwhile.
void AsIfNew(std::ios& stream) {
  stream.clear();
  stream.flags(std::ios_base::skipws | std::ios_base::dec);
  stream.width(0);
  stream.precision(6);
  stream.fill(stream.widen(' '));
  const std::locale global;
  if (stream.getloc() != global) {
    stream.imbue(global);
  }
}

}  // namespace

std::istringstream& ReadingStream(const std::string& text) {
  thread_local std::istringstream stream;
  AsIfNew(stream);
  stream.str(text);
  return stream;
}

std::ostringstream& WritingStream() {
  thread_local std::ostringstream stream;
  AsIfNew(stream);
  stream.str(std::string());
  return stream;
}

namespace {

// Whether the global locale groups digits, asked again only when the global
// locale has changed since this thread last asked.
bool GlobalLocaleGroups() {
  thread_local std::locale seen = std::locale::classic();
  thread_local bool groups = false;
  const std::locale global;
  if (global != seen) {
    seen = global;
    groups = !std::use_facet<std::numpunct<char>>(global).grouping().empty();
  }
  return groups;
}

}  // namespace

std::string PointerText(const void* pointer) {
  if (GlobalLocaleGroups()) {
    std::ostringstream& out = WritingStream();
    out << pointer;
    return out.str();
  }
  auto value = reinterpret_cast<std::uintptr_t>(pointer);
  if (value == 0) {
    return "0";
  }
  char digits[2 * sizeof value];
  std::size_t count = 0;
  for (; value != 0; value >>= 4) {
    digits[count++] = "0123456789abcdef"[value & 0xF];
  }
  std::string text = "0x";
  while (count > 0) {
    text += digits[--count];
  }
  return text;
}

}  // namespace NQENDRA20
