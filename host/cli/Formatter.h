// How results are printed: MOF-like text for people (TextFormatter) or JSON
// for programs (JsonFormatter). Each call returns the whole text of one
// command's result, newline included, so that nothing is half-printed.
#ifndef CMPIHOST_CLI_FORMATTER_H_
#define CMPIHOST_CLI_FORMATTER_H_

#include <string>
#include <vector>

#include "cmpihost/ClassDecl.h"
#include "cmpihost/Host.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Value.h"

namespace cmpihost::cli {

class Formatter {
 public:
  virtual ~Formatter() = default;

  virtual std::string classNames(const std::vector<std::string>& names) const = 0;
  virtual std::string paths(const std::vector<std::string>& paths) const = 0;
  virtual std::string instances(const std::vector<InstanceSnapshot>& instances) const = 0;
  virtual std::string instance(const InstanceSnapshot& instance) const = 0;
  // `returnValue` is null when the provider returned no data.
  virtual std::string methodResult(const Value* returnValue,
                                   const std::vector<Property>& outArguments) const = 0;
  // A class with its keys, properties (own and inherited) and methods.
  virtual std::string classDeclaration(const ClassDecl& decl) const = 0;
  // A failed request or bad line for standard output, beside the error line
  // on standard error: nothing as text; as JSON one document, so that a
  // program reading the output sees every request's answer. `code` is the
  // CMPI rc, null for bad usage or input (exit code 2).
  virtual std::string failure(const CMPIrc* code, const std::string& message) const = 0;
  // A script's mof, providers, lib-dir or namespace line that was done:
  // nothing as text; as JSON {"DIRECTIVE": ARGUMENT}, so that every step
  // of a script is one line.
  virtual std::string directive(const std::string& name, const std::string& argument) const = 0;
  // A script's echo line.
  virtual std::string echo(const std::string& text) const = 0;
  // A script's unload-idle line: what each MI's cleanup answered.
  virtual std::string unloadAnswers(const std::vector<UnloadAnswer>& answers) const = 0;
  // Printed between the outputs of two requests in a row that both showed
  // instances, so that a script's listings read apart as their instances do.
  virtual std::string listingSeparator() const = 0;
};

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_FORMATTER_H_
