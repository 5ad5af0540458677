#include "support/Traces.h"

#include <utility>

namespace diagcore_test {

bool operator==(const TraceLine& a, const TraceLine& b) {
  return a.severity == b.severity && a.text == b.text;
}

bool operator!=(const TraceLine& a, const TraceLine& b) {
  return !(a == b);
}

void PrintTo(const TraceLine& line, std::ostream* out) {
  *out << line.severity << " '" << line.text << "'";
}

std::vector<TraceLine> LibraryTraces(const std::vector<cmpihost::LogRecord>& records) {
  std::vector<TraceLine> lines;
  for (const cmpihost::LogRecord& record : records) {
    if (record.id != "diagcore") {
      continue;
    }
    const bool isLog = record.kind == cmpihost::LogRecord::Kind::kLog;
    lines.push_back({isLog ? record.severity : -1, record.text});
  }
  return lines;
}

std::vector<TraceLine> LibraryTraces(const cmpihost::Host& host) {
  return LibraryTraces(host.logRecords());
}

TraceLine Debug(std::string text) {
  return {kDebug, std::move(text)};
}

TraceLine Warning(std::string text) {
  return {kWarning, std::move(text)};
}

std::vector<TraceLine> Repeat(const std::vector<TraceLine>& lines, int times) {
  std::vector<TraceLine> out;
  for (int i = 0; i < times; ++i) {
    out.insert(out.end(), lines.begin(), lines.end());
  }
  return out;
}

std::vector<TraceLine> Concat(std::vector<TraceLine> a, const std::vector<TraceLine>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace diagcore_test
