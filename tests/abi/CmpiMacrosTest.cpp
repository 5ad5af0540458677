// What the convenience macros and MI stubs of cmpi/ do, checked against a
// minimal fake broker built here (the headers are under test, not the host).
// The stub tests load SampleProvider built as C and as C++ and look at what
// each build's factories produced.
#include <cmpidt.h>
#include <cmpift.h>
#include <cmpimacs.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using ::testing::ElementsAre;

// A CMPIString whose handle and getCharPtr give different texts, so a test
// sees which of the two a macro read. Standard-layout, so the CMPIString*
// handed out converts back to it.
struct FakeString {
  CMPIString object;
  const char* viaTable;
  int tableCalls;
};
static_assert(std::is_standard_layout_v<FakeString>);

FakeString* Owner(const CMPIString* s) {
  return reinterpret_cast<FakeString*>(const_cast<CMPIString*>(s));
}

const char* FakeGetCharPtr(const CMPIString* s, CMPIStatus* rc) {
  ++Owner(s)->tableCalls;
  if (rc != nullptr) {
    CMSetStatus(rc, CMPI_RC_OK);
  }
  return Owner(s)->viaTable;
}

CMPIStringFT fakeStringFunctions = {CMPIVersion200, nullptr, nullptr, FakeGetCharPtr};

// A broker with brokerName/Version/Capabilities, newString and getMessage;
// every other entry is null, because the macros under test never reach them.
class FakeBroker {
 public:
  FakeBroker() {
    bft_.brokerCapabilities = CMPI_MB_Class_1;
    bft_.brokerVersion = CMPIVersion200;
    bft_.brokerName = "fake-broker";
    eft_.ftVersion = CMPIVersion200;
    eft_.newString = NewString;
    eft_.getMessage = GetMessage;
    broker_.hdl = this;
    broker_.bft = &bft_;
    broker_.eft = &eft_;
  }
  FakeBroker(const FakeBroker&) = delete;
  FakeBroker& operator=(const FakeBroker&) = delete;

  const CMPIBroker* get() const { return &broker_; }
  CMPIString* makeString(const std::string& handle, const std::string& table) {
    char* handleText = texts_.emplace_back(handle).data();
    const char* tableText = texts_.emplace_back(table).c_str();
    strings_.push_back(FakeString{{handleText, &fakeStringFunctions}, tableText, 0});
    return &strings_.back().object;
  }

 private:
  static CMPIString* NewString(const CMPIBroker* mb, const char* text, CMPIStatus* rc) {
    if (rc != nullptr) {
      CMSetStatus(rc, CMPI_RC_OK);
    }
    return static_cast<FakeBroker*>(mb->hdl)->makeString(text, text);
  }

  // Formats the inserts as "type=value", reading each value at the width the
  // CMFmt* macros promise.
  static CMPIString* GetMessage(const CMPIBroker* mb, const char* id, const char* def,
                                CMPIStatus* rc, CMPICount count, ...) {
    std::ostringstream text;
    text << id << "|" << def << "|" << count;
    va_list ap;
    va_start(ap, count);
    for (CMPICount n = 0; n < count; ++n) {
      const int type = va_arg(ap, int);
      switch (type) {
        case CMPI_sint32:
          text << " sint32=" << va_arg(ap, long);
          break;
        case CMPI_uint32:
          text << " uint32=" << va_arg(ap, unsigned long);
          break;
        case CMPI_sint64:
          text << " sint64=" << va_arg(ap, long long);
          break;
        case CMPI_uint64:
          text << " uint64=" << va_arg(ap, unsigned long long);
          break;
        case CMPI_real64:
          text << " real64=" << va_arg(ap, double);
          break;
        case CMPI_boolean:
          text << " boolean=" << va_arg(ap, int);
          break;
        case CMPI_chars:
          text << " chars=" << va_arg(ap, const char*);
          break;
        case CMPI_string:
          text << " string=" << CMGetCharPtr(va_arg(ap, CMPIString*));
          break;
        default:
          text << " unknown-type=" << type;
          n = count;
      }
    }
    va_end(ap);
    return NewString(mb, text.str().c_str(), rc);
  }

  CMPIBroker broker_{};
  CMPIBrokerFT bft_{};
  CMPIBrokerEncFT eft_{};
  std::deque<std::string> texts_;
  std::deque<FakeString> strings_;
};

