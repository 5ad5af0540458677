#include "diag/RecordingBroker.h"

namespace diagcore_test {

namespace {

RecordingBroker* current = nullptr;

std::string ClassOf(const CMPIObjectPath* path) {
  const CMPIString* name = path->ft->getClassName(path, nullptr);
  return name != nullptr ? name->ft->getCharPtr(name, nullptr) : "";
}

}  // namespace

RecordingBroker::RecordingBroker(const CMPIBroker* real)
    : real_(real), bft_(*real->bft), eft_(*real->eft), broker_(*real) {
  bft_.enumerateInstances = EnumerateInstances;
  eft_.newDateTime = NewDateTime;
  eft_.newObjectPath = NewObjectPath;
  broker_.bft = &bft_;
  broker_.eft = &eft_;
  current = this;
}

RecordingBroker::~RecordingBroker() {
  current = nullptr;
}

CMPIDateTime* RecordingBroker::NewDateTime(const CMPIBroker* /*broker*/, CMPIStatus* rc) {
  current->calls.emplace_back("newDateTime");
  return current->real_->eft->newDateTime(current->real_, rc);
}

CMPIObjectPath* RecordingBroker::NewObjectPath(const CMPIBroker* /*broker*/, const char* nameSpace,
                                               const char* className, CMPIStatus* rc) {
  current->calls.push_back(std::string("newObjectPath ") + className);
  return current->real_->eft->newObjectPath(current->real_, nameSpace, className, rc);
}

CMPIEnumeration* RecordingBroker::EnumerateInstances(const CMPIBroker* /*broker*/,
                                                     const CMPIContext* context,
                                                     const CMPIObjectPath* path,
                                                     const char** properties, CMPIStatus* rc) {
  current->calls.push_back("enumerateInstances " + ClassOf(path));
  if (current->enumerate) {
    return current->enumerate(path, rc);
  }
  return current->real_->bft->enumerateInstances(current->real_, context, path, properties, rc);
}

}  // namespace diagcore_test
