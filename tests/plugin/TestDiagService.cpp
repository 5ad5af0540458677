#include <stdexcept>
#include <utility>

#include "plugin/DiagTestPlugin.h"

namespace diagtestplugin {

namespace {

std::map<std::string, std::string> PropertiesOf(const NQENDRA20::InstanceImpl& bag) {
  return {bag.begin(), bag.end()};
}

}  // namespace

TestDiagService::TestDiagService(const std::string& name, const std::string& caption,
                                 Behaviour behaviour, std::string installDate,
                                 std::string systemName)
    : DiagService(kServiceClass, kRecordClass, "spare:" + name, std::move(installDate),
                  std::move(systemName)),
      behaviour_(std::move(behaviour)) {
  (*this)["Name"] = name;
  (*this)["Caption"] = caption;
  (*this)["Description"] = caption + " of the test plug-in";
  (*this)["ElementName"] = name + " diagnostic";
}

unsigned int TestDiagService::runTest(NQENDRA20::InstanceImpl& managedElement,
                                      NQENDRA20::DiagnosticRecord* record) {
  Behaviour behaviour;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    runs_.push_back(TestRun{managedElement.getClassName(), PropertiesOf(managedElement),
                            PropertiesOf(*record)});
    behaviour = behaviour_;
  }
  switch (behaviour.outcome) {
    case Behaviour::Outcome::kPass:
      record->pass(behaviour.loops);
      break;
    case Behaviour::Outcome::kFail:
      record->fail(behaviour.loops, behaviour.errorCode, behaviour.errorCount, behaviour.text);
      break;
    case Behaviour::Outcome::kThrow:
      throw std::runtime_error(behaviour.text);
  }
  return behaviour.result;
}

void TestDiagService::setBehaviour(const Behaviour& behaviour) {
  const std::lock_guard<std::mutex> lock(mutex_);
  behaviour_ = behaviour;
}

std::vector<TestRun> TestDiagService::runs() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return runs_;
}

}  // namespace diagtestplugin
