#include "viewers/picture/ScreenMode.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"
#include "viewers/picture/Colours.h"

namespace sectorbox {
namespace {

using Bytes = std::vector<std::uint8_t>;

const ScreenMode& Mode(int number) {
  return *FindScreenMode(number);
}

// Sixteen colours that all differ, so that a pixel tells its value.
CurrentColours Values() {
  CurrentColours colours{};
  for (std::size_t i = 0; i < colours.size(); ++i) {
    colours[i] = static_cast<Colour>(0x010203 * (i + 1));
  }
  return colours;
}

int ValueAt(const Picture& picture, int x, int y) {
  const CurrentColours values = Values();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] == picture.At(x, y)) return static_cast<int>(i);
  }
  return -1;
}

// The pixel values of one byte, from the leftmost, drawn at the given cell column and pixel row of
// the first text row. Also checks that each pixel is a whole block of the right size.
std::vector<int> Pixels(int mode, std::uint8_t byte, int cell = 0, int row = 0) {
  const ScreenMode& m = Mode(mode);
  Bytes bytes(static_cast<std::size_t>(m.BytesPerTextRow));
  bytes[static_cast<std::size_t>(cell * 8 + row)] = byte;
  const Picture picture = DrawScreen(m, bytes, Values());
  std::vector<int> values;
  for (int p = 0; p < m.PixelsPerByte; ++p) {
    const int left = (cell * m.PixelsPerByte + p) * m.ColumnsPerPixel;
    values.push_back(ValueAt(picture, left, 2 * row));
    for (int dx = 0; dx < m.ColumnsPerPixel; ++dx) {
      EXPECT_EQ(picture.At(left + dx, 2 * row), picture.At(left, 2 * row));
      EXPECT_EQ(picture.At(left + dx, 2 * row + 1), picture.At(left, 2 * row));
    }
  }
  return values;
}

// The pixels of a byte, bit by bit. In each mode the bits of a pixel stand at a fixed distance from
// each other, the most significant first.
std::vector<int> ExpectedPixels(int pixelsPerByte, int byte) {
  const int depth = 8 / pixelsPerByte;
  std::vector<int> values;
  for (int p = 0; p < pixelsPerByte; ++p) {
    int value = 0;
    for (int bit = 0; bit < depth; ++bit) {
      value = value * 2 + (byte >> (7 - p - bit * pixelsPerByte) & 1);
    }
    values.push_back(value);
  }
  return values;
}

TEST(ScreenModeTest, EveryByteOfEveryModeShowsItsPixelsFromTheLeft) {
  for (const ScreenMode& mode : kScreenModes) {
    for (int byte = 0; byte < 256; ++byte) {
      EXPECT_EQ(Pixels(mode.Mode, static_cast<std::uint8_t>(byte)),
                ExpectedPixels(mode.PixelsPerByte, byte))
          << "mode " << mode.Mode << ", byte " << byte;
    }
  }
}

TEST(ScreenModeTest, InMode5TheBitsOfAPixelStandFourApart) {
  EXPECT_EQ(Pixels(5, 0x88), (std::vector<int>{3, 0, 0, 0}));
  EXPECT_EQ(Pixels(5, 0x11), (std::vector<int>{0, 0, 0, 3}));
  EXPECT_EQ(Pixels(5, 0x80), (std::vector<int>{2, 0, 0, 0}));
  EXPECT_EQ(Pixels(5, 0x08), (std::vector<int>{1, 0, 0, 0}));
}

TEST(ScreenModeTest, InMode2TheBitsOfTheTwoPixelsTakeTurns) {
  EXPECT_EQ(Pixels(2, 0xAA), (std::vector<int>{15, 0}));
  EXPECT_EQ(Pixels(2, 0x55), (std::vector<int>{0, 15}));
  EXPECT_EQ(Pixels(2, 0x80), (std::vector<int>{8, 0}));
  EXPECT_EQ(Pixels(2, 0x01), (std::vector<int>{0, 1}));
}

