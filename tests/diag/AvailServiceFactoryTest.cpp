// The factories. AvailServiceFactory: one numbered association per user
// element, in the broker's order; what it does with no users, odd users, or no
// service. ServiceFactory: what it asks the broker for, in which order, and
// what its hook receives and returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/AvailServiceFactory.h"
#include "diagcore/InstanceRegistry.h"
#include "diagcore/ServiceFactory.h"
#include "plugin/DiagTestPlugin.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using NQENDRA20::AvailServiceFactory;
using NQENDRA20::DiagService;
using NQENDRA20::InstanceRegistry;
using Properties = std::map<std::string, std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const kAssociationClass = "DTP_AvailableDiagnosticService";

// An enumeration of given items, for users that are not what they should be.
class FakeEnumeration {
 public:
  explicit FakeEnumeration(std::vector<CMPIData> items) : items_(std::move(items)) {
    enumeration_.hdl = this;
    enumeration_.ft = &table_;
    table_.hasNext = [](const CMPIEnumeration* en, CMPIStatus* /*rc*/) -> CMPIBoolean {
      const auto* self = static_cast<const FakeEnumeration*>(en->hdl);
      return self->next_ < self->items_.size() ? 1 : 0;
    };
    table_.getNext = [](const CMPIEnumeration* en, CMPIStatus* /*rc*/) {
      auto* self = static_cast<FakeEnumeration*>(const_cast<void*>(en->hdl));
      return self->items_[self->next_++];
    };
  }

  CMPIEnumeration* get() { return &enumeration_; }

 private:
  std::vector<CMPIData> items_;
  std::size_t next_ = 0;
  CMPIEnumerationFT table_{};
  CMPIEnumeration enumeration_{};
};

// Remembers what it was asked for and answers with a chosen enumeration.
class ChoosingFactory : public AvailServiceFactory {
 public:
  CMPIEnumeration* EnumerateUsers(const CMPIBroker* /*broker*/, const CMPIContext* /*context*/,
                                  std::string userClassName) override {
    asked.push_back(userClassName);
    return answer;
  }

  std::vector<std::string> asked;
  CMPIEnumeration* answer = nullptr;
};

class AvailServiceFactoryTest : public DiagHostTest {
 protected:
  AvailServiceFactoryTest() : DiagHostTest(true) {
    service_ = NewBag<diagtestplugin::TestDiagService>(std::string("Probe"), std::string("Probe"),
                                                       diagtestplugin::Behaviour(), std::string(),
                                                       std::string("testhost.example"));
    RegisterInScope(host(), service_);
    TakeTraces();
  }

  void Create(AvailServiceFactory& factory, NQENDRA20::InstanceImpl* service, unsigned int first,
              unsigned int step, const std::string& userClass = "DTP_Device") {
    cmpihost::CallScope scope(host());
    factory.CreateAvailableServices(scope.broker(), scope.context(), service, userClass,
                                    kAssociationClass, first, step);
  }

  // The registered associations' bags, in the order the registry serves them.
  std::vector<Properties> Associations() {
    std::vector<Properties> bags;
    cmpihost::CallScope scope(host());
    for (const cmpihost::InstanceSnapshot& instance :
         host().enumerateInstances("root/cimv2", kAssociationClass).instances()) {
      InstanceRegistry::Instance* entry = InstanceRegistry::Singleton()->GetInstance(
          scope.broker(), scope.objectPath(instance.path));
      EXPECT_NE(entry, nullptr) << instance.path;
      if (entry != nullptr) {
        bags.emplace_back(entry->impl->begin(), entry->impl->end());
      }
    }
    return bags;
  }

  Properties Association(const std::string& device, const std::string& enumOrder,
                         bool serviceRegistered = true) {
    return {{"EnumOrder", enumOrder},
            {"EstimatedDurationOfService", "3"},
            {"EstimatedDurationQualifier", "0"},
            {"ServiceProvided", serviceRegistered ? service_->getObjectPath() : ""},
            {"UserOfService", DeviceText(device)}};
  }

  diagtestplugin::TestDiagService* service_ = nullptr;
};

TEST_F(AvailServiceFactoryTest, EachUserGetsAnAssociationNumberedFromFirstByStep) {
  AvailServiceFactory factory;
  Create(factory, service_, 10, 5);
  std::vector<TraceLine> registered;
  for (const TraceLine& line : TakeTraces()) {
    if (line.text.rfind(">>>>> Registered ", 0) == 0) {
      registered.push_back(line);
    }
  }
  EXPECT_THAT(registered,
              ElementsAre(Debug(">>>>> Registered " + AvailabilityText("Probe", "disk0")),
                          Debug(">>>>> Registered " + AvailabilityText("Probe", "disk1")),
                          Debug(">>>>> Registered " + AvailabilityText("Probe", "disk2"))));
  EXPECT_THAT(Associations(), ElementsAre(Association("disk0", "10"), Association("disk1", "15"),
                                          Association("disk2", "20")));

  // The same paths again: each takes its old place. A step of zero gives
  // one order to all; numbers are written in full and wrap at 32 bits (and
  // are served by EnumOrder, the wrapped one first).
  Create(factory, service_, 7, 0);
  EXPECT_THAT(Associations(), ElementsAre(Association("disk0", "7"), Association("disk1", "7"),
                                          Association("disk2", "7")));
  Create(factory, service_, 4294967290U, 5);
  EXPECT_THAT(Associations(),
              ElementsAre(Association("disk2", "4"), Association("disk0", "4294967290"),
                          Association("disk1", "4294967295")));
}

