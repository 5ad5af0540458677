#include "broker/BagReading.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <optional>

#include "broker/ClassShapes.h"
#include "broker/PathText.h"
#include "cmpihost/HostError.h"

namespace cmpihost {
namespace {

bool AllDigits(const std::string& text, std::size_t from) {
  if (from >= text.size()) {
    return false;
  }
  for (std::size_t index = from; index < text.size(); ++index) {
    if (std::isdigit(static_cast<unsigned char>(text[index])) == 0) {
      return false;
    }
  }
  return true;
}

// A whole decimal integer within [low, high]; the builder's stream would
// stop at the first other character and keep what it read before it.
bool ReadsAsInteger(const std::string& text, long double low, long double high) {
  const std::size_t digits = (!text.empty() && (text[0] == '-' || text[0] == '+')) ? 1 : 0;
  if (!AllDigits(text, digits)) {
    return false;
  }
  errno = 0;
  const long double value = std::strtold(text.c_str(), nullptr);
  return errno == 0 && value >= low && value <= high;
}

template <typename T>
bool ReadsAs(const std::string& text) {
  return ReadsAsInteger(text, static_cast<long double>(std::numeric_limits<T>::min()),
                        static_cast<long double>(std::numeric_limits<T>::max()));
}

bool ReadsAsReal(const std::string& text) {
  if (text.empty()) {
    return false;
  }
  char* end = nullptr;
  std::strtod(text.c_str(), &end);
  return end != nullptr && *end == '\0';
}

// yyyymmddhhmmss.mmmmmm then +/-/: and three digits.
bool ReadsAsDateTime(const std::string& text) {
  constexpr std::size_t kLength = 25;
  if (text.empty()) {
    return true;  // the builder makes it "now"
  }
  if (text.size() != kLength || text[14] != '.' ||
      (text[21] != '+' && text[21] != '-' && text[21] != ':')) {
    return false;
  }
  return AllDigits(text.substr(0, 14), 0) && AllDigits(text.substr(15, 6), 0) &&
         AllDigits(text.substr(22), 0);
}

bool ReadsAsPath(const std::string& text) {
  try {
    ParsePathSyntax(text);
    return true;
  } catch (const HostError&) {
    return false;
  }
}

// Whether `text` reads as one value of `type` the way the builder reads it.
bool ReadsAsType(const std::string& text, CimType type) {
  switch (type) {
    case CimType::kUint16:
      return ReadsAs<unsigned short>(text);
    case CimType::kSint16:
      return ReadsAs<short>(text);
    case CimType::kUint32:
      return ReadsAs<unsigned int>(text);
    case CimType::kSint32:
      return ReadsAs<int>(text);
    case CimType::kUint64:
      return ReadsAs<unsigned long>(text);
    case CimType::kSint64:
      return ReadsAs<long>(text);
    case CimType::kReal32:
    case CimType::kReal64:
      return ReadsAsReal(text);
    case CimType::kDateTime:
      return ReadsAsDateTime(text);
    case CimType::kReference:
      return ReadsAsPath(text);
    default:
      return true;
  }
}

// Why `text` does not become one value of `type` as written, or nullopt.
std::optional<std::string> Reason(const std::string& text, CimType type) {
  const std::string quoted = "'" + text + "'";
  switch (type) {
    case CimType::kString:
      return std::nullopt;
    case CimType::kBoolean:
      if (text == "1" || text == "0") {
        return std::nullopt;
      }
      return quoted + " does not read as boolean (the builder reads 1 or 0)";
    case CimType::kChar16:
      return quoted + " is not built: the builder reads no char16 value";
    case CimType::kUint8:
    case CimType::kSint8:
      if (text.size() == 1 && std::isdigit(static_cast<unsigned char>(text[0])) == 0) {
        return std::nullopt;
      }
      return quoted + " does not read as " + CimTypeName(type) +
             " (the builder reads one character, as its code: '7' becomes 55)";
    default:
      if (ReadsAsType(text, type)) {
        return std::nullopt;
      }
      return quoted + " does not read as " + CimTypeName(type);
  }
}

// The builder splits an array's text at commas and skips empty pieces.
std::vector<std::string> Elements(const std::string& text) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t comma = text.find(',', start);
    const std::size_t end = comma == std::string::npos ? text.size() : comma;
    if (end > start) {
      pieces.push_back(text.substr(start, end - start));
    }
    start = end + 1;
  }
  return pieces;
}

}  // namespace

std::optional<std::string> WhyNotRead(const std::string& text, const TypeDecl& type) {
  if (!type.isArray) {
    return Reason(text, type.type);
  }
  for (const std::string& element : Elements(text)) {
    if (std::optional<std::string> reason = Reason(element, type.type)) {
      return "element " + *reason;
    }
  }
  return std::nullopt;
}

std::optional<std::string> WhyNotRead(const std::string& text, CMPIType declared) {
  const CMPIType element = declared & static_cast<CMPIType>(~CMPI_ARRAY);
  for (int each = static_cast<int>(CimType::kBoolean);
       each <= static_cast<int>(CimType::kReference); ++each) {
    TypeDecl type;
    type.type = static_cast<CimType>(each);
    if (CmpiTypeOf(type) == element) {
      type.isArray = (declared & CMPI_ARRAY) != 0;
      return WhyNotRead(text, type);
    }
  }
  return std::nullopt;
}

}  // namespace cmpihost
