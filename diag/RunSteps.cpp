#include "diag/RunSteps.h"

#include <mutex>

namespace NQENDRA20 {

namespace {

const char* const kManagedElement = "ManagedElement";
const char* const kResultFor = "Result for ";

// Runs of one service may come from several CIMOM threads at once, and
// reading a property the plug-in never set inserts it into the service's bag.
std::mutex serviceTextsMutex;

}  // namespace

CMPIStatus StatusOf(CMPIrc rc) {
  CMPIStatus status = {rc, nullptr};
  return status;
}

CMPIStatus StatusOf(const CMPIBroker* broker, CMPIrc rc, const std::string& message) {
  CMPIStatus status = StatusOf(rc);
  status.msg = broker->eft->newString(broker, message.c_str(), nullptr);
  return status;
}

const CMPIObjectPath* ManagedElementOf(const CMPIArgs* in) {
  if (in == nullptr) {
    return nullptr;
  }
  CMPIStatus status = StatusOf(CMPI_RC_OK);
  const CMPIData argument = in->ft->getArg(in, kManagedElement, &status);
  if (status.rc != CMPI_RC_OK || argument.type != CMPI_ref ||
      (argument.state & CMPI_nullValue) != 0) {
    return nullptr;
  }
  return argument.value.ref;
}

ServiceTexts ReadServiceTexts(InstanceImpl& service) {
  const std::lock_guard<std::mutex> lock(serviceTextsMutex);
  return ServiceTexts{service["Caption"], service["Description"], service["ElementName"],
                      service["Name"]};
}

void CompleteRecord(DiagnosticRecord& record, const ServiceTexts& texts,
                    const std::string& managedElementName, const std::string& instanceId,
                    const std::string& now) {
  record["Caption"] = kResultFor + texts.caption;
  record["Description"] = kResultFor + texts.description;
  record["ElementName"] = kResultFor + texts.elementName;
  record["ServiceName"] = texts.name;
  record["ManagedElementName"] = managedElementName;
  record["InstanceID"] = instanceId;
  record["CreationTimeStamp"] = now;
}

}  // namespace NQENDRA20
