// A cmpihost::Host set up to serve classes through the library's MI
// functions, for tests of the library and of plug-ins built on it.
//
// The in-process MI tables are test code: each entry passes the broker the
// host created the MI with, then the call's own arguments, to the matching
// DiagServiceProviderCommon* function (the library defines no MI factory).
#ifndef DIAGCORE_TESTS_SUPPORT_PROVIDERHOST_H_
#define DIAGCORE_TESTS_SUPPORT_PROVIDERHOST_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <memory>
#include <string>
#include <vector>

#include "cmpihost/Host.h"
#include "cmpihost/ProviderRegistration.h"
#include "diagcore/InstanceImpl.h"

namespace diagcore_test {

// An absolute path below the project's source tree.
std::string SourcePath(const std::string& relative);

// Whether the project's own DMTF schema (schema/diagcore.mof) is in this tree.
bool HaveProjectSchema();

struct ProviderHostOptions {
  // Load schema/diagcore.mof (with its qualifier declarations) first.
  bool projectSchema = false;
  // More MOF files (absolute paths), loaded in order after the schema.
  std::vector<std::string> mofFiles;
  // The classes that the library's MI functions serve (instance and method).
  std::vector<std::string> classes;
  std::string nameSpace = "root/cimv2";
  // Records kept by the host's log capture; 0 leaves capture off.
  std::size_t logBound = 100000;
};

class ProviderHost {
 public:
  explicit ProviderHost(const ProviderHostOptions& options);
  ~ProviderHost();
  ProviderHost(const ProviderHost&) = delete;
  ProviderHost& operator=(const ProviderHost&) = delete;

  cmpihost::Host& host() { return *host_; }

 private:
  std::unique_ptr<cmpihost::Host> host_;
};

// Hands `bag` to the library's registry inside a call scope of its own, as a
// plug-in's start-up does. Allocate the bag with NewBag (Bags.h).
void RegisterInScope(cmpihost::Host& host, NQENDRA20::InstanceImpl* bag);

// The factories whose MI tables are made of the library's instance and method
// MI functions. The broker they were created with is the one passed on.
cmpihost::MiFactories LibraryMiFactories();

// The broker that the library's MI tables pass on (null before the host
// created them).
const CMPIBroker* LibraryMiBroker();

// The MI objects behind LibraryMiFactories(), for calling a table entry
// directly.
CMPIInstanceMI* LibraryInstanceMI();
CMPIMethodMI* LibraryMethodMI();

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SUPPORT_PROVIDERHOST_H_
