// Object path texts as the library reads them: StripObjectPath and
// ParseObjectPath. ParseObjectPath throws std::out_of_range by design when a
// key would start past the end of the text; anything else that escapes, a
// hang, or a sanitizer report is a bug.
#include <stdexcept>

#include "FuzzCheck.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/InstanceBuilder.h"

using NQENDRA20::CMPIUtil;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = diagcore_fuzz::InputText(data, size);

  const std::string stripped = CMPIUtil::StripObjectPath(input);
  diagcore_fuzz::Require(
      stripped.size() <= input.size() &&
          input.compare(input.size() - stripped.size(), stripped.size(), stripped) == 0,
      "StripObjectPath keeps an end of its text");

  std::string text = input;
  NQENDRA20::ParseInstanceImpl bag;
  try {
    CMPIUtil::ParseObjectPath(text, bag);
  } catch (const std::out_of_range&) {
    // By design: a key that starts past the end of the text.
  }
  diagcore_fuzz::RequireEqual(text, input, "ParseObjectPath leaves its text alone");
  diagcore_fuzz::Require(stripped.compare(0, bag.getClassName().size(), bag.getClassName()) == 0,
                         "the class name is where the stripped text starts");
  return 0;
}
