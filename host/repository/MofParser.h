// The front door is cmpihost/Host.h; this header is internal.
// Turns MOF text into productions (pragmas, qualifier declarations, classes,
// instances), one at a time. It checks syntax and data-type keywords only;
// names and values are checked when a production is staged.
#ifndef CMPIHOST_REPOSITORY_MOFPARSER_H_
#define CMPIHOST_REPOSITORY_MOFPARSER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "repository/MofLexer.h"
#include "repository/MofSyntax.h"

namespace cmpihost {

class MofParser {
 public:
  // `text` and `fileName` must outlive the parser.
  MofParser(std::string_view text, const std::string& fileName);

  // The next production, or nullopt at the end of the text. Throws MofError.
  std::optional<MofProduction> next();

 private:
  RawPragma parsePragma();
  RawQualifierDecl parseQualifierDecl();
  RawClass parseClass(std::vector<RawQualifier> qualifiers);
  RawInstance parseInstance(std::vector<RawQualifier> qualifiers);
  void parseFeature(RawClass& decl);
  RawParameter parseParameter();
  // A data type keyword, or "ClassName REF"; consumes it.
  TypeDecl parseType(SourcePos& pos, bool allowReference);
  // "[" [size] "]" after a name, if present.
  void parseArraySuffix(TypeDecl& type);
  std::vector<RawQualifier> parseQualifierList();
  // One flavor name onto `flavors`, refusing unknown and contradicting ones.
  void parseFlavor(std::vector<std::string>& flavors);
  // A constant, an array "{...}", or (where allowed) an alias.
  RawValue parseInitializer(bool allowAlias);
  // One scalar constant (strings joined); `allowAlias` admits $name.
  void parseConstant(MofValue& value, bool allowAlias);

  void advance();
  bool atKeyword(const char* keyword) const;
  bool atPunct(char c) const { return current_.isPunct(c); }
  void expectPunct(char c, const char* context);
  void expectKeyword(const char* keyword, const char* context);
  std::string expectIdentifier(const char* what, SourcePos* pos = nullptr);
  [[noreturn]] void failExpected(const std::string& expected) const;
  [[noreturn]] void fail(SourcePos pos, const std::string& problem) const;

  MofLexer lexer_;
  Token current_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPOSITORY_MOFPARSER_H_
