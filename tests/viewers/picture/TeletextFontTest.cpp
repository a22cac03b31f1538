#include "viewers/picture/TeletextFont.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TempFolder.h"
#include "tests/viewers/picture/TeletextChecks.h"

namespace sectorbox {
namespace {

using testing::OddFontBytes;
using testing::TempFolder;
using testing::WriteAll;

TEST(TeletextFontTest, AWordOfTheFileIsARowWithItsLeftmostPixelAtBitNine) {
  std::vector<std::uint8_t> bytes(kTeletextFontBytes);
  bytes[0] = 0x01;                       // code 32, first row: the rightmost of ten pixels
  bytes[(33 * 18 + 17) * 2 + 1] = 0x02;  // code 65, last row: the leftmost
  const TeletextFont font = BuildTeletextFont(bytes).value();
  EXPECT_EQ(font.Pattern(kTextSet, 0)[2], 0x004);
  EXPECT_EQ(font.Pattern(kTextSet, 33)[19], 0x800);
  EXPECT_EQ(font.Pattern(kTextSet, 33)[0], 0);
  EXPECT_EQ(font.Pattern(kTextSet, 33)[1], 0);
}

TEST(TeletextFontTest, BitsBeyondTheTenPixelsOfARowDontReachTheNextCell) {
  std::vector<std::uint8_t> bytes(kTeletextFontBytes, 0xFF);
  EXPECT_EQ(BuildTeletextFont(bytes)->Pattern(kTextSet, 5)[2], 0xFFC);
}

TEST(TeletextFontTest, CapitalsShowTheirLetterInAllThreeVariants) {
  const TeletextFont font = testing::OddFont();
  for (int glyph = 32; glyph < 64; ++glyph) {
    EXPECT_EQ(font.Pattern(kContiguous, glyph), font.Pattern(kTextSet, glyph));
    EXPECT_EQ(font.Pattern(kSeparated, glyph), font.Pattern(kTextSet, glyph));
  }
}

TEST(TeletextFontTest, ContiguousBlocksFillTheCellInBandsOfSixEightAndSixRows) {
  const TeletextFont font = testing::OddFont();
  const auto& cell = font.Pattern(kContiguous, 1 + 8 + 16 + 64);
  for (std::size_t y = 0; y < 20; ++y) {
    EXPECT_EQ(cell[y], y < 6 ? 4032 : y < 14 ? 63 : 4095) << "row " << y;
  }
}

TEST(TeletextFontTest, SeparatedBlocksStandApartToTheRightAndBelow) {
  const TeletextFont font = testing::OddFont();
  const auto& cell = font.Pattern(kSeparated, 95);
  for (std::size_t y = 0; y < 20; ++y) {
    const bool gap = y == 4 || y == 5 || y == 12 || y == 13 || y == 18 || y == 19;
    EXPECT_EQ(cell[y], gap ? 0 : 0x3CF) << "row " << y;
  }
}

TEST(TeletextFontTest, TheSlotBehindTheLastCharacterIsBlank) {
  const TeletextFont font = testing::OddFont();
  for (int variant = 0; variant < kTeletextVariants; ++variant) {
    EXPECT_EQ(font.Pattern(variant, 96), TeletextFont::Cell{});
  }
}

TEST(TeletextFontTest, AFileThatIsMissingTooShortOrAFolderGivesNoFont) {
  const TempFolder folder;
  EXPECT_FALSE(LoadTeletextFont(folder / "teletext.fnt").has_value());
  EXPECT_FALSE(LoadTeletextFont(folder.Path()).has_value());
  WriteAll(folder / "empty", {});
  EXPECT_FALSE(LoadTeletextFont(folder / "empty").has_value());
  WriteAll(folder / "short", std::vector<std::uint8_t>(kTeletextFontBytes - 1));
  EXPECT_FALSE(LoadTeletextFont(folder / "short").has_value());
}

TEST(TeletextFontTest, AFileThatMayNotBeReadGivesNoFont) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may read everything";
  const TempFolder folder;
  WriteAll(folder / "font", OddFontBytes());
  ::chmod((folder / "font").c_str(), 0);
  EXPECT_FALSE(LoadTeletextFont(folder / "font").has_value());
}

TEST(TeletextFontTest, WhatFollowsTheLastCharacterInTheFileIsIgnored) {
  const TempFolder folder;
  auto bytes = OddFontBytes();
  bytes.push_back(99);
  WriteAll(folder / "long", bytes);
  EXPECT_EQ(LoadTeletextFont(folder / "long")->Patterns, testing::OddFont().Patterns);
}

}  // namespace
}  // namespace sectorbox
