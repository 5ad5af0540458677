#include "ComputerSystemBag.h"

#include <unistd.h>

#include <climits>
#include "BagDefaults.h"
#include "ClassNames.h"

namespace filesystemdiag {
std::string LocalHostName() {
  char name[HOST_NAME_MAX + 1] = {};
  if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') {
    return "localhost";
  }
  return name;
}

ComputerSystemBag::ComputerSystemBag(const std::string& hostName)
    : InstanceImpl(kComputerSystemClass), hostName_(hostName) {
  ComputerSystemBag::init();
}

void ComputerSystemBag::init() {
  AddIfAbsent(*this, "CreationClassName", kComputerSystemClass);
  AddIfAbsent(*this, "Name", hostName_);
  AddIfAbsent(*this, "ElementName", hostName_);
  AddIfAbsent(*this, "Caption", "The computer system whose file systems are tested");
}

}  // namespace filesystemdiag
