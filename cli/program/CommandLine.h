#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace sectorbox::cli {

// The words of the call are wrong: one line for standard error, exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command can't do its work: one line for standard error, exit status 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The words of a call: the command, its arguments in order, and the options by name without their
// dashes ("pad", "o"). Options may stand before or after the command; words behind "--" are never
// options.
struct CommandLine {
  std::string Command;
  std::vector<std::string> Arguments;
  std::map<std::string, std::string> Options;

  bool Has(const std::string& option) const { return Options.count(option) != 0; }
  // The option's value, or fallback if the call doesn't have it.
  std::string Option(const std::string& option, const std::string& fallback) const;
  // True for "on", false for "off", fallback if the call doesn't have it; UsageError for anything
  // else.
  bool Switch(const std::string& option, bool fallback) const;
  // UsageError unless there are from least to most arguments.
  void Expect(std::size_t least, std::size_t most) const;
  // UsageError for an option that isn't among taken, even if another command takes it. An error is
  // better than a file of -o that is silently not written. The options that are settings of the
  // window, and --help and --version, may stand in every call. command is named in the error.
  void ExpectOptions(const std::vector<std::string>& taken, const std::string& command) const;
};

// Takes a call apart. UsageError for an unknown option, and for an option without the value it
// takes.
CommandLine ParseCommandLine(const std::vector<std::string>& words);

}  // namespace sectorbox::cli
