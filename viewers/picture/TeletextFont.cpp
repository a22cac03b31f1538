#include "viewers/picture/TeletextFont.h"

#include <vector>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

constexpr std::size_t kFileGlyphs = 96;
constexpr std::size_t kFileRows = 18;
constexpr std::size_t kTopMargin = 2;   // rows 0 and 1 of a cell are blank in text
constexpr unsigned kLeftmostShift = 2;  // from bit 9 in the file to bit 11 in a cell
constexpr unsigned kCellMask = 0xFFF;

constexpr unsigned kLeftBlock = 0xFC0;
constexpr unsigned kRightBlock = 0x03F;
constexpr unsigned kApart = 0x3CF;  // blanks the two left columns of each block

// A mosaic is three bands of two blocks each.
struct Band {
  unsigned LeftBit, RightBit;            // of the glyph index
  std::size_t Top, Bottom, ApartBottom;  // rows [Top, Bottom), or [Top, ApartBottom) when separated
};
constexpr std::array<Band, 3> kBands = {{{1, 2, 0, 6, 4}, {4, 8, 6, 14, 12}, {16, 64, 14, 20, 18}}};

void DrawMosaic(TeletextFont& font, std::size_t g) {
  auto& contiguous = font.Patterns[kContiguous][g];
  auto& separated = font.Patterns[kSeparated][g];
  contiguous.fill(0);
  separated.fill(0);
  for (const Band& band : kBands) {
    const unsigned pattern =
        ((g & band.LeftBit) != 0 ? kLeftBlock : 0) | ((g & band.RightBit) != 0 ? kRightBlock : 0);
    for (std::size_t y = band.Top; y < band.Bottom; ++y) {
      contiguous[y] = static_cast<std::uint16_t>(pattern);
      if (y < band.ApartBottom) separated[y] = static_cast<std::uint16_t>(pattern & kApart);
    }
  }
}

}  // namespace

std::optional<TeletextFont> BuildTeletextFont(std::span<const std::uint8_t> file) {
  if (file.size() < kTeletextFontBytes) return std::nullopt;
  TeletextFont font;
  for (std::size_t g = 0; g < kFileGlyphs; ++g) {
    for (std::size_t y = 0; y < kFileRows; ++y) {
      const std::size_t at = 2 * (g * kFileRows + y);
      const unsigned word = file[at] | static_cast<unsigned>(file[at + 1]) << 8;
      const auto pattern = static_cast<std::uint16_t>(word << kLeftmostShift & kCellMask);
      for (auto& variant : font.Patterns) variant[g][kTopMargin + y] = pattern;
    }
    if ((g & 32) == 0) DrawMosaic(font, g);
  }
  return font;
}

std::optional<TeletextFont> LoadTeletextFont(const std::string& path) {
  try {
    return BuildTeletextFont(ReadHostFile(path, 0, kTeletextFontBytes));
  } catch (const HostError&) {
    return std::nullopt;
  }
}

}  // namespace sectorbox
