// Providers registered in code: lazy creation of MIs, refusals, and how each
// request is routed (class tree, nearest ancestor, association providers),
// typed, scoped and recorded; static instances beside them.
#include <initializer_list>
#include <mutex>
#include <stdexcept>
#include <type_traits>

#include "HostTestSupport.h"
#include "cmpihost/CmpiNames.h"

namespace cmpihost::testing {
namespace {

// --- a recording provider, several of them told apart by their index ---

struct TestProvider {
  std::string name;
  const CMPIBroker* broker = nullptr;
  int factoryCalls = 0;
  bool factoryCouldCreate = false;
  CMPIrc factoryRc = CMPI_RC_OK;
  bool factoryReturnsNull = false;
  CMPIrc answer = CMPI_RC_OK;  // what requests answer
  // What an idle (not terminating) cleanup answers: of the MI of this kind
  // ("Instance", "Method", "Association"), or of every MI when empty.
  CMPIrc idleAnswer = CMPI_RC_OK;
  std::string idleRefuser;
  bool throwInRequests = false;
  CMPIInstanceMI instanceMI{};
  CMPIMethodMI methodMI{};
  CMPIAssociationMI associationMI{};
};

TestProvider gProviders[3];
std::mutex gCallsMutex;
std::vector<std::string> gCalls;

template <typename MI>
TestProvider& Of(const MI* mi) {
  return *static_cast<TestProvider*>(const_cast<void*>(mi->hdl));
}

std::string ClassOf(const CMPIObjectPath* path) {
  return Text(path->ft->getClassName(path, nullptr));
}

std::string PathOf(const CMPIObjectPath* path) {
  return Text(path->ft->toString(path, nullptr));
}

// Notes "<provider>.<call> <subject> <words...>", a null word as "-".
void Note(const TestProvider& provider, const char* call, const std::string& subject,
          std::initializer_list<const char*> words = {}) {
  std::string line = provider.name + "." + call + " " + subject;
  for (const char* word : words) {
    line += std::string(" ") + (word == nullptr ? "-" : word);
  }
  std::lock_guard<std::mutex> lock(gCallsMutex);
  gCalls.push_back(line);
}

// Ends every request: done, then the provider's configured answer.
CMPIStatus Answer(TestProvider& provider, const CMPIResult* result) {
  result->ft->returnDone(result);
  if (provider.throwInRequests) {
    throw std::runtime_error("boom");
  }
  if (provider.answer != CMPI_RC_OK) {
    return CMPIStatus{provider.answer,
                      provider.broker->eft->newString(provider.broker, "refused by test", nullptr)};
  }
  return CMPIStatus{CMPI_RC_OK, nullptr};
}

CMPIInstance* MakeInstance(TestProvider& provider, const CMPIObjectPath* reference) {
  const CMPIBroker* broker = provider.broker;
  CMPIObjectPath* path = broker->eft->newObjectPath(
      broker, Text(reference->ft->getNameSpace(reference, nullptr)).c_str(),
      ClassOf(reference).c_str(), nullptr);
  CMPIInstance* instance = broker->eft->newInstance(broker, path, nullptr);
  instance->ft->setProperty(instance, "Name",
                            reinterpret_cast<const CMPIValue*>(provider.name.c_str()), CMPI_chars);
  return instance;
}

template <typename MI>
CMPIStatus Cleanup(MI* mi, const CMPIContext*, CMPIBoolean terminating) {
  TestProvider& provider = Of(mi);
  const bool scoped = provider.broker->eft->newString(provider.broker, "x", nullptr) != nullptr;
  const char* kind = std::is_same_v<MI, CMPIInstanceMI> ? "Instance"
                     : std::is_same_v<MI, CMPIMethodMI> ? "Method"
                                                        : "Association";
  Note(provider, "cleanup", kind,
       {terminating != 0 ? "terminating" : "idle", scoped ? "scoped" : "unscoped"});
  if (terminating == 0 && provider.idleAnswer != CMPI_RC_OK &&
      (provider.idleRefuser.empty() || provider.idleRefuser == kind)) {
    return CMPIStatus{provider.idleAnswer,
                      provider.broker->eft->newString(provider.broker, "busy", nullptr)};
  }
  return CMPIStatus{CMPI_RC_OK, nullptr};
}

CMPIStatus EnumNames(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
                     const CMPIObjectPath* reference) {
  CMPIInstance* instance = MakeInstance(Of(mi), reference);
  result->ft->returnObjectPath(result, instance->ft->getObjectPath(instance, nullptr));
  return Answer(Of(mi), result);
}

CMPIStatus Enum(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                const CMPIObjectPath* reference, const char** properties) {
  const CMPIData nameSpace = context->ft->getEntry(context, CMPIInitNameSpace, nullptr);
  std::string subject = ClassOf(reference) + " in " + Text(nameSpace.value.string);
  if (properties != nullptr) {
    subject += std::string(" first=") + (*properties == nullptr ? "-" : *properties);
  }
  Note(Of(mi), "enumerateInstances", subject);
  result->ft->returnInstance(result, MakeInstance(Of(mi), reference));
  return Answer(Of(mi), result);
}

CMPIStatus Get(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
               const CMPIObjectPath* path, const char**) {
  Note(Of(mi), "getInstance", PathOf(path));
  result->ft->returnInstance(result, Of(mi).broker->eft->newInstance(Of(mi).broker, path, nullptr));
  return Answer(Of(mi), result);
}

CMPIStatus Create(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
                  const CMPIObjectPath* path, const CMPIInstance* instance) {
  const CMPIData note = instance->ft->getProperty(instance, "Note", nullptr);
  const CMPIData number = instance->ft->getProperty(instance, "Number", nullptr);
  Note(Of(mi), "createInstance", ClassOf(path),
       {Text(note.value.string).c_str(), std::to_string(number.value.uint32).c_str()});
  result->ft->returnObjectPath(result, instance->ft->getObjectPath(instance, nullptr));
  return Answer(Of(mi), result);
}

CMPIStatus Invoke(CMPIMethodMI* mi, const CMPIContext*, const CMPIResult* result,
                  const CMPIObjectPath* path, const char* method, const CMPIArgs* in,
                  CMPIArgs* out) {
  std::string arguments;
  for (CMPICount i = 0; i < in->ft->getArgCount(in, nullptr); ++i) {
    CMPIString* name = nullptr;
    const CMPIData data = in->ft->getArgAt(in, i, &name, nullptr);
    arguments += " " + Text(name) + ":" + CmpiTypeName(data.type);
  }
  Note(Of(mi), "invokeMethod", ClassOf(path) + "." + method + arguments);
  const CMPIData text = in->ft->getArg(in, "Text", nullptr);
  if (text.type == CMPI_string) {
    CMPIValue echo;
    echo.string = text.value.string;
    out->ft->addArg(out, "Echo", &echo, CMPI_string);
  }
  CMPIValue value;
  value.uint32 = 42;
  result->ft->returnData(result, &value, CMPI_uint32);
  return Answer(Of(mi), result);
}

CMPIStatus Associators(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                       const CMPIObjectPath* path, const char* assocClass, const char* resultClass,
                       const char* role, const char* resultRole, const char**) {
  Note(Of(mi), "associators", ClassOf(path), {assocClass, resultClass, role, resultRole});
  result->ft->returnInstance(result, MakeInstance(Of(mi), path));
  return Answer(Of(mi), result);
}

CMPIStatus AssociatorNames(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                           const CMPIObjectPath* path, const char* assocClass,
                           const char* resultClass, const char* role, const char* resultRole) {
  Note(Of(mi), "associatorNames", ClassOf(path), {assocClass, resultClass, role, resultRole});
  return Answer(Of(mi), result);
}

CMPIStatus References(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                      const CMPIObjectPath* path, const char* resultClass, const char* role,
                      const char**) {
  Note(Of(mi), "references", ClassOf(path), {resultClass, role});
  return Answer(Of(mi), result);
}

CMPIStatus ReferenceNames(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* path, const char* resultClass, const char* role) {
  Note(Of(mi), "referenceNames", ClassOf(path), {resultClass, role});
  return Answer(Of(mi), result);
}

template <typename MI>
MI* Made(TestProvider& provider, MI* mi, const CMPIBroker* broker, CMPIStatus* rc) {
  provider.broker = broker;
  ++provider.factoryCalls;
  provider.factoryCouldCreate = broker->eft->newString(broker, "x", nullptr) != nullptr;
  if (provider.factoryRc != CMPI_RC_OK) {
    rc->rc = provider.factoryRc;
    rc->msg = broker->eft->newString(broker, "nope", nullptr);
  }
  return provider.factoryReturnsNull ? nullptr : mi;
}

template <int N>
MiFactories FactoriesOf() {
  MiFactories factories;
  factories.instance = [](const CMPIBroker* broker, const CMPIContext*, CMPIStatus* rc) {
    return Made(gProviders[N], &gProviders[N].instanceMI, broker, rc);
  };
  factories.method = [](const CMPIBroker* broker, const CMPIContext*, CMPIStatus* rc) {
    return Made(gProviders[N], &gProviders[N].methodMI, broker, rc);
  };
  factories.association = [](const CMPIBroker* broker, const CMPIContext*, CMPIStatus* rc) {
    return Made(gProviders[N], &gProviders[N].associationMI, broker, rc);
  };
  return factories;
}

// Modify, delete and query take the same route as get and create; the
// library's provider-entry tests send them through it.
CMPIInstanceMIFT gInstanceFT = {CMPIVersion200, CMPIVersion200, "instance", Cleanup<CMPIInstanceMI>,
                                EnumNames,      Enum,           Get,        Create,
                                nullptr,        nullptr,        nullptr};
CMPIMethodMIFT gMethodFT = {CMPIVersion200, CMPIVersion200, "method", Cleanup<CMPIMethodMI>,
                            Invoke};
CMPIAssociationMIFT gAssociationFT = {
    CMPIVersion200, CMPIVersion200,  "association", Cleanup<CMPIAssociationMI>,
    Associators,    AssociatorNames, References,    ReferenceNames};

void ClearCalls() {
  std::lock_guard<std::mutex> lock(gCallsMutex);
  gCalls.clear();
}

std::vector<std::string> Calls() {
  std::lock_guard<std::mutex> lock(gCallsMutex);
  return gCalls;
}

class ProviderDispatchTest : public HostTest {
 protected:
  ProviderDispatchTest() {
    for (int i = 0; i < 3; ++i) {
      TestProvider& p = gProviders[i];
      p = TestProvider();
      p.name = "P" + std::to_string(i);
      p.instanceMI = {&p, &gInstanceFT};
      p.methodMI = {&p, &gMethodFT};
      p.associationMI = {&p, &gAssociationFT};
    }
    ClearCalls();
  }

