#include "RunCommand.h"

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

// `word` in single quotes for /bin/sh.
std::string Quoted(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
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
  std::string command = Quoted(CMPIHOST_BINARY);
  for (const std::string& arg : args) {
    command += " " + Quoted(arg);
  }
  const std::string out = scratch.path() + "/stdout";
  const std::string err = scratch.path() + "/stderr";
  command +=
      " <" + Quoted(scratch.write("stdin", input)) + " >" + Quoted(out) + " 2>" + Quoted(err);
  // The shell reports a child killed by signal N as exit code 128 + N.
  const int status = std::system(command.c_str());
  CommandResult result;
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

std::string BareShelfText(const std::string& id) {
  return "// root/cimv2:Cli_Shelf.Id=\"" + id +
         "\"\n"
         "instance of Cli_Shelf {\n"
         "    Id = \"" +
         id +
         "\";\n"
         "    Location = NULL;\n"
         "    Height = NULL;\n"
         "    Installed = NULL;\n"
         "    Offset = NULL;\n"
         "    Row = NULL;\n"
         "    Levels = NULL;\n"
         "};\n";
}

}  // namespace cmpihost::testing
