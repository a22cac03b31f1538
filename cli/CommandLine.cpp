#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sectorbox::cli {
namespace {

constexpr std::array<std::string_view, 12> kValued = {"pad",
                                                      "interleave",
                                                      "delete-locked",
                                                      "overwrite-locked",
                                                      "delete-non-empty",
                                                      "o",
                                                      "phase",
                                                      "palette",
                                                      "flash",
                                                      "port",
                                                      "speed",
                                                      "trace"};
constexpr std::array<std::string_view, 8> kPlain = {"help",  "version", "force", "data-only",
                                                    "check", "quick",   "full",  "non-adfs"};

template <typename Names>
bool Holds(const Names& names, std::string_view name) {
  return !name.empty() && std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::string CommandLine::Option(const std::string& option, const std::string& fallback) const {
  const auto found = Options.find(option);
  return found == Options.end() ? fallback : found->second;
}

bool CommandLine::Switch(const std::string& option, bool fallback) const {
  const std::string value = Option(option, fallback ? "on" : "off");
  if (value != "on" && value != "off") throw UsageError("--" + option + " takes on or off");
  return value == "on";
}

void CommandLine::Expect(std::size_t least, std::size_t most) const {
  if (Arguments.size() < least) throw UsageError(Command + ": an argument is missing");
  if (Arguments.size() > most) throw UsageError(Command + ": one argument too many");
}

CommandLine ParseCommandLine(const std::vector<std::string>& words) {
  CommandLine line;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const bool isOption = !optionsEnded && word.size() > 1 && word[0] == '-';
    if (!isOption) {
      if (line.Command.empty()) {
        line.Command = word;
      } else {
        line.Arguments.push_back(word);
      }
      continue;
    }
    if (word == "--") {
      optionsEnded = true;
      continue;
    }
    const bool isLong = word[1] == '-';
    std::string name = word.substr(isLong ? 2 : 1);
    const auto equals = isLong ? name.find('=') : std::string::npos;
    const bool joined = equals != std::string::npos;
    const std::string value = joined ? name.substr(equals + 1) : "";
    if (joined) name.resize(equals);
    if ((name.size() == 1) == isLong) throw UsageError("unknown option: " + word);
    if (Holds(kPlain, name) && !joined) {
      line.Options[name] = "";
    } else if (!Holds(kValued, name)) {
      throw UsageError("unknown option: " + word);
    } else if (joined) {
      line.Options[name] = value;
    } else if (i + 1 < words.size()) {
      line.Options[name] = words[++i];
    } else {
      throw UsageError(word + " takes a value");
    }
  }
  return line;
}

}  // namespace sectorbox::cli
