#include "repository/MofValueRules.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <utility>

#include "text/Literals.h"

namespace cmpihost {
namespace {

using Kind = MofValue::Kind;

std::string KindText(const MofValue& value) {
  switch (value.kind) {
    case Kind::kNull:
      return "null";
    case Kind::kBoolean:
      return "a boolean";
    case Kind::kInteger:
      return "an integer";
    case Kind::kReal:
      return "a real number";
    case Kind::kString:
      return "a string";
    case Kind::kChar16:
      return "a char16";
    case Kind::kAlias:
      return "an alias";
    case Kind::kReference:
      return "a reference";
    case Kind::kArray:
      return "an array";
  }
  return "?";
}

std::string IntegerText(const MofValue& value) {
  return (value.negative ? "-" : "") + std::to_string(value.integer);
}

struct IntegerRange {
  bool isSigned;
  unsigned bits;
};

std::optional<IntegerRange> RangeOf(CimType type) {
  switch (type) {
    case CimType::kUint8:
      return IntegerRange{false, 8};
    case CimType::kSint8:
      return IntegerRange{true, 8};
    case CimType::kUint16:
      return IntegerRange{false, 16};
    case CimType::kSint16:
      return IntegerRange{true, 16};
    case CimType::kUint32:
      return IntegerRange{false, 32};
    case CimType::kSint32:
      return IntegerRange{true, 32};
    case CimType::kUint64:
      return IntegerRange{false, 64};
    case CimType::kSint64:
      return IntegerRange{true, 64};
    default:
      return std::nullopt;
  }
}

bool InRange(const MofValue& value, IntegerRange range) {
  if (!range.isSigned) {
    return !value.negative &&
           (range.bits == 64 || value.integer <= (std::uint64_t{1} << range.bits) - 1);
  }
  const std::uint64_t limit = std::uint64_t{1} << (range.bits - 1);
  return value.negative ? value.integer <= limit : value.integer < limit;
}

bool IsDateTimeDigit(char c) {
  return (c >= '0' && c <= '9') || c == '*';
}

// yyyymmddhhmmss.mmmmmm then +utc, -utc or :000 (an interval); '*' marks
// digits left open.
bool IsDateTime(const std::string& text) {
  if (text.size() != 25 || text[14] != '.') {
    return false;
  }
  for (std::size_t i = 0; i < 25; ++i) {
    if (i != 14 && i != 21 && !IsDateTimeDigit(text[i])) {
      return false;
    }
  }
  return text[21] == '+' || text[21] == '-' || (text[21] == ':' && text.substr(22) == "000");
}

std::optional<std::string> ConformScalar(MofValue& value, const TypeDecl& type) {
  const auto expected = [&](const char* what) {
    return std::string(CimTypeName(type.type)) + " takes " + what + ", found " + KindText(value);
  };
  if (value.kind == Kind::kNull) {
    return std::nullopt;
  }
  switch (type.type) {
    case CimType::kBoolean:
      if (value.kind != Kind::kBoolean) {
        return expected("true or false");
      }
      return std::nullopt;
    case CimType::kString:
      if (value.kind != Kind::kString) {
        return expected("a string");
      }
      return std::nullopt;
    case CimType::kChar16:
      if (value.kind != Kind::kChar16) {
        return expected("a char16 such as 'a'");
      }
      return std::nullopt;
    case CimType::kDateTime:
      if (value.kind != Kind::kString) {
        return expected("a date-time string");
      }
      if (!IsDateTime(value.text)) {
        return "\"" + value.text +
               "\" is not a datetime (yyyymmddhhmmss.mmmmmm with +utc or -utc, or "
               "ddddddddhhmmss.mmmmmm:000)";
      }
      return std::nullopt;
    case CimType::kReal32:
    case CimType::kReal64:
      if (value.kind == Kind::kInteger) {
        const auto magnitude = static_cast<double>(value.integer);
        value.real = value.negative ? -magnitude : magnitude;
        value.kind = Kind::kReal;
        value.integer = 0;
        value.negative = false;
      }
      if (value.kind != Kind::kReal) {
        return expected("a number");
      }
      if (type.type == CimType::kReal32 && (value.real > std::numeric_limits<float>::max() ||
                                            value.real < -std::numeric_limits<float>::max())) {
        return "real32 cannot hold " + std::to_string(value.real);
      }
      return std::nullopt;
    case CimType::kReference:
      if (value.kind == Kind::kString) {
        value.kind = Kind::kReference;
      }
      if (value.kind != Kind::kReference && value.kind != Kind::kAlias) {
        return expected("an object path string or an alias");
      }
      return std::nullopt;
    default:
      break;
  }
  const std::optional<IntegerRange> range = RangeOf(type.type);
  if (!range) {
    return "values of type " + std::string(CimTypeName(type.type)) + " are not supported";
  }
  if (value.kind != Kind::kInteger) {
    return expected("an integer");
  }
  if (!InRange(value, *range)) {
    return IntegerText(value) + " is out of range for " + CimTypeName(type.type);
  }
  return std::nullopt;
}

}  // namespace

std::string TypeText(const TypeDecl& type) {
  std::string text =
      type.type == CimType::kReference ? type.refClass + " REF" : CimTypeName(type.type);
  if (type.isArray) {
    text += "[" + (type.arraySize ? std::to_string(*type.arraySize) : std::string()) + "]";
  }
  return text;
}

std::optional<ValueProblem> ConformValue(MofValue& value, const TypeDecl& type,
                                         bool scalarFillsArray) {
  if (value.kind == Kind::kNull) {
    return std::nullopt;
  }
  if (!type.isArray) {
    if (value.kind == Kind::kArray) {
      return ValueProblem{TypeText(type) + " takes a single value, found an array", -1};
    }
    if (auto problem = ConformScalar(value, type)) {
      return ValueProblem{std::move(*problem), -1};
    }
    return std::nullopt;
  }
  if (value.kind != Kind::kArray) {
    if (!scalarFillsArray) {
      return ValueProblem{TypeText(type) + " takes an array value {...}, found " + KindText(value),
                          -1};
    }
    MofValue element = std::move(value);
    value = MofValue();
    value.kind = Kind::kArray;
    value.elements.push_back(std::move(element));
  }
  if (type.arraySize && value.elements.size() > *type.arraySize) {
    return ValueProblem{TypeText(type) + " holds at most " + std::to_string(*type.arraySize) +
                            " values, found " + std::to_string(value.elements.size()),
                        -1};
  }
  for (std::size_t i = 0; i < value.elements.size(); ++i) {
    if (value.elements[i].kind == Kind::kArray) {
      return ValueProblem{"array elements cannot be arrays", static_cast<int>(i)};
    }
    if (auto problem = ConformScalar(value.elements[i], type)) {
      return ValueProblem{std::move(*problem), static_cast<int>(i)};
    }
  }
  return std::nullopt;
}

std::string PathValueText(const MofValue& value) {
  switch (value.kind) {
    case Kind::kBoolean:
      return value.boolean ? "TRUE" : "FALSE";
    case Kind::kInteger:
      return IntegerText(value);
    case Kind::kReal: {
      std::array<char, 32> buffer{};
      const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value.real);
      return {buffer.data(), result.ptr};
    }
    case Kind::kString:
    case Kind::kChar16:
    case Kind::kReference:
    case Kind::kAlias:
      return Quoted(value.text);
    case Kind::kArray: {
      std::string joined = "{";
      for (std::size_t i = 0; i < value.elements.size(); ++i) {
        joined += (i == 0 ? "" : ",") + PathValueText(value.elements[i]);
      }
      return joined + "}";
    }
    case Kind::kNull:
      break;
  }
  return "NULL";
}

}  // namespace cmpihost
