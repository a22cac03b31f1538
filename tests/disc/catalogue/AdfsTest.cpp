#include "disc/catalogue/Adfs.h"

#include <gtest/gtest.h>

#include <array>

#include "disc/catalogue/Directories.h"
#include "disc/format/LittleEndian.h"
#include "disc/format/Text.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class AdfsTest : public ::testing::Test {
 protected:
  void Open(const ImageBuilder& image) {
    image.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 40, 1, 16);
    ReadFreeMap(disc_);
  }
  void PokeText(std::int64_t at, const std::string& text) {
    for (const char c : text) disc_.TheDisc.Store(at++, static_cast<std::uint8_t>(c));
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(AdfsTest, EmptyDiscOf640SectorsShowsFreeAndUsedBytes) {
  Open(ImageBuilder(640));
  ShowFreeSpace(disc_);
  EXPECT_EQ(host_.Statuses.back(), " 162048 Bytes Free,  1792 Bytes Used");
}

TEST_F(AdfsTest, MoreFreeThanThereIsShowsAsNegativeUse) {
  ImageBuilder image(640);
  image.SetFreeRuns({{7, 700}});
  Open(image);
  ShowFreeSpace(disc_);
  EXPECT_EQ(host_.Statuses.back(), " 179200 Bytes Free, -15360 Bytes Used");
}

TEST_F(AdfsTest, ATenCharacterNameComesBackWhole) {
  ImageBuilder image(640);
  image.AddFile(2, {"ABCDEFGHIJ", {1}});
  Open(image);
  EXPECT_EQ(GetEntryName(disc_, 2, 0), "ABCDEFGHIJ");
  EXPECT_EQ(FindEntry(disc_, 2, "abcdefghij"), 0);
}

TEST_F(AdfsTest, ANamePaddedWithNulAloneKeepsThemAndIsNotFoundWithout) {
  Open(ImageBuilder(640));
  PokeText(517, std::string("ABC\0\0\0\0\0\0\0", 10));
  EXPECT_EQ(GetEntryName(disc_, 2, 0), std::string("ABC\0\0\0\0\0\0\0", 10));
  EXPECT_EQ(FindEntry(disc_, 2, "ABC"), -1);
}

TEST_F(AdfsTest, ATitlePaddedWithNulAloneIsCut) {
  Open(ImageBuilder(640));
  PokeText(512 + 1241, std::string("ABC\0\0", 5));
  EXPECT_EQ(GetDirTitle(disc_, 2), "ABC");
}

TEST_F(AdfsTest, ATitleOfNineteenCharactersComesBackWhole) {
  Open(ImageBuilder(640));
  PokeText(512 + 1241, "ABCDEFGHIJKLMNOPQRS");
  EXPECT_EQ(GetDirTitle(disc_, 2), "ABCDEFGHIJKLMNOPQRS");
}

TEST_F(AdfsTest, The47thEntryOccupiesOffsets1201To1226) {
  Open(ImageBuilder(640));
  PokeText(512 + 1201, std::string("LAST\r", 5));
  disc_.TheDisc.Store(512 + 1226, 0x42);
  disc_.TheDisc.Store(512 + 1227, 0xFF);
  const Entry last = DirectoryAt(disc_, 2).At(46);
  EXPECT_EQ(last.Name(), "LAST");
  EXPECT_EQ(last.Sequence(), 0x42);
}

TEST_F(AdfsTest, AFullDirectoryIsSearchedToItsLastSlotAndNotBeyond) {
  ImageBuilder image(640);
  for (int i = 0; i < 47; ++i) image.AddFile(2, {"F" + std::to_string(10 + i), {1}});
  Open(image);
  EXPECT_EQ(FindEntry(disc_, 2, "F56"), 46);
  EXPECT_EQ(FindEntry(disc_, 2, "F57"), -1);
}

TEST_F(AdfsTest, TheSearchEndsAtTheFirstEmptyEntry) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", {1}});
  image.AddFile(2, {"B", {1}});
  image.Poke(517, 0x80);  // the attribute bit doesn't count
  Open(image);
  EXPECT_EQ(FindEntry(disc_, 2, "B"), -1);
}

TEST_F(AdfsTest, GetEntrySectorGivesTheStartOrMinusOne) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", {1}});
  const auto start = image.AddFile(2, {"B", {1}});
  Open(image);
  EXPECT_EQ(GetEntrySector(disc_, 2, "b"), start);
  EXPECT_EQ(GetEntrySector(disc_, 2, "C"), -1);
}

TEST_F(AdfsTest, TheRootWithoutANameIsCalledDollarAndNoOtherDirectoryIs) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "D");
  image.Poke(512 + 1228, 0);
  image.Poke(dir * 256 + 1228, 13);
  Open(image);
  EXPECT_EQ(GetDirName(disc_, 2), "$");
  EXPECT_EQ(GetDirName(disc_, dir), "");
}

TEST_F(AdfsTest, ADirectorysNameIsReadWithoutTheAttributeBits) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "GAMES");
  Open(image);
  EXPECT_EQ(disc_.TheDisc.Fetch(dir * 256 + 1228), 'G' | 0x80);
  EXPECT_EQ(GetDirName(disc_, dir), "GAMES");
}

TEST_F(AdfsTest, NameBytesReadTheSameWithTheTopBitSet) {
  Open(ImageBuilder(640));
  PokeText(517, std::string("\xC1\x0D", 2));
  EXPECT_EQ(GetEntryName(disc_, 2, 0), "A");
  EXPECT_EQ(FindEntry(disc_, 2, "A"), 0);
}

