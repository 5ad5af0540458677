#include "core/TextStreams.h"

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

}  // namespace NQENDRA20
