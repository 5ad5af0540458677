// The cmpihost binary's answers to good requests, compared exactly: text
// and JSON, static instances from MOF and instances, methods and
// associations from the test provider, trace lines and failed requests.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "RunCommand.h"

namespace cmpihost::testing {
namespace {

const char* const kShelves =
    "// root/cimv2:Cli_Shelf.Id=\"s1\"\n"
    "instance of Cli_Shelf {\n"
    "    Id = \"s1\";\n"
    "    Location = \"hall \\\"A\\\"\\n\";\n"
    "    Height = 2.5;\n"
    "    Installed = \"20240102030405.000000+060\";\n"
    "    Offset = -7;\n"
    "    Row = 'B';\n"
    "    Levels = {1, 2, 3};\n"
    "};\n"
    "\n"
    "// root/cimv2:Cli_Shelf.Id=\"s2\"\n"
    "instance of Cli_Shelf {\n"
    "    Id = \"s2\";\n"
    "    Location = NULL;\n"
    "    Height = NULL;\n"
    "    Installed = NULL;\n"
    "    Offset = NULL;\n"
    "    Row = NULL;\n"
    "    Levels = NULL;\n"
    "};\n";

const char* const kWidgets =
    "// root/cimv2:Cli_Widget.Name=\"w1\"\n"
    "instance of Cli_Widget {\n"
    "    Name = \"w1\";\n"
    "    Count = 1;\n"
    "    Enabled = TRUE;\n"
    "    Tags = {\"a\", \"b \\\"quoted\\\"\"};\n"
    "};\n"
    "\n"
    "// root/cimv2:Cli_Widget.Name=\"w2\"\n"
    "instance of Cli_Widget {\n"
    "    Name = \"w2\";\n"
    "    Count = 3;\n"
    "    Enabled = NULL;\n"
    "    Tags = NULL;\n"
    "};\n";

void ExpectSuccess(const CommandResult& result, const std::string& out) {
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, out);
  EXPECT_EQ(result.err, "");
}

TEST(OutputTest, ClassNamesComeInLoadOrder) {
  ExpectSuccess(RunCmpihost(WithMof({"ecn"})),
                "Cli_Element\nCli_Widget\nCli_Gadget\nCli_Shelf\nCli_WidgetOnShelf\n");
  ExpectSuccess(RunCmpihost(WithMof({"ecn", "root/cimv2:Cli_Element"})),
                "Cli_Element\nCli_Widget\nCli_Gadget\n");
  ExpectSuccess(RunCmpihost(WithMof({"--json", "ecn", "cli_shelf"})), "[\"Cli_Shelf\"]\n");
}

TEST(OutputTest, StaticInstancesPrintAsMofAndAsJson) {
  ExpectSuccess(RunCmpihost(WithMof({"ei", "Cli_Shelf"})), kShelves);
  ExpectSuccess(RunCmpihost(WithMof({"ein", "Cli_Shelf"})),
                "root/cimv2:Cli_Shelf.Id=\"s1\"\nroot/cimv2:Cli_Shelf.Id=\"s2\"\n");
  ExpectSuccess(RunCmpihost(WithMof({"gi", "Cli_Shelf.Id=\"s2\""})),
                std::string(kShelves).substr(
                    std::string(kShelves).find("// root/cimv2:Cli_Shelf.Id=\"s2\"")));
  ExpectSuccess(RunCmpihost(WithMof({"--json", "gi", "root/cimv2:Cli_Shelf.Id=\"s1\""})),
                "{\"className\":\"Cli_Shelf\",\"path\":\"root/"
                "cimv2:Cli_Shelf.Id=\\\"s1\\\"\",\"properties\":{"
                "\"Id\":{\"type\":\"string\",\"value\":\"s1\"},"
                "\"Location\":{\"type\":\"string\",\"value\":\"hall \\\"A\\\"\\n\"},"
                "\"Height\":{\"type\":\"real64\",\"value\":2.5},"
                "\"Installed\":{\"type\":\"datetime\",\"value\":\"20240102030405.000000+060\"},"
                "\"Offset\":{\"type\":\"sint16\",\"value\":-7},"
                "\"Row\":{\"type\":\"char16\",\"value\":\"B\"},"
                "\"Levels\":{\"type\":\"uint8[]\",\"value\":[1,2,3]}}}\n");
  ExpectSuccess(
      RunCmpihost(WithMof({"--json", "ein", "Cli_Shelf"})),
      "[\"root/cimv2:Cli_Shelf.Id=\\\"s1\\\"\",\"root/cimv2:Cli_Shelf.Id=\\\"s2\\\"\"]\n");
}

TEST(OutputTest, NamespaceOptionAppliesToMofClassesAndPaths) {
  const std::vector<std::string> args = {"--namespace", "root/test", "--mof",
                                         DataFile("widgets.mof")};
  auto with = [&](std::vector<std::string> rest) {
    rest.insert(rest.begin(), args.begin(), args.end());
    return rest;
  };
  ExpectSuccess(RunCmpihost(with({"ein", "Cli_Shelf"})),
                "root/test:Cli_Shelf.Id=\"s1\"\nroot/test:Cli_Shelf.Id=\"s2\"\n");
  EXPECT_EQ(RunCmpihost(with({"gi", "Cli_Shelf.Id=\"s1\""})).exitCode, 0);
  const CommandResult elsewhere = RunCmpihost(with({"gi", "root/cimv2:Cli_Shelf.Id=\"s1\""}));
  EXPECT_EQ(elsewhere.exitCode, 2);
  EXPECT_EQ(elsewhere.err, "cmpihost: gi: unknown class Cli_Shelf in namespace root/cimv2\n");
  // The host reads the text as typed, so its columns are the user's.
  const CommandResult bare = RunCmpihost(with({"gi", "Cli_Shelf.Id=s1"}));
  EXPECT_EQ(bare.exitCode, 2);
  EXPECT_EQ(bare.err,
            "cmpihost: gi: path text 'Cli_Shelf.Id=s1': column 14: key Id: 's1' must be written "
            "in double quotes (the value is a string)\n");
  const CommandResult bad = RunCmpihost({"--namespace", "root test", "ecn"});
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.err,
            "cmpihost: 'root test' is not a namespace (letters, digits, '_' and '/', not "
            "empty)\n");
}

