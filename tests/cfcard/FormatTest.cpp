// Formatting a partition, byte by byte.

#include "disc/catalogue/Adfs.h"
#include "disc/format/Names.h"
#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

struct RecordingView : FormatView {
  std::vector<std::string> Lines;
  std::vector<double> Percents;
  int Started = 0;
  void FormatStarted() override { ++Started; }
  void ShowFormat(const std::string& line, double percent) override {
    Lines.push_back(line);
    Percents.push_back(percent);
  }
};

class FormatTest : public CardTest {
 protected:
  void Format(const std::string& name, const std::string& capacity, bool quick = false) {
    disc.ImageName = name;
    disc.ProgressRunning = true;
    FormatCFDisc(disc, view, capacity, quick);
  }
  static std::vector<MemoryDevice::Transfer> WritesOf(const MemoryDevice& card) {
    std::vector<MemoryDevice::Transfer> writes;
    for (const auto& transfer : card.Transfers) {
      if (transfer.IsWrite) writes.push_back(transfer);
    }
    return writes;
  }
  RecordingView view;
};

std::int32_t Number24(const MemoryDevice& card, int partition, std::uint64_t offset) {
  return DiscByte(card, partition, offset) | DiscByte(card, partition, offset + 1) << 8 |
         DiscByte(card, partition, offset + 2) << 16;
}

// What an empty disc of 4096 sectors holds where it isn't zero, written out by hand.
std::map<std::uint64_t, std::uint8_t> EmptyDiscOf4096() {
  return {{0, 7},      {252, 0x00}, {253, 0x10}, {255, 0x17}, {256, 0xF9}, {257, 0x0F},
          {510, 3},    {511, 0x0B}, {512, 1},    {513, 'H'},  {514, 'u'},  {515, 'g'},
          {516, 'o'},  {1740, '$'}, {1741, 13},  {1753, '$'}, {1754, 13},  {1786, 1},
          {1787, 'H'}, {1788, 'u'}, {1789, 'g'}, {1790, 'o'}};
}

TEST_F(FormatTest, AFullFormatZeroesEveryByteAndWritesAnEmptyDisc) {
  MemoryDevice& card = Insert("card", 8192);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
  Format("C:,0", "1MB");
  const auto expected = EmptyDiscOf4096();
  for (std::uint64_t i = 0; i < 4096 * 256; ++i) {
    const auto found = expected.find(i);
    ASSERT_EQ(card.Peek(2 * i), found == expected.end() ? 0 : found->second) << "disc byte " << i;
    ASSERT_EQ(card.Peek(2 * i + 1), 0) << "odd byte behind " << i;
  }
  EXPECT_TRUE(disc.ProgressRunning);
  EXPECT_EQ(view.Started, 1);
}

TEST_F(FormatTest, ASmallFormatOfALargeCardLeavesTheRestOfThePartition) {
  MemoryDevice& card = Insert("card", 8192);
  card.Poke(4096 * 512 - 1, 0xE5);
  card.Poke(4096 * 512, 0xE5);
  card.Poke(4096 * 512 + 1, 0xE6);
  Format("C:,0", "1MB");
  EXPECT_EQ(card.Peek(4096 * 512 - 1), 0);
  EXPECT_EQ(card.Peek(4096 * 512), 0xE5);
  EXPECT_EQ(card.Peek(4096 * 512 + 1), 0xE6);
  EXPECT_EQ(Number24(card, 0, 252), 4096);
}

TEST_F(FormatTest, AFormatOfPartition1LeavesPartition0) {
  MemoryDevice& card = Insert("card", kPartitionSectors + 8192);
  card.Poke(0, 0x42);
  card.Poke(kGibibyte - 1, 0x43);
  Format("C:,1", "1MB");
  EXPECT_EQ(card.Peek(0), 0x42);
  EXPECT_EQ(card.Peek(kGibibyte - 1), 0x43);
  EXPECT_EQ(Number24(card, 1, 252), 4096);
  for (const auto& write : WritesOf(card)) EXPECT_GE(write.Offset, kGibibyte);
}

