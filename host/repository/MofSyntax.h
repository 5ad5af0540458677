// The front door is cmpihost/Host.h; this header is internal.
// What the parser hands on: each MOF production as written, with the
// positions that errors found later (undefined names, bad values) point at.
#ifndef CMPIHOST_REPOSITORY_MOFSYNTAX_H_
#define CMPIHOST_REPOSITORY_MOFSYNTAX_H_

#include <string>
#include <variant>
#include <vector>

#include "cmpihost/CimType.h"
#include "cmpihost/MofValue.h"
#include "repository/MofToken.h"

namespace cmpihost {

// A value with where it, and each array element, was written.
struct RawValue {
  MofValue value;
  SourcePos pos;
  std::vector<SourcePos> elementPos;  // one per element of an array
};

struct RawQualifier {
  std::string name;
  SourcePos pos;
  bool hasValue = false;
  RawValue value;
  std::vector<std::string> flavors;  // written after ':'
};

struct RawProperty {
  std::vector<RawQualifier> qualifiers;
  std::string name;
  SourcePos pos;
  TypeDecl type;
  SourcePos typePos;
  bool hasDefault = false;  // "= null" counts as a default
  RawValue defaultValue;
};

struct RawParameter {
  std::vector<RawQualifier> qualifiers;
  std::string name;
  SourcePos pos;
  TypeDecl type;
  SourcePos typePos;
};

struct RawMethod {
  std::vector<RawQualifier> qualifiers;
  std::string name;
  SourcePos pos;
  TypeDecl returnType;
  SourcePos typePos;
  std::vector<RawParameter> parameters;
};

struct RawClass {
  std::vector<RawQualifier> qualifiers;
  std::string name;
  SourcePos pos;
  std::string superName;  // empty for a root class
  SourcePos superPos;
  std::vector<RawProperty> properties;
  std::vector<RawMethod> methods;
};

struct RawPropertyValue {
  std::vector<RawQualifier> qualifiers;
  std::string name;
  SourcePos pos;
  RawValue value;
};

struct RawInstance {
  std::vector<RawQualifier> qualifiers;
  SourcePos pos;  // the "instance" keyword
  std::string className;
  SourcePos classPos;
  std::string alias;  // without '$'; empty when none
  SourcePos aliasPos;
  std::vector<RawPropertyValue> values;
};

struct RawQualifierDecl {
  std::string name;
  SourcePos pos;
  TypeDecl type;
  SourcePos typePos;
  bool hasDefault = false;
  RawValue defaultValue;
  std::vector<std::string> scopes;   // lower-case
  std::vector<std::string> flavors;  // as written
};

struct RawPragma {
  std::string name;  // as written
  SourcePos pos;
  std::vector<RawValue> arguments;
};

using MofProduction = std::variant<RawPragma, RawQualifierDecl, RawClass, RawInstance>;

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFSYNTAX_H_
