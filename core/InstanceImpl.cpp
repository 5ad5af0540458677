#include "diagcore/InstanceImpl.h"

#include <iostream>
#include <utility>

namespace NQENDRA20 {

InstanceImpl::InstanceImpl() = default;

InstanceImpl::InstanceImpl(std::string className) : className_(std::move(className)) {}

// Copies carry the properties only, so a copied bag is never mistaken for the
// registered object it was copied from.
InstanceImpl::InstanceImpl(const InstanceImpl& other) {
  *this = other;
}

InstanceImpl& InstanceImpl::operator=(const InstanceImpl& other) {
  if (this != &other) {
    properties_ = other.properties_;
  }
  return *this;
}

InstanceImpl::~InstanceImpl() = default;

CMPIStatus InstanceImpl::invokeMethod(const CMPIBroker* /*broker*/, const CMPIContext* /*context*/,
                                      const CMPIResult* /*result*/, const CMPIObjectPath* /*path*/,
                                      std::string /*methodName*/, const CMPIArgs* /*in*/,
                                      CMPIArgs* /*out*/) {
  CMPIStatus status = {CMPI_RC_ERR_METHOD_NOT_FOUND, nullptr};
  return status;
}

std::string& InstanceImpl::operator[](const std::string& name) {
  auto slot = properties_.lower_bound(name);
  if (slot == properties_.end() || slot->first != name) {
    slot = properties_.emplace_hint(slot, name, std::string());
  }
  return slot->second;
}

std::string& InstanceImpl::get(const std::string& name) {
  return (*this)[name];
}

void InstanceImpl::setClassName(std::string className) {
  className_ = std::move(className);
}

void InstanceImpl::setObjectPath(std::string objectPath) {
  objectPath_ = std::move(objectPath);
}

void InstanceImpl::print() const {
  for (const auto& property : properties_) {
    std::cout << property.first << "\t\t" << property.second << std::endl;
  }
  std::cout << std::endl;
}

}  // namespace NQENDRA20
