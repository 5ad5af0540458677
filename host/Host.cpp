#include "cmpihost/Host.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "HostImpl.h"
#include "broker/PathText.h"
#include "cmpihost/MofReader.h"
#include "providers/Activation.h"
#include "providers/Dispatcher.h"
#include "providers/ProviderLibrary.h"

namespace cmpihost {

// --- Host ---

namespace {

// A request's path: syntax errors throw; an unknown class is a reply.
struct RequestPath {
  PathData path;
  bool knownClass = false;
  const ClassDecl* decl = nullptr;  // the path's class, when known
};

RequestPath ParseRequestPath(Host::Impl& host, const std::string& text) {
  const PathSyntax syntax = ParsePathSyntax(text);
  RequestPath request;
  const std::string nameSpace = syntax.nameSpace.empty() ? host.defaultNameSpace : syntax.nameSpace;
  request.decl = host.repository.findClass(nameSpace, syntax.className);
  request.knownClass = request.decl != nullptr;
  if (!request.knownClass) {
    request.path.host = syntax.host;
    request.path.nameSpace = nameSpace;
    request.path.className = syntax.className;
    return request;
  }
  request.path = TypePath(syntax, text, host.defaultNameSpace, host.lookup());
  return request;
}

Reply UnknownClassReply(const PathData& path) {
  Reply reply;
  reply.status.rc = CMPI_RC_ERR_INVALID_CLASS;
  reply.status.hasMessage = true;
  reply.status.message =
      "class " + path.className + " is not declared in namespace " + path.nameSpace;
  return reply;
}

std::string RequestNameSpace(const Host::Impl& host, const std::string& nameSpace) {
  return nameSpace.empty() ? host.defaultNameSpace : nameSpace;
}

// An instance of the path's class with its keys and the given properties.
InstanceData InstanceFromArguments(Host::Impl& host, const PathData& path,
                                   const std::vector<Argument>& properties) {
  InstanceData instance;
  instance.shape = host.shapeOf(path.nameSpace, path.className);
  instance.host = path.host;
  instance.nameSpace = path.nameSpace;
  for (const PropertyShape& property : instance.shape->properties) {
    instance.values.push_back(property.initial);
  }
  for (const NamedValue& key : path.keys.items()) {
    if (const auto index = instance.shape->find(key.name)) {
      instance.values[*index] = key.value;
    }
  }
  for (const Argument& argument : properties) {
    const auto index = instance.shape->find(argument.name);
    if (!index) {
      throw HostError("class " + instance.shape->className + " has no property '" + argument.name +
                      "'");
    }
    const PropertyShape& property = instance.shape->properties[*index];
    if (argument.type && NormalizedType(*argument.type) != property.type) {
      throw HostError("property " + property.name + " of class " + instance.shape->className +
                      " is declared " + CmpiTypeName(property.type) + ", not " +
                      CmpiTypeName(*argument.type));
    }
    try {
      instance.values[*index] =
          ValueFromText(argument.text, property.type, path.nameSpace, host.lookup());
      instance.values[*index].type = property.type;
    } catch (const HostError& error) {
      throw HostError("property " + property.name + ": " + error.what());
    }
  }
  return instance;
}

void RequireRegistration(const ProviderRegistration& registration) {
  if (registration.providerName.empty()) {
    throw HostError("a provider registration needs a provider name");
  }
  if (registration.classNames.empty()) {
    throw HostError("provider " + registration.providerName + " is registered for no class");
  }
  if (!registration.instance && !registration.method && !registration.association) {
    throw HostError("provider " + registration.providerName +
                    " is registered for no kind (instance, method or association)");
  }
}

}  // namespace

Host::Host() : impl_(std::make_unique<Impl>()) {}

Host::~Host() {
  CleanupAll(*impl_);
}

void Host::loadMof(const std::string& path, const std::string& nameSpace) {
  MofReader reader(impl_->repository, nameSpace);
  reader.loadFile(path);
}

void Host::loadMofText(const std::string& text, const std::string& name,
                       const std::string& nameSpace) {
  MofReader reader(impl_->repository, nameSpace);
  reader.loadText(text, name);
}

const ClassRepository& Host::repository() const {
  return impl_->repository;
}

void Host::setDefaultNameSpace(const std::string& nameSpace) {
  const bool wellFormed =
      !nameSpace.empty() && std::all_of(nameSpace.begin(), nameSpace.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '/';
      });
  if (!wellFormed) {
    throw HostError("'" + nameSpace +
                    "' is not a namespace (letters, digits, '_' and '/', not empty)");
  }
  impl_->defaultNameSpace = nameSpace;
}

const std::string& Host::defaultNameSpace() const {
  return impl_->defaultNameSpace;
}

void Host::registerProvider(const ProviderRegistration& registration,
                            const MiFactories& factories) {
  RequireRegistration(registration);
  impl_->providers.add(registration, factories, "", nullptr);
}

void Host::registerLibraryProvider(const ProviderRegistration& registration,
                                   const std::string& libraryPath) {
  RequireRegistration(registration);
  void* library = OpenProviderLibrary(libraryPath, "provider " + registration.providerName + ": ");
  impl_->providers.add(registration, MiFactories{}, libraryPath, library);
}

void Host::loadRegistrationFile(const std::string& path,
                                const std::vector<std::string>& libraryDirs) {
  RegisterFromFile(impl_->repository, impl_->providers, path, libraryDirs);
}

void Host::activateProviders() {
  const std::vector<std::string> refusals = ActivateAll(*impl_);
  if (refusals.empty()) {
    return;
  }
  std::string message;
  for (const std::string& refusal : refusals) {
    message += message.empty() ? "" : "\n";
    message += refusal;
  }
  throw HostError(message);
}

