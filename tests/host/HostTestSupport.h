// Shared by the host and repository tests: a host with the test MOF loaded,
// the qualifier declarations every test MOF needs, a scratch folder, and
// one-line texts of what the reader produced, so that a test states a whole
// declaration at once rather than CMPI plumbing.
#ifndef TESTS_HOST_HOSTTESTSUPPORT_H_
#define TESTS_HOST_HOSTTESTSUPPORT_H_

#include <cmpidt.h>
#include <cmpift.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cmpihost/CallScope.h"
#include "cmpihost/ClassRepository.h"
#include "cmpihost/Host.h"
#include "cmpihost/ProviderRegistration.h"

namespace cmpihost::testing {

// The text of the HostError that `call` throws, or "(no error)".
template <typename Call>
std::string HostErrorOf(Call&& call) {
  try {
    call();
  } catch (const HostError& error) {
    return error.what();
  }
  return "(no error)";
}

inline std::string Text(const CMPIString* string) {
  return string == nullptr ? "<null>" : string->ft->getCharPtr(string, nullptr);
}

// A registration in root/cimv2 for `classes`, of the kinds asked for.
inline ProviderRegistration Registration(std::string name, std::vector<std::string> classes,
                                         bool instance, bool method = false,
                                         bool association = false) {
  ProviderRegistration registration;
  registration.providerName = std::move(name);
  registration.classNames = std::move(classes);
  registration.instance = instance;
  registration.method = method;
  registration.association = association;
  return registration;
}

// A host with tests/host/data/test.mof in root/cimv2 and a call scope open
// on the test's thread.
class HostTest : public ::testing::Test {
 protected:
  HostTest() {
    host_.loadMof(HOST_TEST_MOF);
    scope_ = std::make_unique<CallScope>(host_);
    broker_ = scope_->broker();
  }

  CMPIObjectPath* path(const char* className, const char* nameSpace = "root/cimv2") {
    return broker_->eft->newObjectPath(broker_, nameSpace, className, nullptr);
  }

  CMPIInstance* instance(const char* className) {
    return broker_->eft->newInstance(broker_, path(className), nullptr);
  }

  CMPIString* string(const char* text) { return broker_->eft->newString(broker_, text, nullptr); }

  CMPIStatus setString(CMPIInstance* target, const char* name, const char* text) {
    CMPIValue value;
    value.string = string(text);
    return target->ft->setProperty(target, name, &value, CMPI_string);
  }

  std::string pathText(const CMPIObjectPath* objectPath) {
    return Text(objectPath->ft->toString(objectPath, nullptr));
  }

  Host host_;
  std::unique_ptr<CallScope> scope_;
  const CMPIBroker* broker_ = nullptr;
};

// The declarations of the DMTF qualifiers the tests use, with DMTF's types,
// scopes and flavors.
inline const char* const kQualifierDecls = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Indication : boolean = false, Scope(class, indication), Flavor(DisableOverride, ToSubclass);
Qualifier Abstract : boolean = false, Scope(class, association, indication),
    Flavor(EnableOverride, Restricted);
Qualifier Override : string = null, Scope(property, reference, method),
    Flavor(EnableOverride, Restricted);
Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier ValueMap : string[], Scope(property, method, parameter);
Qualifier MaxLen : uint32 = null, Scope(property, method, parameter);
Qualifier Version : string = null, Scope(class, association, indication),
    Flavor(EnableOverride, Restricted, Translatable);
)";

// A fresh folder under the system's temporary folder, removed with its
// contents when the object goes.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "cmpihost-testXXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) {
      path_ = pattern;
    }
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Writes `text` to `relative` (creating folders) and returns the full path.
  std::string write(const std::string& relative, const std::string& text) const {
    const std::filesystem::path file = path_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

 private:
  std::filesystem::path path_;
};

// A value with its kind visible: true, -5, real -1500, "text", 'c', null,
// ref "path", {1, 2}.
inline std::string Show(const MofValue& value) {
  std::ostringstream text;
  switch (value.kind) {
    case MofValue::Kind::kNull:
      return "null";
    case MofValue::Kind::kBoolean:
      return value.boolean ? "true" : "false";
    case MofValue::Kind::kInteger:
      return (value.negative ? "-" : "") + std::to_string(value.integer);
    case MofValue::Kind::kReal:
      text << "real " << value.real;
      return text.str();
    case MofValue::Kind::kString:
      return "\"" + value.text + "\"";
    case MofValue::Kind::kChar16:
      return "'" + value.text + "'";
    case MofValue::Kind::kAlias:
      return "$" + value.text;
    case MofValue::Kind::kReference:
      return "ref \"" + value.text + "\"";
    case MofValue::Kind::kArray:
      text << "{";
      for (std::size_t i = 0; i < value.elements.size(); ++i) {
        text << (i == 0 ? "" : ", ") << Show(value.elements[i]);
      }
      text << "}";
      return text.str();
  }
  return "?";
}

// "uint8[4]", "string[]", "Test_Base REF".
inline std::string Show(const TypeDecl& type) {
  std::string text = type.type == CimType::kReference ? type.refClass + " REF"
                                                      : std::string(CimTypeName(type.type));
  if (type.isArray) {
    text += "[" + (type.arraySize ? std::to_string(*type.arraySize) : std::string()) + "]";
  }
  return text;
}

// " [Key=true, Description=\"x\"]", or "" when there are none.
inline std::string Show(const std::vector<Qualifier>& qualifiers) {
  std::string text;
  for (const Qualifier& qualifier : qualifiers) {
    text += (text.empty() ? " [" : ", ") + qualifier.name + "=" + Show(qualifier.value);
  }
  return text.empty() ? text : text + "]";
}

// One line for the class, then one per property, method and parameter:
//   class Name : Super abstract association [qualifiers]
//   Prop: type key = default from Origin [qualifiers]
//   Method(): type from Origin [qualifiers]
//   Method(Param): type in out [qualifiers]
inline std::vector<std::string> Lines(const ClassDecl& decl) {
  std::vector<std::string> lines{
      "class " + decl.name() + (decl.superName().empty() ? "" : " : " + decl.superName()) +
      (decl.isAbstract() ? " abstract" : "") + (decl.isAssociation() ? " association" : "") +
      Show(decl.qualifiers())};
  for (const PropertyDecl& p : decl.properties()) {
    lines.push_back(
        p.name + ": " + Show(p.type) + (p.isKey ? " key" : "") +
        (p.defaultValue.kind == MofValue::Kind::kNull ? "" : " = " + Show(p.defaultValue)) +
        " from " + p.classOrigin + Show(p.qualifiers));
  }
  for (const MethodDecl& m : decl.methods()) {
    lines.push_back(m.name + "(): " + Show(m.returnType) + " from " + m.classOrigin +
                    Show(m.qualifiers));
    for (const ParameterDecl& p : m.parameters) {
      lines.push_back(m.name + "(" + p.name + "): " + Show(p.type) + (p.isIn ? " in" : "") +
                      (p.isOut ? " out" : "") + Show(p.qualifiers));
    }
  }
  return lines;
}

}  // namespace cmpihost::testing

#endif  // TESTS_HOST_HOSTTESTSUPPORT_H_
