#pragma once

#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace sectorbox {

// The host failed: there is no such file, the host's disc is full, or we have no rights. Every
// function that touches a host file throws it. A refusal of the disc engine is never a HostError:
// the engine has return values and messages of its own. The code that catches a HostError shows
// what() and leaves the disc as it is.
class HostError : public std::runtime_error {
 public:
  // path: the host file or device. systemText: the operating system's words for the failure.
  HostError(std::string path, std::string systemText)
      : std::runtime_error(path + ": " + systemText),
        path_(std::move(path)),
        systemText_(std::move(systemText)) {}

  const std::string& Path() const { return path_; }
  const std::string& SystemText() const { return systemText_; }

 private:
  std::string path_;
  std::string systemText_;
};

// Throws HostError for path with the system's text for an error number (errno).
[[noreturn]] void ThrowHostError(const std::string& path, int errorNumber);
// Throws HostError for path with the text of error, as the standard library's calls give it.
[[noreturn]] void ThrowHostError(const std::string& path, const std::error_code& error);

}  // namespace sectorbox
