// What holds for every kind of medium, below the store.

#include <gtest/gtest.h>

#include <chrono>

#include <algorithm>
#include <ostream>

#include "disc/medium/MediumKinds.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/MemoryMedium.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

using Bytes = std::vector<std::uint8_t>;

class WholeImages final : public ImageRules {
 public:
  bool InterleavedDisc() const override { return true; }
  std::optional<std::int32_t> SectorsToStore() override { return std::nullopt; }
  std::chrono::milliseconds LockPatience() const override { return {}; }
  void ImageLoaded() override {}
};

struct Kind {
  const char* Name;
  DiscType Type;
  Geometry Shape;
  std::int32_t Partition = 0;
  bool IsMemory = false;
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.Name;
}

constexpr Kind kKinds[] = {
    {"Adf", kAdf, {80, 1, 16}},
    {"Dat", kDat, {32, 4, 33}},
    {"Card0", kCF, {}, 0},
    {"Card1", kCF, {}, 1},
    {"Memory", kDat, {32, 4, 33}, 0, true},
};

class EveryKind : public ::testing::TestWithParam<Kind> {
 protected:
  std::unique_ptr<Medium> Open() {
    const Kind& kind = GetParam();
    if (kind.IsMemory) return std::make_unique<MemoryMedium>(blocks_);
    const std::string name =
        kind.Type == kCF ? "/dev/card," + std::to_string(kind.Partition) : folder_ / "image";
    return maker_.Make(kind.Type, {name, kind.Shape, kind.Partition}, {device_, host_, rules_});
  }
  static Bytes Block(const Medium& medium, unsigned seed) {
    Bytes block(medium.BlockLayout().BlockBytes);
    for (std::size_t i = 0; i < block.size(); ++i) {
      block[i] = static_cast<std::uint8_t>(i * 7 + seed);
    }
    return block;
  }

  TempFolder folder_;
  ScriptedHost host_;
  MemoryDevice device_{0x400000};
  WholeImages rules_;
  MediumMaker maker_;
  std::shared_ptr<MemoryBlocks> blocks_ = std::make_shared<MemoryBlocks>();
};

TEST_P(EveryKind, ABlockThatWasWrittenIsReadAgainAlsoAfterCloseAndOpen) {
  auto medium = Open();
  const Bytes first = Block(*medium, 1);
  const Bytes third = Block(*medium, 3);
  medium->WriteBlock(0, first);
  medium->WriteBlock(2, third);
  for (int round = 0; round < 2; ++round) {
    Bytes read(first.size());
    EXPECT_TRUE(medium->ReadBlock(0, read));
    EXPECT_EQ(read, first);
    EXPECT_TRUE(medium->ReadBlock(2, read));
    EXPECT_EQ(read, third);
    EXPECT_TRUE(medium->ReadBlock(1, read));
    EXPECT_EQ(read, Bytes(first.size()));
    medium->Close();
    medium = Open();
  }
}

TEST_P(EveryKind, WhatNobodyWroteReadsAsZeros) {
  auto medium = Open();
  Bytes read(medium->BlockLayout().BlockBytes, 1);
  EXPECT_TRUE(medium->ReadBlock(100, read));
  EXPECT_EQ(read, Bytes(read.size()));
}

TEST_P(EveryKind, ARunThatIsReadIsWhatTheBlocksHold) {
  auto medium = Open();
  const std::size_t stride = medium->BlockLayout().Stride;
  for (std::int32_t block = 0; block < 6; ++block) {
    medium->WriteBlock(block, Block(*medium, static_cast<unsigned>(block)));
  }
  Bytes run(std::size_t{4} * Medium::kBlockSize);
  const std::size_t done = medium->ReadRun(Medium::kBlockSize, run);
  EXPECT_EQ(done % Medium::kBlockSize, 0U);
  for (std::size_t i = 0; i < done; ++i) {
    const Bytes block = Block(*medium, static_cast<unsigned>(1 + i / Medium::kBlockSize));
    ASSERT_EQ(run[i], block[i % Medium::kBlockSize * stride]) << i;
  }
}

TEST_P(EveryKind, ARunThatIsWrittenIsWhatTheBlocksHoldAfterwards) {
  auto medium = Open();
  const Bytes run(std::size_t{3} * Medium::kBlockSize, 0x5A);
  const std::size_t done = medium->WriteRun(Medium::kBlockSize, run);
  EXPECT_EQ(done % Medium::kBlockSize, 0U);
  Bytes read(medium->BlockLayout().BlockBytes);
  for (std::size_t at = 0; at < done; at += Medium::kBlockSize) {
    EXPECT_TRUE(medium->ReadBlock(static_cast<std::int32_t>(1 + at / Medium::kBlockSize), read));
    EXPECT_EQ(read, Bytes(read.size(), 0x5A));
  }
}

