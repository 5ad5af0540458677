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
  CLI::App app;
  app.set_help_flag();
  app.allow_extras();  // unknown options and surplus words are reported as ours below
  // The synopsis names the words: NAME is required, [NAME] optional and
  // [NAME=VALUE ...] any number more.
  std::istringstream synopsis(verb.synopsis);
  std::vector<std::pair<std::string, std::string>> named;
  named.reserve(3);  // CLI11 keeps pointers to the values
  std::vector<std::string> rest;
  for (std::string token; synopsis >> token;) {
    if (token == "[NAME=VALUE") {
      app.add_option("NAME=VALUE", rest);
    } else if (token.find_first_of("[]") == std::string::npos ||
               (token[0] == '[' && token.back() == ']' &&
                std::isupper(static_cast<unsigned char>(token[1])) != 0)) {
      const bool required = token[0] != '[';
      named.emplace_back(required ? token : token.substr(1, token.size() - 2), "");
      app.add_option(named.back().first, named.back().second)->required(required);
    }
  }
  std::string values[std::size(kFilterOptions)];
  CLI::Option* taken[std::size(kFilterOptions)] = {};
  for (std::size_t index = 0; index < std::size(kFilterOptions); ++index) {
    const FilterOption& option = kFilterOptions[index];
    if (IsReference(verb.verb) ? !option.associatorsOnly : IsAssociation(verb.verb)) {
      taken[index] = app.add_option(option.name, values[index])
                         ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    }
  }
  const std::string last = words.empty() ? "" : words.back();
  std::reverse(words.begin(), words.end());
  try {
    app.parse(words);
  } catch (const CLI::RequiredError& error) {
    const std::string what = error.what();
    Fail(verb, "missing " + what.substr(0, what.find(' ')));
  } catch (const CLI::ArgumentMismatch& error) {
    // Only the last word can lack its value: an option takes the next word,
    // whatever it is; otherwise the value was written empty ("--role=").
    const std::string option = OptionIn(error);
    Fail(verb, "option " + option +
                   (app.count(option) > 1 ? " is given twice"
                    : last == option      ? " needs a value"
                                          : " needs a non-empty value"));
  } catch (const CLI::ParseError& error) {
    Fail(verb, error.what());
  }
  const std::vector<std::string> extras = app.remaining();
  for (const std::string& word : extras) {
    if (word.compare(0, 2, "--") == 0) {
      Fail(verb, "unknown option " + word.substr(0, word.find('=')));
    }
  }
  if (!extras.empty()) {
    Fail(verb, "unexpected argument \"" + extras[0] + "\"");
  }
  for (std::size_t index = 0; index < std::size(kFilterOptions); ++index) {
    if (taken[index] == nullptr || taken[index]->count() == 0) {
      continue;
    }
    if (values[index].empty()) {
      Fail(verb, "option " + std::string(kFilterOptions[index].name) + " needs a non-empty value");
    }
    filter.*kFilterOptions[index].field = values[index];
  }
  std::vector<std::string> given;
  for (const auto& [name, value] : named) {
    if (app.count(name) > 0 && value.empty()) {
      Fail(verb, "empty " + name);
    }
    if (app.count(name) > 0) {
      given.push_back(value);
    }
  }
  given.insert(given.end(), rest.begin(), rest.end());
  return given;
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
