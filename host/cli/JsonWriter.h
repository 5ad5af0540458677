// A small writer of compact JSON text: the caller opens and closes objects
// and arrays, and the writer places commas and colons and escapes strings.
#ifndef CMPIHOST_CLI_JSONWRITER_H_
#define CMPIHOST_CLI_JSONWRITER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace cmpihost::cli {

class JsonWriter {
 public:
  JsonWriter& beginObject();
  JsonWriter& endObject();
  JsonWriter& beginArray();
  JsonWriter& endArray();
  // The name of the next member of the open object.
  JsonWriter& key(const std::string& name);

  JsonWriter& string(const std::string& text);
  JsonWriter& number(std::uint64_t value);
  JsonWriter& number(std::int64_t value);
  // Non-finite values have no JSON form and are written as the strings
  // "NaN", "Infinity" and "-Infinity".
  JsonWriter& number(double value);
  JsonWriter& boolean(bool value);
  JsonWriter& null();

  // The text written so far.
  const std::string& text() const { return text_; }

  // `text` as a JSON string literal, quotes included.
  static std::string Quote(const std::string& text);

 private:
  // Writes the comma that separates this value from the previous one.
  void beforeValue();

  std::string text_;
  std::vector<bool> firstInContainer_;
  bool afterKey_ = false;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_JSONWRITER_H_
