// Shared by the host tests: a host with the test MOF loaded, and small
// helpers that keep the tests about behaviour rather than CMPI plumbing.
#ifndef TESTS_HOST_HOSTTESTSUPPORT_H_
#define TESTS_HOST_HOSTTESTSUPPORT_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "cmpihost/CallScope.h"
#include "cmpihost/Host.h"

namespace cmpihost::testing {

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

  static std::string Text(const CMPIString* string) {
    return string == nullptr ? "<null>" : string->ft->getCharPtr(string, nullptr);
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
