#include "cli/Verbs.h"

namespace cmpihost::cli {
namespace {

const char* const kFilterOptions =
    "      --assoc-class C   only through associations of class C (or its subclasses)\n"
    "      --result-class C  only other ends of class C (or its subclasses)\n"
    "      --role R          only where PATH's object plays role R\n"
    "      --result-role R   only where the other end plays role R\n";

const char* const kReferenceOptions =
    "      --result-class C  only associations of class C (or its subclasses)\n"
    "      --role R          only where PATH's object plays role R\n";

std::vector<VerbInfo> MakeVerbs() {
  const std::string filters = "  Filter options (each may also be written --option=VALUE):\n";
  return {
      {"ecn", Verb::kEnumerateClassNames, "EnumerateClassNames", "[CLASS]",
       "list the classes (or CLASS and its subclasses)",
       "  Class names come one per line, superclasses before their subclasses, in the\n"
       "  order the MOF declared them.\n"
       "  Example:\n"
       "    cmpihost $FSD ecn CIM_DiagnosticService\n"},
      {"gc", Verb::kGetClass, "GetClass", "CLASS", "print CLASS: keys, properties, methods",
       "  The class as MOF declares it, with what it inherits: [Key] before each\n"
       "  key, each property's type, each method's return type and parameters\n"
       "  with their direction ([In], [Out], [In, Out]).\n"
       "  Example:\n"
       "    cmpihost $FSD gc FSD_FileSystemDiagnosticService\n"},
      {"ei", Verb::kEnumerateInstances, "EnumerateInstances", "CLASS",
       "list the instances of CLASS and its subclasses",
       "  CLASS may carry a namespace: root/interop:CIM_RegisteredProfile.\n"
       "  Each instance is printed in MOF, after a comment with its path.\n"
       "  Example:\n"
       "    cmpihost $FSD ei FSD_FileSystemDiagnosticService\n"},
      {"ein", Verb::kEnumerateInstanceNames, "EnumerateInstanceNames", "CLASS",
       "list instance paths of CLASS and subclasses",
       "  Paths come one per line, in the form gi and cm accept.\n"
       "  Example:\n"
       "    cmpihost $FSD ein FSD_MountedFileSystem\n"},
      {"gi", Verb::kGetInstance, "GetInstance", "PATH", "print the instance at PATH",
       "  PATH is [namespace:]Class.Key=value,...: quote it for the shell, since\n"
       "  string keys carry double quotes.\n"
       "  Example:\n"
       "    cmpihost $FSD gi \"$ROOT\"\n"},
      {"cm", Verb::kInvokeMethod, "InvokeMethod", "PATH METHOD [NAME=VALUE ...]",
       "call METHOD on the object at PATH",
       "  Each NAME must be an input parameter of the method; VALUE is typed by the\n"
       "  parameter's declaration: numbers in decimal, TRUE/FALSE, date-times in\n"
       "  their 25-character form, references as path texts, arrays as\n"
       "  comma-separated elements (optionally in braces). PATH may be a bare class\n"
       "  name for a static method.\n"
       "  Prints \"ReturnValue = value\", then each output argument as \"Name = value\".\n"
       "  Example:\n"
       "    cmpihost $FSD cm \"$SERVICE\" RunDiagnostic \"ManagedElement=$ROOT\"\n"},
      {"ai", Verb::kAssociators, "Associators", "PATH [FILTER OPTIONS]",
       "list the instances associated with PATH",
       filters + kFilterOptions +
           "  Instances print as ei prints them.\n"
           "  Example:\n"
           "    cmpihost $FSD ai \"$SERVICE\" --assoc-class CIM_AvailableDiagnosticService\n"},
      {"ain", Verb::kAssociatorNames, "AssociatorNames", "PATH [FILTER OPTIONS]",
       "list the paths associated with PATH",
       filters + kFilterOptions +
           "  Paths print one per line.\n"
           "  Example:\n"
           "    cmpihost $FSD ain \"$ROOT\" --assoc-class FSD_AvailableDiagnosticService \\\n"
           "      --result-class CIM_DiagnosticService\n"},
      {"ri", Verb::kReferences, "References", "PATH [--result-class C] [--role R]",
       "list the associations that refer to PATH",
       filters + kReferenceOptions +
           "  Instances print as ei prints them.\n"
           "  Example:\n"
           "    cmpihost $FSD ri \"$SERVICE\" --role ServiceProvided\n"},
      {"rin", Verb::kReferenceNames, "ReferenceNames", "PATH [--result-class C] [--role R]",
       "list association paths that refer to PATH",
       filters + kReferenceOptions +
           "  Paths print one per line.\n"
           "  Example:\n"
           "    cmpihost $FSD rin \"$ROOT\" --result-class CIM_AvailableDiagnosticService\n"},
      {"run", Verb::kRun, "", "FILE", "run a script FILE's commands in one process",
       "  See SCRIPTS in cmpihost --help.\n"
       "  Example:\n"
       "    printf 'ein FSD_MountedFileSystem\\necho done\\n' > fs.cmpihost\n"
       "    cmpihost $FSD run fs.cmpihost\n"},
      {"-", Verb::kStdin, "", "", "run the commands read from standard input",
       "  As run, reading standard input (also what happens when no verb is given\n"
       "  and standard input is not a terminal). Lines run as they arrive.\n"
       "  Example:\n"
       "    printf 'ecn\\nein FSD_MountedFileSystem\\n' | cmpihost $FSD -\n"},
      {"new", Verb::kNew, "", "PREFIX DIR", "write a plug-in project for classes PREFIX_*",
       "  DIR must be new or empty. The project builds against an installed\n"
       "  libdiagcore with find_package(diagcore) and its test passes as written:\n"
       "  a service whose runTest is to be filled in, its start-up and provider\n"
       "  macro, MOF classes derived from the DMTF ones, a registration file\n"
       "  (unload: never), CMakeLists.txt and a GoogleTest test that runs\n"
       "  RunDiagnostic in the embedded host. Prints the files it wrote.\n"
       "  Example:\n"
       "    cmpihost new NETD netdiag\n"},
      {"help", Verb::kHelp, "", "[VERB]", "print this help, or the help of VERB",
       "  Also: cmpihost --help, cmpihost VERB --help.\n"},
  };
}

}  // namespace

const std::vector<VerbInfo>& AllVerbs() {
  static const std::vector<VerbInfo> verbs = MakeVerbs();
  return verbs;
}

const VerbInfo* FindVerb(const std::string& name) {
  for (const VerbInfo& info : AllVerbs()) {
    if (name == info.name) {
      return &info;
    }
  }
  return nullptr;
}

std::string VerbNames() {
  std::string names;
  for (const VerbInfo& info : AllVerbs()) {
    names += (names.empty() ? "" : ", ") + std::string(info.name);
  }
  return names;
}

}  // namespace cmpihost::cli
