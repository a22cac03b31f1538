// Hard disc images: the two cached blocks over a file.

#include <gtest/gtest.h>

#include "disc/host/HostError.h"
#include "disc/store/Disc.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class HardDiscStore : public ::testing::Test {
 protected:
  // Four blocks, each filled with its number plus one.
  HardDiscStore() {
    std::vector<std::uint8_t> bytes;
    for (int block = 0; block < 4; ++block) {
      bytes.insert(bytes.end(), 1024, static_cast<std::uint8_t>(block + 1));
    }
    WriteAll(path_, bytes);
    disc_.TheDisc.OpenFile(path_, kDat, 1, 4, 33);
  }
  // Behind the store's back: what it reads anew shows it.
  void Change(std::size_t at, std::uint8_t value) {
    auto bytes = ReadAll(path_);
    bytes[at] = value;
    WriteAll(path_, bytes);
  }

  TempFolder folder_;
  std::string path_ = folder_ / "x.dat";
  ScriptedHost host_;
  Disc disc_{host_, std::make_unique<MemoryDevice>(0x10000)};
};

TEST_F(HardDiscStore, Bytes1023And1024LieInDifferentBlocks) {
  EXPECT_EQ(disc_.TheDisc.Fetch(1023), 1);
  Change(1022, 99);
  Change(1024, 98);
  EXPECT_EQ(disc_.TheDisc.Fetch(1022), 1);   // held
  EXPECT_EQ(disc_.TheDisc.Fetch(1024), 98);  // read now
}

TEST_F(HardDiscStore, AThirdBlockEvictsTheOneLoadedFirstEvenIfItWasUsedLast) {
  (void)disc_.TheDisc.Fetch(0);
  (void)disc_.TheDisc.Fetch(1024);
  (void)disc_.TheDisc.Fetch(0);  // used last
  (void)disc_.TheDisc.Fetch(2048);
  Change(1, 99);
  Change(1025, 98);
  EXPECT_EQ(disc_.TheDisc.Fetch(1025), 2);  // still held
  EXPECT_EQ(disc_.TheDisc.Fetch(1), 99);    // was evicted
}

TEST_F(HardDiscStore, ADirtyBlockReachesTheFileWhenItIsEvicted) {
  disc_.TheDisc.Store(5, 77);
  EXPECT_EQ(ReadAll(path_)[5], 1);
  (void)disc_.TheDisc.Fetch(1024);
  EXPECT_EQ(ReadAll(path_)[5], 1);
  (void)disc_.TheDisc.Fetch(2048);
  EXPECT_EQ(ReadAll(path_)[5], 77);
}

TEST_F(HardDiscStore, ADirtyBlockReachesTheFileAtClose) {
  disc_.TheDisc.Store(5, 77);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path_)[5], 77);
  EXPECT_EQ(ReadAll(path_).size(), 4096U);
}

TEST_F(HardDiscStore, WritingBackBringsTheFileUpToDateAndKeepsTheBlocks) {
  disc_.TheDisc.Store(5, 77);
  disc_.TheDisc.WriteBack();
  EXPECT_EQ(ReadAll(path_)[5], 77);
  Change(5, 99);
  EXPECT_EQ(disc_.TheDisc.Fetch(5), 77) << "still held";
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path_)[5], 99) << "and not written a second time";
}

TEST_F(HardDiscStore, FlushingBringsTheFileUpToDateAndReadsItAnew) {
  disc_.TheDisc.Store(5, 77);
  disc_.TheDisc.Flush();
  EXPECT_EQ(ReadAll(path_)[5], 77);
  Change(5, 99);
  EXPECT_EQ(disc_.TheDisc.Fetch(5), 99);
}

TEST_F(HardDiscStore, TheFileGrowsWhenABlockBeyondItsEndIsWritten) {
  disc_.TheDisc.Store(10 * 1024 + 3, 5);
  disc_.TheDisc.CloseFile();
  const auto bytes = ReadAll(path_);
  EXPECT_EQ(bytes.size(), 11U * 1024);
  EXPECT_EQ(bytes[10 * 1024 + 3], 5);
}

