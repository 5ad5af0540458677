#include "cli/Executor.h"

#include <algorithm>
#include <utility>

#include "broker/PathText.h"
#include "cli/PathHead.h"
#include "cli/UsageError.h"
#include "cmpihost/ClassRepository.h"
#include "cmpihost/CmpiNames.h"
#include "text/NoCase.h"

namespace cmpihost::cli {

struct Executor::ClassTarget {
  std::string nameSpace;
  const ClassDecl* decl = nullptr;
  std::string text;  // the path text as the user gave it
};

namespace {

// Sets the outcome's failure: "<Operation> failed: NAME (code): message".
// The library's entry points begin their own messages with
// "<Operation> failed: ", which is said once.
void SetFailure(Outcome& outcome, const VerbInfo& verb, const Status& status) {
  const std::string failed = std::string(verb.operation) + " failed: ";
  std::string message = status.hasMessage ? status.message : std::string();
  if (message.compare(0, failed.size(), failed) == 0) {
    message.erase(0, failed.size());
  }
  outcome.failure = failed + CmpiStatusName(status.rc) + " (" + std::to_string(status.rc) + ")";
  if (!message.empty()) {
    outcome.failure += ": " + message;
  }
  outcome.failureCode = status.rc;
  outcome.failureMessage = message;
}

Outcome Printed(std::string output) {
  Outcome outcome;
  outcome.output = std::move(output);
  return outcome;
}

// The library's association providers serve only requests that name the
// association class, so an unfiltered empty answer usually means that.
constexpr const char* kNoAssocClassHint =
    "hint: the library's providers answer nothing when the request names no association "
    "class; name one with --assoc-class";

std::string NameList(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

std::string MethodNames(const ClassDecl& decl) {
  std::vector<std::string> names;
  for (const MethodDecl& method : decl.methods()) {
    names.push_back(method.name);
  }
  return NameList(names);
}

std::string InputParameterNames(const MethodDecl& method) {
  std::vector<std::string> names;
  for (const ParameterDecl& parameter : method.parameters) {
    if (parameter.isIn) {
      names.push_back(parameter.name);
    }
  }
  return NameList(names);
}

const MethodDecl& RequireMethod(const ClassDecl& decl, const std::string& name) {
  const MethodDecl* method = decl.findMethod(name);
  if (method == nullptr) {
    const std::string known = MethodNames(decl);
    throw UsageError("class " + decl.name() + " has no method " + name +
                     (known.empty() ? " (it declares none)" : " (its methods: " + known + ")"));
  }
  return *method;
}

const ParameterDecl& RequireInputParameter(const ClassDecl& decl, const MethodDecl& method,
                                           const std::string& name) {
  for (const ParameterDecl& parameter : method.parameters) {
    if (NoCaseEqual(parameter.name, name) && parameter.isIn) {
      return parameter;
    }
  }
  const std::string known = InputParameterNames(method);
  throw UsageError("method " + method.name + " of class " + decl.name() +
                   " has no input parameter " + name +
                   (known.empty() ? " (it takes none)" : " (its input parameters: " + known + ")"));
}

// A path reaches the provider only with every key of its class, since a
// provider cannot find an object by part of its keys and would answer with
// a failure that does not say what the path lacks.
void RequireAllKeys(const std::string& text, const ClassDecl& decl,
                    const std::vector<PathSyntax::Key>& given) {
  std::vector<std::string> missing;
  for (const PropertyDecl* key : decl.keyProperties()) {
    const bool present = std::any_of(given.begin(), given.end(), [&](const PathSyntax::Key& k) {
      return NoCaseEqual(k.name, key->name);
    });
    if (!present) {
      missing.push_back(key->name);
    }
  }
  if (!missing.empty()) {
    throw UsageError("path '" + text + "' lacks " + (missing.size() == 1 ? "key " : "keys ") +
                     NameList(missing) + " of class " + decl.name());
  }
}

std::vector<Argument> CheckedArguments(const ClassDecl& decl, const MethodDecl& method,
                                       const std::vector<MethodArgument>& given) {
  std::vector<Argument> arguments;
  for (const MethodArgument& each : given) {
    const ParameterDecl& parameter = RequireInputParameter(decl, method, each.name);
    for (const Argument& earlier : arguments) {
      if (NoCaseEqual(earlier.name, parameter.name)) {
        throw UsageError("argument " + parameter.name + " is given twice");
      }
    }
    arguments.push_back(Argument{parameter.name, each.value, std::nullopt});
  }
  return arguments;
}

}  // namespace

Executor::Executor(Session& session, const Formatter& formatter)
    : session_(session), formatter_(formatter) {}

Outcome Executor::run(const Request& request) {
  try {
    Outcome outcome = dispatch(request);
    // A failed request's document takes the place of what came before the
    // failure, so that a program reads one answer per request.
    const std::string document =
        outcome.failure.empty() ? ""
                                : formatter_.failure(&outcome.failureCode, outcome.failureMessage);
    if (!document.empty()) {
      outcome.output = document;
      outcome.instances = false;
    }
    return outcome;
  } catch (const UsageError& error) {
    throw UsageError(std::string(request.verb->name) + ": " + error.what());
  } catch (const HostError& error) {
    throw UsageError(std::string(request.verb->name) + ": " + error.what());
  }
}

Outcome Executor::dispatch(const Request& request) {
  switch (request.verb->verb) {
    case Verb::kEnumerateClassNames:
      return enumerateClassNames(request);
    case Verb::kGetClass:
      return getClass(request);
    case Verb::kEnumerateInstances:
    case Verb::kEnumerateInstanceNames:
      return enumerateInstances(request);
    case Verb::kGetInstance:
      return getInstance(request);
    case Verb::kInvokeMethod:
      return invokeMethod(request);
    case Verb::kAssociators:
    case Verb::kAssociatorNames:
    case Verb::kReferences:
    case Verb::kReferenceNames:
      return associate(request);
    default:
      throw UsageError("not a request verb");
  }
}

void Executor::requireClass(const std::string& nameSpace, const std::string& className) const {
  if (session_.repository().findClass(nameSpace, className) == nullptr) {
    throw UsageError("unknown class " + className + " in namespace " + nameSpace);
  }
}

void Executor::requireReference(const std::string& text, const std::string& refClass,
                                const std::string& enclosingNameSpace,
                                const std::string& what) const {
  try {
    const PathSyntax syntax = ParsePathSyntax(text);
    const std::string nameSpace = syntax.nameSpace.empty() ? enclosingNameSpace : syntax.nameSpace;
    const ClassDecl* decl = session_.repository().findClass(nameSpace, syntax.className);
    if (decl == nullptr) {
      throw UsageError("unknown class " + syntax.className + " in namespace " + nameSpace);
    }
    if (!session_.repository().isA(nameSpace, decl->name(), refClass)) {
      throw UsageError("class " + decl->name() + " is neither " + refClass +
                       " (the declared reference class) nor a subclass of it");
    }
    // Unlike the request's own path, a reference may lack keys: what a
    // provider makes of such an element is the provider's to answer.
    requireReferenceKeys(text, *decl, nameSpace);
  } catch (const UsageError& error) {
    throw UsageError(what + ": " + error.what());
  } catch (const HostError& error) {
    throw UsageError(what + ": " + error.what());
  }
}

void Executor::requireReferenceKeys(const std::string& text, const ClassDecl& decl,
                                    const std::string& nameSpace) const {
  for (const PathSyntax::Key& key : ParsePathSyntax(text).keys) {
    const PropertyDecl* property = decl.findProperty(key.name);
    // Keys the class lacks, and values of other types, are the host's to report.
    if (property != nullptr && property->type.type == CimType::kReference &&
        !property->type.isArray) {
      requireReference(key.text, property->type.refClass, nameSpace, "key " + property->name);
    }
  }
}

void Executor::requireAssociation(const std::string& nameSpace, const std::string& className,
                                  const char* option) const {
  const ClassDecl* decl = session_.repository().findClass(nameSpace, className);
  if (decl != nullptr && !decl->isAssociation()) {
    throw UsageError(std::string(option) + " " + className + ": the class is not an association");
  }
}

Executor::ClassTarget Executor::resolve(const std::string& text, TargetKind kind) const {
  const PathHead head = ReadPathHead(text);
  if (kind == TargetKind::kClass && head.hasKeys) {
    throw UsageError("expected a class name, not an instance path: " + text);
  }
  ClassTarget target;
  target.nameSpace = head.nameSpace.empty() ? session_.nameSpace() : head.nameSpace;
  requireClass(target.nameSpace, head.className);
  target.decl = session_.repository().findClass(target.nameSpace, head.className);
  target.text = text;
  if (head.hasKeys) {
    requireReferenceKeys(text, *target.decl, target.nameSpace);
    RequireAllKeys(text, *target.decl, ParsePathSyntax(text).keys);
  } else if (kind == TargetKind::kInstancePath) {
    RequireAllKeys(text, *target.decl, {});
  }
  return target;
}

Outcome Executor::enumerateClassNames(const Request& request) const {
  std::vector<const ClassDecl*> classes;
  if (request.target.empty()) {
    classes = session_.repository().classes(session_.nameSpace());
    if (classes.empty()) {
      throw UsageError("namespace " + session_.nameSpace() + " holds no classes");
    }
  } else {
    const ClassTarget target = resolve(request.target, TargetKind::kClass);
    classes = session_.repository().classAndSubclasses(target.nameSpace, target.decl->name());
  }
  std::vector<std::string> names;
  names.reserve(classes.size());
  for (const ClassDecl* decl : classes) {
    names.push_back(decl->name());
  }
  return Printed(formatter_.classNames(names));
}

Outcome Executor::getClass(const Request& request) const {
  const ClassTarget target = resolve(request.target, TargetKind::kClass);
  return Printed(formatter_.classDeclaration(*target.decl));
}

Outcome Executor::enumerateInstances(const Request& request) {
  const ClassTarget target = resolve(request.target, TargetKind::kClass);
  Host& host = session_.host();
  const bool names = request.verb->verb == Verb::kEnumerateInstanceNames;
  const Reply reply = names ? host.enumerateInstanceNames(target.nameSpace, target.decl->name())
                            : host.enumerateInstances(target.nameSpace, target.decl->name());
  return listed(*request.verb, reply, names);
}

Outcome Executor::listed(const VerbInfo& verb, const Reply& reply, bool names) const {
  Outcome outcome;
  if (reply.status.rc != CMPI_RC_OK) {
    SetFailure(outcome, verb, reply.status);
  }
  // After a failure, what was delivered before it is still shown.
  if (names) {
    const std::vector<std::string> paths = reply.paths();
    if (outcome.failure.empty() || !paths.empty()) {
      outcome.output = formatter_.paths(paths);
    }
  } else {
    const std::vector<InstanceSnapshot> instances = reply.instances();
    if (outcome.failure.empty() || !instances.empty()) {
      outcome.output = formatter_.instances(instances);
      outcome.instances = !instances.empty();
    }
  }
  return outcome;
}

Outcome Executor::getInstance(const Request& request) {
  const ClassTarget target = resolve(request.target, TargetKind::kInstancePath);
  const Reply reply = session_.host().getInstance(target.text);
  Outcome outcome;
  if (reply.status.rc != CMPI_RC_OK) {
    SetFailure(outcome, *request.verb, reply.status);
  }
  const std::vector<InstanceSnapshot> instances = reply.instances();
  if (!instances.empty()) {
    outcome.output = formatter_.instance(instances.front());
    outcome.instances = true;
  }
  return outcome;
}

Outcome Executor::invokeMethod(const Request& request) {
  const ClassTarget target = resolve(request.target, TargetKind::kPath);
  const MethodDecl& method = RequireMethod(*target.decl, request.method);
  const std::vector<Argument> arguments = CheckedArguments(*target.decl, method, request.arguments);
  for (const Argument& argument : arguments) {
    const ParameterDecl& parameter = RequireInputParameter(*target.decl, method, argument.name);
    if (parameter.type.type == CimType::kReference && !parameter.type.isArray) {
      requireReference(argument.text, parameter.type.refClass, target.nameSpace,
                       "argument " + parameter.name);
    }
  }
  std::vector<Property> out;
  const Reply reply = session_.host().invokeMethod(target.text, method.name, arguments, &out);
  if (reply.status.rc != CMPI_RC_OK) {
    Outcome outcome;
    SetFailure(outcome, *request.verb, reply.status);
    return outcome;
  }
  const std::vector<Value> data = reply.data();
  return Printed(formatter_.methodResult(data.empty() ? nullptr : &data.front(), out));
}

Outcome Executor::associate(const Request& request) {
  const ClassTarget target = resolve(request.target, TargetKind::kPath);
  const AssociationFilter& filter = request.filter;
  for (const auto* className : {&filter.assocClass, &filter.resultClass}) {
    if (className->has_value()) {
      requireClass(target.nameSpace, **className);
    }
  }
  const bool associators =
      request.verb->verb == Verb::kAssociators || request.verb->verb == Verb::kAssociatorNames;
  // ri and rin name the association by --result-class.
  const auto& associationClass = associators ? filter.assocClass : filter.resultClass;
  if (associationClass.has_value()) {
    requireAssociation(target.nameSpace, *associationClass,
                       associators ? "--assoc-class" : "--result-class");
  }
  Host& host = session_.host();
  Reply reply;
  bool names = false;
  switch (request.verb->verb) {
    case Verb::kAssociators:
      reply = host.associators(target.text, filter);
      break;
    case Verb::kAssociatorNames:
      reply = host.associatorNames(target.text, filter);
      names = true;
      break;
    case Verb::kReferences:
      reply = host.references(target.text, filter);
      break;
    default:
      reply = host.referenceNames(target.text, filter);
      names = true;
  }
  Outcome outcome = listed(*request.verb, reply, names);
  if (associators && !filter.assocClass && reply.status.rc == CMPI_RC_OK &&
      reply.instances().empty() && reply.paths().empty()) {
    outcome.hint = kNoAssocClassHint;
  }
  return outcome;
}

}  // namespace cmpihost::cli
