#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace sectorbox {

// The host failed: no such file, disc full, no rights. Thrown by everything that touches a host
// file; never used for a refusal of the disc engine, which has return values and messages of its
// own. Who catches it shows what() and leaves the disc as it is.
class HostError : public std::runtime_error {
 public:
  // path: the host file or device; systemText: what the operating system says of it.
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

// Throws HostError for path with the text of the given errno value.
[[noreturn]] void ThrowHostError(const std::string& path, int errorNumber);

}  // namespace sectorbox
