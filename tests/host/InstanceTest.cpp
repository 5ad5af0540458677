// Instances: created from the class declaration, typed properties, the
// answers for declared-unset and undeclared names, setProperty's refusals,
// copies, clones and the object path built from Key properties.
#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

class InstanceTest : public HostTest {
 protected:
  static CMPIStatus setUint32(CMPIInstance* target, const char* name, CMPIUint32 number) {
    CMPIValue value;
    value.uint32 = number;
    return target->ft->setProperty(target, name, &value, CMPI_uint32);
  }
};

TEST_F(InstanceTest, NewInstanceHasEveryDeclaredPropertyWithItsTypeAndDefault) {
  CMPIStatus rc;
  CMPIInstance* all = broker_->eft->newInstance(broker_, path("Test_AllTypes"), &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  ASSERT_NE(all, nullptr);
  struct Expected {
    const char* name;
    CMPIType type;
    bool null;
  };
  const Expected expected[] = {
      {"InstanceID", CMPI_string, true},  // inherited ones first
      {"Caption", CMPI_string, true},    {"B", CMPI_boolean, true},   {"S", CMPI_string, false},
      {"C", CMPI_char16, true},          {"U8", CMPI_uint8, true},    {"S8", CMPI_sint8, true},
      {"U16", CMPI_uint16, false},       {"S16", CMPI_sint16, true},  {"U32", CMPI_uint32, true},
      {"S32", CMPI_sint32, false},       {"U64", CMPI_uint64, true},  {"S64", CMPI_sint64, true},
      {"R32", CMPI_real32, true},        {"R64", CMPI_real64, true},  {"DT", CMPI_dateTime, true},
      {"U16A", CMPI_uint16A, true},      {"SA", CMPI_stringA, false}, {"DTA", CMPI_dateTimeA, true},
  };
  ASSERT_EQ(all->ft->getPropertyCount(all, nullptr), std::size(expected));
  for (CMPICount i = 0; i < std::size(expected); ++i) {
    CMPIString* name = nullptr;
    const CMPIData data = all->ft->getPropertyAt(all, i, &name, &rc);
    EXPECT_EQ(rc.rc, CMPI_RC_OK);
    EXPECT_EQ(Text(name), expected[i].name);
    EXPECT_EQ(data.type, expected[i].type) << expected[i].name;
    EXPECT_EQ((data.state & CMPI_nullValue) != 0, expected[i].null) << expected[i].name;
  }
  EXPECT_EQ(Text(all->ft->getProperty(all, "s", nullptr).value.string), "default text");
  EXPECT_EQ(all->ft->getProperty(all, "U16", nullptr).value.uint16, 7);
  EXPECT_EQ(all->ft->getProperty(all, "S32", nullptr).value.sint32, -5);
  const CMPIArray* names = all->ft->getProperty(all, "SA", nullptr).value.array;
  ASSERT_EQ(names->ft->getSize(names, nullptr), 2u);
  EXPECT_EQ(Text(names->ft->getElementAt(names, 1, nullptr).value.string), "b");

  // An unknown class, or one of another namespace: no instance.
  EXPECT_EQ(broker_->eft->newInstance(broker_, path("No_Such_Class"), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_CLASS);
  EXPECT_NE(Text(rc.msg).find("No_Such_Class"), std::string::npos);
  EXPECT_EQ(broker_->eft->newInstance(broker_, path("Test_Keyed", "root/other"), &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_CLASS);
}

TEST_F(InstanceTest, GetPropertyAnswersDeclaredUnsetAndUndeclaredDifferently) {
  CMPIInstance* keyed = instance("Test_Keyed");
  CMPIStatus rc;
  const CMPIData unset = keyed->ft->getProperty(keyed, "Number", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(unset.type, CMPI_uint32);
  EXPECT_EQ(unset.state, CMPI_nullValue);

  const CMPIData undeclared = keyed->ft->getProperty(keyed, "NoSuchProperty", &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(undeclared.type, CMPI_null);
  EXPECT_EQ(undeclared.state, CMPI_nullValue | CMPI_notFound);

  keyed->ft->getPropertyAt(keyed, 99, nullptr, &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
}

TEST_F(InstanceTest, SetPropertyRefusesUndeclaredNamesAndOtherTypes) {
  CMPIInstance* all = instance("Test_AllTypes");
  EXPECT_EQ(setString(all, "Nope", "x").rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(setUint32(all, "U16", 1).rc, CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(setString(all, "U16", "1").rc, CMPI_RC_ERR_TYPE_MISMATCH);
  CMPIValue array;
  array.array = broker_->eft->newArray(broker_, 1, CMPI_uint32, nullptr);
  EXPECT_EQ(all->ft->setProperty(all, "U16A", &array, CMPI_uint32A).rc, CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(all->ft->setProperty(all, "U16A", &array, CMPI_uint16A).rc,
            CMPI_RC_ERR_TYPE_MISMATCH);  // the array itself holds uint32
  EXPECT_EQ(all->ft->setProperty(all, nullptr, &array, CMPI_uint16A).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  // The refused calls changed nothing.
  EXPECT_EQ(all->ft->getProperty(all, "U16", nullptr).value.uint16, 7);

  // CMPI_chars: the value pointer is the C string itself.
  EXPECT_EQ(
      all->ft->setProperty(all, "S", reinterpret_cast<const CMPIValue*>("from chars"), CMPI_chars)
          .rc,
      CMPI_RC_OK);
  const CMPIData s = all->ft->getProperty(all, "S", nullptr);
  EXPECT_EQ(s.type, CMPI_string);
  EXPECT_EQ(Text(s.value.string), "from chars");

  // A null pointer value sets the property null, keeping its type.
  for (const auto& [name, type] : {std::pair{"S", CMPI_string}, std::pair{"DT", CMPI_dateTime},
                                   std::pair{"SA", CMPI_stringA}}) {
    CMPIValue value{};  // string, dateTime and array pointers all null
    EXPECT_EQ(all->ft->setProperty(all, name, &value, type).rc, CMPI_RC_OK) << name;
    const CMPIData data = all->ft->getProperty(all, name, nullptr);
    EXPECT_EQ(data.state, CMPI_nullValue) << name;
    EXPECT_EQ(data.type, type) << name;
  }
  EXPECT_EQ(all->ft->setProperty(all, "U16", nullptr, CMPI_uint16).rc, CMPI_RC_OK);
  EXPECT_EQ(all->ft->getProperty(all, "U16", nullptr).state, CMPI_nullValue);
}

TEST_F(InstanceTest, SetPropertyCopiesSoReleasedArgumentsDoNotMatter) {
  CMPIInstance* all = instance("Test_AllTypes");
  CMPIValue text;
  text.string = string("kept");
  all->ft->setProperty(all, "S", &text, CMPI_string);
  text.string->ft->release(text.string);

  CMPIValue array;
  array.array = broker_->eft->newArray(broker_, 2, CMPI_uint16A, nullptr);
  CMPIValue element;
  element.uint16 = 10;
  array.array->ft->setElementAt(array.array, 0, &element, CMPI_uint16);
  all->ft->setProperty(all, "U16A", &array, CMPI_uint16A);
  element.uint16 = 99;
  array.array->ft->setElementAt(array.array, 0, &element, CMPI_uint16);
  array.array->ft->release(array.array);

  EXPECT_EQ(Text(all->ft->getProperty(all, "S", nullptr).value.string), "kept");
  const CMPIArray* stored = all->ft->getProperty(all, "U16A", nullptr).value.array;
  ASSERT_EQ(stored->ft->getSize(stored, nullptr), 2u);
  EXPECT_EQ(stored->ft->getElementAt(stored, 0, nullptr).value.uint16, 10);
  EXPECT_EQ(stored->ft->getElementAt(stored, 1, nullptr).state, CMPI_nullValue);
}

TEST_F(InstanceTest, TheObjectPathIsTheCreationPathsHostAndNamespaceWithCurrentKeys) {
  CMPIObjectPath* creation = path("test_keyed");  // any case; the class keeps its spelling
  creation->ft->setHostname(creation, "somehost");
  CMPIValue name;
  name.string = string("from path");
  creation->ft->addKey(creation, "Name", &name, CMPI_string);
  CMPIInstance* keyed = broker_->eft->newInstance(broker_, creation, nullptr);
  ASSERT_NE(keyed, nullptr);
  EXPECT_EQ(Text(keyed->ft->getProperty(keyed, "Name", nullptr).value.string), "from path");

  setString(keyed, "Name", "k\"1");
  setString(keyed, "Note", "not a key");
  setUint32(keyed, "Number", 3);
  CMPIValue flag;
  flag.boolean = 0;
  keyed->ft->setProperty(keyed, "Flag", &flag, CMPI_boolean);
  EXPECT_EQ(pathText(keyed->ft->getObjectPath(keyed, nullptr)),
            R"(//somehost/root/cimv2:Test_Keyed.Name="k\"1",Number=3,Flag=FALSE)");

  // Declaration order, inherited keys first, whatever order they were set
  // in; an override keeps the inherited key's place.
  host_.loadMofText(R"(
    class Test_MoreKeys : Test_Keyed { [Key] string Alpha; [Key, Override("Number")] uint32 Number; };
  )",
                    "more.mof");
  CMPIInstance* more = instance("Test_MoreKeys");
  CMPIValue number;
  number.uint32 = 4;
  more->ft->setProperty(more, "Number", &number, CMPI_uint32);
  setString(more, "Alpha", "a");
  more->ft->setProperty(more, "Flag", &flag, CMPI_boolean);
  setString(more, "Name", "n");
  EXPECT_EQ(pathText(more->ft->getObjectPath(more, nullptr)),
            R"(root/cimv2:Test_MoreKeys.Name="n",Number=4,Flag=FALSE,Alpha="a")");
}

TEST_F(InstanceTest, CloneIsADeepCopyOwnedByTheCaller) {
  CMPIInstance* keyed = instance("Test_Keyed");
  setString(keyed, "Name", "before");
  const std::size_t live = scope_->liveObjects();
  CMPIStatus rc;
  CMPIInstance* copy = keyed->ft->clone(keyed, &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(scope_->liveObjects(), live);  // not the scope's
  setString(keyed, "Name", "after");
  keyed->ft->release(keyed);
  EXPECT_EQ(Text(copy->ft->getProperty(copy, "Name", nullptr).value.string), "before");
  EXPECT_EQ(copy->ft->release(copy).rc, CMPI_RC_OK);
}

TEST_F(InstanceTest, PropertyFilterIgnoresSetsOfOtherNonKeyProperties) {
  CMPIInstance* keyed = instance("Test_Keyed");
  const char* kept[] = {"Name", nullptr};
  ASSERT_EQ(keyed->ft->setPropertyFilter(keyed, kept, nullptr).rc, CMPI_RC_OK);
  EXPECT_EQ(setString(keyed, "Note", "dropped").rc, CMPI_RC_OK);
  EXPECT_EQ(setUint32(keyed, "Number", 8).rc, CMPI_RC_OK);  // a key is always kept
  EXPECT_EQ(keyed->ft->getProperty(keyed, "Note", nullptr).state, CMPI_nullValue);
  EXPECT_EQ(keyed->ft->getProperty(keyed, "Number", nullptr).value.uint32, 8u);
}

TEST_F(InstanceTest, NewArrayTakesTheElementTypeWithOrWithoutTheArrayFlag) {
  for (const CMPIType type : {CMPI_uint16, CMPI_uint16A}) {
    CMPIStatus rc;
    CMPIArray* array = broker_->eft->newArray(broker_, 3, type, &rc);
    ASSERT_EQ(rc.rc, CMPI_RC_OK);
    EXPECT_EQ(array->ft->getSimpleType(array, nullptr), CMPI_uint16);
    const CMPIData element = array->ft->getElementAt(array, 2, &rc);
    EXPECT_EQ(element.type, CMPI_uint16);
    EXPECT_EQ(element.state, CMPI_nullValue);
    CMPIValue value;
    value.uint32 = 1;
    EXPECT_EQ(array->ft->setElementAt(array, 0, &value, CMPI_uint32).rc, CMPI_RC_ERR_TYPE_MISMATCH);
    EXPECT_EQ(array->ft->setElementAt(array, 3, &value, CMPI_uint16).rc,
              CMPI_RC_ERR_NO_SUCH_PROPERTY);
  }
  CMPIArray* names = broker_->eft->newArray(broker_, 1, CMPI_chars, nullptr);
  EXPECT_EQ(names->ft->getSimpleType(names, nullptr), CMPI_string);
}

}  // namespace
}  // namespace cmpihost::testing
