// Backslash escape resolution, alone and as GetObjectPathString applies it
// to what the broker prints. A value that the broker escaped (backslash
// before '\' and '"') must come back exactly.
#include "FuzzHost.h"
#include "cmpihost/CallScope.h"
#include "core/BrokerText.h"
#include "diagcore/CMPIUtil.h"

namespace {

// How the broker writes a string key value inside its quotes.
std::string Escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\\' || c == '"') {
      out += '\\';
    }
    out += c;
  }
  return out;
}

void CheckResolution(const std::string& input) {
  const std::string resolved = NQENDRA20::ResolveBackslashEscapes(input);
  diagcore_fuzz::Require(resolved.size() <= input.size(), "resolving never lengthens a text");
  if (input.find('\\') == std::string::npos) {
    diagcore_fuzz::Require(resolved == input, "a text without backslashes stays as it is");
  }
  diagcore_fuzz::RequireEqual(NQENDRA20::ResolveBackslashEscapes(Escaped(input)), input,
                              "resolving undoes the broker's escaping");
}

void CheckPathString(const std::string& deviceId) {
  cmpihost::CallScope scope(diagcore_fuzz::SharedHost());
  const CMPIBroker* broker = scope.broker();
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, "root/cimv2", "FZ_Element", nullptr);
  diagcore_fuzz::Require(path != nullptr, "the broker makes a path");
  CMPIValue value{};
  value.string = broker->eft->newString(broker, "FZ_Element", nullptr);
  path->ft->addKey(path, "CreationClassName", &value, CMPI_string);
  value.string = broker->eft->newString(broker, deviceId.c_str(), nullptr);
  path->ft->addKey(path, "DeviceID", &value, CMPI_string);
  const std::string expected =
      R"(FZ_Element.CreationClassName="FZ_Element",DeviceID=")" + deviceId + "\"";
  diagcore_fuzz::RequireEqual(NQENDRA20::CMPIUtil::GetObjectPathString(path), expected,
                              "the path text holds the key value exactly");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CheckResolution(diagcore_fuzz::InputText(data, size));
  CheckPathString(diagcore_fuzz::InputCText(data, size));
  return 0;
}
