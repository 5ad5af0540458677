#include "CoreHost.h"

namespace diagcore_test {

std::string CoreData(const std::string& file) {
  return SourcePath("tests/core/data/" + file);
}

ProviderHostOptions CoreHostOptions(bool withSystem) {
  ProviderHostOptions options;
  options.mofFiles = {CoreData("qualifiers.mof"), CoreData("core.mof")};
  if (withSystem) {
    options.mofFiles.push_back(CoreData("system.mof"));
  }
  options.classes = {"DCT_Element", "DCT_AllTypes", "DCT_Link", "DCT_NumberKey", "DCT_NarrowOrder"};
  return options;
}

std::string ElementText(const std::string& deviceId) {
  return "DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"" + deviceId + "\"";
}

TestBag* NewElement(const std::string& deviceId, PropertyList extra) {
  TestBag* bag = NewBag(std::string("DCT_Element"), extra);
  (*bag)["CreationClassName"] = "DCT_Element";
  (*bag)["DeviceID"] = deviceId;
  return bag;
}

CoreHostTest::CoreHostTest(bool withSystem) : provider_(CoreHostOptions(withSystem)) {}

std::vector<TraceLine> CoreHostTest::TakeTraces() {
  std::vector<TraceLine> lines = LibraryTraces(host());
  host().clearLog();
  return lines;
}

}  // namespace diagcore_test
