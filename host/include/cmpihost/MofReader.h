// Reads MOF text into a ClassRepository: qualifier declarations, classes,
// instances, "#pragma include" and "#pragma namespace". A load (one call,
// with everything it includes) either goes in whole or not at all.
//
// Beyond syntax it refuses what a CIMOM would refuse: qualifiers used
// without a declaration in the namespace or outside their scope, values that
// do not fit the declared type, overrides of nothing or with another type,
// references outside associations, instances of abstract classes, instances
// without their keys, duplicate classes, instances and aliases.
//
// An included file is read in place: a "#pragma namespace" inside it holds
// for what follows the include too. Aliases ($name) are known from their
// "instance of ... as $name" to the end of the same load. Positions are
// 1-based, columns count bytes.
#ifndef CMPIHOST_MOFREADER_H_
#define CMPIHOST_MOFREADER_H_

#include <stdexcept>
#include <string>

#include "cmpihost/ClassRepository.h"
#include "cmpihost/Export.h"

namespace cmpihost {

// The one error a failed load reports: where, and what.
class CMPIHOST_EXPORT MofError : public std::runtime_error {
 public:
  MofError(std::string file, unsigned line, unsigned column, std::string problem);
  const std::string& file() const { return file_; }
  unsigned line() const { return line_; }
  unsigned column() const { return column_; }
  const std::string& problem() const { return problem_; }
  // what(): "file:line:column: problem". A file that cannot be read at
  // all has line and column 0; a missing include is reported at its pragma.

 private:
  std::string file_;
  unsigned line_;
  unsigned column_;
  std::string problem_;
};

class CMPIHOST_EXPORT MofReader {
 public:
  // Classes land in `defaultNamespace` unless a "#pragma namespace" says otherwise.
  MofReader(ClassRepository& repository, std::string defaultNamespace);

  // Loads a file; includes are resolved relative to the including file's folder.
  // Throws MofError; on error the repository is unchanged.
  void loadFile(const std::string& path);
  // Loads MOF text; `name` stands for the file in errors and includes resolve
  // relative to the current directory. Throws MofError as loadFile does.
  void loadText(const std::string& text, const std::string& name);

 private:
  ClassRepository& repository_;
  std::string defaultNamespace_;
};

}  // namespace cmpihost

#endif  // CMPIHOST_MOFREADER_H_
