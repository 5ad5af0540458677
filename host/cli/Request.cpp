#include "cli/Request.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <optional>
#include <sstream>
#include <utility>

#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

bool IsAssociation(Verb verb) {
  return verb == Verb::kAssociators || verb == Verb::kAssociatorNames;
}

bool IsReference(Verb verb) {
  return verb == Verb::kReferences || verb == Verb::kReferenceNames;
}

std::string Usage(const VerbInfo& verb) {
  return std::string("usage: cmpihost ") + verb.name +
         (verb.synopsis[0] != '\0' ? " " + std::string(verb.synopsis) : "");
}

[[noreturn]] void Fail(const VerbInfo& verb, const std::string& problem) {
  throw UsageError(std::string(verb.name) + ": " + problem + " (" + Usage(verb) + ")");
}

// The filter options, and whether only ai and ain take them.
const struct FilterOption {
  const char* name;
  std::optional<std::string> AssociationFilter::*field;
  bool associatorsOnly;
} kFilterOptions[] = {{"--assoc-class", &AssociationFilter::assocClass, true},
                      {"--result-class", &AssociationFilter::resultClass, false},
                      {"--role", &AssociationFilter::role, false},
                      {"--result-role", &AssociationFilter::resultRole, true}};

// CLI11 starts its messages with the option's name.
std::string OptionIn(const CLI::Error& error) {
  const std::string what = error.what();
  return what.substr(0, what.find(':'));
}

// One verb's words as CLI11 reads them; its errors become our messages.
class VerbCommandLine {
 public:
  explicit VerbCommandLine(const VerbInfo& verb) : verb_(verb) {
    app_.set_help_flag();
    app_.allow_extras();  // unknown options and surplus words are reported as ours
    addPositionals();
    for (std::size_t index = 0; index < std::size(kFilterOptions); ++index) {
      const FilterOption& option = kFilterOptions[index];
      if (IsReference(verb.verb) ? !option.associatorsOnly : IsAssociation(verb.verb)) {
        taken_[index] = app_.add_option(option.name, values_[index])
                            ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
      }
    }
  }

  void parse(std::vector<std::string> words) {
    const std::string last = words.empty() ? "" : words.back();
    std::reverse(words.begin(), words.end());
    try {
      app_.parse(words);
    } catch (const CLI::RequiredError& error) {
      const std::string what = error.what();
      Fail(verb_, "missing " + what.substr(0, what.find(' ')));
    } catch (const CLI::ArgumentMismatch& error) {
      // Only the last word can lack its value: an option takes the next word,
      // whatever it is; otherwise the value was written empty ("--role=").
      const std::string option = OptionIn(error);
      Fail(verb_, "option " + option +
                      (app_.count(option) > 1 ? " is given twice"
                       : last == option       ? " needs a value"
                                              : " needs a non-empty value"));
    } catch (const CLI::ParseError& error) {
      Fail(verb_, error.what());
    }
    refuseExtras();
  }

  void readFilter(AssociationFilter& filter) const {
    for (std::size_t index = 0; index < std::size(kFilterOptions); ++index) {
      if (taken_[index] == nullptr || taken_[index]->count() == 0) {
        continue;
      }
      if (values_[index].empty()) {
        Fail(verb_,
             "option " + std::string(kFilterOptions[index].name) + " needs a non-empty value");
      }
      filter.*kFilterOptions[index].field = values_[index];
    }
  }

  std::vector<std::string> positional() const {
    std::vector<std::string> given;
    for (const auto& [name, value] : named_) {
      if (app_.count(name) > 0 && value.empty()) {
        Fail(verb_, "empty " + name);
      }
      if (app_.count(name) > 0) {
        given.push_back(value);
      }
    }
    given.insert(given.end(), rest_.begin(), rest_.end());
    return given;
  }

 private:
  // The synopsis names the words: NAME is required, [NAME] optional and
  // [NAME=VALUE ...] any number more.
  void addPositionals() {
    std::istringstream synopsis(verb_.synopsis);
    named_.reserve(3);  // CLI11 keeps pointers to the values
    for (std::string token; synopsis >> token;) {
      if (token == "[NAME=VALUE") {
        app_.add_option("NAME=VALUE", rest_);
      } else if (token.find_first_of("[]") == std::string::npos ||
                 (token[0] == '[' && token.back() == ']' &&
                  std::isupper(static_cast<unsigned char>(token[1])) != 0)) {
        const bool required = token[0] != '[';
        named_.emplace_back(required ? token : token.substr(1, token.size() - 2), "");
        app_.add_option(named_.back().first, named_.back().second)->required(required);
      }
    }
  }

  void refuseExtras() const {
    const std::vector<std::string> extras = app_.remaining();
    for (const std::string& word : extras) {
      if (word.compare(0, 2, "--") == 0) {
        Fail(verb_, "unknown option " + word.substr(0, word.find('=')));
      }
    }
    if (!extras.empty()) {
      Fail(verb_, "unexpected argument \"" + extras[0] + "\"");
    }
  }

  const VerbInfo& verb_;
  CLI::App app_;
  std::vector<std::pair<std::string, std::string>> named_;
  std::vector<std::string> rest_;
  std::string values_[std::size(kFilterOptions)];
  CLI::Option* taken_[std::size(kFilterOptions)] = {};
};

MethodArgument ReadArgument(const VerbInfo& verb, const std::string& word) {
  const std::size_t equals = word.find('=');
  if (equals == std::string::npos || equals == 0) {
    Fail(verb, "argument \"" + word + "\" is not NAME=VALUE");
  }
  return MethodArgument{word.substr(0, equals), word.substr(equals + 1)};
}

}  // namespace

bool AsksForHelp(const std::vector<std::string>& words) {
  if (!words.empty() && words[0] == "help") {
    return true;
  }
  return std::any_of(words.begin(), words.end(),
                     [](const std::string& word) { return word == "--help" || word == "-h"; });
}

const VerbInfo& VerbOf(const std::vector<std::string>& words) {
  if (words.empty()) {
    throw UsageError("no verb given (verbs: " + VerbNames() + "; see cmpihost --help)");
  }
  const VerbInfo* verb = FindVerb(words[0]);
  if (verb == nullptr) {
    throw UsageError("unknown verb \"" + words[0] + "\" (verbs: " + VerbNames() +
                     "; see cmpihost --help)");
  }
  return *verb;
}

std::vector<std::string> ReadArguments(const VerbInfo& verb, std::vector<std::string> words,
                                       AssociationFilter& filter) {
  VerbCommandLine commandLine(verb);
  commandLine.parse(std::move(words));
  commandLine.readFilter(filter);
  return commandLine.positional();
}

Request ParseRequest(const std::vector<std::string>& words) {
  Request request;
  request.verb = &VerbOf(words);
  const VerbInfo& verb = *request.verb;
  if (verb.operation[0] == '\0') {
    throw UsageError(std::string(verb.name) + " is not a request verb here");
  }
  const std::vector<std::string> positional =
      ReadArguments(verb, {std::next(words.begin()), words.end()}, request.filter);
  if (!positional.empty()) {
    request.target = positional[0];
  }
  if (verb.verb == Verb::kInvokeMethod) {
    request.method = positional[1];
    for (std::size_t index = 2; index < positional.size(); ++index) {
      request.arguments.push_back(ReadArgument(verb, positional[index]));
    }
  }
  return request;
}

}  // namespace cmpihost::cli
