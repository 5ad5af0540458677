#include "repository/NoCase.h"

#include <algorithm>

namespace cmpihost {

bool NoCaseEqual(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) {
      return false;
    }
  }
  return true;
}

int NoCaseCompare(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto ca = static_cast<unsigned char>(AsciiLower(a[i]));
    const auto cb = static_cast<unsigned char>(AsciiLower(b[i]));
    if (ca != cb) {
      return ca < cb ? -1 : 1;
    }
  }
  if (a.size() == b.size()) {
    return 0;
  }
  return a.size() < b.size() ? -1 : 1;
}

std::string AsciiLowered(std::string_view name) {
  std::string lowered(name);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), AsciiLower);
  return lowered;
}

std::size_t NoCaseHash::operator()(std::string_view name) const {
  // FNV-1a over the lower-cased bytes: cheap, and names are short.
  auto hash = static_cast<std::size_t>(14695981039346656037ULL);
  for (const char c : name) {
    hash ^= static_cast<unsigned char>(AsciiLower(c));
    hash *= static_cast<std::size_t>(1099511628211ULL);
  }
  return hash;
}

}  // namespace cmpihost
