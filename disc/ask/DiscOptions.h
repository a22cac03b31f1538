#pragma once

#include <chrono>

namespace sectorbox {

// The user's options. The engine asks for each at the moment of its use, since the user can change
// them at any time.
class DiscOptions {
 public:
  virtual ~DiscOptions() = default;

  [[nodiscard]] virtual bool PadDiscImages() const = 0;
  [[nodiscard]] virtual bool InterleavedDisc() const = 0;
  [[nodiscard]] virtual bool OverwriteLocked() const = 0;
  // How long a change waits until another program is done with the disc. A front end with a user in
  // front of it doesn't wait.
  [[nodiscard]] virtual std::chrono::milliseconds LockPatience() const {
    return std::chrono::milliseconds(0);
  }
};

}  // namespace sectorbox
