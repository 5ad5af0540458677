// Registration of a diagnostic record, against building the same instance
// once directly through the broker and cloning it. The registry builds every
// bag twice by design, so 2.0 is the floor of this ratio.
//
// The direct build sets the same typed values the builder sets: strings as
// CMPIStrings made by newString, the date-time made by newDateTimeFromChars,
// numbers as they are (read from their texts before the clock starts).
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/PairTimer.h"
#include "broker/Scope.h"
#include "diagcore/InstanceRegistry.h"

namespace bench {
namespace {

constexpr std::size_t kBatch = 50;

// Serials of their own, so that every registration files a new path text.
std::size_t nextSerial = 10000000;

// One property as a hand-written provider sets it: its declared type and
// its value.
struct TypedProperty {
  std::string name;
  CMPIType type;
  std::string text;
  CMPIValue value;
};

CMPIType DeclaredType(const std::string& name) {
  if (name == "RecordType") {
    return CMPI_uint16;
  }
  if (name == "LoopsFailed" || name == "LoopsPassed") {
    return CMPI_uint32;
  }
  if (name == "CreationTimeStamp") {
    return CMPI_dateTime;
  }
  return CMPI_string;
}

// The bag's properties as typed values, in the bag's order (the builder's).
std::vector<TypedProperty> TypedValues(const NQENDRA20::InstanceImpl& bag) {
  std::vector<TypedProperty> typed;
  for (const auto& [name, text] : bag) {
    TypedProperty property{name, DeclaredType(name), text, CMPIValue{}};
    if (property.type == CMPI_uint16) {
      property.value.uint16 = static_cast<CMPIUint16>(std::strtoul(text.c_str(), nullptr, 10));
    } else if (property.type == CMPI_uint32) {
      property.value.uint32 = static_cast<CMPIUint32>(std::strtoul(text.c_str(), nullptr, 10));
    }
    typed.push_back(std::move(property));
  }
  return typed;
}

// newObjectPath, newInstance, one setProperty per value, clone: the least a
// provider does to keep an instance past its call.
[[gnu::noinline]] CMPIInstance* BuildDirectly(const CMPIBroker* broker, const char* className,
                                              std::vector<TypedProperty>& properties) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, kNameSpace, className, &status);
  path->ft->setHostname(path, "localhost");
  CMPIInstance* instance = broker->eft->newInstance(broker, path, &status);
  for (TypedProperty& property : properties) {
    if (property.type == CMPI_string) {
      property.value.string = broker->eft->newString(broker, property.text.c_str(), &status);
    } else if (property.type == CMPI_dateTime) {
      property.value.dateTime =
          broker->eft->newDateTimeFromChars(broker, property.text.c_str(), &status);
    }
    instance->ft->setProperty(instance, property.name.c_str(), &property.value, property.type);
  }
  return instance->ft->clone(instance, &status);
}

void BM_Registration(benchmark::State& state) {
  const Session session;
  NQENDRA20::InstanceRegistry* registry = NQENDRA20::InstanceRegistry::Singleton();
  std::vector<std::unique_ptr<NQENDRA20::DiagnosticRecord>> bags;
  std::vector<std::vector<TypedProperty>> typed;
  static std::vector<CMPIInstance*> kept;  // the baseline's clones live on, as the registry's do

  Side subject;
  subject.prepare = [&](std::size_t count) {
    bags.clear();
    for (std::size_t i = 0; i < count; ++i) {
      bags.push_back(RunRecord("BENCH_RegRecord", nextSerial++));
    }
  };
  subject.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Scope call;
      registry->RegisterInstance(session.broker(), session.context(), bags[i].get());
      static_cast<void>(bags[i].release());  // the registry's now
    }
  };
  Side baseline;
  baseline.prepare = [&](std::size_t count) {
    typed.clear();
    for (std::size_t i = 0; i < count; ++i) {
      typed.push_back(TypedValues(*RunRecord("BENCH_DirectRecord", nextSerial++)));
    }
  };
  baseline.run = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const cmpihost::Scope call;
      kept.push_back(BuildDirectly(session.broker(), "BENCH_DirectRecord", typed[i]));
    }
  };
  PairTimer(kBatch).Run(state, subject, baseline);
}
BENCHMARK(BM_Registration)->UseManualTime()->Iterations(40)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bench
