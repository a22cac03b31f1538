#pragma once

#include <cstdint>
#include <optional>

namespace sectorbox {

// What decides how a floppy image lies in its file. The mediums ask; whoever knows the open disc
// and the user's options answers. Each is asked at the moment of use.
class ImageRules {
 public:
  virtual ~ImageRules() = default;

  // The option: the tracks of a double-sided image stand in its file by turns, side 0 and side 1.
  [[nodiscard]] virtual bool InterleavedDisc() const = 0;
  // The sectors that a single-sided image is stored with; none if it is stored in full.
  [[nodiscard]] virtual std::optional<std::int32_t> SectorsToStore() = 0;
  // An image has been loaded into memory: nothing in it is unsaved.
  virtual void ImageLoaded() = 0;
};

}  // namespace sectorbox
