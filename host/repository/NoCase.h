// Case-insensitive comparison of ASCII names: CIM compares class, property,
// qualifier and namespace names without regard to case but keeps the
// declared spelling, so containers key on the spelling and compare like this.
#ifndef CMPIHOST_REPOSITORY_NOCASE_H_
#define CMPIHOST_REPOSITORY_NOCASE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace cmpihost {

// Lower-cases ASCII letters only; other bytes (UTF-8 included) are kept.
inline char AsciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// True when both names are equal ignoring ASCII case.
bool NoCaseEqual(std::string_view a, std::string_view b);

// Negative, zero or positive as `a` sorts before, with or after `b` ignoring ASCII case.
int NoCaseCompare(std::string_view a, std::string_view b);

// The name with ASCII letters lower-cased.
std::string AsciiLowered(std::string_view name);

// Function objects for ordered and hashed containers keyed by name.
struct NoCaseLess {
  bool operator()(std::string_view a, std::string_view b) const { return NoCaseCompare(a, b) < 0; }
};
struct NoCaseEqualTo {
  bool operator()(std::string_view a, std::string_view b) const { return NoCaseEqual(a, b); }
};
struct NoCaseHash {
  std::size_t operator()(std::string_view name) const;
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_NOCASE_H_
