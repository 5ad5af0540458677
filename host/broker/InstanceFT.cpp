// CMPIInstance: every declared property is present from the start, with its
// declared type; names the class does not declare are refused.
#include <algorithm>

#include "broker/BuildWatch.h"
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not an instance of this broker (null or foreign handle)";

CMPIStatus InstanceRelease(CMPIInstance* instance) {
  return ReleaseIfOurs(AsInstance(instance), kNotOurs);
}

CMPIInstance* InstanceClone(const CMPIInstance* instance, CMPIStatus* rc) {
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<InstanceObject>(rc, object->data());
}

std::string NoSuchProperty(const InstanceData& data, std::string_view name) {
  return "class " + data.shape->className + " declares no property " + std::string(name);
}

CMPIData InstanceGetProperty(const CMPIInstance* instance, const char* name, CMPIStatus* rc) {
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  if (name == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "the property name is null");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const auto index = object->data().shape->find(name);
  if (!index) {
    if (object->buildSerial != 0) {
      WatchUndeclaredProbe(*object, name);
    }
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY, NoSuchProperty(object->data(), name));
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const HostValue& value = object->data().values[*index];
  if (value.null) {
    // A builder asks every property of a new instance for its type: answered here.
    if (rc != nullptr) {
      rc->rc = CMPI_RC_OK;
      rc->msg = nullptr;
    }
    CMPIData data{};
    data.type = value.type;
    data.state = CMPI_nullValue;
    return data;
  }
  return ToCmpiData(value, rc);
}

CMPIData InstanceGetPropertyAt(const CMPIInstance* instance, CMPICount index, CMPIString** name,
                               CMPIStatus* rc) {
  if (name != nullptr) {
    *name = nullptr;
  }
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  const auto& properties = object->data().shape->properties;
  if (index >= properties.size()) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY,
              "property index " + std::to_string(index) + " is out of range (class " +
                  object->data().shape->className + " has " + std::to_string(properties.size()) +
                  " properties)");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const CMPIData data = ToCmpiData(object->data().values[index], rc);
  NameOut(name, properties[index].name, rc);
  return data;
}

CMPICount InstanceGetPropertyCount(const CMPIInstance* instance, CMPIStatus* rc) {
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPICount>(object->data().shape->properties.size());
}

bool FilteredOut(const InstanceData& data, std::size_t index) {
  if (!data.filter || data.shape->properties[index].isKey) {
    return false;
  }
  const std::string& name = data.shape->properties[index].name;
  return std::none_of(data.filter->begin(), data.filter->end(),
                      [&](const std::string& kept) { return NoCaseEqual(kept, name); });
}

CMPIStatus SetValue(InstanceData& data, std::string_view name, const CMPIValue* value,
                    CMPIType type) {
  const auto index = data.shape->find(name);
  if (!index) {
    return MakeStatus(CMPI_RC_ERR_NO_SUCH_PROPERTY, NoSuchProperty(data, name));
  }
  const PropertyShape& property = data.shape->properties[*index];
  if (type != CMPI_null && NormalizedType(type) != property.type) {
    return MakeStatus(CMPI_RC_ERR_TYPE_MISMATCH, "property " + property.name + " of class " +
                                                     data.shape->className + " is declared " +
                                                     CmpiTypeName(property.type) + ", not " +
                                                     CmpiTypeName(type));
  }
  HostValue copy;
  std::string problem;
  const CMPIrc rc = type == CMPI_null ? FromCmpiValue(nullptr, property.type, copy, problem)
                                      : FromCmpiValue(value, type, copy, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, "property " + property.name + ": " + problem);
  }
  if (FilteredOut(data, *index)) {
    return MakeStatus(CMPI_RC_OK);
  }
  copy.type = property.type;
  data.values[*index] = std::move(copy);
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus InstanceSetProperty(const CMPIInstance* instance, const char* name,
                               const CMPIValue* value, CMPIType type) {
  InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (name == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, "the property name is null");
  }
  if (object->buildSerial != 0) {
    WatchSet(*object, name, type);
  }
  return SetValue(object->mutableData(), name, value, type);
}

CMPIStatus InstanceSetPropertyWithOrigin(const CMPIInstance* instance, const char* name,
                                         const CMPIValue* value, CMPIType type, const char*) {
  return InstanceSetProperty(instance, name, value, type);
}

CMPIObjectPath* InstanceGetObjectPath(const CMPIInstance* instance, CMPIStatus* rc) {
  const InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateInScope<ObjectPathObject>(rc, object->data().objectPath());
}

CMPIStatus InstanceSetPropertyFilter(CMPIInstance* instance, const char** properties,
                                     const char**) {
  InstanceObject* object = AsInstance(instance);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (properties == nullptr) {
    object->mutableData().filter.reset();
    return MakeStatus(CMPI_RC_OK);
  }
  std::vector<std::string> kept;
  for (const char** name = properties; *name != nullptr; ++name) {
    kept.emplace_back(*name);
  }
  object->mutableData().filter = std::make_shared<const std::vector<std::string>>(std::move(kept));
  return MakeStatus(CMPI_RC_OK);
}

// The path's host and namespace become the instance's; its keys set the
// instance's key properties, typed as declared.
CMPIStatus InstanceSetObjectPath(CMPIInstance* instance, const CMPIObjectPath* path) {
  InstanceObject* object = AsInstance(instance);
  const ObjectPathObject* source = AsObjectPath(path);
  if (object == nullptr || source == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE,
                      "not an instance and object path of this broker (null or foreign handle)");
  }
  InstanceData updated = object->data();
  updated.host = source->path.host;
  updated.nameSpace = source->path.nameSpace;
  for (const NamedValue& key : source->path.keys.items()) {
    const auto index = updated.shape->find(key.name);
    if (!index) {
      return MakeStatus(CMPI_RC_ERR_NO_SUCH_PROPERTY, NoSuchProperty(updated, key.name));
    }
    const CMPIType declared = updated.shape->properties[*index].type;
    if (!key.value.null && key.value.type != declared) {
      return MakeStatus(CMPI_RC_ERR_TYPE_MISMATCH,
                        "key " + key.name + " is " + CmpiTypeName(key.value.type) +
                            ", the property is declared " + CmpiTypeName(declared));
    }
    updated.values[*index] = key.value;
    updated.values[*index].type = declared;
  }
  object->setData(std::move(updated));
  return MakeStatus(CMPI_RC_OK);
}

}  // namespace

const CMPIInstanceFT kInstanceFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIInstanceFT, release, InstanceRelease),
    CMPIHOST_SLOT(CMPIInstanceFT, clone, InstanceClone),
    CMPIHOST_SLOT(CMPIInstanceFT, getProperty, InstanceGetProperty),
    CMPIHOST_SLOT(CMPIInstanceFT, getPropertyAt, InstanceGetPropertyAt),
    CMPIHOST_SLOT(CMPIInstanceFT, getPropertyCount, InstanceGetPropertyCount),
    CMPIHOST_SLOT(CMPIInstanceFT, setProperty, InstanceSetProperty),
    CMPIHOST_SLOT(CMPIInstanceFT, getObjectPath, InstanceGetObjectPath),
    CMPIHOST_SLOT(CMPIInstanceFT, setPropertyFilter, InstanceSetPropertyFilter),
    CMPIHOST_SLOT(CMPIInstanceFT, setObjectPath, InstanceSetObjectPath),
    CMPIHOST_SLOT(CMPIInstanceFT, setPropertyWithOrigin, InstanceSetPropertyWithOrigin),
};

}  // namespace cmpihost
