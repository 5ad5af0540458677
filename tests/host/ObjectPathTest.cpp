// Object paths: the exact toString text (host, namespace, sorted keys,
// escapes, every key type, nested references), keys, and classPathIsA.
#include <cstring>
#include <functional>
#include <limits>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

class ObjectPathTest : public HostTest {
 protected:
  void addString(CMPIObjectPath* target, const char* name, const char* text) {
    CMPIValue value;
    value.string = string(text);
    ASSERT_EQ(target->ft->addKey(target, name, &value, CMPI_string).rc, CMPI_RC_OK);
  }
  template <typename T>
  void add(CMPIObjectPath* target, const char* name, T number, CMPIType type) {
    CMPIValue value{};
    std::memcpy(&value, &number, sizeof number);
    ASSERT_EQ(target->ft->addKey(target, name, &value, type).rc, CMPI_RC_OK);
  }
};

TEST_F(ObjectPathTest, ToStringPrintsHostNamespaceAndKeysSortedByName) {
  CMPIObjectPath* keyed = path("Test_Keyed");
  ASSERT_EQ(keyed->ft->setHostname(keyed, "myhost").rc, CMPI_RC_OK);
  add<CMPIUint32>(keyed, "Number", 5, CMPI_uint32);
  addString(keyed, "Name", "a\"b\\c");
  add<CMPIBoolean>(keyed, "Flag", 1, CMPI_boolean);
  EXPECT_EQ(pathText(keyed), R"(//myhost/root/cimv2:Test_Keyed.Flag=TRUE,Name="a\"b\\c",Number=5)");
}

TEST_F(ObjectPathTest, HostAndNamespaceArePrintedOnlyWhenSet) {
  EXPECT_EQ(pathText(path("Test_Keyed", "")), "Test_Keyed");
  EXPECT_EQ(pathText(path("Test_Keyed", nullptr)), "Test_Keyed");
  EXPECT_EQ(pathText(path("Test_Keyed")), "root/cimv2:Test_Keyed");
  CMPIObjectPath* hostOnly = path("Test_Keyed", "");
  hostOnly->ft->setHostname(hostOnly, "h");
  EXPECT_EQ(pathText(hostOnly), "//h/Test_Keyed");
}

TEST_F(ObjectPathTest, KeysSortCaseInsensitivelyAndKeepTheirSpelling) {
  CMPIObjectPath* keyed = path("Any_Class", "");
  add<CMPIUint8>(keyed, "gamma", 3, CMPI_uint8);
  add<CMPIUint8>(keyed, "Delta", 4, CMPI_uint8);
  add<CMPIUint8>(keyed, "beta", 2, CMPI_uint8);
  add<CMPIUint8>(keyed, "Alpha", 1, CMPI_uint8);
  EXPECT_EQ(pathText(keyed), "Any_Class.Alpha=1,beta=2,Delta=4,gamma=3");
  // A key added again under another case replaces the value, keeps the first spelling.
  add<CMPIUint8>(keyed, "ALPHA", 9, CMPI_uint8);
  EXPECT_EQ(pathText(keyed), "Any_Class.Alpha=9,beta=2,Delta=4,gamma=3");
  EXPECT_EQ(keyed->ft->getKeyCount(keyed, nullptr), 4u);
}

TEST_F(ObjectPathTest, EveryKeyTypePrintsInItsOwnForm) {
  struct Case {
    const char* name;
    std::function<void(CMPIObjectPath*)> add;
    const char* text;
  };
  const Case cases[] = {
      {"sint8", [&](CMPIObjectPath* p) { add<CMPISint8>(p, "k", -5, CMPI_sint8); }, "k=-5"},
      {"sint64 min",
       [&](CMPIObjectPath* p) {
         add<CMPISint64>(p, "k", std::numeric_limits<CMPISint64>::min(), CMPI_sint64);
       },
       "k=-9223372036854775808"},
      {"uint64 max",
       [&](CMPIObjectPath* p) {
         add<CMPIUint64>(p, "k", std::numeric_limits<CMPIUint64>::max(), CMPI_uint64);
       },
       "k=18446744073709551615"},
      {"uint16", [&](CMPIObjectPath* p) { add<CMPIUint16>(p, "k", 65535, CMPI_uint16); },
       "k=65535"},
      {"real64", [&](CMPIObjectPath* p) { add<CMPIReal64>(p, "k", 2.5, CMPI_real64); }, "k=2.5"},
      {"real32", [&](CMPIObjectPath* p) { add<CMPIReal32>(p, "k", 0.1f, CMPI_real32); }, "k=0.1"},
      {"false", [&](CMPIObjectPath* p) { add<CMPIBoolean>(p, "k", 0, CMPI_boolean); }, "k=FALSE"},
      {"char16", [&](CMPIObjectPath* p) { add<CMPIChar16>(p, "k", 'x', CMPI_char16); }, "k=\"x\""},
      {"chars",
       [&](CMPIObjectPath* p) {
         p->ft->addKey(p, "k", reinterpret_cast<const CMPIValue*>("q\"q"), CMPI_chars);
       },
       R"(k="q\"q")"},
      {"datetime",
       [&](CMPIObjectPath* p) {
         CMPIValue value;
         value.dateTime =
             broker_->eft->newDateTimeFromChars(broker_, "20240102030405.000006+060", nullptr);
         p->ft->addKey(p, "k", &value, CMPI_dateTime);
       },
       R"(k="20240102030405.000006+060")"},
      {"string with tab and colon", [&](CMPIObjectPath* p) { addString(p, "k", "a\tb:/c"); },
       "k=\"a\tb:/c\""},
  };
  for (const Case& c : cases) {
    CMPIObjectPath* target = path("C", "");
    c.add(target);
    EXPECT_EQ(pathText(target), std::string("C.") + c.text) << c.name;
  }
}