TEST_P(EveryKind, MemoryIsTheWholeDiscOrNothing) {
  auto medium = Open();
  EXPECT_EQ(medium->Memory().empty(), !medium->InMemory());
  if (!medium->InMemory()) return;
  EXPECT_EQ(static_cast<std::int64_t>(medium->Memory().size()), medium->Extent());
  EXPECT_EQ(medium->EndOfData(), medium->Extent());
  medium->Memory()[1024] = 9;
  Bytes read(Medium::kBlockSize);
  EXPECT_TRUE(medium->ReadBlock(1, read));
  EXPECT_EQ(read[0], 9);
}

TEST_P(EveryKind, NothingLiesBehindTheEndOfData) {
  auto medium = Open();
  medium->WriteBlock(3, Block(*medium, 3));
  EXPECT_GE(medium->EndOfData(), 4 * Medium::kBlockSize);
  EXPECT_LE(medium->EndOfData(), medium->Extent());
}

TEST_P(EveryKind, BytesInsideMayBeStored) {
  auto medium = Open();
  const Bytes bytes(5000, 1);
  EXPECT_EQ(medium->Storable(0, bytes).size(), bytes.size());
  EXPECT_TRUE(host_.LogOf("note").empty());
}

TEST_P(EveryKind, ItIsNotTheFileOfAnotherName) {
  auto medium = Open();
  WriteText(folder_ / "other", "x");
  EXPECT_FALSE(medium->Is(folder_ / "other"));
  EXPECT_FALSE(medium->Is(folder_ / "nowhere"));
}

INSTANTIATE_TEST_SUITE_P(Medium, EveryKind, ::testing::ValuesIn(kKinds),
                         [](const auto& kind) { return std::string(kind.param.Name); });

TEST(MediumKinds, EveryTypeHasOneLineInTheTable) {
  for (const DiscType type : {kAdf, kAdl, kDat, kCF}) {
    const auto kinds = MediumKinds();
    EXPECT_EQ(std::count_if(kinds.begin(), kinds.end(),
                            [&](const MediumKind& kind) { return kind.Type == type; }),
              1);
    EXPECT_EQ(KindOf(type).Type, type);
  }
}

// --- The medium that fails -----------------------------------------------------------------------

class FaultyMediumTest : public ::testing::Test {
 protected:
  FaultyMediumTest() : medium_(std::make_unique<MemoryMedium>(blocks_), plan_) {}

  void Write(std::int32_t block, std::uint8_t value) {
    medium_.WriteBlock(block, Bytes(Medium::kBlockSize, value));
  }

  FaultPlan plan_;
  std::shared_ptr<MemoryBlocks> blocks_ = std::make_shared<MemoryBlocks>();
  FaultyMedium medium_;
};

TEST_F(FaultyMediumTest, TheNthWriteFailsAndTheOthersDoNot) {
  plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, 1);
  Write(0, 1);
  EXPECT_THROW(Write(1, 2), HostError);
  Write(2, 3);
  EXPECT_EQ(blocks_->count(0), 1U);
  EXPECT_EQ(blocks_->count(1), 0U);
  EXPECT_EQ(blocks_->count(2), 1U);
  EXPECT_EQ(plan_.Writes, 3);
}

TEST_F(FaultyMediumTest, ATornWriteLeavesTheOldBackHalf) {
  Write(0, 1);
  plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kTear, 0);
  EXPECT_THROW(Write(0, 2), HostError);
  EXPECT_EQ(blocks_->at(0).front(), 2);
  EXPECT_EQ(blocks_->at(0).back(), 1);
}

TEST_F(FaultyMediumTest, AfterTheLastWriteNoneReachesTheMedium) {
  plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kLast, 0);
  Write(0, 1);
  Write(1, 2);
  EXPECT_EQ(blocks_->count(0), 1U);
  EXPECT_EQ(blocks_->count(1), 0U);
}

TEST_F(FaultyMediumTest, TheNthReadAndTheNthSyncFail) {
  Bytes read(Medium::kBlockSize);
  plan_.Set(FaultPlan::Operation::kRead, FaultPlan::Kind::kFail, 1);
  EXPECT_TRUE(medium_.ReadBlock(0, read));
  EXPECT_THROW((void)medium_.ReadBlock(0, read), HostError);
  plan_.Set(FaultPlan::Operation::kSync, FaultPlan::Kind::kFail, 0);
  EXPECT_THROW(medium_.Sync(), HostError);
  EXPECT_NO_THROW(medium_.Sync());
}

}  // namespace
}  // namespace sectorbox
