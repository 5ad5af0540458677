#include "cmpihost/MofReader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "repository/MofParser.h"
#include "repository/MofStaging.h"
#include "text/NoCase.h"

namespace cmpihost {
namespace {

namespace fs = std::filesystem;

// Deep enough for any real schema, shallow enough that a runaway include
// chain stops long before the stack does.
constexpr unsigned kMaxIncludeDepth = 64;
// Stops include fan-out (a file including another twice, at every level)
// from reading forever; the DMTF schema reads about 1,450 files.
constexpr unsigned kMaxFilesPerLoad = 20000;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The error text when a file cannot be read, or "" with the text in `contents`.
std::string ReadWholeFile(const std::string& path, std::string& contents) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (error) {
    return error.message();
  }
  if (!fs::is_regular_file(status)) {
    return fs::is_directory(status) ? "it is a directory" : "it is not a regular file";
  }
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) {
    return std::strerror(errno);
  }
  contents.clear();
  char buffer[1 << 16];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
    contents.append(buffer, count);
  }
  if (std::ferror(file.get()) != 0) {
    return "read error";
  }
  return {};
}

// The one string argument that "#pragma include" and "#pragma namespace" take.
const std::string& StringArgument(const std::string& file, const RawPragma& pragma) {
  if (pragma.arguments.size() != 1 || pragma.arguments[0].value.kind != MofValue::Kind::kString) {
    throw MofError(file, pragma.pos.line, pragma.pos.column,
                   "#pragma " + pragma.name + " takes one string argument");
  }
  const std::string& argument = pragma.arguments[0].value.text;
  if (argument.empty()) {
    throw MofError(file, pragma.arguments[0].pos.line, pragma.arguments[0].pos.column,
                   "#pragma " + pragma.name + " needs a non-empty string");
  }
  return argument;
}

// One loadFile/loadText call: the staging plus what guards the includes.
class Load {
 public:
  Load(const ClassRepository& repository, const std::string& nameSpace)
      : staging_(repository, nameSpace) {}

  void readFile(const std::string& path, const std::string* includer, SourcePos includePos) {
    if (++filesRead_ > kMaxFilesPerLoad) {
      throw MofError(
          *includer, includePos.line, includePos.column,
          "more than " + std::to_string(kMaxFilesPerLoad) + " files included in one load");
    }
    std::string contents;
    const std::string problem = ReadWholeFile(path, contents);
    if (!problem.empty()) {
      if (includer != nullptr) {
        throw MofError(*includer, includePos.line, includePos.column,
                       "cannot read include file \"" + path + "\": " + problem);
      }
      throw MofError(path, 0, 0, "cannot read MOF file: " + problem);
    }
    std::error_code error;
    fs::path identity = fs::weakly_canonical(path, error);
    if (error) {
      identity = fs::absolute(path, error);
    }
    active_.push_back(identity.string());
    readText(contents, path, fs::path(path).parent_path());
    active_.pop_back();
  }

  void readText(const std::string& text, const std::string& file, const fs::path& baseDir) {
    MofParser parser(text, file);
    while (auto production = parser.next()) {
      if (auto* pragma = std::get_if<RawPragma>(&*production)) {
        onPragma(*pragma, file, baseDir);
      } else if (auto* qualifier = std::get_if<RawQualifierDecl>(&*production)) {
        staging_.addQualifierDecl(file, std::move(*qualifier));
      } else if (auto* decl = std::get_if<RawClass>(&*production)) {
        staging_.addClass(file, std::move(*decl));
      } else {
        staging_.addInstance(file, std::move(std::get<RawInstance>(*production)));
      }
    }
  }

  void commitTo(ClassRepository& repository) { staging_.commitTo(repository); }

 private:
  void onPragma(const RawPragma& pragma, const std::string& file, const fs::path& baseDir) {
    if (NoCaseEqual(pragma.name, "namespace")) {
      staging_.setNamespace(StringArgument(file, pragma));
    } else if (NoCaseEqual(pragma.name, "include")) {
      include(pragma, file, baseDir);
    }
    // Other pragmas (locale, instancelocale, ...) change nothing here.
  }

  void include(const RawPragma& pragma, const std::string& file, const fs::path& baseDir) {
    const fs::path named(StringArgument(file, pragma));
    const std::string path = (named.is_absolute() ? named : baseDir / named).lexically_normal();
    if (active_.size() >= kMaxIncludeDepth) {
      throw MofError(
          file, pragma.pos.line, pragma.pos.column,
          "includes nest more than " + std::to_string(kMaxIncludeDepth) + " levels deep");
    }
    std::error_code error;
    const std::string identity = fs::weakly_canonical(path, error).string();
    for (const std::string& open : active_) {
      if (!error && open == identity) {
        throw MofError(file, pragma.pos.line, pragma.pos.column,
                       "include cycle: \"" + path + "\" is already being read");
      }
    }
    readFile(path, &file, pragma.pos);
  }

  MofStaging staging_;
  std::vector<std::string> active_;  // canonical paths of the files being read
  unsigned filesRead_ = 0;
};

}  // namespace

MofReader::MofReader(ClassRepository& repository, std::string defaultNamespace)
    : repository_(repository), defaultNamespace_(std::move(defaultNamespace)) {}

void MofReader::loadFile(const std::string& path) {
  Load load(repository_, defaultNamespace_);
  load.readFile(path, nullptr, SourcePos{});
  load.commitTo(repository_);
}

void MofReader::loadText(const std::string& text, const std::string& name) {
  Load load(repository_, defaultNamespace_);
  load.readText(text, name, fs::path());
  load.commitTo(repository_);
}

}  // namespace cmpihost
