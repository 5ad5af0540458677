// ComputerSystemBag: the managed system, a TORSK_ComputerSystem named after
// the host.
#ifndef FILESYSTEMDIAG_COMPUTERSYSTEMBAG_H_
#define FILESYSTEMDIAG_COMPUTERSYSTEMBAG_H_

#include <string>

#include "diagcore/InstanceImpl.h"

namespace filesystemdiag {

class ComputerSystemBag : public NQENDRA20::InstanceImpl {
 public:
  // The system called `hostName` (its keys: CreationClassName and Name).
  explicit ComputerSystemBag(const std::string& hostName);

  // Adds the keys and descriptive texts that are missing.
  void init() override;

 private:
  std::string hostName_;
};

// This machine's name (gethostname), or "localhost" when it has none.
std::string LocalHostName();

}  // namespace filesystemdiag

#endif  // FILESYSTEMDIAG_COMPUTERSYSTEMBAG_H_
