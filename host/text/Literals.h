// The front door is cmpihost/Host.h; this header is internal.
// Reading and writing the literals of path and value texts: names, numbers,
// booleans and quoted strings.
#ifndef CMPIHOST_TEXT_LITERALS_H_
#define CMPIHOST_TEXT_LITERALS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cmpihost {

// ASCII letters, digits and '_' only, whatever the locale.
bool IsNameStart(char c);
bool IsNameChar(char c);

std::string Trimmed(const std::string& text, const char* blanks = " \t");

// Whole decimal numbers within range; no leading blanks.
bool ReadUnsigned(const std::string& text, std::uint64_t max, std::uint64_t& out);
bool ReadSigned(const std::string& text, std::int64_t min, std::int64_t max, std::int64_t& out);
bool ReadReal(const std::string& text, double& out);
// TRUE or FALSE in any case.
std::optional<bool> ReadBoolean(const std::string& text);

// Reads a double-quoted string starting at text[pos] == '"'; resolves
// backslash escapes (\" and \\, and any other escaped character as itself).
// Returns the position after the closing quote, or npos when unterminated.
std::size_t ReadQuoted(const std::string& text, std::size_t pos, std::string& out);
// The text in double quotes, '"' and '\\' escaped: what ReadQuoted reads back.
std::string Quoted(std::string_view text);
// A MOF string literal: also newline, tab and carriage return escaped.
std::string MofQuoted(std::string_view text);

}  // namespace cmpihost

#endif  // CMPIHOST_TEXT_LITERALS_H_
