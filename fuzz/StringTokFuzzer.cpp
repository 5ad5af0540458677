// multiStringTok: the first byte is the delimiter, the rest the text.
#include <algorithm>

#include "FuzzCheck.h"
#include "diagcore/InstanceBuilder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const char delimiter = static_cast<char>(data[0]);
  const std::string input = diagcore_fuzz::InputText(data + 1, size - 1);
  std::string text = input;
  const std::vector<std::string> pieces = NQENDRA20::multiStringTok(text, delimiter);

  diagcore_fuzz::RequireEqual(text, input, "multiStringTok leaves its text alone");
  std::string joined;
  for (const std::string& piece : pieces) {
    diagcore_fuzz::Require(!piece.empty(), "no piece is empty");
    diagcore_fuzz::Require(piece.find(delimiter) == std::string::npos,
                           "no piece holds the delimiter");
    joined += piece;
  }
  std::string withoutDelimiters = input;
  withoutDelimiters.erase(
      std::remove(withoutDelimiters.begin(), withoutDelimiters.end(), delimiter),
      withoutDelimiters.end());
  diagcore_fuzz::RequireEqual(joined, withoutDelimiters,
                              "the pieces are the text without its delimiters, in order");
  return 0;
}
