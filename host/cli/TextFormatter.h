// Results as a person reads them: instances in MOF after a "// path"
// comment, names and paths one per line, method results as
// "ReturnValue = value" and "Name = value" lines.
#ifndef CMPIHOST_CLI_TEXTFORMATTER_H_
#define CMPIHOST_CLI_TEXTFORMATTER_H_

#include "cli/Formatter.h"

namespace cmpihost::cli {

class TextFormatter : public Formatter {
 public:
  std::string classNames(const std::vector<std::string>& names) const override;
  std::string paths(const std::vector<std::string>& paths) const override;
  std::string instances(const std::vector<InstanceSnapshot>& instances) const override;
  std::string instance(const InstanceSnapshot& instance) const override;
  std::string methodResult(const Value* returnValue,
                           const std::vector<Property>& outArguments) const override;
  std::string classDeclaration(const ClassDecl& decl) const override;
  std::string failure(const CMPIrc* code, const std::string& message) const override;
  std::string directive(const std::string& name, const std::string& argument) const override;
  std::string echo(const std::string& text) const override;
  std::string unloadAnswers(const std::vector<UnloadAnswer>& answers) const override;
  std::string listingSeparator() const override;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_TEXTFORMATTER_H_
