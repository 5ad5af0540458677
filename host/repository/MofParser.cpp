#include "repository/MofParser.h"

#include <array>
#include <limits>
#include <utility>

#include "cmpihost/MofReader.h"
#include "text/NoCase.h"

namespace cmpihost {
namespace {

constexpr std::array<const char*, 9> kScopes{"class",     "association", "indication",
                                             "qualifier", "property",    "reference",
                                             "method",    "parameter",   "any"};

constexpr std::array<const char*, 6> kFlavors{"EnableOverride", "DisableOverride", "Restricted",
                                              "ToSubclass",     "Translatable",    "ToInstance"};

// Pairs of flavors that cannot both hold.
constexpr std::array<std::pair<const char*, const char*>, 2> kContradictions{{
    {"EnableOverride", "DisableOverride"},
    {"ToSubclass", "Restricted"},
}};

template <std::size_t N>
const char* FindNoCase(const std::array<const char*, N>& names, std::string_view name) {
  for (const char* known : names) {
    if (NoCaseEqual(known, name)) {
      return known;
    }
  }
  return nullptr;
}

}  // namespace

MofParser::MofParser(std::string_view text, const std::string& fileName) : lexer_(text, fileName) {
  advance();
}

void MofParser::advance() {
  lexer_.next(current_);
}

bool MofParser::atKeyword(const char* keyword) const {
  return current_.kind == TokenKind::kIdentifier && NoCaseEqual(current_.text, keyword);
}

void MofParser::fail(SourcePos pos, const std::string& problem) const {
  throw MofError(lexer_.fileName(), pos.line, pos.column, problem);
}

void MofParser::failExpected(const std::string& expected) const {
  fail(current_.pos, "expected " + expected + ", found " + DescribeToken(current_));
}

void MofParser::expectPunct(char c, const char* context) {
  if (!atPunct(c)) {
    failExpected(std::string("'") + c + "' " + context);
  }
  advance();
}

void MofParser::expectKeyword(const char* keyword, const char* context) {
  if (!atKeyword(keyword)) {
    failExpected(std::string("\"") + keyword + "\" " + context);
  }
  advance();
}

std::string MofParser::expectIdentifier(const char* what, SourcePos* pos) {
  if (current_.kind != TokenKind::kIdentifier) {
    failExpected(what);
  }
  if (pos != nullptr) {
    *pos = current_.pos;
  }
  std::string name(current_.text);
  advance();
  return name;
}

std::optional<MofProduction> MofParser::next() {
  if (current_.kind == TokenKind::kEnd) {
    return std::nullopt;
  }
  if (atPunct('#')) {
    return parsePragma();
  }
  if (atKeyword("qualifier")) {
    return parseQualifierDecl();
  }
  std::vector<RawQualifier> qualifiers;
  if (atPunct('[')) {
    qualifiers = parseQualifierList();
  }
  if (atKeyword("class")) {
    return parseClass(std::move(qualifiers));
  }
  if (atKeyword("instance")) {
    return parseInstance(std::move(qualifiers));
  }
  failExpected(qualifiers.empty() ? R"("class", "instance", "qualifier" or "#pragma")"
                                  : R"("class" or "instance" after the qualifier list)");
}

RawPragma MofParser::parsePragma() {
  RawPragma pragma;
  pragma.pos = current_.pos;
  advance();
  expectKeyword("pragma", "after '#'");
  pragma.name = expectIdentifier("a pragma name after \"#pragma\"");
  expectPunct('(', "after the pragma name");
  if (!atPunct(')')) {
    for (;;) {
      pragma.arguments.push_back(parseInitializer(false));
      if (!atPunct(',')) {
        break;
      }
      advance();
    }
  }
  expectPunct(')', "to close the pragma's arguments");
  return pragma;
}

RawQualifierDecl MofParser::parseQualifierDecl() {
  RawQualifierDecl decl;
  advance();
  decl.name = expectIdentifier("a qualifier name", &decl.pos);
  expectPunct(':', "and a type after the qualifier name");
  decl.type = parseType(decl.typePos, false);
  parseArraySuffix(decl.type);
  if (atPunct('=')) {
    advance();
    decl.hasDefault = true;
    decl.defaultValue = parseInitializer(false);
  }
  expectPunct(',', "and Scope(...) in the qualifier declaration");
  expectKeyword("scope", "in the qualifier declaration");
  expectPunct('(', "after \"Scope\"");
  for (;;) {
    SourcePos pos;
    const std::string scope = expectIdentifier("a scope name", &pos);
    const char* known = FindNoCase(kScopes, scope);
    if (known == nullptr) {
      fail(pos, "unknown scope \"" + scope +
                    "\" (known: class, association, indication, qualifier, property, "
                    "reference, method, parameter, any)");
    }
    decl.scopes.emplace_back(known);
    if (!atPunct(',')) {
      break;
    }
    advance();
  }
  expectPunct(')', "to close the scope list");
  if (atPunct(',') || atKeyword("flavor")) {
    if (atPunct(',')) {
      advance();
    }
    expectKeyword("flavor", "after ','");
    expectPunct('(', "after \"Flavor\"");
    for (;;) {
      if (current_.kind != TokenKind::kIdentifier) {
        failExpected("a flavor name");
      }
      parseFlavor(decl.flavors);
      if (!atPunct(',')) {
        break;
      }
      advance();
    }
    expectPunct(')', "to close the flavor list");
  }
  expectPunct(';', "after the qualifier declaration");
  return decl;
}

void MofParser::parseFlavor(std::vector<std::string>& flavors) {
  const char* known = FindNoCase(kFlavors, current_.text);
  if (known == nullptr) {
    fail(current_.pos, "unknown flavor \"" + std::string(current_.text) +
                           "\" (known: EnableOverride, DisableOverride, Restricted, ToSubclass, "
                           "Translatable)");
  }
  for (const auto& [one, other] : kContradictions) {
    for (const std::string& earlier : flavors) {
      if ((earlier == one && known == std::string_view(other)) ||
          (earlier == other && known == std::string_view(one))) {
        fail(current_.pos, "flavor " + std::string(known) + " contradicts " + earlier);
      }
    }
  }
  flavors.emplace_back(known);
  advance();
}

RawClass MofParser::parseClass(std::vector<RawQualifier> qualifiers) {
  RawClass decl;
  decl.qualifiers = std::move(qualifiers);
  advance();
  decl.name = expectIdentifier("a class name after \"class\"", &decl.pos);
  if (atPunct(':')) {
    advance();
    decl.superName = expectIdentifier("a superclass name after ':'", &decl.superPos);
  }
  expectPunct('{', "to open the class body");
  while (!atPunct('}')) {
    if (current_.kind == TokenKind::kEnd) {
      failExpected("'}' to close class \"" + decl.name + "\"");
    }
    parseFeature(decl);
  }
  advance();
  expectPunct(';', "after the class body");
  return decl;
}

RawInstance MofParser::parseInstance(std::vector<RawQualifier> qualifiers) {
  RawInstance instance;
  instance.qualifiers = std::move(qualifiers);
  instance.pos = current_.pos;
  advance();
  expectKeyword("of", "after \"instance\"");
  instance.className = expectIdentifier("a class name after \"instance of\"", &instance.classPos);
  if (atKeyword("as")) {
    advance();
    if (current_.kind != TokenKind::kAlias) {
      failExpected("an alias ($name) after \"as\"");
    }
    instance.alias = std::string(current_.text);
    instance.aliasPos = current_.pos;
    advance();
  }
  expectPunct('{', "to open the instance body");
  while (!atPunct('}')) {
    if (current_.kind == TokenKind::kEnd) {
      failExpected("'}' to close the instance of \"" + instance.className + "\"");
    }
    RawPropertyValue value;
    if (atPunct('[')) {
      value.qualifiers = parseQualifierList();
    }
    value.name = expectIdentifier("a property name or '}'", &value.pos);
    expectPunct('=', "after the property name");
    value.value = parseInitializer(true);
    expectPunct(';', "after the property value");
    instance.values.push_back(std::move(value));
  }
  advance();
  expectPunct(';', "after the instance body");
  return instance;
}

void MofParser::parseFeature(RawClass& decl) {
  std::vector<RawQualifier> qualifiers;
  if (atPunct('[')) {
    qualifiers = parseQualifierList();
  }
  SourcePos typePos;
  TypeDecl type = parseType(typePos, true);
  SourcePos namePos;
  std::string name = expectIdentifier("a property or method name", &namePos);
  if (atPunct('(')) {
    advance();
    RawMethod method;
    method.qualifiers = std::move(qualifiers);
    method.name = std::move(name);
    method.pos = namePos;
    method.returnType = std::move(type);
    method.typePos = typePos;
    if (!atPunct(')')) {
      for (;;) {
        method.parameters.push_back(parseParameter());
        if (!atPunct(',')) {
          break;
        }
        advance();
      }
    }
    expectPunct(')', "to close the parameter list");
    expectPunct(';', "after the method declaration");
    decl.methods.push_back(std::move(method));
    return;
  }
  RawProperty property;
  property.qualifiers = std::move(qualifiers);
  property.name = std::move(name);
  property.pos = namePos;
  property.type = std::move(type);
  property.typePos = typePos;
  parseArraySuffix(property.type);
  if (atPunct('=')) {
    advance();
    property.hasDefault = true;
    property.defaultValue = parseInitializer(false);
  }
  expectPunct(';', "after the property declaration");
  decl.properties.push_back(std::move(property));
}

RawParameter MofParser::parseParameter() {
  RawParameter parameter;
  if (atPunct('[')) {
    parameter.qualifiers = parseQualifierList();
  }
  parameter.type = parseType(parameter.typePos, true);
  parameter.name = expectIdentifier("a parameter name", &parameter.pos);
  parseArraySuffix(parameter.type);
  return parameter;
}

TypeDecl MofParser::parseType(SourcePos& pos, bool allowReference) {
  pos = current_.pos;
  if (current_.kind != TokenKind::kIdentifier) {
    failExpected(allowReference ? "a data type or \"ClassName REF\"" : "a data type");
  }
  TypeDecl type;
  if (const auto cimType = CimTypeFromName(current_.text)) {
    type.type = *cimType;
    advance();
    return type;
  }
  const std::string name(current_.text);
  if (allowReference) {
    advance();
    if (atKeyword("ref")) {
      advance();
      type.type = CimType::kReference;
      type.refClass = name;
      return type;
    }
    fail(pos, "unknown type \"" + name + "\": not a CIM data type, and no REF follows it");
  }
  fail(pos, "unknown type \"" + name + "\": not a CIM data type");
}

void MofParser::parseArraySuffix(TypeDecl& type) {
  if (!atPunct('[')) {
    return;
  }
  advance();
  type.isArray = true;
  if (current_.kind == TokenKind::kInteger) {
    if (current_.negative || current_.integer == 0 ||
        current_.integer > std::numeric_limits<unsigned>::max()) {
      fail(current_.pos,
           "array size " + std::string(current_.text) + " is not a positive 32-bit number");
    }
    type.arraySize = static_cast<unsigned>(current_.integer);
    advance();
  }
  expectPunct(']', "to close the array brackets");
}

std::vector<RawQualifier> MofParser::parseQualifierList() {
  std::vector<RawQualifier> qualifiers;
  advance();
  for (;;) {
    RawQualifier qualifier;
    qualifier.name = expectIdentifier("a qualifier name", &qualifier.pos);
    if (atPunct('(')) {
      advance();
      qualifier.hasValue = true;
      qualifier.value.pos = current_.pos;
      parseConstant(qualifier.value.value, false);
      expectPunct(')', "to close the qualifier value");
    } else if (atPunct('{')) {
      qualifier.hasValue = true;
      qualifier.value = parseInitializer(false);
    }
    if (atPunct(':')) {
      advance();
      while (current_.kind == TokenKind::kIdentifier) {
        parseFlavor(qualifier.flavors);
      }
      if (qualifier.flavors.empty()) {
        failExpected("a flavor after ':'");
      }
    }
    qualifiers.push_back(std::move(qualifier));
    if (!atPunct(',')) {
      break;
    }
    advance();
  }
  expectPunct(']', "to close the qualifier list");
  return qualifiers;
}

RawValue MofParser::parseInitializer(bool allowAlias) {
  RawValue raw;
  raw.pos = current_.pos;
  if (!atPunct('{')) {
    parseConstant(raw.value, allowAlias);
    return raw;
  }
  advance();
  raw.value.kind = MofValue::Kind::kArray;
  if (!atPunct('}')) {
    for (;;) {
      raw.elementPos.push_back(current_.pos);
      raw.value.elements.emplace_back();
      parseConstant(raw.value.elements.back(), allowAlias);
      if (!atPunct(',')) {
        break;
      }
      advance();
    }
  }
  expectPunct('}', "to close the array value");
  return raw;
}

void MofParser::parseConstant(MofValue& value, bool allowAlias) {
  switch (current_.kind) {
    case TokenKind::kInteger:
      value.kind = MofValue::Kind::kInteger;
      value.integer = current_.integer;
      value.negative = current_.negative && current_.integer != 0;
      advance();
      return;
    case TokenKind::kReal:
      value.kind = MofValue::Kind::kReal;
      value.real = current_.real;
      advance();
      return;
    case TokenKind::kString:
      value.kind = MofValue::Kind::kString;
      value.text = std::move(current_.decoded);
      advance();
      while (current_.kind == TokenKind::kString) {
        value.text += current_.decoded;
        advance();
      }
      return;
    case TokenKind::kChar16:
      value.kind = MofValue::Kind::kChar16;
      value.text = std::move(current_.decoded);
      advance();
      return;
    case TokenKind::kAlias:
      if (!allowAlias) {
        fail(current_.pos,
             "alias $" + std::string(current_.text) + " used outside an instance's property value");
      }
      value.kind = MofValue::Kind::kAlias;
      value.text = std::string(current_.text);
      advance();
      return;
    case TokenKind::kIdentifier:
      if (atKeyword("true") || atKeyword("false")) {
        value.kind = MofValue::Kind::kBoolean;
        value.boolean = atKeyword("true");
        advance();
        return;
      }
      if (atKeyword("null")) {
        value.kind = MofValue::Kind::kNull;
        advance();
        return;
      }
      break;
    default:
      break;
  }
  failExpected("a value");
}

}  // namespace cmpihost
