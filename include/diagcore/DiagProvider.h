// DIAGCORE_PROVIDER: the MI factories of a diagnostic plug-in, in one line.
//
// A plug-in expands the macro once, at namespace scope in one source file:
//
//   void StartMyPlugin(const CMPIBroker* broker, const CMPIContext* context) {
//     ... create and register services, setting data, capabilities and
//     availability associations ...
//   }
//   DIAGCORE_PROVIDER(MyPlugin, StartMyPlugin);
//
// This defines, with C linkage and default visibility, MyPlugin_Create_InstanceMI,
// MyPlugin_Create_MethodMI and MyPlugin_Create_AssociationMI, the names a CIMOM
// looks up for the provider "MyPlugin". Each returns a static MI (miName
// "instance", "method" or "association" followed by the provider name) whose
// table passes every call to the DiagServiceProviderCommon function of the
// same operation. The first factory call runs the start-up function, once per
// process: other threads wait for it, and a factory call made from inside the
// start-up returns at once. When start-up throws, that call and every later
// one return null with CMPI_RC_ERR_FAILED and the message
// "Start-up of plug-in MyPlugin failed: <what>"; start-up is not retried.
//
// Every table's cleanup refuses an idle unload (`terminating` false) with
// CMPI_RC_NEVER_UNLOAD, since every object the plug-in serves lives only in
// the provider's memory, and answers a terminating cleanup with CMPI_RC_OK.
// Where a library function refuses a request without a message (create,
// modify, delete, query, a method call on no object or of no method, and
// DIAGCORE_PROVIDER's reference requests), the table adds one that says why,
// for clients that show only the status.
//
// DIAGCORE_PROVIDER's association table holds the DiagServiceProviderCommon
// functions: associator requests deliver the association objects and
// reference requests are not supported. DIAGCORE_CIM_PROVIDER(MyPlugin,
// StartMyPlugin) is the same but for an association table with CIM's
// semantics (DiagServiceProviderCim.h), which standard clients expect: use it
// for a plug-in deployed into a CIMOM.
#ifndef DIAGCORE_DIAGPROVIDER_H_
#define DIAGCORE_DIAGPROVIDER_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <cmpios.h>

#include <cstddef>

#include "diagcore/Export.h"

