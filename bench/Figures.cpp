#include "bench/Figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <limits>

namespace bench {

namespace {

std::string Key(const std::string& benchmark, const std::string& counter) {
  return benchmark + "#" + counter;
}

std::string Number(double value, const std::string& unit) {
  char text[64];
  if (unit == "B") {
    std::snprintf(text, sizeof text, "%.0f", value);
  } else if (unit == "s") {
    std::snprintf(text, sizeof text, "%.3f", value);
  } else {
    std::snprintf(text, sizeof text, "%.2f", value);
  }
  return text;
}

std::string JsonText(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
    }
    out += c;
  }
  return out + "\"";
}

}  // namespace

const std::vector<Figure>& Figures() {
  static const std::vector<Figure> figures = {
      {"BM_Registration", "ratio",
       "RegisterInstance of a record (double build, clone) / one direct build + clone", 2.5, "x"},
      {"BM_EnumInstances", "ratio",
       "EnumInstances of 100,000 records through the host / minimal provider, per instance", 1.2,
       "x"},
      {"BM_GetInstance", "ratio",
       "GetInstance among 1,000,000 records / among 1,000, through the host", 2.0, "x"},
      {"BM_GetInstanceAtMI", "ratio",
       "The same at the library's MI alone (information: cache misses against little work)", 0,
       "x"},
      {"BM_RunDiagnostic", "ratio",
       "RunDiagnostic (test does nothing) end to end / one record registration", 1.5, "x"},
      {"BM_AssociatorsOneMatch", "ratio",
       "Associators of one device over 100,000 associations, per candidate / enumeration step", 3.0,
       "x"},
      {"BM_AssociatorsAllMatch", "ratio",
       "Associators of the service over 100,000 associations, per candidate / enumeration step",
       3.0, "x"},
      {"BM_AssociatorsLinearity", "ratio",
       "Associators per candidate over 100,000 / over 10,000 associations", 1.3, "x"},
      {"BM_MemoryPerRecord", "bytes_per_record",
       "Allocator bytes per registered record (bag, clone, registry, host objects)", 4096, "B"},
      {"BM_MemoryBoundedRuns", "growth",
       "Memory after 1,000,000 runs bounded to 1,000 / after the first 1,000", 1.1, "x"},
      {"BM_RetentionPerRequest", "ratio", "GetInstance while a record can expire / while none can",
       1.2, "x"},
      {"BM_LoadDmtfSchema", "seconds", "Loading the DMTF CIM schema 2.41 with the MOF reader", 1.0,
       "s"},
  };
  return figures;
}

void FigureReporter::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) {
      continue;
    }
    for (const Figure& figure : Figures()) {
      if (run.run_name.function_name != figure.benchmark) {
        continue;
      }
      Samples& samples = samples_[Key(figure.benchmark, figure.counter)];
      if (run.error_occurred) {
        samples.error = run.error_message;
        continue;
      }
      const auto counter = run.counters.find(figure.counter);
      if (counter != run.counters.end()) {
        samples.values.push_back(counter->second.value);
      }
    }
  }
}

double FigureReporter::Median(const Figure& figure) const {
  const auto found = samples_.find(Key(figure.benchmark, figure.counter));
  if (found == samples_.end() || found->second.values.empty()) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  std::vector<double> values = found->second.values;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool FigureReporter::PrintTable(std::ostream& out) const {
  bool allMet = true;
  out << "\nFigures (median of the repetitions; each a ratio measured in this run unless B or s)\n";
  for (const Figure& figure : Figures()) {
    const double median = Median(figure);
    out << "  " << std::left << std::setw(26) << figure.benchmark << " ";
    if (std::isnan(median)) {
      const auto found = samples_.find(Key(figure.benchmark, figure.counter));
      out << "not measured"
          << (found != samples_.end() && !found->second.error.empty()
                  ? " (" + found->second.error + ")"
                  : std::string())
          << "\n";
      continue;
    }
    out << std::right << std::setw(8) << Number(median, figure.unit) << " " << std::left
        << std::setw(2) << figure.unit;
    if (figure.target <= 0) {
      out << " no target           " << figure.what << "\n";
      continue;
    }
    const bool met = median <= figure.target;
    allMet = allMet && met;
    out << " target <= " << Number(figure.target, figure.unit)
        << (met ? "  met     " : "  MISSED  ") << figure.what << "\n";
  }
  return allMet;
}

void FigureReporter::WriteJson(std::ostream& out, const std::string& commit) const {
  out << "{\n  \"commit\": " << JsonText(commit) << ",\n  \"figures\": [\n";
  bool first = true;
  for (const Figure& figure : Figures()) {
    const double median = Median(figure);
    out << (first ? "" : ",\n") << "    {\"benchmark\": " << JsonText(figure.benchmark)
        << ", \"what\": " << JsonText(figure.what) << ", \"unit\": " << JsonText(figure.unit)
        << ", \"target\": " << figure.target;
    if (std::isnan(median)) {
      out << ", \"measured\": null, \"met\": null";
    } else {
      out << ", \"measured\": " << median << ", \"met\": "
          << (figure.target <= 0        ? "null"
              : median <= figure.target ? "true"
                                        : "false");
    }
    out << "}";
    first = false;
  }
  out << "\n  ]\n}\n";
}

}  // namespace bench
