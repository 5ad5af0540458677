#include "diagcore/InstanceBuilder.h"

#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <utility>

#include "core/Trace.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"

namespace NQENDRA20 {

namespace {

// Reads one value of type T by formatted extraction, as a stream does it.
// The target starts at zero, so a text that does not read leaves what the
// stream stores on failure (0 for numbers, false for booleans), never garbage.
template <typename T>
T Extract(const std::string& text) {
  T value{};
  std::istringstream(text) >> value;
  return value;
}

// An object path of `className` in `nameSpace` with the fixed host name, or
// null when the broker gives no usable path.
CMPIObjectPath* NewHostedPath(const CMPIBroker* broker, const std::string& nameSpace,
                              const std::string& className) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  CMPIObjectPath* path =
      broker->eft->newObjectPath(broker, nameSpace.c_str(), className.c_str(), &status);
  if (path == nullptr || path->hdl == nullptr) {
    return nullptr;
  }
  path->ft->setHostname(path, cimHostName);
  return path;
}

// A reference is built from its text, and that text may name a class with
// reference properties again: a key value written without quotes reads as
// the whole text, so "Link.Antecedent=x" names itself without end. Real
// paths nest two deep at most (a reference to an association); a deeper
// reference is left null, which also bounds the work, as every level builds
// twice.
constexpr int kMaxReferenceNesting = 4;
thread_local int referenceNesting = 0;

// One level of reference building on this thread, for as long as it lives.
class ReferenceNestingLevel {
 public:
  ReferenceNestingLevel() { ++referenceNesting; }
  ~ReferenceNestingLevel() { --referenceNesting; }
  ReferenceNestingLevel(const ReferenceNestingLevel&) = delete;
  ReferenceNestingLevel& operator=(const ReferenceNestingLevel&) = delete;

  bool tooDeep() const { return referenceNesting > kMaxReferenceNesting; }
};

}  // namespace

InstanceBuilder::InstanceBuilder(std::string nameSpace) : nameSpace_(std::move(nameSpace)) {}

InstanceBuilder::~InstanceBuilder() = default;

void InstanceBuilder::printNS() const {
  std::cout << nameSpace_ << std::endl;
}

CMPIInstance* InstanceBuilder::build(const CMPIBroker* broker, const CMPIContext* context,
                                     std::string className, InstanceImpl& bag) const {
  CMPIObjectPath* path = NewHostedPath(broker, nameSpace_, className);
  if (path == nullptr) {
    Trace(broker, CMPI_SEV_WARNING, "InstanceBuilder::build -> Invalid object found");
    Trace(broker, CMPI_DEV_DEBUG, "Exiting InstanceBuilder::build");
    return nullptr;
  }
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  CMPIInstance* instance = broker->eft->newInstance(broker, path, &status);
  if (instance == nullptr) {
    Trace(broker, CMPI_DEV_DEBUG, "Exiting InstanceBuilder::build");
    return nullptr;
  }

  // Read in place: convert and multiStringTok change no text, nothing the
  // walk calls can reach the bag, and a copy of every name and text was a
  // good part of a registration's cost.
  if (bag.begin() == bag.end()) {
    return instance;
  }
  for (auto& property : bag) {
    const std::string& name = property.first;
    std::string& text = property.second;
    CMPIType type = instance->ft->getProperty(instance, name.c_str(), &status).type;
    if (type == CMPI_null) {
      continue;  // the class does not declare it
    }
    if ((type & CMPI_ARRAY) != 0) {
      std::vector<std::string> items = multiStringTok(text, ',');
      CMPIArray* array =
          broker->eft->newArray(broker, static_cast<CMPICount>(items.size()), type, &status);
      if (array == nullptr) {
        continue;
      }
      CMPIType elementType = type & static_cast<CMPIType>(~CMPI_ARRAY);
      for (std::size_t index = 0; index < items.size(); ++index) {
        CMPIValue element = convert(broker, context, elementType, items[index]);
        array->ft->setElementAt(array, static_cast<CMPICount>(index), &element, elementType);
      }
      CMPIValue value{};
      value.array = array;
      instance->ft->setProperty(instance, name.c_str(), &value, type);
      continue;
    }
    Trace(broker, CMPI_DEV_DEBUG, {"Setting property ", name, " to '", text, "'"});
    CMPIValue value = convert(broker, context, type, text);
    instance->ft->setProperty(instance, name.c_str(), &value, type);
  }
  Trace(broker, CMPI_DEV_DEBUG, "Exiting InstanceBuilder::build");
  return instance;
}

CMPIInstance* InstanceBuilder::build(const CMPIBroker* broker, const CMPIContext* context,
                                     std::string& pathText) const {
  ParseInstanceImpl bag;
  CMPIUtil::ParseObjectPath(pathText, bag);
  return build(broker, context, bag.getClassName(), bag);
}

