// The embedded host's object path reader (CallScope::objectPath): it refuses
// a text with a reason, or gives a path whose printed text it reads back.
#include "FuzzHost.h"
#include "cmpihost/CallScope.h"

namespace {

std::string Printed(const CMPIObjectPath* path) {
  return diagcore_fuzz::Chars(path->ft->toString(path, nullptr));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = diagcore_fuzz::InputText(data, size);
  cmpihost::CallScope scope(diagcore_fuzz::SharedHost());
  std::string problem;
  const CMPIObjectPath* path = scope.objectPath(text, &problem);
  if (path == nullptr) {
    diagcore_fuzz::Require(!problem.empty(), "a refused path text says why");
    return 0;
  }
  if (text.find('\0') != std::string::npos) {
    return 0;  // printing goes through C strings: a NUL in a value cuts it
  }
  // The host reads back every text it printed. The printed text itself may
  // change once: for a class it does not know, a real without a fraction
  // prints without one and then reads as an integer ("-0." prints "-0", which
  // reads back as 0). From the second print on it must hold.
  const std::string printed = Printed(path);
  const CMPIObjectPath* again = scope.objectPath(printed, &problem);
  diagcore_fuzz::Require(again != nullptr, "the host reads the path text it printed");
  const std::string reprinted = Printed(again);
  const CMPIObjectPath* third = scope.objectPath(reprinted, &problem);
  diagcore_fuzz::Require(third != nullptr, "the host reads the path text it printed");
  diagcore_fuzz::RequireEqual(Printed(third), reprinted, "a printed path text reads back the same");
  return 0;
}
