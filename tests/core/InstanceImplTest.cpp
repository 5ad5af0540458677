// The property bag: insert-on-read, properties-only copies, byte order of
// names, the printed form and the default method answer.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "CoreHost.h"
#include "cmpihost/CallScope.h"
#include "diagcore/InstanceImpl.h"
#include "support/StdoutCapture.h"

namespace diagcore_test {
namespace {

using Properties = std::vector<std::pair<std::string, std::string>>;

Properties PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return Properties(bag.begin(), bag.end());
}

TEST(InstanceImplTest, ReadingAnUnknownNameInsertsAnEmptyValue) {
  TestBag bag("DCT_Element");
  EXPECT_EQ(bag.find("Caption"), bag.end());
  EXPECT_EQ(bag.get("Caption"), "");
  EXPECT_NE(bag.find("Caption"), bag.end());

  EXPECT_EQ(bag["Other"], "");
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"Caption", ""}, {"Other", ""}}));

  // Both hand out the stored value itself.
  bag.get("Caption") = "c";
  bag["Other"] += "o";
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"Caption", "c"}, {"Other", "o"}}));
}

TEST(InstanceImplTest, NamesAreCaseSensitiveAndKeptInByteOrder) {
  TestBag bag("X", {{"name", "1"}, {"Name", "2"}, {"a", "3"}, {"B", "4"}});
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"B", "4"}, {"Name", "2"}, {"a", "3"}, {"name", "1"}}));
}

TEST(InstanceImplTest, AssignmentReplacesPropertiesAndKeepsClassAndPath) {
  TestBag target("ClassA", {{"a", "1"}, {"b", "2"}});
  target.setObjectPath("ClassA.a=\"1\"");
  TestBag source("ClassB", {{"c", "3"}});
  source.setObjectPath("ClassB.c=\"3\"");

  target = source;

  EXPECT_EQ(target.getClassName(), "ClassA");
  EXPECT_EQ(target.getObjectPath(), "ClassA.a=\"1\"");
  EXPECT_EQ(PropertiesOf(target), (Properties{{"c", "3"}}));
  EXPECT_EQ(source.getClassName(), "ClassB");
  EXPECT_EQ(PropertiesOf(source), (Properties{{"c", "3"}}));
}

TEST(InstanceImplTest, CopyConstructionCarriesPropertiesOnly) {
  TestBag original("ClassA", {{"a", "1"}});
  original.setObjectPath("ClassA.a=\"1\"");

  const TestBag copy(original);

  EXPECT_EQ(copy.getClassName(), "");
  EXPECT_EQ(copy.getObjectPath(), "");
  EXPECT_EQ(PropertiesOf(copy), (Properties{{"a", "1"}}));
}

TEST(InstanceImplTest, SelfAssignmentChangesNothing) {
  TestBag bag("ClassA", {{"a", "1"}, {"b", "2"}});
  bag.setObjectPath("p");
  TestBag& alias = bag;

  bag = alias;

  EXPECT_EQ(bag.getClassName(), "ClassA");
  EXPECT_EQ(bag.getObjectPath(), "p");
  EXPECT_EQ(PropertiesOf(bag), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(InstanceImplTest, PrintWritesNameTwoTabsValueLinesThenAnEmptyLine) {
  TestBag bag("ClassA", {{"b", "two words"}, {"a", "1"}});
  bag.setObjectPath("never printed");
  {
    StdoutCapture out;
    bag.print();
    EXPECT_EQ(out.text(), "a\t\t1\nb\t\ttwo words\n\n");
  }
  TestBag empty("ClassA");
  StdoutCapture out;
  empty.print();
  EXPECT_EQ(out.text(), "\n");
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
