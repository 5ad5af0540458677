// Providers in shared libraries: both factory symbol forms (generic first),
// refusals, and registration files in the small-footprint CIMOM's format,
// bad ones answered with file, line and problem and registering nothing.
#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

const std::string kProviderDir = HOST_TEST_PROVIDER_DIR;

ProviderRegistration KeyedRegistration(const char* name) {
  return Registration(name, {"Test_Keyed"}, true);
}

class LibraryProviderTest : public HostTest {
 protected:
  std::string registrationFile(const std::string& text) {
    return files_.write("reg" + std::to_string(++fileCount_) + ".reg", text);
  }

  static std::vector<std::string> notes(const Reply& reply) {
    std::vector<std::string> found;
    for (const InstanceSnapshot& instance : reply.instances()) {
      found.push_back(instance.find("Note")->text);
    }
    return found;
  }

  TempDir files_;
  int fileCount_ = 0;
};

// Both factory forms are proven by the registration file test below.
TEST_F(LibraryProviderTest, AFunctionTheMiLacksIsAnsweredByTheHost) {
  host_.registerLibraryProvider(KeyedRegistration("TestNamed"), kProviderDir + "/libtestnamed.so");
  EXPECT_EQ(host_.enumerateInstanceNames("root/cimv2", "Test_Keyed").paths(),
            (std::vector<std::string>{R"(root/cimv2:Test_Keyed.Name="n1",Number=1,Flag=TRUE)",
                                      R"(root/cimv2:Test_Keyed.Name="n2",Number=2,Flag=TRUE)"}));
  const Reply deleted = host_.deleteInstance(R"(Test_Keyed.Name="n1")");
  EXPECT_EQ(deleted.status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(deleted.status.message,
            "provider TestNamed's Instance MI has no deleteInstance function");
}

TEST_F(LibraryProviderTest, RefusingFactoriesAndMissingLibrariesAreReportedByKindAndReason) {
  ProviderRegistration registration = KeyedRegistration("TestRefusing");
  registration.method = true;
  registration.association = true;
  host_.registerLibraryProvider(registration, kProviderDir + "/libtestrefusing.so");
  const Reply reply = host_.getInstance(R"(Test_Keyed.Name="x")");
  EXPECT_EQ(reply.status.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(
      reply.status.message,
      "provider TestRefusing has no Instance MI: TestRefusing_Create_InstanceMI answered rc 1 "
      "(not today)");
  EXPECT_EQ(HostErrorOf([&] { host_.activateProviders(); }),
            "provider TestRefusing, Instance MI: TestRefusing_Create_InstanceMI answered rc 1 (not "
            "today)\n"
            "provider TestRefusing, Method MI: TestRefusing_Create_MethodMI returned no MI (or one "
            "without a function table)\n"
            "provider TestRefusing, Association MI: library " +
                kProviderDir +
                "/libtestrefusing.so exports neither _Generic_Create_AssociationMI nor "
                "TestRefusing_Create_AssociationMI");

  const std::string missing = HostErrorOf([&] {
    host_.registerLibraryProvider(KeyedRegistration("Nowhere"), kProviderDir + "/libnowhere.so");
  });
  EXPECT_EQ(missing.rfind("provider Nowhere: cannot load " + kProviderDir + "/libnowhere.so: ", 0),
            0u)
      << missing;
}

TEST_F(LibraryProviderTest, ARegistrationFileRegistersEachStanza) {
  const std::string file = registrationFile(R"(# test providers
[Test_Keyed]
   provider: TestNamed
   location: testnamed
   type: instance
   namespace: root/cimv2 root/other
   unload: never
   group: tests
   someday: ignored

[Test_KeyedChild]
   provider: TestGeneric
   location: testgeneric
   type: instance
)");
  host_.loadMof(HOST_TEST_MOF, "root/other");
  host_.loadRegistrationFile(file, {"/nonexistent", kProviderDir});
  // TestGeneric's library exports both forms: the generic one wins and gets the name.
  const Reply reply = host_.enumerateInstances("root/cimv2", "Test_Keyed");
  EXPECT_EQ(reply.status.rc, CMPI_RC_OK);
  EXPECT_EQ(notes(reply), (std::vector<std::string>{"named", "named", "generic:TestGeneric",
                                                    "generic:TestGeneric"}));
  // The first stanza listed two namespaces: the same provider serves both.
  const Reply other = host_.enumerateInstances("root/other", "Test_Keyed");
  EXPECT_EQ(other.status.rc, CMPI_RC_OK);
  EXPECT_EQ(other.instances().at(0).path, R"(root/other:Test_Keyed.Name="n1",Number=1,Flag=TRUE)");
  EXPECT_EQ(notes(other), (std::vector<std::string>{"named", "named"}));
}

TEST_F(LibraryProviderTest, BadRegistrationFilesNameFileLineAndProblem) {
  const struct {
    const char* text;
    const char* problem;
  } cases[] = {
      {"provider: X\n", ":1: 'provider:' comes before any [ClassName] stanza"},
      {"[Test_Keyed\n", ":1: expected ']' to close the class name in '[Test_Keyed'"},
      {"[Test Keyed]\n", ":1: 'Test Keyed' is not a class name"},
      {"[Test_Keyed]\n  provider X\n",
       ":2: expected 'key: value' or '[ClassName]', found 'provider X'"},
      {"[Test_Keyed]\n provider: A\n location: testnamed\n type: instanec\n",
       ":4: unknown provider type 'instanec' (known: instance association method indication "
       "property)"},
      {"[Test_Keyed]\n provider: A\n provider: B\n",
       ":3: 'provider:' is given twice in stanza [Test_Keyed] (first at line 2)"},
      {"# c\n[Test_Keyed]\n provider: A\n type: instance\n",
       ":2: stanza [Test_Keyed] has no 'location:'"},
      {"[Test_Keyed]\n location: testnamed\n type: instance\n",
       ":1: stanza [Test_Keyed] has no 'provider:'"},
      {"[Test_Keyed]\n provider: A\n location: testnamed\n",
       ":1: stanza [Test_Keyed] has no 'type:'"},
      {"[Test_Keyed]\n provider: A\n location: testnamed\n type:\n", ":4: 'type:' has no value"},
      {"[Test_Keyed]\n provider: TestNamed\n location: testnamed\n type: instance\n"
       "[Test_Static]\n provider: TestNamed\n location: testgeneric\n type: instance\n",
       ":5: provider TestNamed has location 'testgeneric' here but 'testnamed' at line 1"},
      {"[Test_Keyed]\n provider: TestNamed\n location: testnamed\n type: instance\n"
       "[Test_Static]\n provider: Missing\n location: nosuch\n type: instance\n",
       ":5: libnosuch.so of provider Missing is not in "},
      // Classes must be loaded first, in every namespace the stanza names.
      {"[Test_Keyed]\n provider: TestNamed\n location: testnamed\n type: instance\n"
       "[Test_Nowhere]\n provider: TestNamed\n location: testnamed\n type: instance\n",
       ":5: class Test_Nowhere is not declared in namespace root/cimv2 (load its MOF before the "
       "registration file)"},
      {"[Test_Keyed]\n provider: TestNamed\n location: testnamed\n type: instance\n"
       " namespace: root/cimv2 root/other\n",
       ":1: class Test_Keyed is not declared in namespace root/other (load its MOF before the "
       "registration file)"},
      // unload: takes only what the small-footprint CIMOM reads.
      {"[Test_Keyed]\n provider: A\n location: testnamed\n type: instance\n unload: Never\n",
       ":5: 'unload: Never' is not accepted (accepted: never; leave 'unload:' out to let the "
       "CIMOM unload an idle provider)"},
      {"[Test_Keyed]\n provider: A\n unload: 300\n", ":3: 'unload: 300' is not accepted"},
      {"[Test_Keyed]\n provider: A\n unload:\n", ":3: 'unload:' has no value (accepted: never)"},
  };
  for (const auto& c : cases) {
    const std::string file = registrationFile(c.text);
    const std::string error =
        HostErrorOf([&] { host_.loadRegistrationFile(file, {kProviderDir}); });
    EXPECT_EQ(error.rfind(file + c.problem, 0), 0u) << "gave: " << error << "\nwant: " << c.problem;
  }
  // Nothing of the failed files was registered, not even their good stanzas.
  EXPECT_EQ(host_.enumerateInstances("root/cimv2", "Test_Keyed").status.rc,
            CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_THROW(host_.loadRegistrationFile("/nonexistent/file.reg", {}), HostError);
}

}  // namespace
}  // namespace cmpihost::testing
