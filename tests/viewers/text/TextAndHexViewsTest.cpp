#include "viewers/text/TextAndHexViews.h"

#include "disc/catalogue/Directories.h"
#include "tests/viewers/text/ViewTest.h"
#include "viewers/text/ByteReader.h"

namespace sectorbox {
namespace {

using testing::Bytes;
using testing::BytesOf;
using testing::CollectingView;
using testing::ImageBuilder;

class TextAndHexViewsTest : public testing::ViewTest {
 protected:
  std::string Hex(const Bytes& bytes) {
    ShowHex(disc_, RowOf(bytes, "00000000", "00000000"), view_);
    return view_.Text;
  }
  std::string TextOf(const std::string& bytes) {
    ShowText(disc_, RowOf(BytesOf(bytes), "00000000", "00000000"), view_);
    return view_.Text;
  }
};

// The root as a row.
ListRow RootRow() {
  Entry root;
  root.SetName("$");
  root.Set(Attribute::kDirectory, true);
  root.SetStart(2);
  return MakeRow(root);
}

TEST_F(TextAndHexViewsTest, SixteenBytesAreOneHexLineAndNoEmptyOneFollows) {
  EXPECT_EQ(Hex(BytesOf("0123456789ABCDEF")),
            "000000 : 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  0123456789ABCDEF\r\n");
  EXPECT_EQ(view_.Text.size(), 74U + 2);
  EXPECT_EQ(view_.Texts.size(), 1U);
}

TEST_F(TextAndHexViewsTest, AFileOfACardIsShownAndIsNoLongerThanThePartition) {
  ImageBuilder image(kSectors);
  image.AddFile(2, {"FILE", BytesOf("Hello")});
  Bytes card;
  for (const std::uint8_t byte : image.Bytes()) card.insert(card.end(), {byte, 0xC5});
  testing::WriteAll(folder_ / "card", card);
  disc_.TheDisc.OpenFile((folder_ / "card") + ",0", kCF, 0, 0, 0);
  ShowHex(disc_, ReadRow(disc_, 2, 0), view_);
  EXPECT_EQ(view_.Text.substr(0, 24), "000000 : 48 65 6C 6C 6F ");
  Entry tooLong = DirectoryAt(disc_, 2).At(0);
  tooLong.SetLength(0xFFFFFFFF);
  EXPECT_EQ(ExtentOf(disc_, MakeRow(tooLong)).Length, kSectors * 256);
}

TEST_F(TextAndHexViewsTest, TheSeventeenthByteKeepsItsCharacterInTheCharacterColumn) {
  const std::string text = Hex(BytesOf("0123456789ABCDEFz"));
  EXPECT_EQ(text.substr(76), "000010 : 7A " + std::string(45, ' ') + " z\r\n");
  EXPECT_EQ(text.find('z', 76) - 76, 58U);
}

TEST_F(TextAndHexViewsTest, TheCharacterColumnDropsTopBitsAndDotsWhatIsNoCharacter) {
  const std::string text = Hex({31, 32, 126, 127, 0xFF, 0xA0, 0xC1, 0, 13});
  EXPECT_EQ(text.substr(58), ". ~.. A..\r\n");
}

TEST_F(TextAndHexViewsTest, AnEmptyFileGivesEmptyViews) {
  EXPECT_EQ(Hex({}), "");
  EXPECT_TRUE(view_.Finished);
  EXPECT_EQ(TextOf(""), "");
  EXPECT_TRUE(view_.Texts.empty());
}

TEST_F(TextAndHexViewsTest, HexOfADirectoryShowsItsFiveSectors) {
  Open(ImageBuilder(kSectors));
  ShowHex(disc_, RootRow(), view_);
  EXPECT_EQ(view_.Texts.size(), 80U);
  EXPECT_EQ(view_.Texts[0].substr(0, 24), "000000 : 01 48 75 67 6F ");
  EXPECT_EQ(view_.Texts[79].substr(0, 9), "0004F0 : ");
}

TEST_F(TextAndHexViewsTest, OnlyTheDirectoryAttributeMakesADirectory) {
  ListRow row = RowOf(BytesOf("abc"), "000002", "");
  row.Columns[kColAttr] = "D";
  ShowHex(disc_, row, view_);
  EXPECT_EQ(view_.Texts.size(), 1U);
}

TEST_F(TextAndHexViewsTest, TheHexOffsetCountsFromTheFilesStartAndKeepsItsLastSixDigits) {
  // A hard disc of a little over 16 MB; only its last line is of interest, so the file is sparse.
  constexpr std::int64_t kLength = 0x1000010;
  {
    std::ofstream file(folder_ / "big.dat", std::ios::binary);
    file.seekp(0x200 + kLength - 1);
    file.put('!');
  }
  disc_.TheDisc.OpenFile(folder_ / "big.dat", kDat, 1, 1, 1);
  Entry big;
  big.SetName("BIG");
  big.SetLength(0x1000010);
  big.SetStart(2);
  ShowHex(disc_, MakeRow(big), view_);
  EXPECT_EQ(view_.Texts.size(), 0x100001U);
  EXPECT_EQ(view_.Texts[0xFFFFF].substr(0, 9), "FFFFF0 : ");
  EXPECT_EQ(
      view_.Texts.back(), "000000 : " + [] {
        std::string zeros;
        for (int i = 0; i < 15; ++i) zeros += "00 ";
        return zeros + "21  " + std::string(15, '.') + "!\r\n";
      }());
}

TEST_F(TextAndHexViewsTest, ALengthBeyondTheImagesCountsAsTheImages) {
  ListRow row = RowOf(BytesOf("abc"), "", "");
  row.Item.SetLength(0xFFFFFFFF);
  ShowHex(disc_, row, view_);
  EXPECT_EQ(view_.Texts.size(), 640U * 16);
}

TEST_F(TextAndHexViewsTest, AFileThatReachesPastTheImageShowsZerosThere) {
  ListRow row = RowOf(BytesOf("abc"), "", "");
  row.Item.SetLength(0x110);
  row.Item.SetStart(0x27F);
  ShowHex(disc_, row, view_);
  EXPECT_EQ(view_.Texts.size(), 17U);
  EXPECT_EQ(view_.Texts.back().substr(0, 15), "000100 : 00 00 ");
}

TEST_F(TextAndHexViewsTest, ClosingTheWindowStopsAHexDumpAtTheNextLine) {
  int lines = 0;
  view_.OnYield = [&] {
    if (++lines == 3) view_.Finished = true;
  };
  Hex(Bytes(4096));
  EXPECT_EQ(view_.Texts.size(), 3U);
  EXPECT_EQ(view_.Closed, 1);
  EXPECT_TRUE(view_.Finished);
}

TEST_F(TextAndHexViewsTest, AChangeOfTheDiscWhileAViewYieldsShowsInTheNextLine) {
  const ListRow row = RowOf(BytesOf("one\rtwo\r"), "", "");
  view_.OnYield = [&] { disc_.TheDisc.Store(SectorOffset(row.StartSector()) + 4, 'T'); };
  ShowText(disc_, row, view_);
  EXPECT_EQ(view_.Plain(), "one\nTwo\n");
}

TEST_F(TextAndHexViewsTest, TextIsShownALineATime) {
  EXPECT_EQ(TextOf("one\rtwo\rthree"), "one\r\ntwo\r\nthree");
  EXPECT_EQ(view_.Texts.size(), 3U);
  EXPECT_EQ(view_.Captions, std::vector<std::string>{"View File - FILE"});
  EXPECT_EQ(view_.DefaultName, "FILE");
}

TEST_F(TextAndHexViewsTest, ATextThatEndsInACarriageReturnLeavesNothingOver) {
  EXPECT_EQ(TextOf("one\r"), "one\r\n");
  EXPECT_EQ(view_.Texts.size(), 1U);
}

TEST_F(TextAndHexViewsTest, LineFeedsAreDropped) {
  EXPECT_EQ(TextOf("a\nb\r\nc\n\rd"), "ab\r\nc\r\nd");
}

TEST_F(TextAndHexViewsTest, ATextOfLineFeedsAloneGivesAnEmptyView) {
  EXPECT_EQ(TextOf("\n\n\n"), "");
  EXPECT_TRUE(view_.Texts.empty());
}

TEST_F(TextAndHexViewsTest, ATextWithoutCarriageReturnsComesInOnePiece) {
  const std::string text(70000, 'x');
  EXPECT_EQ(TextOf(text), text);
  EXPECT_EQ(view_.Texts.size(), 1U);
}

TEST_F(TextAndHexViewsTest, TextPassesControlCodesAndTopBitBytes) {
  const std::string text("\0\x07\x1B\x7F\x80\xA0\xFF", 7);
  EXPECT_EQ(TextOf(text), text);
}

TEST_F(TextAndHexViewsTest, ClosingTheWindowTakesEffectAtTheEndOfAText) {
  view_.OnYield = [&] { view_.Finished = true; };
  EXPECT_EQ(TextOf("one\rtwo\rthree"), "one\r\ntwo\r\nthree");
  EXPECT_EQ(view_.Closed, 1);
}

TEST_F(TextAndHexViewsTest, ADirectorysRowAsTextIsEmpty) {
  Open(ImageBuilder(kSectors));
  ShowText(disc_, RootRow(), view_);
  EXPECT_EQ(view_.Text, "");
}

}  // namespace
}  // namespace sectorbox
