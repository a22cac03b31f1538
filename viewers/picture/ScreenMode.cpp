#include "viewers/picture/ScreenMode.h"

#include <algorithm>
#include <cstddef>

#include "viewers/picture/Colours.h"

namespace sectorbox {
namespace {

constexpr std::size_t kCellRows = 8;  // pixel rows of a text row, and bytes of a cell column
constexpr int kPictureRowsPerPixel = 2;

// Logical colour of the leftmost pixel of a byte. The caller shifts the byte left by one for the
// next pixel.
unsigned LeftmostPixel(const ScreenMode& mode, unsigned byte) {
  switch (mode.PixelsPerByte) {
    case 8:
      return byte >> 7 & 1;
    case 4:  // one bit in each half of the byte
      return (byte >> 6 & 2) | (byte >> 3 & 1);
    default:  // every other bit
      return (byte >> 4 & 8) | (byte >> 3 & 4) | (byte >> 2 & 2) | (byte >> 1 & 1);
  }
}

// The pixels of each byte value in their colours, each pixel as wide as it is in the picture. To
// draw a byte is then one copy.
class ByteStrips {
 public:
  ByteStrips(const ScreenMode& mode, const CurrentColours& colours)
      : width_(mode.PixelsPerByte * mode.ColumnsPerPixel) {
    for (unsigned byte = 0; byte < strips_.size(); ++byte) {
      unsigned bits = byte;
      Colour* to = strips_[byte].data();
      for (int pixel = 0; pixel < mode.PixelsPerByte; ++pixel) {
        to = std::fill_n(to, mode.ColumnsPerPixel, colours[LeftmostPixel(mode, bits)]);
        bits = bits << 1 & 0xFF;
      }
    }
  }
  Colour* Draw(std::uint8_t byte, Colour* to) const {
    return std::copy_n(strips_[byte].data(), width_, to);
  }

 private:
  int width_;  // picture columns of a byte: 8, or 16 where a row has half the bytes
  std::array<std::array<Colour, 16>, 256> strips_{};
};

void DrawTextRow(std::span<const std::uint8_t> bytes, const ByteStrips& strips, Colour* to) {
  for (std::size_t r = 0; r < kCellRows; ++r) {
    Colour* at = to;
    for (std::size_t i = r; i < bytes.size(); i += kCellRows) at = strips.Draw(bytes[i], at);
    std::copy(to, at, to + kScreenWidth);
    to += std::ptrdiff_t{kPictureRowsPerPixel} * kScreenWidth;
  }
}

}  // namespace

const ScreenMode* FindScreenMode(int mode) {
  const auto found = std::find_if(kScreenModes.begin(), kScreenModes.end(),
                                  [mode](const ScreenMode& m) { return m.Mode == mode; });
  return found == kScreenModes.end() ? nullptr : &*found;
}

ScreenPalette::ScreenPalette() {
  for (const ScreenMode& mode : kScreenModes) Reset(mode);
}

void ScreenPalette::Reset(const ScreenMode& mode) {
  auto& colours = colours_[static_cast<std::size_t>(mode.Mode)];
  switch (mode.BaseColours) {
    case 2:
      colours = {kBlack, kWhite};
      break;
    case 4:
      colours = {kBlack, kRed, kYellow, kWhite};
      break;
    default:
      colours = kPhysicalColours;
  }
}

Colour ScreenPalette::Get(const ScreenMode& mode, int logical) const {
  return colours_[static_cast<std::size_t>(mode.Mode)][static_cast<std::size_t>(logical)];
}

void ScreenPalette::Set(const ScreenMode& mode, int logical, Colour colour) {
  colours_[static_cast<std::size_t>(mode.Mode)][static_cast<std::size_t>(logical)] = colour;
}

CurrentColours FindCurrentColours(const ScreenMode& mode, const ScreenPalette& palette,
                                  bool flashOn) {
  CurrentColours colours{};
  const auto base = static_cast<std::size_t>(mode.BaseColours);
  for (std::size_t i = 0; i < base; ++i) colours[i] = palette.Get(mode, static_cast<int>(i));
  if (mode.Mode == 2) {
    for (std::size_t i = 0; i < base; ++i) colours[base + i] = colours[flashOn ? base - 1 - i : i];
  }
  return colours;
}

std::vector<std::uint8_t> ReadScreen(Disc& disc, const ScreenMode& mode, std::int32_t startSector,
                                     std::uint32_t size) {
  std::vector<std::uint8_t> bytes(std::min(size, static_cast<std::uint32_t>(mode.SizeLimit)));
  disc.TheDisc.FetchBytes(SectorOffset(startSector), bytes);
  return bytes;
}

Picture DrawScreen(const ScreenMode& mode, std::span<const std::uint8_t> bytes,
                   const CurrentColours& colours) {
  Picture picture(kScreenWidth, kScreenHeight, kBlack);
  const ByteStrips strips(mode, colours);
  const auto perRow = static_cast<std::size_t>(mode.BytesPerTextRow);
  const std::size_t length = std::min(bytes.size(), static_cast<std::size_t>(mode.SizeLimit));
  constexpr std::size_t kTextRowPixels = kCellRows * kPictureRowsPerPixel * kScreenWidth;
  for (std::size_t row = 0; row < length / perRow; ++row) {
    DrawTextRow(bytes.subspan(row * perRow, perRow), strips,
                picture.Pixels.data() + row * kTextRowPixels);
  }
  return picture;
}

}  // namespace sectorbox
