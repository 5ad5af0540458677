// Shared by the host tests: a host with the test MOF loaded, and small
// helpers that keep the tests about behaviour rather than CMPI plumbing.
#ifndef TESTS_HOST_HOSTTESTSUPPORT_H_
#define TESTS_HOST_HOSTTESTSUPPORT_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cmpihost/CallScope.h"
#include "cmpihost/Host.h"
#include "cmpihost/ProviderRegistration.h"

namespace cmpihost::testing {

// The text of the HostError that `call` throws, or "(no error)".
template <typename Call>
std::string HostErrorOf(Call&& call) {
  try {
    call();
  } catch (const HostError& error) {
    return error.what();
  }
  return "(no error)";
}

inline std::string Text(const CMPIString* string) {
  return string == nullptr ? "<null>" : string->ft->getCharPtr(string, nullptr);
}

// A registration in root/cimv2 for `classes`, of the kinds asked for.
inline ProviderRegistration Registration(std::string name, std::vector<std::string> classes,
                                         bool instance, bool method = false,
                                         bool association = false) {
  ProviderRegistration registration;
  registration.providerName = std::move(name);
  registration.classNames = std::move(classes);
  registration.instance = instance;
  registration.method = method;
  registration.association = association;
  return registration;
}

// A host with tests/host/data/test.mof in root/cimv2 and a call scope open
// on the test's thread.
class HostTest : public ::testing::Test {
 protected:
  HostTest() {
    host_.loadMof(HOST_TEST_MOF);
    scope_ = std::make_unique<CallScope>(host_);
    broker_ = scope_->broker();
  }

  CMPIObjectPath* path(const char* className, const char* nameSpace = "root/cimv2") {
    return broker_->eft->newObjectPath(broker_, nameSpace, className, nullptr);
  }

  CMPIInstance* instance(const char* className) {
    return broker_->eft->newInstance(broker_, path(className), nullptr);
  }

  CMPIString* string(const char* text) { return broker_->eft->newString(broker_, text, nullptr); }

  CMPIStatus setString(CMPIInstance* target, const char* name, const char* text) {
    CMPIValue value;
    value.string = string(text);
    return target->ft->setProperty(target, name, &value, CMPI_string);
  }

  std::string pathText(const CMPIObjectPath* objectPath) {
    return Text(objectPath->ft->toString(objectPath, nullptr));
  }

  Host host_;
  std::unique_ptr<CallScope> scope_;
  const CMPIBroker* broker_ = nullptr;
};

}  // namespace cmpihost::testing

#endif  // TESTS_HOST_HOSTTESTSUPPORT_H_
