#include "support/ProgramRun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace diagcore_test {
namespace {

// In the child: point a standard stream at a file, or give up.
void Redirect(const std::string& path, int flags, int target) {
  const int fd = open(path.c_str(), flags, 0600);
  if (fd < 0 || dup2(fd, target) < 0) {
    _exit(126);
  }
  close(fd);
}

}  // namespace

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "diagcore-testXXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) {
    path_ = pattern;
  }
}

ScratchDir::~ScratchDir() {
  if (path_.empty()) {
    return;
  }
  std::error_code ignored;
  // A test may have taken write permission away; give it back to clean up.
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchDir::write(const std::string& name, const std::string& text) const {
  std::string file = path_ + "/" + name;
  std::ofstream(file, std::ios::binary) << text;
  return file;
}

ProgramResult RunProgram(const std::vector<std::string>& argv, const std::string& input) {
  static const std::string kLeakOptions = std::string("suppressions=") + DIAGCORE_SOURCE_DIR +
                                          "/tests/lsan.supp"
                                          ":print_suppressions=0";
  const ScratchDir scratch;
  const std::string in = scratch.write("stdin", input);
  const std::string out = scratch.path() + "/stdout";
  const std::string err = scratch.path() + "/stderr";
  std::vector<std::string> words = argv;
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);

  ProgramResult result;
  const pid_t child = fork();
  if (child == 0) {
    Redirect(in, O_RDONLY, STDIN_FILENO);
    Redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    Redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    // Under ASan: what libdiagcore keeps for the life of the process by
    // design is not a leak of the program run.
    setenv("LSAN_OPTIONS", kLeakOptions.c_str(), 1);
    execvp(pointers[0], pointers.data());
    _exit(127);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    return result;
  }
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.out = ReadFile(out);
  result.err = ReadFile(err);
  return result;
}

}  // namespace diagcore_test
