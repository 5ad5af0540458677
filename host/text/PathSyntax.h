// The front door is cmpihost/Host.h; this header is internal.
// Object path texts as a user of the host writes them and as the host prints
// them: `[//host/][namespace:]Class[.key=value,...]`, values quoted
// ("a \"b\"") or bare (5, -3, 2.5, TRUE, FALSE).
#ifndef CMPIHOST_TEXT_PATHSYNTAX_H_
#define CMPIHOST_TEXT_PATHSYNTAX_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace cmpihost {

struct PathSyntax {
  struct Key {
    std::string name;
    std::string text;  // escapes resolved
    bool quoted = false;
    std::size_t column = 0;  // 1-based, of the value
  };
  std::string host;
  std::string nameSpace;  // "" when the text gives none
  std::string className;
  std::vector<Key> keys;
};

// Reads the syntax only. Throws HostError "path text '...': column N: problem".
PathSyntax ParsePathSyntax(const std::string& text);

// Throws HostError "path text '...': column N: problem".
[[noreturn]] void FailPathText(const std::string& text, std::size_t column,
                               const std::string& problem);

// `//host/namespace:Class.k1=v1,k2=v2`: host and namespace only when set,
// key values as already printed, in the order given.
std::string PathText(const std::string& host, const std::string& nameSpace,
                     const std::string& className,
                     const std::vector<std::pair<std::string, std::string>>& keys);

}  // namespace cmpihost

#endif  // CMPIHOST_TEXT_PATHSYNTAX_H_