CMPIInstance* InstanceBuilder::build(const CMPIBroker* broker, const CMPIContext* context,
                                     const std::string& className, std::string& nameSpace,
                                     std::string& definitions) const {
  CMPIObjectPath* path = NewHostedPath(broker, nameSpace, className);
  if (path == nullptr) {
    Trace(broker, CMPI_DEV_DEBUG, "Null Object Path");
    return nullptr;
  }
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  CMPIInstance* instance = broker->eft->newInstance(broker, path, &status);
  if (instance == nullptr) {
    Trace(broker, CMPI_DEV_DEBUG, "Null Object Path");
    return nullptr;
  }

  std::vector<std::string> pieces = multiStringTok(definitions, ';');
  std::ostringstream count;
  count << "Number of property definitions to parse? " << pieces.size();
  Trace(broker, CMPI_DEV_DEBUG, count.str());
  for (const std::string& piece : pieces) {
    Trace(broker, CMPI_DEV_DEBUG, "Parsing a property Definition");
    const std::string::size_type equals = piece.find('=');
    if (equals == std::string::npos) {
      continue;
    }
    const std::string name = piece.substr(0, equals);
    std::string text = piece.substr(equals + 1);
    std::cout << name << " " << text << " ";
    // Not checked first: an undeclared name (type 0) is reported by convert.
    CMPIType type = instance->ft->getProperty(instance, name.c_str(), &status).type;
    CMPIValue value = convert(broker, context, type, text);
    instance->ft->setProperty(instance, name.c_str(), &value, type);
  }
  return instance;
}

CMPIValue InstanceBuilder::convert(const CMPIBroker* broker, const CMPIContext* context,
                                   unsigned short& type, std::string& text) const {
  CMPIValue value{};
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  switch (type) {
    case CMPI_boolean:
      // No boolalpha: only the numbers 1 and 0 read; "true" and "false" do not.
      value.boolean = Extract<bool>(text) ? 1 : 0;
      break;
    case CMPI_real32:
      value.real32 = Extract<float>(text);
      break;
    case CMPI_real64:
      value.real64 = Extract<double>(text);
      break;
    case CMPI_uint8:
      // One character, not a number: "7" gives 55.
      value.uint8 = Extract<unsigned char>(text);
      break;
    case CMPI_uint16:
      value.uint16 = Extract<unsigned short>(text);
      break;
    case CMPI_uint32:
      value.uint32 = Extract<unsigned int>(text);
      break;
    case CMPI_uint64:
      value.uint64 = Extract<unsigned long>(text);
      break;
    case CMPI_sint8:
      value.sint8 = Extract<signed char>(text);
      break;
    case CMPI_sint16:
      value.sint16 = Extract<short>(text);
      break;
    case CMPI_sint32:
      value.sint32 = Extract<int>(text);
      break;
    case CMPI_sint64:
      value.sint64 = Extract<long>(text);
      break;
    case CMPI_ref: {
      const ReferenceNestingLevel level;
      if (level.tooDeep()) {
        Trace(broker, CMPI_SEV_WARNING,
              "InstanceBuilder::convert -> reference nested more than " +
                  std::to_string(kMaxReferenceNesting) + " deep, left null: " + text);
        break;
      }
      // Built twice, as designed: once to reach the instance's operations and
      // once for the instance whose path is taken, so its traces come twice.
      CMPIInstance* reached = build(broker, context, text);
      CMPIInstance* target = build(broker, context, text);
      if (reached != nullptr && target != nullptr) {
        value.ref = reached->ft->getObjectPath(target, &status);
      }
      break;
    }
    case CMPI_string:
      value.string = broker->eft->newString(broker, text.c_str(), &status);
      break;
    case CMPI_dateTime:
      value.dateTime = text.empty()
                           ? broker->eft->newDateTime(broker, &status)
                           : broker->eft->newDateTimeFromChars(broker, text.c_str(), &status);
      break;
    default:
      std::cout << "we didn't handle this case..."
                << " " << type << " " << text << std::endl;
      break;
  }
  return value;
}

void ParseInstanceImpl::init() {}

std::vector<std::string> multiStringTok(std::string& text, char delimiter) {
  std::vector<std::string> pieces;
  const std::string terminated = text + delimiter;
  std::string::size_type start = 0;
  std::string::size_type found = terminated.find(delimiter, start);
  while (found != std::string::npos) {
    if (found > start) {
      pieces.push_back(terminated.substr(start, found - start));
    }
    start = found + 1;
    found = terminated.find(delimiter, start);
  }
  return pieces;
}

}  // namespace NQENDRA20
