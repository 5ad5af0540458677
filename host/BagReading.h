// BagCheck's reader for one value, for the broker's build watch: the log and
// the test API must give the same reason for the same text.
#ifndef CMPIHOST_BAGREADING_H_
#define CMPIHOST_BAGREADING_H_

#include <cmpidt.h>

#include <optional>
#include <string>

namespace cmpihost {

// Why the builder does not read `text` as one value of the CMPI type
// `declared` (scalar or array), or nullopt when it does.
std::optional<std::string> WhyNotRead(const std::string& text, CMPIType declared);

}  // namespace cmpihost

#endif  // CMPIHOST_BAGREADING_H_
