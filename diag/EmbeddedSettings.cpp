#include "diag/EmbeddedSettings.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "core/BrokerText.h"
#include "diagcore/CimNames.h"

namespace NQENDRA20 {

namespace {

const char* const kSettingsClass = "CIM_DiagnosticSettingData";
const char* const kPrefix = "RunDiagnosticService: DiagnosticSettings ";

struct Declared {
  const char* name;
  CMPIType type;
};

// CIM_DiagnosticSettingData's properties with those it inherits.
constexpr Declared kDeclared[] = {
    {"InstanceID", CMPI_string},
    {"Caption", CMPI_string},
    {"Description", CMPI_string},
    {"ElementName", CMPI_string},
    {"ChangeableType", CMPI_uint16},
    {"ConfigurationName", CMPI_string},
    {"HaltOnError", CMPI_boolean},
    {"QuickMode", CMPI_boolean},
    {"PercentOfTestCoverage", CMPI_uint8},
    {"LoopControlParameter", CMPI_stringA},
    {"LoopControl", CMPI_uint16A},
    {"OtherLoopControlDescriptions", CMPI_stringA},
    {"ResultPersistence", CMPI_uint32},
    {"LogOptions", CMPI_uint16A},
    {"OtherLogOptionsDescriptions", CMPI_stringA},
    {"LogStorage", CMPI_uint16A},
    {"OtherLogStorageDescriptions", CMPI_stringA},
    {"VerbosityLevel", CMPI_uint16A},
    {"QueryTimeout", CMPI_uint32},
    {"NonDestructive", CMPI_boolean},
};

const Declared* Find(const std::string& name) {
  for (const Declared& declared : kDeclared) {
    if (strcasecmp(declared.name, name.c_str()) == 0) {
      return &declared;
    }
  }
  return nullptr;
}

std::string TypeName(CMPIType type) {
  std::string name;
  switch (type & ~CMPI_ARRAY) {
    case CMPI_string:
      name = "string";
      break;
    case CMPI_boolean:
      name = "boolean";
      break;
    case CMPI_uint8:
      name = "uint8";
      break;
    case CMPI_uint16:
      name = "uint16";
      break;
    default:
      name = "uint32";
      break;
  }
  return (type & CMPI_ARRAY) != 0 ? name + "[]" : name;
}

std::string NoSuchProperty(const std::string& name) {
  return kPrefix + std::string("has a property ") + name + " that " + kSettingsClass +
         " does not declare";
}

std::string BadlyTyped(const Declared& declared) {
  return kPrefix + std::string("property ") + declared.name + " must be a " +
         TypeName(declared.type);
}

bool IsSettingsClass(const CMPIBroker* broker, const std::string& className) {
  const CMPIObjectPath* path =
      broker->eft->newObjectPath(broker, cimNameSpace, className.c_str(), nullptr);
  return path != nullptr && broker->eft->classPathIsA(broker, path, kSettingsClass, nullptr) != 0;
}

std::string NotSettings(const std::string& className) {
  return kPrefix + std::string("is an instance of ") + className + ", not of " + kSettingsClass;
}

// --- an instance as the CIMOM hands it over ---

std::string FromInstance(const CMPIBroker* broker, const CMPIInstance* instance,
                         RunSettings& settings) {
  const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
  const std::string className =
      path != nullptr ? CharsOf(path->ft->getClassName(path, nullptr)) : "";
  if (!IsSettingsClass(broker, className)) {
    return NotSettings(className);
  }
  const CMPICount count = instance->ft->getPropertyCount(instance, nullptr);
  for (CMPICount index = 0; index < count; ++index) {
    CMPIString* name = nullptr;
    const CMPIData data = instance->ft->getPropertyAt(instance, index, &name, nullptr);
    const Declared* declared = Find(CharsOf(name));
    if (declared == nullptr) {
      return NoSuchProperty(CharsOf(name));
    }
    if ((data.state & CMPI_nullValue) != 0) {
      continue;
    }
    if (data.type != declared->type) {
      return BadlyTyped(*declared);
    }
    if (declared->type == CMPI_uint32 && std::string(declared->name) == "ResultPersistence") {
      settings.resultPersistence = data.value.uint32;
    }
  }
  return "";
}

// --- its MOF text ---

struct Literal {
  enum class Kind { kInteger, kString, kBoolean, kNull, kArray };
  Kind kind = Kind::kNull;
  std::string text;
  std::vector<Literal> elements;
};

// Reads `instance of <class> { <name> = <value>; ... };`, values as MOF
// writes them: integers, quoted strings, TRUE, FALSE, NULL, { lists }.
class MofInstanceText {
 public:
  explicit MofInstanceText(std::string text) : text_(std::move(text)) {}

