// Script mode: one process runs every line, with echo, comments, continued
// lines and directives; a failed request lets the script go on (exit 1), a
// bad line stops it (exit 2) naming the script and the line.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "RunCommand.h"

namespace cmpihost::testing {
namespace {

TEST(ScriptTest, DemoScriptRunsEveryLineWithProgress) {
  const CommandResult result =
      RunCmpihost(WithProvider({"--progress", "run", DataFile("demo.cmpihost")}));
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "== Shelves ==\n"
            "root/cimv2:Cli_Shelf.Id=\"s1\"\n"
            "root/cimv2:Cli_Shelf.Id=\"s2\"\n"
            "== Widgets ==\n" +
                kWidgetsText +
                "ReturnValue = 42\n"
                "Doubled = \"abab\"\n"
                "done:  all\n");
  EXPECT_EQ(result.err,
            "[1/6] echo == Shelves ==\n"
            "[2/6] ein Cli_Shelf\n"
            "[3/6] echo == Widgets ==   # a comment after the words\n"
            "[4/6] ei Cli_Widget\n"
            "[5/6] cm 'Cli_Widget.Name=\"w1\"' Twice    N=21 Label=ab\n"
            "[6/6] echo 'done:  all'\n");
}

TEST(ScriptTest, AFailedRequestIsReportedAndTheScriptGoesOn) {
  ScratchDir scratch;
  const std::string script = scratch.write("fail.cmpihost",
                                           "# first line is a comment\n"
                                           "gi 'Cli_Widget.Name=\"w9\"'\n"
                                           "echo after\n");
  const CommandResult result = RunCmpihost(WithProvider({"--trace", "run", script}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "after\n");
  EXPECT_EQ(result.err, "[4 clitest] +++ GetInstance\ncmpihost: " + script +
                            ":2: GetInstance failed: CMPI_RC_ERR_FAILED (1): Could not find or "
                            "construct instance\n");
}

TEST(ScriptTest, ABadLineStopsTheScriptNamingFileAndLine) {
  ScratchDir scratch;
  const struct {
    std::string text;
    std::string err;
  } cases[] = {
      {"echo before\n\neii Cli_Shelf\necho never\n",
       ":3: unknown verb \"eii\" (verbs: ecn, gc, ei, ein, gi, cm, ai, ain, ri, rin, run, -, new, "
       "help; "
       "see cmpihost --help)\n"},
      {"echo before\ngi 'Cli_Shelf.Id=\"s1\"\n", ":2: column 4: unterminated single quote\n"},
      {"echo before\nei Nope\n", ":2: ei: unknown class Nope in namespace root/cimv2\n"},
      {"echo before\nrun other.cmpihost\n",
       ":2: run: scripts do not nest; put the lines in this script instead\n"},
      {"echo before\nmof\n", ":2: mof: missing FILE (usage: mof FILE)\n"},
      {"echo before\nnamespace root/none\necn\n",
       ":3: ecn: namespace root/none holds no classes\n"},
      {"echo before\nnamespace a b\n",
       ":2: namespace: unexpected argument \"b\" (usage: namespace NS)\n"},
      {"echo before\nnamespace a:b\n",
       ":2: 'a:b' is not a namespace (letters, digits, '_' and '/', not empty)\n"},
  };
  for (const auto& c : cases) {
    const std::string script = scratch.write("bad.cmpihost", c.text);
    const CommandResult result = RunCmpihost(WithMof({"run", script}));
    EXPECT_EQ(result.exitCode, 2) << c.text;
    EXPECT_EQ(result.out, "before\n") << c.text;
    EXPECT_EQ(result.err, "cmpihost: " + script + c.err);
  }
}

TEST(ScriptTest, ProvidersOfClassesNotYetLoadedAreRefused) {
  ScratchDir scratch;
  const std::string script =
      scratch.write("order.cmpihost", "providers " + DataFile("clitest.reg") + "\nmof " +
                                          DataFile("widgets.mof") + "\necho never\n");
  const CommandResult result = RunCmpihost({"--lib-dir", ProviderDir(), "run", script});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "cmpihost: " + script + ":1: " + DataFile("clitest.reg") +
                            ":2: class Cli_Widget is not declared in namespace root/cimv2 (load "
                            "its MOF before the registration file)\n");
}

TEST(ScriptTest, SuccessiveInstanceListingsAreSeparatedByABlankLine) {
  ScratchDir scratch;
  const std::string script = scratch.write("listings.cmpihost",
                                           "gi 'Cli_Shelf.Id=\"s2\"'\n"
                                           "gi 'Cli_Shelf.Id=\"s2\"'\n"
                                           "ei Cli_Gadget\n"
                                           "gi 'Cli_Shelf.Id=\"s2\"'\n"
                                           "ein Cli_Shelf\n"
                                           "gi 'Cli_Shelf.Id=\"s2\"'\n"
                                           "echo end\n");
  const std::string shelf = BareShelfText("s2");
  const CommandResult result = RunCmpihost(WithMof({"run", script}));
  EXPECT_EQ(result.exitCode, 1) << result.err;  // nothing serves Cli_Gadget
  // A failed request that printed nothing does not part two listings.
  EXPECT_EQ(result.out, shelf + "\n" + shelf + "\n" + shelf +
                            "root/cimv2:Cli_Shelf.Id=\"s1\"\nroot/cimv2:Cli_Shelf.Id=\"s2\"\n" +
                            shelf + "end\n");
  // JSON gives one text per line already.
  const CommandResult json = RunCmpihost(WithMof({"--json", "run", script}));
  EXPECT_EQ(json.out.find("\n\n"), std::string::npos) << json.out;
}

TEST(ScriptTest, HintsNameTheScriptLine) {
  ScratchDir scratch;
  const std::string script = scratch.write(
      "hint.cmpihost", "echo x\nain 'Cli_Widget.Name=\"w1\"' --result-class Cli_Gadget\n");
  const CommandResult result = RunCmpihost(WithProvider({"run", script}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "x\n");
  EXPECT_EQ(result.err, "cmpihost: " + script +
                            ":2: hint: the library's providers answer nothing when the request "
                            "names no association class; name one with --assoc-class\n");
}

TEST(ScriptTest, DirectivesLoadRelativeToTheScriptAndSwitchNamespaces) {
  ScratchDir scratch;
  std::filesystem::create_directory(scratch.path() + "/mof");
  std::filesystem::copy_file(DataFile("widgets.mof"), scratch.path() + "/mof/widgets.mof");
  const std::string script = scratch.write("directives.cmpihost",
                                           "mof mof/widgets.mof\n"
                                           "lib-dir " +
                                               ProviderDir() +
                                               "\n"
                                               "providers " +
                                               DataFile("clitest.reg") +
                                               "\n"
                                               "ein Cli_Widget\n"
                                               "namespace root/other\n"
                                               "mof mof/widgets.mof\n"
                                               "ein Cli_Shelf\n"
                                               "ein root/cimv2:Cli_Shelf\n");
  const CommandResult result = RunCmpihost({"run", script});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "root/cimv2:Cli_Widget.Name=\"w1\"\n"
            "root/cimv2:Cli_Widget.Name=\"w2\"\n"
            "root/other:Cli_Shelf.Id=\"s1\"\n"
            "root/other:Cli_Shelf.Id=\"s2\"\n"
            "root/cimv2:Cli_Shelf.Id=\"s1\"\n"
            "root/cimv2:Cli_Shelf.Id=\"s2\"\n");
}

TEST(ScriptTest, StandardInputRunsWithDashOrWithoutAVerb) {
  const std::string input = "echo hi\n  # comment\nein Cli_Shelf\n";
  const std::string expected =
      "hi\nroot/cimv2:Cli_Shelf.Id=\"s1\"\nroot/cimv2:Cli_Shelf.Id=\"s2\"\n";
  for (const auto& args : {WithMof({"-"}), WithMof({})}) {
    const CommandResult result = RunCmpihost(args, input);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, expected);
  }
  // With --json every step is one line, a failed or bad one included.
  const CommandResult json = RunCmpihost(WithProvider({"--json"}),
                                         "echo a \"b\"\nnamespace root/cimv2\necn Cli_Shelf\n"
                                         "cm 'Cli_Widget.Name=\"w1\"' Fail\ngi Nope\necho never\n");
  EXPECT_EQ(json.exitCode, 2);
  EXPECT_EQ(json.out,
            "{\"echo\":\"a b\"}\n"
            "{\"namespace\":\"root/cimv2\"}\n"
            "[\"Cli_Shelf\"]\n"
            R"({"error":{"code":1,"name":"CMPI_RC_ERR_FAILED","message":"the widget refused"}})"
            "\n"
            R"({"error":{"code":null,"name":"usage","message":"<stdin>:5: gi: unknown class Nope )"
            R"(in namespace root/cimv2"}})"
            "\n");

  const CommandResult bad = RunCmpihost(WithMof({"-"}), "echo hi\ngi Nope\necho never\n");
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.out, "hi\n");
  EXPECT_EQ(bad.err, "cmpihost: <stdin>:2: gi: unknown class Nope in namespace root/cimv2\n");

  const CommandResult empty = RunCmpihost({}, "");
  EXPECT_EQ(empty.exitCode, 0);
  EXPECT_EQ(empty.out + empty.err, "");
}

