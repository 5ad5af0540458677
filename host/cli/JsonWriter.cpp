#include "cli/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace cmpihost::cli {

std::string JsonWriter::Quote(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\b':
        out += "\\b";
        break;
      case '\f':
        out += "\\f";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          std::array<char, 7> escaped{};
          std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(c));
          out += escaped.data();
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

void JsonWriter::beforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!firstInContainer_.empty()) {
    if (!firstInContainer_.back()) {
      text_ += ',';
    }
    firstInContainer_.back() = false;
  }
}

JsonWriter& JsonWriter::beginObject() {
  beforeValue();
  text_ += '{';
  firstInContainer_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::endObject() {
  firstInContainer_.pop_back();
  text_ += '}';
  return *this;
}

JsonWriter& JsonWriter::beginArray() {
  beforeValue();
  text_ += '[';
  firstInContainer_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::endArray() {
  firstInContainer_.pop_back();
  text_ += ']';
  return *this;
}

JsonWriter& JsonWriter::key(const std::string& name) {
  beforeValue();
  text_ += Quote(name) + ':';
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::string(const std::string& text) {
  beforeValue();
  text_ += Quote(text);
  return *this;
}

JsonWriter& JsonWriter::number(std::uint64_t value) {
  beforeValue();
  text_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::number(std::int64_t value) {
  beforeValue();
  text_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::number(double value) {
  if (std::isnan(value)) {
    return string("NaN");
  }
  if (std::isinf(value)) {
    return string(value > 0 ? "Infinity" : "-Infinity");
  }
  beforeValue();
  std::array<char, 32> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text_.append(digits.data(), result.ptr);
  return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
  beforeValue();
  text_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::null() {
  beforeValue();
  text_ += "null";
  return *this;
}

}  // namespace cmpihost::cli
