#include "repository/NoCase.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace cmpihost {

namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;

// Up to eight bytes of `text` from `at`, zero-padded, as one word.
std::uint64_t WordAt(std::string_view text, std::size_t at) {
  std::uint64_t word = 0;
  if (text.size() - at >= 8) {
    std::memcpy(&word, text.data() + at, 8);  // one load
    return word;
  }
  for (std::size_t i = text.size(); i > at; --i) {
    word = (word << 8) | static_cast<unsigned char>(text[i - 1]);
  }
  return word;
}

// The word with every byte that is an ASCII capital lower-cased, as
// AsciiLower does byte by byte: eight characters at once, since every
// class and namespace lookup hashes and compares whole names.
std::uint64_t LoweredWord(std::uint64_t word) {
  const std::uint64_t low7 = word & ~kHighBits;
  const std::uint64_t atLeastA = low7 + (0x80 - 'A') * kOnes;  // high bit: >= 'A'
  const std::uint64_t aboveZ = low7 + (0x7F - 'Z') * kOnes;    // high bit: > 'Z'
  const std::uint64_t capitals = (atLeastA ^ aboveZ) & ~word & kHighBits;
  return word | (capitals >> 2);
}

}  // namespace

bool NoCaseEqual(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t at = 0; at < a.size(); at += 8) {
    const std::uint64_t wordA = WordAt(a, at);
    const std::uint64_t wordB = WordAt(b, at);
    if (wordA != wordB && LoweredWord(wordA) != LoweredWord(wordB)) {
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
  // FNV-1a over the lower-cased text, a word of eight characters per step.
  auto hash = static_cast<std::size_t>(14695981039346656037ULL);
  for (std::size_t at = 0; at < name.size(); at += 8) {
    hash ^= static_cast<std::size_t>(LoweredWord(WordAt(name, at)));
    hash *= static_cast<std::size_t>(1099511628211ULL);
    hash ^= hash >> 29;
  }
  return hash ^ name.size();
}

}  // namespace cmpihost
