// A broker that stands in front of the host's one: it notes, in order, the
// calls a test cares about and may answer them itself, and passes them on to
// the host's broker otherwise. The host knows its own broker by its tables,
// so every call is passed on with the real broker.
#ifndef DIAGCORE_TESTS_DIAG_RECORDINGBROKER_H_
#define DIAGCORE_TESTS_DIAG_RECORDINGBROKER_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <functional>
#include <string>
#include <vector>

namespace diagcore_test {

class RecordingBroker {
 public:
  // In front of `real`; one at a time per process.
  explicit RecordingBroker(const CMPIBroker* real);
  ~RecordingBroker();
  RecordingBroker(const RecordingBroker&) = delete;
  RecordingBroker& operator=(const RecordingBroker&) = delete;

  const CMPIBroker* broker() const { return &broker_; }

  // "newDateTime", "newObjectPath <class>", "enumerateInstances <class>".
  std::vector<std::string> calls;
  // When set, answers enumerateInstances instead of the host.
  std::function<CMPIEnumeration*(const CMPIObjectPath*, CMPIStatus*)> enumerate;

 private:
  static CMPIDateTime* NewDateTime(const CMPIBroker* broker, CMPIStatus* rc);
  static CMPIObjectPath* NewObjectPath(const CMPIBroker* broker, const char* nameSpace,
                                       const char* className, CMPIStatus* rc);
  static CMPIEnumeration* EnumerateInstances(const CMPIBroker* broker, const CMPIContext* context,
                                             const CMPIObjectPath* path, const char** properties,
                                             CMPIStatus* rc);

  const CMPIBroker* real_;
  CMPIBrokerFT bft_;
  CMPIBrokerEncFT eft_;
  CMPIBroker broker_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_DIAG_RECORDINGBROKER_H_
