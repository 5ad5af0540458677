// The front door is cmpihost/Host.h; this header is internal.
// How libdiagcore's builder reads one property value from its text, for the
// broker's build watch and BagCheck: both must give the same reason for the
// same text.
#ifndef CMPIHOST_BROKER_BAGREADING_H_
#define CMPIHOST_BROKER_BAGREADING_H_

#include <cmpidt.h>

#include <optional>
#include <string>

#include "cmpihost/CimType.h"

namespace cmpihost {

// Why the builder does not read `text` as one value of `type` (scalar or
// array), or nullopt when it does.
std::optional<std::string> WhyNotRead(const std::string& text, const TypeDecl& type);
// The same for a CMPI type code.
std::optional<std::string> WhyNotRead(const std::string& text, CMPIType declared);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_BAGREADING_H_
