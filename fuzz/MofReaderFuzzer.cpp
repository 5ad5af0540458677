// The host's MOF reader: loadText into a fresh repository. MofError is the
// expected answer to bad MOF; it must say where, and leave the repository
// as it was. Any other exception, a hang or a sanitizer report is a bug.
#include "FuzzCheck.h"
#include "cmpihost/ClassRepository.h"
#include "cmpihost/MofReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = diagcore_fuzz::InputText(data, size);
  cmpihost::ClassRepository repository;
  cmpihost::MofReader reader(repository, "root/cimv2");
  try {
    reader.loadText(text, "fuzz.mof");
  } catch (const cmpihost::MofError& error) {
    diagcore_fuzz::Require(repository.namespaces().empty(),
                           "a failed load leaves the repository as it was");
    diagcore_fuzz::Require(!error.file().empty() && error.line() >= 1 && error.column() >= 1,
                           "a MOF error names the file, line and column");
  }
  return 0;
}
