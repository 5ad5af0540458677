// The command line and script words are read into options and requests, and
// every shape error is a UsageError that says what is wrong.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/Help.h"
#include "cli/Options.h"
#include "cli/PathHead.h"
#include "cli/Request.h"
#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

Options Parse(std::vector<const char*> args) {
  args.insert(args.begin(), "cmpihost");
  return ParseOptions(static_cast<int>(args.size()), args.data());
}

template <typename Call>
std::string ErrorOf(Call&& call) {
  try {
    call();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "(no error)";
}

TEST(OptionsTest, RepeatableOptionsKeepTheirOrderBeforeAndAfterTheVerb) {
  const Options options =
      Parse({"--mof",        "a.mof",       "--providers",   "p.reg",   "--lib-dir",
             "/x",           "--namespace", "root/test",     "--trace", "ai",
             "--json",       "P",           "--assoc-class", "A",       "--mof=b.mof",
             "--lib-dir=/y", "--progress",  "--help",        "--",      "--json"});
  EXPECT_EQ(options.mofFiles, (std::vector<std::string>{"a.mof", "b.mof"}));
  EXPECT_EQ(options.registrationFiles, std::vector<std::string>{"p.reg"});
  EXPECT_EQ(options.libraryDirs, (std::vector<std::string>{"/x", "/y"}));
  EXPECT_EQ(options.nameSpace, "root/test");
  EXPECT_TRUE(options.json && options.trace && options.progress);
  EXPECT_FALSE(options.help);  // after the verb, it asks for the verb's help
  EXPECT_EQ(options.words,
            (std::vector<std::string>{"ai", "P", "--assoc-class", "A", "--help", "--json"}));

  EXPECT_EQ(Parse({"-"}).words, std::vector<std::string>{"-"});
  EXPECT_EQ(Parse({"--", "--odd"}).words, std::vector<std::string>{"--odd"});
  EXPECT_EQ(Parse({}).nameSpace, "root/cimv2");
}

TEST(OptionsTest, BadOptionsAreNamed) {
  EXPECT_EQ(ErrorOf([] {
              Parse({"--bogus", "ecn"});
            }),
            "unknown option --bogus (see cmpihost --help)");
  EXPECT_EQ(ErrorOf([] { Parse({"--mof"}); }), "option --mof needs a value (FILE)");
  EXPECT_EQ(ErrorOf([] { Parse({"ei", "C", "--mof"}); }), "option --mof needs a value (FILE)");
  EXPECT_EQ(ErrorOf([] {
              Parse({"--trace=loud", "ecn"});
            }),
            "option --trace takes error, warning, info or debug, not \"loud\"");
  EXPECT_EQ(ErrorOf([] { Parse({"--providers"}); }), "option --providers needs a value (REGFILE)");
  EXPECT_EQ(ErrorOf([] { Parse({"--namespace="}); }),
            "option --namespace needs a non-empty namespace");
}

TEST(RequestTest, ReadsEachVerbsArguments) {
  const Request cm = ParseRequest({"cm", "Cli_Widget.Name=\"w1\"", "Twice", "N=2", "Label=a=b"});
  EXPECT_EQ(cm.verb->verb, Verb::kInvokeMethod);
  EXPECT_EQ(cm.target, "Cli_Widget.Name=\"w1\"");
  EXPECT_EQ(cm.method, "Twice");
  ASSERT_EQ(cm.arguments.size(), 2U);
  EXPECT_EQ(cm.arguments[1].name, "Label");
  EXPECT_EQ(cm.arguments[1].value, "a=b");

  const Request ai = ParseRequest({"ai", "--assoc-class", "A", "P", "--result-class=R", "--role",
                                   "Left", "--result-role=Right"});
  EXPECT_EQ(ai.target, "P");
  EXPECT_EQ(ai.filter.assocClass, "A");
  EXPECT_EQ(ai.filter.resultClass, "R");
  EXPECT_EQ(ai.filter.role, "Left");
  EXPECT_EQ(ai.filter.resultRole, "Right");

  const Request rin = ParseRequest({"rin", "P", "--result-class", "A"});
  EXPECT_EQ(rin.filter.resultClass, "A");
  EXPECT_FALSE(rin.filter.assocClass.has_value());
  EXPECT_TRUE(ParseRequest({"ecn"}).target.empty());
}

TEST(RequestTest, ShapeErrorsSayWhatAndShowTheUsage) {
  const struct {
    std::vector<std::string> words;
    std::string message;
  } cases[] = {
      {{"eii", "X"},
       "unknown verb \"eii\" (verbs: ecn, gc, ei, ein, gi, cm, ai, ain, ri, rin, run, -, new, "
       "help; "
       "see "
       "cmpihost --help)"},
      {{"ei"}, "ei: missing CLASS (usage: cmpihost ei CLASS)"},
      {{"gi"}, "gi: missing PATH (usage: cmpihost gi PATH)"},
      {{"cm", "P"}, "cm: missing METHOD (usage: cmpihost cm PATH METHOD [NAME=VALUE ...])"},
      {{"ei", "A", "B"}, "ei: unexpected argument \"B\" (usage: cmpihost ei CLASS)"},
      {{"ei", ""}, "ei: empty CLASS (usage: cmpihost ei CLASS)"},
      {{"cm", "P", "M", "N"},
       "cm: argument \"N\" is not NAME=VALUE (usage: cmpihost cm PATH METHOD [NAME=VALUE ...])"},
      {{"cm", "P", "M", "=5"},
       "cm: argument \"=5\" is not NAME=VALUE (usage: cmpihost cm PATH METHOD [NAME=VALUE ...])"},
      {{"gi", "P", "--role", "R"}, "gi: unknown option --role (usage: cmpihost gi PATH)"},
      {{"ri", "P", "--assoc-class", "A"},
       "ri: unknown option --assoc-class (usage: cmpihost ri PATH [--result-class C] [--role R])"},
      {{"ai", "P", "--role"},
       "ai: option --role needs a value (usage: cmpihost ai PATH [FILTER OPTIONS])"},
      {{"ai", "P", "--role="},
       "ai: option --role needs a non-empty value (usage: cmpihost ai PATH [FILTER OPTIONS])"},
      {{"ai", "P", "--role", "A", "--role", "B"},
       "ai: option --role is given twice (usage: cmpihost ai PATH [FILTER OPTIONS])"},
      {{},
       "no verb given (verbs: ecn, gc, ei, ein, gi, cm, ai, ain, ri, rin, run, -, new, help; see "
       "cmpihost --help)"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorOf([&] { ParseRequest(c.words); }), c.message);
  }
}

TEST(PathHeadTest, FindsNamespaceAndClassBeforeTheKeys) {
  const PathHead plain = ReadPathHead("Cli_Shelf");
  EXPECT_EQ(plain.nameSpace, "");
  EXPECT_EQ(plain.className, "Cli_Shelf");
  EXPECT_FALSE(plain.hasKeys);

  const std::string colonInKey = "Cli_Shelf.Id=\"a:b\"";
  const PathHead keyed = ReadPathHead(colonInKey);
  EXPECT_EQ(keyed.nameSpace, "");
  EXPECT_TRUE(keyed.hasKeys);

  const std::string full = "//box/root/my.ns:Cli_Shelf.Id=\"s1\"";
  const PathHead hosted = ReadPathHead(full);
  EXPECT_EQ(hosted.nameSpace, "root/my.ns");
  EXPECT_EQ(hosted.className, "Cli_Shelf");
}

TEST(PathHeadTest, MalformedHeadsNameTheColumn) {
  const struct {
    std::string text;
    std::string message;
  } cases[] = {
      {"", "path text '': column 1: expected a class name, found the end"},
      {"root/cimv2:", "path text 'root/cimv2:': column 12: expected a class name, found the end"},
      {":Cli_Shelf", "path text ':Cli_Shelf': column 1: empty namespace before ':'"},
      {"9Shelf", "path text '9Shelf': column 1: expected a class name, found '9'"},
      {"Cli-Shelf",
       "path text 'Cli-Shelf': column 4: expected '.' and keys after the class name, "
       "found '-'"},
      {"Cli_Shelf.", "path text 'Cli_Shelf.': column 11: expected keys after '.', found the end"},
      {"//box", "path text '//box': column 3: expected //host/ before the namespace or class"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorOf([&] { ReadPathHead(c.text); }), c.message);
  }
}

TEST(HelpTest, GeneralHelpNamesEveryVerbAndOption) {
  const std::string help = GeneralHelp();
  for (const VerbInfo& verb : AllVerbs()) {
    EXPECT_NE(help.find("\n  " + std::string(verb.name) + " "), std::string::npos) << verb.name;
  }
  for (const char* option : {"--mof FILE", "--providers REGFILE", "--lib-dir DIR", "--namespace NS",
                             "--json", "--trace", "--progress", "--help", "--version",
                             "--assoc-class", "--result-class", "--role", "--result-role"}) {
    EXPECT_NE((help + HelpFor({"ai"})).find(option), std::string::npos) << option;
  }
  for (const char* directive :
       {"echo TEXT", "mof FILE", "providers REGFILE", "lib-dir DIR", "namespace NS"}) {
    EXPECT_NE(help.find(directive), std::string::npos) << directive;
  }
}

TEST(HelpTest, EveryVerbHasItsOwnHelpWithAnExample) {
  for (const VerbInfo& verb : AllVerbs()) {
    const std::string help = HelpFor({"help", verb.name});
    if (verb.verb != Verb::kHelp) {
      EXPECT_EQ(help, HelpFor({verb.name, "--help"}));
    }
    std::istringstream lines(help + GeneralHelp());
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), 80U) << line;
    }
    EXPECT_EQ(help.rfind(std::string("Usage: cmpihost [OPTIONS] ") + verb.name, 0), 0U) << help;
    if (verb.verb != Verb::kHelp) {
      EXPECT_NE(help.find("cmpihost "), help.rfind("cmpihost ")) << "no example: " << verb.name;
    }
  }
  EXPECT_EQ(HelpFor({"help"}), GeneralHelp());
  EXPECT_EQ(ErrorOf([] { HelpFor({"help", "nope"}); }).rfind("unknown verb \"nope\"", 0), 0U);
}

}  // namespace
}  // namespace cmpihost::cli