// A result that records what is delivered to it.
class FakeResult {
 public:
  FakeResult() {
    functions_.ftVersion = CMPIVersion200;
    functions_.returnData = ReturnData;
    functions_.returnDone = ReturnDone;
    object_.hdl = this;
    object_.ft = &functions_;
  }
  FakeResult(const FakeResult&) = delete;
  FakeResult& operator=(const FakeResult&) = delete;

  const CMPIResult* get() const { return &object_; }
  const std::vector<std::string>& calls() const { return calls_; }

 private:
  static CMPIStatus ReturnData(const CMPIResult* r, const CMPIValue* value, const CMPIType type) {
    static_cast<FakeResult*>(r->hdl)->calls_.push_back("data type=" + std::to_string(type) +
                                                       " uint32=" + std::to_string(value->uint32));
    CMReturn(CMPI_RC_OK);
  }

  static CMPIStatus ReturnDone(const CMPIResult* r) {
    static_cast<FakeResult*>(r->hdl)->calls_.emplace_back("done");
    CMReturn(CMPI_RC_OK);
  }

  CMPIResult object_{};
  CMPIResultFT functions_{};
  std::vector<std::string> calls_;
};

// "rc=<code> <message>" of a status, with "-" for no message.
std::string Describe(const CMPIStatus& status) {
  return "rc=" + std::to_string(status.rc) + " " +
         (status.msg == nullptr ? std::string("-") : std::string(CMGetCharPtr(status.msg)));
}

// ---- Status, value, string, message and broker macros -------------------------

// The statement macros must work as unbraced if/else branches.
// NOLINTBEGIN(readability-braces-around-statements)
CMPIStatus ReturnByBranch(bool ok) {
  if (ok)
    CMReturn(CMPI_RC_OK);
  else
    CMReturn(CMPI_RC_ERR_NOT_FOUND);
}
// NOLINTEND(readability-braces-around-statements)

CMPIStatus ReturnCodeFromInt(int code) {
  CMReturn(code);
}

CMPIStatus ReturnString(CMPIString* message) {
  CMReturnWithString(CMPI_RC_ERR_FAILED, message);
}

CMPIStatus ReturnChars(const CMPIBroker* broker, const char* message) {
  CMReturnWithChars(broker, CMPI_RC_ERR_ACCESS_DENIED, message);
}

