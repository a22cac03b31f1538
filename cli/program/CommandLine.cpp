#include "cli/program/CommandLine.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

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
constexpr std::array<std::string_view, 9> kPlain = {
    "help", "version", "force", "data-only", "check", "quick", "full", "non-adfs", "json"};

template <typename Names>
bool Holds(const Names& names, std::string_view name) {
  return !name.empty() && std::find(names.begin(), names.end(), name) != names.end();
}

// A word such as "-o", "--pad" or "--pad=on".
struct OptionWord {
  std::string Name;
  std::optional<std::string> Value;  // what stands behind an equals sign
};

OptionWord SplitOption(const std::string& word) {
  const bool isLong = word[1] == '-';
  OptionWord option{word.substr(isLong ? 2 : 1), std::nullopt};
  const auto equals = isLong ? option.Name.find('=') : std::string::npos;
  if (equals != std::string::npos) {
    option.Value = option.Name.substr(equals + 1);
    option.Name.resize(equals);
  }
  // One letter takes one dash, a word takes two.
  if ((option.Name.size() == 1) == isLong) throw UsageError("unknown option: " + word);
  return option;
}

class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  CommandLine Parse() {
    while (at_ < words_.size()) Take(words_[at_++]);
    return std::move(line_);
  }

 private:
  void Take(const std::string& word) {
    if (optionsEnded_ || word.size() < 2 || word[0] != '-') {
      TakeArgument(word);
    } else if (word == "--") {
      optionsEnded_ = true;
    } else {
      TakeOption(word);
    }
  }

  void TakeArgument(const std::string& word) {
    if (line_.Command.empty()) {
      line_.Command = word;
    } else {
      line_.Arguments.push_back(word);
    }
  }

  void TakeOption(const std::string& word) {
    OptionWord option = SplitOption(word);
    if (Holds(kPlain, option.Name) && !option.Value) {
      line_.Options[option.Name] = "";
      return;
    }
    if (!Holds(kValued, option.Name)) throw UsageError("unknown option: " + word);
    if (!option.Value) {
      if (at_ == words_.size()) throw UsageError(word + " takes a value");
      option.Value = words_[at_++];
    }
    line_.Options[option.Name] = *option.Value;
  }

  const std::vector<std::string>& words_;
  std::size_t at_ = 0;
  bool optionsEnded_ = false;
  CommandLine line_;
};

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

void CommandLine::ExpectOptions(const std::vector<std::string>& taken,
                                const std::string& command) const {
  static constexpr std::array<std::string_view, 7> kEverywhere = {"help",
                                                                  "version",
                                                                  "pad",
                                                                  "interleave",
                                                                  "delete-locked",
                                                                  "overwrite-locked",
                                                                  "delete-non-empty"};
  for (const auto& [name, value] : Options) {
    if (Holds(kEverywhere, name) || Holds(taken, name)) continue;
    throw UsageError(command + ": takes no option " + (name.size() == 1 ? "-" : "--") + name);
  }
}

CommandLine ParseCommandLine(const std::vector<std::string>& words) {
  return Parser(words).Parse();
}

}  // namespace sectorbox::cli
