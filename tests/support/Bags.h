// Property bags for tests, and handing them to the registry.
#ifndef DIAGCORE_TESTS_SUPPORT_BAGS_H_
#define DIAGCORE_TESTS_SUPPORT_BAGS_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

#include "diagcore/InstanceImpl.h"

namespace diagcore_test {

using PropertyList = std::initializer_list<std::pair<const std::string, std::string>>;

// A bag of a given class with given properties; init() adds nothing.
class TestBag : public NQENDRA20::InstanceImpl {
 public:
  explicit TestBag(std::string className, PropertyList properties = {});
  void init() override;
};

// What a MethodBag's method receives; it answers with its own status.
struct MethodCall {
  const CMPIBroker* broker;
  const CMPIContext* context;
  const CMPIResult* result;
  const CMPIObjectPath* path;
  const std::string& methodName;
  const CMPIArgs* in;
  CMPIArgs* out;
};

// A bag whose invokeMethod runs a test-given function and counts its calls.
class MethodBag : public TestBag {
 public:
  using Method = std::function<CMPIStatus(const MethodCall&)>;
  MethodBag(std::string className, PropertyList properties, Method method);

  CMPIStatus invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                          const CMPIResult* result, const CMPIObjectPath* path,
                          std::string methodName, const CMPIArgs* in, CMPIArgs* out) override;

  int calls() const { return calls_.load(); }

 private:
  Method method_;
  std::atomic<int> calls_{0};
};

// Allocates a bag that is to be handed to the registry, which keeps it for the
// rest of the process once registered (the leak checker sees it through the
// registry's entry). A bag whose registration failed is still the caller's.
template <typename Bag = TestBag, typename... Args>
Bag* NewBag(Args&&... args) {
  return new Bag(std::forward<Args>(args)...);
}

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SUPPORT_BAGS_H_