TEST(CmpiStatusMacros, ReturnAndSetHelpersCarryTheCodeAndMessage) {
  FakeBroker broker;
  CMPIString* given = broker.makeString("given", "given");

  EXPECT_EQ(Describe(ReturnByBranch(true)), "rc=0 -");
  EXPECT_EQ(Describe(ReturnByBranch(false)), "rc=6 -");
  EXPECT_EQ(Describe(ReturnCodeFromInt(CMPI_RC_NEVER_UNLOAD)), "rc=51 -");
  const CMPIStatus withString = ReturnString(given);
  EXPECT_EQ(withString.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(withString.msg, given);
  EXPECT_EQ(Describe(ReturnChars(broker.get(), "denied: Name")), "rc=2 denied: Name");

  CMPIStatus status = {CMPI_RC_ERR_FAILED, broker.makeString("stale", "stale")};
  CMSetStatus(&status, CMPI_RC_OK);
  EXPECT_EQ(Describe(status), "rc=0 -");
  CMSetStatusWithString(&status, CMPI_RC_ERR_TYPE_MISMATCH, given);
  EXPECT_EQ(status.rc, CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(status.msg, given);
  // NOLINTBEGIN(readability-braces-around-statements)
  if (status.rc != CMPI_RC_OK)
    CMSetStatusWithChars(broker.get(), &status, CMPI_RC_ERR_INVALID_CLASS, "no class CIM_X");
  else
    CMSetStatus(&status, CMPI_RC_OK);
  // NOLINTEND(readability-braces-around-statements)
  EXPECT_EQ(Describe(status), "rc=5 no class CIM_X");
}

TEST(CmpiValueMacros, TestTheStateAndTypeBitsAndNullObjects) {
  struct Case {
    CMPIType type;
    CMPIValueState state;
    bool isNull, isKey, isArray;
  };
  const Case cases[] = {
      {CMPI_uint32, CMPI_goodValue, false, false, false},
      {CMPI_uint32, CMPI_nullValue, true, false, false},
      {CMPI_string, CMPI_keyValue, false, true, false},
      {CMPI_stringA, CMPI_nullValue | CMPI_notFound, true, false, true},
      {CMPI_refA, CMPI_keyValue | CMPI_nullValue, true, true, true},
      {CMPI_null, CMPI_badValue, false, false, false},
  };
  for (const Case& c : cases) {
    CMPIData data{};
    data.type = c.type;
    data.state = c.state;
    SCOPED_TRACE("type " + std::to_string(c.type) + " state " + std::to_string(c.state));
    EXPECT_EQ(CMIsNullValue(data) != 0, c.isNull);
    EXPECT_EQ(CMIsKeyValue(data) != 0, c.isKey);
    EXPECT_EQ(CMIsArray(data) != 0, c.isArray);
  }

  FakeBroker broker;
  CMPIString* live = broker.makeString("text", "text");
  CMPIString noHandle{};
  CMPIString* withoutHandle = &noHandle;
  CMPIString* none = nullptr;
  EXPECT_TRUE(CMIsNullObject(none));
  EXPECT_TRUE(CMIsNullObject(withoutHandle));
  EXPECT_FALSE(CMIsNullObject(live));
}

TEST(CmpiStringMacros, GetCharPtrReadsTheHandleWithoutCallingTheTable) {
  FakeBroker broker;
  CMPIString* s = broker.makeString("from handle", "from table");

  EXPECT_STREQ(CMGetCharPtr(s), "from handle");
  EXPECT_EQ(Owner(s)->tableCalls, 0);

  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  EXPECT_STREQ(CMGetCharsPtr(s, &rc), "from table");
  EXPECT_EQ(Owner(s)->tableCalls, 1);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
}

TEST(CmpiBrokerMacros, MessagesPassTheCountThenTypedValuesAndBrokerFieldsRead) {
  FakeBroker broker;
  CMPIString* insert = broker.makeString("xyz", "unused");
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};

  CMPIString* none = CMGetMessage(broker.get(), "MSG0", "plain", &rc, CMFmtArgs0());
  EXPECT_STREQ(CMGetCharPtr(none), "MSG0|plain|0");
  EXPECT_EQ(rc.rc, CMPI_RC_OK);

  CMPIString* all = CMGetMessage(
      broker.get(), "MSG8", "$0..$7", nullptr,
      CMFmtArgs8(CMFmtSint(-5), CMFmtUint(7u), CMFmtSint64(-(1LL << 40)), CMFmtUint64(1ULL << 40),
                 CMFmtReal(2.5), CMFmtBoolean(1), CMFmtChars("abc"), CMFmtString(insert)));
  EXPECT_STREQ(CMGetCharPtr(all),
               "MSG8|$0..$7|8 sint32=-5 uint32=7 sint64=-1099511627776 uint64=1099511627776 "
               "real64=2.5 boolean=1 chars=abc string=xyz");

  EXPECT_STREQ(CBBrokerName(broker.get()), "fake-broker");
  EXPECT_EQ(CBBrokerVersion(broker.get()), 200u);
  EXPECT_EQ(CBGetClassification(broker.get()), static_cast<unsigned>(CMPI_MB_Class_1));
}

// ---- MI stubs, in the C and the C++ build of SampleProvider -------------------------

template <typename MI>
using Factory = MI*(const CMPIBroker*, const CMPIContext*, CMPIStatus*);

// Which build of SampleProvider a stub test loads.
enum class Build { kC, kCxx };

const char* PathOf(Build build) {
  return build == Build::kC ? SAMPLE_PROVIDER_C : SAMPLE_PROVIDER_CXX;
}

class CmpiMiStubs : public ::testing::TestWithParam<Build> {
 protected:
  void SetUp() override {
    ASSERT_NE(module_, nullptr) << PathOf(GetParam()) << ": " << dlerror();
    brokerOf_ = symbol<const CMPIBroker*()>("SampleProvider_Broker");
    hookRuns_ = symbol<int()>("SampleProvider_HookRuns");
    ASSERT_NE(brokerOf_, nullptr);
    ASSERT_NE(hookRuns_, nullptr);
  }

  // Calls <Sample>_Create_<kind>MI the way a broker does, and checks that the
  // stub left the status alone and stored the broker.
  template <typename MI>
  MI* create(const char* factoryName) {
    auto* factory = symbol<Factory<MI>>(factoryName);
    EXPECT_NE(factory, nullptr) << factoryName << " is not exported";
    if (factory == nullptr) {
      return nullptr;
    }
    CMPIString* sentinel = broker_.makeString("untouched", "untouched");
    CMPIStatus rc = {CMPI_RC_ERR_NOT_FOUND, sentinel};
    MI* mi = factory(broker_.get(), nullptr, &rc);
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_NOT_FOUND) << factoryName << " changed the status";
    EXPECT_EQ(rc.msg, sentinel) << factoryName << " changed the status";
    EXPECT_EQ(brokerOf_(), broker_.get()) << factoryName << " did not store the broker";
    return mi;
  }

  int hookRuns() const { return hookRuns_(); }

  template <typename Function>
  Function* symbol(const char* name) const {
    return reinterpret_cast<Function*>(dlsym(module_.get(), name));
  }

  FakeBroker broker_;
  // Closed again at the end of the test.
  std::unique_ptr<void, int (*)(void*)> module_{dlopen(PathOf(GetParam()), RTLD_NOW | RTLD_LOCAL),
                                                dlclose};

 private:
  const CMPIBroker* (*brokerOf_)() = nullptr;
  int (*hookRuns_)() = nullptr;
};

