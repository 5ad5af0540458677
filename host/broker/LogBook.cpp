#include "broker/LogBook.h"

#include <utility>

namespace cmpihost {

void LogBook::capture(bool on, std::size_t bound) {
  std::lock_guard<std::mutex> lock(mutex_);
  capturing_ = on;
  bound_ = bound;
  while (records_.size() > bound_) {
    records_.pop_front();
  }
  wanted_.store((capturing_ && bound_ > 0) || sink_ != nullptr, std::memory_order_relaxed);
}

void LogBook::setSink(Sink sink) {
  std::lock_guard<std::mutex> lock(mutex_);
  sink_ = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
  wanted_.store((capturing_ && bound_ > 0) || sink_ != nullptr, std::memory_order_relaxed);
}

void LogBook::add(LogRecord record) {
  std::shared_ptr<const Sink> sink;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    sink = sink_;
    if (capturing_ && bound_ > 0) {
      if (records_.size() == bound_) {
        records_.pop_front();
      }
      records_.push_back(record);
    }
  }
  // Outside the lock: a sink may log again or take its time.
  if (sink) {
    (*sink)(record);
  }
}

std::vector<LogRecord> LogBook::records() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return {records_.begin(), records_.end()};
}

void LogBook::clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  records_.clear();
  seen_.clear();
}

bool LogBook::firstTime(const std::string& text) {
  // Past this many, a provider that makes ever new texts is told each time
  // rather than filling the memory.
  constexpr std::size_t kMaxSeen = 4096;
  std::lock_guard<std::mutex> lock(mutex_);
  return seen_.size() == kMaxSeen || seen_.insert(text).second;
}

}  // namespace cmpihost
