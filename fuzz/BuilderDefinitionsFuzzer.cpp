// InstanceBuilder::build from a definition text, in the embedded host. The
// input is three parts, one per line: the class name, the namespace, and the
// definition text ("name=value;name=value", line ends allowed). A reference
// value is parsed as an object path text, so std::out_of_range may come out
// of ParseObjectPath by design; anything else is a bug.
#include <stdexcept>

#include "FuzzHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string definitions = diagcore_fuzz::InputText(data, size);
  const std::string className = diagcore_fuzz::TakeLine(definitions);
  std::string nameSpace = diagcore_fuzz::TakeLine(definitions);

  cmpihost::CallScope scope(diagcore_fuzz::SharedHost());
  const NQENDRA20::InstanceBuilder builder(NQENDRA20::cimNameSpace);
  try {
    CMPIInstance* instance =
        builder.build(scope.broker(), scope.context(), className, nameSpace, definitions);
    if (instance != nullptr) {
      // Reading it back walks every value the builder set.
      const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
      diagcore_fuzz::Require(path != nullptr, "a built instance has a path");
      static_cast<void>(path->ft->toString(path, nullptr));
    }
  } catch (const std::out_of_range&) {
    // By design: a reference value whose path text ends where a key should start.
  }
  return 0;
}
