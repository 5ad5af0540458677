// CMPIObjectPath.
#include "broker/FtBinding.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kNotOurs = "not an object path of this broker (null or foreign handle)";

CMPIStatus PathRelease(CMPIObjectPath* path) {
  return ReleaseIfOurs(AsObjectPath(path), kNotOurs);
}

CMPIObjectPath* PathClone(const CMPIObjectPath* path, CMPIStatus* rc) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateOwned<ObjectPathObject>(rc, object->path);
}

CMPIStatus SetText(CMPIObjectPath* path, const char* text, std::string PathData::*field,
                   const char* what) {
  ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (text == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, std::string(what) + " is null");
  }
  object->path.*field = text;
  return MakeStatus(CMPI_RC_OK);
}

CMPIString* GetText(const CMPIObjectPath* path, CMPIStatus* rc, std::string PathData::*field) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, object->path.*field);
}

CMPIStatus PathSetNameSpace(CMPIObjectPath* path, const char* nameSpace) {
  return SetText(path, nameSpace, &PathData::nameSpace, "the namespace");
}
CMPIString* PathGetNameSpace(const CMPIObjectPath* path, CMPIStatus* rc) {
  return GetText(path, rc, &PathData::nameSpace);
}
CMPIStatus PathSetHostname(CMPIObjectPath* path, const char* host) {
  return SetText(path, host, &PathData::host, "the host name");
}
CMPIString* PathGetHostname(const CMPIObjectPath* path, CMPIStatus* rc) {
  return GetText(path, rc, &PathData::host);
}
CMPIStatus PathSetClassName(CMPIObjectPath* path, const char* className) {
  return SetText(path, className, &PathData::className, "the class name");
}
CMPIString* PathGetClassName(const CMPIObjectPath* path, CMPIStatus* rc) {
  return GetText(path, rc, &PathData::className);
}

CMPIStatus PathAddKey(CMPIObjectPath* path, const char* name, const CMPIValue* value,
                      CMPIType type) {
  ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  if (name == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_PARAMETER, "the key name is null");
  }
  HostValue key;
  std::string problem;
  const CMPIrc rc = FromCmpiValue(value, type, key, problem);
  if (rc != CMPI_RC_OK) {
    return MakeStatus(rc, "key " + std::string(name) + ": " + problem);
  }
  object->path.keys.set(name, std::move(key));
  return MakeStatus(CMPI_RC_OK);
}

CMPIData KeyData(const HostValue& value, CMPIStatus* rc) {
  CMPIData data = ToCmpiData(value, rc);
  data.state = static_cast<CMPIValueState>(data.state | CMPI_keyValue);
  return data;
}

CMPIData PathGetKey(const CMPIObjectPath* path, const char* name, CMPIStatus* rc) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  if (name == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_PARAMETER, "the key name is null");
    return NullData(CMPI_null);
  }
  const NamedValue* key = object->path.keys.find(name);
  if (key == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY, "the path has no key " + std::string(name));
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  return KeyData(key->value, rc);
}

CMPIData PathGetKeyAt(const CMPIObjectPath* path, CMPICount index, CMPIString** name,
                      CMPIStatus* rc) {
  if (name != nullptr) {
    *name = nullptr;
  }
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return NullData(CMPI_null);
  }
  const auto& keys = object->path.keys.items();
  if (index >= keys.size()) {
    SetStatus(rc, CMPI_RC_ERR_NO_SUCH_PROPERTY,
              "key index " + std::to_string(index) + " is out of range (the path has " +
                  std::to_string(keys.size()) + " keys)");
    return NullData(CMPI_null, CMPI_nullValue | CMPI_notFound);
  }
  const CMPIData data = KeyData(keys[index].value, rc);
  NameOut(name, keys[index].name, rc);
  return data;
}

CMPICount PathGetKeyCount(const CMPIObjectPath* path, CMPIStatus* rc) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return 0;
  }
  SetStatus(rc, CMPI_RC_OK);
  return static_cast<CMPICount>(object->path.keys.size());
}

