// Runs a program (the built cmpihost, or the demo's driver) as a child
// process, the way a user or a CI job runs it, and captures what it says.
// Shared by the command's tests and the end-to-end tests.
#ifndef TESTS_SUPPORT_PROGRAMRUN_H_
#define TESTS_SUPPORT_PROGRAMRUN_H_

#include <string>
#include <vector>

namespace diagcore_test {

struct ProgramResult {
  int exitCode = -1;  // 128 + signal number when the process was killed
  std::string out;
  std::string err;
};

// Runs `argv` (argv[0] is the program's path); standard input is a file
// holding `input`, so it is never a terminal.
ProgramResult RunProgram(const std::vector<std::string>& argv, const std::string& input = "");

// A fresh folder, removed with its contents when the object goes.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::string& path() const { return path_; }
  // Writes `text` to the file `name` in the folder and returns its full path.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  std::string path_;
};

// The whole content of a file ("" when it cannot be read).
std::string ReadFile(const std::string& path);

}  // namespace diagcore_test

#endif  // TESTS_SUPPORT_PROGRAMRUN_H_
