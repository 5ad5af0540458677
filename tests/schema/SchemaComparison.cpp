#include "SchemaComparison.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <sstream>
#include <utility>

namespace diagcore_test {
namespace {

using cmpihost::ClassDecl;
using cmpihost::ClassRepository;
using cmpihost::MethodDecl;
using cmpihost::MofValue;
using cmpihost::ParameterDecl;
using cmpihost::PropertyDecl;
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

bool EqualNoCase(const std::string& a, const std::string& b) {
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string CommaSeparated(const std::vector<std::string>& items) {
  std::string joined;
  for (std::size_t i = 0; i < items.size(); ++i) {
    joined += (i == 0 ? "" : ", ") + items[i];
  }
  return joined;
}

std::string Join(const std::vector<std::string>& items) {
  return "(" + CommaSeparated(items) + ")";
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
  switch (value.kind) {
    case MofValue::Kind::kNull:
      return "null";
    case MofValue::Kind::kBoolean:
      return value.boolean ? "true" : "false";
    case MofValue::Kind::kInteger:
      return (value.negative ? "-" : "") + std::to_string(value.integer);
    case MofValue::Kind::kReal: {
      std::ostringstream text;
      text << value.real;
      return text.str();
    }
    case MofValue::Kind::kString:
      return "\"" + value.text + "\"";
    case MofValue::Kind::kChar16:
      return "'" + value.text + "'";
    case MofValue::Kind::kAlias:
      return "$" + value.text;
    case MofValue::Kind::kReference:
      return "reference \"" + value.text + "\"";
    case MofValue::Kind::kArray: {
      std::vector<std::string> elements;
      for (const MofValue& element : value.elements) {
        elements.push_back(DescribeValue(element));
      }
      return "{" + CommaSeparated(elements) + "}";
    }
  }
  return "?";
}

bool SameValue(const MofValue& a, const MofValue& b) {
  if (a.kind != b.kind) {
    return false;
  }
  switch (a.kind) {
    case MofValue::Kind::kNull:
      return true;
    case MofValue::Kind::kBoolean:
      return a.boolean == b.boolean;
    case MofValue::Kind::kInteger:
      return a.integer == b.integer && (a.negative == b.negative || a.integer == 0);
    case MofValue::Kind::kReal:
      return a.real == b.real;
    case MofValue::Kind::kArray:
      return std::equal(a.elements.begin(), a.elements.end(), b.elements.begin(), b.elements.end(),
                        SameValue);
    default:
      return a.text == b.text;
  }
}

std::string DescribeDirection(const ParameterDecl& parameter) {
  if (parameter.isIn && parameter.isOut) {
    return "In, Out";
  }
  if (parameter.isIn || parameter.isOut) {
    return parameter.isIn ? "In" : "Out";
  }
  return "neither In nor Out";
}

// Collects "subject: fact X here but Y in DMTF" lines.
class Report {
 public:
  explicit Report(std::vector<std::string>& lines) : lines_(lines) {}

  void differs(const std::string& subject, const std::string& fact, const std::string& ours,
               const std::string& dmtf) {
    lines_.push_back(subject + ": " + fact + " " + ours + " here but " + dmtf + " in DMTF");
  }
  void note(const std::string& subject, const std::string& problem) {
    lines_.push_back(subject + ": " + problem);
  }
  void compareSpelling(const std::string& subject, const std::string& ours,
                       const std::string& dmtf) {
    if (ours != dmtf) {
      differs(subject, "spelt", "'" + ours + "'", "'" + dmtf + "'");
    }
  }
  void compareType(const std::string& subject, const TypeDecl& ours, const TypeDecl& dmtf) {
    const std::string oursText = DescribeType(ours);
    const std::string dmtfText = DescribeType(dmtf);
    if (oursText != dmtfText) {
      differs(subject, "type", oursText, dmtfText);
    }
  }

 private:
  std::vector<std::string>& lines_;
};

// Reads qualifier values as a client sees them: a qualifier that is not
// written has its declared default. DMTF's declaration gives that default
// on both sides, since our declarations are compared with DMTF's separately.
class QualifierReader {
 public:
  QualifierReader(const ClassRepository& dmtf, const std::string& nameSpace)
      : dmtf_(dmtf), nameSpace_(nameSpace) {}

  MofValue effective(const std::vector<Qualifier>& written, const std::string& name) const {
    for (const Qualifier& qualifier : written) {
      if (EqualNoCase(qualifier.name, name)) {
        return qualifier.value;
      }
    }
    const cmpihost::QualifierDecl* decl = dmtf_.findQualifier(nameSpace_, name);
    return decl != nullptr ? decl->defaultValue : MofValue{};
  }

  template <std::size_t N>
  void compare(Report& report, const std::string& subject, const std::array<const char*, N>& names,
               const std::vector<Qualifier>& ours, const std::vector<Qualifier>& dmtf) const {
    for (const char* name : names) {
      const MofValue oursValue = effective(ours, name);
      const MofValue dmtfValue = effective(dmtf, name);
      if (!SameValue(oursValue, dmtfValue)) {
        report.differs(subject, std::string("qualifier ") + name, DescribeValue(oursValue),
                       DescribeValue(dmtfValue));
      }
    }
  }

 private:
  const ClassRepository& dmtf_;
  const std::string& nameSpace_;
};

template <typename Member>
std::vector<std::string> NamesOf(const std::vector<Member>& members) {
  std::vector<std::string> names;
  names.reserve(members.size());
  for (const Member& member : members) {
    names.push_back(member.name);
  }
  return names;
}

bool SameNamesInOrder(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), EqualNoCase);
}

// Reports members present on one side only; true when both sides hold the
// same names, so that their order and details can be compared.
template <typename Member, typename OursFinder, typename DmtfFinder>
bool CompareMemberSets(Report& report, const std::string& className,
                       const std::vector<Member>& ours, const std::vector<Member>& dmtf,
                       OursFinder findInOurs, DmtfFinder findInDmtf) {
  bool same = true;
  for (const Member& member : ours) {
    if (findInDmtf(member.name) == nullptr) {
      report.note(className + "." + member.name, "not in DMTF");
      same = false;
    }
  }
  for (const Member& member : dmtf) {
    if (findInOurs(member.name) == nullptr) {
      report.note(className + "." + member.name, "missing here");
      same = false;
    }
  }
  return same;
}

void CompareProperty(Report& report, const QualifierReader& qualifiers,
                     const std::string& className, const PropertyDecl& ours,
                     const PropertyDecl& dmtf) {
  const std::string subject = className + "." + dmtf.name;
  report.compareSpelling(subject, ours.name, dmtf.name);
  report.compareType(subject, ours.type, dmtf.type);
  if (ours.isKey != dmtf.isKey) {
    report.differs(subject, "Key", ours.isKey ? "true" : "false", dmtf.isKey ? "true" : "false");
  }
  if (!SameValue(ours.defaultValue, dmtf.defaultValue)) {
    report.differs(subject, "default", DescribeValue(ours.defaultValue),
                   DescribeValue(dmtf.defaultValue));
  }
  // The origin's spelling is checked where that class itself is compared.
  if (!EqualNoCase(ours.classOrigin, dmtf.classOrigin)) {
    report.differs(subject, "class origin", ours.classOrigin, dmtf.classOrigin);
  }
  qualifiers.compare(report, subject, kPropertyQualifiers, ours.qualifiers, dmtf.qualifiers);
}

void CompareParameters(Report& report, const QualifierReader& qualifiers,
                       const std::string& methodSubject, const MethodDecl& ours,
                       const MethodDecl& dmtf) {
  const std::vector<std::string> oursNames = NamesOf(ours.parameters);
  const std::vector<std::string> dmtfNames = NamesOf(dmtf.parameters);
  if (!SameNamesInOrder(oursNames, dmtfNames)) {
    report.differs(methodSubject, "parameters", Join(oursNames), Join(dmtfNames));
    return;
  }
  for (std::size_t i = 0; i < ours.parameters.size(); ++i) {
    const ParameterDecl& oursParameter = ours.parameters[i];
    const ParameterDecl& dmtfParameter = dmtf.parameters[i];
    const std::string subject = methodSubject + "(" + dmtfParameter.name + ")";
    report.compareSpelling(subject, oursParameter.name, dmtfParameter.name);
    report.compareType(subject, oursParameter.type, dmtfParameter.type);
    if (DescribeDirection(oursParameter) != DescribeDirection(dmtfParameter)) {
      report.differs(subject, "direction", DescribeDirection(oursParameter),
                     DescribeDirection(dmtfParameter));
    }
    qualifiers.compare(report, subject, kParameterQualifiers, oursParameter.qualifiers,
                       dmtfParameter.qualifiers);
  }
}

void CompareMethod(Report& report, const QualifierReader& qualifiers, const std::string& className,
                   const MethodDecl& ours, const MethodDecl& dmtf) {
  const std::string subject = className + "." + dmtf.name;
  report.compareSpelling(subject, ours.name, dmtf.name);
  const std::string oursReturn = DescribeType(ours.returnType);
  const std::string dmtfReturn = DescribeType(dmtf.returnType);
  if (oursReturn != dmtfReturn) {
    report.differs(subject, "returns", oursReturn, dmtfReturn);
  }
  if (!EqualNoCase(ours.classOrigin, dmtf.classOrigin)) {
    report.differs(subject, "class origin", ours.classOrigin, dmtf.classOrigin);
  }
  qualifiers.compare(report, subject, kMethodQualifiers, ours.qualifiers, dmtf.qualifiers);
  CompareParameters(report, qualifiers, subject, ours, dmtf);
}

void CompareProperties(Report& report, const QualifierReader& qualifiers, const ClassDecl& ours,
                       const ClassDecl& dmtf) {
  const auto findInOurs = [&ours](const std::string& name) { return ours.findProperty(name); };
  const auto findInDmtf = [&dmtf](const std::string& name) { return dmtf.findProperty(name); };
  if (!CompareMemberSets(report, dmtf.name(), ours.properties(), dmtf.properties(), findInOurs,
                         findInDmtf)) {
    return;
  }
  const std::vector<std::string> oursNames = NamesOf(ours.properties());
  const std::vector<std::string> dmtfNames = NamesOf(dmtf.properties());
  if (!SameNamesInOrder(oursNames, dmtfNames)) {
    report.differs(dmtf.name(), "properties in order", Join(oursNames), Join(dmtfNames));
  }
  for (const PropertyDecl& property : ours.properties()) {
    CompareProperty(report, qualifiers, dmtf.name(), property, *dmtf.findProperty(property.name));
  }
}

void CompareMethods(Report& report, const QualifierReader& qualifiers, const ClassDecl& ours,
                    const ClassDecl& dmtf) {
  const auto findInOurs = [&ours](const std::string& name) { return ours.findMethod(name); };
  const auto findInDmtf = [&dmtf](const std::string& name) { return dmtf.findMethod(name); };
  if (!CompareMemberSets(report, dmtf.name(), ours.methods(), dmtf.methods(), findInOurs,
                         findInDmtf)) {
    return;
  }
  const std::vector<std::string> oursNames = NamesOf(ours.methods());
  const std::vector<std::string> dmtfNames = NamesOf(dmtf.methods());
  if (!SameNamesInOrder(oursNames, dmtfNames)) {
    report.differs(dmtf.name(), "methods in order", Join(oursNames), Join(dmtfNames));
  }
  for (const MethodDecl& method : ours.methods()) {
    CompareMethod(report, qualifiers, dmtf.name(), method, *dmtf.findMethod(method.name));
  }
}

// Scopes and flavors are sets whose words compare case-insensitively.
std::vector<std::string> SortedNoCase(std::vector<std::string> words) {
  std::sort(words.begin(), words.end(),
            [](const std::string& a, const std::string& b) { return Lower(a) < Lower(b); });
  return words;
}

bool SameWordSet(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  const std::vector<std::string> sortedA = SortedNoCase(a);
  const std::vector<std::string> sortedB = SortedNoCase(b);
  return std::equal(sortedA.begin(), sortedA.end(), sortedB.begin(), sortedB.end(), EqualNoCase);
}

}  // namespace