TEST_F(FormatTest, TheCapacityIsOnlyAnUpperLimit) {
  MemoryDevice& card = Insert("card", 5000);
  Format("C:,0", "512MB");
  EXPECT_EQ(Number24(card, 0, 252), 5000);
  EXPECT_EQ(Number24(card, 0, 256), 4993);
}

TEST_F(FormatTest, FiveHundredAndTwelveMegabytesOnTwoGibibytesGive2097151Sectors) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  Format("C:,0", "512MB", true);
  EXPECT_EQ(DiscByte(card, 0, 252), 0xFF);
  EXPECT_EQ(DiscByte(card, 0, 253), 0xFF);
  EXPECT_EQ(DiscByte(card, 0, 254), 0x1F);
  EXPECT_EQ(Number24(card, 0, 256), 2097151 - 7);
}

TEST_F(FormatTest, TheWipeGoesOutInTransfersOf64AndTheLast64SectorsSingly) {
  MemoryDevice& card = Insert("card", 5000);
  Format("C:,0", "512MB");
  const auto writes = WritesOf(card);
  // Steps of 64 up to sector 4928, the last that begins before 5000 - 64; then 4936 to 4999.
  std::size_t at = 0;
  for (std::uint64_t sector = 0; sector < 4936; sector += 64) {
    ASSERT_EQ(writes[at].Offset, sector * 512);
    ASSERT_EQ(writes[at].Bytes, std::min<std::uint64_t>(32768, card.Size() - sector * 512));
    ++at;
  }
  for (std::uint64_t sector = 4936; sector < 5000; ++sector) {
    ASSERT_EQ(writes[at].Offset, sector * 512);
    ASSERT_EQ(writes[at].Bytes, 512u);
    ++at;
  }
}

TEST_F(FormatTest, AMultipleOf64IsWrittenOnceAndItsLast64Singly) {
  MemoryDevice& card = Insert("card", 128);
  Format("C:,0", "1MB");
  const auto writes = WritesOf(card);
  EXPECT_EQ(writes[0].Bytes, 32768u);
  for (std::size_t i = 1; i <= 64; ++i) {
    EXPECT_EQ(writes[i].Offset, (63 + i) * 512);
    EXPECT_EQ(writes[i].Bytes, 512u);
  }
}

TEST_F(FormatTest, FewerThan64SectorsAreWrittenSinglyFrom0On) {
  MemoryDevice& card = Insert("card", 20);
  Format("C:,0", "1MB");
  const auto writes = WritesOf(card);
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(writes[i].Offset, i * 512);
    EXPECT_EQ(writes[i].Bytes, 512u);
  }
  EXPECT_EQ(Number24(card, 0, 252), 20);
}

TEST_F(FormatTest, ProgressComesEvery256SectorsBeforeThePump) {
  Insert("card", 8192);
  Format("C:,0", "1MB");
  ASSERT_EQ(view.Lines.size(), 16u);
  EXPECT_EQ(view.Lines.front(), "Formatting Sectors 0 Of 4096");
  EXPECT_EQ(view.Lines.back(), "Formatting Sectors 3840 Of 4096");
  EXPECT_DOUBLE_EQ(view.Percents.back(), 100.0 * 3840 / 4095);
  EXPECT_EQ(host.LogOf("pump").size(), 16u);
}

TEST_F(FormatTest, AQuickFormatTouchesOnlyTheFirstSevenSectors) {
  MemoryDevice& card = Insert("card", 8192);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
  Format("C:,0", "1MB", true);
  const auto expected = EmptyDiscOf4096();
  for (std::uint64_t i = 0; i < 4096 * 256; ++i) {
    const auto found = expected.find(i);
    std::uint8_t byte = i < 1280 ? 0x00 : 0xE5;
    if (found != expected.end()) byte = found->second;
    ASSERT_EQ(card.Peek(2 * i), byte) << "disc byte " << i;
    ASSERT_EQ(card.Peek(2 * i + 1), 0xE5) << "odd byte behind " << i;
  }
  EXPECT_TRUE(view.Lines.empty());
}

