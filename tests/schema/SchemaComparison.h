// Compares the classes and qualifier declarations of one repository (ours)
// with those of a reference repository (the DMTF schema), fact by fact, so
// that a failing check names every disagreement at once instead of the first.
#ifndef DIAGCORE_TESTS_SCHEMA_SCHEMACOMPARISON_H_
#define DIAGCORE_TESTS_SCHEMA_SCHEMACOMPARISON_H_

#include <string>
#include <vector>

#include "cmpihost/ClassRepository.h"

namespace diagcore_test {

class SchemaComparison {
 public:
  // Both repositories are read in `nameSpace`; they must outlive the comparison.
  SchemaComparison(const cmpihost::ClassRepository& ours, const cmpihost::ClassRepository& dmtf,
                   std::string nameSpace);

  // Every way in which our class differs from DMTF's class of that name:
  // spelling, superclass, class qualifiers, and each property and method
  // (own and inherited). Empty when they agree.
  std::vector<std::string> classDifferences(const cmpihost::ClassDecl& ours) const;

  // Every way in which our declaration of the named qualifier differs from
  // DMTF's: type, default, scopes and flavors. Empty when they agree.
  std::vector<std::string> qualifierDifferences(const std::string& name) const;

 private:
  const cmpihost::ClassRepository& ours_;
  const cmpihost::ClassRepository& dmtf_;
  std::string nameSpace_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SCHEMA_SCHEMACOMPARISON_H_
