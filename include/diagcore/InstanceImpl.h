// InstanceImpl: the property bag that every CIM object of the library is.
//
// A bag holds a CIM class name, the object's properties as name/value texts
// and the object path text under which the registry files it. Values are
// always text: their CIM types come from the CIMOM's class declarations when
// the bag is built into a CMPIInstance (see InstanceBuilder).
#ifndef DIAGCORE_INSTANCEIMPL_H_
#define DIAGCORE_INSTANCEIMPL_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <map>
#include <string>

#include "diagcore/Export.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT InstanceImpl {
 public:
  using PropertyMap = std::map<std::string, std::string>;
  using iterator = PropertyMap::iterator;
  using const_iterator = PropertyMap::const_iterator;

  // An empty bag: no class name, no properties, no object path.
  InstanceImpl();
  // An empty bag of the given CIM class.
  explicit InstanceImpl(std::string className);
  // Copies the properties of `other` only; class name and object path stay empty.
  InstanceImpl(const InstanceImpl& other);
  // Replaces this bag's properties with those of `other`; keeps this bag's
  // class name and object path.
  InstanceImpl& operator=(const InstanceImpl& other);

  virtual ~InstanceImpl();

  // Runs the CIM method `methodName` on this object. The default knows no
  // method: it answers CMPI_RC_ERR_METHOD_NOT_FOUND and leaves `result` alone.
  virtual CMPIStatus invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                                  const CMPIResult* result, const CMPIObjectPath* path,
                                  std::string methodName, const CMPIArgs* in, CMPIArgs* out);

  // Fills the bag with the properties of its class.
  virtual void init() = 0;

  // Iteration over the properties in ascending byte order of their names.
  iterator begin() { return properties_.begin(); }
  iterator end() { return properties_.end(); }
  const_iterator begin() const { return properties_.begin(); }
  const_iterator end() const { return properties_.end(); }

  // The property of that name, or end(); never inserts.
  iterator find(const std::string& name) { return properties_.find(name); }
  const_iterator find(const std::string& name) const { return properties_.find(name); }

  // The value text of that property; an unknown name is inserted with "".
  std::string& operator[](const std::string& name);
  // The same as operator[], including the insertion of an unknown name.
  std::string& get(const std::string& name);

  std::string getClassName() const { return className_; }
  void setClassName(std::string className);
  std::string getObjectPath() const { return objectPath_; }
  void setObjectPath(std::string objectPath);

  // Writes every property as "name\t\tvalue" lines, then one empty line.
  void print() const;

 private:
  std::string className_;
  PropertyMap properties_;
  std::string objectPath_;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_INSTANCEIMPL_H_
