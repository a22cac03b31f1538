// Cards: two cached blocks over a raw device, and the size of a card.

#include <gtest/gtest.h>

#include "disc/store/Disc.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/ScriptedHost.h"

namespace sectorbox {
namespace {

using namespace testing;

class CardStore : public ::testing::Test {
 protected:
  void Open(std::uint64_t sectors, std::int32_t partition) {
    auto device = std::make_unique<MemoryDevice>(sectors);
    device_ = device.get();
    device_->Openable = openable_;
    disc_ = std::make_unique<Disc>(host_, std::move(device));
    disc_->TheDisc.OpenFile("/dev/sdb," + std::to_string(partition), kCF, partition, 0, 0);
    device_->Transfers.clear();
  }

  bool openable_ = true;
  ScriptedHost host_;
  std::unique_ptr<Disc> disc_;
  MemoryDevice* device_ = nullptr;
};

TEST_F(CardStore, TheDeviceIsNamedUpToTheComma) {
  Open(1000, 0);
  EXPECT_EQ(device_->OpenedPath, "/dev/sdb");
}

TEST_F(CardStore, OnlyACommaAndADigitAtTheEndNameThePartition) {
  Open(1000, 0);
  for (const std::string path :
       {"/dev/card,a", "/dev/card,/", "/dev/card,:", "/dev/card0", ",0", "0", "/a,0/b,10"}) {
    disc_->TheDisc.OpenFile(path, kCF, 0, 0, 0);
    EXPECT_EQ(device_->OpenedPath, path);
  }
  for (const std::string path : {"/dev/card,0", "/dev/card,9", "/a,0/b,1"}) {
    disc_->TheDisc.OpenFile(path, kCF, 0, 0, 0);
    EXPECT_EQ(device_->OpenedPath + path.substr(path.size() - 2), path);
  }
}

TEST_F(CardStore, WhatWasStoredOnACardThatIsNotThereReachesNoOther) {
  openable_ = false;
  Open(1000, 0);
  disc_->TheDisc.Store(0, 1);
  device_->Openable = true;
  device_->Poke(0, 9);
  disc_->TheDisc.OpenFile("/dev/sdc,0", kCF, 0, 0, 0);
  EXPECT_EQ(disc_->TheDisc.Fetch(0), 9);
  disc_->TheDisc.Store(1, 2);
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(device_->Peek(0), 9);
  EXPECT_EQ(device_->Peek(2), 2);
}

TEST_F(CardStore, PartitionOneBeginsAGibibyteInAndUsesTheEvenBytes) {
  Open(0x400000, 1);
  device_->Poke(0x40000000, 11);
  device_->Poke(0x40000001, 99);
  device_->Poke(0x40000002, 12);
  EXPECT_EQ(disc_->TheDisc.Fetch(0), 11);
  EXPECT_EQ(disc_->TheDisc.Fetch(1), 12);
}

TEST_F(CardStore, OddBytesGoBackAsTheyWereRead) {
  Open(1000, 0);
  device_->Poke(1, 99);
  disc_->TheDisc.Store(0, 5);
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(device_->Peek(0), 5);
  EXPECT_EQ(device_->Peek(1), 99);
}

TEST_F(CardStore, TwoWritesToOneBlockAndACloseAreOneWriteOfThatBlock) {
  Open(1000, 0);
  disc_->TheDisc.Store(2048, 5);
  disc_->TheDisc.Store(3071, 6);
  disc_->TheDisc.CloseFile();
  std::vector<MemoryDevice::Transfer> writes;
  for (const auto& t : device_->Transfers) {
    if (t.IsWrite) writes.push_back(t);
  }
  ASSERT_EQ(writes.size(), 1U);
  EXPECT_EQ(writes[0].Offset, 4096U);
  EXPECT_EQ(writes[0].Bytes, 2048U);
}

TEST_F(CardStore, EveryTransferIsWholeDeviceSectors) {
  Open(1000, 0);
  for (std::int64_t at = 0; at < 20000; at += 777) disc_->TheDisc.Store(at, 1);
  disc_->TheDisc.CloseFile();
  for (const auto& t : device_->Transfers) {
    EXPECT_EQ(t.Offset % 512, 0U);
    EXPECT_EQ(t.Bytes % 512, 0U);
  }
}

TEST_F(CardStore, TheProbeFindsTheSizeOfACard) {
  for (const std::int32_t sectors : {3, 4, 1000, 4095, 4096, 0x1FFFFF, 0x200000, 0x200001, 0x300000,
                                     0x3FFFFE, 0x3FFFFF, 0x400000}) {
    Open(static_cast<std::uint64_t>(sectors), 0);
    EXPECT_EQ(disc_->TheDisc.mNumSecs, sectors);
  }
}

TEST_F(CardStore, TheProbeSeesTheCardFromItsStartForPartitionOneToo) {
  Open(0x300000, 1);
  EXPECT_EQ(disc_->TheDisc.mNumSecs, 0x300000);
  EXPECT_EQ(disc_->TheDisc.Partition(), 1);
}

TEST_F(CardStore, ACardLargerThanTwoGibibytesIsSeenAsTwo) {
  Open(0x800000, 0);
  EXPECT_EQ(disc_->TheDisc.mNumSecs, 0x400000);
}

TEST_F(CardStore, AnEmptyCardHasNoSectors) {
  Open(0, 0);
  EXPECT_EQ(disc_->TheDisc.mNumSecs, 0);
}

TEST_F(CardStore, DiscSizesOfTheTwoPartitions) {
  struct Case {
    std::uint64_t Sectors;
    std::int32_t Size0;
    std::int32_t Size1;
  };
  for (const Case& c : {Case{1000, 1000, 1000 - 0x200000}, Case{0x200000, 0x1FFFFF, 0},
                        Case{0x200001, 0x1FFFFF, 1}, Case{0x400000, 0x1FFFFF, 0x1FFFFF}}) {
    Open(c.Sectors, 0);
    EXPECT_EQ(disc_->TheDisc.DiscSize(), c.Size0) << c.Sectors;
    Open(c.Sectors, 1);
    EXPECT_EQ(disc_->TheDisc.DiscSize(), c.Size1) << c.Sectors;
  }
}

TEST_F(CardStore, AShortReadZeroesTheFirst512BytesOfTheBlockAndNoMore) {
  Open(1000, 0);
  for (std::uint64_t i = 0; i < 2048; ++i) device_->Poke(i, 7);
  (void)disc_->TheDisc.Fetch(0);
  (void)disc_->TheDisc.Fetch(1024);
  device_->ReadsLeft = 0;
  // The block goes into slot 0, which held seven in all its bytes.
  EXPECT_EQ(disc_->TheDisc.Fetch(2048), 0);
  EXPECT_EQ(disc_->TheDisc.Fetch(2048 + 255), 0);
  EXPECT_EQ(disc_->TheDisc.Fetch(2048 + 256), 7);
}

TEST_F(CardStore, WhatIsStoredInASectorThatCannotBeReadIsWrittenAllTheSame) {
  Open(1000, 0);
  device_->Poke(4, 9);
  device_->ReadsLeft = 0;
  disc_->TheDisc.Store(0, 5);
  disc_->TheDisc.CloseFile();
  ASSERT_EQ(device_->Transfers.size(), 3U);
  EXPECT_TRUE(device_->Transfers[2].IsWrite);
  EXPECT_EQ(device_->Transfers[2].Bytes, 512U);
  EXPECT_EQ(device_->Peek(0), 5);
}

TEST_F(CardStore, AFailedWriteIsNotedAndStopsNothing) {
  Open(1000, 0);
  disc_->TheDisc.Store(0, 5);
  device_->WritesLeft = 0;
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(device_->Peek(0), 0);
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{"note /dev/sdb,0: sectors 0 to 3 can't be written in full"});
}

TEST_F(CardStore, ADeviceThatCannotBeOpenedSeemsToBeOfTheLargestSize) {
  openable_ = false;
  Open(1000, 0);
  EXPECT_FALSE(disc_->TheDisc.DeviceIsOpen());
  EXPECT_EQ(disc_->TheDisc.mNumSecs, 0x400000);
  EXPECT_EQ(disc_->TheDisc.Fetch(0), 0);
  disc_->TheDisc.Store(0, 1);
  disc_->TheDisc.CloseFile();
  EXPECT_TRUE(device_->Transfers.empty());
}

TEST_F(CardStore, TheTransferBufferIsWrittenAtItsSectorOfThePartition) {
  Open(0x400000, 1);
  disc_->TheDisc.ClearCFSector();
  device_->Poke(0x40000000 + 10 * 512, 9);
  device_->Poke(0x40000000 + 74 * 512, 9);
  disc_->TheDisc.WriteCFSector(10, 64);
  EXPECT_EQ(device_->Peek(0x40000000 + 10 * 512), 0);
  EXPECT_EQ(device_->Peek(0x40000000 + 74 * 512), 9);
  ASSERT_EQ(device_->Transfers.size(), 1U);
  EXPECT_EQ(device_->Transfers[0].Bytes, 32768U);
}

TEST_F(CardStore, MoreThan64SectorsAreCutToWhatTheBufferHolds) {
  Open(1000, 0);
  disc_->TheDisc.WriteCFSector(0, 65);
  disc_->TheDisc.WriteCFSector(0, -1);
  EXPECT_EQ(device_->Transfers.at(0).Bytes, 32768U);
}

}  // namespace
}  // namespace sectorbox
