#include "providers/Dispatcher.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "broker/PathText.h"
#include "cmpihost/StaticInstance.h"
#include "providers/Activation.h"

namespace cmpihost {
namespace {

// A property list as MI functions take it: null, or names ending in null.
class PropertyArray {
 public:
  explicit PropertyArray(const std::vector<std::string>* names) : given_(names != nullptr) {
    if (names != nullptr) {
      for (const std::string& name : *names) {
        pointers_.push_back(name.c_str());
      }
      pointers_.push_back(nullptr);
    }
  }
  const char** get() { return given_ ? pointers_.data() : nullptr; }

 private:
  bool given_;
  std::vector<const char*> pointers_;
};

const char* OrNull(const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

template <typename MI>
MI* MiFor(HostState& host, ProviderEntry& provider, MiKind kind, Gathered& gathered) {
  std::string refusal;
  void* mi = ActivateMi(host, provider, kind, refusal);
  if (mi == nullptr) {
    gathered.status = Failure(CMPI_RC_ERR_FAILED, "provider " + provider.name + " has no " +
                                                      MiKindName(kind) + " MI: " + refusal);
  }
  return static_cast<MI*>(mi);
}

// --- calling MIs ---

CMPIStatus Missing(const ProviderEntry& provider, MiKind kind, const char* function) {
  return MakeStatus(CMPI_RC_ERR_NOT_SUPPORTED, "provider " + provider.name + "'s " +
                                                   MiKindName(kind) + " MI has no " + function +
                                                   " function");
}

// Runs one MI call in a call scope of its own and copies out, before the
// scope frees them, the status and everything delivered to the result.
template <typename Call>
void CallProvider(HostState& host, const PathData& path, Gathered& gathered, Call&& call) {
  Scope scope;
  const ContextObject* context =
      CreateInScope<ContextObject>(nullptr, host.contextEntries(path.nameSpace));
  auto* result = CreateInScope<ResultObject>(nullptr);
  const ObjectPathObject* objectPath = CreateInScope<ObjectPathObject>(nullptr, path);
  CMPIStatus status;
  try {
    status = call(context, result, objectPath);
  } catch (const std::exception& error) {
    status = MakeStatus(CMPI_RC_ERR_FAILED, std::string("the provider threw: ") + error.what());
  } catch (...) {
    status = MakeStatus(CMPI_RC_ERR_FAILED, "the provider threw");
  }
  ++gathered.providerCalls;
  const Status copied = CopyStatus(status);
  for (ResultRecord& record : result->records) {
    gathered.records.push_back(std::move(record));
  }
  if (copied.rc != CMPI_RC_OK && gathered.status.rc == CMPI_RC_OK) {
    gathered.status = copied;
  }
}

// The path's class, or its nearest ancestor, that has a provider of the kind.
ProviderEntry* NearestProvider(HostState& host, const std::string& nameSpace,
                               const std::string& className, MiKind kind) {
  std::string current = className;
  for (int depth = 0; !current.empty() && depth < 256; ++depth) {
    const std::vector<ProviderEntry*> providers = host.providers.forClass(nameSpace, current, kind);
    if (!providers.empty()) {
      return providers.front();
    }
    const ClassDecl* decl = host.repository.findClass(nameSpace, current);
    current = decl == nullptr ? std::string() : decl->superName();
  }
  return nullptr;
}

Status NoProvider(MiKind kind, const PathData& path) {
  return Failure(CMPI_RC_ERR_NOT_SUPPORTED, std::string("no ") + MiKindName(kind) +
                                                " provider serves class " + path.className +
                                                " or its superclasses");
}

Status UnknownClass(const std::string& nameSpace, const std::string& className) {
  return Failure(CMPI_RC_ERR_INVALID_CLASS,
                 "class " + className + " is not declared in namespace " + nameSpace);
}

bool SameKeys(const PathData& a, const PathData& b) {
  if (a.keys.size() != b.keys.size()) {
    return false;
  }
  return std::all_of(a.keys.items().begin(), a.keys.items().end(), [&](const NamedValue& key) {
    const NamedValue* other = b.keys.find(key.name);
    return other != nullptr && SameValue(key.value, other->value);
  });
}

HostValue InstanceValue(InstanceData data) {
  HostValue value;
  value.type = CMPI_instance;
  value.null = false;
  value.setInstance(std::move(data));
  return value;
}

ResultRecord Record(ResultRecord::Kind kind, HostValue value) {
  ResultRecord record;
  record.kind = kind;
  record.value = std::move(value);
  return record;
}

// A request served by one provider, the nearest of the path's class and its
// superclasses that offers the kind (get, create, modify, delete, invoke).
template <typename MI, typename Call>
Gathered RouteToNearestProvider(HostState& host, const PathData& path, MiKind kind, Call&& call) {
  Gathered gathered;
  if (host.repository.findClass(path.nameSpace, path.className) == nullptr) {
    gathered.status = UnknownClass(path.nameSpace, path.className);
    return gathered;
  }
  ProviderEntry* provider = NearestProvider(host, path.nameSpace, path.className, kind);
  if (provider == nullptr) {
    gathered.status = NoProvider(kind, path);
    return gathered;
  }
  gathered.served = true;
  auto* mi = MiFor<MI>(host, *provider, kind, gathered);
  if (mi != nullptr) {
    CallProvider(host, path, gathered,
                 [&](const CMPIContext* context, const CMPIResult* result,
                     const CMPIObjectPath* objectPath) {
                   return call(*provider, mi, context, result, objectPath);
                 });
  }
  return gathered;
}

template <typename Call>
Gathered RouteToInstanceProvider(HostState& host, const PathData& path, Call&& call) {
  return RouteToNearestProvider<CMPIInstanceMI>(host, path, MiKind::kInstance,
                                                std::forward<Call>(call));
}

// Each class of an enumeration or query: `classPath`'s class and its
// subclasses, as paths without keys. Empty, with the status set in
// `gathered`, for an unknown class.
std::vector<PathData> ClassPaths(HostState& host, const PathData& classPath, Gathered& gathered) {
  std::vector<PathData> paths;
  for (const ClassDecl* decl :
       host.repository.classAndSubclasses(classPath.nameSpace, classPath.className)) {
    PathData path;
    path.nameSpace = classPath.nameSpace;
    path.className = decl->name();
    paths.push_back(std::move(path));
  }
  if (paths.empty()) {
    gathered.status = UnknownClass(classPath.nameSpace, classPath.className);
  }
  return paths;
}

// Calls every instance provider registered for exactly `path`'s class, in
// registration order. False, with the reason in `gathered`, as soon as an
// MI cannot be had or a call fails.
template <typename Call>
bool CallInstanceProviders(HostState& host, const PathData& path, Gathered& gathered, Call&& call) {
  for (ProviderEntry* provider :
       host.providers.forClass(path.nameSpace, path.className, MiKind::kInstance)) {
    gathered.served = true;
    auto* mi = MiFor<CMPIInstanceMI>(host, *provider, MiKind::kInstance, gathered);
    if (mi == nullptr) {
      return false;
    }
    CallProvider(host, path, gathered,
                 [&](const CMPIContext* context, const CMPIResult* result,
                     const CMPIObjectPath* objectPath) {
                   return call(*provider, mi, context, result, objectPath);
                 });
    if (gathered.status.rc != CMPI_RC_OK) {
      return false;
    }
  }
  return true;
}

}  // namespace

InstanceData BuildStaticInstance(HostState& host, const std::string& nameSpace,
                                 const StaticInstance& instance) {
  InstanceData data;
  data.shape = host.shapeOf(nameSpace, instance.className);
  if (!data.shape) {
    auto empty = std::make_shared<ClassShape>();
    empty->className = instance.className;
    data.shape = empty;
  }
  data.nameSpace = nameSpace;
  for (const PropertyShape& property : data.shape->properties) {
    data.values.push_back(property.initial);
  }
  const ShapeLookup lookup = host.lookup();
  for (const auto& [name, value] : instance.values) {
    const auto index = data.shape->find(name);
    if (!index) {
      continue;
    }
    const CMPIType type = data.shape->properties[*index].type;
    if (std::optional<HostValue> converted = ValueFromMof(value, type, nameSpace, lookup)) {
      converted->type = type;
      data.values[*index] = std::move(*converted);
    }
  }
  return data;
}

Gathered DispatchEnumerate(HostState& host, const PathData& classPath,
                           const std::vector<std::string>* properties, bool namesOnly) {
  Gathered gathered;
  const std::string& nameSpace = classPath.nameSpace;
  PropertyArray propertyArray(properties);
  for (const PathData& path : ClassPaths(host, classPath, gathered)) {
    const bool called = CallInstanceProviders(
        host, path, gathered,
        [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
            const CMPIResult* result, const CMPIObjectPath* objectPath) {
          if (namesOnly) {
            return mi->ft->enumerateInstanceNames == nullptr
                       ? Missing(provider, MiKind::kInstance, "enumerateInstanceNames")
                       : mi->ft->enumerateInstanceNames(mi, context, result, objectPath);
          }
          return mi->ft->enumerateInstances == nullptr
                     ? Missing(provider, MiKind::kInstance, "enumerateInstances")
                     : mi->ft->enumerateInstances(mi, context, result, objectPath,
                                                  propertyArray.get());
        });
    if (!called) {
      return gathered;
    }
    for (const StaticInstance* instance :
         host.repository.staticInstances(nameSpace, path.className)) {
      gathered.served = true;
      InstanceData data = BuildStaticInstance(host, nameSpace, *instance);
      if (namesOnly) {
        gathered.records.push_back(
            Record(ResultRecord::Kind::kObjectPath, HostValue::Reference(data.objectPath())));
      } else {
        gathered.records.push_back(
            Record(ResultRecord::Kind::kInstance, InstanceValue(std::move(data))));
      }
    }
  }
  if (!gathered.served && gathered.status.rc == CMPI_RC_OK) {
    gathered.status = Failure(CMPI_RC_ERR_NOT_SUPPORTED,
                              "no provider serves class " + classPath.className +
                                  " or its subclasses, and it has no static instances");
  }
  return gathered;
}

Gathered DispatchGetInstance(HostState& host, const PathData& path,
                             const std::vector<std::string>* properties) {
  const ClassDecl* decl = host.repository.findClass(path.nameSpace, path.className);
  if (decl != nullptr &&
      NearestProvider(host, path.nameSpace, path.className, MiKind::kInstance) == nullptr) {
    // No provider: the MOF's static instances answer.
    Gathered gathered;
    for (const StaticInstance* instance :
         host.repository.staticInstances(path.nameSpace, decl->name())) {
      InstanceData data = BuildStaticInstance(host, path.nameSpace, *instance);
      if (SameKeys(data.objectPath(), path)) {
        gathered.served = true;
        gathered.records.push_back(
            Record(ResultRecord::Kind::kInstance, InstanceValue(std::move(data))));
        return gathered;
      }
    }
    gathered.status = Failure(CMPI_RC_ERR_NOT_FOUND, "no instance " + PathToString(path));
    return gathered;
  }
  PropertyArray propertyArray(properties);
  return RouteToInstanceProvider(
      host, path,
      [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
          const CMPIResult* result, const CMPIObjectPath* objectPath) {
        return mi->ft->getInstance == nullptr
                   ? Missing(provider, MiKind::kInstance, "getInstance")
                   : mi->ft->getInstance(mi, context, result, objectPath, propertyArray.get());
      });
}

Gathered DispatchCreateInstance(HostState& host, const PathData& path,
                                const InstanceData& instance) {
  return RouteToInstanceProvider(
      host, path,
      [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
          const CMPIResult* result, const CMPIObjectPath* objectPath) {
        const InstanceObject* object = CreateInScope<InstanceObject>(nullptr, instance);
        return mi->ft->createInstance == nullptr
                   ? Missing(provider, MiKind::kInstance, "createInstance")
                   : mi->ft->createInstance(mi, context, result, objectPath, object);
      });
}

Gathered DispatchModifyInstance(HostState& host, const PathData& path, const InstanceData& instance,
                                const std::vector<std::string>* properties) {
  PropertyArray propertyArray(properties);
  return RouteToInstanceProvider(
      host, path,
      [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
          const CMPIResult* result, const CMPIObjectPath* objectPath) {
        const InstanceObject* object = CreateInScope<InstanceObject>(nullptr, instance);
        return mi->ft->modifyInstance == nullptr
                   ? Missing(provider, MiKind::kInstance, "modifyInstance")
                   : mi->ft->modifyInstance(mi, context, result, objectPath, object,
                                            propertyArray.get());
      });
}

Gathered DispatchDeleteInstance(HostState& host, const PathData& path) {
  return RouteToInstanceProvider(
      host, path,
      [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
          const CMPIResult* result, const CMPIObjectPath* objectPath) {
        return mi->ft->deleteInstance == nullptr
                   ? Missing(provider, MiKind::kInstance, "deleteInstance")
                   : mi->ft->deleteInstance(mi, context, result, objectPath);
      });
}

Gathered DispatchExecQuery(HostState& host, const PathData& classPath, const std::string& query,
                           const std::string& language) {
  Gathered gathered;
  for (const PathData& path : ClassPaths(host, classPath, gathered)) {
    const bool called = CallInstanceProviders(
        host, path, gathered,
        [&](const ProviderEntry& provider, CMPIInstanceMI* mi, const CMPIContext* context,
            const CMPIResult* result, const CMPIObjectPath* objectPath) {
          return mi->ft->execQuery == nullptr ? Missing(provider, MiKind::kInstance, "execQuery")
                                              : mi->ft->execQuery(mi, context, result, objectPath,
                                                                  query.c_str(), language.c_str());
        });
    if (!called) {
      return gathered;
    }
  }
  if (!gathered.served && gathered.status.rc == CMPI_RC_OK) {
    gathered.status =
        Failure(CMPI_RC_ERR_NOT_SUPPORTED,
                "no provider serves class " + classPath.className + " or its subclasses");
  }
  return gathered;
}

Gathered DispatchInvokeMethod(HostState& host, const PathData& path, const std::string& method,
                              const NamedValues& in) {
  NamedValues outArguments;
  Gathered gathered = RouteToNearestProvider<CMPIMethodMI>(
      host, path, MiKind::kMethod,
      [&](const ProviderEntry& provider, CMPIMethodMI* mi, const CMPIContext* context,
          const CMPIResult* result, const CMPIObjectPath* objectPath) {
        const ArgsObject* inArgs = CreateInScope<ArgsObject>(nullptr, in);
        auto* outArgs = CreateInScope<ArgsObject>(nullptr);
        const CMPIStatus status = mi->ft->invokeMethod == nullptr
                                      ? Missing(provider, MiKind::kMethod, "invokeMethod")
                                      : mi->ft->invokeMethod(mi, context, result, objectPath,
                                                             method.c_str(), inArgs, outArgs);
        outArguments = outArgs->args;
        return status;
      });
  gathered.outArguments = std::move(outArguments);
  return gathered;
}

Gathered DispatchAssociation(HostState& host, AssociationOp op, const PathData& path,
                             const AssociationFilter& filter,
                             const std::vector<std::string>* properties) {
  Gathered gathered;
  if (host.repository.findClass(path.nameSpace, path.className) == nullptr) {
    gathered.status = UnknownClass(path.nameSpace, path.className);
    return gathered;
  }
  std::vector<ProviderEntry*> providers;
  if (filter.assocClass) {
    const std::vector<const ClassDecl*> classes =
        host.repository.classAndSubclasses(path.nameSpace, *filter.assocClass);
    if (classes.empty()) {
      gathered.status = UnknownClass(path.nameSpace, *filter.assocClass);
      return gathered;
    }
    for (const ClassDecl* decl : classes) {
      for (ProviderEntry* provider :
           host.providers.forClass(path.nameSpace, decl->name(), MiKind::kAssociation)) {
        if (std::find(providers.begin(), providers.end(), provider) == providers.end()) {
          providers.push_back(provider);
        }
      }
    }
  } else {
    providers = host.providers.inNamespace(path.nameSpace, MiKind::kAssociation);
  }
  if (providers.empty()) {
    gathered.status = Failure(
        CMPI_RC_ERR_NOT_SUPPORTED,
        "no Association provider serves " +
            (filter.assocClass ? "class " + *filter.assocClass : "namespace " + path.nameSpace));
    return gathered;
  }
  gathered.served = true;
  PropertyArray propertyArray(properties);
  for (ProviderEntry* provider : providers) {
    auto* mi = MiFor<CMPIAssociationMI>(host, *provider, MiKind::kAssociation, gathered);
    if (mi == nullptr) {
      return gathered;
    }
    CallProvider(
        host, path, gathered,
        [&](const CMPIContext* context, const CMPIResult* result,
            const CMPIObjectPath* objectPath) {
          const auto& ft = *mi->ft;
          switch (op) {
            case AssociationOp::kAssociators:
              return ft.associators == nullptr
                         ? Missing(*provider, MiKind::kAssociation, "associators")
                         : ft.associators(mi, context, result, objectPath,
                                          OrNull(filter.assocClass), OrNull(filter.resultClass),
                                          OrNull(filter.role), OrNull(filter.resultRole),
                                          propertyArray.get());
            case AssociationOp::kAssociatorNames:
              return ft.associatorNames == nullptr
                         ? Missing(*provider, MiKind::kAssociation, "associatorNames")
                         : ft.associatorNames(mi, context, result, objectPath,
                                              OrNull(filter.assocClass), OrNull(filter.resultClass),
                                              OrNull(filter.role), OrNull(filter.resultRole));
            case AssociationOp::kReferences:
              return ft.references == nullptr
                         ? Missing(*provider, MiKind::kAssociation, "references")
                         : ft.references(mi, context, result, objectPath,
                                         OrNull(filter.resultClass), OrNull(filter.role),
                                         propertyArray.get());
            case AssociationOp::kReferenceNames:
              return ft.referenceNames == nullptr
                         ? Missing(*provider, MiKind::kAssociation, "referenceNames")
                         : ft.referenceNames(mi, context, result, objectPath,
                                             OrNull(filter.resultClass), OrNull(filter.role));
          }
          return Missing(*provider, MiKind::kAssociation, "?");
        });
    if (gathered.status.rc != CMPI_RC_OK) {
      return gathered;
    }
  }
  return gathered;
}

Reply ToReply(const Gathered& gathered) {
  Reply reply;
  reply.status = gathered.status;
  reply.providerCalls = gathered.providerCalls;
  for (const ResultRecord& record : gathered.records) {
    ResultEvent event;
    switch (record.kind) {
      case ResultRecord::Kind::kInstance:
        event.kind = ResultEvent::Kind::kInstance;
        if (record.value.instance() != nullptr) {
          event.instance = ToSnapshot(*record.value.instance());
        }
        break;
      case ResultRecord::Kind::kObjectPath:
        event.kind = ResultEvent::Kind::kObjectPath;
        if (record.value.path() != nullptr) {
          event.path = PathToString(*record.value.path());
        }
        break;
      case ResultRecord::Kind::kData:
        event.kind = ResultEvent::Kind::kData;
        event.data = ToPublicValue(record.value);
        break;
      case ResultRecord::Kind::kDone:
        event.kind = ResultEvent::Kind::kDone;
        break;
      case ResultRecord::Kind::kError:
        event.kind = ResultEvent::Kind::kError;
        event.error = record.error;
        break;
    }
    reply.events.push_back(std::move(event));
  }
  return reply;
}

}  // namespace cmpihost
