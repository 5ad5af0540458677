#include "cli/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>

#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

TraceLevel TraceLevelNamed(const std::string& name) {
  const struct {
    const char* name;
    TraceLevel level;
  } levels[] = {{"error", TraceLevel::kError},
                {"warning", TraceLevel::kWarning},
                {"info", TraceLevel::kInfo},
                {"debug", TraceLevel::kDebug}};
  for (const auto& each : levels) {
    if (name == each.name) {
      return each.level;
    }
  }
  throw UsageError("option --trace takes error, warning, info or debug, not \"" + name + "\"");
}

// The global options as CLI11 reads them. The help flag is ours, since only
// before the verb does it ask for the general help; after the verb it stays
// a word that asks for the verb's.
class GlobalOptions {
 public:
  GlobalOptions(Options& options, std::string& traceName, bool beforeVerb) {
    app_.set_help_flag();
    app_.allow_extras();
    // Each occurrence takes exactly one value, so that "--mof a b" leaves b
    // to the verb.
    app_.add_option("--mof", options.mofFiles)->type_name("FILE")->allow_extra_args(false);
    app_.add_option("--providers", options.registrationFiles)
        ->type_name("REGFILE")
        ->allow_extra_args(false);
    app_.add_option("--lib-dir", options.libraryDirs)->type_name("DIR")->allow_extra_args(false);
    app_.add_option("--namespace", options.nameSpace)->type_name("NS");
    app_.add_flag("--json", options.json);
    app_.add_flag("--trace{debug}", traceName);
    app_.add_flag("--progress", options.progress);
    app_.add_flag("--version", options.version);
    if (beforeVerb) {
      app_.add_flag("-h,--help", options.help);
      app_.prefix_command();  // the first word that is no option is the verb
    }
  }

  // The words that were no global option, in order. Throws UsageError for
  // an option without its value.
  std::vector<std::string> read(std::vector<std::string> words) {
    if (std::find(words.begin(), words.end(), "--namespace=") != words.end()) {
      // CLI11 would take the next word as the namespace.
      throw UsageError("option --namespace needs a non-empty namespace");
    }
    const std::string last = words.empty() ? "" : words.back();
    std::reverse(words.begin(), words.end());
    try {
      app_.parse(words);
    } catch (const CLI::ArgumentMismatch&) {
      // Only the last word can lack its value: every option takes the word
      // after it, whatever it is.
      const std::string name = last.substr(0, last.find('='));
      throw UsageError("option " + name + " needs a value (" +
                       app_.get_option(name)->get_type_name() + ")");
    } catch (const CLI::ParseError& error) {
      throw UsageError(error.what());
    }
    return app_.remaining();
  }

 private:
  CLI::App app_;
};

bool IsOptionWord(const std::string& word) {
  return word.size() >= 2 && word[0] == '-' && word != "--";
}

// Drops the first "--": after it every word is the verb's.
void DropEndOfOptions(std::vector<std::string>& words) {
  const auto end = std::find(words.begin(), words.end(), "--");
  if (end != words.end()) {
    words.erase(end);
  }
}

void Prepend(const std::vector<std::string>& earlier, std::vector<std::string>& values) {
  values.insert(values.begin(), earlier.begin(), earlier.end());
}

// The options read after the verb, with the repeatable ones given before it
// in front of their own.
Options Merged(const Options& beforeVerb, Options afterVerb) {
  Prepend(beforeVerb.mofFiles, afterVerb.mofFiles);
  Prepend(beforeVerb.registrationFiles, afterVerb.registrationFiles);
  Prepend(beforeVerb.libraryDirs, afterVerb.libraryDirs);
  return afterVerb;
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  std::string traceName;  // "--trace" alone names debug
  GlobalOptions beforeVerb(options, traceName, true);
  std::vector<std::string> words = beforeVerb.read({argv + std::min(argc, 1), argv + argc});
  if (!words.empty() && IsOptionWord(words[0])) {
    throw UsageError("unknown option " + words[0] + " (see cmpihost --help)");
  }
  if (!words.empty() && words[0] == "--") {
    words.erase(words.begin());
  } else if (!words.empty()) {
    // CLI11 replaces a vector it fills, so the options after the verb are
    // read apart and appended to those before it.
    Options later = options;
    later.mofFiles.clear();
    later.registrationFiles.clear();
    later.libraryDirs.clear();
    GlobalOptions afterVerb(later, traceName, false);
    std::vector<std::string> rest = afterVerb.read({std::next(words.begin()), words.end()});
    options = Merged(options, std::move(later));
    DropEndOfOptions(rest);
    rest.insert(rest.begin(), words[0]);
    words = std::move(rest);
  }
  if (!traceName.empty()) {
    options.trace = true;
    options.traceLevel = TraceLevelNamed(traceName);
  }
  options.words = std::move(words);
  return options;
}

}  // namespace cmpihost::cli
