// Object paths: the exact toString text (host, namespace, keys in the order added,
// escapes, every key type, nested references), keys, and classPathIsA.
#include <cstring>
#include <limits>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

template <typename T>
CMPIValue ValueOf(T number) {
  CMPIValue value{};
  std::memcpy(&value, &number, sizeof number);
  return value;
}

class ObjectPathTest : public HostTest {
 protected:
  void addString(CMPIObjectPath* target, const char* name, const char* text) {
    CMPIValue value;
    value.string = string(text);
    ASSERT_EQ(target->ft->addKey(target, name, &value, CMPI_string).rc, CMPI_RC_OK);
  }
  void addUint8(CMPIObjectPath* target, const char* name, CMPIUint8 number) {
    const CMPIValue value = ValueOf(number);
    ASSERT_EQ(target->ft->addKey(target, name, &value, CMPI_uint8).rc, CMPI_RC_OK);
  }
};

// Host, namespace and escapes in full paths are pinned by the instance and
// path text tests; these are the cases they do not reach.
TEST_F(ObjectPathTest, HostAndNamespaceShowWhenSetAndKeysKeepTheOrderAdded) {
  EXPECT_EQ(pathText(path("Test_Keyed", "")), "Test_Keyed");
  EXPECT_EQ(pathText(path("Test_Keyed", nullptr)), "Test_Keyed");
  CMPIObjectPath* keyed = path("Any_Class", "");
  keyed->ft->setHostname(keyed, "h");
  addUint8(keyed, "gamma", 3);
  addUint8(keyed, "Delta", 4);
  addUint8(keyed, "beta", 2);
  addUint8(keyed, "Alpha", 1);
  EXPECT_EQ(pathText(keyed), "//h/Any_Class.gamma=3,Delta=4,beta=2,Alpha=1");
  // A key added again under another case replaces the value, keeps the first
  // spelling and place.
  addUint8(keyed, "ALPHA", 9);
  EXPECT_EQ(pathText(keyed), "//h/Any_Class.gamma=3,Delta=4,beta=2,Alpha=9");
  EXPECT_EQ(keyed->ft->getKeyCount(keyed, nullptr), 4u);
}

TEST_F(ObjectPathTest, EveryKeyTypePrintsInItsOwnForm) {
  CMPIValue text;
  text.string = string("a\tb:/c");
  CMPIValue dateTime;
  dateTime.dateTime =
      broker_->eft->newDateTimeFromChars(broker_, "20240102030405.000006+060", nullptr);
  const struct {
    CMPIType type;
    CMPIValue value;
    const char* text;
  } cases[] = {
      {CMPI_sint8, ValueOf<CMPISint8>(-5), "-5"},
      {CMPI_sint64, ValueOf(std::numeric_limits<CMPISint64>::min()), "-9223372036854775808"},
      {CMPI_uint64, ValueOf(std::numeric_limits<CMPIUint64>::max()), "18446744073709551615"},
      {CMPI_uint16, ValueOf<CMPIUint16>(65535), "65535"},
      {CMPI_real64, ValueOf<CMPIReal64>(2.5), "2.5"},
      {CMPI_real32, ValueOf<CMPIReal32>(0.1f), "0.1"},
      {CMPI_boolean, ValueOf<CMPIBoolean>(0), "FALSE"},
      {CMPI_char16, ValueOf<CMPIChar16>('x'), "\"x\""},
      {CMPI_string, text, "\"a\tb:/c\""},
      {CMPI_dateTime, dateTime, R"("20240102030405.000006+060")"},
  };
  for (const auto& c : cases) {
    CMPIObjectPath* target = path("C", "");
    target->ft->addKey(target, "k", &c.value, c.type);
    EXPECT_EQ(pathText(target), std::string("C.k=") + c.text) << "type " << c.type;
  }
  // CMPI_chars: the value pointer is the C string itself.
  CMPIObjectPath* chars = path("C", "");
  chars->ft->addKey(chars, "k", reinterpret_cast<const CMPIValue*>("q\"q"), CMPI_chars);
  EXPECT_EQ(pathText(chars), R"(C.k="q\"q")");
}

TEST_F(ObjectPathTest, AReferenceKeyIsTheNestedPathsTextQuotedAndEscaped) {
  CMPIObjectPath* left = path("Test_Keyed");
  left->ft->setHostname(left, "h");
  addString(left, "Name", "a\"b");
  addUint8(left, "Number", 1);
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
  addUint8(keyed, "Number", 42);
  CMPIStatus rc;
  CMPIData number = keyed->ft->getKey(keyed, "NUMBER", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(number.type, CMPI_uint8);
  EXPECT_EQ(number.value.uint8, 42u);
  EXPECT_TRUE(number.state & CMPI_keyValue);

  CMPIData missing = keyed->ft->getKey(keyed, "Flag", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(missing.type, CMPI_null);
  EXPECT_EQ(missing.state, CMPI_nullValue | CMPI_notFound);
  CMPIString* name = nullptr;
  keyed->ft->getKeyAt(keyed, 2, &name, &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(name, nullptr);
}

TEST_F(ObjectPathTest, NewObjectPathAcceptsAnyClassButNeedsOne) {
  CMPIStatus rc;
  CMPIObjectPath* any = broker_->eft->newObjectPath(broker_, "no/such", "No_Such_Class", &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(pathText(any), "no/such:No_Such_Class");
  EXPECT_EQ(any->ft->setClassName(any, nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(broker_->eft->newObjectPath(broker_, "root/cimv2", nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
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
      {"root/cimv2", "test_keyedchild", "TEST_KEYED", true},
      {"root/cimv2", "Test_AllTypes", "Test_Element", true},
      {"root/cimv2", "Test_Keyed", "Test_KeyedChild", false},
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