TEST_F(AvailServiceFactoryTest, NoUsersOrAFailingEnumerationCreateNothing) {
  AvailServiceFactory factory;
  Create(factory, service_, 10, 5, "DTP_DiagServiceRecord");  // served, but none registered
  Create(factory, service_, 10, 5, "ACME_NoSuchClass");
  {
    cmpihost::CallScope scope(host());
    RecordingBroker recording(scope.broker());
    recording.enumerate = [](const CMPIObjectPath* /*path*/, CMPIStatus* rc) -> CMPIEnumeration* {
      if (rc != nullptr) {
        *rc = {CMPI_RC_ERR_FAILED, nullptr};
      }
      return nullptr;
    };
    factory.CreateAvailableServices(recording.broker(), scope.context(), service_, "DTP_Device",
                                    kAssociationClass, 10, 5);
    EXPECT_THAT(recording.calls,
                ElementsAre("newObjectPath DTP_Device", "enumerateInstances DTP_Device"));
  }
  ChoosingFactory choosing;  // answers null
  Create(choosing, service_, 10, 5);
  EXPECT_THAT(choosing.asked, ElementsAre("DTP_Device"));
  EXPECT_THAT(TakeTraces(), ::testing::Each(::testing::Field(
                                &TraceLine::text, ::testing::Not(::testing::HasSubstr(">>>>>")))));
  EXPECT_THAT(Associations(), IsEmpty());
}

TEST_F(AvailServiceFactoryTest, TheDefaultUsersAreTheBrokersInstancesOfTheClass) {
  cmpihost::CallScope scope(host());
  RecordingBroker recording(scope.broker());
  AvailServiceFactory factory;
  CMPIEnumeration* users =
      factory.EnumerateUsers(recording.broker(), scope.context(), "DTP_Device");
  ASSERT_NE(users, nullptr);
  std::vector<std::string> devices;
  while (users->ft->hasNext(users, nullptr) != 0) {
    const CMPIData item = users->ft->getNext(users, nullptr);
    ASSERT_EQ(item.type, CMPI_instance);
    const CMPIData id = item.value.inst->ft->getProperty(item.value.inst, "DeviceID", nullptr);
    devices.emplace_back(id.value.string->ft->getCharPtr(id.value.string, nullptr));
  }
  EXPECT_THAT(devices, ElementsAre("disk0", "disk1", "disk2"));
  EXPECT_THAT(recording.calls,
              ElementsAre("newObjectPath DTP_Device", "enumerateInstances DTP_Device"));
}

// OpenPegasus hands out good instances marked CMPI_nullValue: they are taken;
// only an item without an instance is skipped.
TEST_F(AvailServiceFactoryTest, ItemsAreTakenWhateverTheirStateAndEmptyOnesSkippedWithAWarning) {
  cmpihost::CallScope scope(host());
  CMPIEnumeration* devices = scope.broker()->bft->enumerateInstances(
      scope.broker(), scope.context(), scope.objectPath("DTP_Device"), nullptr, nullptr);
  ASSERT_NE(devices, nullptr);
  CMPIData disk0 = devices->ft->getNext(devices, nullptr);
  disk0.state = CMPI_nullValue;
  CMPIData nullInstance{};
  nullInstance.type = CMPI_instance;
  nullInstance.state = CMPI_nullValue;
  FakeEnumeration users({nullInstance, disk0});
  ChoosingFactory factory;
  factory.answer = users.get();

  factory.CreateAvailableServices(scope.broker(), scope.context(), service_, "DTP_Device",
                                  kAssociationClass, 10, 5);

  const std::vector<TraceLine> traces = TakeTraces();
  ASSERT_GT(traces.size(), 1U);
  EXPECT_EQ(traces[0],
            Warning("CreateAvailableServices skipped a DTP_Device item that holds no instance"));
  EXPECT_THAT(Associations(), ElementsAre(Association("disk0", "10")));
}

TEST_F(AvailServiceFactoryTest, NoServiceCreatesNothingAndAnUnregisteredOneEmptyReferences) {
  AvailServiceFactory factory;
  Create(factory, nullptr, 10, 5);
  EXPECT_EQ(TakeTraces(),
            std::vector<TraceLine>{Warning("CreateAvailableServices was given no service for "
                                           "DTP_AvailableDiagnosticService")});
  EXPECT_THAT(Associations(), IsEmpty());

  diagtestplugin::TestDiagService unregistered("Loose", "Loose", diagtestplugin::Behaviour(), "",
                                               "testhost.example");
  Create(factory, &unregistered, 10, 5);
  EXPECT_THAT(Associations(),
              ElementsAre(Association("disk0", "10", false), Association("disk1", "15", false),
                          Association("disk2", "20", false)));
}

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

}  // namespace
}  // namespace diagcore_test