TEST_F(HardDiscStore, ReadingBeyondTheEndDoesNotGrowTheFile) {
  EXPECT_EQ(disc_.TheDisc.Fetch(100000), 0);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path_).size(), 4096U);
}

TEST_F(HardDiscStore, ALongRunShowsWhatTheBlocksHoldAndLeavesThemHeld) {
  disc_.TheDisc.Store(5, 77);
  disc_.TheDisc.Store(3 * 1024, 78);
  std::vector<std::uint8_t> bytes(5000, 0xEE);
  disc_.TheDisc.FetchBytes(3, bytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::size_t at = i + 3;
    const auto filled = static_cast<std::uint8_t>(at < 4096 ? at / 1024 + 1 : 0);
    ASSERT_EQ(bytes[i], at == 5 ? 77 : at == 3072 ? 78 : filled) << at;
  }
  EXPECT_EQ(ReadAll(path_)[5], 1);
}

TEST_F(HardDiscStore, ALongRunIsStoredOverWhatTheBlocksHold) {
  disc_.TheDisc.Store(1030, 77);  // held, and written over whole
  disc_.TheDisc.Store(3, 66);     // held, and kept in front of the run
  std::vector<std::uint8_t> run(3 * 1024);
  for (std::size_t i = 0; i < run.size(); ++i) run[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  disc_.TheDisc.StoreBytes(500, run);
  std::vector<std::uint8_t> expected(4096, 4);
  std::fill_n(expected.begin(), 500, std::uint8_t{1});
  expected[3] = 66;
  std::copy(run.begin(), run.end(), expected.begin() + 500);
  std::vector<std::uint8_t> held(4096);
  for (std::size_t i = 0; i < held.size(); ++i)
    held[i] = disc_.TheDisc.Fetch(static_cast<std::int64_t>(i));
  EXPECT_EQ(held, expected);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path_), expected);
}

TEST_F(HardDiscStore, ALongRunBeyondTheEndGrowsTheFileByWholeBlocks) {
  disc_.TheDisc.StoreBytes(4096, std::vector<std::uint8_t>(2500, 9));
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path_).size(), 7U * 1024);
}

TEST_F(HardDiscStore, AFileThatDoesNotExistComesIntoBeing) {
  disc_.TheDisc.OpenFile(folder_ / "new.dat", kDat, 1, 4, 33);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "new.dat"));
}

TEST_F(HardDiscStore, AFolderThatDoesNotExistIsAHostErrorAndTheOpenDiscStays) {
  disc_.TheDisc.Store(5, 77);
  EXPECT_THROW(disc_.TheDisc.OpenFile(folder_ / "none/new.dat", kDat, 1, 4, 33), HostError);
  EXPECT_EQ(disc_.TheDisc.Fetch(5), 77);
  EXPECT_EQ(disc_.TheDisc.FileName(), path_);
}

TEST_F(HardDiscStore, AfterACardTheBlocksMove2048BytesAndStillLoseNothing) {
  disc_.TheDisc.OpenFile("/dev/card,0", kCF, 0, 0, 0);
  disc_.TheDisc.OpenFile(path_, kDat, 1, 4, 33);
  // Neighbouring blocks, both dirty, written in either order.
  disc_.TheDisc.Store(0, 70);
  disc_.TheDisc.Store(1024, 71);
  disc_.TheDisc.Store(3072, 73);
  disc_.TheDisc.Store(2048, 72);
  disc_.TheDisc.CloseFile();
  const auto bytes = ReadAll(path_);
  EXPECT_EQ(bytes.size(), 5120U);
  for (std::size_t block = 0; block < 4; ++block) {
    EXPECT_EQ(bytes[block * 1024], 70 + block);
    EXPECT_EQ(bytes[block * 1024 + 1], 1 + block);
  }
  const std::vector<std::uint8_t> added(bytes.begin() + 4096, bytes.end());
  EXPECT_EQ(added, std::vector<std::uint8_t>(1024)) << "what the last block hangs over are zeros";
}

}  // namespace
}  // namespace sectorbox
