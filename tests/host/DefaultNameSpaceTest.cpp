// The host's default namespace: where requests, path texts and call scopes
// without a namespace of their own go, and what it refuses to be.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "cmpihost/Host.h"

namespace cmpihost::testing {
namespace {

class DefaultNameSpaceTest : public ::testing::Test {
 protected:
  DefaultNameSpaceTest() {
    host_.loadMof(HOST_TEST_MOF, "root/cimv2");
    host_.loadMof(HOST_TEST_MOF, "root/other");
  }

  Host host_;
};

TEST_F(DefaultNameSpaceTest, RequestsAndPathTextsWithoutANameSpaceGoThere) {
  EXPECT_EQ(host_.defaultNameSpace(), "root/cimv2");
  host_.setDefaultNameSpace("root/other");
  EXPECT_EQ(host_.defaultNameSpace(), "root/other");

  const Reply got = host_.getInstance(R"(Test_Static.Name="one")");
  ASSERT_EQ(got.status.rc, CMPI_RC_OK) << got.status.message;
  EXPECT_EQ(got.instances().at(0).path, R"(root/other:Test_Static.Name="one")");
  // An explicit namespace still wins.
  EXPECT_EQ(host_.getInstance(R"(root/cimv2:Test_Static.Name="one")").instances().at(0).path,
            R"(root/cimv2:Test_Static.Name="one")");
  EXPECT_EQ(host_.enumerateInstanceNames("", "Test_Static").paths(),
            (std::vector<std::string>{R"(root/other:Test_Static.Name="one")",
                                      R"(root/other:Test_Static.Name="two")",
                                      R"(root/other:Test_StaticChild.Name="child")"}));

  // A class only the default namespace knows is found there.
  host_.loadMofText("class Test_OnlyOther { [Key] string Id; };", "only.mof", "root/other");
  EXPECT_EQ(host_.getInstance(R"(Test_OnlyOther.Id="x")").status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(host_.getInstance(R"(root/cimv2:Test_OnlyOther.Id="x")").status.rc,
            CMPI_RC_ERR_INVALID_CLASS);
}

TEST_F(DefaultNameSpaceTest, CallScopesParsePathsAndMakeContextsThere) {
  host_.setDefaultNameSpace("root/other");
  CallScope scope(host_);
  std::string problem;
  const CMPIObjectPath* path =
      scope.objectPath(R"(Test_Keyed.Name="a",Number=1,Flag=TRUE)", &problem);
  ASSERT_NE(path, nullptr) << problem;
  const CMPIString* text = path->ft->toString(path, nullptr);
  EXPECT_STREQ(text->ft->getCharPtr(text, nullptr),
               R"(root/other:Test_Keyed.Flag=TRUE,Name="a",Number=1)");

  const CMPIData entry = scope.context()->ft->getEntry(scope.context(), CMPIInitNameSpace, nullptr);
  ASSERT_EQ(entry.type, CMPI_string);
  EXPECT_STREQ(entry.value.string->ft->getCharPtr(entry.value.string, nullptr), "root/other");
}

TEST_F(DefaultNameSpaceTest, MalformedNameSpacesAreRefusedAndChangeNothing) {
  for (const std::string bad : {"", "root cimv2", "root:cimv2", "root/cimv2\n"}) {
    try {
      host_.setDefaultNameSpace(bad);
      ADD_FAILURE() << "accepted '" << bad << "'";
    } catch (const HostError& error) {
      EXPECT_EQ(std::string(error.what()),
                "'" + bad + "' is not a namespace (letters, digits, '_' and '/', not empty)");
    }
  }
  EXPECT_EQ(host_.defaultNameSpace(), "root/cimv2");
}

}  // namespace
}  // namespace cmpihost::testing
