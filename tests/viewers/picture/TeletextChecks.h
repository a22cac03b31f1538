#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "viewers/picture/Colours.h"
#include "viewers/picture/Teletext.h"

namespace sectorbox::testing {

// The bytes of a font in which each row of a character differs from the rows beside it.
inline std::vector<std::uint8_t> MakeOddFontBytes() {
  std::vector<std::uint8_t> bytes;
  for (unsigned glyph = 0; glyph < 96; ++glyph) {
    for (unsigned row = 0; row < 18; ++row) {
      const unsigned word = glyph == 0 ? 0 : (glyph * 37 + row * 101 + 513) & 0x3FF;
      bytes.push_back(static_cast<std::uint8_t>(word & 255));
      bytes.push_back(static_cast<std::uint8_t>(word >> 8));
    }
  }
  return bytes;
}

inline const std::vector<std::uint8_t>& OddFontBytes() {
  static const std::vector<std::uint8_t> kBytes = MakeOddFontBytes();
  return kBytes;
}

inline TeletextFont OddFont() {
  return BuildTeletextFont(OddFontBytes()).value();
}

enum Half { kWhole, kUpper, kLower };

// What a cell of a drawn page must show.
struct ExpectedCell {
  int Code = 32;  // 32 to 127
  Colour Fore = kWhite;
  Colour Back = kBlack;
  int Variant = kTextSet;
  Half Shown = kWhole;
};

// The 20 rows of a cell as text, 12 characters each: '#' and '.', worked out pixel by pixel from
// the font's bytes and the places of the blocks of a mosaic.
inline bool PixelOf(const ExpectedCell& cell, int x, int y) {
  if (cell.Shown != kWhole) y = y / 2 + (cell.Shown == kLower ? 10 : 0);
  if (cell.Variant != kTextSet && (cell.Code < 64 || cell.Code >= 96)) {
    const int bit[3][2] = {{1, 2}, {4, 8}, {16, 64}};
    const int band = y < 6 ? 0 : y < 14 ? 1 : 2;
    const int end[3] = {4, 12, 18};
    if (cell.Variant == kSeparated && (y >= end[band] || x % 6 < 2)) return false;
    return ((cell.Code - 32) & bit[band][x / 6]) != 0;
  }
  if (y < 2 || x >= 10) return false;
  const auto& bytes = OddFontBytes();
  const auto at = static_cast<std::size_t>(((cell.Code - 32) * 18 + y - 2) * 2);
  const int word = bytes[at] | bytes[at + 1] << 8;
  return (word >> (9 - x) & 1) != 0;
}

inline std::string Look(const Picture& picture, int column, int row) {
  std::string look;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 12; ++x) {
      const Colour colour = picture.At(column * 12 + x, row * 20 + y);
      look += static_cast<char>('0' + ((colour & kRed) != 0 ? 1 : 0) +
                                ((colour & kGreen) != 0 ? 2 : 0) + ((colour & kBlue) != 0 ? 4 : 0));
    }
    look += '\n';
  }
  return look;
}

inline void ExpectCell(const Picture& picture, int column, int row, const ExpectedCell& cell) {
  Picture expected(12, 20);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 12; ++x) {
      expected.Pixels[static_cast<std::size_t>(y * 12 + x)] =
          PixelOf(cell, x, y) ? cell.Fore : cell.Back;
    }
  }
  EXPECT_EQ(Look(picture, column, row), Look(expected, 0, 0))
      << "column " << column << ", row " << row << ", code " << cell.Code;
}

// A page whose rows are the given texts, each filled up with blanks.
inline std::vector<std::uint8_t> Page(const std::vector<std::string>& rows) {
  std::vector<std::uint8_t> codes;
  for (const std::string& row : rows) {
    std::string padded = row;
    padded.resize(40, ' ');
    codes.insert(codes.end(), padded.begin(), padded.end());
  }
  return codes;
}

inline Picture DrawRows(const std::vector<std::string>& rows, std::int16_t flashPhase = 0) {
  return DrawTeletext(Page(rows), OddFont(), flashPhase);
}

}  // namespace sectorbox::testing
