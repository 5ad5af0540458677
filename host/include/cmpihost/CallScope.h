// The memory scope of one MI call. Every CMPI object a broker function
// creates on this thread while the scope is open belongs to it and is freed
// when it closes (or earlier by its release); clone() gives objects that
// belong to the caller until released. Scopes nest; the host opens one
// around every MI call and factory call, and tests open one to call library
// code directly. With no scope open on a thread the broker makes no object:
// it answers null with CMPI_RC_ERR_FAILED and a message saying so (a
// provider's own thread gets a scope from attachThread, or from mark).
#ifndef CMPIHOST_CALLSCOPE_H_
#define CMPIHOST_CALLSCOPE_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <cstddef>
#include <memory>
#include <string>

#include "cmpihost/Export.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Reply.h"

namespace cmpihost {

class Host;

class CMPIHOST_EXPORT CallScope {
 public:
  // Opens a scope on the calling thread; it must be closed on the same thread.
  explicit CallScope(Host& host);
  // Frees every object still owned by the scope.
  ~CallScope();
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

  // The host's broker and a fresh context for the host's default namespace
  // (as it was when the scope opened).
  const CMPIBroker* broker() const;
  const CMPIContext* context() const;

  // An object path parsed from text such as
  // `//host/root/cimv2:CIM_Foo.Name="a",Count=5`; keys are typed from the
  // class declaration (for an unknown class, from the literals); a text
  // without a namespace is in the host's default namespace. Null when
  // the text does not parse; `problem`, when given, then says why.
  CMPIObjectPath* objectPath(const std::string& pathText, std::string* problem = nullptr);
  // A result that records every call made on it.
  CMPIResult* newResult();
  // What a result made by newResult() has recorded so far.
  Reply recorded(const CMPIResult* result) const;
  // A copy of an instance's class, path and properties.
  InstanceSnapshot snapshot(const CMPIInstance* instance) const;
  // Objects created in this scope and not yet released or freed.
  std::size_t liveObjects() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_CALLSCOPE_H_
