// The cmpihost binary's answers to good requests, compared exactly: static
// instances from MOF and instances, methods and associations from the test
// provider, trace lines and failed requests. How each value kind prints in
// JSON is the formatter tests' concern; here JSON is only seen to be wired.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "RunCommand.h"

namespace cmpihost::testing {
namespace {

const std::string kShelfS1 =
    "// root/cimv2:Cli_Shelf.Id=\"s1\"\n"
    "instance of Cli_Shelf {\n"
    "    Id = \"s1\";\n"
    "    Location = \"hall \\\"A\\\"\\n\";\n"
    "    Height = 2.5;\n"
    "    Installed = \"20240102030405.000000+060\";\n"
    "    Offset = -7;\n"
    "    Row = 'B';\n"
    "    Levels = {1, 2, 3};\n"
    "};\n";
const std::string kShelfNames = "root/cimv2:Cli_Shelf.Id=\"s1\"\nroot/cimv2:Cli_Shelf.Id=\"s2\"\n";
const std::string kWidgetNames =
    "root/cimv2:Cli_Widget.Name=\"w1\"\nroot/cimv2:Cli_Widget.Name=\"w2\"\n";
const std::string kWidget = "Cli_Widget.Name=\"w1\"";

void ExpectSuccess(const CommandResult& result, const std::string& out) {
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, out);
  EXPECT_EQ(result.err, "");
}

TEST(OutputTest, ClassesAndStaticInstancesFromMof) {
  ExpectSuccess(RunCmpihost(WithMof({"ecn"})),
                "Cli_Element\nCli_Widget\nCli_Gadget\nCli_Shelf\nCli_WidgetOnShelf\n");
  ExpectSuccess(RunCmpihost(WithMof({"ecn", "root/cimv2:Cli_Element"})),
                "Cli_Element\nCli_Widget\nCli_Gadget\n");
  ExpectSuccess(RunCmpihost(WithMof({"--json", "ecn", "cli_shelf"})), "[\"Cli_Shelf\"]\n");
  ExpectSuccess(RunCmpihost(WithMof({"ei", "Cli_Shelf"})), kShelfS1 + "\n" + BareShelfText("s2"));
  ExpectSuccess(RunCmpihost(WithMof({"ein", "Cli_Shelf"})), kShelfNames);
  ExpectSuccess(RunCmpihost(WithMof({"gi", "Cli_Shelf.Id=\"s2\""})), BareShelfText("s2"));
  ExpectSuccess(
      RunCmpihost(WithMof({"--json", "ein", "Cli_Shelf"})),
      "[\"root/cimv2:Cli_Shelf.Id=\\\"s1\\\"\",\"root/cimv2:Cli_Shelf.Id=\\\"s2\\\"\"]\n");
}

TEST(OutputTest, NamespaceOptionAppliesToMofClassesAndPaths) {
  const auto with = [](std::vector<std::string> rest) {
    rest.insert(rest.begin(), {"--namespace", "root/test", "--mof", DataFile("widgets.mof")});
    return rest;
  };
  ExpectSuccess(RunCmpihost(with({"ein", "Cli_Shelf"})),
                "root/test:Cli_Shelf.Id=\"s1\"\nroot/test:Cli_Shelf.Id=\"s2\"\n");
  const CommandResult elsewhere = RunCmpihost(with({"gi", "root/cimv2:Cli_Shelf.Id=\"s1\""}));
  EXPECT_EQ(elsewhere.exitCode, 2);
  EXPECT_EQ(elsewhere.err, "cmpihost: gi: unknown class Cli_Shelf in namespace root/cimv2\n");
  // The host reads the text as typed, so its columns are the user's.
  const CommandResult bare = RunCmpihost(with({"gi", "Cli_Shelf.Id=s1"}));
  EXPECT_EQ(bare.exitCode, 2);
  EXPECT_EQ(bare.err,
            "cmpihost: gi: path text 'Cli_Shelf.Id=s1': column 14: key Id: 's1' must be written "
            "in double quotes (the value is a string)\n");
}

TEST(OutputTest, MofLoadsBeforeRegistrationFilesWhateverTheOptionOrder) {
  ExpectSuccess(RunCmpihost({"--lib-dir", ProviderDir(), "--providers", DataFile("clitest.reg"),
                             "--mof", DataFile("widgets.mof"), "ein", "Cli_Widget"}),
                kWidgetNames);
}

TEST(OutputTest, ProviderInstancesMethodsAndTrace) {
  ExpectSuccess(RunCmpihost(WithProvider({"ei", "Cli_Widget"})), kWidgetsText);
  ExpectSuccess(RunCmpihost(WithProvider({"ein", "Cli_Element"})), kWidgetNames);

  const CommandResult twice = RunCmpihost(WithProvider(
      {"--trace", "cm", kWidget, "twice", "n=21", "Label=ab", "Peer=Cli_Widget.Name=\"w2\""}));
  EXPECT_EQ(twice.exitCode, 0);
  EXPECT_EQ(twice.out, "ReturnValue = 42\nDoubled = \"abab\"\nPeerName = \"w2\"\n");
  EXPECT_EQ(twice.err, "[4 clitest] +++ InvokeMethod\n[trace 2 clitest] Twice called\n");
}

TEST(OutputTest, GetClassShowsKeysPropertiesAndMethodsWithTheirParameters) {
  ExpectSuccess(RunCmpihost(WithMof({"gc", "cli_widget"})),
                "class Cli_Widget : Cli_Element {\n"
                "    [Key] string Name;\n"
                "    uint32 Count;\n"
                "    boolean Enabled;\n"
                "    string Tags[];\n"
                "    uint32 Twice([In] uint32 N, [In] string Label, [In] Cli_Element REF Peer, "
                "[Out] string Doubled, [Out] string PeerName);\n"
                "    uint32 Fail();\n"
                "};\n");
  ExpectSuccess(RunCmpihost(WithMof({"gc", "Cli_WidgetOnShelf"})),
                "[Association]\n"
                "class Cli_WidgetOnShelf {\n"
                "    [Key] Cli_Widget REF Widget;\n"
                "    [Key] Cli_Shelf REF Shelf;\n"
                "};\n");
  ExpectSuccess(
      RunCmpihost(WithMof({"gc", "Cli_Element", "--json"})),
      "{\"className\":\"Cli_Element\",\"superClass\":null,\"association\":false,"
      "\"abstract\":true,\"keys\":[\"Name\"],\"properties\":{\"Name\":{\"type\":\"string\","
      "\"key\":true}},\"methods\":{}}\n");
  const CommandResult twice = RunCmpihost(WithMof({"--json", "gc", "Cli_Widget"}));
  EXPECT_NE(twice.out.find("\"Twice\":{\"returnType\":\"uint32\",\"parameters\":[{\"name\":"
                           "\"N\",\"type\":\"uint32\",\"in\":true,\"out\":false},"),
            std::string::npos)
      << twice.out;
  EXPECT_NE(twice.out.find("{\"name\":\"Peer\",\"type\":\"ref\",\"refClass\":\"Cli_Element\","
                           "\"in\":true,\"out\":false}"),
            std::string::npos)
      << twice.out;
}

TEST(OutputTest, TraceLevelsFilterBySeverityAndOptionsMayFollowTheVerb) {
  const struct {
    const char* option;
    const char* err;
  } cases[] = {
      {"--trace=debug", "[4 clitest] +++ InvokeMethod\n[trace 2 clitest] Twice called\n"},
      {"--trace=info", "[trace 2 clitest] Twice called\n"},
      {"--trace=warning", "[trace 2 clitest] Twice called\n"},
      {"--trace=error", ""},
  };
  for (const auto& c : cases) {
    const CommandResult twice =
        RunCmpihost(WithProvider({"cm", kWidget, "twice", c.option, "n=1"}));
    EXPECT_EQ(twice.exitCode, 0) << c.option;
    EXPECT_EQ(twice.out, "ReturnValue = 2\nDoubled = \"\"\n") << c.option;
    EXPECT_EQ(twice.err, c.err) << c.option;
  }
}

TEST(OutputTest, AssociationsTheirFiltersAndTheEmptyAnswerHint) {
  ExpectSuccess(RunCmpihost(WithProvider({"ain", kWidget})), "root/cimv2:Cli_Shelf.Id=\"s1\"\n");
  ExpectSuccess(RunCmpihost(WithProvider({"ain", kWidget, "--assoc-class", "Cli_WidgetOnShelf",
                                          "--result-class", "Cli_Gadget"})),
                "");
  ExpectSuccess(RunCmpihost(WithProvider({"ai", kWidget, "--assoc-class=Cli_WidgetOnShelf"})),
                BareShelfText("s1"));
  ExpectSuccess(RunCmpihost(WithProvider({"rin", kWidget, "--role", "Widget"})),
                "root/cimv2:Cli_WidgetOnShelf.Widget=\"root/cimv2:Cli_Widget.Name=\\\"w1\\\"\","
                "Shelf=\"root/cimv2:Cli_Shelf.Id=\\\"s1\\\"\"\n");
  ExpectSuccess(RunCmpihost(WithProvider({"rin", kWidget, "--role", "Shelf"})), "");
  const CommandResult references = RunCmpihost(WithProvider({"--json", "ri", kWidget}));
  EXPECT_EQ(references.exitCode, 0);
  EXPECT_NE(references.out.find("\"Widget\":{\"type\":\"ref\",\"value\":"
                                "\"root/cimv2:Cli_Widget.Name=\\\"w1\\\"\"}"),
            std::string::npos)
      << references.out;

  // Nothing came back and no association class was named: advice, not an error.
  for (const char* verb : {"ai", "ain"}) {
    const CommandResult empty =
        RunCmpihost(WithProvider({verb, kWidget, "--result-class", "Cli_Gadget"}));
    EXPECT_EQ(empty.exitCode, 0) << verb;
    EXPECT_EQ(empty.out, "") << verb;
    EXPECT_EQ(empty.err,
              "cmpihost: hint: the library's providers answer nothing when the request names no "
              "association class; name one with --assoc-class\n")
        << verb;
  }
  // A failed request gets its failure only.
  const CommandResult failed = RunCmpihost(WithMof({"ain", kWidget}));
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_EQ(failed.err.rfind("cmpihost: AssociatorNames failed: ", 0), 0U) << failed.err;
  EXPECT_EQ(failed.err.find("hint"), std::string::npos) << failed.err;
}

// With --json the same error line goes to standard error, and standard
// output gets the failure as a document, in place of any answer.
TEST(OutputTest, FailedRequestsExitOneWithTheStatus) {
  const struct {
    std::vector<std::string> args;
    std::string err;
    std::string json;
  } cases[] = {
      {{"gi", "Cli_Widget.Name=\"w9\""},
       "cmpihost: GetInstance failed: CMPI_RC_ERR_FAILED (1): Could not find or construct "
       "instance\n",
       R"({"error":{"code":1,"name":"CMPI_RC_ERR_FAILED","message":"Could not find or construct )"
       R"(instance"}})"},
      {{"cm", kWidget, "Fail"},
       "cmpihost: InvokeMethod failed: CMPI_RC_ERR_FAILED (1): the widget refused\n",
       R"({"error":{"code":1,"name":"CMPI_RC_ERR_FAILED","message":"the widget refused"}})"},
      {{"gi", "Cli_Shelf.Id=\"s9\""},
       "cmpihost: GetInstance failed: CMPI_RC_ERR_NOT_FOUND (6): no instance "
       "root/cimv2:Cli_Shelf.Id=\"s9\"\n",
       R"({"error":{"code":6,"name":"CMPI_RC_ERR_NOT_FOUND","message":"no instance )"
       R"(root/cimv2:Cli_Shelf.Id=\"s9\""}})"},
      // Served by nothing at all: the host's own refusal, still a failed request.
      {{"ei", "Cli_Gadget"},
       "cmpihost: EnumerateInstances failed: CMPI_RC_ERR_NOT_SUPPORTED (7): no provider serves "
       "class Cli_Gadget or its subclasses, and it has no static instances\n",
       R"({"error":{"code":7,"name":"CMPI_RC_ERR_NOT_SUPPORTED","message":"no provider serves )"
       R"(class Cli_Gadget or its subclasses, and it has no static instances"}})"},
  };
  for (const auto& c : cases) {
    const CommandResult result = RunCmpihost(WithProvider(c.args));
    EXPECT_EQ(result.exitCode, 1) << c.args[1];
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);

    std::vector<std::string> json = c.args;
    json.push_back("--json");
    const CommandResult document = RunCmpihost(WithProvider(json));
    EXPECT_EQ(document.exitCode, 1) << c.args[1];
    EXPECT_EQ(document.out, c.json + "\n");
    EXPECT_EQ(document.err, c.err);
  }
}