CMPIStatus PathSetNameSpaceFromObjectPath(CMPIObjectPath* path, const CMPIObjectPath* source) {
  ObjectPathObject* object = AsObjectPath(path);
  const ObjectPathObject* from = AsObjectPath(source);
  if (object == nullptr || from == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  object->path.nameSpace = from->path.nameSpace;
  return MakeStatus(CMPI_RC_OK);
}

CMPIStatus PathSetHostAndNameSpaceFromObjectPath(CMPIObjectPath* path,
                                                 const CMPIObjectPath* source) {
  ObjectPathObject* object = AsObjectPath(path);
  const ObjectPathObject* from = AsObjectPath(source);
  if (object == nullptr || from == nullptr) {
    return MakeStatus(CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  }
  object->path.nameSpace = from->path.nameSpace;
  object->path.host = from->path.host;
  return MakeStatus(CMPI_RC_OK);
}

CMPIData QualifierNotSupported(const CMPIObjectPath* path, CMPIStatus* rc) {
  if (AsObjectPath(path) == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
  } else {
    SetStatus(rc, CMPI_RC_ERR_NOT_SUPPORTED, "cmpihost does not serve qualifiers");
  }
  return NullData(CMPI_null);
}

CMPIData PathGetClassQualifier(const CMPIObjectPath* path, const char*, CMPIStatus* rc) {
  return QualifierNotSupported(path, rc);
}
CMPIData PathGetPropertyQualifier(const CMPIObjectPath* path, const char*, const char*,
                                  CMPIStatus* rc) {
  return QualifierNotSupported(path, rc);
}
CMPIData PathGetMethodQualifier(const CMPIObjectPath* path, const char*, const char*,
                                CMPIStatus* rc) {
  return QualifierNotSupported(path, rc);
}
CMPIData PathGetParameterQualifier(const CMPIObjectPath* path, const char*, const char*,
                                   const char*, CMPIStatus* rc) {
  return QualifierNotSupported(path, rc);
}

CMPIString* PathToStringEntry(const CMPIObjectPath* path, CMPIStatus* rc) {
  const ObjectPathObject* object = AsObjectPath(path);
  if (object == nullptr) {
    SetStatus(rc, CMPI_RC_ERR_INVALID_HANDLE, kNotOurs);
    return nullptr;
  }
  return CreateInScope<StringObject>(rc, PathToString(object->path));
}

}  // namespace

const CMPIObjectPathFT kObjectPathFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIObjectPathFT, release, PathRelease),
    CMPIHOST_SLOT(CMPIObjectPathFT, clone, PathClone),
    CMPIHOST_SLOT(CMPIObjectPathFT, setNameSpace, PathSetNameSpace),
    CMPIHOST_SLOT(CMPIObjectPathFT, getNameSpace, PathGetNameSpace),
    CMPIHOST_SLOT(CMPIObjectPathFT, setHostname, PathSetHostname),
    CMPIHOST_SLOT(CMPIObjectPathFT, getHostname, PathGetHostname),
    CMPIHOST_SLOT(CMPIObjectPathFT, setClassName, PathSetClassName),
    CMPIHOST_SLOT(CMPIObjectPathFT, getClassName, PathGetClassName),
    CMPIHOST_SLOT(CMPIObjectPathFT, addKey, PathAddKey),
    CMPIHOST_SLOT(CMPIObjectPathFT, getKey, PathGetKey),
    CMPIHOST_SLOT(CMPIObjectPathFT, getKeyAt, PathGetKeyAt),
    CMPIHOST_SLOT(CMPIObjectPathFT, getKeyCount, PathGetKeyCount),
    CMPIHOST_SLOT(CMPIObjectPathFT, setNameSpaceFromObjectPath, PathSetNameSpaceFromObjectPath),
    CMPIHOST_SLOT(CMPIObjectPathFT, setHostAndNameSpaceFromObjectPath,
                  PathSetHostAndNameSpaceFromObjectPath),
    CMPIHOST_SLOT(CMPIObjectPathFT, getClassQualifier, PathGetClassQualifier),
    CMPIHOST_SLOT(CMPIObjectPathFT, getPropertyQualifier, PathGetPropertyQualifier),
    CMPIHOST_SLOT(CMPIObjectPathFT, getMethodQualifier, PathGetMethodQualifier),
    CMPIHOST_SLOT(CMPIObjectPathFT, getParameterQualifier, PathGetParameterQualifier),
    CMPIHOST_SLOT(CMPIObjectPathFT, toString, PathToStringEntry),
};

}  // namespace cmpihost
