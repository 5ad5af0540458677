// The property bag: insert-on-read, properties-only copies, byte order of
// names, the printed form and the default method answer.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cmpihost/CallScope.h"
#include "diagcore/InstanceImpl.h"
#include "support/LibraryHost.h"

namespace diagcore_test {
namespace {

using Properties = std::vector<std::pair<std::string, std::string>>;

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return Properties(bag.begin(), bag.end());
}

TEST(InstanceImplTest, ReadsInsertAndNamesKeepByteOrder) {
  TestBag bag("DCT_Element");
  EXPECT_EQ(bag.find("Caption"), bag.end());
  // Both hand out the stored value itself, inserting it empty first.
  bag.get("Caption") = "c";
  bag["Other"] += "o";
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"Caption", "c"}, {"Other", "o"}}));

  TestBag names("X", {{"name", "1"}, {"Name", "2"}, {"a", "3"}, {"B", "4"}});
  EXPECT_EQ(PropertiesOf(names),
            (Properties{{"B", "4"}, {"Name", "2"}, {"a", "3"}, {"name", "1"}}));
}

TEST(InstanceImplTest, CopiesCarryPropertiesOnly) {
  TestBag target("ClassA", {{"a", "1"}, {"b", "2"}});
  target.setObjectPath("ClassA.a=\"1\"");
  TestBag source("ClassB", {{"c", "3"}});
  source.setObjectPath("ClassB.c=\"3\"");

  target = source;
  EXPECT_EQ(target.getClassName(), "ClassA");
  EXPECT_EQ(target.getObjectPath(), "ClassA.a=\"1\"");
  EXPECT_EQ(PropertiesOf(target), (Properties{{"c", "3"}}));

  const TestBag copy(source);
  EXPECT_EQ(copy.getClassName(), "");
  EXPECT_EQ(copy.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(copy), (Properties{{"c", "3"}}));

  TestBag& alias = target;
  target = alias;
  EXPECT_EQ(target.getObjectPath(), "ClassA.a=\"1\"");
  EXPECT_EQ(PropertiesOf(target), (Properties{{"c", "3"}}));
}

TEST(InstanceImplTest, PrintWritesNameTwoTabsValueLinesThenAnEmptyLine) {
  TestBag bag("ClassA", {{"b", "two words"}, {"a", "1"}});
  bag.setObjectPath("never printed");
  StdoutCapture out;
  bag.print();
  TestBag("ClassA").print();
  EXPECT_EQ(out.text(), "a\t\t1\nb\t\ttwo words\n\n\n");
}

TEST(InstanceImplTest, DefaultMethodIsNotFoundAndLeavesTheResultAlone) {
  ProviderHost provider(CoreHostOptions());
  cmpihost::CallScope scope(provider.host());
  CMPIResult* result = scope.newResult();
  TestBag bag("DCT_Element");
  const CMPIStatus status =
      bag.invokeMethod(scope.broker(), scope.context(), result, scope.objectPath(ElementText("d1")),
                       "Ping", nullptr, nullptr);
  EXPECT_EQ(status.rc, CMPI_RC_ERR_METHOD_NOT_FOUND);
  EXPECT_EQ(status.msg, nullptr);
  EXPECT_TRUE(scope.recorded(result).events.empty());
  EXPECT_TRUE(LibraryTraces(provider.host()).empty());
}

}  // namespace
}  // namespace diagcore_test