TEST(OutputTest, WithJsonBadUsageIsADocumentToo) {
  const CommandResult keys = RunCmpihost(WithMof({"--json", "gi", "Cli_Shelf"}));
  EXPECT_EQ(keys.exitCode, 2);
  EXPECT_EQ(keys.out,
            R"({"error":{"code":null,"name":"usage","message":"gi: path 'Cli_Shelf' lacks key Id )"
            R"(of class Cli_Shelf"}})"
            "\n");
  EXPECT_EQ(keys.err, "cmpihost: gi: path 'Cli_Shelf' lacks key Id of class Cli_Shelf\n");

  const CommandResult option = RunCmpihost({"ein", "X", "--json", "--bogus"});
  EXPECT_EQ(option.exitCode, 2);
  EXPECT_EQ(option.out,
            "{\"error\":{\"code\":null,\"name\":\"usage\",\"message\":\"ein: unknown option "
            "--bogus (usage: cmpihost ein CLASS)\"}}\n");
}

TEST(OutputTest, RegistrationFileFindsItsLibraryInItsOwnFolder) {
  ScratchDir scratch;
  std::filesystem::copy_file(ProviderDir() + "/libclitestprovider.so",
                             scratch.path() + "/libclitestprovider.so");
  std::filesystem::copy_file(DataFile("clitest.reg"), scratch.path() + "/clitest.reg");
  ExpectSuccess(
      RunCmpihost(WithMof({"--providers", scratch.path() + "/clitest.reg", "ein", "Cli_Widget"})),
      kWidgetNames);
}

TEST(OutputTest, HelpAndVersion) {
  const CommandResult help = RunCmpihost({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.out.rfind("Usage: cmpihost [OPTIONS] VERB [ARGS...]\n", 0), 0U);
  const CommandResult verb = RunCmpihost({"--help", "cm"});
  EXPECT_EQ(verb.exitCode, 0);
  EXPECT_EQ(verb.out.rfind("Usage: cmpihost [OPTIONS] cm PATH METHOD [NAME=VALUE ...]\n", 0), 0U);
  const CommandResult version = RunCmpihost({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.out.rfind("cmpihost ", 0), 0U);
}

}  // namespace
}  // namespace cmpihost::testing