  template <int N>
  void registerAs(std::vector<std::string> classes, bool instance, bool method = false,
                  bool association = false) {
    host_.registerProvider(
        Registration(gProviders[N].name, std::move(classes), instance, method, association),
        FactoriesOf<N>());
  }
};

TEST_F(ProviderDispatchTest, FactoriesRunLazilyOnceInsideACallScope) {
  registerAs<0>({"Test_Keyed"}, true, true);
  EXPECT_EQ(gProviders[0].factoryCalls, 0);
  host_.enumerateInstances("root/cimv2", "Test_Keyed");
  EXPECT_EQ(gProviders[0].factoryCalls, 1);  // the instance MI only
  EXPECT_TRUE(gProviders[0].factoryCouldCreate);
  host_.enumerateInstanceNames("root/cimv2", "Test_Keyed");
  host_.getInstance(R"(Test_Keyed.Name="x")");
  EXPECT_EQ(gProviders[0].factoryCalls, 1);
  host_.activateProviders();  // the method MI now
  EXPECT_EQ(gProviders[0].factoryCalls, 2);
  host_.activateProviders();
  EXPECT_EQ(gProviders[0].factoryCalls, 2);
}

TEST_F(ProviderDispatchTest, ActivateProvidersReportsEveryRefusal) {
  gProviders[1].factoryReturnsNull = true;
  gProviders[2].factoryRc = CMPI_RC_ERR_FAILED;
  registerAs<0>({"Test_Keyed"}, true);
  registerAs<1>({"Test_Keyed"}, true);
  registerAs<2>({"Test_Link"}, false, false, true);
  EXPECT_EQ(HostErrorOf([&] { host_.activateProviders(); }),
            "provider P1, Instance MI: the in-process Instance MI factory returned no MI (or one "
            "without a function table)\n"
            "provider P2, Association MI: the in-process Association MI factory answered rc 1 "
            "(nope)");
  // A refused provider's requests fail with the reason; it is not asked again.
  const Reply reply = host_.enumerateInstances("root/cimv2", "Test_Keyed");
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_NE(reply.status.message.find("provider P1 has no Instance MI"), std::string::npos);
  EXPECT_EQ(gProviders[1].factoryCalls, 1);
}

TEST_F(ProviderDispatchTest, EnumerationCallsEachProviderOncePerClassOfTheTree) {
  registerAs<0>({"Test_Keyed", "Test_KeyedChild"}, true);
  registerAs<1>({"test_keyedchild"}, true);
  const Reply reply = host_.enumerateInstances("root/cimv2", "TEST_KEYED");
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_EQ(reply.providerCalls, 3u);
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         "P0.enumerateInstances Test_Keyed in root/cimv2",
                         "P0.enumerateInstances Test_KeyedChild in root/cimv2",
                         "P1.enumerateInstances Test_KeyedChild in root/cimv2",
                     }));
  ASSERT_EQ(reply.events.size(), 6u);
  EXPECT_EQ(reply.doneCount(), 3u);
  EXPECT_EQ(reply.events[0].instance.path, R"(root/cimv2:Test_Keyed.Name="P0")");
  EXPECT_EQ(reply.events[4].instance.className, "Test_KeyedChild");
  EXPECT_EQ(reply.events[4].instance.find("Name")->text, "P1");

  const std::vector<std::string> properties = {"Name"};
  ClearCalls();
  host_.enumerateInstances("root/cimv2", "Test_KeyedChild", &properties);
  EXPECT_EQ(Calls()[0], "P0.enumerateInstances Test_KeyedChild in root/cimv2 first=Name");

  const Reply names = host_.enumerateInstanceNames("root/cimv2", "Test_KeyedChild");
  EXPECT_EQ(names.paths(), (std::vector<std::string>{R"(root/cimv2:Test_KeyedChild.Name="P0")",
                                                     R"(root/cimv2:Test_KeyedChild.Name="P1")"}));
}

