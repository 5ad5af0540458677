// The front door is cmpihost/Host.h; this header is internal.
// What a host is made of: the dispatcher works on it, and the broker sees it
// only as a BrokerHost.
#ifndef CMPIHOST_PROVIDERS_HOSTSTATE_H_
#define CMPIHOST_PROVIDERS_HOSTSTATE_H_

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "broker/BrokerHost.h"
#include "broker/ClassShapes.h"
#include "broker/LogBook.h"
#include "broker/PathText.h"
#include "broker/Values.h"
#include "cmpihost/ClassRepository.h"
#include "providers/ProviderTable.h"

namespace cmpihost {

struct HostState : BrokerHost {
  std::shared_ptr<const ClassShape> shapeOf(const std::string& nameSpace,
                                            const std::string& className) override {
    return shapes.shapeOf(nameSpace, className);
  }
  bool isA(const std::string& nameSpace, const std::string& className,
           const std::string& type) const override {
    return repository.isA(nameSpace, className, type);
  }
  const std::string& nameSpaceOfUnnamed() const override { return defaultNameSpace; }
  std::chrono::system_clock::time_point now() const override;
  LogBook& logBook() override { return log; }
  Gathered enumerate(const PathData& classPath, const std::vector<std::string>* properties,
                     bool namesOnly) override;
  Gathered getInstance(const PathData& path, const std::vector<std::string>* properties) override;

  // Looks classes up by this host's shapes, for path and value texts.
  ShapeLookup lookup() {
    return [this](const std::string& nameSpace, const std::string& className) {
      return shapeOf(nameSpace, className);
    };
  }
  // The entries of a fresh context for a call in that namespace.
  NamedValues contextEntries(const std::string& nameSpace) const;

  ClassRepository repository;
  ShapeCache shapes{repository};
  ProviderTable providers;
  LogBook log;
  // Set only while no request is served (see Host::setDefaultNameSpace), so
  // requests and upcalls read it without a lock.
  std::string defaultNameSpace = "root/cimv2";

  mutable std::mutex clockMutex;
  std::function<std::chrono::system_clock::time_point()> clock;
};

}  // namespace cmpihost

#endif  // CMPIHOST_PROVIDERS_HOSTSTATE_H_
