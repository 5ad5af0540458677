// The short cuts taken for speed give exactly the answers of the long way:
// numbers read without a stream, a reused stream that follows the global
// locale, traces longer than the trace buffer, the registry's path index
// (misses, later registrations, overwrites) and its EnumOrder sort with
// values read once, and the host's property lookup by length.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"
#include "diagcore/InstanceRegistry.h"

namespace diagcore_test {
namespace {

using NQENDRA20::InstanceRegistry;

InstanceRegistry& Registry() {
  return *InstanceRegistry::Singleton();
}

// What a freshly made stream reads from `text`.
template <typename T>
T StreamRead(const std::string& text) {
  std::istringstream in(text);
  T value{};
  in >> value;
  return value;
}

// Digits in a locale's thousands groups: "1,234" reads as 1234 there.
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

// Sets the global locale for its life.
class GlobalLocale {
 public:
  explicit GlobalLocale(const std::locale& locale) : saved_(std::locale::global(locale)) {}
  ~GlobalLocale() { std::locale::global(saved_); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  std::locale saved_;
};

class FastPathTest : public CoreHostTest {
 protected:
  FastPathTest() : builder_(NQENDRA20::cimNameSpace) {}

  CMPIValue Convert(cmpihost::CallScope& scope, CMPIType type, std::string text) {
    return builder_.convert(scope.broker(), scope.context(), type, text);
  }

  const NQENDRA20::InstanceBuilder builder_;
};

TEST_F(FastPathTest, IntegersReadAsAFreshStreamReadsThem) {
  cmpihost::CallScope scope(host());
  const std::vector<std::string> texts = {"0",
                                          "7",
                                          "007",
                                          "65535",
                                          "65536",
                                          "99999",
                                          "32767",
                                          "32768",
                                          "123456789",
                                          "999999999",
                                          "1000000000",
                                          "2147483647",
                                          "2147483648",
                                          "4294967295",
                                          "4294967296",
                                          "-1",
                                          "+5",
                                          " 5",
                                          "5 ",
                                          "",
                                          "x",
                                          "1,234",
                                          "12abc",
                                          "0x10",
                                          "00000000000000000001",
                                          "-32768",
                                          "-32769",
                                          "9223372036854775808"};
  for (const std::string& text : texts) {
    EXPECT_EQ(Convert(scope, CMPI_uint16, text).uint16, StreamRead<unsigned short>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_uint32, text).uint32, StreamRead<unsigned int>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_uint64, text).uint64, StreamRead<unsigned long>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint16, text).sint16, StreamRead<short>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint32, text).sint32, StreamRead<int>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_sint64, text).sint64, StreamRead<long>(text)) << text;
    EXPECT_EQ(Convert(scope, CMPI_boolean, text).boolean, StreamRead<bool>(text) ? 1 : 0) << text;
    EXPECT_EQ(Convert(scope, CMPI_real64, text).real64, StreamRead<double>(text)) << text;
  }
}

TEST_F(FastPathTest, NumbersFollowTheGlobalLocaleOfTheMoment) {
  cmpihost::CallScope scope(host());
  EXPECT_EQ(Convert(scope, CMPI_uint32, "1,234").uint32, 1U);
  {
    const GlobalLocale grouped(std::locale(std::locale::classic(), new Grouping));
    ASSERT_EQ(StreamRead<unsigned int>("1,234"), 1234U);
    EXPECT_EQ(Convert(scope, CMPI_uint32, "1,234").uint32, 1234U);
    EXPECT_EQ(Convert(scope, CMPI_sint64, "-2,000,000").sint64, -2000000);
  }
  EXPECT_EQ(Convert(scope, CMPI_uint32, "1,234").uint32, 1U);
}

TEST_F(FastPathTest, ATraceLongerThanTheBufferIsWrittenWhole) {
  for (const std::size_t length : {1000U, 1023U, 1024U, 5000U}) {
    const std::string text(length, 'q');
    TestBag bag("DCT_AllTypes", {{"InstanceID", "long"}, {"Text", text}});
    {
      cmpihost::CallScope scope(host());
      ASSERT_NE(builder_.build(scope.broker(), scope.context(), "DCT_AllTypes", bag), nullptr);
    }
    EXPECT_THAT(TakeTraces(),
                ::testing::ElementsAre(Debug("Setting property InstanceID to 'long'"),
                                       Debug("Setting property Text to '" + text + "'"),
                                       Debug("Exiting InstanceBuilder::build")))
        << length;
  }
}

