#include "providers/RegistrationFile.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "broker/Values.h"
#include "cmpihost/HostError.h"
#include "text/Literals.h"

namespace cmpihost {
namespace {

// Lines may end in CR LF.
std::string Trimmed(const std::string& text) {
  return cmpihost::Trimmed(text, " \t\r");
}

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  std::string word;
  while (stream >> word) {
    words.push_back(word);
  }
  return words;
}

bool IsClassName(const std::string& name) {
  if (name.empty() || (std::isalpha(static_cast<unsigned char>(name[0])) == 0 && name[0] != '_')) {
    return false;
  }
  return std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  });
}

constexpr const char* kUnloadValues = "never";

class StanzaReader {
 public:
  explicit StanzaReader(std::string name) : name_(std::move(name)) {}

  void line(const std::string& raw) {
    ++lineNumber_;
    const std::string text = Trimmed(raw);
    if (text.empty() || text[0] == '#') {
      return;
    }
    if (text[0] == '[') {
      startStanza(text);
    } else {
      keyValue(text);
    }
  }

  std::vector<RegistrationStanza> finish() {
    finishStanza();
    return std::move(stanzas_);
  }

 private:
  struct Open {
    RegistrationStanza stanza;
    std::optional<std::vector<std::string>> types;
    std::optional<std::vector<std::string>> nameSpaces;
    bool unloadNever = false;
    std::map<std::string, unsigned> seen;  // key -> line
  };

  [[noreturn]] void fail(unsigned line, const std::string& problem) const {
    throw HostError(name_ + ":" + std::to_string(line) + ": " + problem);
  }

  void startStanza(const std::string& text) {
    if (text.back() != ']') {
      fail(lineNumber_, "expected ']' to close the class name in '" + text + "'");
    }
    const std::string className = Trimmed(text.substr(1, text.size() - 2));
    if (!IsClassName(className)) {
      fail(lineNumber_, "'" + className + "' is not a class name");
    }
    finishStanza();
    open_ = Open();
    open_->stanza.line = lineNumber_;
    open_->stanza.className = className;
  }

  void keyValue(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
      fail(lineNumber_, "expected 'key: value' or '[ClassName]', found '" + text + "'");
    }
    const std::string key = AsciiLowered(Trimmed(text.substr(0, colon)));
    const std::string value = Trimmed(text.substr(colon + 1));
    if (!open_) {
      fail(lineNumber_, "'" + key + ":' comes before any [ClassName] stanza");
    }
    const bool known = key == "provider" || key == "location" || key == "type" ||
                       key == "namespace" || key == "unload";
    if (!known) {
      return;  // group: and keys other CIMOM versions know
    }
    const auto earlier = open_->seen.find(key);
    if (earlier != open_->seen.end()) {
      fail(lineNumber_, "'" + key + ":' is given twice in stanza [" + open_->stanza.className +
                            "] (first at line " + std::to_string(earlier->second) + ")");
    }
    open_->seen[key] = lineNumber_;
    if (value.empty()) {
      fail(lineNumber_, "'" + key + ":' has no value" +
                            (key == "unload" ? std::string(" (accepted: ") + kUnloadValues + ")"
                                             : std::string()));
    }
    if (key == "provider") {
      open_->stanza.providerName = value;
    } else if (key == "location") {
      open_->stanza.location = value;
    } else if (key == "type") {
      open_->types = Words(value);
      for (const std::string& type : *open_->types) {
        const std::string lower = AsciiLowered(type);
        if (lower != "instance" && lower != "association" && lower != "method" &&
            lower != "indication" && lower != "property") {
          fail(lineNumber_, "unknown provider type '" + type +
                                "' (known: instance association method indication property)");
        }
      }
    } else if (key == "namespace") {
      open_->nameSpaces = Words(value);
    } else {
      // Only what the small-footprint CIMOM reads, spelled as it reads it:
      // a file that loads here must load there.
      if (value != "never") {
        fail(lineNumber_, "'unload: " + value + "' is not accepted (accepted: " + kUnloadValues +
                              "; leave 'unload:' out to let the CIMOM unload an idle provider)");
      }
      open_->unloadNever = true;
    }
  }

  void finishStanza() {
    if (!open_) {
      return;
    }
    Open& open = *open_;
    const std::string where = "stanza [" + open.stanza.className + "]";
    if (open.stanza.providerName.empty()) {
      fail(open.stanza.line, where + " has no 'provider:'");
    }
    if (open.stanza.location.empty()) {
      fail(open.stanza.line, where + " has no 'location:'");
    }
    if (!open.types) {
      fail(open.stanza.line, where + " has no 'type:'");
    }
    for (const RegistrationStanza& earlier : stanzas_) {
      if (earlier.providerName == open.stanza.providerName &&
          earlier.location != open.stanza.location) {
        fail(open.stanza.line, "provider " + open.stanza.providerName + " has location '" +
                                   open.stanza.location + "' here but '" + earlier.location +
                                   "' at line " + std::to_string(earlier.line));
      }
    }
    const std::vector<std::string> nameSpaces =
        open.nameSpaces ? *open.nameSpaces : std::vector<std::string>{"root/cimv2"};
    for (const std::string& nameSpace : nameSpaces) {
      ProviderRegistration registration;
      registration.providerName = open.stanza.providerName;
      registration.location = open.stanza.location;
      registration.classNames = {open.stanza.className};
      registration.nameSpace = nameSpace;
      registration.unloadNever = open.unloadNever;
      for (const std::string& type : *open.types) {
        const std::string lower = AsciiLowered(type);
        registration.instance = registration.instance || lower == "instance";
        registration.method = registration.method || lower == "method";
        registration.association = registration.association || lower == "association";
      }
      open.stanza.registrations.push_back(std::move(registration));
    }
    stanzas_.push_back(std::move(open.stanza));
    open_.reset();
  }

  std::string name_;
  unsigned lineNumber_ = 0;
  std::optional<Open> open_;
  std::vector<RegistrationStanza> stanzas_;
};

}  // namespace

std::vector<RegistrationStanza> ParseRegistrationText(const std::string& text,
                                                      const std::string& name) {
  StanzaReader reader(name);
  std::istringstream stream(text);
  std::string line;
  while (std::getline(stream, line)) {
    reader.line(line);
  }
  return reader.finish();
}

std::vector<RegistrationStanza> ReadRegistrationFile(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw HostError(path + ":0: cannot open the registration file");
  }
  std::ostringstream text;
  text << file.rdbuf();
  return ParseRegistrationText(text.str(), path);
}

std::string FindProviderLibrary(const RegistrationStanza& stanza, const std::string& file,
                                const std::vector<std::string>& libraryDirs) {
  std::string library = "lib" + stanza.location + ".so";
  if (libraryDirs.empty()) {
    return library;
  }
  std::string searched;
  for (const std::string& dir : libraryDirs) {
    std::string candidate = dir;
    candidate += "/" + library;
    if (access(candidate.c_str(), R_OK) == 0) {
      return candidate;
    }
    searched += searched.empty() ? "" : ", ";
    searched += dir;
  }
  throw HostError(file + ":" + std::to_string(stanza.line) + ": " + library + " of provider " +
                  stanza.providerName + " is not in " + searched);
}

}  // namespace cmpihost
