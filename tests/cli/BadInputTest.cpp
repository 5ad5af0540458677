// Bad usage and bad input: each gives exit code 2, nothing on standard
// output and exactly one line on standard error that says what and where.
// Where the host words the problem (a path's keys, a value, a MOF or
// registration file), the command's part and the location are compared
// exactly and the host's wording after them is left to the host's tests.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RunCommand.h"

namespace cmpihost::testing {
namespace {

struct BadInput {
  const char* what;
  std::vector<std::string> args;
  std::string err;  // the whole of standard error, or its start when it ends in "..."
};

void ExpectRefused(const BadInput& c) {
  const CommandResult result = RunCmpihost(c.args);
  EXPECT_EQ(result.exitCode, 2) << c.what << "\n" << result.err;
  EXPECT_EQ(result.out, "") << c.what;
  const std::string ellipsis = "...";
  if (c.err.size() > ellipsis.size() &&
      c.err.compare(c.err.size() - ellipsis.size(), ellipsis.size(), ellipsis) == 0) {
    const std::string start = c.err.substr(0, c.err.size() - ellipsis.size());
    EXPECT_EQ(result.err.substr(0, start.size()), start) << c.what;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << c.what << ": not one line";
  } else {
    EXPECT_EQ(result.err, c.err) << c.what;
  }
}

const char* const kWidget = R"(Cli_Widget.Name="w1")";
// A link whose Widget key names a shelf.
const char* const kLinkToShelfAsWidget =
    R"(Cli_WidgetOnShelf.Shelf="Cli_Shelf.Id=\"s1\"",Widget="Cli_Shelf.Id=\"s2\"")";

TEST(BadInputTest, UsageErrors) {
  const std::string verbs =
      "(verbs: ecn, gc, ei, ein, gi, cm, ai, ain, ri, rin, run, -, new, help; see cmpihost --help)";
  const BadInput cases[] = {
      {"unknown option before the verb",
       {"--bogus", "ecn"},
       "cmpihost: unknown option --bogus (see cmpihost --help)\n"},
      {"option without its value", {"--mof"}, "cmpihost: option --mof needs a value (FILE)\n"},
      {"option after the verb without its value",
       {"ei", "C", "--providers"},
       "cmpihost: option --providers needs a value (REGFILE)\n"},
      {"unknown trace level",
       {"--trace=loud", "ecn"},
       "cmpihost: option --trace takes error, warning, info or debug, not \"loud\"\n"},
      {"empty namespace",
       {"--namespace=", "ecn"},
       "cmpihost: option --namespace needs a non-empty namespace\n"},
      {"missing class", {"ei"}, "cmpihost: ei: missing CLASS (usage: cmpihost ei CLASS)\n"},
      {"missing method",
       {"cm", "P"},
       "cmpihost: cm: missing METHOD (usage: cmpihost cm PATH METHOD [NAME=VALUE ...])\n"},
      {"surplus argument",
       {"ei", "A", "B"},
       "cmpihost: ei: unexpected argument \"B\" (usage: cmpihost ei CLASS)\n"},
      {"empty class", {"ei", ""}, "cmpihost: ei: empty CLASS (usage: cmpihost ei CLASS)\n"},
      {"argument that is no NAME=VALUE",
       {"cm", "P", "M", "=5"},
       "cmpihost: cm: argument \"=5\" is not NAME=VALUE (usage: cmpihost cm PATH METHOD "
       "[NAME=VALUE ...])\n"},
      {"filter option the verb does not take",
       {"ri", "P", "--assoc-class", "A"},
       "cmpihost: ri: unknown option --assoc-class (usage: cmpihost ri PATH [--result-class C] "
       "[--role R])\n"},
      {"filter option without its value",
       {"ai", "P", "--role"},
       "cmpihost: ai: option --role needs a value (usage: cmpihost ai PATH [FILTER OPTIONS])\n"},
      {"filter option with an empty value",
       {"ai", "P", "--role="},
       "cmpihost: ai: option --role needs a non-empty value (usage: cmpihost ai PATH [FILTER "
       "OPTIONS])\n"},
      {"filter option given twice",
       {"ai", "P", "--role", "A", "--role=B"},
       "cmpihost: ai: option --role is given twice (usage: cmpihost ai PATH [FILTER OPTIONS])\n"},
      {"unknown verb", {"eii", "Cli_Shelf"}, "cmpihost: unknown verb \"eii\" " + verbs + "\n"},
      {"run without file", {"run"}, "cmpihost: run: missing FILE (usage: cmpihost run FILE)\n"},
      {"script that is a folder",
       {"run", "/"},
       "cmpihost: run: cannot read the script /: it is a directory\n"},
      {"registration file that is a folder",
       {"--providers", "/", "ecn"},
       "cmpihost: /: cannot read the registration file: it is a directory\n"},
      {"dash with arguments",
       {"-", "ecn"},
       "cmpihost: -: unexpected argument \"ecn\" (usage: cmpihost -)\n"},
      {"help for an unknown verb",
       {"help", "nope"},
       "cmpihost: unknown verb \"nope\" " + verbs + "\n"},
  };
  for (const BadInput& c : cases) {
    ExpectRefused(c);
  }
}

TEST(BadInputTest, PathsClassesMethodsAndArguments) {
  const BadInput cases[] = {
      {"malformed path head",
       {"gi", "Cli_Shelf:Id=\"s1\""},
       "cmpihost: gi: path text 'Cli_Shelf:Id=\"s1\"': column 13: expected '.' and keys after the "
       "class name, found '='\n"},
      {"malformed keys",
       {"gi", "Cli_Shelf.Id=\"s1"},
       "cmpihost: gi: path text 'Cli_Shelf.Id=\"s1': column 14: ..."},
      {"class name where a path is needed",
       {"ei", "Cli_Shelf.Id=\"s1\""},
       "cmpihost: ei: expected a class name, not an instance path: Cli_Shelf.Id=\"s1\"\n"},
      {"get of a class that is not loaded",
       {"gc", "Nope"},
       "cmpihost: gc: unknown class Nope in namespace root/cimv2\n"},
      {"get of an instance path instead of a class",
       {"gc", kWidget},
       "cmpihost: gc: expected a class name, not an instance path: Cli_Widget.Name=\"w1\"\n"},
      {"unknown class",
       {"ei", "Nope"},
       "cmpihost: ei: unknown class Nope in namespace root/cimv2\n"},
      {"unknown filter class",
       {"ai", kWidget, "--assoc-class", "Nope"},
       "cmpihost: ai: unknown class Nope in namespace root/cimv2\n"},
      {"class of another namespace",
       {"ecn", "root/none:Cli_Shelf"},
       "cmpihost: ecn: unknown class Cli_Shelf in namespace root/none\n"},
      {"unknown method",
       {"cm", kWidget, "Thrice"},
       "cmpihost: cm: class Cli_Widget has no method Thrice (its methods: Twice, Fail)\n"},
      {"method of a class without methods",
       {"cm", "Cli_Shelf.Id=\"s1\"", "Go"},
       "cmpihost: cm: class Cli_Shelf has no method Go (it declares none)\n"},
      {"unknown argument",
       {"cm", kWidget, "Twice", "Count=1"},
       "cmpihost: cm: method Twice of class Cli_Widget has no input parameter Count (its input "
       "parameters: N, Label, Peer)\n"},
      {"output-only argument",
       {"cm", kWidget, "Twice", "Doubled=x"},
       "cmpihost: cm: method Twice of class Cli_Widget has no input parameter Doubled (its input "
       "parameters: N, Label, Peer)\n"},
      {"argument given twice",
       {"cm", kWidget, "Twice", "N=1", "n=2"},
       "cmpihost: cm: argument N is given twice\n"},
      {"argument of the wrong type",
       {"cm", kWidget, "Twice", "N=many"},
       "cmpihost: cm: argument N: 'many' ..."},
      {"reference argument that is no path",
       {"cm", kWidget, "Twice", "Peer=Cli_Widget.Name=\"w2"},
       "cmpihost: cm: argument Peer: ..."},
      {"reference argument of an unknown class",
       {"cm", kWidget, "Twice", "Peer=Cli_Widgt.Name=\"w2\""},
       "cmpihost: cm: argument Peer: unknown class Cli_Widgt in namespace root/cimv2\n"},
      {"reference argument of an unrelated class",
       {"cm", kWidget, "Twice", "Peer=Cli_Shelf.Id=\"s1\""},
       "cmpihost: cm: argument Peer: class Cli_Shelf is neither Cli_Element (the declared "
       "reference class) nor a subclass of it\n"},
      {"reference key of an unrelated class",
       {"ai", kLinkToShelfAsWidget},
       "cmpihost: ai: key Widget: class Cli_Shelf is neither Cli_Widget (the declared reference "
       "class) nor a subclass of it\n"},
      {"reference key that is no path",
       {"gi", "Cli_WidgetOnShelf.Widget=\"Cli_Widget.\""},
       "cmpihost: gi: key Widget: path text 'Cli_Widget.': column 12: expected a key name\n"},
      {"path without one of its keys",
       {"gi", R"(Cli_WidgetOnShelf.Widget="Cli_Widget.Name=\"w1\"")"},
       "cmpihost: gi: path 'Cli_WidgetOnShelf.Widget=\"Cli_Widget.Name=\\\"w1\\\"\"' lacks key "
       "Shelf of class Cli_WidgetOnShelf\n"},
      {"get of a bare class name",
       {"gi", "Cli_WidgetOnShelf"},
       "cmpihost: gi: path 'Cli_WidgetOnShelf' lacks keys Widget, Shelf of class "
       "Cli_WidgetOnShelf\n"},
      {"method call on a path without its keys",
       {"cm", "Cli_Widget.Count=1", "Fail"},
       "cmpihost: cm: path 'Cli_Widget.Count=1' lacks key Name of class Cli_Widget\n"},
      {"assoc-class that is no association",
       {"ain", kWidget, "--assoc-class", "Cli_Shelf"},
       "cmpihost: ain: --assoc-class Cli_Shelf: the class is not an association\n"},
      {"result-class of references that is no association",
       {"rin", kWidget, "--result-class", "Cli_Shelf"},
       "cmpihost: rin: --result-class Cli_Shelf: the class is not an association\n"},
  };
  for (const BadInput& c : cases) {
    BadInput withProvider = c;
    withProvider.args = WithProvider(c.args);
    ExpectRefused(withProvider);
  }
}

TEST(BadInputTest, ReferencesOfTheDeclaredClassOrASubclassReachTheProvider) {
  // Cli_Element is abstract and Peer's declared class; Cli_Widget derives from it.
  const CommandResult subclass =
      RunCmpihost(WithProvider({"cm", kWidget, "Twice", "Peer=root/cimv2:Cli_Widget.Name=\"w2\""}));
  EXPECT_EQ(subclass.exitCode, 0) << subclass.err;
  // Well-typed reference keys: the request is made (and fails, as nothing
  // serves GetInstance of the association).
  const CommandResult keys = RunCmpihost(WithProvider(
      {"gi", R"(Cli_WidgetOnShelf.Shelf="Cli_Shelf.Id=\"s1\"",Widget="Cli_Widget.Name=\"w1\"")"}));
  EXPECT_EQ(keys.exitCode, 1) << keys.err;
  EXPECT_EQ(keys.err.rfind("cmpihost: GetInstance failed: ", 0), 0U) << keys.err;
}

TEST(BadInputTest, FilesThatDoNotLoad) {
  ScratchDir scratch;
  const std::string badMof =
      scratch.write("bad.mof", "class Ok { };\nclass Bad { string Name };\n");
  const std::string missingLibrary = scratch.write("missing.reg",
                                                   "[Cli_Widget]\n"
                                                   "   provider: Gone\n"
                                                   "   location: gone\n"
                                                   "   type: instance\n");
  const std::string noFactory = scratch.write("nofactory.reg",
                                              "[Cli_Widget]\n"
                                              "   provider: NoFactory\n"
                                              "   location: clinofactory\n"
                                              "   type: instance\n");
  const std::string broken = scratch.write("broken.reg",
                                           "[Cli_Widget]\n"
                                           "   provider CliTest\n");
  const BadInput cases[] = {
      {"MOF error", {"--mof", badMof, "ecn"}, "cmpihost: " + badMof + ":2:25: ..."},
      {"missing MOF file",
       {"--mof", scratch.path() + "/none.mof", "ecn"},
       "cmpihost: " + scratch.path() +
           "/none.mof: cannot open the MOF file: No such file or directory\n"},
      {"MOF file that is a folder",
       {"--mof", scratch.path(), "ecn"},
       "cmpihost: " + scratch.path() + ": cannot read the MOF file: it is a directory\n"},
      {"missing provider library",
       WithMof({"--lib-dir", ProviderDir(), "--providers", missingLibrary, "ecn"}),
       "cmpihost: " + missingLibrary + ":1: libgone.so of provider Gone is not in " +
           ProviderDir() + ", " + scratch.path() + "\n"},
      {"missing factory symbol",
       WithMof({"--lib-dir", ProviderDir(), "--providers", noFactory, "ecn"}),
       "cmpihost: " + noFactory + ":2: provider NoFactory: " + ProviderDir() +
           "/libclinofactory.so exports no NoFactory_Create_<Kind>MI nor "
           "_Generic_Create_<Kind>MI for Instance; \"provider:\" must be the name the plug-in "
           "gives its provider macro\n"},
      {"broken registration file", WithMof({"--providers", broken, "ecn"}),
       "cmpihost: " + broken + ":2: ..."},
      {"missing registration file", WithMof({"--providers", scratch.path() + "/none.reg", "ecn"}),
       "cmpihost: " + scratch.path() +
           "/none.reg: cannot open the registration file: No such file or directory\n"},
      {"missing script",
       {"run", scratch.path() + "/none.cmpihost"},
       "cmpihost: run: cannot open the script " + scratch.path() +
           "/none.cmpihost: No such file or directory\n"},
  };
  for (const BadInput& c : cases) {
    ExpectRefused(c);
  }
}

}  // namespace
}  // namespace cmpihost::testing
