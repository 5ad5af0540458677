#include "SchemaComparison.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <iomanip>
#include <map>
#include <sstream>
#include <utility>

namespace diagcore_test {
namespace {

using cmpihost::ClassDecl;
using cmpihost::ClassRepository;
using cmpihost::MofValue;
using cmpihost::Qualifier;
using cmpihost::TypeDecl;

// Only the qualifiers that change what an element is or how it may be used
// are compared; documentation qualifiers are left out of our schema on purpose.
constexpr std::array<const char*, 5> kClassQualifiers{"Abstract", "Association", "Aggregation",
                                                      "Indication", "Exception"};
constexpr std::array<const char*, 6> kPropertyQualifiers{
    "Required", "Write", "Propagated", "EmbeddedInstance", "EmbeddedObject", "Override"};
constexpr std::array<const char*, 4> kMethodQualifiers{"Required", "EmbeddedInstance",
                                                       "EmbeddedObject", "Override"};
constexpr std::array<const char*, 3> kParameterQualifiers{"Required", "EmbeddedInstance",
                                                          "EmbeddedObject"};

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string Join(const std::vector<std::string>& items) {
  std::string joined;
  for (const std::string& item : items) {
    joined += (joined.empty() ? "" : ", ") + item;
  }
  return "(" + joined + ")";
}

template <typename Member>
std::string NamesOf(const std::vector<Member>& members) {
  std::vector<std::string> names;
  for (const Member& member : members) {
    names.push_back(member.name);
  }
  return Join(names);
}

// Scopes and flavors are sets whose words compare case-insensitively.
std::string WordSet(std::vector<std::string> words) {
  std::sort(words.begin(), words.end(),
            [](const std::string& a, const std::string& b) { return Lower(a) < Lower(b); });
  return Join(words);
}

std::string DescribeType(const TypeDecl& type) {
  std::string text =
      type.type == cmpihost::CimType::kReference ? type.refClass + " REF" : CimTypeName(type.type);
  if (type.isArray) {
    text += "[" + (type.arraySize ? std::to_string(*type.arraySize) : std::string()) + "]";
  }
  return text;
}

std::string DescribeValue(const MofValue& value) {
  std::ostringstream text;
  switch (value.kind) {
    case MofValue::Kind::kNull:
      return "null";
    case MofValue::Kind::kBoolean:
      return value.boolean ? "true" : "false";
    case MofValue::Kind::kInteger:
      return (value.negative && value.integer != 0 ? "-" : "") + std::to_string(value.integer);
    case MofValue::Kind::kReal:
      text << std::setprecision(17) << value.real;
      return text.str();
    case MofValue::Kind::kString:
      return "\"" + value.text + "\"";
    case MofValue::Kind::kChar16:
      return "'" + value.text + "'";
    case MofValue::Kind::kAlias:
      return "$" + value.text;
    case MofValue::Kind::kReference:
      return "reference \"" + value.text + "\"";
    case MofValue::Kind::kArray:
      text << "{";
      for (std::size_t i = 0; i < value.elements.size(); ++i) {
        text << (i == 0 ? "" : ", ") << DescribeValue(value.elements[i]);
      }
      text << "}";
      return text.str();
  }
  return "?";
}

// What one element (class, property, method, parameter, qualifier
// declaration) says about itself, fact by fact, in a fixed order.
struct Element {
  std::string subject;
  std::string parent;  // lower-case key of the element it belongs to; "" for none
  struct Fact {
    std::string name;
    std::string shown;
    std::string compared;
  };
  std::vector<Fact> facts;

  void add(const std::string& name, const std::string& shown) {
    facts.push_back({name, shown, shown});
  }
  void addNoCase(const std::string& name, const std::string& shown) {
    facts.push_back({name, shown, Lower(shown)});
  }
};

// The elements of one side, in the order described, found by lower-case subject.
class Sheet {
 public:
  Element& add(const std::string& subject, const std::string& parent) {
    index_[Lower(subject)] = elements_.size();
    elements_.push_back({subject, Lower(parent), {}});
    return elements_.back();
  }
  const Element* find(const std::string& key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : &elements_[found->second];
  }
  const std::vector<Element>& elements() const { return elements_; }

 private:
  std::vector<Element> elements_;
  std::map<std::string, std::size_t> index_;
};

// Describes classes as a client sees them: a qualifier that is not written
// has its declared default. DMTF's declaration gives that default on both
// sides, since our declarations are compared with DMTF's separately.
class Describer {
 public:
  Describer(const ClassRepository& dmtf, const std::string& nameSpace)
      : dmtf_(dmtf), nameSpace_(nameSpace) {}

