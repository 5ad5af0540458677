// Which plug-in's start-up runs on the calling thread, so that library code
// called from a start-up can tell its author about mistakes that only a
// start-up can make. Internal to the library; see diagcore/DiagProvider.h.
#ifndef DIAGCORE_CORE_STARTUPSCOPE_H_
#define DIAGCORE_CORE_STARTUPSCOPE_H_

namespace NQENDRA20 {

// Marks the calling thread as running `pluginName`'s start-up for its
// lifetime. Scopes nest; the name must outlive the scope.
class StartupScope {
 public:
  explicit StartupScope(const char* pluginName) noexcept;
  ~StartupScope();
  StartupScope(const StartupScope&) = delete;
  StartupScope& operator=(const StartupScope&) = delete;

  // The plug-in whose start-up runs on this thread, or null.
  static const char* Current() noexcept;

 private:
  const char* previous_;
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_STARTUPSCOPE_H_