TEST_F(FormatTest, OldEntriesInTheRootsTailSurviveAQuickFormatAndAreNotReached) {
  ImageBuilder old(4096);
  for (int i = 0; i < 40; ++i) {
    const char letters[] = {'F', static_cast<char>('A' + i / 26), static_cast<char>('A' + i % 26)};
    old.AddFile(2, {std::string(letters, 3), {1, 2, 3}});
  }
  MemoryDevice& card = Insert("card", 8192);
  PutDisc(card, 0, old.Bytes());
  Format("C:,0", "1MB", true);
  for (std::uint64_t i = 1280; i < 1740; ++i) {
    ASSERT_EQ(DiscByte(card, 0, i), old.Peek(static_cast<std::int64_t>(i))) << i;
  }
  EXPECT_EQ(DiscByte(card, 0, 512 + 5 + 39 * 26 + 2), 'N');
  OpenCFPartition(disc, "C:,0");
  EXPECT_TRUE(EntryIsEmpty(GetEntryName(disc, 2, 0)));
  EXPECT_EQ(FindEntry(disc, 2, "FBN"), -1);
}

TEST_F(FormatTest, BothChecksumsHold) {
  Insert("card", 2 * kPartitionSectors);
  Format("C:,0", "256MB", true);
  OpenCFPartition(disc, "C:,0");
  EXPECT_EQ(disc.TheDisc.Fetch(255), ReadMap(disc).RightChecksum(0));
  EXPECT_EQ(disc.TheDisc.Fetch(511), ReadMap(disc).RightChecksum(1));
}

TEST_F(FormatTest, TheFreeListInMemoryIsThatOfTheNewDisc) {
  Insert("card", 8192);
  disc.ImageChanged = true;
  Format("C:,0", "1MB", true);
  EXPECT_EQ(disc.FreeCount, 1);
  EXPECT_EQ(disc.FreeStart[0], 7);
  EXPECT_EQ(disc.FreeLen[0], 4089);
  EXPECT_FALSE(disc.ImageChanged);
}

TEST_F(FormatTest, AbortLeavesThePartitionWipedSoFarAndWithoutADisc) {
  MemoryDevice& card = Insert("card", 8192);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
  int pumps = 0;
  host.OnPump = [&] {
    if (++pumps == 3) disc.ProgressRunning = false;
  };
  Format("C:,0", "1MB");
  // The third pump comes after the transfer at sector 512; none follows it.
  EXPECT_EQ(card.Peek((512 + 64) * 512 - 1), 0);
  EXPECT_EQ(card.Peek((512 + 64) * 512), 0xE5);
  EXPECT_EQ(DiscByte(card, 0, 513), 0);
  EXPECT_FALSE(disc.ProgressRunning);
  EXPECT_FALSE(disc.TheDisc.DeviceIsOpen());
  EXPECT_EQ(host.Log.back(), "pointer normal");
}

TEST_F(FormatTest, AFormatWithTheFlagClearFromTheStartWritesNothing) {
  MemoryDevice& card = Insert("card", 8192);
  disc.ImageName = "C:,0";
  disc.ProgressRunning = false;
  FormatCFDisc(disc, view, "1MB", false);
  EXPECT_TRUE(WritesOf(card).empty());
}

TEST_F(FormatTest, ACardThatIsPulledInTheWipeIsToldAndNothingElseHappens) {
  MemoryDevice& card = Insert("card", 8192);
  card.WritesLeft = 5;
  Format("C:,0", "1MB");
  EXPECT_EQ(WritesOf(card).size(), 5 + (63 - 5) + 64u);
  EXPECT_FALSE(disc.ProgressRunning);
  EXPECT_EQ(card.Peek(513 * 2), 0);
  const auto notes = host.LogOf("note ");
  ASSERT_EQ(notes.size(), 3u);
  EXPECT_EQ(notes[1],
            "note C:,0: there is no disc on it now. Format it again, or restore a backup");
  EXPECT_EQ(notes[0], "note C:,0: sectors 320 to 383 can't be written in full: Input/output error");
}

