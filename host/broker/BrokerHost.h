// The front door is cmpihost/Host.h; this header is internal.
// What the broker's functions need from the host that owns the broker: the
// host implements it, so the broker never reaches up into the host.
#ifndef CMPIHOST_BROKER_BROKERHOST_H_
#define CMPIHOST_BROKER_BROKERHOST_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "broker/LogBook.h"
#include "broker/Objects.h"
#include "broker/Values.h"
#include "cmpihost/Reply.h"

namespace cmpihost {

// What a request produced, as host values.
struct Gathered {
  Status status;
  std::vector<ResultRecord> records;
  unsigned providerCalls = 0;
  bool served = false;       // some provider or static instance answered for the class
  NamedValues outArguments;  // invokeMethod
};

class BrokerHost {
 public:
  BrokerHost(const BrokerHost&) = delete;
  BrokerHost& operator=(const BrokerHost&) = delete;

  // The host behind a broker pointer, or null when it is not one of ours.
  static BrokerHost* Of(const CMPIBroker* broker);

  const CMPIBroker* cmpiBroker() const { return &broker_; }

  // The declared shape of a class, or null when the namespace has no such class.
  virtual std::shared_ptr<const ClassShape> shapeOf(const std::string& nameSpace,
                                                    const std::string& className) = 0;
  virtual bool isA(const std::string& nameSpace, const std::string& className,
                   const std::string& type) const = 0;
  // The namespace of paths that name none.
  virtual const std::string& nameSpaceOfUnnamed() const = 0;
  virtual std::chrono::system_clock::time_point now() const = 0;
  virtual LogBook& logBook() = 0;

  // The upcalls a provider may make, routed to the providers of the class.
  // A null properties pointer means all properties.
  virtual Gathered enumerate(const PathData& classPath, const std::vector<std::string>* properties,
                             bool namesOnly) = 0;
  virtual Gathered getInstance(const PathData& path,
                               const std::vector<std::string>* properties) = 0;

 protected:
  BrokerHost();
  ~BrokerHost() = default;

 private:
  CMPIBroker broker_{};
};

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_BROKERHOST_H_