// Static instances' values as printed are pinned by the command's output tests.
TEST_F(ProviderDispatchTest, StaticInstancesAreServedWithTheirDeclaredTypesAndDefaults) {
  const Reply reply = host_.enumerateInstances("root/cimv2", "Test_Static");
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_EQ(reply.providerCalls, 0u);
  const std::vector<InstanceSnapshot> instances = reply.instances();
  ASSERT_EQ(instances.size(), 3u);
  EXPECT_EQ(instances[0].find("When")->type, CMPI_dateTime);
  EXPECT_EQ(instances[0].find("When")->text, "20240102030405.000006+060");
  EXPECT_EQ(instances[1].find("Value")->uint, 3u);  // the class default
  EXPECT_EQ(instances[2].path, R"(root/cimv2:Test_StaticChild.Name="child")");
  EXPECT_EQ(host_.getInstance(R"(Test_Static.Name="none")").status.rc, CMPI_RC_ERR_NOT_FOUND);

  // The host finds an object by its keys as a set: any order, any case of
  // the key names, down into reference keys.
  host_.loadMofText(R"(
    [Association] class Test_StaticPair { [Key] string A; [Key] Test_Keyed REF B; };
    instance of Test_StaticPair { A = "a"; B = "Test_Keyed.Name=\"n\",Number=1"; };
  )",
                    "pair.mof");
  const struct {
    const char* path;
    CMPIrc rc;
  } gets[] = {
      {R"(Test_StaticPair.A="a",B="Test_Keyed.Name=\"n\",Number=1")", CMPI_RC_OK},
      {R"(Test_StaticPair.b="Test_Keyed.NUMBER=1,name=\"n\"",a="a")", CMPI_RC_OK},
      {R"(Test_StaticPair.B="Test_Keyed.Number=2,Name=\"n\"",A="a")", CMPI_RC_ERR_NOT_FOUND},
      {R"(Test_StaticPair.B="Test_Keyed.Number=1",A="a")", CMPI_RC_ERR_NOT_FOUND},
      {R"(Test_StaticPair.B="Test_Keyed.Name=\"n\",Number=1")", CMPI_RC_ERR_NOT_FOUND},
  };
  for (const auto& get : gets) {
    const Reply reply = host_.getInstance(get.path);
    EXPECT_EQ(reply.status.rc, get.rc) << get.path;
    if (get.rc == CMPI_RC_OK) {
      ASSERT_EQ(reply.instances().size(), 1u) << get.path;
      // What the host hands back is the instance's own path, in declaration order.
      EXPECT_EQ(
          reply.instances()[0].path,
          R"(root/cimv2:Test_StaticPair.A="a",B="root/cimv2:Test_Keyed.Name=\"n\",Number=1")");
    }
  }
}

