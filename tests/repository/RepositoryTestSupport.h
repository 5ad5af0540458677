// Shared by the repository tests: the qualifier declarations every test MOF
// needs, and a scratch folder for include tests.
#ifndef TESTS_REPOSITORY_REPOSITORYTESTSUPPORT_H_
#define TESTS_REPOSITORY_REPOSITORYTESTSUPPORT_H_

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace cmpihost::testing {

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
    std::string pattern = (std::filesystem::temp_directory_path() / "mofXXXXXX").string();
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

}  // namespace cmpihost::testing

#endif  // TESTS_REPOSITORY_REPOSITORYTESTSUPPORT_H_
