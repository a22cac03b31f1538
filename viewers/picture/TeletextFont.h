#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// The characters of a teletext screen as patterns of pixels, and the file that they come from.
namespace sectorbox {

// The name of the font file, which lies in the program's own folder, and the text and title of the
// box (stop icon) that the window program shows before it ends, when LoadTeletextFont gives no
// font. A page without letters would show the user's files wrongly. So neither program goes on
// without the font.
inline constexpr char kTeletextFontFile[] = "teletext.fnt";
inline constexpr char kTeletextFontMissing[] = "Cannot open Teletext font file teletext.fnt";
inline constexpr char kTeletextFontTitle[] = "WindowTitle";

// 96 characters from code 32 on, 18 rows each, each row a little-endian 16-bit word with the
// leftmost of ten pixels at bit 9. No header.
inline constexpr std::size_t kTeletextFontBytes = std::size_t{96} * 18 * 2;

// How a code shows: as text, or as a mosaic of six blocks that touch or stand apart. Codes 64 to 95
// show their character in all three, so capitals can be mixed into mosaics.
enum TeletextVariant { kTextSet = 0, kContiguous = 1, kSeparated = 2, kTeletextVariants };

// Every pattern of a cell of 12 by 20 pixels; bit 11 is the leftmost pixel, bit 0 the rightmost.
struct TeletextFont {
  static constexpr int kCellWidth = 12;
  static constexpr int kCellHeight = 20;
  static constexpr std::size_t kGlyphs = 97;

  using Cell = std::array<std::uint16_t, kCellHeight>;

  // By variant and glyph index (the code minus 32). Index 96 is never drawn and stays blank.
  std::array<std::array<Cell, kGlyphs>, kTeletextVariants> Patterns{};

  const Cell& Pattern(int variant, int glyph) const {
    return Patterns[static_cast<std::size_t>(variant)][static_cast<std::size_t>(glyph)];
  }
};

// The font from the file's bytes. Bytes behind the first 3456 are ignored; fewer give no font.
[[nodiscard]] std::optional<TeletextFont> BuildTeletextFont(std::span<const std::uint8_t> file);

// Reads the font file at path. It gives no font if the file is missing, can't be read or is too
// short; the caller then shows kTeletextFontMissing.
[[nodiscard]] std::optional<TeletextFont> LoadTeletextFont(const std::string& path);

}  // namespace sectorbox
