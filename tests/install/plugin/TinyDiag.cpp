// TinyDiag: a whole diagnostic plug-in. Its one service checks that the path
// an element names in its DeviceID exists.
#include <sys/stat.h>

#include <memory>
#include <string>

#include <diagcore/diagcore.h>

namespace diag = NQENDRA20;

namespace {

class PathExists : public diag::DiagService {
 public:
  PathExists(std::string date, std::string system)
      : DiagService("TINY_DiagService", "TINY_DiagRecord", "", date, system) {
    (*this)["Name"] = "PathExists";
    (*this)["Caption"] = "Path check";
    (*this)["Description"] = "Checks that the element's path exists";
    (*this)["ElementName"] = "PathExists";
  }

  // The test: the record says what happened, the result goes to the client.
  unsigned int runTest(diag::InstanceImpl& element, diag::DiagnosticRecord* record) override {
    const std::string path = element["DeviceID"];
    struct stat info {};
    if (stat(path.c_str(), &info) == 0) {
      record->pass(1);
      return 0;
    }
    record->fail(1, "ENOENT", 1, "No such path: " + path);
    return 1;
  }
};

class TinyFactory : public diag::ServiceFactory {
  diag::DiagService** CreateServicesImpl(std::string date, std::string system,
                                         unsigned int& count) override {
    auto** services = new diag::DiagService*[1];  // the caller's, with each service
    services[0] = new PathExists(date, system);
    count = 1;
    return services;
  }
};

// Runs once, at the first MI factory call: registers all that the plug-in serves.
void StartTinyDiag(const CMPIBroker* broker, const CMPIContext* context) {
  unsigned int count = 0;
  const std::unique_ptr<diag::DiagService*[]> services(
      TinyFactory().CreateServices(broker, context, count));
  diag::InstanceRegistry* registry = diag::InstanceRegistry::Singleton();
  for (unsigned int i = 0; i < count; ++i) {
    const std::string name = (*services[i])["Name"];
    registry->RegisterInstance(broker, context, services[i]);  // the registry's for good
    auto* setting = new diag::DiagServiceSettingData("TINY_DiagSetting");
    (*setting)["InstanceID"] = "TINY:Setting:" + name;
    (*setting)["HaltOnError"] = "1";  // booleans are "1" or "0"
    registry->RegisterInstance(broker, context, setting);
    auto* capabilities = new diag::DiagServiceCapabilitiesData("TINY_DiagCapabilities");
    (*capabilities)["InstanceID"] = "TINY:Capabilities:" + name;
    registry->RegisterInstance(broker, context, capabilities);
    diag::AvailServiceFactory().CreateAvailableServices(broker, context, services[i], "TINY_Path",
                                                        "TINY_AvailableDiagnosticService", 1, 1);
  }
}

}  // namespace

DIAGCORE_CIM_PROVIDER(TinyDiag, StartTinyDiag);
