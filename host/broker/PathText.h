// The front door is cmpihost/Host.h; this header is internal.
// Path texts and value texts made into typed host values: keys typed from
// the class declaration (the syntax itself is text/PathSyntax's).
#ifndef CMPIHOST_BROKER_PATHTEXT_H_
#define CMPIHOST_BROKER_PATHTEXT_H_

#include <cmpidt.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "broker/Values.h"
#include "cmpihost/MofValue.h"
#include "text/PathSyntax.h"

namespace cmpihost {

// The class's shape, or null for an unknown class.
using ShapeLookup = std::function<std::shared_ptr<const ClassShape>(const std::string& nameSpace,
                                                                    const std::string& className)>;

// Types the keys by the class's declaration (Key properties only). For a
// class the lookup does not know, types follow the literals: quoted ->
// string, TRUE/FALSE -> boolean, integers -> sint64/uint64, reals -> real64.
// Throws HostError naming the key and the problem.
PathData TypePath(const PathSyntax& syntax, const std::string& text,
                  const std::string& defaultNameSpace, const ShapeLookup& lookup);

// Both steps.
PathData ParsePath(const std::string& text, const std::string& defaultNameSpace,
                   const ShapeLookup& lookup);

// A value written as plain text (a method argument or a property given in
// code): strings taken as they are, others read by type; arrays as
// comma-separated elements, optionally in braces, elements optionally quoted.
// Throws HostError naming the problem.
HostValue ValueFromText(const std::string& text, CMPIType type, const std::string& defaultNameSpace,
                        const ShapeLookup& lookup);

// A MOF constant as a value of the declared type; nullopt when it does not fit.
std::optional<HostValue> ValueFromMof(const MofValue& value, CMPIType type,
                                      const std::string& defaultNameSpace,
                                      const ShapeLookup& lookup);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_PATHTEXT_H_
