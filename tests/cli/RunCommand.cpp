#include "RunCommand.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace cmpihost::testing {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// In the child: point a standard stream at a file, or give up.
void Redirect(const std::string& path, int flags, int target) {
  const int fd = open(path.c_str(), flags, 0600);
  if (fd < 0 || dup2(fd, target) < 0) {
    _exit(126);
  }
  close(fd);
}

}  // namespace

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "cmpihostXXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) {
    path_ = pattern;
  }
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchDir::write(const std::string& name, const std::string& text) const {
  std::string file = path_ + "/" + name;
  std::ofstream(file, std::ios::binary) << text;
  return file;
}

CommandResult RunCmpihost(const std::vector<std::string>& args, const std::string& input) {
  const ScratchDir scratch;
  const std::string in = scratch.write("stdin", input);
  const std::string out = scratch.path() + "/stdout";
  const std::string err = scratch.path() + "/stderr";
  std::vector<std::string> words = {CMPIHOST_BINARY};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);

  CommandResult result;
  const pid_t child = fork();
  if (child == 0) {
    Redirect(in, O_RDONLY, STDIN_FILENO);
    Redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    Redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    execv(argv[0], argv.data());
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

std::string DataFile(const std::string& name) {
  return std::string(CLI_DATA_DIR) + "/" + name;
}

std::string ProviderDir() {
  return CLI_PROVIDER_DIR;
}

std::vector<std::string> WithMof(std::vector<std::string> args) {
  args.insert(args.begin(), {"--mof", DataFile("widgets.mof")});
  return args;
}

std::vector<std::string> WithProvider(std::vector<std::string> args) {
  args.insert(args.begin(), {"--lib-dir", ProviderDir(), "--providers", DataFile("clitest.reg")});
  return WithMof(std::move(args));
}

}  // namespace cmpihost::testing