SchemaComparison::SchemaComparison(const ClassRepository& ours, const ClassRepository& dmtf,
                                   std::string nameSpace)
    : ours_(ours), dmtf_(dmtf), nameSpace_(std::move(nameSpace)) {}

std::vector<std::string> SchemaComparison::classDifferences(const ClassDecl& ours) const {
  std::vector<std::string> lines;
  Report report(lines);
  const ClassDecl* dmtf = dmtf_.findClass(nameSpace_, ours.name());
  if (dmtf == nullptr) {
    report.note(ours.name(), "no such class in DMTF");
    return lines;
  }
  report.compareSpelling(dmtf->name(), ours.name(), dmtf->name());
  if (ours.superName() != dmtf->superName()) {
    const auto describe = [](const std::string& name) {
      return name.empty() ? std::string("none") : name;
    };
    report.differs(dmtf->name(), "superclass", describe(ours.superName()),
                   describe(dmtf->superName()));
  }
  const QualifierReader qualifiers(dmtf_, nameSpace_);
  qualifiers.compare(report, dmtf->name(), kClassQualifiers, ours.qualifiers(), dmtf->qualifiers());
  CompareProperties(report, qualifiers, ours, *dmtf);
  CompareMethods(report, qualifiers, ours, *dmtf);
  return lines;
}

