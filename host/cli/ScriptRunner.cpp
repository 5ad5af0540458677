#include "cli/ScriptRunner.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "cli/Help.h"
#include "cli/Request.h"
#include "cli/Tokenizer.h"
#include "cli/UsageError.h"

namespace cmpihost::cli {
namespace {

// A command as written, possibly over several lines joined by a trailing
// backslash; `number` is the line it starts on.
struct ScriptLine {
  std::size_t number = 0;
  std::string text;
};

class LineReader {
 public:
  explicit LineReader(std::istream& in) : in_(in) {}

  bool next(ScriptLine& line) {
    std::string part;
    if (!std::getline(in_, part)) {
      return false;
    }
    line.number = ++count_;
    line.text.clear();
    while (ContinuesOnNextLine(part)) {
      part.erase(part.find_last_of('\\'));
      line.text += part;
      if (!std::getline(in_, part)) {
        part.clear();
        break;
      }
      ++count_;
    }
    line.text += part;
    return true;
  }

 private:
  std::istream& in_;
  std::size_t count_ = 0;
};

bool HoldsCommand(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  return first != std::string::npos && text[first] != '#';
}

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  const std::size_t last = text.find_last_not_of(" \t\r");
  return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

std::string Joined(const std::vector<std::string>& words, std::size_t from) {
  std::string text;
  for (std::size_t index = from; index < words.size(); ++index) {
    text += (index == from ? "" : " ") + words[index];
  }
  return text;
}

// The single argument of a directive.
const std::string& OneArgument(const std::vector<std::string>& words, const char* placeholder) {
  if (words.size() != 2) {
    throw UsageError(words[0] + ": " +
                     (words.size() < 2 ? std::string("missing ") + placeholder
                                       : "unexpected argument \"" + words[2] + "\"") +
                     " (usage: " + words[0] + " " + placeholder + ")");
  }
  return words[1];
}

}  // namespace

ScriptRunner::ScriptRunner(Session& session, const Formatter& formatter, Progress& progress,
                           std::ostream& out, std::ostream& err)
    : session_(session),
      formatter_(formatter),
      executor_(session, formatter),
      progress_(progress),
      out_(out),
      err_(err) {}

std::size_t ScriptRunner::CountCommands(const std::string& text) {
  std::istringstream in(text);
  LineReader reader(in);
  ScriptLine line;
  std::size_t count = 0;
  while (reader.next(line)) {
    count += HoldsCommand(line.text) ? 1 : 0;
  }
  return count;
}

int ScriptRunner::run(std::istream& in, const ScriptSource& source) {
  LineReader reader(in);
  ScriptLine line;
  std::size_t number = 0;
  int exitCode = 0;
  while (reader.next(line)) {
    if (!HoldsCommand(line.text)) {
      continue;
    }
    progress_.show(++number, source.commandCount, Trimmed(line.text));
    const std::string where = source.name + ":" + std::to_string(line.number);
    try {
      const std::vector<std::string> words = Tokenize(line.text);
      const bool succeeded = words.empty() || runCommand(words, source, where);
      exitCode = std::max(exitCode, succeeded ? 0 : 1);
    } catch (const UsageError& error) {
      progress_.clear();
      out_ << std::flush;
      err_ << "cmpihost: " << where << ": " << error.what() << '\n';
      out_ << formatter_.failure(nullptr, where + ": " + error.what()) << std::flush;
      if (source.stopOnBadLine) {
        return 2;
      }
      exitCode = 2;
    }
  }
  return exitCode;
}

bool ScriptRunner::runCommand(const std::vector<std::string>& words, const ScriptSource& source,
                              const std::string& where) {
  if (runDirective(words, source)) {
    progress_.clear();
    return true;
  }
  if (AsksForHelp(words)) {
    progress_.clear();
    showed(HelpFor(words), false);
    return true;
  }
  if (words[0] == "run" || words[0] == "-") {
    throw UsageError(words[0] + ": scripts do not nest; put the lines in this script instead");
  }
  const Outcome outcome = executor_.run(ParseRequest(words));
  progress_.clear();
  if (outcome.instances && instancesShownLast_) {
    out_ << formatter_.listingSeparator();
  }
  showed(outcome.output, outcome.instances);
  if (!outcome.hint.empty()) {
    err_ << "cmpihost: " << where << ": " << outcome.hint << '\n';
  }
  if (!outcome.failure.empty()) {
    err_ << "cmpihost: " << where << ": " << outcome.failure << '\n';
    return false;
  }
  return true;
}

bool ScriptRunner::runDirective(const std::vector<std::string>& words, const ScriptSource& source) {
  const std::string& directive = words[0];
  if (directive == "echo") {
    progress_.clear();
    showed(formatter_.echo(Joined(words, 1)), false);
    return true;
  }
  if (directive == "unload-idle") {
    if (words.size() != 1) {
      throw UsageError("unload-idle: unexpected argument \"" + words[1] +
                       "\" (usage: unload-idle)");
    }
    progress_.clear();
    showed(formatter_.unloadAnswers(session_.host().unloadIdleProviders()), false);
    return true;
  }
  std::string argument;
  if (directive == "mof") {
    argument = resolve(OneArgument(words, "FILE"), source);
    session_.loadMof(argument);
  } else if (directive == "providers") {
    argument = resolve(OneArgument(words, "REGFILE"), source);
    session_.loadRegistrations(argument);
  } else if (directive == "lib-dir") {
    argument = resolve(OneArgument(words, "DIR"), source);
    session_.addLibraryDir(argument);
  } else if (directive == "namespace") {
    argument = OneArgument(words, "NS");
    session_.setNameSpace(argument);
  } else {
    return false;
  }
  progress_.clear();
  showed(formatter_.directive(directive, argument), false);
  return true;
}

void ScriptRunner::showed(const std::string& output, bool instances) {
  out_ << output << std::flush;
  if (!output.empty()) {
    instancesShownLast_ = instances;
  }
}

std::string ScriptRunner::resolve(const std::string& name, const ScriptSource& source) const {
  const std::filesystem::path path(name);
  if (path.is_absolute() || source.folder.empty()) {
    return name;
  }
  return (std::filesystem::path(source.folder) / path).string();
}

}  // namespace cmpihost::cli
