#include "cli/Request.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

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

// Reads the filter options among `words` (those after the verb) into
// `filter` and returns the other words in order.
std::vector<std::string> ReadOptions(const VerbInfo& verb, std::vector<std::string> words,
                                     AssociationFilter& filter) {
  CLI::App app;
  app.set_help_flag();
  app.allow_extras();  // any other option is reported as ours below
  std::vector<std::string> positional;
  app.add_option("words", positional);
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
  for (const std::string& word : app.remaining()) {
    Fail(verb, "unknown option " + word.substr(0, word.find('=')));
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
  return positional;
}

MethodArgument ReadArgument(const VerbInfo& verb, const std::string& word) {
  const std::size_t equals = word.find('=');
  if (equals == std::string::npos || equals == 0) {
    Fail(verb, "argument \"" + word + "\" is not NAME=VALUE");
  }
  return MethodArgument{word.substr(0, equals), word.substr(equals + 1)};
}

// How many positional words the verb takes at least and at most (-1: any).
struct Arity {
  std::size_t least;
  std::size_t most;
};

Arity ArityOf(Verb verb) {
  switch (verb) {
    case Verb::kEnumerateClassNames:
      return {0, 1};
    case Verb::kInvokeMethod:
      return {2, static_cast<std::size_t>(-1)};
    default:
      return {1, 1};
  }
}

const char* FirstPlaceholder(const VerbInfo& verb) {
  return IsAssociation(verb.verb) || IsReference(verb.verb) || verb.verb == Verb::kGetInstance ||
                 verb.verb == Verb::kInvokeMethod
             ? "PATH"
             : "CLASS";
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

Request ParseRequest(const std::vector<std::string>& words) {
  Request request;
  request.verb = &VerbOf(words);
  const VerbInfo& verb = *request.verb;
  if (verb.operation[0] == '\0') {
    throw UsageError(std::string(verb.name) + " is not a request verb here");
  }
  const std::vector<std::string> positional =
      ReadOptions(verb, {std::next(words.begin()), words.end()}, request.filter);
  const Arity arity = ArityOf(verb.verb);
  if (positional.size() < arity.least) {
    Fail(verb, positional.empty() ? std::string("missing ") + FirstPlaceholder(verb)
                                  : std::string("missing METHOD"));
  }
  if (positional.size() > arity.most) {
    Fail(verb, "unexpected argument \"" + positional[arity.most] + "\"");
  }
  if (!positional.empty()) {
    request.target = positional[0];
    if (request.target.empty()) {
      Fail(verb, std::string("empty ") + FirstPlaceholder(verb));
    }
  }
  if (verb.verb == Verb::kInvokeMethod) {
    request.method = positional[1];
    if (request.method.empty()) {
      Fail(verb, "empty METHOD");
    }
    for (std::size_t index = 2; index < positional.size(); ++index) {
      request.arguments.push_back(ReadArgument(verb, positional[index]));
    }
  }
  return request;
}

}  // namespace cmpihost::cli