// unload-idle asks what a CIMOM's idle sweep asks; the provider answers OK
// for each MI, so it is unloaded and the next request creates what it needs.
TEST(ScriptTest, UnloadIdleShowsEachMisAnswerAndTheNextRequestReloads) {
  const CommandResult result = RunCmpihost(
      WithProvider({"--trace", "-"}), "unload-idle\nein Cli_Widget\nunload-idle\nunload-idle\n");
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "provider CliTest, Instance MI: CMPI_RC_OK, unloaded\n"
            "provider CliTest, Method MI: CMPI_RC_OK, unloaded\n"
            "provider CliTest, Association MI: CMPI_RC_OK, unloaded\n"
            "root/cimv2:Cli_Widget.Name=\"w1\"\n"
            "root/cimv2:Cli_Widget.Name=\"w2\"\n"
            "provider CliTest, Instance MI: CMPI_RC_OK, unloaded\n");
  EXPECT_EQ(result.err,
            "[2 cmpihost] idle unload: provider CliTest, Instance MI cleanup answered CMPI_RC_OK; "
            "unloaded\n"
            "[2 cmpihost] idle unload: provider CliTest, Method MI cleanup answered CMPI_RC_OK; "
            "unloaded\n"
            "[2 cmpihost] idle unload: provider CliTest, Association MI cleanup answered "
            "CMPI_RC_OK; unloaded\n"
            "[4 clitest] +++ EnumInstanceNames\n"
            "[2 cmpihost] idle unload: provider CliTest, Instance MI cleanup answered CMPI_RC_OK; "
            "unloaded\n");

  const CommandResult json = RunCmpihost(WithProvider({"--json", "-"}), "unload-idle\n");
  EXPECT_EQ(
      json.out,
      "[{\"provider\":\"CliTest\",\"kind\":\"Instance\",\"rc\":\"CMPI_RC_OK\",\"unloaded\":true},"
      "{\"provider\":\"CliTest\",\"kind\":\"Method\",\"rc\":\"CMPI_RC_OK\",\"unloaded\":true},"
      "{\"provider\":\"CliTest\",\"kind\":\"Association\",\"rc\":\"CMPI_RC_OK\","
      "\"unloaded\":true}]\n");

  const CommandResult bad = RunCmpihost(WithProvider({"-"}), "unload-idle now\n");
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.err,
            "cmpihost: <stdin>:1: unload-idle: unexpected argument \"now\" (usage: unload-idle)\n");
}

