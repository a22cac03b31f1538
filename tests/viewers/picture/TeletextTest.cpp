#include "viewers/picture/Teletext.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"
#include "tests/viewers/picture/TeletextChecks.h"

namespace sectorbox {
namespace {

using testing::DrawRows;
using testing::ExpectCell;
using testing::kLower;
using testing::kUpper;

bool IsPhysical(Colour colour) {
  return std::find(kPhysicalColours.begin(), kPhysicalColours.end(), colour) !=
         kPhysicalColours.end();
}

TEST(TeletextTest, TextIsWhiteOnBlackInCellsOfTwelveByTwenty) {
  const Picture picture = DrawRows({"Hello", "BBC"});
  EXPECT_EQ(picture.Width, 480);
  EXPECT_EQ(picture.Height, 40);
  ExpectCell(picture, 0, 0, {'H'});
  ExpectCell(picture, 4, 0, {'o'});
  ExpectCell(picture, 2, 1, {'C'});
  ExpectCell(picture, 39, 1, {' '});
}

TEST(TeletextTest, EveryCharacterIsDrawnFromItsOwnPattern) {
  for (int code = 32; code < 128; ++code) {
    ExpectCell(DrawRows({std::string(3, static_cast<char>(code))}), 1, 0, {code});
  }
}

TEST(TeletextTest, TheTopBitOfACharacterIsIgnored) {
  for (int code = 160; code < 256; ++code) {
    ExpectCell(DrawRows({std::string(1, static_cast<char>(code))}), 0, 0, {code - 128});
  }
}

TEST(TeletextTest, ATextColourShowsAsABlankAndColoursWhatFollows) {
  for (int colour = 1; colour <= 7; ++colour) {
    const std::string row = {'A', static_cast<char>(128 + colour), 'B', 'C'};
    const Picture picture = DrawRows({row, "D"});
    const Colour fore = kPhysicalColours[static_cast<std::size_t>(colour)];
    ExpectCell(picture, 0, 0, {'A'});
    ExpectCell(picture, 1, 0, {' '});
    ExpectCell(picture, 2, 0, {'B', fore});
    ExpectCell(picture, 3, 0, {'C', fore});
    ExpectCell(picture, 0, 1, {'D'});
  }
}

TEST(TeletextTest, AMosaicColourTurnsGraphicsOnAndCapitalsShowThrough) {
  for (int colour = 1; colour <= 7; ++colour) {
    const std::string row = {static_cast<char>(144 + colour), '7', 'G', 'h'};
    const Picture picture = DrawRows({row});
    const Colour fore = kPhysicalColours[static_cast<std::size_t>(colour)];
    ExpectCell(picture, 1, 0, {'7', fore, kBlack, kContiguous});
    ExpectCell(picture, 2, 0, {'G', fore});
    ExpectCell(picture, 3, 0, {'h', fore, kBlack, kContiguous});
  }
}

TEST(TeletextTest, EveryMosaicIsDrawnInBothForms) {
  for (int code = 32; code < 128; ++code) {
    const auto c = static_cast<char>(code);
    const Picture picture = DrawRows({{'\x97', c, '\x9A', c, '\x99', c}});
    ExpectCell(picture, 1, 0, {code, kWhite, kBlack, kContiguous});
    ExpectCell(picture, 3, 0, {code, kWhite, kBlack, kSeparated});
    ExpectCell(picture, 5, 0, {code, kWhite, kBlack, kContiguous});
  }
}

TEST(TeletextTest, ATextColourTurnsGraphicsOff) {
  const Picture picture =
      DrawRows({"\x91"
                "5\x82"
                "5"});
  ExpectCell(picture, 1, 0, {'5', kRed, kBlack, kContiguous});
  ExpectCell(picture, 3, 0, {'5', kGreen});
}

TEST(TeletextTest, SeparatedOutlastsAStretchOfText) {
  const Picture picture = DrawRows({"\x9A\x81x\x93s"});
  ExpectCell(picture, 2, 0, {'x', kRed});
  ExpectCell(picture, 4, 0, {'s', kYellow, kBlack, kSeparated});
}

TEST(TeletextTest, CodesBelow32AreTheSameControlCodes) {
  for (int code = 0; code < 32; ++code) {
    const std::string low = {'A', static_cast<char>(code), '5', 'q'};
    const std::string high = {'A', static_cast<char>(code + 128), '5', 'q'};
    EXPECT_EQ(DrawRows({"\x91", low, low}, 1).Pixels, DrawRows({"\x91", high, high}, 1).Pixels)
        << code;
  }
}

TEST(TeletextTest, ALineEndInATextFileTurnsOnDoubleHeight) {
  const Picture picture = DrawRows({"\rA", "\rA"});
  ExpectCell(picture, 1, 0, {'A', kWhite, kBlack, kTextSet, kUpper});
  ExpectCell(picture, 1, 1, {'A', kWhite, kBlack, kTextSet, kLower});
}

TEST(TeletextTest, CodesWithoutAMeaningShowAsBlanksAndChangeNothing) {
  for (const int code : {128, 138, 139, 142, 143, 144, 155}) {
    const std::string row = {'\x91', '5', static_cast<char>(code), '5',
                             '\x83', 'a', static_cast<char>(code), 'b'};
    const Picture picture = DrawRows({row}, 1);
    ExpectCell(picture, 2, 0, {' '});
    ExpectCell(picture, 3, 0, {'5', kRed, kBlack, kContiguous});
    ExpectCell(picture, 6, 0, {' '});
    ExpectCell(picture, 7, 0, {'b', kYellow});
  }
}

TEST(TeletextTest, FlashingTextIsBackgroundInPhase0AndVisibleInPhase1) {
  const std::string row = "\x84\x9D\x83\x88X\x89Y";
  const Picture hidden = DrawRows({row}, 0);
  ExpectCell(hidden, 4, 0, {'X', kBlue, kBlue});
  ExpectCell(hidden, 6, 0, {'Y', kYellow, kBlue});
  const Picture shown = DrawRows({row}, 1);
  ExpectCell(shown, 4, 0, {'X', kYellow, kBlue});
  ExpectCell(shown, 6, 0, {'Y', kYellow, kBlue});
}

TEST(TeletextTest, ANewBackgroundShowsInItsOwnCellAndANewForegroundInTheNext) {
  const Picture picture = DrawRows({"\x81\x9D\x84Z\x9CW"});
  ExpectCell(picture, 0, 0, {' ', kWhite, kBlack});
  ExpectCell(picture, 1, 0, {' ', kRed, kRed});
  ExpectCell(picture, 2, 0, {' ', kRed, kRed});
  ExpectCell(picture, 3, 0, {'Z', kBlue, kRed});
  ExpectCell(picture, 4, 0, {' ', kBlue, kBlack});
  ExpectCell(picture, 5, 0, {'W', kBlue, kBlack});
}

TEST(TeletextTest, ConcealHidesTheMosaicHeldInItsOwnCellOnly) {
  const Picture picture = DrawRows({"\x91\x9E\x7F\x98\x7F"});
  ExpectCell(picture, 3, 0, {' '});
  ExpectCell(picture, 4, 0, {127, kRed, kBlack, kContiguous});
  const Picture text = DrawRows({"\x98Hid"});
  ExpectCell(text, 1, 0, {'H'});
}

TEST(TeletextTest, HoldRepeatsTheLastMosaicInTheCellsOfControlCodes) {
  const Picture picture = DrawRows({"\x91\x9E\x35\x92\x93\x9F\x94"});
  ExpectCell(picture, 3, 0, {0x35, kRed, kBlack, kContiguous});
  ExpectCell(picture, 4, 0, {0x35, kGreen, kBlack, kContiguous});
  ExpectCell(picture, 5, 0, {' '});
  ExpectCell(picture, 6, 0, {' '});
}

TEST(TeletextTest, HoldShowsItsMosaicFromTheCellThatTurnsItOn) {
  ExpectCell(DrawRows({"\x92\x35\x9E"}), 2, 0, {0x35, kGreen, kBlack, kContiguous});
}

TEST(TeletextTest, HoldWithoutAMosaicBeforeItShowsABlank) {
  ExpectCell(DrawRows({"\x91\x9E\x92"}), 2, 0, {' '});
}

TEST(TeletextTest, HoldDoesNotRememberCapitalsOrText) {
  ExpectCell(DrawRows({"\x91\x9EG\x92"}), 3, 0, {' '});
  ExpectCell(DrawRows({"5\x91\x9E\x92"}), 3, 0, {' '});
}

TEST(TeletextTest, HoldIsSilentWhileTextIsOn) {
  ExpectCell(DrawRows({"\x91\x35\x9E\x81\x82"}), 4, 0, {' '});
}

TEST(TeletextTest, AHeldMosaicTakesTheFormThatItsControlCodeSets) {
  const Picture picture = DrawRows({"\x91\x9E\x7F\x9A"});
  ExpectCell(picture, 3, 0, {127, kRed, kBlack, kSeparated});
}

TEST(TeletextTest, HeldMosaicsOfOneRowAreForgottenInTheNext) {
  ExpectCell(DrawRows({"\x91\x9E\x7F", "\x91\x9E\x92"}), 2, 1, {' '});
}

TEST(TeletextTest, DoubleHeightShowsUpperHalvesAboveLowerHalvesInEveryPairOfRows) {
  for (std::size_t top = 0; top + 1 < 25; ++top) {
    std::vector<std::string> rows(25, "plain");
    rows[top] =
        "s\x8D"
        "Tall";
    rows[top + 1] =
        "s\x8D"
        "Tall";
    const Picture picture = DrawRows(rows);
    const int row = static_cast<int>(top);
    ExpectCell(picture, 0, row, {'s'});
    ExpectCell(picture, 2, row, {'T', kWhite, kBlack, kTextSet, kUpper});
    ExpectCell(picture, 0, row + 1, {' '});
    ExpectCell(picture, 2, row + 1, {'T', kWhite, kBlack, kTextSet, kLower});
    if (row > 0) ExpectCell(picture, 1, row - 1, {'l'});
    if (row + 2 < 25) ExpectCell(picture, 1, row + 2, {'l'});
  }
}

TEST(TeletextTest, DoubleHeightStretchesMosaicsToo) {
  const std::string row = "\x91\x8D\x75\x9A\x75";
  const Picture picture = DrawRows({row, row});
  ExpectCell(picture, 2, 0, {0x75, kRed, kBlack, kContiguous, kUpper});
  ExpectCell(picture, 2, 1, {0x75, kRed, kBlack, kContiguous, kLower});
  ExpectCell(picture, 4, 0, {0x75, kRed, kBlack, kSeparated, kUpper});
  ExpectCell(picture, 4, 1, {0x75, kRed, kBlack, kSeparated, kLower});
}

TEST(TeletextTest, PlainCharactersBelowADoubleHeightRowAreBlanksWhateverTheyAre) {
  std::string below;
  for (int code = 32; code < 72; ++code) below += static_cast<char>(code);
  const Picture picture = DrawRows({"\x8D", below, "after"});
  for (int column = 0; column < 40; ++column) ExpectCell(picture, column, 1, {' '});
  ExpectCell(picture, 0, 2, {'a'});
}

TEST(TeletextTest, ColoursAndBackgroundsStillWorkInABottomHalf) {
  const Picture picture = DrawRows({"\x8DX", "\x81\x9D\x83\x8DX\x8CY"});
  ExpectCell(picture, 1, 1, {' ', kRed, kRed});
  ExpectCell(picture, 4, 1, {'X', kYellow, kRed, kTextSet, kLower});
  ExpectCell(picture, 6, 1, {' ', kYellow, kRed});
}

TEST(TeletextTest, ADoubleHeightCodeInABottomHalfStartsNoOtherPair) {
  const Picture picture =
      DrawRows({"\x8D"
                "A",
                "\x8D"
                "A",
                "\x8D"
                "A",
                "\x8D"
                "A"});
  for (int row = 0; row < 4; ++row) {
    ExpectCell(picture, 1, row, {'A', kWhite, kBlack, kTextSet, row % 2 == 0 ? kUpper : kLower});
  }
}

TEST(TeletextTest, NormalHeightEndsDoubleHeightWithinTheRow) {
  const Picture picture =
      DrawRows({"\x8D"
                "A\x8C"
                "B",
                "\x8D"
                "A\x8C"
                "B"});
  ExpectCell(picture, 1, 0, {'A', kWhite, kBlack, kTextSet, kUpper});
  ExpectCell(picture, 3, 0, {'B'});
  ExpectCell(picture, 3, 1, {' '});
}

TEST(TeletextTest, AHeldMosaicInABottomHalfIsBlankUnlessDoubleHeight) {
  const Picture picture = DrawRows({"\x8D", "\x91\x9E\x7F\x92"});
  ExpectCell(picture, 3, 1, {' '});
}

TEST(TeletextTest, AllStateButTheBottomHalfStartsAnewInEachRow) {
  const Picture picture = DrawRows({"\x81\x9D\x83\x88\x9A\x91\x9E\x7F", "5x"}, 0);
  ExpectCell(picture, 0, 1, {'5'});
  ExpectCell(picture, 1, 1, {'x'});
}

TEST(TeletextTest, APageWithoutARowIsFourBlackLines) {
  for (const std::size_t bytes : {0U, 1U, 39U}) {
    const Picture picture =
        DrawTeletext(std::vector<std::uint8_t>(bytes, 127), testing::OddFont(), 0);
    EXPECT_EQ(picture.Width, 480);
    EXPECT_EQ(picture.Height, 4);
    EXPECT_EQ(picture.Pixels, std::vector<Colour>(480 * 4, kBlack));
  }
}

TEST(TeletextTest, ArbitraryCodesDrawAWholePageInTheEightColours) {
  std::vector<std::uint8_t> codes(40 * 25);
  for (unsigned seed = 0; seed < 200; ++seed) {
    unsigned state = seed * 2654435761U + 1;
    for (auto& code : codes)
      code = static_cast<std::uint8_t>((state = state * 1664525U + 1013904223U) >> 24);
    const Picture picture = DrawTeletext(codes, testing::OddFont(), seed % 2);
    ASSERT_EQ(picture.Pixels.size(), 480U * 500U);
    ASSERT_TRUE(std::all_of(picture.Pixels.begin(), picture.Pixels.end(), IsPhysical)) << seed;
  }
}

TEST(TeletextLayoutTest, TheLengthTellsRowsAndOffset) {
  const struct {
    std::uint32_t Size;
    int Rows, Offset;
  } cases[] = {{0, 0, 104},     {39, 0, 104},         {40, 1, 104},    {79, 1, 104},
               {959, 23, 104},  {960, 24, 0},         {961, 24, 104},  {1000, 25, 104},
               {1022, 25, 104}, {1023, 25, 0},        {1024, 25, 104}, {1025, 25, 104},
               {8192, 25, 104}, {0xFFFFFFFF, 25, 104}};
  for (const auto& c : cases) {
    const TeletextLayout layout = FindTeletextLayout(c.Size);
    EXPECT_EQ(layout.Rows, c.Rows) << c.Size;
    EXPECT_EQ(layout.Offset, c.Offset) << c.Size;
  }
}

class TeletextPageTest : public ::testing::Test {
 protected:
  void Open(const testing::ImageBuilder& image) {
    image.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 80, 1, 16);
  }
  static std::vector<std::uint8_t> Counting(std::size_t bytes) {
    std::vector<std::uint8_t> all(bytes);
    for (std::size_t i = 0; i < bytes; ++i) all[i] = static_cast<std::uint8_t>(i % 251);
    return all;
  }