TEST_F(ObjectPathTest, AReferenceKeyIsTheNestedPathsTextQuotedAndEscaped) {
  CMPIObjectPath* left = path("Test_Keyed");
  left->ft->setHostname(left, "h");
  addString(left, "Name", "a\"b");
  add<CMPIUint32>(left, "Number", 1, CMPI_uint32);
  CMPIObjectPath* link = path("Test_Link");
  CMPIValue value;
  value.ref = left;
  ASSERT_EQ(link->ft->addKey(link, "Left", &value, CMPI_ref).rc, CMPI_RC_OK);
  EXPECT_EQ(pathText(link),
            R"(root/cimv2:Test_Link.Left="//h/root/cimv2:Test_Keyed.Name=\"a\\\"b\",Number=1")");

  // The key holds a copy: changing or releasing the nested path later changes nothing.
  addString(left, "Name", "changed");
  left->ft->release(left);
  EXPECT_EQ(pathText(link),
            R"(root/cimv2:Test_Link.Left="//h/root/cimv2:Test_Keyed.Name=\"a\\\"b\",Number=1")");
}

TEST_F(ObjectPathTest, KeysReadBackWithTheirTypesAndKeyState) {
  CMPIObjectPath* keyed = path("Test_Keyed");
  addString(keyed, "Name", "n");
  add<CMPIUint32>(keyed, "Number", 42, CMPI_uint32);
  CMPIStatus rc;
  CMPIData number = keyed->ft->getKey(keyed, "NUMBER", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(number.type, CMPI_uint32);
  EXPECT_EQ(number.value.uint32, 42u);
  EXPECT_TRUE(number.state & CMPI_keyValue);

  CMPIString* name = nullptr;
  CMPIData first = keyed->ft->getKeyAt(keyed, 0, &name, &rc);
  EXPECT_EQ(Text(name), "Name");
  EXPECT_EQ(Text(first.value.string), "n");

  CMPIData missing = keyed->ft->getKey(keyed, "Flag", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(missing.type, CMPI_null);
  EXPECT_EQ(missing.state, CMPI_nullValue | CMPI_notFound);
  keyed->ft->getKeyAt(keyed, 2, &name, &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(name, nullptr);
}

TEST_F(ObjectPathTest, NewObjectPathAcceptsAnyClassAndSettersReplaceParts) {
  CMPIStatus rc;
  CMPIObjectPath* any = broker_->eft->newObjectPath(broker_, "no/such", "No_Such_Class", &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(pathText(any), "no/such:No_Such_Class");
  EXPECT_EQ(any->ft->setClassName(any, "Other").rc, CMPI_RC_OK);
  EXPECT_EQ(any->ft->setNameSpace(any, "root/x").rc, CMPI_RC_OK);
  EXPECT_EQ(Text(any->ft->getClassName(any, nullptr)), "Other");
  EXPECT_EQ(Text(any->ft->getNameSpace(any, nullptr)), "root/x");

  CMPIObjectPath* source = path("Test_Keyed", "root/y");
  source->ft->setHostname(source, "elsewhere");
  EXPECT_EQ(any->ft->setHostAndNameSpaceFromObjectPath(any, source).rc, CMPI_RC_OK);
  EXPECT_EQ(pathText(any), "//elsewhere/root/y:Other");

  EXPECT_EQ(any->ft->setClassName(any, nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(any->ft->setHostname(any, nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(broker_->eft->newObjectPath(broker_, "root/cimv2", nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  any->ft->getClassQualifier(any, "Key", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NOT_SUPPORTED);
}

TEST_F(ObjectPathTest, ClassPathIsAWalksSuperclassesCaseInsensitively) {
  struct Case {
    const char* nameSpace;
    const char* className;
    const char* type;
    bool isA;
  };
  const Case cases[] = {
      {"root/cimv2", "Test_KeyedChild", "Test_Keyed", true},
      {"root/cimv2", "Test_KeyedChild", "test_keyedchild", true},
      {"root/cimv2", "test_keyedchild", "TEST_KEYED", true},
      {"root/cimv2", "Test_AllTypes", "Test_Element", true},
      {"root/cimv2", "Test_Keyed", "Test_KeyedChild", false},
      {"root/cimv2", "Test_Keyed", "Test_Element", false},
      {"root/cimv2", "Test_SpecialLink", "Test_Link", true},
      {"", "Test_KeyedChild", "Test_Keyed", true},  // no namespace: the host's default
      {"root/other", "Test_KeyedChild", "Test_Keyed", false},
      {"root/cimv2", "Unknown_Class", "unknown_class", true},
      {"root/cimv2", "Unknown_Class", "Test_Keyed", false},
  };
  for (const Case& c : cases) {
    CMPIStatus rc;
    EXPECT_EQ(broker_->eft->classPathIsA(broker_, path(c.className, c.nameSpace), c.type, &rc) != 0,
              c.isA)
        << c.nameSpace << ":" << c.className << " isA " << c.type;
    EXPECT_EQ(rc.rc, CMPI_RC_OK);
  }
  CMPIStatus rc;
  EXPECT_EQ(broker_->eft->classPathIsA(broker_, path("Test_Keyed"), nullptr, &rc), 0);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(broker_->eft->classPathIsA(broker_, nullptr, "Test_Keyed", &rc), 0);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace cmpihost::testing
