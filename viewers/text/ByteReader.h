#pragma once

#include <array>
#include <cstdint>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"

namespace sectorbox {

// Bytes of the open image for a generator, fetched a stretch at a time. The user may change the
// image whenever the window lets events run. A generator therefore forgets the stretch after each
// text that it shows, and so sees the same bytes as with single fetches.
class ByteReader {
 public:
  explicit ByteReader(Disc& disc) : disc_(disc) {}

  // The byte at a store offset; zero outside the image.
  std::uint8_t At(std::int64_t offset) {
    const auto index = static_cast<std::uint64_t>(offset - start_);
    return index < held_ ? bytes_[index] : Refill(offset);
  }
  void Forget() { held_ = 0; }

 private:
  std::uint8_t Refill(std::int64_t offset);

  Disc& disc_;
  std::int64_t start_ = 0;
  std::uint64_t held_ = 0;
  std::array<std::uint8_t, 64> bytes_{};
};

// Bytes that the open image has at most: no view runs on beyond them.
inline std::int64_t ImageLength(Disc& disc) {
  return disc.TheDisc.LongestFile();
}

// Where a file or directory lies in the store.
struct FileExtent {
  std::int64_t Start = 0;
  // At most the image's length, so that no view runs on for gigabytes: a file that claims to be
  // longer than the image is damaged. A file that begins inside the image and reaches past its end
  // keeps its length, and the view shows the zeros that it reads there.
  std::int64_t Length = 0;
};
[[nodiscard]] FileExtent ObjectExtentOf(Disc& disc, const ListRow& row);
// The same for a file. A directory has no bytes to the views of files.
[[nodiscard]] FileExtent ExtentOf(Disc& disc, const ListRow& row);

}  // namespace sectorbox