namespace NQENDRA20 {

// The MI functions in CMPI's signatures, for the tables DIAGCORE_PROVIDER
// builds. Each takes the broker from its MI's hdl, where the factory put it,
// and passes it with the call's arguments to DiagServiceProviderCommon*.
namespace mi_table {

DIAGCORE_EXPORT CMPIStatus InstanceCleanup(CMPIInstanceMI* mi, const CMPIContext* context,
                                           CMPIBoolean terminating);
DIAGCORE_EXPORT CMPIStatus EnumInstanceNames(CMPIInstanceMI* mi, const CMPIContext* context,
                                             const CMPIResult* result,
                                             const CMPIObjectPath* reference);
DIAGCORE_EXPORT CMPIStatus EnumInstances(CMPIInstanceMI* mi, const CMPIContext* context,
                                         const CMPIResult* result, const CMPIObjectPath* reference,
                                         const char** properties);
DIAGCORE_EXPORT CMPIStatus GetInstance(CMPIInstanceMI* mi, const CMPIContext* context,
                                       const CMPIResult* result, const CMPIObjectPath* path,
                                       const char** properties);
DIAGCORE_EXPORT CMPIStatus CreateInstance(CMPIInstanceMI* mi, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* path,
                                          const CMPIInstance* instance);
DIAGCORE_EXPORT CMPIStatus ModifyInstance(CMPIInstanceMI* mi, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* path,
                                          const CMPIInstance* instance, const char** properties);
DIAGCORE_EXPORT CMPIStatus DeleteInstance(CMPIInstanceMI* mi, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* path);
DIAGCORE_EXPORT CMPIStatus ExecQuery(CMPIInstanceMI* mi, const CMPIContext* context,
                                     const CMPIResult* result, const CMPIObjectPath* reference,
                                     const char* query, const char* language);

DIAGCORE_EXPORT CMPIStatus MethodCleanup(CMPIMethodMI* mi, const CMPIContext* context,
                                         CMPIBoolean terminating);
DIAGCORE_EXPORT CMPIStatus InvokeMethod(CMPIMethodMI* mi, const CMPIContext* context,
                                        const CMPIResult* result, const CMPIObjectPath* path,
                                        const char* methodName, const CMPIArgs* in, CMPIArgs* out);

DIAGCORE_EXPORT CMPIStatus AssociationCleanup(CMPIAssociationMI* mi, const CMPIContext* context,
                                              CMPIBoolean terminating);
DIAGCORE_EXPORT CMPIStatus Associators(CMPIAssociationMI* mi, const CMPIContext* context,
                                       const CMPIResult* result, const CMPIObjectPath* source,
                                       const char* assocClass, const char* resultClass,
                                       const char* role, const char* resultRole,
                                       const char** properties);
DIAGCORE_EXPORT CMPIStatus AssociatorNames(CMPIAssociationMI* mi, const CMPIContext* context,
                                           const CMPIResult* result, const CMPIObjectPath* source,
                                           const char* assocClass, const char* resultClass,
                                           const char* role, const char* resultRole);
DIAGCORE_EXPORT CMPIStatus References(CMPIAssociationMI* mi, const CMPIContext* context,
                                      const CMPIResult* result, const CMPIObjectPath* source,
                                      const char* resultClass, const char* role,
                                      const char** properties);
DIAGCORE_EXPORT CMPIStatus ReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* source,
                                          const char* resultClass, const char* role);

DIAGCORE_EXPORT CMPIStatus CimAssociators(CMPIAssociationMI* mi, const CMPIContext* context,
                                          const CMPIResult* result, const CMPIObjectPath* source,
                                          const char* assocClass, const char* resultClass,
                                          const char* role, const char* resultRole,
                                          const char** properties);
DIAGCORE_EXPORT CMPIStatus CimAssociatorNames(CMPIAssociationMI* mi, const CMPIContext* context,
                                              const CMPIResult* result,
                                              const CMPIObjectPath* source, const char* assocClass,
                                              const char* resultClass, const char* role,
                                              const char* resultRole);
DIAGCORE_EXPORT CMPIStatus CimReferences(CMPIAssociationMI* mi, const CMPIContext* context,
                                         const CMPIResult* result, const CMPIObjectPath* source,
                                         const char* resultClass, const char* role,
                                         const char** properties);
DIAGCORE_EXPORT CMPIStatus CimReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context,
                                             const CMPIResult* result, const CMPIObjectPath* source,
                                             const char* resultClass, const char* role);

}  // namespace mi_table

// The once-flag of one plug-in's start-up. DIAGCORE_PROVIDER defines one per
// plug-in; it is constant-initialised, so a factory may be called at any time.
class DIAGCORE_EXPORT ProviderStartup {
 public:
  using Function = void (*)(const CMPIBroker*, const CMPIContext*);

  constexpr ProviderStartup(const char* pluginName, Function startup) noexcept
      : pluginName_(pluginName), startup_(startup) {}
  ProviderStartup(const ProviderStartup&) = delete;
  ProviderStartup& operator=(const ProviderStartup&) = delete;

  // Called by each factory with its MI: stores `broker` in the MI's hdl, runs
  // the start-up function if no call has yet, and tells whether the plug-in
  // is usable. Sets `*rc` (when not null) to CMPI_RC_OK, or to
  // CMPI_RC_ERR_FAILED with the start-up's failure. Never throws.
  bool Activate(CMPIInstanceMI* mi, const CMPIBroker* broker, const CMPIContext* context,
                CMPIStatus* rc) noexcept;
  bool Activate(CMPIMethodMI* mi, const CMPIBroker* broker, const CMPIContext* context,
                CMPIStatus* rc) noexcept;
  bool Activate(CMPIAssociationMI* mi, const CMPIBroker* broker, const CMPIContext* context,
                CMPIStatus* rc) noexcept;

