// The exception the host throws for bad input; see cmpihost/Host.h.
#ifndef CMPIHOST_HOSTERROR_H_
#define CMPIHOST_HOSTERROR_H_

#include <stdexcept>

#include "cmpihost/Export.h"

namespace cmpihost {

// Bad input to the host itself (a registration file, a path text, a missing
// library or factory): says what is wrong and where.
class CMPIHOST_EXPORT HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace cmpihost

#endif  // CMPIHOST_HOSTERROR_H_