TEST_F(FastPathTest, ALookupThatMissedIsFoundOnceThePathIsRegistered) {
  Register(NewElement("present"));
  cmpihost::CallScope scope(host());
  CMPIObjectPath* later = scope.objectPath(ElementText("later"));
  EXPECT_EQ(Registry().GetInstance(scope.broker(), later), nullptr);
  EXPECT_EQ(Registry().GetInstance(scope.broker(), later), nullptr);

  TestBag* bag = Register(NewElement("later", {{"Caption", "first"}}));
  InstanceRegistry::Instance* entry = Registry().GetInstance(scope.broker(), later);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->impl, bag);

  // A second registration under the same text replaces the first for every
  // lookup; the enumeration holds each path once.
  TestBag* again = Register(NewElement("later", {{"Caption", "second"}}));
  EXPECT_EQ(Registry().GetInstance(scope.broker(), later)->impl, again);
  std::vector<CMPIInstance*> all;
  Registry().GetCMPIInstances(scope.broker(), "DCT_Element", all);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0], Registry().GetCMPIInstance(scope.broker(), later));
  EXPECT_EQ(Registry()
                .GetInstance(scope.broker(), scope.objectPath(ElementText("present")))
                ->impl->getObjectPath(),
            ElementText("present"));
}

TEST_F(FastPathTest, EnumOrderSortGivesTheOrderOfSortingWithTheComparator) {
  // Many equal EnumOrders, registered in no particular order: the unstable
  // sort's order of ties must be the comparator's own.
  std::mt19937 random(7);
  std::vector<std::pair<std::string, CMPIInstance*>> byPath;
  std::vector<TestBag*> bags;
  // A class of its own here, so that no other test's objects are among them.
  for (int i = 0; i < 300; ++i) {
    const std::string id = "e" + std::to_string(random() % 100000);
    bags.push_back(Register(
        NewBag(std::string("DCT_AllTypes"),
               PropertyList{{"InstanceID", id}, {"EnumOrder", std::to_string(random() % 7)}})));
  }
  cmpihost::CallScope scope(host());
  for (TestBag* bag : bags) {
    CMPIInstance* instance =
        Registry().GetCMPIInstance(scope.broker(), scope.objectPath(bag->getObjectPath()));
    ASSERT_NE(instance, nullptr);
    byPath.emplace_back(bag->getObjectPath(), instance);
  }
  std::sort(byPath.begin(), byPath.end());
  byPath.erase(std::unique(byPath.begin(), byPath.end(),
                           [](const auto& a, const auto& b) { return a.first == b.first; }),
               byPath.end());
  std::vector<CMPIInstance*> expected;
  for (const auto& [path, instance] : byPath) {
    expected.push_back(instance);
  }
  std::sort(expected.begin(), expected.end(), NQENDRA20::CompareInstanceEnumOrder());

  std::vector<CMPIInstance*> sorted;
  Registry().GetCMPIInstances(scope.broker(), "DCT_AllTypes", sorted);
  EXPECT_EQ(sorted, expected);
}

TEST_F(FastPathTest, PropertyNamesMatchWithoutCaseAndOnlyWhole) {
  cmpihost::CallScope scope(host());
  CMPIObjectPath* path = scope.objectPath("DCT_AllTypes");
  CMPIInstance* instance = scope.broker()->eft->newInstance(scope.broker(), path, nullptr);
  ASSERT_NE(instance, nullptr);
  const struct {
    const char* name;
    CMPIType type;  // CMPI_null: not declared
  } cases[] = {
      {"U16", CMPI_uint16},       {"u16", CMPI_uint16},    {"U1", CMPI_null},
      {"U160", CMPI_null},        {"S16", CMPI_sint16},    {"s16S", CMPI_null},
      {"TEXTS", CMPI_stringA},    {"Text", CMPI_string},   {"", CMPI_null},
      {"enumorder", CMPI_uint32}, {"EnumOrde", CMPI_null},
  };
  for (const auto& c : cases) {
    CMPIStatus status = {CMPI_RC_OK, nullptr};
    const CMPIData data = instance->ft->getProperty(instance, c.name, &status);
    EXPECT_EQ(data.type, c.type) << c.name;
    EXPECT_EQ(status.rc, c.type == CMPI_null ? CMPI_RC_ERR_NO_SUCH_PROPERTY : CMPI_RC_OK) << c.name;
  }
  CMPIValue value{};
  value.uint16 = 9;
  EXPECT_EQ(instance->ft->setProperty(instance, "u16", &value, CMPI_uint16).rc, CMPI_RC_OK);
  EXPECT_EQ(instance->ft->getProperty(instance, "U16", nullptr).value.uint16, 9);
  EXPECT_EQ(instance->ft->setProperty(instance, "U1", &value, CMPI_uint16).rc,
            CMPI_RC_ERR_NO_SUCH_PROPERTY);
}

}  // namespace
}  // namespace diagcore_test