// The header every MI table starts with, and the MI's handle.
template <typename MI>
std::string Header(const MI* mi) {
  if (mi == nullptr) {
    return "null MI";
  }
  return "ft=" + std::to_string(mi->ft->ftVersion) + " mi=" + std::to_string(mi->ft->miVersion) +
         " name=" + mi->ft->miName + (mi->hdl == nullptr ? " hdl=null" : " hdl=set");
}

TEST_P(CmpiMiStubs, FactoriesReturnAStaticMiWithVersion200AndKindName) {
  const int hooksBefore = hookRuns();

  auto* instance = create<CMPIInstanceMI>("Sample_Create_InstanceMI");
  auto* association = create<CMPIAssociationMI>("Sample_Create_AssociationMI");
  auto* method = create<CMPIMethodMI>("Sample_Create_MethodMI");
  auto* property = create<CMPIPropertyMI>("Sample_Create_PropertyMI");
  auto* indication = create<CMPIIndicationMI>("Sample_Create_IndicationMI");

  EXPECT_EQ(Header(instance), "ft=200 mi=200 name=instanceSample hdl=null");
  EXPECT_EQ(Header(association), "ft=200 mi=200 name=associationSample hdl=null");
  EXPECT_EQ(Header(method), "ft=200 mi=200 name=methodSample hdl=null");
  EXPECT_EQ(Header(property), "ft=200 mi=200 name=propertySample hdl=null");
  EXPECT_EQ(Header(indication), "ft=200 mi=200 name=indicationSample hdl=null");
  // Four stubs count in their hook; the indication stub has CMNoHook.
  EXPECT_EQ(hookRuns() - hooksBefore, 4);

  // A second call hands out the same static MI.
  EXPECT_EQ(create<CMPIInstanceMI>("Sample_Create_InstanceMI"), instance);
  EXPECT_EQ(hookRuns() - hooksBefore, 5);
}

TEST_P(CmpiMiStubs, InstanceAndAssociationSlotsHoldTheirOperations) {
  auto* mi = create<CMPIInstanceMI>("Sample_Create_InstanceMI");
  ASSERT_NE(mi, nullptr);
  const CMPIInstanceMIFT* ft = mi->ft;
  EXPECT_THAT((std::vector<std::string>{
                  Describe(ft->cleanup(mi, nullptr, 1)),
                  Describe(ft->cleanup(mi, nullptr, 0)),
                  Describe(ft->enumerateInstanceNames(mi, nullptr, nullptr, nullptr)),
                  Describe(ft->enumerateInstances(mi, nullptr, nullptr, nullptr, nullptr)),
                  Describe(ft->getInstance(mi, nullptr, nullptr, nullptr, nullptr)),
                  Describe(ft->createInstance(mi, nullptr, nullptr, nullptr, nullptr)),
                  Describe(ft->modifyInstance(mi, nullptr, nullptr, nullptr, nullptr, nullptr)),
                  Describe(ft->deleteInstance(mi, nullptr, nullptr, nullptr)),
                  Describe(ft->execQuery(mi, nullptr, nullptr, nullptr, nullptr, nullptr)),
              }),
              ElementsAre("rc=0 -", "rc=50 -", "rc=0 EnumInstanceNames", "rc=0 EnumInstances",
                          "rc=0 GetInstance", "rc=0 CreateInstance", "rc=0 ModifyInstance",
                          "rc=0 DeleteInstance", "rc=0 ExecQuery"));

  auto* assoc = create<CMPIAssociationMI>("Sample_Create_AssociationMI");
  ASSERT_NE(assoc, nullptr);
  const CMPIAssociationMIFT* aft = assoc->ft;
  EXPECT_THAT(
      (std::vector<std::string>{
          Describe(aft->cleanup(assoc, nullptr, 1)),
          Describe(aft->associators(assoc, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr)),
          Describe(aft->associatorNames(assoc, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr)),
          Describe(aft->references(assoc, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)),
          Describe(aft->referenceNames(assoc, nullptr, nullptr, nullptr, nullptr, nullptr)),
      }),
      ElementsAre("rc=0 -", "rc=0 Associators", "rc=0 AssociatorNames", "rc=0 References",
                  "rc=0 ReferenceNames"));
}