std::vector<std::string> SchemaComparison::qualifierDifferences(const std::string& name) const {
  std::vector<std::string> lines;
  Report report(lines);
  const std::string subject = "Qualifier " + name;
  const cmpihost::QualifierDecl* ours = ours_.findQualifier(nameSpace_, name);
  const cmpihost::QualifierDecl* dmtf = dmtf_.findQualifier(nameSpace_, name);
  if (ours == nullptr || dmtf == nullptr) {
    report.note(subject, ours == nullptr ? "not declared here" : "not declared in DMTF");
    return lines;
  }
  report.compareSpelling(subject, ours->name, dmtf->name);
  report.compareType(subject, ours->type, dmtf->type);
  if (!SameValue(ours->defaultValue, dmtf->defaultValue)) {
    report.differs(subject, "default", DescribeValue(ours->defaultValue),
                   DescribeValue(dmtf->defaultValue));
  }
  if (!SameWordSet(ours->scopes, dmtf->scopes)) {
    report.differs(subject, "scopes", Join(SortedNoCase(ours->scopes)),
                   Join(SortedNoCase(dmtf->scopes)));
  }
  if (!SameWordSet(ours->flavors, dmtf->flavors)) {
    report.differs(subject, "flavors", Join(SortedNoCase(ours->flavors)),
                   Join(SortedNoCase(dmtf->flavors)));
  }
  return lines;
}

}  // namespace diagcore_test