  Sheet describe(const ClassDecl& decl) const {
    Sheet sheet;
    const std::string& name = decl.name();
    Element& element = sheet.add(name, "");
    element.add("spelt", "'" + name + "'");
    element.add("superclass", decl.superName().empty() ? "none" : decl.superName());
    addQualifiers(element, kClassQualifiers, decl.qualifiers());
    element.addNoCase("properties in order", NamesOf(decl.properties()));
    element.addNoCase("methods in order", NamesOf(decl.methods()));
    for (const cmpihost::PropertyDecl& property : decl.properties()) {
      Element& p = sheet.add(name + "." + property.name, name);
      p.add("spelt", "'" + property.name + "'");
      p.add("type", DescribeType(property.type));
      p.add("Key", property.isKey ? "true" : "false");
      p.add("default", DescribeValue(property.defaultValue));
      // The origin's spelling is checked where that class itself is compared.
      p.addNoCase("class origin", property.classOrigin);
      addQualifiers(p, kPropertyQualifiers, property.qualifiers);
    }
    for (const cmpihost::MethodDecl& method : decl.methods()) {
      const std::string methodSubject = name + "." + method.name;
      Element& m = sheet.add(methodSubject, name);
      m.add("spelt", "'" + method.name + "'");
      m.add("returns", DescribeType(method.returnType));
      m.addNoCase("class origin", method.classOrigin);
      addQualifiers(m, kMethodQualifiers, method.qualifiers);
      m.addNoCase("parameters", NamesOf(method.parameters));
      for (const cmpihost::ParameterDecl& parameter : method.parameters) {
        Element& p = sheet.add(methodSubject + "(" + parameter.name + ")", methodSubject);
        p.add("spelt", "'" + parameter.name + "'");
        p.add("type", DescribeType(parameter.type));
        p.add("direction", parameter.isIn && parameter.isOut ? "In, Out"
                           : parameter.isIn                  ? "In"
                           : parameter.isOut                 ? "Out"
                                                             : "neither In nor Out");
        addQualifiers(p, kParameterQualifiers, parameter.qualifiers);
      }
    }
    return sheet;
  }

 private:
  template <std::size_t N>
  void addQualifiers(Element& element, const std::array<const char*, N>& names,
                     const std::vector<Qualifier>& written) const {
    for (const char* name : names) {
      element.add(std::string("qualifier ") + name, DescribeValue(effective(written, name)));
    }
  }

  MofValue effective(const std::vector<Qualifier>& written, const std::string& name) const {
    for (const Qualifier& qualifier : written) {
      if (Lower(qualifier.name) == Lower(name)) {
        return qualifier.value;
      }
    }
    const cmpihost::QualifierDecl* decl = dmtf_.findQualifier(nameSpace_, name);
    return decl != nullptr ? decl->defaultValue : MofValue{};
  }

  const ClassRepository& dmtf_;
  const std::string& nameSpace_;
};

// "subject: fact X here but Y in DMTF" for every fact that differs, and a
// line for every element on one side only. Lists of members are not
// compared where a member is missing: that member's line says it all.
std::vector<std::string> Compare(const Sheet& ours, const Sheet& dmtf) {
  std::vector<std::string> lines;
  std::map<std::string, bool> membersDiffer;
  const auto presence = [&](const Sheet& side, const Sheet& other, const char* problem) {
    for (const Element& element : side.elements()) {
      const std::string key = Lower(element.subject);
      if (other.find(key) == nullptr &&
          (element.parent.empty() || other.find(element.parent) != nullptr)) {
        lines.push_back(element.subject + ": " + problem);
        membersDiffer[element.parent] = true;
      }
    }
  };
  presence(dmtf, ours, "missing here");
  presence(ours, dmtf, "not in DMTF");
  for (const Element& theirs : dmtf.elements()) {
    const std::string key = Lower(theirs.subject);
    const Element* mine = ours.find(key);
    if (mine == nullptr) {
      continue;
    }
    for (std::size_t i = 0; i < theirs.facts.size(); ++i) {
      const Element::Fact& fact = theirs.facts[i];
      const Element::Fact& our = mine->facts[i];
      const bool memberList =
          fact.name.find("order") != std::string::npos || fact.name == "parameters";
      if (our.compared != fact.compared && !(memberList && membersDiffer[key])) {
        lines.push_back(theirs.subject + ": " + fact.name + " " + our.shown + " here but " +
                        fact.shown + " in DMTF");
      }
    }
  }
  return lines;
}

}  // namespace

SchemaComparison::SchemaComparison(const ClassRepository& ours, const ClassRepository& dmtf,
                                   std::string nameSpace)
    : ours_(ours), dmtf_(dmtf), nameSpace_(std::move(nameSpace)) {}

std::vector<std::string> SchemaComparison::classDifferences(const ClassDecl& ours) const {
  const ClassDecl* dmtf = dmtf_.findClass(nameSpace_, ours.name());
  if (dmtf == nullptr) {
    return {ours.name() + ": no such class in DMTF"};
  }
  const Describer describer(dmtf_, nameSpace_);
  return Compare(describer.describe(ours), describer.describe(*dmtf));
}

std::vector<std::string> SchemaComparison::qualifierDifferences(const std::string& name) const {
  const std::string subject = "Qualifier " + name;
  const cmpihost::QualifierDecl* ours = ours_.findQualifier(nameSpace_, name);
  const cmpihost::QualifierDecl* dmtf = dmtf_.findQualifier(nameSpace_, name);
  if (ours == nullptr || dmtf == nullptr) {
    return {subject + ": " + (ours == nullptr ? "not declared here" : "not declared in DMTF")};
  }
  Sheet sheets[2];
  for (int side = 0; side < 2; ++side) {
    const cmpihost::QualifierDecl& decl = side == 0 ? *ours : *dmtf;
    Element& element = sheets[side].add(subject, "");
    element.add("spelt", "'" + decl.name + "'");
    element.add("type", DescribeType(decl.type));
    element.add("default", DescribeValue(decl.defaultValue));
    element.addNoCase("scopes", WordSet(decl.scopes));
    element.addNoCase("flavors", WordSet(decl.flavors));
  }
  return Compare(sheets[0], sheets[1]);
}

}  // namespace diagcore_test
