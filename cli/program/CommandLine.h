#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace sectorbox::cli {

// The words of the call are off: one line for standard error, exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command can't be done: one line for standard error, exit status 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The words of a call, sorted out: the command, its arguments in order, and the options by name
// without their dashes ("pad", "o"). Options may stand before or after the command; "--" ends them.
struct CommandLine {
  std::string Command;
  std::vector<std::string> Arguments;
  std::map<std::string, std::string> Options;

  bool Has(const std::string& option) const { return Options.count(option) != 0; }
  // The option's value, or fallback when it wasn't given.
  std::string Option(const std::string& option, const std::string& fallback) const;
  // "on" or "off"; anything else is a UsageError.
  bool Switch(const std::string& option, bool fallback) const;
  // UsageError unless there are from least to most arguments.
  void Expect(std::size_t least, std::size_t most) const;
};

// Options that take a value, and those that take none; any other is a UsageError.
CommandLine ParseCommandLine(const std::vector<std::string>& words);

}  // namespace sectorbox::cli