  // "" when the text is one instance; `className` and `properties` then hold it.
  std::string read(std::string& className,
                   std::vector<std::pair<std::string, Literal>>& properties) {
    if (!word("instance") || !word("of")) {
      return fail("expected \"instance of\"");
    }
    className = identifier();
    if (className.empty()) {
      return fail("expected a class name");
    }
    if (!punct('{')) {
      return fail("expected \"{\"");
    }
    while (!punct('}')) {
      std::string name = identifier();
      if (name.empty()) {
        return fail("expected a property name or \"}\"");
      }
      if (!punct('=')) {
        return fail("expected \"=\" after " + name);
      }
      Literal value;
      if (!literal(value, true)) {
        return fail("expected a value for " + name);
      }
      if (!punct(';')) {
        return fail("expected \";\" after the value of " + name);
      }
      properties.emplace_back(std::move(name), std::move(value));
    }
    punct(';');
    skipBlanks();
    return at_ == text_.size() ? "" : fail("unexpected text after the instance");
  }

 private:
  std::string fail(const std::string& what) const {
    return kPrefix + std::string("is malformed: ") + what + " at offset " + std::to_string(at_);
  }

  void skipBlanks() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_])) != 0) {
      ++at_;
    }
  }

  static bool IdentifierChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  }

  std::string identifier() {
    skipBlanks();
    const std::size_t start = at_;
    if (at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_])) != 0) {
      return "";
    }
    while (at_ < text_.size() && IdentifierChar(text_[at_])) {
      ++at_;
    }
    return text_.substr(start, at_ - start);
  }

  bool word(const char* expected) {
    const std::size_t start = at_;
    if (strcasecmp(identifier().c_str(), expected) == 0) {
      return true;
    }
    at_ = start;
    return false;
  }

  bool punct(char expected) {
    skipBlanks();
    if (at_ < text_.size() && text_[at_] == expected) {
      ++at_;
      return true;
    }
    return false;
  }

  bool literal(Literal& value, bool arrayAllowed) {
    skipBlanks();
    if (at_ >= text_.size()) {
      return false;
    }
    const char c = text_[at_];
    if (c == '"') {
      return quoted(value);
    }
    if (c == '{' && arrayAllowed) {
      return array(value);
    }
    if (c == '-' || c == '+' || std::isdigit(static_cast<unsigned char>(c)) != 0) {
      return integer(value);
    }
    const std::string name = identifier();
    if (strcasecmp(name.c_str(), "TRUE") == 0 || strcasecmp(name.c_str(), "FALSE") == 0) {
      value.kind = Literal::Kind::kBoolean;
      value.text = name;
      return true;
    }
    value.kind = Literal::Kind::kNull;
    return strcasecmp(name.c_str(), "NULL") == 0;
  }

  bool quoted(Literal& value) {
    value.kind = Literal::Kind::kString;
    for (++at_; at_ < text_.size(); ++at_) {
      char c = text_[at_];
      if (c == '"') {
        ++at_;
        return true;
      }
      if (c == '\\' && at_ + 1 < text_.size()) {
        c = text_[++at_];
      }
      value.text += c;
    }
    return false;
  }

  bool integer(Literal& value) {
    value.kind = Literal::Kind::kInteger;
    const std::size_t start = at_;
    if (text_[at_] == '-' || text_[at_] == '+') {
      ++at_;
    }
    while (at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_])) != 0) {
      ++at_;
    }
    value.text = text_.substr(start, at_ - start);
    return at_ > start + 1 || std::isdigit(static_cast<unsigned char>(value.text[0])) != 0;
  }

  bool array(Literal& value) {
    value.kind = Literal::Kind::kArray;
    ++at_;
    if (punct('}')) {
      return true;
    }
    do {
      Literal element;
      if (!literal(element, false)) {
        return false;
      }
      value.elements.push_back(std::move(element));
    } while (punct(','));
    return punct('}');
  }

  std::string text_;
  std::size_t at_ = 0;
};

