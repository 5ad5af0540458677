// The host the core tests run in: the classes of tests/core/data, served by
// the library's MI functions, with log capture on.
#ifndef DIAGCORE_TESTS_CORE_COREHOST_H_
#define DIAGCORE_TESTS_CORE_COREHOST_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Bags.h"
#include "support/ProviderHost.h"
#include "support/Traces.h"

namespace diagcore_test {

// tests/core/data/<file>.
std::string CoreData(const std::string& file);

// Every class of core.mof served by the library; system.mof too on request.
ProviderHostOptions CoreHostOptions(bool withSystem = false);

// `"DCT_Element.CreationClassName=\"DCT_Element\",DeviceID=\"<id>\""`: the
// path text of a registered element.
std::string ElementText(const std::string& deviceId);

// A DCT_Element bag with the two keys and the extra properties.
TestBag* NewElement(const std::string& deviceId, PropertyList extra = {});

class CoreHostTest : public ::testing::Test {
 protected:
  explicit CoreHostTest(bool withSystem = false);

  cmpihost::Host& host() { return provider_.host(); }

  // Registers `bag` as a plug-in's start-up does and returns it.
  template <typename Bag>
  Bag* Register(Bag* bag) {
    RegisterInScope(host(), bag);
    return bag;
  }

  // The library's traces since the last call (or since the start).
  std::vector<TraceLine> TakeTraces();

  ProviderHost provider_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_CORE_COREHOST_H_
