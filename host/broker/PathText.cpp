#include "broker/PathText.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "cmpihost/HostError.h"
#include "text/Literals.h"
#include "text/PathSyntax.h"

namespace cmpihost {
namespace {

// A value that does not read as its type; callers add where it was.
class ValueProblem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// How a value was written: in a path as a quoted string or a bare token, or
// as plain text (an argument), where strings need no quotes.
enum class Form { kQuoted, kBare, kPlain };

std::uint64_t UnsignedMax(CMPIType type) {
  switch (type) {
    case CMPI_uint8:
      return std::numeric_limits<CMPIUint8>::max();
    case CMPI_uint16:
      return std::numeric_limits<CMPIUint16>::max();
    case CMPI_uint32:
      return std::numeric_limits<CMPIUint32>::max();
    default:
      return std::numeric_limits<CMPIUint64>::max();
  }
}

std::pair<std::int64_t, std::int64_t> SignedRange(CMPIType type) {
  switch (type) {
    case CMPI_sint8:
      return {std::numeric_limits<CMPISint8>::min(), std::numeric_limits<CMPISint8>::max()};
    case CMPI_sint16:
      return {std::numeric_limits<CMPISint16>::min(), std::numeric_limits<CMPISint16>::max()};
    case CMPI_sint32:
      return {std::numeric_limits<CMPISint32>::min(), std::numeric_limits<CMPISint32>::max()};
    default:
      return {std::numeric_limits<CMPISint64>::min(), std::numeric_limits<CMPISint64>::max()};
  }
}

HostValue Convert(const std::string& text, Form form, CMPIType type, const std::string& nameSpace,
                  const ShapeLookup& lookup);

HostValue ConvertArray(const std::string& text, CMPIType type, const std::string& nameSpace,
                       const ShapeLookup& lookup) {
  const auto elementType = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  HostValue array = HostValue::Null(type);
  array.null = false;
  std::vector<HostValue> elements;
  std::string list = Trimmed(text);
  if (list.size() >= 2 && list.front() == '{' && list.back() == '}') {
    list = Trimmed(list.substr(1, list.size() - 2));
  }
  std::size_t pos = 0;
  while (pos < list.size()) {
    while (pos < list.size() && (list[pos] == ' ' || list[pos] == '\t')) {
      ++pos;
    }
    std::string element;
    Form form = Form::kPlain;
    if (pos < list.size() && list[pos] == '"') {
      pos = ReadQuoted(list, pos, element);
      if (pos == std::string::npos) {
        throw ValueProblem("unterminated string in the array '" + text + "'");
      }
      form = Form::kQuoted;
      while (pos < list.size() && (list[pos] == ' ' || list[pos] == '\t')) {
        ++pos;
      }
      if (pos < list.size() && list[pos] != ',') {
        throw ValueProblem("expected ',' after a quoted element in the array '" + text + "'");
      }
    } else {
      const std::size_t comma = list.find(',', pos);
      const std::size_t end = comma == std::string::npos ? list.size() : comma;
      element = Trimmed(list.substr(pos, end - pos));
      pos = end;
    }
    elements.push_back(Convert(element, form, elementType, nameSpace, lookup));
    if (pos < list.size()) {
      ++pos;  // the comma
      if (pos == list.size()) {
        throw ValueProblem("the array '" + text + "' ends with ','");
      }
    }
  }
  array.setElements(std::move(elements));
  return array;
}

HostValue Convert(const std::string& text, Form form, CMPIType type, const std::string& nameSpace,
                  const ShapeLookup& lookup) {
  if ((type & CMPI_ARRAY) != 0) {
    if (form != Form::kPlain) {
      throw ValueProblem("array values cannot be written in a path");
    }
    return ConvertArray(text, type, nameSpace, lookup);
  }
  const bool textual = type == CMPI_string || type == CMPI_chars || type == CMPI_char16 ||
                       type == CMPI_dateTime || type == CMPI_ref;
  if (textual && form == Form::kBare) {
    throw ValueProblem("'" + text + "' must be written in double quotes (the value is a " +
                       CmpiTypeName(type) + ")");
  }
  switch (type) {
    case CMPI_string:
    case CMPI_chars:
      return HostValue::String(text);
    case CMPI_char16:
      if (text.size() != 1) {
        throw ValueProblem("'" + text + "' is not one character (char16)");
      }
      return HostValue::Unsigned(CMPI_char16, static_cast<unsigned char>(text[0]));
    case CMPI_dateTime: {
      std::optional<DateTime> dateTime = ParseDateTime(text);
      if (!dateTime) {
        throw ValueProblem("'" + text +
                           "' is not a CIM date-time (yyyymmddhhmmss.mmmmmmsutc or "
                           "ddddddddhhmmss.mmmmmm:000)");
      }
      return HostValue::Date(*dateTime);
    }
    case CMPI_ref:
      try {
        return HostValue::Reference(ParsePath(text, nameSpace, lookup));
      } catch (const HostError& error) {
        throw ValueProblem(std::string("bad reference: ") + error.what());
      }
    case CMPI_boolean: {
      const std::optional<bool> flag = ReadBoolean(text);
      if (!flag) {
        throw ValueProblem("'" + text + "' is not TRUE or FALSE");
      }
      return HostValue::Boolean(*flag);
    }
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
    case CMPI_uint64: {
      std::uint64_t number = 0;
      if (!ReadUnsigned(text, UnsignedMax(type), number)) {
        throw ValueProblem("'" + text + "' is not a " + CmpiTypeName(type) + " (0 to " +
                           std::to_string(UnsignedMax(type)) + ")");
      }
      return HostValue::Unsigned(type, number);
    }
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
    case CMPI_sint64: {
      std::int64_t number = 0;
      const auto [min, max] = SignedRange(type);
      if (!ReadSigned(text, min, max, number)) {
        throw ValueProblem("'" + text + "' is not a " + CmpiTypeName(type) + " (" +
                           std::to_string(min) + " to " + std::to_string(max) + ")");
      }
      return HostValue::Signed(type, number);
    }
    case CMPI_real32:
    case CMPI_real64: {
      double number = 0;
      if (!ReadReal(text, number)) {
        throw ValueProblem("'" + text + "' is not a real number");
      }
      return HostValue::Real(type, number);
    }
    default:
      throw ValueProblem("values of type " + CmpiTypeName(type) + " cannot be written as text");
  }
}

// The type a literal suggests when no class declares it.
HostValue Inferred(const PathSyntax::Key& key) {
  if (key.quoted) {
    return HostValue::String(key.text);
  }
  if (const std::optional<bool> flag = ReadBoolean(key.text)) {
    return HostValue::Boolean(*flag);
  }
  std::uint64_t unsignedNumber = 0;
  if (ReadUnsigned(key.text, std::numeric_limits<std::uint64_t>::max(), unsignedNumber)) {
    return HostValue::Unsigned(CMPI_uint64, unsignedNumber);
  }
  std::int64_t signedNumber = 0;
  if (ReadSigned(key.text, std::numeric_limits<std::int64_t>::min(),
                 std::numeric_limits<std::int64_t>::max(), signedNumber)) {
    return HostValue::Signed(CMPI_sint64, signedNumber);
  }
  double real = 0;
  if (ReadReal(key.text, real)) {
    return HostValue::Real(CMPI_real64, real);
  }
  throw ValueProblem("bare value '" + key.text +
                     "' is not a number, TRUE or FALSE (strings are written in double quotes)");
}

}  // namespace

PathData TypePath(const PathSyntax& syntax, const std::string& text,
                  const std::string& defaultNameSpace, const ShapeLookup& lookup) {
  PathData path;
  path.host = syntax.host;
  path.nameSpace = syntax.nameSpace.empty() ? defaultNameSpace : syntax.nameSpace;
  path.className = syntax.className;
  const std::shared_ptr<const ClassShape> shape =
      lookup ? lookup(path.nameSpace, path.className) : nullptr;
  if (shape) {
    path.className = shape->className;
  }
  // The syntax has refused names given twice, so each key is appended.
  path.keys.reserve(syntax.keys.size());
  for (const PathSyntax::Key& key : syntax.keys) {
    try {
      if (!shape) {
        path.keys.append(key.name, Inferred(key));
        continue;
      }
      const auto index = shape->find(key.name);
      if (!index) {
        FailPathText(text, key.column,
                     "class " + shape->className + " has no property '" + key.name + "'");
      }
      const PropertyShape& property = shape->properties[*index];
      if (!property.isKey) {
        FailPathText(
            text, key.column,
            "property " + property.name + " of class " + shape->className + " is not a key");
      }
      path.keys.append(property.name, Convert(key.text, key.quoted ? Form::kQuoted : Form::kBare,
                                              property.type, path.nameSpace, lookup));
    } catch (const ValueProblem& problem) {
      FailPathText(text, key.column, "key " + key.name + ": " + problem.what());
    }
  }
  return path;
}

PathData ParsePath(const std::string& text, const std::string& defaultNameSpace,
                   const ShapeLookup& lookup) {
  return TypePath(ParsePathSyntax(text), text, defaultNameSpace, lookup);
}

HostValue ValueFromText(const std::string& text, CMPIType type, const std::string& defaultNameSpace,
                        const ShapeLookup& lookup) {
  try {
    return Convert(text, Form::kPlain, NormalizedType(type), defaultNameSpace, lookup);
  } catch (const ValueProblem& problem) {
    throw HostError(problem.what());
  }
}

std::optional<HostValue> ValueFromMof(const MofValue& value, CMPIType type,
                                      const std::string& defaultNameSpace,
                                      const ShapeLookup& lookup) {
  if (value.kind == MofValue::Kind::kNull) {
    return HostValue::Null(type);
  }
  if ((type & CMPI_ARRAY) != 0) {
    if (value.kind != MofValue::Kind::kArray) {
      return std::nullopt;
    }
    HostValue array = HostValue::Null(type);
    array.null = false;
    const auto elementType = static_cast<CMPIType>(type & ~CMPI_ARRAY);
    std::vector<HostValue> elements;
    for (const MofValue& element : value.elements) {
      std::optional<HostValue> converted =
          ValueFromMof(element, elementType, defaultNameSpace, lookup);
      if (!converted) {
        return std::nullopt;
      }
      elements.push_back(std::move(*converted));
    }
    array.setElements(std::move(elements));
    return array;
  }
  try {
    switch (value.kind) {
      case MofValue::Kind::kBoolean:
        if (type != CMPI_boolean) {
          return std::nullopt;
        }
        return HostValue::Boolean(value.boolean);
      case MofValue::Kind::kInteger: {
        const std::string digits = (value.negative ? "-" : "") + std::to_string(value.integer);
        if (type == CMPI_string || type == CMPI_boolean || type == CMPI_char16 ||
            type == CMPI_dateTime || type == CMPI_ref) {
          return std::nullopt;
        }
        return Convert(digits, Form::kBare, type, defaultNameSpace, lookup);
      }
      case MofValue::Kind::kReal:
        if (type != CMPI_real32 && type != CMPI_real64) {
          return std::nullopt;
        }
        return HostValue::Real(type, value.real);
      case MofValue::Kind::kString:
      case MofValue::Kind::kChar16:
      case MofValue::Kind::kReference:
        if (value.kind == MofValue::Kind::kReference && type != CMPI_ref) {
          return std::nullopt;
        }
        if (type == CMPI_string || type == CMPI_char16 || type == CMPI_dateTime ||
            type == CMPI_ref) {
          return Convert(value.text, Form::kQuoted, type, defaultNameSpace, lookup);
        }
        return std::nullopt;
      default:
        return std::nullopt;
    }
  } catch (const ValueProblem&) {
    return std::nullopt;
  } catch (const HostError&) {
    return std::nullopt;
  }
}

}  // namespace cmpihost