// The largest value of an unsigned type, 0 for a type that is not one.
unsigned long long MaxOf(CMPIType type) {
  switch (type) {
    case CMPI_uint8:
      return std::numeric_limits<CMPIUint8>::max();
    case CMPI_uint16:
      return std::numeric_limits<CMPIUint16>::max();
    case CMPI_uint32:
      return std::numeric_limits<CMPIUint32>::max();
    default:
      return 0;
  }
}

bool FitsScalar(const Literal& literal, CMPIType type) {
  switch (literal.kind) {
    case Literal::Kind::kNull:
      return true;
    case Literal::Kind::kString:
      return type == CMPI_string;
    case Literal::Kind::kBoolean:
      return type == CMPI_boolean;
    case Literal::Kind::kInteger: {
      if (MaxOf(type) == 0 || literal.text[0] == '-') {
        return false;
      }
      const std::string digits = literal.text[0] == '+' ? literal.text.substr(1) : literal.text;
      try {
        return std::stoull(digits) <= MaxOf(type);
      } catch (const std::exception&) {
        return false;  // beyond 64 bits
      }
    }
    default:
      return false;
  }
}

bool Fits(const Literal& literal, CMPIType type) {
  if ((type & CMPI_ARRAY) == 0) {
    return FitsScalar(literal, type);
  }
  if (literal.kind == Literal::Kind::kNull) {
    return true;
  }
  if (literal.kind != Literal::Kind::kArray) {
    return false;
  }
  const auto elementType = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  return std::all_of(
      literal.elements.begin(), literal.elements.end(),
      [elementType](const Literal& element) { return FitsScalar(element, elementType); });
}

std::string FromText(const CMPIBroker* broker, const std::string& text, RunSettings& settings) {
  std::string className;
  std::vector<std::pair<std::string, Literal>> properties;
  std::string malformed = MofInstanceText(text).read(className, properties);
  if (!malformed.empty()) {
    return malformed;
  }
  if (!IsSettingsClass(broker, className)) {
    return NotSettings(className);
  }
  for (const auto& [name, value] : properties) {
    const Declared* declared = Find(name);
    if (declared == nullptr) {
      return NoSuchProperty(name);
    }
    if (!Fits(value, declared->type)) {
      return BadlyTyped(*declared);
    }
    if (std::string(declared->name) == "ResultPersistence" &&
        value.kind == Literal::Kind::kInteger) {
      settings.resultPersistence = static_cast<CMPIUint32>(
          std::stoull(value.text[0] == '+' ? value.text.substr(1) : value.text));
    }
  }
  return "";
}

// The argument, or nullopt when it is absent or null.
std::optional<CMPIData> Given(const CMPIArgs* in, const char* name) {
  if (in == nullptr) {
    return std::nullopt;
  }
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  const CMPIData data = in->ft->getArg(in, name, &status);
  if (status.rc != CMPI_RC_OK || (data.state & CMPI_nullValue) != 0) {
    return std::nullopt;
  }
  return data;
}

std::string TextOf(const CMPIData& data) {
  return data.type == CMPI_chars ? std::string(data.value.chars != nullptr ? data.value.chars : "")
                                 : CharsOf(data.value.string);
}

bool IsText(const CMPIData& data) {
  return data.type == CMPI_string || data.type == CMPI_chars;
}

}  // namespace

std::string ReadRunSettings(const CMPIBroker* broker, const CMPIArgs* in, RunSettings& settings) {
  const std::optional<CMPIData> jobSettings = Given(in, "JobSettings");
  if (jobSettings && jobSettings->type != CMPI_instance && !IsText(*jobSettings)) {
    return "RunDiagnosticService: JobSettings is not an embedded instance";
  }
  const std::optional<CMPIData> given = Given(in, "DiagnosticSettings");
  if (!given) {
    return "";
  }
  if (given->type == CMPI_instance && given->value.inst != nullptr) {
    return FromInstance(broker, given->value.inst, settings);
  }
  if (IsText(*given)) {
    return FromText(broker, TextOf(*given), settings);
  }
  return kPrefix + std::string("is not an embedded instance");
}

}  // namespace NQENDRA20
