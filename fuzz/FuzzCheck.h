// Helpers every fuzz target uses: reading the input, and the check that
// turns a broken property into a finding. No dependency beyond the standard
// library, so that the MOF reader's target links nothing else.
#ifndef DIAGCORE_FUZZ_FUZZCHECK_H_
#define DIAGCORE_FUZZ_FUZZCHECK_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace diagcore_fuzz {

// Aborts, naming `what` on standard error: libFuzzer keeps the input as a
// crash, as it does for a sanitizer report.
[[noreturn]] void Fail(const char* what);

// Fail(what) unless `holds`. Inline, so that analysers see it end the run.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    Fail(what);
  }
}

// Require(actual == expected, what), printing both texts when they differ.
void RequireEqual(const std::string& actual, const std::string& expected, const char* what);

// The input as bytes in a string, NULs included.
std::string InputText(const std::uint8_t* data, std::size_t size);

// The input up to its first NUL: what a text passed as a C string carries.
std::string InputCText(const std::uint8_t* data, std::size_t size);

// Cuts `text` at its first line end: returns the part before it and leaves
// the rest in `text` (all of it, and "" left, when there is no line end).
std::string TakeLine(std::string& text);

}  // namespace diagcore_fuzz

#endif  // DIAGCORE_FUZZ_FUZZCHECK_H_
