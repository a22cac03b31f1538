// The runs that a change has written, and the sums of their bytes.

#include "disc/medium/WrittenRuns.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/disc/EngineTest.h"
#include "tests/support/MemoryMedium.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kBlock = Medium::kBlockSize;

class WrittenRunsTest : public ::testing::Test {
 protected:
  // Writes blocks and notes them, as a change does.
  void Write(std::int32_t first, std::int32_t blocks, unsigned seed) {
    const Bytes bytes = Pattern(static_cast<std::size_t>(blocks) * kBlock, seed);
    for (std::int32_t i = 0; i < blocks; ++i) {
      const auto part = std::span(bytes).subspan(static_cast<std::size_t>(i) * kBlock, kBlock);
      medium_.WriteBlock(first + i, part);
    }
    runs_.Note(first, bytes, kBlock);
  }
  // A run whose sum is known has that of the medium.
  void ExpectRun(std::int32_t first, std::int32_t blocks, bool hasSum) {
    ASSERT_TRUE(runs_.Runs().contains(first)) << first;
    const auto& run = runs_.Runs().at(first);
    EXPECT_EQ(run.Blocks, blocks);
    EXPECT_EQ(run.Sum.has_value(), hasSum);
    EXPECT_EQ(run.Sum.value_or(*SumOnMedium(medium_, first, run.Blocks)),
              *SumOnMedium(medium_, first, run.Blocks));
  }

  std::shared_ptr<MemoryBlocks> blocks_ = std::make_shared<MemoryBlocks>();
  MemoryMedium medium_{blocks_};
  WrittenRuns runs_;
};

TEST_F(WrittenRunsTest, BlocksThatFollowEachOtherAreOneRun) {
  Write(10, 1, 1);
  Write(11, 3, 2);
  Write(14, 1, 3);
  EXPECT_EQ(runs_.Runs().size(), 1U);
  ExpectRun(10, 5, true);
}

TEST_F(WrittenRunsTest, TheLastBlockMayBeWrittenOnceMore) {
  Write(10, 4, 1);
  Write(13, 1, 2);
  ExpectRun(10, 4, true);
  Write(13, 3, 3);
  ExpectRun(10, 6, true);
  Write(15, 1, 4);
  ExpectRun(10, 6, true);
}

TEST_F(WrittenRunsTest, ARunThatIsWrittenAnewHasItsNewSum) {
  Write(10, 4, 1);
  Write(10, 4, 2);
  ExpectRun(10, 4, true);
}

TEST_F(WrittenRunsTest, RunsThatShareABlockBecomeOneWithoutASum) {
  Write(10, 4, 1);
  Write(20, 4, 2);
  Write(12, 1, 3);
  ExpectRun(10, 4, false);
  Write(13, 8, 4);
  EXPECT_EQ(runs_.Runs().size(), 1U);
  ExpectRun(10, 14, false);
  runs_.NotePart(30);
  EXPECT_EQ(runs_.Runs().size(), 2U);
  ExpectRun(30, 1, false);
}

TEST_F(WrittenRunsTest, ARunThatReachesTheNextOneStaysApart) {
  Write(14, 2, 1);
  Write(10, 4, 2);
  EXPECT_EQ(runs_.Runs().size(), 2U);
  ExpectRun(10, 4, true);
  ExpectRun(14, 2, true);
}

// Whatever is written in whatever order: each block belongs to one run, and each sum is right.
TEST_F(WrittenRunsTest, AfterAnyWritesTheRunsHoldEachBlockOnceAndTheirSumsAreRight) {
  unsigned state = 1;
  const auto next = [&state](unsigned below) {
    state = state * 1103515245U + 12345U;
    return static_cast<std::int32_t>((state >> 16) % below);
  };
  for (int round = 0; round < 300; ++round) {
    runs_.Clear();
    std::set<std::int32_t> written;
    for (int i = 0; i < 12; ++i) {
      const std::int32_t first = next(40);
      const std::int32_t blocks = 1 + next(6);
      Write(first, blocks, static_cast<unsigned>(round * 12 + i));
      for (std::int32_t block = first; block < first + blocks; ++block) written.insert(block);
    }
    std::set<std::int32_t> inRuns;
    for (const auto& [first, run] : runs_.Runs()) {
      ExpectRun(first, run.Blocks, run.Sum.has_value());
      for (std::int32_t block = first; block < first + run.Blocks; ++block) {
        EXPECT_TRUE(inRuns.insert(block).second) << block;
      }
    }
    ASSERT_EQ(inRuns, written);
  }
}

}  // namespace
}  // namespace sectorbox
