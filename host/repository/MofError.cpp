#include <utility>

#include "cmpihost/MofReader.h"

namespace cmpihost {
namespace {

std::string Located(const std::string& file, unsigned line, unsigned column,
                    const std::string& problem) {
  return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + problem;
}

}  // namespace

MofError::MofError(std::string file, unsigned line, unsigned column, std::string problem)
    : std::runtime_error(Located(file, line, column, problem)),
      file_(std::move(file)),
      line_(line),
      column_(column),
      problem_(std::move(problem)) {}

}  // namespace cmpihost
