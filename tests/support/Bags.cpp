#include "support/Bags.h"

namespace diagcore_test {

TestBag::TestBag(std::string className, PropertyList properties)
    : NQENDRA20::InstanceImpl(std::move(className)) {
  for (const auto& property : properties) {
    (*this)[property.first] = property.second;
  }
}

void TestBag::init() {}

MethodBag::MethodBag(std::string className, PropertyList properties, Method method)
    : TestBag(std::move(className), properties), method_(std::move(method)) {}

CMPIStatus MethodBag::invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                                   const CMPIResult* result, const CMPIObjectPath* path,
                                   std::string methodName, const CMPIArgs* in, CMPIArgs* out) {
  calls_.fetch_add(1);
  return method_(MethodCall{broker, context, result, path, methodName, in, out});
}

}  // namespace diagcore_test
