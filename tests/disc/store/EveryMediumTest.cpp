// What holds for the store over every kind of medium.

#include <gtest/gtest.h>

#include <ostream>

#include "disc/medium/CardMedium.h"
#include "disc/store/Disc.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/MemoryMedium.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

// What stands under the store: a medium of the table of kinds, one of these that could fail and
// doesn't, or one that the table doesn't know.
enum class Under { kTable, kFaulty, kMemory };

struct Kind {
  const char* Name;
  sectorbox::DiscType DiscType;
  std::int32_t Tracks;
  std::int32_t Heads;
  std::int32_t Sectors;
  Under Medium = Under::kTable;
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.Name;
}

constexpr Kind kMedia[] = {
    {"Adf", kAdf, 80, 1, 16},
    {"Adl", kAdl, 80, 2, 16},
    {"Dat", kDat, 32, 4, 33},
    {"Card0", kCF, 0, 0, 0},
    {"Card1", kCF, 1, 0, 0},
    {"FaultyAdl", kAdl, 80, 2, 16, Under::kFaulty},
    {"FaultyDat", kDat, 32, 4, 33, Under::kFaulty},
    {"FaultyCard", kCF, 0, 0, 0, Under::kFaulty},
    {"Memory", kDat, 32, 4, 33, Under::kMemory},
};

class MemoryMaker final : public MediumMaker {
 public:
  std::unique_ptr<Medium> Make(DiscType, const MediumRequest&, const MediumParts&) override {
    return std::make_unique<MemoryMedium>(blocks_);
  }

 private:
  std::shared_ptr<MemoryBlocks> blocks_ = std::make_shared<MemoryBlocks>();
};

class EveryMedium : public ::testing::TestWithParam<Kind> {
 protected:
  EveryMedium() : disc_(host_, std::make_unique<MemoryDevice>(0x400000), MakerOf(GetParam())) {
    host_.Pad = true;
  }

  std::unique_ptr<MediumMaker> MakerOf(const Kind& kind) {
    if (kind.Medium == Under::kFaulty) return std::make_unique<FaultyMaker>(plan_);
    if (kind.Medium == Under::kMemory) return std::make_unique<MemoryMaker>();
    return nullptr;
  }

  void Open() {
    const Kind& m = GetParam();
    const std::string name =
        m.DiscType == kCF ? "/dev/card," + std::to_string(m.Tracks) : folder_ / "image";
    disc_.TheDisc.OpenFile(name, m.DiscType, m.Tracks, m.Heads, m.Sectors);
    if (m.DiscType != kAdl) return;
    MapSectors map = ReadMap(disc_);
    map.SetDiscSize(2560);
    WriteMap(disc_, map);
  }

  FaultPlan plan_;
  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_;
};

TEST_P(EveryMedium, AFreshStoreReadsAsZeros) {
  Open();
  for (const std::int64_t at : {0, 1023, 1024, 4096, 327679}) {
    EXPECT_EQ(disc_.TheDisc.Fetch(at), 0) << at;
  }
}

TEST_P(EveryMedium, WhatIsStoredIsFetchedAgainAfterCloseAndOpen) {
  Open();
  for (std::int32_t i = 0; i < 5000; i += 7) {
    disc_.TheDisc.Store(i * 41 + 512, static_cast<std::uint8_t>(i));
  }
  disc_.TheDisc.CloseFile();
  Open();
  for (std::int32_t i = 0; i < 5000; i += 7) {
    ASSERT_EQ(disc_.TheDisc.Fetch(i * 41 + 512), static_cast<std::uint8_t>(i)) << i;
  }
}

TEST_P(EveryMedium, FlushKeepsEveryByte) {
  Open();
  disc_.TheDisc.Store(600, 0xA5);
  disc_.TheDisc.Flush();
  EXPECT_EQ(disc_.TheDisc.Fetch(600), 0xA5);
}

TEST_P(EveryMedium, RunsOfBytesAreTheSameAsSingleBytes) {
  Open();
  std::vector<std::uint8_t> bytes(3000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 13);
  disc_.TheDisc.StoreBytes(1000, bytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    ASSERT_EQ(disc_.TheDisc.Fetch(1000 + static_cast<std::int64_t>(i)), bytes[i]) << i;
  }
  std::vector<std::uint8_t> back(bytes.size());
  disc_.TheDisc.FetchBytes(1000, back);
  EXPECT_EQ(back, bytes);
  EXPECT_EQ(disc_.TheDisc.Fetch(999), 0);
  EXPECT_EQ(disc_.TheDisc.Fetch(4000), 0);
}

TEST_P(EveryMedium, NegativeAddressesReadZeroAndAreNotWritten) {
  Open();
  disc_.TheDisc.Store(-1, 7);
  EXPECT_EQ(disc_.TheDisc.Fetch(-1), 0);
  std::vector<std::uint8_t> bytes(4, 9);
  disc_.TheDisc.StoreBytes(-2, bytes);
  EXPECT_EQ(disc_.TheDisc.Fetch(0), 9);
  disc_.TheDisc.FetchBytes(-2, bytes);
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0, 0, 9, 9}));
}

TEST_P(EveryMedium, FarAddressesReadZeroOnceTheStoreEnds) {
  Open();
  std::vector<std::uint8_t> bytes(2000, 1);
  disc_.TheDisc.FetchBytes(std::int64_t{0xFFFFFF} * 256, bytes);
  EXPECT_EQ(bytes, std::vector<std::uint8_t>(2000, 0));
  const std::int64_t end = disc_.TheDisc.EndOfData();
  EXPECT_LE(end, CardMedium::kPartitionBytes);
  std::fill(bytes.begin(), bytes.end(), 1);
  disc_.TheDisc.FetchBytes(end, bytes);
  EXPECT_EQ(bytes, std::vector<std::uint8_t>(2000, 0));
}

TEST_P(EveryMedium, NeitherStoringNorFetchingMarksTheDiscAsChanged) {
  Open();
  disc_.TheDisc.Store(1, 1);
  (void)disc_.TheDisc.Fetch(1);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_P(EveryMedium, TheMediumIsReadableAfterCloseFile) {
  Open();
  disc_.TheDisc.Store(600, 1);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(disc_.TheDisc.Fetch(600), 1);
}

INSTANTIATE_TEST_SUITE_P(Store, EveryMedium, ::testing::ValuesIn(kMedia),
                         [](const auto& medium) { return std::string(medium.param.Name); });

}  // namespace
}  // namespace sectorbox