TEST(OutputTest, MofLoadsBeforeRegistrationFilesWhateverTheOptionOrder) {
  const CommandResult result =
      RunCmpihost({"--lib-dir", ProviderDir(), "--providers", DataFile("clitest.reg"), "--mof",
                   DataFile("widgets.mof"), "ein", "Cli_Widget"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "root/cimv2:Cli_Widget.Name=\"w1\"\nroot/cimv2:Cli_Widget.Name=\"w2\"\n");
}

TEST(OutputTest, ProviderInstancesMethodsAndTrace) {
  ExpectSuccess(RunCmpihost(WithProvider({"ei", "Cli_Widget"})), kWidgets);
  ExpectSuccess(RunCmpihost(WithProvider({"ein", "Cli_Element"})),
                "root/cimv2:Cli_Widget.Name=\"w1\"\nroot/cimv2:Cli_Widget.Name=\"w2\"\n");

  const CommandResult twice =
      RunCmpihost(WithProvider({"--trace", "cm", "Cli_Widget.Name=\"w1\"", "twice", "n=21",
                                "Label=ab", "Peer=Cli_Widget.Name=\"w2\""}));
  EXPECT_EQ(twice.exitCode, 0);
  EXPECT_EQ(twice.out, "ReturnValue = 42\nDoubled = \"abab\"\nPeerName = \"w2\"\n");
  EXPECT_EQ(twice.err, "[4 clitest] +++ InvokeMethod\n[trace 2 clitest] Twice called\n");

  ExpectSuccess(RunCmpihost(WithProvider({"--json", "cm", "Cli_Widget.Name=\"w1\"", "Twice"})),
                "{\"returnValue\":{\"type\":\"uint32\",\"value\":0},\"outArguments\":{"
                "\"Doubled\":{\"type\":\"string\",\"value\":\"\"}}}\n");
}

TEST(OutputTest, AssociationsAndTheirFilters) {
  const std::string widget = "Cli_Widget.Name=\"w1\"";
  ExpectSuccess(RunCmpihost(WithProvider({"ain", widget})), "root/cimv2:Cli_Shelf.Id=\"s1\"\n");
  ExpectSuccess(RunCmpihost(WithProvider({"ain", widget, "--assoc-class", "Cli_WidgetOnShelf",
                                          "--result-class", "Cli_Gadget"})),
                "");
  ExpectSuccess(RunCmpihost(WithProvider({"ai", widget, "--assoc-class=Cli_WidgetOnShelf"})),
                "// root/cimv2:Cli_Shelf.Id=\"s1\"\n"
                "instance of Cli_Shelf {\n"
                "    Id = \"s1\";\n"
                "    Location = NULL;\n"
                "    Height = NULL;\n"
                "    Installed = NULL;\n"
                "    Offset = NULL;\n"
                "    Row = NULL;\n"
                "    Levels = NULL;\n"
                "};\n");
  ExpectSuccess(RunCmpihost(WithProvider({"rin", widget, "--role", "Widget"})),
                "root/cimv2:Cli_WidgetOnShelf.Shelf=\"root/cimv2:Cli_Shelf.Id=\\\"s1\\\"\","
                "Widget=\"root/cimv2:Cli_Widget.Name=\\\"w1\\\"\"\n");
  ExpectSuccess(RunCmpihost(WithProvider({"rin", widget, "--role", "Shelf"})), "");
  const CommandResult references = RunCmpihost(WithProvider({"--json", "ri", widget}));
  EXPECT_EQ(references.exitCode, 0);
  EXPECT_NE(references.out.find("\"Widget\":{\"type\":\"ref\",\"value\":"
                                "\"root/cimv2:Cli_Widget.Name=\\\"w1\\\"\"}"),
            std::string::npos)
      << references.out;
}

TEST(OutputTest, AnEmptyAnswerWithoutAnAssociationClassGetsAHint) {
  const std::string widget = "Cli_Widget.Name=\"w1\"";
  const std::string hint =
      "cmpihost: hint: the library's providers answer nothing when the request names no "
      "association class; name one with --assoc-class\n";
  for (const char* verb : {"ai", "ain"}) {
    const CommandResult empty =
        RunCmpihost(WithProvider({verb, widget, "--result-class", "Cli_Gadget"}));
    EXPECT_EQ(empty.exitCode, 0) << verb;
    EXPECT_EQ(empty.out, "") << verb;
    EXPECT_EQ(empty.err, hint) << verb;
  }
  // Nothing to advise when something came back, or for references.
  ExpectSuccess(RunCmpihost(WithProvider({"ain", widget})), "root/cimv2:Cli_Shelf.Id=\"s1\"\n");
  ExpectSuccess(RunCmpihost(WithProvider({"rin", widget, "--role", "Shelf"})), "");
  // A failed request gets its failure only.
  const CommandResult failed = RunCmpihost(WithMof({"ain", widget}));
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_EQ(failed.err.rfind("cmpihost: AssociatorNames failed: ", 0), 0U) << failed.err;
  EXPECT_EQ(failed.err.find("hint"), std::string::npos) << failed.err;
}

TEST(OutputTest, FailedRequestsExitOneWithTheStatus) {
  const struct {
    std::vector<std::string> args;
    std::string err;
  } cases[] = {
      {{"gi", "Cli_Widget.Name=\"w9\""},
       "cmpihost: GetInstance failed: CMPI_RC_ERR_FAILED (1): Could not find or construct "
       "instance\n"},
      {{"cm", "Cli_Widget.Name=\"w1\"", "Fail"},
       "cmpihost: InvokeMethod failed: CMPI_RC_ERR_FAILED (1): the widget refused\n"},
      {{"gi", "Cli_Shelf.Id=\"s9\""},
       "cmpihost: GetInstance failed: CMPI_RC_ERR_NOT_FOUND (6): no instance "
       "root/cimv2:Cli_Shelf.Id=\"s9\"\n"},
  };
  for (const auto& c : cases) {
    const CommandResult result = RunCmpihost(WithProvider(c.args));
    EXPECT_EQ(result.exitCode, 1) << c.args[1];
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
  }
  // Served by nothing at all: the host's own refusal, still a failed request.
  const CommandResult gadgets = RunCmpihost(WithMof({"ei", "Cli_Gadget"}));
  EXPECT_EQ(gadgets.exitCode, 1);
  EXPECT_EQ(
      gadgets.err.rfind("cmpihost: EnumerateInstances failed: CMPI_RC_ERR_NOT_SUPPORTED (7): ", 0),
      0U)
      << gadgets.err;
}

TEST(OutputTest, RegistrationFileFindsItsLibraryInItsOwnFolder) {
  ScratchDir scratch;
  std::filesystem::copy_file(ProviderDir() + "/libclitestprovider.so",
                             scratch.path() + "/libclitestprovider.so");
  std::filesystem::copy_file(DataFile("clitest.reg"), scratch.path() + "/clitest.reg");
  const CommandResult result =
      RunCmpihost(WithMof({"--providers", scratch.path() + "/clitest.reg", "ein", "Cli_Widget"}));
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "root/cimv2:Cli_Widget.Name=\"w1\"\nroot/cimv2:Cli_Widget.Name=\"w2\"\n");
}

TEST(OutputTest, HelpAndVersion) {
  const CommandResult help = RunCmpihost({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.out.rfind("Usage: cmpihost [OPTIONS] VERB [ARGS...]\n", 0), 0U);
  EXPECT_EQ(RunCmpihost({"help"}).out, help.out);
  const CommandResult verb = RunCmpihost({"cm", "--help"});
  EXPECT_EQ(verb.exitCode, 0);
  EXPECT_EQ(verb.out.rfind("Usage: cmpihost [OPTIONS] cm PATH METHOD [NAME=VALUE ...]\n", 0), 0U);
  EXPECT_EQ(RunCmpihost({"help", "cm"}).out, verb.out);
  EXPECT_EQ(RunCmpihost({"--help", "cm"}).out, verb.out);
  const CommandResult version = RunCmpihost({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.out.rfind("cmpihost ", 0), 0U);
}

}  // namespace
}  // namespace cmpihost::testing