TEST_F(AdfsTest, AttributesStandInTheOrderEDLWR) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", {1}, 0, 0, "LWR"});
  image.AddFile(2, {"B", {1}, 0, 0, "E"});
  image.AddDirectory(2, "C", "WR");
  image.AddFile(2, {"D", {1}, 0, 0, ""});
  Open(image);
  EXPECT_EQ(GetEntryAttributes(disc_, 2, 0), "LWR");
  EXPECT_EQ(GetEntryAttributes(disc_, 2, 1), "E");
  EXPECT_EQ(GetEntryAttributes(disc_, 2, 2), "DWR");
  EXPECT_EQ(GetEntryAttributes(disc_, 2, 3), "");
  const std::int64_t fourth = 512 + 5 + 3 * 26;
  for (int i = 0; i < 5; ++i) {
    disc_.TheDisc.Store(fourth + i, disc_.TheDisc.Fetch(fourth + i) | 0x80);
  }
  EXPECT_EQ(GetEntryAttributes(disc_, 2, 3), "EDLWR");
}

TEST_F(AdfsTest, HexadecimalIsUpperCaseMostSignificantFirst) {
  static constexpr std::array<std::uint8_t, 4> kBytes = {0xEF, 0xCD, 0xAB, 0x09};
  const std::span<const std::uint8_t> bytes(kBytes);
  EXPECT_EQ(Hex(ReadLittleEndian(bytes.first(1)), 2), "EF");
  EXPECT_EQ(Hex(ReadLittleEndian(bytes.first(3)), 6), "ABCDEF");
  EXPECT_EQ(Hex(ReadLittleEndian(bytes), 8), "09ABCDEF");
  EXPECT_EQ(Hex(0x1234567, 6), "234567");
}

TEST_F(AdfsTest, SequenceNumbersCountInDecimalAnd00Follows99) {
  EXPECT_EQ(NextSequence(0x00), 0x01);
  EXPECT_EQ(NextSequence(0x09), 0x10);
  EXPECT_EQ(NextSequence(0x58), 0x59);
  EXPECT_EQ(NextSequence(0x99), 0x00);
  EXPECT_EQ(NextSequence(0xFF), 0x66);  // 15 x 10 + 15 + 1 = 166
}

TEST_F(AdfsTest, TheChecksumIsThatOfTheBbc) {
  ImageBuilder image(640);
  image.SetFreeRuns({{10, 20}, {0x123, 0x45}, {0x1F0, 0x90}});
  Open(image);
  EXPECT_EQ(ReadMap(disc_).RightChecksum(0), image.Peek(255));
  EXPECT_EQ(ReadMap(disc_).RightChecksum(1), image.Peek(511));
}

TEST_F(AdfsTest, TheLastCarryOfTheChecksumIsLost) {
  Open(ImageBuilder(640));
  for (int i = 0; i < 255; ++i) disc_.TheDisc.Store(i, 0);
  EXPECT_EQ(ReadMap(disc_).RightChecksum(0), 255);
  disc_.TheDisc.Store(0, 1);  // 255 + 1 carries out of byte 0
  EXPECT_EQ(ReadMap(disc_).RightChecksum(0), 0);
  disc_.TheDisc.Store(0, 0);
  disc_.TheDisc.Store(1, 1);  // the same carry out of byte 1 is added to byte 0
  EXPECT_EQ(ReadMap(disc_).RightChecksum(0), 1);
}

TEST_F(AdfsTest, ADirectoryWithAWrongMarkAtItsEndReadsAsValid) {
  ImageBuilder image(640);
  image.Poke(512 + 1275, 'X');
  Open(image);
  EXPECT_TRUE(IsDirectory(disc_, 2));
  disc_.TheDisc.Store(513, 'X');
  EXPECT_FALSE(IsDirectory(disc_, 2));
}

TEST_F(AdfsTest, TheFreeListIsReadAsItStands) {
  ImageBuilder image(640);
  image.SetFreeRuns({{10, 20}, {100, 540}});
  image.Poke(255, 0);  // a wrong checksum passes without a word
  Open(image);
  ASSERT_EQ(disc_.FreeCount, 2);
  EXPECT_EQ(disc_.FreeStart[0], 10);
  EXPECT_EQ(disc_.FreeLen[0], 20);
  EXPECT_EQ(disc_.FreeStart[1], 100);
  EXPECT_EQ(disc_.FreeLen[1], 540);
}

TEST_F(AdfsTest, AnyEndPointerIsTakenToTheNearestThird) {
  Open(ImageBuilder(640));
  for (int value = 0; value < 256; ++value) {
    disc_.TheDisc.Store(format::kMapEnd, static_cast<std::uint8_t>(value));
    ReadFreeMap(disc_);
    const int nearest = value / 3 + (value % 3 == 2 ? 1 : 0);
    EXPECT_EQ(disc_.FreeCount, std::min(nearest, 83)) << value;
  }
}

TEST_F(AdfsTest, AFileOfNoLengthOwnsASector) {
  EXPECT_EQ(format::SectorsOfLength(0), 1);
  EXPECT_EQ(format::SectorsOfLength(1), 1);
  EXPECT_EQ(format::SectorsOfLength(256), 1);
  EXPECT_EQ(format::SectorsOfLength(257), 2);
  EXPECT_EQ(format::SectorsOfLength(0xFFFFFFFF), 0x1000000);
}

TEST_F(AdfsTest, HexadecimalTextIsReadUpToItsFirstOtherCharacter) {
  EXPECT_EQ(ParseHex("00FFxyz"), 255U);
  EXPECT_EQ(ParseHex("ffff1900"), 0xFFFF1900U);
  EXPECT_EQ(ParseHex(""), 0U);
}

}  // namespace
}  // namespace sectorbox
