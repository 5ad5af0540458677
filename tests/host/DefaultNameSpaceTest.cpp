// The host's default namespace: where requests, path texts and call scopes
// without a namespace of their own go, and what it refuses to be.
#include "HostTestSupport.h"

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

TEST_F(DefaultNameSpaceTest, RequestsPathTextsAndCallScopesWithoutANameSpaceGoThere) {
  EXPECT_EQ(host_.defaultNameSpace(), "root/cimv2");
  host_.setDefaultNameSpace("root/other");
  EXPECT_EQ(host_.defaultNameSpace(), "root/other");

  const Reply got = host_.getInstance(R"(Test_Static.Name="one")");
  ASSERT_EQ(got.status.rc, CMPI_RC_OK) << got.status.message;
  EXPECT_EQ(got.instances().at(0).path, R"(root/other:Test_Static.Name="one")");
  // An explicit namespace still wins.
  EXPECT_EQ(host_.getInstance(R"(root/cimv2:Test_Static.Name="one")").instances().at(0).path,
            R"(root/cimv2:Test_Static.Name="one")");
  EXPECT_EQ(host_.enumerateInstanceNames("", "Test_StaticChild").paths(),
            (std::vector<std::string>{R"(root/other:Test_StaticChild.Name="child")"}));

  // A class only the default namespace knows is found there.
  host_.loadMofText("class Test_OnlyOther { [Key] string Id; };", "only.mof", "root/other");
  EXPECT_EQ(host_.getInstance(R"(Test_OnlyOther.Id="x")").status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(host_.getInstance(R"(root/cimv2:Test_OnlyOther.Id="x")").status.rc,
            CMPI_RC_ERR_INVALID_CLASS);

  CallScope scope(host_);
  const CMPIObjectPath* path = scope.objectPath(R"(Test_Keyed.Name="a")");
  ASSERT_NE(path, nullptr);
  EXPECT_EQ(Text(path->ft->toString(path, nullptr)), R"(root/other:Test_Keyed.Name="a")");
  const CMPIData entry = scope.context()->ft->getEntry(scope.context(), CMPIInitNameSpace, nullptr);
  ASSERT_EQ(entry.type, CMPI_string);
  EXPECT_EQ(Text(entry.value.string), "root/other");
}

TEST_F(DefaultNameSpaceTest, MalformedNameSpacesAreRefusedAndChangeNothing) {
  for (const std::string bad : {"", "root cimv2", "root:cimv2", "root/cimv2\n"}) {
    EXPECT_EQ(HostErrorOf([&] { host_.setDefaultNameSpace(bad); }),
              "'" + bad + "' is not a namespace (letters, digits, '_' and '/', not empty)");
  }
  EXPECT_EQ(host_.defaultNameSpace(), "root/cimv2");
}

}  // namespace
}  // namespace cmpihost::testing
