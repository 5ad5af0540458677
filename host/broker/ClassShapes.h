// The front door is cmpihost/Host.h; this header is internal.
// The broker's view of declared classes: shapes made once from the class
// repository and shared by every instance of the class.
#ifndef CMPIHOST_BROKER_CLASSSHAPES_H_
#define CMPIHOST_BROKER_CLASSSHAPES_H_

#include <cmpidt.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "broker/Values.h"
#include "cmpihost/ClassRepository.h"
#include "text/NoCase.h"

namespace cmpihost {

// The CMPI type code of a declared type (array flag included).
CMPIType CmpiTypeOf(const TypeDecl& type);

class ShapeCache {
 public:
  explicit ShapeCache(const ClassRepository& repository) : repository_(repository) {}

  // The declared shape of a class, or null when the namespace has no such class.
  std::shared_ptr<const ClassShape> shapeOf(const std::string& nameSpace,
                                            const std::string& className);

 private:
  using ShapesOfNameSpace = std::map<std::string, std::shared_ptr<const ClassShape>, NoCaseLess>;
  const ClassRepository& repository_;
  std::mutex mutex_;
  std::map<std::string, ShapesOfNameSpace, NoCaseLess> shapes_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_CLASSSHAPES_H_
