#include "diag/RegistryHandOver.h"

#include <utility>

namespace NQENDRA20 {

namespace {

// Gives up ownership, on every way out, once the registry has the bag.
class ReleaseWhenTaken {
 public:
  explicit ReleaseWhenTaken(std::unique_ptr<InstanceImpl>& bag) : bag_(bag) {}
  ~ReleaseWhenTaken() {
    if (!bag_->getObjectPath().empty()) {
      static_cast<void>(bag_.release());  // the registry's now
    }
  }
  ReleaseWhenTaken(const ReleaseWhenTaken&) = delete;
  ReleaseWhenTaken& operator=(const ReleaseWhenTaken&) = delete;

 private:
  std::unique_ptr<InstanceImpl>& bag_;
};

}  // namespace

void HandToRegistry(InstanceRegistry* registry, const CMPIBroker* broker,
                    const CMPIContext* context, std::unique_ptr<InstanceImpl> bag) {
  const ReleaseWhenTaken guard(bag);
  registry->RegisterInstance(broker, context, bag.get());
}

}  // namespace NQENDRA20
