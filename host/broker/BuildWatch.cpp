#include "broker/BuildWatch.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "broker/BagReading.h"
#include "broker/LogBook.h"
#include "broker/Objects.h"

namespace cmpihost {
namespace {

const char* const kSettingPrefix = "Setting property ";
const char* const kSettingMiddle = " to '";
const char* const kExiting = "Exiting InstanceBuilder::build";

// One instance made on this thread and not yet closed by "Exiting".
struct Building {
  std::uint64_t serial = 0;  // 0: newInstance failed
  LogBook* log = nullptr;
  std::optional<std::pair<std::string, std::string>> traced;  // name and text
};

// Instances made outside the builder are never closed; the oldest go first,
// and a builder's instance is always near the top.
constexpr std::size_t kMaxOpen = 32;
thread_local std::vector<Building> tBuilding;
// Shared by all threads, so that no instance of another thread matches.
std::atomic<std::uint64_t> gSerial{0};

Building* Top(const InstanceObject& instance) {
  if (tBuilding.empty() || instance.buildSerial == 0 ||
      tBuilding.back().serial != instance.buildSerial) {
    return nullptr;
  }
  return &tBuilding.back();
}

void Warn(LogBook& log, std::string text) {
  if (!log.wanted() || !log.firstTime(text)) {
    return;
  }
  LogRecord record;
  record.kind = LogRecord::Kind::kLog;
  record.severity = CMPI_SEV_WARNING;
  record.id = "cmpihost";
  record.text = std::move(text);
  log.add(std::move(record));
}

}  // namespace

std::uint64_t WatchNewInstance(LogBook& log, bool made) {
  if (tBuilding.size() == kMaxOpen) {
    tBuilding.erase(tBuilding.begin());
  }
  Building building;
  building.serial = made ? gSerial.fetch_add(1, std::memory_order_relaxed) + 1 : 0;
  building.log = &log;
  tBuilding.push_back(std::move(building));
  return tBuilding.back().serial;
}

void WatchLogMessage(int severity, const std::string& id, const std::string& text) {
  if (severity != CMPI_DEV_DEBUG || id != "diagcore" || tBuilding.empty()) {
    return;
  }
  if (text == kExiting) {
    tBuilding.pop_back();
    return;
  }
  const std::size_t prefix = std::char_traits<char>::length(kSettingPrefix);
  const std::size_t middle = text.find(kSettingMiddle, prefix);
  if (text.compare(0, prefix, kSettingPrefix) != 0 || middle == std::string::npos ||
      text.back() != '\'') {
    return;
  }
  const std::size_t start = middle + std::char_traits<char>::length(kSettingMiddle);
  tBuilding.back().traced.emplace(text.substr(prefix, middle - prefix),
                                  text.substr(start, text.size() - 1 - start));
}

void WatchUndeclaredProbe(const InstanceObject& instance, std::string_view name) {
  if (Building* building = Top(instance)) {
    Warn(*building->log, "bag property dropped: " + instance.data().shape->className + "." +
                             std::string(name) + ": the class declares no such property");
  }
}

void WatchSet(const InstanceObject& instance, std::string_view name, CMPIType type) {
  Building* building = Top(instance);
  if (building == nullptr || !building->traced) {
    return;
  }
  const auto [tracedName, text] = std::move(*building->traced);
  building->traced.reset();
  const auto index = instance.data().shape->find(name);
  if ((type & CMPI_ARRAY) != 0 || !index || !NoCaseEqual(tracedName, std::string(name))) {
    return;
  }
  const PropertyShape& property = instance.data().shape->properties[*index];
  if (std::optional<std::string> reason = WhyNotRead(text, property.type)) {
    Warn(*building->log, "bag property misread: " + instance.data().shape->className + "." +
                             property.name + ": " + *reason);
  }
}

}  // namespace cmpihost
