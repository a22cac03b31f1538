// The store over a raw card: where bytes lie, how the size is found, what faults do.

#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

std::size_t Writes(const MemoryDevice& card) {
  std::size_t count = 0;
  for (const auto& transfer : card.Transfers) count += transfer.IsWrite ? 1 : 0;
  return count;
}

TEST_F(CardTest, BytesOfPartition1BeginAGibibyteIntoTheCardAndTakeEvenPlaces) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  disc.TheDisc.OpenFile("C:,1", kCF, 1, 0, 0);
  card.Poke(kGibibyte + 1, 0xEE);
  disc.TheDisc.Store(0, 0x11);
  disc.TheDisc.Store(1, 0x22);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(card.Peek(0x40000000), 0x11);
  EXPECT_EQ(card.Peek(0x40000001), 0xEE);
  EXPECT_EQ(card.Peek(0x40000002), 0x22);
}

TEST_F(CardTest, OddBytesGoBackAsTheyWere) {
  MemoryDevice& card = Insert("card", 64);
  for (std::uint64_t i = 0; i < card.Size(); ++i) {
    card.Poke(i, static_cast<std::uint8_t>(i % 251));
  }
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  const std::vector<std::uint8_t> run(3000, 0xA5);
  disc.TheDisc.StoreBytes(700, run);
  for (int i = 0; i < 5; ++i) disc.TheDisc.Store(5000 + i, 0x5A);
  disc.TheDisc.CloseFile();
  for (std::uint64_t i = 0; i < card.Size(); ++i) {
    std::uint8_t expected = static_cast<std::uint8_t>(i % 251);
    if (i % 2 == 0 && i / 2 >= 700 && i / 2 < 3700) expected = 0xA5;
    if (i % 2 == 0 && i / 2 >= 5000 && i / 2 < 5005) expected = 0x5A;
    ASSERT_EQ(card.Peek(i), expected) << "device byte " << i;
  }
}

TEST_F(CardTest, TwoWritesToOneBlockAndACloseAreOneDeviceWrite) {
  MemoryDevice& card = Insert("card", 64);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  card.Transfers.clear();
  disc.TheDisc.Store(0, 1);
  disc.TheDisc.Store(1023, 2);
  disc.TheDisc.CloseFile();
  ASSERT_EQ(card.Transfers.size(), 2u);
  EXPECT_TRUE(card.Transfers[1].IsWrite);
  EXPECT_EQ(card.Transfers[1].Offset, 0u);
  EXPECT_EQ(card.Transfers[1].Bytes, 2048u);
}

TEST_F(CardTest, TheProbeFindsEverySizeUpToTwoGibibytes) {
  const std::vector<std::uint64_t> sizes = {0,
                                            1,
                                            2,
                                            3,
                                            7,
                                            8,
                                            63,
                                            64,
                                            1000,
                                            1001,
                                            1002,
                                            1003,
                                            250880,
                                            kPartitionSectors - 1,
                                            kPartitionSectors,
                                            kPartitionSectors + 1,
                                            2 * kPartitionSectors - 1,
                                            2 * kPartitionSectors};
  Insert("card", 0);
  for (const std::uint64_t size : sizes) {
    shelf.Put("card", size);
    disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
    EXPECT_EQ(disc.TheDisc.mNumSecs, static_cast<std::int32_t>(size));
  }
  shelf.Put("card", 3 * kPartitionSectors);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  EXPECT_EQ(disc.TheDisc.mNumSecs, 0x400000);
}

TEST_F(CardTest, TheProbeOfPartition1SeesTheCardFromItsStart) {
  MemoryDevice& card = Insert("card", 1000);
  disc.TheDisc.OpenFile("C:,1", kCF, 1, 0, 0);
  EXPECT_EQ(disc.TheDisc.mNumSecs, 1000);
  EXPECT_EQ(disc.TheDisc.Partition(), 1);
  EXPECT_EQ(card.Transfers.front().Offset, 0u);
}

struct SizeCase {
  std::uint64_t Sectors;
  std::int32_t Partition0;
  std::int32_t Partition1;
};

