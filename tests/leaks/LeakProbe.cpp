// A child process for LeakDisciplineTest: registers objects with the
// library's registry as a plug-in does, then, depending on its one argument,
// leaks one object that the registry does not keep. The leak checker runs
// when it exits. Each case works on a thread of its own, so that no stale
// copy of a pointer on the main thread's stack hides a leak.
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "cmpihost/CallScope.h"
#include "diagcore/CimNames.h"
#include "diagcore/InstanceBuilder.h"
#include "diagcore/InstanceRegistry.h"
#include "support/LibraryHost.h"

namespace {

using diagcore_test::NewBag;
using diagcore_test::PropertyList;
using diagcore_test::TestBag;
using NQENDRA20::InstanceRegistry;

// Where a leaked pointer is written and at once forgotten, so that no
// compiler drops the allocation.
void* volatile forgotten = nullptr;

TestBag* NewElement(const std::string& deviceId) {
  return NewBag(std::string("DCT_Element"),
                PropertyList{{"CreationClassName", "DCT_Element"}, {"DeviceID", deviceId}});
}

// What the registry keeps by design: two classes, a reference-keyed
// association, an entry replaced by a later registration under the same path
// text, and an empty slot left by a missed lookup.
void RegisterKeptObjects(cmpihost::Host& host) {
  diagcore_test::RegisterInScope(host, NewElement("a"));
  diagcore_test::RegisterInScope(host, NewElement("b"));
  diagcore_test::RegisterInScope(host, NewElement("b"));
  diagcore_test::RegisterInScope(
      host,
      NewBag(std::string("DCT_Link"), PropertyList{{"Antecedent",
                                                    "DCT_Element.CreationClassName=\"DCT_Element\","
                                                    "DeviceID=\"a\""},
                                                   {"Dependent",
                                                    "DCT_Element.CreationClassName=\"DCT_Element\","
                                                    "DeviceID=\"b\""}}));
  cmpihost::CallScope scope(host);
  CMPIObjectPath* missing = scope.objectPath(
      "DCT_Element.CreationClassName=\"DCT_Element\","
      "DeviceID=\"nobody\"");
  static_cast<void>(InstanceRegistry::Singleton()->GetInstance(scope.broker(), missing));
}

// A bag made exactly like the registered ones, never handed over.
[[gnu::noinline]] void LeakAnUnregisteredBag(cmpihost::Host& /*host*/) {
  forgotten = NewElement("never registered");
  forgotten = nullptr;
}

// A bag the registry refused (its class is unknown): still its owner's.
[[gnu::noinline]] void LeakARefusedBag(cmpihost::Host& host) {
  TestBag* bag = NewBag(std::string("DCT_Unknown"), PropertyList{{"Name", "x"}});
  diagcore_test::RegisterInScope(host, bag);
  forgotten = bag;
  forgotten = nullptr;
}

// An instance built and cloned as registration does it, kept by nobody.
[[gnu::noinline]] void LeakABuiltClone(cmpihost::Host& host) {
  cmpihost::CallScope scope(host);
  const NQENDRA20::InstanceBuilder builder(NQENDRA20::cimNameSpace);
  TestBag bag("DCT_Element", {{"CreationClassName", "DCT_Element"}, {"DeviceID", "clone"}});
  CMPIInstance* built = builder.build(scope.broker(), scope.context(), "DCT_Element", bag);
  forgotten = built->ft->clone(built, nullptr);
  forgotten = nullptr;
}

// An allocation made while RegisterInstance is on the stack, but not by the
// registry: the log sink runs for each of its traces.
[[gnu::noinline]] void LeakFromTheTraceSink(const cmpihost::LogRecord& record) {
  forgotten = new std::string(record.text);
  forgotten = nullptr;
}

[[gnu::noinline]] void LeakDuringRegistration(cmpihost::Host& host) {
  bool once = true;
  host.onLog([&once](const cmpihost::LogRecord& record) {
    if (once) {
      once = false;
      LeakFromTheTraceSink(record);
    }
  });
  diagcore_test::RegisterInScope(host, NewElement("traced"));
  host.onLog(nullptr);
}

void LeakNothing(cmpihost::Host& /*host*/) {}

struct ProbeCase {
  const char* name;
  void (*run)(cmpihost::Host&);
};

const ProbeCase kCases[] = {
    {"kept-only", LeakNothing},
    {"unregistered-bag", LeakAnUnregisteredBag},
    {"refused-bag", LeakARefusedBag},
    {"built-clone", LeakABuiltClone},
    {"during-registration", LeakDuringRegistration},
};

}  // namespace

int main(int argc, char** argv) {
  const ProbeCase* chosen = nullptr;
  for (const ProbeCase& probeCase : kCases) {
    if (argc == 2 && std::strcmp(argv[1], probeCase.name) == 0) {
      chosen = &probeCase;
    }
  }
  if (chosen == nullptr) {
    std::fprintf(stderr,
                 "usage: leak_probe kept-only|unregistered-bag|refused-bag|"
                 "built-clone|during-registration\n");
    return 2;
  }
  diagcore_test::ProviderHostOptions options;
  options.mofFiles = {diagcore_test::SourcePath("tests/core/data/qualifiers.mof"),
                      diagcore_test::SourcePath("tests/core/data/core.mof")};
  options.logBound = 0;
  diagcore_test::ProviderHost provider(options);
  std::thread([&provider, chosen]() {
    RegisterKeptObjects(provider.host());
    chosen->run(provider.host());
  }).join();
  return 0;
}
