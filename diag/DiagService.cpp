#include "diagcore/DiagService.h"

#include <memory>
#include <utility>

#include "core/Trace.h"
#include "diag/ProfileRun.h"
#include "diag/RegistryHandOver.h"
#include "diag/RunSteps.h"
#include "diag/ServiceProfile.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/DiagUser.h"
#include "diagcore/InstanceRegistry.h"

namespace NQENDRA20 {

namespace {

const char* const kRunDiagnostic = "RunDiagnostic";
const char* const kNeedsElementReference = "RunDiagnostic needs a ManagedElement reference";

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
                                     std::string methodName, const CMPIArgs* in, CMPIArgs* out) {
  if (const std::shared_ptr<const ServiceProfile> profile = ProfileOf(this)) {
    const ProfileRun run(*this, *profile, broker, context);
    return run.invoke(result, methodName, in, out);
  }
  if (methodName != kRunDiagnostic) {
    return StatusOf(CMPI_RC_ERR_METHOD_NOT_FOUND);
  }
  InstanceRegistry* registry = InstanceRegistry::Singleton();

  const CMPIObjectPath* elementPath = ManagedElementOf(in);
  if (elementPath == nullptr) {
    return StatusOf(broker, CMPI_RC_ERR_INVALID_PARAMETER, kNeedsElementReference);
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
  const ServiceTexts texts = ReadServiceTexts(*this);
  CompleteRecord(*record, texts, element["DeviceID"], getClassName() + ":" + texts.name + ":" + now,
                 now);

  HandToRegistry(registry, broker, context, std::move(record));
  return StatusOf(CMPI_RC_OK);
}

}  // namespace NQENDRA20
