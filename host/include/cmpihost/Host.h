// The embedded CMPI host: loads MOF and providers in-process and answers
// requests the way a CIMOM does. The engine of the tests, the demo and the
// cmpihost command. One Host serves requests from any number of threads.
#ifndef CMPIHOST_HOST_H_
#define CMPIHOST_HOST_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cmpihost/Export.h"
#include "cmpihost/HostTypes.h"
#include "cmpihost/LogRecord.h"
#include "cmpihost/ProviderRegistration.h"
#include "cmpihost/Reply.h"

namespace cmpihost {

class ClassRepository;

class CMPIHOST_EXPORT Host {
 public:
  Host();
  // Calls every loaded MI's cleanup (terminating); libraries stay loaded.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // --- schema ---
  // Loads a MOF file into `nameSpace`; throws MofError (file, line, column),
  // leaving the repository as it was.
  void loadMof(const std::string& path, const std::string& nameSpace = "root/cimv2");
  void loadMofText(const std::string& text, const std::string& name,
                   const std::string& nameSpace = "root/cimv2");
  const ClassRepository& repository() const;

  // --- providers ---
  // Registers in-process MIs. Factories are called lazily, at the first
  // request that needs that kind, inside a call scope.
  void registerProvider(const ProviderRegistration& registration, const MiFactories& factories);
  // Registers a provider that lives in a shared library (dlopen RTLD_LOCAL),
  // tried as _Generic_Create_<Kind>MI first, then <Name>_Create_<Kind>MI.
  // Throws HostError when the library cannot be opened.
  void registerLibraryProvider(const ProviderRegistration& registration,
                               const std::string& libraryPath);
  // Reads a registration file in the small-footprint CIMOM's stanza format
  // and registers each stanza; libraries are looked up as lib<location>.so in
  // `libraryDirs`. Every stanza's class must be loaded already in each of its
  // namespaces. Throws HostError naming file, line and problem; a file with
  // any error registers nothing.
  void loadRegistrationFile(const std::string& path, const std::vector<std::string>& libraryDirs);
  // Creates every registered MI that has not been created yet; throws
  // HostError naming the provider, the kind and why it was refused.
  void activateProviders();
  // What a CIMOM does to idle providers: calls each created MI's cleanup
  // with terminating false. A provider whose MIs all answer CMPI_RC_OK is
  // unloaded (its MIs are dropped, so the next request calls its factories
  // again; the library stays open); one answering anything else, such as
  // CMPI_RC_DO_NOT_UNLOAD or CMPI_RC_NEVER_UNLOAD, keeps its MIs as they
  // are. Every answer is logged (id "cmpihost") and returned, provider by
  // provider in the order of their first MI. Call it while no request is
  // served, as a CIMOM unloads only an idle provider.
  std::vector<UnloadAnswer> unloadIdleProviders();

  // --- default namespace ---
  // The namespace of path texts that name none (requests, reference values,
  // CallScope::objectPath), of requests with an empty namespace and of the
  // context CallScope gives; "root/cimv2" unless set. Set it while no other
  // thread makes requests, as when loading. Throws HostError when `nameSpace`
  // is empty or holds characters other than letters, digits, '_' and '/'.
  void setDefaultNameSpace(const std::string& nameSpace);
  const std::string& defaultNameSpace() const;

  // --- requests (paths: `[//host/][namespace:]Class[.key=value,...]`;
  //     the namespace defaults to defaultNameSpace()) ---
  Reply enumerateInstanceNames(const std::string& nameSpace, const std::string& className);
  Reply enumerateInstances(const std::string& nameSpace, const std::string& className,
                           const std::vector<std::string>* properties = nullptr);
  Reply getInstance(const std::string& pathText,
                    const std::vector<std::string>* properties = nullptr);
  Reply createInstance(const std::string& pathText, const std::vector<Argument>& properties);
  Reply modifyInstance(const std::string& pathText, const std::vector<Argument>& properties);
  Reply deleteInstance(const std::string& pathText);
  Reply execQuery(const std::string& nameSpace, const std::string& className,
                  const std::string& query, const std::string& language);
  // Output arguments, when `out` is given, are copied into it.
  Reply invokeMethod(const std::string& pathText, const std::string& method,
                     const std::vector<Argument>& in, std::vector<Property>* out = nullptr);
  Reply associators(const std::string& pathText, const AssociationFilter& filter = {});
  Reply associatorNames(const std::string& pathText, const AssociationFilter& filter = {});
  Reply references(const std::string& pathText, const AssociationFilter& filter = {});
  Reply referenceNames(const std::string& pathText, const AssociationFilter& filter = {});

  // --- logging ---
  // While capture is on, logMessage and trace calls are recorded in order,
  // keeping at most `bound` records (the oldest are dropped first).
  void captureLog(bool on, std::size_t bound = 100000);
  // The host adds records of its own, with id "cmpihost": idle unloads, and
  // a warning for each property of a bag that libdiagcore's builder drops or
  // misreads while a provider builds (said once, until the log is cleared).
  std::vector<LogRecord> logRecords() const;
  void clearLog();
  // Called for every record as it arrives (the CLI's --trace), capture or not.
  void onLog(std::function<void(const LogRecord&)> sink);

  // --- time ---
  // What newDateTime calls "now"; the system clock unless set.
  void setClock(std::function<std::chrono::system_clock::time_point()> clock);

  struct Impl;

 private:
  // A call scope works inside the host: its broker and default namespace.
  friend class CallScope;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_HOST_H_
