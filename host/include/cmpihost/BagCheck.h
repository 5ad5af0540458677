// What a plug-in's test can ask before trusting a built instance: which
// properties of a bag (name -> value text, as libdiagcore's InstanceImpl
// holds them) the library's instance builder would drop or read as
// something else than the author wrote. The builder stays silent about
// them by design; this is where the author hears of them.
#ifndef CMPIHOST_BAGCHECK_H_
#define CMPIHOST_BAGCHECK_H_

#include <string>
#include <utility>
#include <vector>

#include "cmpihost/Export.h"
#include "cmpihost/Host.h"

namespace cmpihost {

struct CMPIHOST_EXPORT DroppedProperty {
  std::string className;
  std::string property;
  std::string reason;  // "the class declares no such property", "'abc' does not read as uint32"

  // "CLASS.PROPERTY: reason", one line.
  std::string text() const;
};

using PropertyTexts = std::vector<std::pair<std::string, std::string>>;

// The properties of `bag` that the builder would drop (undeclared by the
// class in `nameSpace` or its superclasses) or whose text does not read as
// the declared type (the builder then sets 0, false or null). An unknown
// class drops every property. Reading follows the builder: booleans 1 or 0,
// integers in decimal within range, uint8 and sint8 one character, date-times
// in their 25-character form (or empty for now), references as path texts,
// arrays as comma-separated elements.
CMPIHOST_EXPORT std::vector<DroppedProperty> DroppedAtBuilding(const ClassRepository& repository,
                                                               const std::string& nameSpace,
                                                               const std::string& className,
                                                               const PropertyTexts& bag);

// The same for any bag that iterates as (name, text) pairs, as a libdiagcore
// InstanceImpl does, in the host's default namespace.
template <typename Bag>
CMPIHOST_EXPORT std::vector<DroppedProperty> DroppedAtBuilding(const Host& host,
                                                               const std::string& className,
                                                               const Bag& bag) {
  PropertyTexts texts;
  for (const auto& property : bag) {
    texts.emplace_back(property.first, property.second);
  }
  return DroppedAtBuilding(host.repository(), host.defaultNameSpace(), className, texts);
}

}  // namespace cmpihost

#endif  // CMPIHOST_BAGCHECK_H_