std::vector<UnloadAnswer> Host::unloadIdleProviders() {
  return UnloadIdle(*impl_);
}

Reply Host::enumerateInstanceNames(const std::string& nameSpace, const std::string& className) {
  PathData path;
  path.nameSpace = RequestNameSpace(*impl_, nameSpace);
  path.className = className;
  return ToReply(DispatchEnumerate(*impl_, path, nullptr, true));
}

Reply Host::enumerateInstances(const std::string& nameSpace, const std::string& className,
                               const std::vector<std::string>* properties) {
  PathData path;
  path.nameSpace = RequestNameSpace(*impl_, nameSpace);
  path.className = className;
  return ToReply(DispatchEnumerate(*impl_, path, properties, false));
}

Reply Host::getInstance(const std::string& pathText, const std::vector<std::string>* properties) {
  const RequestPath request = ParseRequestPath(*impl_, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  return ToReply(DispatchGetInstance(*impl_, request.path, properties));
}

Reply Host::createInstance(const std::string& pathText, const std::vector<Argument>& properties) {
  const RequestPath request = ParseRequestPath(*impl_, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  const InstanceData instance = InstanceFromArguments(*impl_, request.path, properties);
  return ToReply(DispatchCreateInstance(*impl_, request.path, instance));
}

Reply Host::modifyInstance(const std::string& pathText, const std::vector<Argument>& properties) {
  const RequestPath request = ParseRequestPath(*impl_, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  const InstanceData instance = InstanceFromArguments(*impl_, request.path, properties);
  std::vector<std::string> names;
  names.reserve(properties.size());
  for (const Argument& property : properties) {
    names.push_back(property.name);
  }
  return ToReply(DispatchModifyInstance(*impl_, request.path, instance, &names));
}

Reply Host::deleteInstance(const std::string& pathText) {
  const RequestPath request = ParseRequestPath(*impl_, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  return ToReply(DispatchDeleteInstance(*impl_, request.path));
}

Reply Host::execQuery(const std::string& nameSpace, const std::string& className,
                      const std::string& query, const std::string& language) {
  PathData path;
  path.nameSpace = RequestNameSpace(*impl_, nameSpace);
  path.className = className;
  return ToReply(DispatchExecQuery(*impl_, path, query, language));
}

Reply Host::invokeMethod(const std::string& pathText, const std::string& method,
                         const std::vector<Argument>& in, std::vector<Property>* out) {
  const RequestPath request = ParseRequestPath(*impl_, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  // Found while the path was read; the repository is not changed while a
  // request is served.
  const ClassDecl* decl = request.decl;
  const MethodDecl* declared = decl->findMethod(method);
  NamedValues arguments;
  for (const Argument& argument : in) {
    const ParameterDecl* parameter = nullptr;
    if (declared != nullptr) {
      for (const ParameterDecl& candidate : declared->parameters) {
        if (NoCaseEqual(candidate.name, argument.name)) {
          parameter = &candidate;
        }
      }
    }
    if (parameter == nullptr && !argument.type) {
      throw HostError("argument " + argument.name + ": " +
                      (declared == nullptr
                           ? "class " + decl->name() + " declares no method " + method
                           : "method " + declared->name + " of class " + decl->name() +
                                 " has no parameter " + argument.name) +
                      " to type it by; give Argument::type");
    }
    const CMPIType type = argument.type ? *argument.type : CmpiTypeOf(parameter->type);
    try {
      HostValue value = ValueFromText(argument.text, type, request.path.nameSpace, impl_->lookup());
      value.type = NormalizedType(type);
      arguments.set(parameter != nullptr ? parameter->name : argument.name, std::move(value));
    } catch (const HostError& error) {
      throw HostError("argument " + argument.name + ": " + error.what());
    }
  }
  const Gathered gathered = DispatchInvokeMethod(*impl_, request.path, method, arguments);
  if (out != nullptr) {
    for (const NamedValue& argument : gathered.outArguments.items()) {
      out->push_back(Property{argument.name, ToPublicValue(argument.value)});
    }
  }
  return ToReply(gathered);
}

namespace {

Reply Associate(Host::Impl& host, AssociationOp op, const std::string& pathText,
                const AssociationFilter& filter) {
  const RequestPath request = ParseRequestPath(host, pathText);
  if (!request.knownClass) {
    return UnknownClassReply(request.path);
  }
  return ToReply(DispatchAssociation(host, op, request.path, filter, nullptr));
}

}  // namespace

Reply Host::associators(const std::string& pathText, const AssociationFilter& filter) {
  return Associate(*impl_, AssociationOp::kAssociators, pathText, filter);
}

Reply Host::associatorNames(const std::string& pathText, const AssociationFilter& filter) {
  return Associate(*impl_, AssociationOp::kAssociatorNames, pathText, filter);
}

Reply Host::references(const std::string& pathText, const AssociationFilter& filter) {
  return Associate(*impl_, AssociationOp::kReferences, pathText, filter);
}

Reply Host::referenceNames(const std::string& pathText, const AssociationFilter& filter) {
  return Associate(*impl_, AssociationOp::kReferenceNames, pathText, filter);
}

void Host::captureLog(bool on, std::size_t bound) {
  impl_->log.capture(on, bound);
}

std::vector<LogRecord> Host::logRecords() const {
  return impl_->log.records();
}

void Host::clearLog() {
  impl_->log.clear();
}

void Host::onLog(std::function<void(const LogRecord&)> sink) {
  impl_->log.setSink(std::move(sink));
}

void Host::setClock(std::function<std::chrono::system_clock::time_point()> clock) {
  std::lock_guard<std::mutex> lock(impl_->clockMutex);
  impl_->clock = std::move(clock);
}

}  // namespace cmpihost
