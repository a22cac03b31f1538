// Floppy images: how they lie in their files.

#include <gtest/gtest.h>

#include "disc/catalogue/Adfs.h"
#include "disc/store/Disc.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class FloppyStore : public ::testing::Test {
 protected:
  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};

  void OpenAdf40(const std::string& path) {
    disc_.TheDisc.OpenFile(path, kAdf, 40, 1, 16);
    ReadFreeMap(disc_);
  }
  void OpenAdl80(const std::string& path) {
    disc_.TheDisc.OpenFile(path, kAdl, 80, 2, 16);
    ReadFreeMap(disc_);
  }
  // Every sector says which one it is.
  static ImageBuilder Numbered(std::int32_t sectors) {
    ImageBuilder image(sectors);
    for (std::int32_t s = 7; s < sectors; ++s) {
      image.Poke(s * 256, static_cast<std::uint8_t>(s));
      image.Poke(s * 256 + 1, static_cast<std::uint8_t>(s / 256));
    }
    return image;
  }
};

TEST_F(FloppyStore, AnAdfEndsWhereItsLastFreeRunBeginsAndComesBackWhole) {
  ImageBuilder image = Numbered(640);
  image.SetFreeRuns({{100, 540}});
  image.WriteTo(folder_ / "x.adf");
  OpenAdf40(folder_ / "x.adf");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.adf").size(), 25600U);
  OpenAdf40(folder_ / "x.adf");
  EXPECT_EQ(disc_.TheDisc.ImageBytes(), 640U * 256);
  EXPECT_EQ(disc_.TheDisc.Fetch(99 * 256), 99);
  EXPECT_EQ(disc_.TheDisc.Fetch(100 * 256), 0);
}

TEST_F(FloppyStore, APaddedAdfIsWrittenInFull) {
  host_.Pad = true;
  ImageBuilder image = Numbered(640);
  image.WriteTo(folder_ / "x.adf");
  OpenAdf40(folder_ / "x.adf");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), image.Bytes());
}

TEST_F(FloppyStore, AnAdfIsNotTrimmedWhereThatWouldCutMoreThanFreeSpace) {
  const std::vector<std::pair<const char*, std::vector<std::pair<int, int>>>> cases = {
      {"no run", {}},
      {"the last run doesn't reach the end", {{100, 200}}},
      {"the last run begins past the end", {{700, 10}}},
      {"the last run takes the root in", {{3, 637}}},
  };
  for (const auto& [name, runs] : cases) {
    SCOPED_TRACE(name);
    ImageBuilder image = Numbered(640);
    image.SetFreeRuns({runs.begin(), runs.end()});
    image.WriteTo(folder_ / "x.adf");
    OpenAdf40(folder_ / "x.adf");
    disc_.TheDisc.CloseFile();
    EXPECT_EQ(ReadAll(folder_ / "x.adf"), image.Bytes());
  }
}

TEST_F(FloppyStore, AnAdfLongerThanTheDiscIsReadAsFarAsTheDiscGoes) {
  std::vector<std::uint8_t> bytes(200000, 0x55);
  WriteAll(folder_ / "x.adf", bytes);
  OpenAdf40(folder_ / "x.adf");
  EXPECT_EQ(disc_.TheDisc.ImageBytes(), 640U * 256);
  EXPECT_EQ(disc_.TheDisc.Fetch(640 * 256 - 1), 0x55);
  EXPECT_EQ(disc_.TheDisc.Fetch(640 * 256), 0);
}

TEST_F(FloppyStore, AnAdfThatDoesNotExistIsAllZeroAndNotMadeByOpening) {
  disc_.ImageChanged = true;
  OpenAdf40(folder_ / "none.adf");
  EXPECT_FALSE(disc_.ImageChanged);
  EXPECT_EQ(disc_.TheDisc.Fetch(0), 0);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "none.adf"));
}

TEST_F(FloppyStore, ADoubleSidedDiscGoesRoundByteForByteInterleavedOrNot) {
  const ImageBuilder image = Numbered(2560);
  for (const bool interleave : {true, false}) {
    SCOPED_TRACE(interleave);
    host_.Interleave = interleave;
    image.WriteInterleavedTo(folder_ / "x.adl");
    const auto before = ReadAll(folder_ / "x.adl");
    OpenAdl80(folder_ / "x.adl");
    disc_.TheDisc.CloseFile();
    EXPECT_EQ(ReadAll(folder_ / "x.adl"), before);
  }
}

TEST_F(FloppyStore, InterleavedTracksAlternateBetweenTheSides) {
  const ImageBuilder image = Numbered(2560);
  image.WriteInterleavedTo(folder_ / "x.adl");
  OpenAdl80(folder_ / "x.adl");
  EXPECT_EQ(disc_.TheDisc.Fetch(16 * 256), 16);             // file track 2
  EXPECT_EQ(disc_.TheDisc.Fetch(80 * 16 * 256), 0x00);      // file track 1, sector 1280
  EXPECT_EQ(disc_.TheDisc.Fetch(80 * 16 * 256 + 1), 0x05);  // high byte of 1280
  EXPECT_EQ(disc_.TheDisc.Fetch(2559 * 256), 0xFF);
}