// Global options may follow the verb; --trace=LEVEL prints LEVEL and the
// more severe records; with --json bad usage is a document too.
TEST(CommandLineTest, TraceLevelsAndJsonErrors) {
  const struct {
    const char* option;
    const char* err;
  } cases[] = {
      {"--trace", "[4 clitest] +++ InvokeMethod\n[trace 2 clitest] Twice called\n"},
      {"--trace=info", "[trace 2 clitest] Twice called\n"},
      {"--trace=warning", "[trace 2 clitest] Twice called\n"},
      {"--trace=error", ""},
  };
  for (const auto& c : cases) {
    const CommandResult twice =
        RunCmpihost(WithProvider({"cm", "Cli_Widget.Name=\"w1\"", "twice", c.option, "n=1"}));
    EXPECT_EQ(twice.exitCode, 0) << c.option;
    EXPECT_EQ(twice.out, "ReturnValue = 2\nDoubled = \"\"\n") << c.option;
    EXPECT_EQ(twice.err, c.err) << c.option;
  }
  const CommandResult option = RunCmpihost({"ein", "X", "--json", "--bogus"});
  EXPECT_EQ(option.exitCode, 2);
  EXPECT_EQ(option.out,
            "{\"error\":{\"code\":null,\"name\":\"usage\",\"message\":\"ein: unknown option "
            "--bogus (usage: cmpihost ein CLASS)\"}}\n");
}

}  // namespace
}  // namespace cmpihost::testing
