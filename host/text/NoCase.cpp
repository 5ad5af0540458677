#include "text/NoCase.h"

#include <algorithm>

namespace cmpihost {

namespace {

bool SameLetter(char a, char b) {
  return AsciiLower(a) == AsciiLower(b);
}

bool LetterBefore(char a, char b) {
  return static_cast<unsigned char>(AsciiLower(a)) < static_cast<unsigned char>(AsciiLower(b));
}

}  // namespace

bool NoCaseEqual(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameLetter);
}

bool NoCaseLess::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), LetterBefore);
}

std::string AsciiLowered(std::string_view name) {
  std::string lowered(name);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), AsciiLower);
  return lowered;
}

}  // namespace cmpihost
