#include "cli/Help.h"

#include "cli/Request.h"
#include "cli/UsageError.h"
#include "cli/Verbs.h"

namespace cmpihost::cli {
namespace {

const char* const kIntroduction =
    "Usage: cmpihost [OPTIONS] VERB [ARGS...]\n"
    "       cmpihost [OPTIONS] run FILE\n"
    "       cmpihost [OPTIONS] [-]        (commands read from standard input)\n"
    "\n"
    "An embedded CMPI host: loads MOF classes and CMPI provider libraries into\n"
    "one process and answers requests as a CIMOM would, with wbemcli-style verbs\n"
    "and MOF-style output.\n"
    "\n"
    "Options (before or after the verb; a value may also be written\n"
    "--option=VALUE; after \"--\" every word is the verb's):\n"
    "  --mof FILE           load the qualifiers, classes and instances of a MOF\n"
    "                       file; repeatable, loaded in the order given\n"
    "  --providers REGFILE  register the providers of a registration file\n"
    "                       (stanzas: [Class] then provider:, location:, type:,\n"
    "                       namespace:, unload:); repeatable, loaded after every\n"
    "                       MOF file; each provider is created at once, so a\n"
    "                       missing library or factory shows before the verb runs\n"
    "  --lib-dir DIR        look for provider libraries lib<location>.so in DIR\n"
    "                       before the registration file's own folder; repeatable\n"
    "  --namespace NS       the namespace of classes and paths that name none,\n"
    "                       and where MOF files without #pragma namespace go\n"
    "                       (default root/cimv2)\n"
    "  --json               print results as JSON, one document per line\n"
    "  --trace[=LEVEL]      print the providers' log and trace records on\n"
    "                       standard error as they arrive (see Trace below);\n"
    "                       LEVEL error, warning, info or debug (the default)\n"
    "                       prints that severity and the more severe ones\n"
    "  --progress           in script mode, print \"[N/TOTAL] command\" on\n"
    "                       standard error before each line (done anyway, redrawn\n"
    "                       in place, when a script file runs with standard error\n"
    "                       on a terminal)\n"
    "  -h, --help           print this help (VERB --help: the help of VERB)\n"
    "  --version            print the version\n"
    "\n"
    "Verbs:\n";

const char* const kReference =
    "\n"
    "Paths:\n"
    "  [//host/][namespace:]Class[.Key=value,...]; string, date-time and reference\n"
    "  values in double quotes (with \\\" and \\\\ escaped), numbers bare, booleans\n"
    "  TRUE or FALSE. Quote paths for the shell: 'root/cimv2:CIM_Foo.Name=\"a\",N=5'.\n"
    "\n"
    "Output:\n"
    "  ei, gi, ai, ri: each instance as a \"// path\" comment, then\n"
    "  \"instance of Class {\", one \"    Property = value;\" line per property and\n"
    "  \"};\", with a blank line between instances.\n"
    "  ecn, ein, ain, rin: one class name or path per line.\n"
    "  cm: \"ReturnValue = value\", then one \"Name = value\" line per output argument.\n"
    "  Values as in MOF: 52, -3, 2.5, TRUE, \"text\", 'c', {1, 2}, NULL; date-times\n"
    "  and references as quoted texts.\n"
    "  With --json, one JSON document per command, on one line:\n"
    "    ecn, ein, ain, rin  an array of strings\n"
    "    ei, ai, ri          an array of instances; gi: one instance, where an\n"
    "                        instance is {\"className\": C, \"path\": P,\n"
    "                        \"properties\": {NAME: {\"type\": T, \"value\": V}, ...}}\n"
    "    cm                  {\"returnValue\": {\"type\": T, \"value\": V} or null,\n"
    "                        \"outArguments\": {NAME: {\"type\": T, \"value\": V}, ...}}\n"
    "    gc                  {\"className\": C, \"superClass\": S, \"keys\": [...],\n"
    "                        \"properties\": {...}, \"methods\": {...}}\n"
    "    echo                {\"echo\": TEXT}\n"
    "    unload-idle         [{\"provider\": P, \"kind\": K, \"rc\": RC,\n"
    "                        \"unloaded\": true or false}, ...]\n"
    "    mof, providers,     {\"mof\": FILE} and so on: every script line is\n"
    "    lib-dir, namespace  one document\n"
    "    a failure           {\"error\": {\"code\": RC, \"name\": CMPI_RC_NAME,\n"
    "                        \"message\": M}}, in place of the answer; for bad\n"
    "                        usage or input code null and name \"usage\". The\n"
    "                        error line still goes to standard error.\n"
    "  T is the CIM type (string, uint32, boolean, datetime, ref, ...), with \"[]\"\n"
    "  for arrays; V is a number, true or false, a string (also date-times and\n"
    "  references), an array, or null.\n"
    "\n"
    "Trace (--trace), one line per record on standard error:\n"
    "  [SEVERITY ID] TEXT             logMessage; SEVERITY 1 error, 2 info,\n"
    "                                 3 warning, 4 debug\n"
    "  [trace LEVEL COMPONENT] TEXT   trace; LEVEL 1 info, 2 warning, 3 verbose\n"
    "                                 (filtered as debug)\n"
    "\n"
    "Scripts (run FILE, or standard input):\n"
    "  One command per line, written as after the options on the command line:\n"
    "  words split at blanks, 'single' and \"double\" quotes and backslash escapes\n"
    "  as in the shell; a backslash at the end of a line continues the command on\n"
    "  the next line; # starts a comment; blank lines are skipped. Besides the\n"
    "  verbs (but not run), a script may say:\n"
    "    echo TEXT...      print TEXT (to title the sections of a demo)\n"
    "    mof FILE          load a MOF file\n"
    "    providers REGFILE register the providers of a registration file\n"
    "    lib-dir DIR       look for provider libraries in DIR too (later lines)\n"
    "    namespace NS      make NS the default namespace of the lines that follow\n"
    "    unload-idle       unload idle providers as a CIMOM does: call each\n"
    "                      created MI's cleanup (not terminating) and print\n"
    "                      \"provider P, Kind MI: CODE, unloaded\" (or \"stays\n"
    "                      loaded\") for each\n"
    "  Relative FILE and DIR names are taken from the script's own folder (from\n"
    "  the current folder for standard input). All lines run in one process, so\n"
    "  what one line creates (a diagnostic record, say) is seen by later lines.\n"
    "  A failing request prints its error and the script goes on; the exit code\n"
    "  is then 1. A bad line prints \"cmpihost: FILE:LINE: problem\" and stops the\n"
    "  script with exit code 2 (standard input on a terminal just goes on).\n"
    "\n"
    "Exit codes:\n"
    "  0  success\n"
    "  1  a request failed; the error reads\n"
    "     \"cmpihost: Operation failed: CMPI_RC_NAME (code): message\"\n"
    "  2  bad usage or input: an unknown verb or option, a missing argument, a\n"
    "     malformed path or one that lacks keys of its class, an unknown class,\n"
    "     method or parameter, an --assoc-class (ri, rin: --result-class) that\n"
    "     is no association, an argument of the wrong type, a MOF,\n"
    "     registration or script file that does not load,\n"
    "     a provider library or factory that is missing\n"
    "\n"
    "Examples:\n"
    "  The examples use the shipped schema and example plug-in, installed under\n"
    "  the prefix P, and name two of the example's objects. In a shell:\n"
    "    S=$P/share/diagcore\n"
    "    E=$S/examples/filesystem-diag\n"
    "    FSD=\"--mof $S/schema/diagcore.mof --mof $E/mof/filesystemdiag.mof\n"
    "      --providers $E/deploy/filesystemdiag.reg --lib-dir $P/lib/diagcore\"\n"
    "    SYS=\"SystemCreationClassName=\\\"TORSK_ComputerSystem\\\",\\\n"
    "SystemName=\\\"$(uname -n)\\\"\"\n"
    "    SERVICE=\"FSD_FileSystemDiagnosticService.Name=\\\"FreeSpaceCheck\\\",\\\n"
    "CreationClassName=\\\"FSD_FileSystemDiagnosticService\\\",$SYS\"\n"
    "    ROOT=\"FSD_MountedFileSystem.DeviceID=\\\"/\\\",\\\n"
    "CreationClassName=\\\"FSD_MountedFileSystem\\\",$SYS\"\n"
    "  Then:\n"
    "    cmpihost $FSD ecn\n"
    "    cmpihost $FSD --json gi \"$SERVICE\"\n"
    "    cmpihost $FSD --trace=warning cm \"$SERVICE\" RunDiagnostic \\\n"
    "      \"ManagedElement=$ROOT\"\n"
    "  Each verb's help (cmpihost VERB --help) has one more.\n";

std::string VerbLine(const VerbInfo& verb) {
  constexpr std::size_t kColumn = 34;
  std::string line = "  " + std::string(verb.name);
  if (verb.synopsis[0] != '\0') {
    line += " " + std::string(verb.synopsis);
  }
  if (line.size() + 1 > kColumn) {
    line += "\n" + std::string(kColumn, ' ');
  } else {
    line += std::string(kColumn - line.size(), ' ');
  }
  return line + verb.summary + "\n";
}

std::string HelpOfVerb(const VerbInfo& verb) {
  std::string text = std::string("Usage: cmpihost [OPTIONS] ") + verb.name;
  if (verb.synopsis[0] != '\0') {
    text += " " + std::string(verb.synopsis);
  }
  text += "\n  " + std::string(verb.summary);
  if (verb.operation[0] != '\0') {
    text += " (" + std::string(verb.operation) + ")";
  }
  return text + "\n" + verb.details;
}

}  // namespace

std::string GeneralHelp() {
  std::string text = kIntroduction;
  for (const VerbInfo& verb : AllVerbs()) {
    text += VerbLine(verb);
  }
  return text + kReference;
}

std::string HelpFor(const std::vector<std::string>& words) {
  std::vector<std::string> rest = words;
  if (!rest.empty() && rest[0] == "help") {
    rest.erase(rest.begin());
  }
  if (rest.empty() || rest[0] == "--help" || rest[0] == "-h") {
    return GeneralHelp();
  }
  return HelpOfVerb(VerbOf(rest));
}

}  // namespace cmpihost::cli