  testing::TempFolder folder_;
  testing::ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(TeletextPageTest, AFileOf960BytesIsReadFromItsFirstByte) {
  testing::ImageBuilder image(1280);
  const auto bytes = Counting(960);
  const std::int32_t sector = image.AddFile(2, {"PAGE", bytes});
  Open(image);
  EXPECT_EQ(ReadTeletextPage(disc_, sector, 960), bytes);
}

TEST_F(TeletextPageTest, AFileOf1000BytesIsReadFrom104AndItsLastRowsLieBeyondTheFile) {
  testing::ImageBuilder image(1280);
  const auto bytes = Counting(1000);
  const std::int32_t sector = image.AddFile(2, {"PAGE", bytes});
  image.AddFile(2, {"ZNEXT", std::vector<std::uint8_t>(200, 'N')});
  Open(image);
  std::vector<std::uint8_t> expected(bytes.begin() + 104, bytes.end());
  expected.resize(1024 - 104, 0);  // the file's last sector is filled up with zeros
  expected.resize(1000, 'N');      // and then comes the next file
  EXPECT_EQ(ReadTeletextPage(disc_, sector, 1000), expected);
}

TEST_F(TeletextPageTest, PastTheImagesEndThePageIsZeros) {
  testing::ImageBuilder image(1280);
  Open(image);
  for (const std::int32_t sector : {1280, 0xFFFFFF}) {
    EXPECT_EQ(ReadTeletextPage(disc_, sector, 1024), std::vector<std::uint8_t>(1000, 0));
  }
  EXPECT_EQ(ReadTeletextPage(disc_, 1279, 0xFFFFFFFF).size(), 1000U);
}

TEST_F(TeletextPageTest, AFileOfUnder40BytesHasNoCodes) {
  testing::ImageBuilder image(1280);
  const std::int32_t sector = image.AddFile(2, {"TINY", Counting(39)});
  Open(image);
  EXPECT_TRUE(ReadTeletextPage(disc_, sector, 39).empty());
}

}  // namespace
}  // namespace sectorbox
