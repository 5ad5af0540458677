#include "diag/ProfileRun.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "core/Trace.h"
#include "diag/EmbeddedSettings.h"
#include "diag/PlainBag.h"
#include "diag/RunSteps.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/DiagUser.h"

namespace NQENDRA20 {

namespace {

const char* const kRunDiagnostic = "RunDiagnostic";
const char* const kRunDiagnosticService = "RunDiagnosticService";
constexpr CMPIUint32 kPersistForever = std::numeric_limits<CMPIUint32>::max();
constexpr CMPIUint64 kMicrosPerSecond = 1000000;
constexpr unsigned int kLargestErrorCode = std::numeric_limits<CMPIUint16>::max();

// ResultPersistence as a number of seconds, or nullopt when it is no
// unsigned 32-bit decimal number.
std::optional<CMPIUint32> SecondsOf(const std::string& text) {
  if (text.empty() || text.size() > 10 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  const unsigned long long seconds = std::stoull(text);
  if (seconds > kPersistForever) {
    return std::nullopt;
  }
  return static_cast<CMPIUint32>(seconds);
}

std::string PropertyOf(const InstanceImpl& bag, const char* name) {
  const auto found = bag.find(name);
  return found != bag.end() ? found->second : "";
}

}  // namespace

ProfileRun::ProfileRun(DiagService& service, const ServiceProfile& profile,
                       const CMPIBroker* broker, const CMPIContext* context)
    : service_(service), profile_(profile), broker_(broker), context_(context) {}

CMPIStatus ProfileRun::invoke(const CMPIResult* result, const std::string& methodName,
                              const CMPIArgs* in, CMPIArgs* out) const {
  const bool withJob = methodName == kRunDiagnosticService && profile_.options.runDiagnosticService;
  if (methodName != kRunDiagnostic && !withJob) {
    return StatusOf(CMPI_RC_ERR_METHOD_NOT_FOUND);
  }
  const CMPIObjectPath* elementPath = ManagedElementOf(in);
  if (elementPath == nullptr) {
    return StatusOf(broker_, CMPI_RC_ERR_INVALID_PARAMETER,
                    methodName + " needs a ManagedElement reference");
  }
  RunSettings settings;
  if (withJob) {
    const std::string invalid = ReadRunSettings(broker_, in, settings);
    if (!invalid.empty()) {
      return StatusOf(broker_, CMPI_RC_ERR_INVALID_PARAMETER, invalid);
    }
  }
  const std::string elementText = CMPIUtil::GetObjectPathString(elementPath);
  Trace(broker_, CMPI_DEV_DEBUG, {"^^^^ opString = ", elementText});
  auto record = std::make_unique<DiagnosticRecord>(service_.getRecordClassName());
  if (withJob) {
    return runDiagnosticService(
        result, out, elementText, std::move(record),
        settings.resultPersistence ? settings.resultPersistence : defaultPersistence());
  }
  return runDiagnostic(result, elementText, std::move(record));
}

CMPIStatus ProfileRun::runDiagnostic(const CMPIResult* result, const std::string& elementText,
                                     std::unique_ptr<DiagnosticRecord> record) const {
  std::string parsedText = elementText;
  DiagUser element;
  CMPIUtil::ParseObjectPath(parsedText, element);
  // An exception from the test passes, and leaves nothing, as it always did.
  const unsigned int testResult = service_.runTest(element, record.get());

  CMPIValue value{};
  value.uint32 = testResult;
  result->ft->returnData(result, &value, CMPI_uint32);
  result->ft->returnDone(result);

  const CimTime now = Now(broker_);
  const unsigned long long run = ++profile_.runs;
  complete(*record, element, now, run);
  const Retention retention = retentionFor(now, defaultPersistence());
  if (!retention.expirationDate.empty()) {
    (*record)["ExpirationDate"] = retention.expirationDate;
  }
  InstanceRegistry::Batch batch;
  if (!addRecord(batch, std::move(record), elementText).empty()) {
    InstanceRegistry::Singleton()->Register(broker_, batch, retention.lifetime);
  }
  return StatusOf(CMPI_RC_OK);
}

CMPIStatus ProfileRun::runDiagnosticService(const CMPIResult* result, CMPIArgs* out,
                                            const std::string& elementText,
                                            std::unique_ptr<DiagnosticRecord> record,
                                            std::optional<CMPIUint32> persistence) const {
  std::string parsedText = elementText;
  DiagUser element;
  CMPIUtil::ParseObjectPath(parsedText, element);
  const CimTime start = Now(broker_);
  const Outcome outcome = runForJob(element, *record);
  const CimTime end = Now(broker_);

  const unsigned long long run = ++profile_.runs;
  const ServiceTexts texts = complete(*record, element, end, run);
  const Retention retention = retentionFor(end, persistence);
  if (!retention.expirationDate.empty()) {
    (*record)["ExpirationDate"] = retention.expirationDate;
  }
  std::unique_ptr<InstanceImpl> job = newJob(outcome, *record, texts, start, end, retention, run);
  const std::string jobClass = job->getClassName();

  InstanceRegistry::Batch batch;
  // A test that threw reported nothing: its job tells why, and no record is left.
  const std::string recordPath =
      outcome.threw ? "" : addRecord(batch, std::move(record), elementText);
  const InstanceRegistry::Batch::Added added = batch.Add(broker_, context_, std::move(job));
  if (added.path == nullptr) {
    return StatusOf(broker_, CMPI_RC_ERR_FAILED,
                    "RunDiagnosticService could not build its job of class " + jobClass);
  }
  const ProfileClasses& classes = profile_.options.classes;
  batch.Add(broker_, context_,
            NewBag(classes.owningJobElement, {{"OwningElement", profile_.servicePathText},
                                              {"OwnedElement", added.pathText}}));
  batch.Add(broker_, context_,
            NewBag(classes.affectedJobElement,
                   {{"AffectedElement", elementText}, {"AffectingElement", added.pathText}}));
  if (!recordPath.empty()) {
    batch.Add(broker_, context_,
              NewBag(classes.recordAppliesToElement,
                     {{"Antecedent", recordPath}, {"Dependent", added.pathText}}));
  }
  // The CIMOM copies the reference; the job's own path lives with it.
  CMPIValue jobReference{};
  jobReference.ref = const_cast<CMPIObjectPath*>(added.path);
  if (out != nullptr) {
    out->ft->addArg(out, "Job", &jobReference, CMPI_ref);
  }
  InstanceRegistry::Singleton()->Register(broker_, batch, retention.lifetime);

  CMPIValue value{};
  value.uint32 = 0;
  result->ft->returnData(result, &value, CMPI_uint32);
  result->ft->returnDone(result);
  return StatusOf(CMPI_RC_OK);
}

ProfileRun::Outcome ProfileRun::runForJob(InstanceImpl& element, DiagnosticRecord& record) const {
  Outcome outcome;
  try {
    outcome.result = service_.runTest(element, &record);
  } catch (const std::exception& error) {
    outcome.threw = true;
    outcome.failure = error.what();
  } catch (...) {
    outcome.threw = true;
    outcome.failure = "unknown exception";
  }
  return outcome;
}

ServiceTexts ProfileRun::complete(DiagnosticRecord& record, InstanceImpl& element,
                                  const CimTime& now, unsigned long long run) const {
  ServiceTexts texts = ReadServiceTexts(service_);
  CompleteRecord(
      record, texts, element["DeviceID"],
      service_.getClassName() + ":" + texts.name + ":" + now.text + ":" + std::to_string(run),
      now.text);
  return texts;
}

std::optional<CMPIUint32> ProfileRun::defaultPersistence() const {
  const auto found = profile_.settingData->find("ResultPersistence");
  if (found == profile_.settingData->end()) {
    return std::nullopt;
  }
  const std::optional<CMPIUint32> seconds = SecondsOf(found->second);
  if (!seconds && profile_.options.retention) {
    Trace(broker_, CMPI_SEV_WARNING,
          "ResultPersistence \"" + found->second + "\" of " +
              profile_.settingData->getObjectPath() +
              " is no number of seconds: the record is kept");
  }
  return seconds;
}

ProfileRun::Retention ProfileRun::retentionFor(const CimTime& now,
                                               std::optional<CMPIUint32> persistence) const {
  Retention retention;
  retention.lifetime.owner = profile_.servicePathText;
  retention.lifetime.bound = profile_.options.recordBound;
  if (!profile_.options.retention || !persistence || *persistence == kPersistForever) {
    return retention;
  }
  const CMPIUint64 kept = CMPIUint64{*persistence} * kMicrosPerSecond;
  retention.lifetime.expiresAt = now.micros + kept;
  retention.expirationDate = kept == 0 ? now.text : TimeText(broker_, now.micros + kept);
  retention.timeBeforeRemoval = IntervalText(kept);
  return retention;
}

std::string ProfileRun::addRecord(InstanceRegistry::Batch& batch,
                                  std::unique_ptr<DiagnosticRecord> record,
                                  const std::string& elementText) const {
  std::string recordPath = batch.Add(broker_, context_, std::move(record)).pathText;
  if (recordPath.empty()) {
    return "";
  }
  const ProfileClasses& classes = profile_.options.classes;
  batch.Add(
      broker_, context_,
      NewBag(classes.logManagesRecord, {{"Log", profile_.logPathText}, {"Record", recordPath}}));
  batch.Add(broker_, context_,
            NewBag(classes.recordAppliesToElement,
                   {{"Antecedent", recordPath}, {"Dependent", elementText}}));
  return recordPath;
}

std::unique_ptr<InstanceImpl> ProfileRun::newJob(const Outcome& outcome,
                                                 const DiagnosticRecord& record,
                                                 const ServiceTexts& texts, const CimTime& start,
                                                 const CimTime& end, const Retention& retention,
                                                 unsigned long long run) const {
  const bool failed = outcome.threw || outcome.result != 0;
  const std::string& jobClass = profile_.options.classes.job;
  auto job = NewBag(
      jobClass,
      {{"InstanceID", jobClass + ":" + texts.name + ":" + std::to_string(run)},
       {"Name", texts.name},
       {"ElementName", std::string(kRunDiagnosticService) + " of " + texts.name},
       {"JobState", failed ? "10" : "7"},
       {"JobStatus", failed ? "Exception" : "Completed"},
       {"OperationalStatus", failed ? "17,6" : "17,2"},
       {"TimeSubmitted", start.text},
       {"StartTime", start.text},
       {"TimeOfLastStateChange", end.text},
       {"ElapsedTime", IntervalText(end.micros > start.micros ? end.micros - start.micros : 0)},
       {"PercentComplete", "100"},
       {"DeleteOnCompletion", "0"}});
  if (!retention.timeBeforeRemoval.empty()) {
    (*job)["TimeBeforeRemoval"] = retention.timeBeforeRemoval;
  }
  if (outcome.threw) {
    (*job)["ErrorCode"] = "1";
    (*job)["ErrorDescription"] = "The test failed to run: " + outcome.failure;
  } else if (outcome.result != 0) {
    (*job)["ErrorCode"] = std::to_string(std::min(outcome.result, kLargestErrorCode));
    (*job)["ErrorDescription"] = PropertyOf(record, "RecordData");
  }
  return job;
}

}  // namespace NQENDRA20
