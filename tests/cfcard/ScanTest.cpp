// The rows of the card list.

#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

using Rows = std::vector<std::string>;

class ScanTest : public CardTest {
 protected:
  Rows Scan(bool includeNonADFS = false) { return ScanCFCards(disc, drives, includeNonADFS).Rows; }
  const std::vector<std::uint8_t> empty = ImageBuilder(4096).Bytes();
};

TEST_F(ScanTest, BothPartitionsInOrderOfLettersAndPartitions) {
  MemoryDevice& first = Insert("one", 2 * kPartitionSectors);
  MemoryDevice& second = Insert("two", 2 * kPartitionSectors);
  for (MemoryDevice* card : {&first, &second}) {
    PutDisc(*card, 0, empty);
    PutDisc(*card, 1, empty);
  }
  EXPECT_EQ(Scan(),
            Rows({"C: - Partition 0", "C: - Partition 1", "D: - Partition 0", "D: - Partition 1"}));
}

TEST_F(ScanTest, ACardOfAGibibyteOrLessHasOnlyPartition0) {
  PutDisc(Insert("card", kPartitionSectors), 0, empty);
  EXPECT_EQ(Scan(true), Rows({"C: - Partition 0"}));
}

TEST_F(ScanTest, AFormattedPartitionNextToABlankOneIsOneRow) {
  PutDisc(Insert("card", 2 * kPartitionSectors), 1, empty);
  EXPECT_EQ(Scan(), Rows({"C: - Partition 1"}));
  EXPECT_EQ(Scan(true), Rows({"C: - Non ADFS Partition 0", "C: - Partition 1"}));
}

TEST_F(ScanTest, AStickIsListedUnderNonAdfsOnly) {
  Insert("stick", 4096).Poke(510, 0x55);
  EXPECT_EQ(Scan(), Rows());
  EXPECT_EQ(Scan(true), Rows({"C: - Non ADFS Partition 0"}));
}

TEST_F(ScanTest, OnlyTheFirstMarkDecides) {
  MemoryDevice& card = Insert("card", 4096);
  card.Poke(2 * 513, 'H');
  card.Poke(2 * 514, 'u');
  card.Poke(2 * 515, 'g');
  EXPECT_EQ(Scan(), Rows());
  card.Poke(2 * 516, 'o');
  EXPECT_EQ(Scan(), Rows({"C: - Partition 0"}));
}

TEST_F(ScanTest, AReaderWithoutAMediumAddsNoRow) {
  Insert("reader", 0);
  EXPECT_EQ(Scan(true), Rows());
}

TEST_F(ScanTest, ADeviceWithoutRightsAddsNoRowAndIsTold) {
  Insert("card", 4096).Openable = false;
  const CardScan scan = ScanCFCards(disc, drives, true);
  EXPECT_EQ(scan.Rows, Rows());
  EXPECT_FALSE(scan.AllOpened);
  EXPECT_EQ(host.LogOf("note "), Rows({"note card: can't be opened: Permission denied"}));
}

TEST_F(ScanTest, AScanWritesNothingAndLeavesTheStoreClosed) {
  MemoryDevice& card = Insert("card", 2 * kPartitionSectors);
  PutDisc(card, 0, empty);
  Scan(true);
  disc.TheDisc.Store(0, 0xFF);
  disc.TheDisc.CloseFile();
  for (const auto& transfer : card.Transfers) EXPECT_FALSE(transfer.IsWrite);
  EXPECT_FALSE(disc.TheDisc.DeviceIsOpen());
}

TEST_F(ScanTest, TheImageThatWasOpenIsGone) {
  ImageBuilder(640).WriteTo(folder / "a.adf");
  disc.TheDisc.OpenFile(folder / "a.adf", kAdf, 40, 1, 16);
  Insert("card", 4096);
  Scan();
  EXPECT_EQ(disc.TheDisc.disctype(), kCF);
}

TEST_F(ScanTest, WithoutDrivesNothingIsTouched) {
  EXPECT_EQ(Scan(true), Rows());
  EXPECT_NE(disc.TheDisc.disctype(), kCF);
}

TEST(RowNames, TheImageNameIsMadeOfTheRowsEnds) {
  EXPECT_EQ(ImageNameOfRow("E: - Partition 0"), "E:,0");
  EXPECT_EQ(ImageNameOfRow("Z: - Non ADFS Partition 1"), "Z:,1");
}

TEST(RowNames, NoChosenRowGivesALoneComma) {
  EXPECT_EQ(ImageNameOfRow(""), ",");
}

TEST(SourceNames, GivenDevicesAreNamedByTheirPath) {
  ScriptedHost host;
  CardShelf shelf;
  Disc disc(host, shelf.MakeDevice());
  PutDisc(shelf.Put("/dev/sdb", 4096), 0, ImageBuilder(4096).Bytes());
  const CardScan scan = ScanCards(disc, {{"/dev/sdb", "/dev/sdb", "/dev/sdb"}}, false);
  EXPECT_EQ(scan.Rows, Rows({"/dev/sdb: - Partition 0"}));
}

}  // namespace
}  // namespace sectorbox::testing