TEST(ScreenModeTest, EightBytesAreAColumnAndCellsGoFromLeftToRight) {
  for (const ScreenMode& mode : kScreenModes) {
    const int cells = mode.BytesPerTextRow / 8;
    for (const int cell : {0, 1, cells / 2, cells - 1}) {
      for (int row = 0; row < 8; ++row) {
        EXPECT_EQ(Pixels(mode.Mode, 0xC5, cell, row), ExpectedPixels(mode.PixelsPerByte, 0xC5))
            << "mode " << mode.Mode << ", cell " << cell << ", row " << row;
      }
    }
  }
}

TEST(ScreenModeTest, TextRowsFollowEachOtherDownAndFillThePicture) {
  for (const ScreenMode& mode : kScreenModes) {
    const auto perRow = static_cast<std::size_t>(mode.BytesPerTextRow);
    Bytes bytes(static_cast<std::size_t>(mode.SizeLimit));
    EXPECT_EQ(bytes.size() / perRow, 32U);
    for (std::size_t row = 1; row < 32; row += 2) {
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(row * perRow), perRow, 0xFF);
    }
    const Picture picture = DrawScreen(mode, bytes, Values());
    const int full = (1 << 8 / mode.PixelsPerByte) - 1;
    for (int y = 0; y < 512; ++y) {
      ASSERT_EQ(ValueAt(picture, 0, y), y / 16 % 2 == 0 ? 0 : full);
      ASSERT_EQ(ValueAt(picture, 639, y), y / 16 % 2 == 0 ? 0 : full);
    }
  }
}

// How many rows of the picture are drawn: their last pixel isn't black.
int DrawnRows(int mode, std::size_t length) {
  const Picture picture = DrawScreen(Mode(mode), Bytes(length, 0xFF), Values());
  EXPECT_EQ(picture.Width, 640);
  EXPECT_EQ(picture.Height, 512);
  int rows = 0;
  for (int y = 0; y < 512; ++y) rows += picture.At(639, y) != kBlack ? 1 : 0;
  return rows;
}

TEST(ScreenModeTest, AFileOf640BytesInMode0IsOneTextRowOf16PictureRows) {
  EXPECT_EQ(DrawnRows(0, 640), 16);
  EXPECT_EQ(DrawnRows(1, 640), 16);
  EXPECT_EQ(DrawnRows(2, 640), 16);
  EXPECT_EQ(DrawnRows(4, 320), 16);
  EXPECT_EQ(DrawnRows(5, 320), 16);
}

TEST(ScreenModeTest, ALastIncompleteTextRowIsNotDrawn) {
  EXPECT_EQ(DrawnRows(0, 639), 0);
  EXPECT_EQ(DrawnRows(1, 1279), 16);
  EXPECT_EQ(DrawnRows(2, 0), 0);
  EXPECT_EQ(DrawnRows(4, 319), 0);
  EXPECT_EQ(DrawnRows(5, 10239), 496);
}

TEST(ScreenModeTest, ALongerFileDrawsOnlyWhatTheScreenHolds) {
  for (const ScreenMode& mode : kScreenModes) {
    Bytes bytes(static_cast<std::size_t>(mode.SizeLimit) + 640, 0x5A);
    const Picture whole = DrawScreen(mode, bytes, Values());
    bytes.resize(static_cast<std::size_t>(mode.SizeLimit));
    EXPECT_EQ(whole.Pixels, DrawScreen(mode, bytes, Values()).Pixels);
  }
}

TEST(ScreenModeTest, OnlyTheFiveModesAreShown) {
  for (int mode = -1; mode < 10; ++mode) {
    const bool shown = mode == 0 || mode == 1 || mode == 2 || mode == 4 || mode == 5;
    EXPECT_EQ(FindScreenMode(mode) != nullptr, shown) << mode;
    if (shown) {
      EXPECT_EQ(FindScreenMode(mode)->Mode, mode);
    }
  }
}