TEST_F(ProviderDispatchTest, UpcallEnumerationsServeProvidersAndStaticInstances) {
  registerAs<0>({"Test_KeyedChild"}, true);
  CMPIStatus rc;
  CMPIEnumeration* statics = broker_->bft->enumerateInstances(broker_, scope_->context(),
                                                              path("Test_Static"), nullptr, &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  std::vector<std::string> names;
  while (statics->ft->hasNext(statics, nullptr) != 0) {
    const CMPIData item = statics->ft->getNext(statics, &rc);
    // As OpenPegasus hands them: a good instance with the null state set.
    ASSERT_EQ(rc.rc, CMPI_RC_OK);
    ASSERT_EQ(item.type, CMPI_instance);
    EXPECT_EQ(item.state, CMPI_nullValue);
    ASSERT_NE(item.value.inst, nullptr);
    names.push_back(
        Text(item.value.inst->ft->getProperty(item.value.inst, "Name", nullptr).value.string));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"one", "two", "child"}));
  statics->ft->getNext(statics, &rc);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NOT_FOUND);

  CMPIEnumeration* served =
      broker_->bft->enumerateInstanceNames(broker_, scope_->context(), path("Test_Keyed"), &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  CMPIEnumeration* copy = served->ft->clone(served, nullptr);
  const CMPIData name = copy->ft->getNext(copy, nullptr);
  EXPECT_EQ(name.type, CMPI_ref);
  EXPECT_EQ(name.state, CMPI_nullValue);
  EXPECT_EQ(pathText(name.value.ref), R"(root/cimv2:Test_KeyedChild.Name="P0")");
  copy->ft->release(copy);
  // toArray's elements are the array's own: good values.
  const CMPIArray* array = served->ft->toArray(served, nullptr);
  ASSERT_EQ(array->ft->getSize(array, nullptr), 1u);
  EXPECT_EQ(pathText(array->ft->getElementAt(array, 0, nullptr).value.ref),
            R"(root/cimv2:Test_KeyedChild.Name="P0")");
  EXPECT_EQ(array->ft->getElementAt(array, 0, nullptr).state, CMPI_goodValue);

  CMPIEnumeration* unknown = broker_->bft->enumerateInstances(
      broker_, scope_->context(), path("TORSK_ComputerSystem"), nullptr, &rc);
  ASSERT_NE(unknown, nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(unknown->ft->hasNext(unknown, nullptr), 0);

  CMPIObjectPath* one = scope_->objectPath(R"(Test_Static.Name="one")");
  CMPIInstance* got = broker_->bft->getInstance(broker_, scope_->context(), one, nullptr, &rc);
  ASSERT_NE(got, nullptr);
  EXPECT_EQ(got->ft->getProperty(got, "Value", nullptr).value.uint32, 1u);
}

TEST_F(ProviderDispatchTest, InstanceRequestsGoToTheNearestAncestorWithAProvider) {
  registerAs<0>({"Test_Keyed"}, true);
  // The provider gets the keys in the order written; the instance it makes
  // of that path gives them in the class's order.
  const Reply got = host_.getInstance(R"(Test_KeyedChild.Number=2,Name="c")");
  EXPECT_EQ(got.status.rc, CMPI_RC_OK);
  ASSERT_EQ(got.instances().size(), 1u);
  EXPECT_EQ(got.instances()[0].className, "Test_KeyedChild");
  EXPECT_EQ(got.instances()[0].path, R"(root/cimv2:Test_KeyedChild.Name="c",Number=2)");
  EXPECT_EQ(got.instances()[0].find("Number")->uint, 2u);

  const Reply created = host_.createInstance(
      R"(Test_KeyedChild.Name="new")", {{"Note", "a note", std::nullopt}, {"Number", "9", {}}});
  EXPECT_EQ(created.paths(),
            std::vector<std::string>{R"(root/cimv2:Test_KeyedChild.Name="new",Number=9)"});
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         R"(P0.getInstance root/cimv2:Test_KeyedChild.Number=2,Name="c")",
                         "P0.createInstance Test_KeyedChild a note 9",
                     }));
}