TEST_F(CardTest, ThePartitionsShareTheCard) {
  const std::vector<SizeCase> cases = {
      {1000, 1000, 1000 - 0x200000},
      {kPartitionSectors, 0x200000 - 1, 0},  // 1 GiB: the limit takes one off
      {kPartitionSectors + 5, 0x1FFFFF, 5},
      {2 * kPartitionSectors, 0x1FFFFF, 0x1FFFFF},
  };
  Insert("card", 0);
  for (const SizeCase& c : cases) {
    shelf.Put("card", c.Sectors);
    disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
    EXPECT_EQ(disc.TheDisc.DiscSize(), c.Partition0) << c.Sectors;
    disc.TheDisc.OpenFile("C:,1", kCF, 1, 0, 0);
    EXPECT_EQ(disc.TheDisc.DiscSize(), c.Partition1) << c.Sectors;
  }
}

TEST_F(CardTest, NothingIsWrittenPastTheEndOfPartition0) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  const std::vector<std::uint8_t> run(4 * 256, 0x77);
  // The last sector of a partition, and three behind it.
  disc.TheDisc.StoreBytes(std::int64_t{0x1FFFFE} * 256, run);
  disc.TheDisc.Store(std::int64_t{0x200000} * 256, 0x77);
  disc.TheDisc.WriteCFSector(0x200000, 64);
  disc.TheDisc.WriteCFSector(0x1FFFFF, 64);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(card.Peek(std::uint64_t{0x1FFFFE} * 512), 0x77);
  EXPECT_EQ(card.Peek(std::uint64_t{0x1FFFFF} * 512), 0);
  for (const auto& transfer : card.Transfers) {
    if (transfer.IsWrite) {
      EXPECT_LE(transfer.Offset + transfer.Bytes, std::uint64_t{0x1FFFFF} * 512);
    }
  }
  EXPECT_EQ(host.LogOf("note ").front(),
            "note C:,0: sector 2097151 lies outside the partition and isn't written");
}

TEST_F(CardTest, AByteBeyondThePartitionReadsAsZeroWithoutATransfer) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  card.Poke(kGibibyte, 0x99);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  card.Transfers.clear();
  EXPECT_EQ(disc.TheDisc.Fetch(std::int64_t{0x200000} * 256), 0);
  EXPECT_TRUE(card.Transfers.empty());
}

TEST_F(CardTest, APartitionThatIsNoneTakesNoWrites) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  disc.TheDisc.OpenFile("C:,2", kCF, 2, 0, 0);
  disc.TheDisc.Store(0, 0x77);
  disc.TheDisc.WriteCFSector(0, 1);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(Writes(card), 0u);
}

TEST_F(CardTest, AFailedReadZeroesTheFirst512BytesOfTheBlockAndIsTold) {
  MemoryDevice& card = Insert("card", 64);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0x33);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  EXPECT_EQ(disc.TheDisc.Fetch(0), 0x33);
  EXPECT_EQ(disc.TheDisc.Fetch(1024), 0x33);
  card.ReadsLeft = 0;
  EXPECT_EQ(disc.TheDisc.Fetch(2048), 0);
  EXPECT_EQ(disc.TheDisc.Fetch(2048 + 255), 0);
  // These are the bytes that the slot held before, as the header says.
  EXPECT_EQ(disc.TheDisc.Fetch(2048 + 256), 0x33);
  EXPECT_EQ(host.LogOf("note "),
            std::vector<std::string>(
                {"note C:,0: sectors 8 to 11 can't be read in full: Input/output error"}));
  EXPECT_EQ(disc.TheDisc.CardFaults(), 1);
}

TEST_F(CardTest, ABlockThatCouldNotBeReadGoesBackOnlyWhereSomethingWasStored) {
  // A card of 1002 sectors: its last block is read short, and its sectors still hold data.
  MemoryDevice& card = Insert("card", 1002);
  for (std::uint64_t i = 1000 * 512; i < card.Size(); ++i) card.Poke(i, 0x44);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  disc.TheDisc.Store(1001 * 256 + 7, 0x55);
  disc.TheDisc.CloseFile();
  for (std::uint64_t i = 1000 * 512; i < card.Size(); ++i) {
    ASSERT_EQ(card.Peek(i), i == 1001 * 512 + 14 ? 0x55 : 0x44) << i;
  }
}

