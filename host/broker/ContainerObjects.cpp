// CMPIArgs, CMPIContext and CMPIEnumeration: ordered values.
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not an object of this broker (null or foreign handle)";

CMPIStatus AddNamed(NamedValues& values, const char* name, const CMPIValue* value, CMPIType type,
                    const char* what) {
  if (name == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, std::string("the ") + what + " name is null");
  }
  HostValue copy;
  std::string problem;
  const CMPIrc rc = FromCmpiValue(value, type, copy, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, std::string(what) + " " + name + ": " + problem);
  }
  values.set(name, std::move(copy));
  return MakeStatus(CMPI_RC_OK);
}

CMPIData GetNamed(const NamedValues& values, const char* name, CMPIStatus* rc, const char* what) {
  if (name == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, std::string("the ") + what + " name is null");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const NamedValue* found = values.find(name);
  if (found == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no ") + what + " " + name);
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  return ToCmpiData(found->value, rc);
}

CMPIData GetNamedAt(const NamedValues& values, CMPICount index, CMPIString** name, CMPIStatus* rc,
                    const char* what) {
  if (index >= values.size()) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY,
              std::string(what) + " index " + std::to_string(index) +
                  " is out of range (there are " + std::to_string(values.size()) + ")");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const NamedValue& item = values.items()[index];
  const CMPIData data = ToCmpiData(item.value, rc);
  NameOut(name, item.name, rc);
  return data;
}

// --- CMPIArgs ---

CMPIStatus ArgsRelease(CMPIArgs* args) {
  return ReleaseIfOurs(AsArgs(args), kNotOurs);
}

CMPIArgs* ArgsClone(const CMPIArgs* args, CMPIStatus* rc) {
  const ArgsObject* object = AsArgs(args);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<ArgsObject>(rc, object->args);
}

CMPIStatus ArgsAddArg(const CMPIArgs* args, const char* name, const CMPIValue* value,
                      CMPIType type) {
  ArgsObject* object = AsArgs(args);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  return AddNamed(object->args, name, value, type, "argument");
}

CMPIData ArgsGetArg(const CMPIArgs* args, const char* name, CMPIStatus* rc) {
  const ArgsObject* object = AsArgs(args);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  return GetNamed(object->args, name, rc, "argument");
}

CMPIData ArgsGetArgAt(const CMPIArgs* args, CMPICount index, CMPIString** name, CMPIStatus* rc) {
  if (name != nullptr) {
    *name = nullptr;
  }
  const ArgsObject* object = AsArgs(args);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  return GetNamedAt(object->args, index, name, rc, "argument");
}

CMPICount ArgsGetArgCount(const CMPIArgs* args, CMPIStatus* rc) {
  const ArgsObject* object = AsArgs(args);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPICount>(object->args.size());
}

// --- CMPIContext ---

CMPIStatus ContextRelease(CMPIContext* context) {
  return ReleaseIfOurs(AsContext(context), kNotOurs);
}

CMPIContext* ContextClone(const CMPIContext* context, CMPIStatus* rc) {
  const ContextObject* object = AsContext(context);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<ContextObject>(rc, object->entries);
}

CMPIData ContextGetEntry(const CMPIContext* context, const char* name, CMPIStatus* rc) {
  const ContextObject* object = AsContext(context);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  return GetNamed(object->entries, name, rc, "context entry");
}

CMPIData ContextGetEntryAt(const CMPIContext* context, CMPICount index, CMPIString** name,
                           CMPIStatus* rc) {
  if (name != nullptr) {
    *name = nullptr;
  }
  const ContextObject* object = AsContext(context);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  return GetNamedAt(object->entries, index, name, rc, "context entry");
}

CMPICount ContextGetEntryCount(const CMPIContext* context, CMPIStatus* rc) {
  const ContextObject* object = AsContext(context);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPICount>(object->entries.size());
}

CMPIStatus ContextAddEntry(const CMPIContext* context, const char* name, const CMPIValue* value,
                           CMPIType type) {
  ContextObject* object = AsContext(context);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  return AddNamed(object->entries, name, value, type, "context entry");
}

// --- CMPIEnumeration ---

CMPIStatus EnumerationRelease(CMPIEnumeration* enumeration) {
  return ReleaseIfOurs(AsEnumeration(enumeration), kNotOurs);
}

CMPIEnumeration* EnumerationClone(const CMPIEnumeration* enumeration, CMPIStatus* rc) {
  const EnumerationObject* object = AsEnumeration(enumeration);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  auto* copy = CreateOwned<EnumerationObject>(rc, object->itemType, object->items);
  copy->next = object->next;
  return copy;
}

CMPIData EnumerationGetNext(const CMPIEnumeration* enumeration, CMPIStatus* rc) {
  EnumerationObject* object = AsEnumeration(enumeration);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  if (object->next >= object->items.size()) {
    SetStatus(rc, CMPI_RC_ERR_NOT_FOUND, "the enumeration has no more elements");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  CMPIData data = ToCmpiData(object->items[object->next++], rc);
  // OpenPegasus hands out good instances and paths with the null state set;
  // a provider that reads the state instead of the value must fail here too.
  if ((data.type == CMPI_instance && data.value.inst != nullptr) ||
      (data.type == CMPI_ref && data.value.ref != nullptr)) {
    data.state = CMPI_nullValue;
  }
  return data;
}

CMPIBoolean EnumerationHasNext(const CMPIEnumeration* enumeration, CMPIStatus* rc) {
  const EnumerationObject* object = AsEnumeration(enumeration);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return object->next < object->items.size() ? 1 : 0;
}

CMPIArray* EnumerationToArray(const CMPIEnumeration* enumeration, CMPIStatus* rc) {
  const EnumerationObject* object = AsEnumeration(enumeration);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateInScope<ArrayObject>(rc, object->itemType, object->items);
}

}  // namespace

const CMPIArgsFT kArgsFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIArgsFT, release, ArgsRelease),
    CMPIHOST_SLOT(CMPIArgsFT, clone, ArgsClone),
    CMPIHOST_SLOT(CMPIArgsFT, addArg, ArgsAddArg),
    CMPIHOST_SLOT(CMPIArgsFT, getArg, ArgsGetArg),
    CMPIHOST_SLOT(CMPIArgsFT, getArgAt, ArgsGetArgAt),
    CMPIHOST_SLOT(CMPIArgsFT, getArgCount, ArgsGetArgCount),
};

const CMPIContextFT kContextFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIContextFT, release, ContextRelease),
    CMPIHOST_SLOT(CMPIContextFT, clone, ContextClone),
    CMPIHOST_SLOT(CMPIContextFT, getEntry, ContextGetEntry),
    CMPIHOST_SLOT(CMPIContextFT, getEntryAt, ContextGetEntryAt),
    CMPIHOST_SLOT(CMPIContextFT, getEntryCount, ContextGetEntryCount),
    CMPIHOST_SLOT(CMPIContextFT, addEntry, ContextAddEntry),
};

const CMPIEnumerationFT kEnumerationFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIEnumerationFT, release, EnumerationRelease),
    CMPIHOST_SLOT(CMPIEnumerationFT, clone, EnumerationClone),
    CMPIHOST_SLOT(CMPIEnumerationFT, getNext, EnumerationGetNext),
    CMPIHOST_SLOT(CMPIEnumerationFT, hasNext, EnumerationHasNext),
    CMPIHOST_SLOT(CMPIEnumerationFT, toArray, EnumerationToArray),
};

}  // namespace cmpihost