TEST_F(ProviderDispatchTest, MethodArgumentsAreTypedFromTheDeclaredParameters) {
  registerAs<0>({"Test_Keyed"}, false, true);
  std::vector<Property> out;
  const Reply reply = host_.invokeMethod(R"(Test_Keyed.Name="k")", "Run",
                                         {{"text", "hello", {}},
                                          {"Count", "7", {}},
                                          {"Target", R"(Test_Keyed.Name="t")", {}},
                                          {"Items", R"(a, "b,c")", {}},
                                          {"Extra", "5", CMPI_sint64}},
                                         &out);
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  ASSERT_EQ(reply.data().size(), 1u);
  EXPECT_EQ(reply.data()[0].uint, 42u);
  EXPECT_EQ(Calls()[0],
            "P0.invokeMethod Test_Keyed.Run Text:string Count:uint16 Target:ref "
            "Items:string[] Extra:sint64");
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].name, "Echo");
  EXPECT_EQ(out[0].value.text, "hello");

  EXPECT_EQ(HostErrorOf([&] {
              host_.invokeMethod(R"(Test_Keyed.Name="k")", "Run", {{"Count", "seven", {}}});
            }),
            "argument Count: 'seven' is not a uint16 (0 to 65535)");
  EXPECT_EQ(HostErrorOf([&] {
              host_.invokeMethod(R"(Test_Keyed.Name="k")", "Run", {{"Unknown", "1", {}}});
            }),
            "argument Unknown: method Run of class Test_Keyed has no parameter Unknown to type "
            "it by; give Argument::type");
}

