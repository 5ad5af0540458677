#include "cli/Request.h"

#include <algorithm>
#include <cstddef>
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

// The association filter field an option names, or null when the verb does
// not take that option.
std::optional<std::string>* FilterField(const std::string& option, Verb verb,
                                        AssociationFilter& filter) {
  const bool associators = IsAssociation(verb);
  if (!associators && !IsReference(verb)) {
    return nullptr;
  }
  if (option == "--result-class") {
    return &filter.resultClass;
  }
  if (option == "--role") {
    return &filter.role;
  }
  if (associators && option == "--assoc-class") {
    return &filter.assocClass;
  }
  if (associators && option == "--result-role") {
    return &filter.resultRole;
  }
  return nullptr;
}

// Reads the option at words[index] ("--name VALUE" or "--name=VALUE").
void ReadOption(const VerbInfo& verb, const std::vector<std::string>& words, std::size_t& index,
                AssociationFilter& filter) {
  const std::string& word = words[index];
  const std::size_t equals = word.find('=');
  const std::string option = word.substr(0, equals);
  std::optional<std::string>* field = FilterField(option, verb.verb, filter);
  if (field == nullptr) {
    Fail(verb, "unknown option " + option);
  }
  std::string value;
  if (equals != std::string::npos) {
    value = word.substr(equals + 1);
  } else if (index + 1 < words.size()) {
    value = words[++index];
  } else {
    Fail(verb, "option " + option + " needs a value");
  }
  if (value.empty()) {
    Fail(verb, "option " + option + " needs a non-empty value");
  }
  if (field->has_value()) {
    Fail(verb, "option " + option + " is given twice");
  }
  *field = value;
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
  std::vector<std::string> positional;
  for (std::size_t index = 1; index < words.size(); ++index) {
    if (words[index].compare(0, 2, "--") == 0) {
      ReadOption(verb, words, index, request.filter);
    } else {
      positional.push_back(words[index]);
    }
  }
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