TEST(ScreenPaletteTest, EachModeStartsWithTheColoursOfTheBBC) {
  const ScreenPalette palette;
  const std::vector<Colour> two = {kBlack, kWhite};
  const std::vector<Colour> four = {kBlack, kRed, kYellow, kWhite};
  const std::vector<Colour> eight(kPhysicalColours.begin(), kPhysicalColours.end());
  for (const ScreenMode& mode : kScreenModes) {
    const auto& expected = mode.BaseColours == 2 ? two : mode.BaseColours == 4 ? four : eight;
    const CurrentColours colours = FindCurrentColours(mode, palette, true);
    EXPECT_EQ(std::vector<Colour>(colours.begin(), colours.begin() + mode.BaseColours), expected);
  }
}

TEST(ScreenPaletteTest, TheFlashingColoursRunForwardsThenBackwards) {
  const ScreenPalette palette;
  const CurrentColours off = FindCurrentColours(Mode(2), palette, false);
  const CurrentColours on = FindCurrentColours(Mode(2), palette, true);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(off[i], kPhysicalColours[i]);
    EXPECT_EQ(on[i], kPhysicalColours[i]);
    EXPECT_EQ(off[8 + i], kPhysicalColours[i]);
    EXPECT_EQ(on[8 + i], kPhysicalColours[7 - i]);
  }
  EXPECT_EQ(off[15], kWhite);
  EXPECT_EQ(on[15], kBlack);
  EXPECT_EQ(off[8], kBlack);
  EXPECT_EQ(on[8], kWhite);
}

TEST(ScreenPaletteTest, AChangedEntryInMode2ChangesTheFlashingColoursThatDeriveFromIt) {
  ScreenPalette palette;
  palette.Set(Mode(2), 1, 0x123456);
  EXPECT_EQ(FindCurrentColours(Mode(2), palette, false)[9], 0x123456U);
  EXPECT_EQ(FindCurrentColours(Mode(2), palette, true)[14], 0x123456U);
  EXPECT_EQ(FindCurrentColours(Mode(2), palette, true)[1], 0x123456U);
}

TEST(ScreenPaletteTest, ModesKeepTheirChangesApartAndResetUndoesOne) {
  ScreenPalette palette;
  palette.Set(Mode(1), 2, kCyan);
  palette.Set(Mode(5), 2, kGreen);
  EXPECT_EQ(palette.Get(Mode(1), 2), kCyan);
  palette.Reset(Mode(1));
  EXPECT_EQ(palette.Get(Mode(1), 2), kYellow);
  EXPECT_EQ(palette.Get(Mode(5), 2), kGreen);
}

TEST(ScreenPaletteTest, FlashingChangesNothingButMode2) {
  const ScreenPalette palette;
  for (const int mode : {0, 1, 4, 5}) {
    EXPECT_EQ(FindCurrentColours(Mode(mode), palette, true),
              FindCurrentColours(Mode(mode), palette, false));
  }
}

TEST(ReadScreenTest, ReadsAtMostTheScreenAndZerosPastTheImagesEnd) {
  const testing::TempFolder folder;
  testing::ScriptedHost host;
  testing::ImageBuilder image(1280);
  const std::int32_t sector = image.AddFile(2, {"SCREEN", Bytes(300, 0xA5)});
  image.WriteTo(folder / "disc.adf");
  Disc disc(host);
  disc.TheDisc.OpenFile(folder / "disc.adf", kAdf, 80, 1, 16);
  EXPECT_EQ(ReadScreen(disc, Mode(0), sector, 300), Bytes(300, 0xA5));
  EXPECT_TRUE(ReadScreen(disc, Mode(0), sector, 0).empty());
  EXPECT_EQ(ReadScreen(disc, Mode(0), sector, 0xFFFFFFFF).size(), 20480U);
  EXPECT_EQ(ReadScreen(disc, Mode(4), sector, 0xFFFFFFFF).size(), 10240U);
  for (const std::int32_t outside : {1280, 0xFFFFFF}) {
    EXPECT_EQ(ReadScreen(disc, Mode(5), outside, 10240), Bytes(10240, 0));
  }
}

}  // namespace
}  // namespace sectorbox
