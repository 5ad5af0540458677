// DiagUser: an element that uses a diagnostic service, as a scratch bag.
//
// RunDiagnostic parses the tested element's object path into one (class name
// and key properties) and hands it to the plug-in's test. It is never
// registered by the library.
#ifndef DIAGCORE_DIAGUSER_H_
#define DIAGCORE_DIAGUSER_H_

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT DiagUser : public InstanceImpl {
 public:
  // An empty bag: no class name, no properties, no object path.
  DiagUser() = default;
  ~DiagUser() override = default;

  // Writes nothing: the bag holds only what its creator puts in it.
  void init() override {}
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAGUSER_H_
