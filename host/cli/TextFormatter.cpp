#include "cli/TextFormatter.h"

#include "cmpihost/CmpiNames.h"

namespace cmpihost::cli {
namespace {

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + "\n";
  }
  return text;
}

}  // namespace

std::string TextFormatter::classNames(const std::vector<std::string>& names) const {
  return Lines(names);
}

std::string TextFormatter::paths(const std::vector<std::string>& paths) const {
  return Lines(paths);
}

std::string TextFormatter::instance(const InstanceSnapshot& instance) const {
  const std::string comment = instance.path.empty() ? "" : "// " + instance.path + "\n";
  return comment + instance.toMof();
}

std::string TextFormatter::instances(const std::vector<InstanceSnapshot>& instances) const {
  std::string text;
  for (const InstanceSnapshot& each : instances) {
    text += (text.empty() ? "" : "\n") + instance(each);
  }
  return text;
}

std::string TextFormatter::methodResult(const Value* returnValue,
                                        const std::vector<Property>& outArguments) const {
  std::string text = "ReturnValue = " + (returnValue != nullptr ? returnValue->toMof() : "NULL");
  text += "\n";
  for (const Property& argument : outArguments) {
    text += argument.name + " = " + argument.value.toMof() + "\n";
  }
  return text;
}

std::string TextFormatter::echo(const std::string& text) const {
  return text + "\n";
}

std::string TextFormatter::unloadAnswers(const std::vector<UnloadAnswer>& answers) const {
  std::string text;
  for (const UnloadAnswer& answer : answers) {
    text += "provider " + answer.providerName + ", " + answer.kind +
            " MI: " + CmpiStatusName(answer.status.rc) +
            (answer.unloaded ? ", unloaded" : ", stays loaded") + "\n";
  }
  return text;
}

std::string TextFormatter::listingSeparator() const {
  return "\n";
}

}  // namespace cmpihost::cli
