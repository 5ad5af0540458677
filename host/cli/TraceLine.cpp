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

}  // namespace cmpihost::cli