TEST_F(ProviderDispatchTest, AssociationRequestsReachEachAssociationProviderOnce) {
  registerAs<0>({"Test_Link", "Test_SpecialLink"}, false, false, true);
  registerAs<1>({"Test_SpecialLink"}, false, false, true);
  registerAs<2>({"Test_OtherLink"}, false, false, true);
  AssociationFilter filter;
  filter.assocClass = "Test_Link";
  filter.resultClass = "Test_Keyed";
  filter.role = "Left";
  const Reply reply = host_.associators(R"(Test_Keyed.Name="src")", filter);
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_EQ(reply.providerCalls, 2u);
  EXPECT_EQ(reply.instances().size(), 2u);
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         "P0.associators Test_Keyed Test_Link Test_Keyed Left -",
                         "P1.associators Test_Keyed Test_Link Test_Keyed Left -",
                     }));
  ClearCalls();
  host_.referenceNames(R"(Test_Keyed.Name="src")");
  host_.references(R"(Test_Keyed.Name="src")", filter);
  host_.associatorNames(R"(Test_Keyed.Name="src")",
                        AssociationFilter{"Test_OtherLink", {}, {}, {}});
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         "P0.referenceNames Test_Keyed - -",
                         "P1.referenceNames Test_Keyed - -",
                         "P2.referenceNames Test_Keyed - -",
                         "P0.references Test_Keyed Test_Keyed Left",
                         "P1.references Test_Keyed Test_Keyed Left",
                         "P2.associatorNames Test_Keyed Test_OtherLink - - -",
                     }));
  EXPECT_EQ(host_.associators(R"(Test_Keyed.Name="s")", AssociationFilter{"No_Such", {}, {}, {}})
                .status.rc,
            CMPI_RC_ERR_INVALID_CLASS);
}

