#include "diagcore/CMPIUtil.h"

#include "core/BrokerText.h"
#include "diagcore/CimNames.h"

namespace NQENDRA20 {

std::string CMPIUtil::GetClassName(const CMPIObjectPath* op) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  return CharsOf(op->ft->getClassName(op, &status));
}

std::string CMPIUtil::GetObjectPathString(const CMPIObjectPath* op) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  return StripObjectPath(ResolveBackslashEscapes(CharsOf(op->ft->toString(op, &status))));
}

std::string CMPIUtil::StripObjectPath(std::string text) {
  const std::string::size_type first = text.find_first_of("./:");
  if (first == std::string::npos || text[first] == '.') {
    // Begins with the class: a ":" or "/" further on is part of a key value.
    return text;
  }
  const std::string::size_type colon = text.find(':');
  if (colon != std::string::npos) {
    text.erase(0, colon + 1);
  }
  return text;
}

// Positions are unsigned: a failed search gives npos, and one past it is 0.
// Where the scan would go back (to 0 after a missing closing quote, or before
// the key after a missing opening quote) it stops, so every text ends.
void CMPIUtil::ParseObjectPath(std::string& text, InstanceImpl& bag) {
  using size_type = std::string::size_type;
  const std::string s = StripObjectPath(text);
  const size_type n = s.length();
  const size_type dot = s.find('.');
  bag.setClassName(s.substr(0, dot));

  size_type position = dot + 1;
  while (position < n) {
    const size_type keyStart = s.find_first_not_of(", \t", position);
    const size_type keyEnd = s.find_first_of(" \t=", keyStart);
    const std::string key = s.substr(keyStart, keyEnd - keyStart);
    const size_type valueStart = s.find('"', keyEnd) + 1;
    const size_type valueEnd = s.find('"', valueStart);
    bag[key] = s.substr(valueStart, valueEnd - valueStart);
    const size_type next = valueEnd + 1;
    if (next <= position) {
      break;
    }
    position = next;
  }
}

std::string CMPIUtil::GetSystemName(const CMPIBroker* broker, const CMPIContext* context) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  const CMPIObjectPath* op =
      broker->eft->newObjectPath(broker, cimNameSpace, cimComputerSystemClass, &status);
  if (op == nullptr) {
    return "";
  }
  const CMPIEnumeration* systems =
      broker->bft->enumerateInstances(broker, context, op, nullptr, &status);
  if (systems == nullptr) {
    return "";
  }
  // The item is taken as an instance whatever its type and state say:
  // OpenPegasus marks good instances CMPI_nullValue. An empty enumeration
  // hands out no instance at all, which counts as "no system".
  const CMPIData first = systems->ft->getNext(systems, &status);
  if (first.value.inst == nullptr) {
    return "";
  }
  const CMPIInstance* system = first.value.inst;
  const CMPIData name = system->ft->getProperty(system, "Name", &status);
  if (name.type != CMPI_string || (name.state & CMPI_nullValue) != 0) {
    return "";
  }
  return CharsOf(name.value.string);
}

std::string CMPIUtil::GetDateTimeString(const CMPIBroker* broker) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  const CMPIDateTime* now = broker->eft->newDateTime(broker, &status);
  if (now == nullptr) {
    return "";
  }
  return CharsOf(now->ft->getStringFormat(now, &status));
}

}  // namespace NQENDRA20