TEST_F(FloppyStore, ASingleSidedAdlIsPermutedOnLoadAndNotOnStore) {
  const ImageBuilder image = Numbered(1280);
  image.WriteTo(folder_ / "x.adl");
  OpenAdl80(folder_ / "x.adl");
  // File track 1 went to side 1.
  EXPECT_EQ(disc_.TheDisc.Fetch(80 * 16 * 256), 16);
  EXPECT_EQ(disc_.TheDisc.Fetch(16 * 256), 32);
  disc_.TheDisc.CloseFile();
  const auto stored = ReadAll(folder_ / "x.adl");
  ASSERT_EQ(stored.size(), 1280U * 256);
  EXPECT_EQ(stored[16 * 256], 32);
}

TEST_F(FloppyStore, PadHasNoEffectOnAnAdl) {
  host_.Pad = true;
  ImageBuilder(2560).WriteInterleavedTo(folder_ / "x.adl");
  OpenAdl80(folder_ / "x.adl");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.adl").size(), 2560U * 256);
}

TEST_F(FloppyStore, AnAdlIsNeverStoredWithMoreThanIsInMemory) {
  ImageBuilder image(2560);
  image.Poke(254, 0xFF);
  image.WriteInterleavedTo(folder_ / "x.adl");
  OpenAdl80(folder_ / "x.adl");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.adl"), image.InterleavedBytes());
}

TEST_F(FloppyStore, AnAdlWhoseMapHasNoRoomForTheRootIsStoredWhole) {
  for (const int sectors : {0, 6, 7, 8}) {
    SCOPED_TRACE(sectors);
    ImageBuilder image = Numbered(2560);
    image.Poke(252, static_cast<std::uint8_t>(sectors));
    image.Poke(253, 0);
    image.WriteInterleavedTo(folder_ / "x.adl");
    OpenAdl80(folder_ / "x.adl");
    disc_.TheDisc.CloseFile();
    EXPECT_EQ(ReadAll(folder_ / "x.adl"), image.InterleavedBytes());
  }
}

TEST_F(FloppyStore, AnAdlOfAnOddSizeIsStoredWithItsTracksToTheNearest) {
  const std::vector<std::pair<std::size_t, std::size_t>> tracksOfSizes = {
      {2550, 159}, {2552, 160}, {2553, 160}, {1288, 80}, {1289, 81}, {24, 2}, {9, 1}};
  for (const auto& [sectors, tracks] : tracksOfSizes) {
    SCOPED_TRACE(sectors);
    ImageBuilder image = Numbered(2560);
    image.Poke(252, static_cast<std::uint8_t>(sectors));
    image.Poke(253, static_cast<std::uint8_t>(sectors / 256));
    image.WriteInterleavedTo(folder_ / "x.adl");
    OpenAdl80(folder_ / "x.adl");
    disc_.TheDisc.CloseFile();
    // What the file is longer than its tracks are zeros.
    const auto& from = tracks > 80 ? image.InterleavedBytes() : image.Bytes();
    std::vector<std::uint8_t> expected(from.begin(),
                                       from.begin() + static_cast<std::ptrdiff_t>(tracks * 4096));
    expected.resize(sectors * 256);
    EXPECT_EQ(ReadAll(folder_ / "x.adl"), expected);
  }
}

TEST_F(FloppyStore, FlushingBringsTheFileUpToDateAndReloadsTheStoreFromIt) {
  ImageBuilder image = Numbered(640);
  image.SetFreeRuns({{100, 540}});
  image.WriteTo(folder_ / "x.adf");
  OpenAdf40(folder_ / "x.adf");
  disc_.TheDisc.Store(3000, 77);
  disc_.TheDisc.Store(100 * 256, 78);
  disc_.TheDisc.Flush();
  EXPECT_EQ(ReadAll(folder_ / "x.adf").at(3000), 77);
  EXPECT_EQ(disc_.TheDisc.Fetch(3000), 77);
  EXPECT_EQ(disc_.TheDisc.Fetch(100 * 256), 0) << "free space isn't stored";
}

TEST_F(FloppyStore, OpeningSomethingElseDropsAFloppyUnsaved) {
  ImageBuilder image(640);
  image.WriteTo(folder_ / "x.adf");
  OpenAdf40(folder_ / "x.adf");
  disc_.TheDisc.Store(3000, 1);
  disc_.TheDisc.OpenFile(folder_ / "y.adf", kAdf, 40, 1, 16);
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), image.Bytes());
}

}  // namespace
}  // namespace sectorbox
