// What a Host is made of; shared by the broker's functions, the dispatcher
// and CallScope. Not installed.
#ifndef CMPIHOST_HOSTIMPL_H_
#define CMPIHOST_HOSTIMPL_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "broker/LogBook.h"
#include "broker/Values.h"
#include "cmpihost/Host.h"
#include "providers/ProviderTable.h"
#include "repository/ClassRepository.h"
#include "repository/NoCase.h"

namespace cmpihost {

// The CMPI type code of a declared type (array flag included).
CMPIType CmpiTypeOf(const TypeDecl& type);

struct Host::Impl {
  Impl();
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  // The host behind a broker pointer, or null when it is not one of ours.
  static Impl* Of(const CMPIBroker* broker);

  // The declared shape of a class, or null when the namespace has no such class.
  std::shared_ptr<const ClassShape> shapeOf(const std::string& nameSpace,
                                            const std::string& className);
  // The entries of a fresh context for a call in that namespace.
  NamedValues contextEntries(const std::string& nameSpace) const;
  std::chrono::system_clock::time_point now() const;

  CMPIBroker broker{};
  ClassRepository repository;
  ProviderTable providers;
  LogBook log;
  // Set only while no request is served (see Host::setDefaultNameSpace), so
  // requests and upcalls read it without a lock.
  std::string defaultNameSpace = "root/cimv2";

  mutable std::mutex clockMutex;
  std::function<std::chrono::system_clock::time_point()> clock;

 private:
  // By namespace, then class, both hashed without regard to case: every
  // newInstance and every typed path asks, so a lookup makes no lower-cased
  // key and compares no more names than it must.
  using ShapesOfNameSpace =
      std::unordered_map<std::string, std::shared_ptr<const ClassShape>, NoCaseHash, NoCaseEqualTo>;
  std::mutex shapesMutex_;
  std::unordered_map<std::string, ShapesOfNameSpace, NoCaseHash, NoCaseEqualTo> shapes_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_HOSTIMPL_H_
