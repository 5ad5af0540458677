// The one host every benchmark runs in, and the objects the figures share.
//
// The library's registry is process-wide and never forgets an object, so the
// benchmarks share one cmpihost::Host for the whole process (the plug-in's MI
// keeps the broker of the host that created it) and give every figure its
// own classes (bench.mof). Log capture stays off, as in a real CIMOM whose
// logMessage goes to a log the provider never sees again.
#ifndef DIAGCORE_BENCH_BENCHHOST_H_
#define DIAGCORE_BENCH_BENCHHOST_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cmpihost/CallScope.h"
#include "cmpihost/Host.h"
#include "diagcore/DiagnosticRecord.h"

namespace bench {

extern const char* const kNameSpace;          // "root/cimv2": what the library serves
extern const char* const kBaselineNameSpace;  // "root/baseline": the minimal provider's
extern const char* const kServiceClass;       // "BENCH_DiagService"
extern const char* const kDeviceClass;        // "BENCH_Device"

// The runs BENCH_ProfileService keeps: it is offered the Diagnostics Profile
// with retention and this bound.
inline constexpr unsigned int kProfileBound = 1000;

// The host, created on first use: the project's schema and bench.mof in both
// namespaces, the bench plug-in (DIAGCORE_PROVIDER) serving every BENCH_
// class of root/cimv2, and the minimal provider serving BENCH_EnumRecord of
// root/baseline. Its clock advances one microsecond per newDateTime, so
// every run's record has a path text of its own.
cmpihost::Host& Host();

// A call scope on the calling thread for setup work (broker and context).
// Objects made in it live until the benchmark's own scope closes.
struct Session {
  Session() : scope(Host()) {}
  const CMPIBroker* broker() const { return scope.broker(); }
  const CMPIContext* context() const { return scope.context(); }
  cmpihost::CallScope scope;
};

// The CIM date-time text of the `serial`th microsecond after a fixed time
// (UTC): distinct texts for distinct serials, as the host's clock gives them.
std::string DateTimeText(std::size_t serial);

// A record of `className` as a run of the bench service whose test does
// nothing completes it: the record's defaults, then the "Result for" texts,
// ServiceName, ManagedElementName, InstanceID and CreationTimeStamp, whose
// date-time is DateTimeText(serial).
std::unique_ptr<NQENDRA20::DiagnosticRecord> RunRecord(const std::string& className,
                                                       std::size_t serial);

// Registers `count` RunRecords of `className` (serials first .. first+count-1),
// each in a call scope of its own, as runs leave them.
void RegisterRecords(const std::string& className, std::size_t first, std::size_t count);

// Registers `count` availability associations of `className`, each from the
// bench service to device "dev<i>", as the availability factory makes them
// (EnumOrder from 10 by 5).
void RegisterAssociations(const std::string& className, std::size_t count);

// Path texts (namespace root/cimv2, no host) of the bench objects.
std::string ServicePath();
// The same for the service of `className` (named like the bench service).
std::string ServicePath(const std::string& className);
std::string DevicePath(std::size_t index);
std::string RecordPath(const std::string& className, std::size_t serial);

// The plug-in's MI tables, as the host created them.
CMPIInstanceMI* InstanceMI();

// The prebuilt instances the minimal provider returns (clones of the
// library's BENCH_EnumRecord instances, in the library's order).
void SetBaselineInstances(std::vector<CMPIInstance*> instances);

}  // namespace bench

#endif  // DIAGCORE_BENCH_BENCHHOST_H_