 private:
  enum class State { kNotRun, kRunning, kDone, kFailed };
  static constexpr std::size_t kFailureSize = 512;

  template <typename Mi>
  bool Start(Mi* mi, const CMPIBroker* broker, const CMPIContext* context, CMPIStatus* rc) noexcept;
  void Run(const CMPIBroker* broker, const CMPIContext* context) noexcept;
  void Fail(const char* what) noexcept;

  const char* pluginName_;
  Function startup_;
  State state_ = State::kNotRun;
  const void* runner_ = nullptr;  // the thread running start-up, while it runs
  char failure_[kFailureSize] = {};
};

}  // namespace NQENDRA20

// The static MI table of one kind, and its factory. Internal to the macro.
#define DIAGCORE_PROVIDER_FACTORY_(Name, MiType, TableType, kind, ...)                         \
  CMPI_EXTERN_C MiType* Name##_Create_##kind##MI(const CMPIBroker* broker,                     \
                                                 const CMPIContext* context, CMPIStatus* rc) { \
    static TableType table = {__VA_ARGS__};                                                    \
    static MiType mi = {nullptr, &table};                                                      \
    return Name##_diagcoreStartup.Activate(&mi, broker, context, rc) ? &mi : nullptr;          \
  }

// The three factories of one plug-in, with association functions whose names
// in mi_table begin with `assoc` (nothing or Cim). Internal to the macros.
#define DIAGCORE_PROVIDER_TABLES_(Name, startup, assoc)                                         \
  static NQENDRA20::ProviderStartup Name##_diagcoreStartup(#Name, startup);                     \
  DIAGCORE_PROVIDER_FACTORY_(                                                                   \
      Name, CMPIInstanceMI, CMPIInstanceMIFT, Instance, CMPICurrentVersion, CMPICurrentVersion, \
      "instance" #Name, NQENDRA20::mi_table::InstanceCleanup,                                   \
      NQENDRA20::mi_table::EnumInstanceNames, NQENDRA20::mi_table::EnumInstances,               \
      NQENDRA20::mi_table::GetInstance, NQENDRA20::mi_table::CreateInstance,                    \
      NQENDRA20::mi_table::ModifyInstance, NQENDRA20::mi_table::DeleteInstance,                 \
      NQENDRA20::mi_table::ExecQuery)                                                           \
  DIAGCORE_PROVIDER_FACTORY_(                                                                   \
      Name, CMPIMethodMI, CMPIMethodMIFT, Method, CMPICurrentVersion, CMPICurrentVersion,       \
      "method" #Name, NQENDRA20::mi_table::MethodCleanup, NQENDRA20::mi_table::InvokeMethod)    \
  DIAGCORE_PROVIDER_FACTORY_(                                                                   \
      Name, CMPIAssociationMI, CMPIAssociationMIFT, Association, CMPICurrentVersion,            \
      CMPICurrentVersion, "association" #Name, NQENDRA20::mi_table::AssociationCleanup,         \
      NQENDRA20::mi_table::assoc##Associators, NQENDRA20::mi_table::assoc##AssociatorNames,     \
      NQENDRA20::mi_table::assoc##References, NQENDRA20::mi_table::assoc##ReferenceNames)       \
  static_assert(true, "DIAGCORE_PROVIDER is followed by a semicolon")

#define DIAGCORE_PROVIDER(Name, startup) DIAGCORE_PROVIDER_TABLES_(Name, startup, )
#define DIAGCORE_CIM_PROVIDER(Name, startup) DIAGCORE_PROVIDER_TABLES_(Name, startup, Cim)

#endif  // DIAGCORE_DIAGPROVIDER_H_
