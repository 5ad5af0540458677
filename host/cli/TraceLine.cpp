#include "cli/TraceLine.h"

namespace cmpihost::cli {

std::string TraceLine(const LogRecord& record) {
  std::string line = "[";
  if (record.kind == LogRecord::Kind::kTrace) {
    line += "trace ";
  }
  line += std::to_string(record.severity);
  if (!record.id.empty()) {
    line += " " + record.id;
  }
  return line + "] " + record.text;
}

TraceLevel LevelOf(const LogRecord& record) {
  static const TraceLevel kLogSeverities[] = {TraceLevel::kError, TraceLevel::kInfo,
                                              TraceLevel::kWarning, TraceLevel::kDebug};
  static const TraceLevel kTraceLevels[] = {TraceLevel::kInfo, TraceLevel::kWarning,
                                            TraceLevel::kDebug};
  const bool trace = record.kind == LogRecord::Kind::kTrace;
  const int count = trace ? 3 : 4;
  if (record.severity < 1 || record.severity > count) {
    return TraceLevel::kDebug;
  }
  return (trace ? kTraceLevels : kLogSeverities)[record.severity - 1];
}

}  // namespace cmpihost::cli