TEST_F(FormatTest, ADeviceThatIsGoneEndsLikeAnAbort) {
  Insert("card", 8192);
  shelf.Take("card");
  Format("C:,0", "1MB");
  EXPECT_FALSE(disc.ProgressRunning);
  EXPECT_EQ(host.LogOf("note ").size(), 1u);
}

TEST_F(FormatTest, ALoneCommaIsNoPartition) {
  Insert("card", 8192);
  Format(",", "1MB");
  EXPECT_FALSE(disc.ProgressRunning);
  EXPECT_TRUE(shelf.At("card").Transfers.empty());
}

TEST_F(FormatTest, APartitionWithoutRoomForAMapAndARootIsLeftAlone) {
  MemoryDevice& card = Insert("card", 6);
  Format("C:,0", "1MB");
  EXPECT_TRUE(WritesOf(card).empty());
  EXPECT_FALSE(disc.ProgressRunning);
}

TEST_F(FormatTest, ACapacityWithoutANumberFormatsNothing) {
  MemoryDevice& card = Insert("card", 8192);
  for (const char* capacity : {"", "MB", "0MB", "-1MB"}) {
    Format("C:,0", capacity);
    EXPECT_TRUE(WritesOf(card).empty()) << capacity;
  }
}

TEST_F(FormatTest, FormatCFImageWipesTheDiscsBytesAndLeavesTheOddOnes) {
  MemoryDevice& card = Insert("card", 8192);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
  disc.ImageName = "C:,0";
  FormatCFImage(disc, 4096, true);
  EXPECT_TRUE(disc.TheDisc.DeviceIsOpen());
  EXPECT_EQ(disc.FreeLen[0], 4089);
  disc.TheDisc.CloseFile();
  const auto expected = EmptyDiscOf4096();
  for (std::uint64_t i = 0; i < 4100 * 256; ++i) {
    const auto found = expected.find(i);
    std::uint8_t byte = i < 4096 * 256 ? 0x00 : 0xE5;
    if (found != expected.end()) byte = found->second;
    ASSERT_EQ(card.Peek(2 * i), byte) << "disc byte " << i;
    ASSERT_EQ(card.Peek(2 * i + 1), 0xE5) << "odd byte behind " << i;
  }
  EXPECT_EQ(
      host.LogOf("progress "),
      std::vector<std::string>(
          {"progress open Format CF Card", "progress Formatting Sectors 0 Of 4096",
           "progress Formatting Sectors 1024 Of 4096", "progress Formatting Sectors 2048 Of 4096",
           "progress Formatting Sectors 3072 Of 4096", "progress close"}));
  EXPECT_EQ(host.LogOf("pump").size(), 4u);
}

TEST_F(FormatTest, FormatCFImageWithoutAWipeShowsNoProgressAndKeepsTheRootsTail) {
  MemoryDevice& card = Insert("card", 8192);
  card.Poke(2 * 1500, 0xE5);
  disc.ImageName = "C:,0";
  FormatCFImage(disc, 4096, false);
  disc.TheDisc.CloseFile();
  EXPECT_TRUE(host.LogOf("progress ").empty());
  EXPECT_EQ(DiscByte(card, 0, 1500), 0xE5);
  EXPECT_EQ(Number24(card, 0, 252), 4096);
}

TEST_F(FormatTest, FormatCFImageTakesNoMoreThanThePartitionHas) {
  MemoryDevice& card = Insert("card", 5000);
  disc.ImageName = "C:,0";
  FormatCFImage(disc, 8192, false);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(Number24(card, 0, 252), 5000);
}

TEST(Sizes, TheLastIsASectorShortOf512Megabytes) {
  std::int32_t sectors = 4096;
  for (const CardSize& size : kCardSizes) {
    EXPECT_EQ(size.Sectors, &size == &kCardSizes.back() ? 2097151 : sectors);
    sectors *= 2;
  }
}

}  // namespace
}  // namespace sectorbox::testing
