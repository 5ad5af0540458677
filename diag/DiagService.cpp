#include "diagcore/DiagService.h"

#include <memory>
#include <mutex>
#include <utility>

#include "core/Trace.h"
#include "diag/RegistryHandOver.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/DiagUser.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

namespace {

const char* const kRunDiagnostic = "RunDiagnostic";
const char* const kManagedElement = "ManagedElement";
const char* const kNeedsElementReference = "RunDiagnostic needs a ManagedElement reference";
const char* const kResultFor = "Result for ";

// Runs of one service may come from several CIMOM threads at once, and
// reading a property the plug-in never set inserts it into the service's bag.
std::mutex serviceTextsMutex;

CMPIStatus Status(CMPIrc rc) {
  CMPIStatus status = {rc, nullptr};
  return status;
}

// The "ManagedElement" argument, or null when it is missing or is not a
// reference: a test must never run on an element it cannot name.
const CMPIObjectPath* ManagedElementOf(const CMPIArgs* in) {
  if (in == nullptr) {
    return nullptr;
  }
  CMPIStatus status = Status(CMPI_RC_OK);
  const CMPIData argument = in->ft->getArg(in, kManagedElement, &status);
  if (status.rc != CMPI_RC_OK || argument.type != CMPI_ref ||
      (argument.state & CMPI_nullValue) != 0) {
    return nullptr;
  }
  return argument.value.ref;
}

}  // namespace

DiagService::DiagService(std::string className, std::string recordClassName, std::string spareName,
                         std::string installDate, std::string systemName)
    : InstanceImpl(std::move(className)),
      recordClassName(std::move(recordClassName)),
      spareName(std::move(spareName)),
      installDate(std::move(installDate)),
      systemName(std::move(systemName)) {
  DiagService::init();
}

DiagService::~DiagService() = default;

void DiagService::init() {
  InstanceImpl& bag = *this;
  bag["InstallDate"] = installDate;
  bag["OperationalStatus"] = "2";
  bag["StatusDescriptions"] = "Status OK";
  bag["Status"] = "OK";
  bag["EnabledState"] = "2";
  bag["OtherEnabledState"] = "Enabled";
  bag["RequestedState"] = "5";
  bag["EnabledDefault"] = "2";
  bag["TimeOfLastStateChange"] = "0";
  bag["SystemCreationClassName"] = "TORSK_ComputerSystem";
  bag["SystemName"] = systemName;
  bag["CreationClassName"] = getClassName();
  bag["PrimaryOwnerName"] = "Velmora";
  bag["PrimaryOwnerContact"] = "Velmora";
  bag["StartMode"] = "Automatic";
  bag["Started"] = "1";
}

CMPIStatus DiagService::invokeMethod(const CMPIBroker* broker, const CMPIContext* context,
                                     const CMPIResult* result, const CMPIObjectPath* /*path*/,
                                     std::string methodName, const CMPIArgs* in,
                                     CMPIArgs* /*out*/) {
  if (methodName != kRunDiagnostic) {
    return Status(CMPI_RC_ERR_METHOD_NOT_FOUND);
  }
  InstanceRegistry* registry = InstanceRegistry::Singleton();

  const CMPIObjectPath* elementPath = ManagedElementOf(in);
  if (elementPath == nullptr) {
    CMPIStatus invalid = Status(CMPI_RC_ERR_INVALID_PARAMETER);
    invalid.msg = broker->eft->newString(broker, kNeedsElementReference, nullptr);
    return invalid;
  }
  std::string elementText = CMPIUtil::GetObjectPathString(elementPath);
  Trace(broker, CMPI_DEV_DEBUG, {"^^^^ opString = ", elementText});

  DiagUser element;
  CMPIUtil::ParseObjectPath(elementText, element);
  // Owned here until the registry takes it: a test that throws, or a record
  // class that cannot be built, leaves nothing behind.
  auto record = std::make_unique<DiagnosticRecord>(recordClassName);

  const unsigned int testResult = runTest(element, record.get());

  CMPIValue value{};
  value.uint32 = testResult;
  result->ft->returnData(result, &value, CMPI_uint32);
  result->ft->returnDone(result);

  const std::string now = CMPIUtil::GetDateTimeString(broker);
  std::string caption;
  std::string description;
  std::string elementName;
  std::string name;
  {
    const std::lock_guard<std::mutex> lock(serviceTextsMutex);
    caption = (*this)["Caption"];
    description = (*this)["Description"];
    elementName = (*this)["ElementName"];
    name = (*this)["Name"];
  }
  DiagnosticRecord& completed = *record;
  completed["Caption"] = kResultFor + caption;
  completed["Description"] = kResultFor + description;
  completed["ElementName"] = kResultFor + elementName;
  completed["ServiceName"] = name;
  completed["ManagedElementName"] = element["DeviceID"];
  completed["InstanceID"] = getClassName() + ":" + name + ":" + now;
  completed["CreationTimeStamp"] = now;

  HandToRegistry(registry, broker, context, std::move(record));
  return Status(CMPI_RC_OK);
}

}  // namespace NQENDRA20
