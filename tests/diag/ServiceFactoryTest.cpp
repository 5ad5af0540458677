// ServiceFactory: what it asks the broker for, in which order, and what its
// hook receives and returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/ServiceFactory.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagService;
using ::testing::ElementsAre;

// Remembers what its hook was given; answers with a fixed result.
class ProbeFactory : public NQENDRA20::ServiceFactory {
 public:
  DiagService** CreateServicesImpl(std::string dateTime, std::string systemName,
                                   unsigned int& serviceCount) override {
    seen.push_back(dateTime + " " + systemName + " " + std::to_string(serviceCount));
    if (throwIt) {
      throw std::runtime_error("hook failed");
    }
    if (countToWrite >= 0) {
      serviceCount = static_cast<unsigned int>(countToWrite);
    }
    return answer;
  }

  std::vector<std::string> seen;
  int countToWrite = -1;
  bool throwIt = false;
  DiagService** answer = nullptr;
};

class ServiceFactoryTest : public DiagHostTest {};

TEST_F(ServiceFactoryTest, TheDateTimeIsAskedBeforeTheSystemAndBothReachTheHook) {
  cmpihost::CallScope scope(host());
  RecordingBroker recording(scope.broker());
  ProbeFactory factory;
  unsigned int count = 41;
  EXPECT_EQ(factory.CreateServices(recording.broker(), scope.context(), count), nullptr);
  EXPECT_THAT(recording.calls, ElementsAre("newDateTime", "newObjectPath TORSK_ComputerSystem",
                                           "enumerateInstances TORSK_ComputerSystem"));
  EXPECT_THAT(factory.seen, ElementsAre(CimDateTime(FixedTime()) + " testhost.example 41"));
  EXPECT_EQ(count, 41U);

  // The hook's count and result pass through untouched, as does what it throws.
  DiagService* services[2] = {nullptr, nullptr};
  factory.countToWrite = 2;
  factory.answer = services;
  EXPECT_EQ(factory.CreateServices(scope.broker(), scope.context(), count), services);
  EXPECT_EQ(count, 2U);
  factory.throwIt = true;
  EXPECT_THROW(factory.CreateServices(scope.broker(), scope.context(), count), std::runtime_error);
  EXPECT_EQ(factory.seen.size(), 3U);
}

TEST(ServiceFactoryNoSystemTest, AnEmptySystemNameReachesTheHook) {
  ProviderHostOptions options;
  options.projectSchema = true;
  ProviderHost provider(options);
  cmpihost::CallScope scope(provider.host());
  ProbeFactory factory;
  unsigned int count = 0;
  factory.CreateServices(scope.broker(), scope.context(), count);
  ASSERT_EQ(factory.seen.size(), 1U);
  // "<25-character date-time>  0": the system name between the blanks is empty.
  EXPECT_EQ(factory.seen[0].substr(25), "  0");
}

}  // namespace
}  // namespace diagcore_test
