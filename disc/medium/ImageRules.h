#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace sectorbox {

// Decides how a floppy image lies in its file. The mediums ask at the moment of use. The class that
// knows the open disc and the user's options answers.
class ImageRules {
 public:
  virtual ~ImageRules() = default;

  // The user's option: a double-sided image file holds the tracks of side 0 and side 1 by turns.
  [[nodiscard]] virtual bool InterleavedDisc() const = 0;
  // The sectors that a single-sided image is stored with; none if it is stored in full.
  [[nodiscard]] virtual std::optional<std::int32_t> SectorsToStore() = 0;
  // How long to wait until another program is done with the image.
  [[nodiscard]] virtual std::chrono::milliseconds LockPatience() const = 0;
  // Called when an image has been loaded into memory: the disc has no unsaved changes now.
  virtual void ImageLoaded() = 0;
};

}  // namespace sectorbox
