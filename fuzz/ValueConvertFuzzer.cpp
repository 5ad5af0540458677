// InstanceBuilder::convert of one text to every CMPI type the builder reads,
// in the embedded host, each value then set on a property of that type as
// build does. A reference text is parsed as an object path text, so
// std::out_of_range may come out of ParseObjectPath by design.
#include <stdexcept>

#include "FuzzHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"

namespace {

struct Target {
  CMPIType type;
  const char* className;
  const char* property;
};

const Target kTargets[] = {
    {CMPI_boolean, "FZ_AllTypes", "Flag"},  {CMPI_uint8, "FZ_AllTypes", "U8"},
    {CMPI_sint8, "FZ_AllTypes", "S8"},      {CMPI_uint16, "FZ_AllTypes", "U16"},
    {CMPI_sint16, "FZ_AllTypes", "S16"},    {CMPI_uint32, "FZ_AllTypes", "U32"},
    {CMPI_sint32, "FZ_AllTypes", "S32"},    {CMPI_uint64, "FZ_AllTypes", "U64"},
    {CMPI_sint64, "FZ_AllTypes", "S64"},    {CMPI_real32, "FZ_AllTypes", "R32"},
    {CMPI_real64, "FZ_AllTypes", "R64"},    {CMPI_string, "FZ_AllTypes", "Text"},
    {CMPI_dateTime, "FZ_AllTypes", "When"}, {CMPI_ref, "FZ_Link", "Antecedent"},
};

CMPIInstance* NewInstance(const CMPIBroker* broker, const char* className) {
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, "root/cimv2", className, nullptr);
  diagcore_fuzz::Require(path != nullptr, "the broker makes a path");
  CMPIInstance* instance = broker->eft->newInstance(broker, path, nullptr);
  diagcore_fuzz::Require(instance != nullptr, "the broker makes an instance of a known class");
  return instance;
}

void CheckValue(CMPIType type, const std::string& text, const CMPIValue& value) {
  if (type == CMPI_string) {
    diagcore_fuzz::Require(value.string != nullptr, "a string always converts");
    // The broker reads the text as a C string: up to its first NUL.
    diagcore_fuzz::RequireEqual(diagcore_fuzz::Chars(value.string), text.substr(0, text.find('\0')),
                                "a string converts to its own characters");
  }
  if (type == CMPI_dateTime) {
    diagcore_fuzz::Require(!text.empty() || value.dateTime != nullptr,
                           "an empty date-time text converts to now");
    if (value.dateTime != nullptr) {
      const CMPIString* format = value.dateTime->ft->getStringFormat(value.dateTime, nullptr);
      diagcore_fuzz::Require(diagcore_fuzz::Chars(format).size() == 25,
                             "a date-time prints as 25 characters");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = diagcore_fuzz::InputText(data, size);
  cmpihost::CallScope scope(diagcore_fuzz::SharedHost());
  const CMPIBroker* broker = scope.broker();
  const NQENDRA20::InstanceBuilder builder(NQENDRA20::cimNameSpace);
  for (const Target& target : kTargets) {
    std::string text = input;
    unsigned short type = target.type;
    CMPIValue value{};
    try {
      value = builder.convert(broker, scope.context(), type, text);
    } catch (const std::out_of_range&) {
      continue;  // by design, for a reference text only
    }
    diagcore_fuzz::Require(text == input && type == target.type,
                           "convert leaves its text and type alone");
    CheckValue(target.type, input, value);
    CMPIInstance* instance = NewInstance(broker, target.className);
    instance->ft->setProperty(instance, target.property, &value, target.type);
  }
  return 0;
}
