// ServiceFactory: what it asks the broker for, in which order, and what its
// hook receives and returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diag/DiagHost.h"
#include "diag/RecordingBroker.h"
#include "diagcore/ServiceFactory.h"

namespace diagcore_test {
namespace {

using NQENDRA20::DiagService;
using ::testing::ElementsAre;

// Remembers what its hook was given; answers with a fixed result.
class ProbeFactory : public NQENDRA20::ServiceFactory {
 public:
  DiagService** CreateServicesImpl(std::string dateTime, std::string systemName,
                                   unsigned int& serviceCount) override {
    ++calls;
    dateTimes.push_back(dateTime);
    systemNames.push_back(systemName);
    countSeen = serviceCount;
    if (throwIt) {
      throw std::runtime_error("hook failed");
    }
    if (countToWrite >= 0) {
      serviceCount = static_cast<unsigned int>(countToWrite);
    }
    return answer;
  }

  int calls = 0;
  std::vector<std::string> dateTimes;
  std::vector<std::string> systemNames;
  unsigned int countSeen = 0;
  int countToWrite = -1;
  bool throwIt = false;
  DiagService** answer = nullptr;
};

class ServiceFactoryTest : public DiagHostTest {};

TEST_F(ServiceFactoryTest, TheDateTimeIsAskedBeforeTheSystemIsLookedUp) {
  cmpihost::CallScope scope(host());
  RecordingBroker recording(scope.broker());
  ProbeFactory factory;
  unsigned int count = 0;
  factory.CreateServices(recording.broker(), scope.context(), count);
  EXPECT_THAT(recording.calls, ElementsAre("newDateTime", "newObjectPath TORSK_ComputerSystem",
                                           "enumerateInstances TORSK_ComputerSystem"));
  EXPECT_THAT(factory.dateTimes, ElementsAre(CimDateTime(FixedTime())));
  EXPECT_THAT(factory.systemNames, ElementsAre("testhost.example"));
}

TEST_F(ServiceFactoryTest, TheHooksCountAndResultPassThroughUntouched) {
  cmpihost::CallScope scope(host());
  DiagService* services[2] = {nullptr, nullptr};

  ProbeFactory writing;
  writing.countToWrite = 2;
  writing.answer = services;
  unsigned int count = 41;
  EXPECT_EQ(writing.CreateServices(scope.broker(), scope.context(), count), services);
  EXPECT_EQ(writing.countSeen, 41U);
  EXPECT_EQ(count, 2U);

  ProbeFactory silent;
  unsigned int untouched = 77;
  EXPECT_EQ(silent.CreateServices(scope.broker(), scope.context(), untouched), nullptr);
  EXPECT_EQ(untouched, 77U);
  EXPECT_EQ(silent.calls, 1);
}

TEST_F(ServiceFactoryTest, WhateverTheHookThrowsPassesThrough) {
  cmpihost::CallScope scope(host());
  ProbeFactory factory;
  factory.throwIt = true;
  unsigned int count = 0;
  EXPECT_THROW(factory.CreateServices(scope.broker(), scope.context(), count), std::runtime_error);
  EXPECT_EQ(factory.calls, 1);
}

// Without a computer system, the hook is called all the same, with "".
class NoSystemTest : public ::testing::Test {
 protected:
  NoSystemTest() : provider_(SchemaOnly()) {}

  static ProviderHostOptions SchemaOnly() {
    ProviderHostOptions options;
    options.projectSchema = true;
    return options;
  }

  ProviderHost provider_;
};

TEST_F(NoSystemTest, AnEmptySystemNameReachesTheHook) {
  cmpihost::CallScope scope(provider_.host());
  ProbeFactory factory;
  unsigned int count = 0;
  factory.CreateServices(scope.broker(), scope.context(), count);
  EXPECT_EQ(factory.calls, 1);
  EXPECT_THAT(factory.systemNames, ElementsAre(""));
  ASSERT_EQ(factory.dateTimes.size(), 1U);
  EXPECT_EQ(factory.dateTimes[0].size(), 25U);
}

}  // namespace
}  // namespace diagcore_test
