// A bag with no defaults of its own, for the profile's logs, jobs and
// associations, whose creators write every property. Internal to the library.
#ifndef DIAGCORE_DIAG_PLAINBAG_H_
#define DIAGCORE_DIAG_PLAINBAG_H_

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class PlainBag final : public InstanceImpl {
 public:
  explicit PlainBag(std::string className) : InstanceImpl(std::move(className)) {}
  void init() override {}
};

// A bag of `className` holding `properties`, in their order.
inline std::unique_ptr<InstanceImpl> NewBag(
    const std::string& className,
    std::initializer_list<std::pair<const char*, std::string>> properties) {
  auto bag = std::make_unique<PlainBag>(className);
  for (const auto& property : properties) {
    (*bag)[property.first] = property.second;
  }
  return bag;
}

}  // namespace NQENDRA20

#endif  // DIAGCORE_DIAG_PLAINBAG_H_
