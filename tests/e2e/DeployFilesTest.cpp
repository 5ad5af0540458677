// The example's deploy files agree with its MOF and with each other: every
// class the MOF declares is served by exactly one stanza, with "unload:
// never"; and the provider-registration MOF, loaded into the host's
// repository, registers the same providers with the same types per class.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "E2eSupport.h"
#include "cmpihost/Host.h"

namespace e2e {
namespace {

using Stanza = std::map<std::string, std::string>;  // provider, location, type, ...

// The stanzas of the example's registration file by class, read the simple way.
std::map<std::string, Stanza> ReadStanzas() {
  std::map<std::string, Stanza> stanzas;
  std::ifstream in(ExampleRegistration());
  std::string line;
  std::string current;
  static const std::regex kHeader(R"(^\[(\w+)\]\s*$)");
  static const std::regex kField(R"(^\s+(\w+):\s*(.*?)\s*$)");
  while (std::getline(in, line)) {
    std::smatch match;
    if (std::regex_match(line, match, kHeader)) {
      current = match[1];
      stanzas[current];
    } else if (!current.empty() && std::regex_match(line, match, kField)) {
      stanzas[current][match[1]] = match[2];
    }
  }
  return stanzas;
}

std::string Text(const cmpihost::InstanceSnapshot& instance, const std::string& name) {
  const cmpihost::Value* value = instance.find(name);
  return value == nullptr || value->isNull() ? "<null>" : value->text;
}

TEST(DeployFilesTest, EveryClassHasOneStanzaThatKeepsTheProviderLoaded) {
  std::set<std::string> declared;
  std::ifstream mof(ExampleMof());
  std::string line;
  static const std::regex kClass(R"(^class (\w+) :)");
  while (std::getline(mof, line)) {
    std::smatch match;
    if (std::regex_search(line, match, kClass)) {
      declared.insert(match[1]);
    }
  }
  const std::map<std::string, Stanza> stanzas = ReadStanzas();
  std::set<std::string> registered;
  for (const auto& [className, stanza] : stanzas) {
    registered.insert(className);
    EXPECT_EQ(stanza.at("unload"), "never") << className;
    EXPECT_EQ(stanza.at("location"), "filesystemdiag") << className;
    EXPECT_EQ(stanza.at("namespace"), "root/cimv2") << className;
  }
  EXPECT_EQ(registered, declared);
  EXPECT_EQ(stanzas.at("FSD_FileSystemDiagnosticService").at("type"), "instance method");
  EXPECT_EQ(stanzas.at("FSD_AvailableDiagnosticService").at("type"), "instance association");
  EXPECT_EQ(stanzas.at("FSD_MountedFileSystem").at("provider"), "FileSystemElements");
}

TEST(DeployFilesTest, TheRegistrationMofRegistersWhatTheStanzasDo) {
  const std::string interop = "root/PG_InterOp";
  cmpihost::Host host;
  host.loadMof(SchemaMof());
  host.loadMof(ExampleMof());
  host.loadMof(std::string(DIAGCORE_SOURCE_DIR) + "/schema/qualifiers.mof", interop);
  host.loadMof(TestDataFile("provider-registration-classes.mof"), interop);
  host.loadMof(ExampleDir() + "/deploy/filesystemdiag-registration.mof", interop);

  const std::map<std::string, Stanza> stanzas = ReadStanzas();
  const std::vector<cmpihost::InstanceSnapshot> modules =
      host.enumerateInstances(interop, "PG_ProviderModule").instances();
  ASSERT_EQ(modules.size(), 1U);
  EXPECT_EQ(Text(modules[0], "Location"), "filesystemdiag");
  EXPECT_EQ(Text(modules[0], "InterfaceType"), "CMPI");
  const std::string module = Text(modules[0], "Name");

  std::set<std::string> providers;
  for (const auto& [className, stanza] : stanzas) {
    providers.insert(stanza.at("provider"));
  }
  std::set<std::string> declaredProviders;
  for (const auto& provider : host.enumerateInstances(interop, "PG_Provider").instances()) {
    EXPECT_EQ(Text(provider, "ProviderModuleName"), module);
    declaredProviders.insert(Text(provider, "Name"));
  }
  EXPECT_EQ(declaredProviders, providers);

  // The provider types as the registration MOF numbers them.
  const std::map<std::string, std::uint64_t> kTypeNumbers = {
      {"instance", 2}, {"association", 3}, {"method", 5}};
  std::set<std::string> capabilityClasses;
  for (const auto& capability :
       host.enumerateInstances(interop, "PG_ProviderCapabilities").instances()) {
    const std::string className = Text(capability, "ClassName");
    capabilityClasses.insert(className);
    ASSERT_EQ(stanzas.count(className), 1U) << className << " has no stanza";
    const Stanza& stanza = stanzas.at(className);
    EXPECT_EQ(Text(capability, "ProviderModuleName"), module) << className;
    EXPECT_EQ(Text(capability, "ProviderName"), stanza.at("provider")) << className;
    std::set<std::uint64_t> types;
    for (const cmpihost::Value& element : capability.find("ProviderType")->elements) {
      types.insert(element.uint);
    }
    std::set<std::uint64_t> stanzaTypes;
    std::istringstream words(stanza.at("type"));
    for (std::string word; words >> word;) {
      stanzaTypes.insert(kTypeNumbers.at(word));
    }
    EXPECT_EQ(types, stanzaTypes) << className;
    const cmpihost::Value* namespaces = capability.find("Namespaces");
    ASSERT_EQ(namespaces->elements.size(), 1U) << className;
    EXPECT_EQ(namespaces->elements[0].text, stanza.at("namespace")) << className;
  }
  EXPECT_EQ(capabilityClasses.size(), stanzas.size());
}

}  // namespace
}  // namespace e2e
