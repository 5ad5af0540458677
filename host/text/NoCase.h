// The front door is cmpihost/Host.h; this header is internal.
// Case-insensitive comparison of ASCII names: CIM compares class, property,
// qualifier and namespace names without regard to case but keeps the
// declared spelling, so containers key on the spelling and compare like this.
#ifndef CMPIHOST_TEXT_NOCASE_H_
#define CMPIHOST_TEXT_NOCASE_H_

#include <string>
#include <string_view>
#include <vector>

namespace cmpihost {

// Lower-cases ASCII letters only; other bytes (UTF-8 included) are kept.
inline char AsciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// True when both names are equal ignoring ASCII case.
bool NoCaseEqual(std::string_view a, std::string_view b);

// The name with ASCII letters lower-cased.
std::string AsciiLowered(std::string_view name);

// The first element of `items` whose `name` equals `name` ignoring case, or null.
template <typename Named>
const Named* FindNamed(const std::vector<Named>& items, std::string_view name) {
  for (const Named& item : items) {
    if (NoCaseEqual(item.name, name)) {
      return &item;
    }
  }
  return nullptr;
}

// For ordered containers keyed by name.
struct NoCaseLess {
  bool operator()(std::string_view a, std::string_view b) const;
};

}  // namespace cmpihost

#endif  // CMPIHOST_TEXT_NOCASE_H_