TEST_F(CardTest, ACardThatIsPulledIsToldOnceAndCountedAtTheEnd) {
  MemoryDevice& card = Insert("card", 4096);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  disc.TheDisc.ClearCFSector();
  card.WritesLeft = 2;
  for (std::int32_t i = 0; i < 10; ++i) disc.TheDisc.WriteCFSector(i * 64, 64);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(host.LogOf("note "),
            std::vector<std::string>(
                {"note C:,0: sectors 128 to 191 can't be written in full: Input/output error",
                 "note C:,0: 8 faults in all, the first: sectors 128 to 191 can't be written in "
                 "full: Input/output error"}));
}

TEST_F(CardTest, AnAbandonedCardIsNotOpenedAgainByAStore) {
  MemoryDevice& card = Insert("card", 4096);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  disc.TheDisc.Abandon();
  card.Transfers.clear();
  disc.TheDisc.Store(0, 1);
  disc.TheDisc.CloseFile();
  EXPECT_TRUE(card.Transfers.empty());
  EXPECT_FALSE(disc.TheDisc.DeviceIsOpen());
}

TEST_F(CardTest, RunsOfBytesAreWhatAsManySingleBytesAre) {
  Insert("card", 64);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  std::vector<std::uint8_t> run(5000);
  for (std::size_t i = 0; i < run.size(); ++i) run[i] = static_cast<std::uint8_t>(i * 7);
  disc.TheDisc.StoreBytes(900, run);
  for (std::size_t i = 0; i < run.size(); ++i) {
    ASSERT_EQ(disc.TheDisc.Fetch(900 + static_cast<std::int64_t>(i)), run[i]) << i;
  }
  std::vector<std::uint8_t> back(run.size());
  disc.TheDisc.FetchBytes(900, back);
  EXPECT_EQ(back, run);
}

TEST_F(CardTest, LongRunsGoOutInLargeTransfersAndSeeWhatIsStillInASlot) {
  MemoryDevice& card = Insert("card", 256);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, static_cast<std::uint8_t>(i / 2));
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  disc.TheDisc.Store(20 * 1024, 0xA5);
  card.Transfers.clear();
  std::vector<std::uint8_t> run(64 * 1024);
  disc.TheDisc.FetchBytes(0, run);
  for (std::size_t i = 0; i < run.size(); ++i) {
    ASSERT_EQ(run[i], i == 20 * 1024 ? 0xA5 : i % 256) << i;
  }
  EXPECT_LT(card.Transfers.size(), 10u);
}

TEST_F(CardTest, ALongRunOverAFaultReadsWhatSingleBytesRead) {
  // 250 sectors: the last block is read short.
  MemoryDevice& card = Insert("card", 250);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0x33);
  disc.TheDisc.OpenFile("C:,0", kCF, 0, 0, 0);
  std::vector<std::uint8_t> run(250 * 256);
  disc.TheDisc.FetchBytes(0, run);
  for (std::size_t i = 0; i < 248 * 256; ++i) ASSERT_EQ(run[i], 0x33) << i;
  for (std::size_t i = 248 * 256; i < 249 * 256; ++i) ASSERT_EQ(run[i], 0) << i;
  EXPECT_EQ(disc.TheDisc.CardFaults(), 1);
}

TEST(CardNames, CommasInAPathBelongToTheDevice) {
  ScriptedHost host;
  CardShelf shelf;
  Disc disc(host, shelf.MakeDevice());
  shelf.Put("/cards/my,card,v2", 64);
  shelf.Put("/cards/x,1", 32);
  disc.TheDisc.OpenFile("/cards/my,card,v2,0", kCF, 0, 0, 0);
  EXPECT_EQ(disc.TheDisc.mNumSecs, 64);
  disc.TheDisc.OpenFile("/cards/my,card,v2", kCF, 0, 0, 0);
  EXPECT_EQ(disc.TheDisc.mNumSecs, 64);
  disc.TheDisc.OpenFile("/cards/x,1,0", kCF, 0, 0, 0);
  EXPECT_EQ(disc.TheDisc.mNumSecs, 32);
}

}  // namespace
}  // namespace sectorbox::testing