TEST_F(ProviderDispatchTest, RequestsNoProviderServesAnswerNotSupported) {
  EXPECT_EQ(host_.enumerateInstances("root/cimv2", "Test_Keyed").status.rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  // A get with neither a provider nor a matching static instance finds nothing.
  EXPECT_EQ(host_.getInstance(R"(Test_Keyed.Name="x")").status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(host_.invokeMethod(R"(Test_Keyed.Name="x")", "Run", {}).status.rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  const Reply associators = host_.associators(R"(Test_Keyed.Name="x")");
  EXPECT_EQ(associators.status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(associators.status.message, "no Association provider serves namespace root/cimv2");
}

TEST_F(ProviderDispatchTest, AProvidersFailureReachesTheReplyWithItsMessage) {
  registerAs<0>({"Test_Keyed"}, true);
  registerAs<1>({"Test_KeyedChild"}, true);
  gProviders[0].answer = CMPI_RC_ERR_ACCESS_DENIED;
  const Reply reply = host_.enumerateInstances("root/cimv2", "Test_Keyed");
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_ACCESS_DENIED);
  EXPECT_TRUE(reply.status.hasMessage);
  EXPECT_EQ(reply.status.message, "refused by test");  // copied before the call's scope closed
  EXPECT_EQ(reply.providerCalls, 1u);                  // the first failure ends the request

  gProviders[0].answer = CMPI_RC_OK;
  gProviders[0].throwInRequests = true;
  const Reply thrown = host_.getInstance(R"(Test_Keyed.Name="x")");
  EXPECT_EQ(thrown.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(thrown.status.message, "the provider threw: boom");
}

// A CIMOM's idle sweep: a provider is unloaded only when every one of its
// MIs agrees; an unloaded one is created anew by the next request.
TEST_F(ProviderDispatchTest, AnIdleUnloadDropsOnlyProvidersWhoseMisAllAgree) {
  gProviders[1].idleAnswer = CMPI_RC_NEVER_UNLOAD;
  gProviders[2].idleAnswer = CMPI_RC_DO_NOT_UNLOAD;
  gProviders[2].idleRefuser = "Method";
  {
    Host host;
    host.loadMof(HOST_TEST_MOF);
    host.captureLog(true);
    host.registerProvider(Registration("P0", {"Test_Keyed"}, true, true), FactoriesOf<0>());
    host.registerProvider(Registration("P1", {"Test_Keyed"}, true), FactoriesOf<1>());
    host.registerProvider(Registration("P2", {"Test_KeyedChild"}, true, true), FactoriesOf<2>());
    EXPECT_TRUE(host.unloadIdleProviders().empty());  // nothing created yet
    host.activateProviders();
    ClearCalls();

    std::vector<std::string> answers;
    for (const UnloadAnswer& answer : host.unloadIdleProviders()) {
      answers.push_back(answer.providerName + " " + answer.kind + " " +
                        CmpiStatusName(answer.status.rc) + " '" + answer.status.message + "' " +
                        (answer.unloaded ? "unloaded" : "kept"));
    }
    EXPECT_EQ(answers,
              (std::vector<std::string>{
                  "P0 Instance CMPI_RC_OK '' unloaded", "P0 Method CMPI_RC_OK '' unloaded",
                  "P1 Instance CMPI_RC_NEVER_UNLOAD 'busy' kept", "P2 Instance CMPI_RC_OK '' kept",
                  "P2 Method CMPI_RC_DO_NOT_UNLOAD 'busy' kept"}));
    EXPECT_EQ(Calls(), (std::vector<std::string>{
                           "P0.cleanup Instance idle scoped",
                           "P0.cleanup Method idle scoped",
                           "P1.cleanup Instance idle scoped",
                           "P2.cleanup Instance idle scoped",
                           "P2.cleanup Method idle scoped",
                       }));
    std::vector<std::string> logged;
    for (const LogRecord& record : host.logRecords()) {
      EXPECT_EQ(record.severity, CMPI_SEV_INFO);
      EXPECT_EQ(record.id, "cmpihost");
      logged.push_back(record.text);
    }
    EXPECT_EQ(logged,
              (std::vector<std::string>{
                  "idle unload: provider P0, Instance MI cleanup answered CMPI_RC_OK; unloaded",
                  "idle unload: provider P0, Method MI cleanup answered CMPI_RC_OK; unloaded",
                  "idle unload: provider P1, Instance MI cleanup answered CMPI_RC_NEVER_UNLOAD "
                  "(busy); stays loaded",
                  "idle unload: provider P2, Instance MI cleanup answered CMPI_RC_OK; stays loaded",
                  "idle unload: provider P2, Method MI cleanup answered CMPI_RC_DO_NOT_UNLOAD "
                  "(busy); stays loaded",
              }));

    // The next request creates P0's instance MI anew; the others keep theirs.
    EXPECT_EQ(host.enumerateInstances("root/cimv2", "Test_Keyed").status.rc, CMPI_RC_OK);
    EXPECT_EQ(gProviders[0].factoryCalls, 3);
    EXPECT_EQ(gProviders[1].factoryCalls, 1);
    EXPECT_EQ(gProviders[2].factoryCalls, 2);
    ClearCalls();
  }
  // Closing the host cleans up only the MIs alive now, newest first.
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         "P0.cleanup Instance terminating scoped",
                         "P2.cleanup Method terminating scoped",
                         "P2.cleanup Instance terminating scoped",
                         "P1.cleanup Instance terminating scoped",
                     }));
}

}  // namespace
}  // namespace cmpihost::testing