TEST_P(CmpiMiStubs, MethodPropertyAndIndicationSlotsHoldTheirOperations) {
  auto* method = create<CMPIMethodMI>("Sample_Create_MethodMI");
  ASSERT_NE(method, nullptr);
  FakeResult result;
  EXPECT_EQ(Describe(method->ft->cleanup(method, nullptr, 1)), "rc=0 -");
  EXPECT_EQ(Describe(method->ft->invokeMethod(method, nullptr, result.get(), nullptr, "Run",
                                              nullptr, nullptr)),
            "rc=0 Run");
  EXPECT_THAT(result.calls(), ElementsAre("data type=160 uint32=42", "done"));

  auto* property = create<CMPIPropertyMI>("Sample_Create_PropertyMI");
  ASSERT_NE(property, nullptr);
  const CMPIPropertyMIFT* pft = property->ft;
  CMPIData good{};
  good.type = CMPI_uint32;
  CMPIData null = good;
  null.state = CMPI_nullValue;
  EXPECT_THAT((std::vector<std::string>{
                  Describe(pft->cleanup(property, nullptr, 1)),
                  Describe(pft->setProperty(property, nullptr, nullptr, nullptr, "P", good)),
                  Describe(pft->setProperty(property, nullptr, nullptr, nullptr, "P", null)),
                  Describe(pft->getProperty(property, nullptr, nullptr, nullptr, "P")),
                  Describe(pft->setPropertyWithOrigin(property, nullptr, nullptr, nullptr, "P",
                                                      good, "CIM_X")),
              }),
              ElementsAre("rc=0 -", "rc=0 SetProperty", "rc=4 SetProperty", "rc=0 GetProperty",
                          "rc=0 SetPropertyWithOrigin"));

  auto* indication = create<CMPIIndicationMI>("Sample_Create_IndicationMI");
  ASSERT_NE(indication, nullptr);
  const CMPIIndicationMIFT* ift = indication->ft;
  EXPECT_THAT(
      (std::vector<std::string>{
          Describe(ift->cleanup(indication, nullptr, 1)),
          Describe(ift->authorizeFilter(indication, nullptr, nullptr, "CIM_X", nullptr, "me")),
          Describe(ift->mustPoll(indication, nullptr, nullptr, "CIM_X", nullptr)),
          Describe(ift->activateFilter(indication, nullptr, nullptr, "CIM_X", nullptr, 1)),
          Describe(ift->deActivateFilter(indication, nullptr, nullptr, "CIM_X", nullptr, 1)),
          Describe(ift->enableIndications(indication, nullptr)),
          Describe(ift->disableIndications(indication, nullptr)),
      }),
      ElementsAre("rc=0 -", "rc=0 AuthorizeFilter", "rc=0 MustPoll", "rc=0 ActivateFilter",
                  "rc=0 DeActivateFilter", "rc=0 EnableIndications", "rc=0 DisableIndications"));
}

INSTANTIATE_TEST_SUITE_P(BuiltAs, CmpiMiStubs, ::testing::Values(Build::kC, Build::kCxx),
                         [](const ::testing::TestParamInfo<Build>& info) {
                           return std::string(info.param == Build::kC ? "C" : "Cxx");
                         });

}  // namespace
