// The front door is cmpihost/Host.h; this header is internal.
// Where logMessage and trace calls go: a bounded record while capture is on,
// a sink if one is set, and nowhere otherwise.
#ifndef CMPIHOST_BROKER_LOGBOOK_H_
#define CMPIHOST_BROKER_LOGBOOK_H_

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "cmpihost/LogRecord.h"

namespace cmpihost {

class LogBook {
 public:
  using Sink = std::function<void(const LogRecord&)>;

  void capture(bool on, std::size_t bound);
  void setSink(Sink sink);
  void add(LogRecord record);
  // Whether a record would be kept or passed to a sink: when not, a caller
  // drops it before making it (tracing then costs a provider next to nothing).
  bool wanted() const { return wanted_.load(std::memory_order_relaxed); }
  std::vector<LogRecord> records() const;
  // Also forgets what firstTime has seen.
  void clear();
  // Whether `text` is new since the start or the last clear: a warning that
  // every build of the same bag would repeat (and the library builds each
  // instance twice when it registers it) is said once.
  bool firstTime(const std::string& text);

 private:
  mutable std::mutex mutex_;
  bool capturing_ = false;
  std::size_t bound_ = 0;
  std::deque<LogRecord> records_;
  std::shared_ptr<const Sink> sink_;
  std::unordered_set<std::string> seen_;
  std::atomic<bool> wanted_{false};  // capture on with a bound, or a sink set
};

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_LOGBOOK_H_
