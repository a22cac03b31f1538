#include "disc/change/FreeMap.h"

#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class FreeMapTest : public EngineTest {
 protected:
  void OpenWithRuns(const std::vector<std::pair<std::int32_t, std::int32_t>>& runs,
                    std::int32_t sectors = 640) {
    ImageBuilder image(sectors);
    image.SetFreeRuns(runs);
    Open(image);
  }
};

TEST_F(FreeMapTest, TheLowestRunThatIsLongEnoughWins) {
  OpenWithRuns({{10, 2}, {20, 8}, {40, 8}});
  EXPECT_EQ(FindFreeRun(disc_, 5 * 256), 1);
}

TEST_F(FreeMapTest, A256ByteNeedFitsARunOfOneSectorAnd257DoesNot) {
  OpenWithRuns({{10, 1}, {20, 2}});
  EXPECT_EQ(FindFreeRun(disc_, 256), 0);
  EXPECT_EQ(FindFreeRun(disc_, 257), 1);
  EXPECT_EQ(FindFreeRun(disc_, 513), -1);
}

TEST_F(FreeMapTest, AnEmptyFileIsSatisfiedByAnyRunAndTakesOneSector) {
  OpenWithRuns({{10, 3}, {20, 8}});
  EXPECT_EQ(FindFreeRun(disc_, 0), 0);
  EXPECT_EQ(Add("EMPTY", {}), Outcome::kDone);
  EXPECT_EQ(Runs(), "11+2 20+8");
}

TEST_F(FreeMapTest, ARunOfLengthZeroIsNoRunNotEvenForAnEmptyFile) {
  OpenWithRuns({{10, 0}, {20, 1}});
  EXPECT_EQ(FindFreeRun(disc_, 0), 1);
  OpenWithRuns({{640, 0}});
  EXPECT_EQ(FindFreeRun(disc_, 0), -1);
  host_.ExpectedMessages = {kNoSpaceMessage};
  EXPECT_EQ(Add("EMPTY", {}), Outcome::kRefused);
}

TEST_F(FreeMapTest, AFileOfExactlyTheRunsSizeRemovesTheRun) {
  OpenWithRuns({{10, 2}, {20, 3}, {40, 9}});
  EXPECT_EQ(Add("X", Pattern(3 * 256)), Outcome::kDone);
  EXPECT_EQ(disc_.FreeCount, 2);
  EXPECT_EQ(Runs(), "10+2 40+9");
  EXPECT_EQ(Image()[510], 6);
}

TEST_F(FreeMapTest, TakingTheLastRunWholeLeavesTheOthersAlone) {
  OpenWithRuns({{10, 2}, {20, 3}});
  TakeSectors(disc_, 1, 3);
  EXPECT_EQ(Runs(), "10+2");
}

TEST_F(FreeMapTest, ReleasingBetweenTwoRunsMergesAllThree) {
  OpenWithRuns({{10, 2}, {15, 5}, {40, 9}});
  ReleaseSectors(disc_, 12, 3);
  EXPECT_EQ(Runs(), "10+10 40+9");
}

TEST_F(FreeMapTest, ReleasingAboveTheLastRunAddsOneAtTheEndMergedIfItTouches) {
  OpenWithRuns({{10, 2}});
  ReleaseSectors(disc_, 30, 3);
  EXPECT_EQ(Runs(), "10+2 30+3");
  ReleaseSectors(disc_, 33, 1);
  EXPECT_EQ(Runs(), "10+2 30+4");
}

TEST_F(FreeMapTest, ReleasingBelowTheFirstRunPutsItInFront) {
  OpenWithRuns({{10, 2}});
  ReleaseSectors(disc_, 8, 1);
  EXPECT_EQ(Runs(), "8+1 10+2");
}

TEST_F(FreeMapTest, RunsThatOverlapAreNeitherMergedNorReported) {
  OpenWithRuns({{10, 10}});
  ReleaseSectors(disc_, 15, 10);
  EXPECT_EQ(Runs(), "10+10 15+10");
}

TEST_F(FreeMapTest, ADiscWithoutAFreeRunRefusesEveryAllocation) {
  OpenWithRuns({});
  EXPECT_EQ(Image()[510], 0);
  host_.ExpectedMessages = {kNoSpaceMessage, kNoSpaceMessage, kNoSpaceMessage};
  const Bytes before = Image();
  EXPECT_EQ(Add("EMPTY", {}), Outcome::kRefused);
  EXPECT_EQ(Add("X", Pattern(1)), Outcome::kRefused);
  EXPECT_EQ(NewDirectory(disc_, 2, "D"), std::nullopt);
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(FreeMapTest, FreeSpaceInPiecesDoesNotCount) {
  OpenWithRuns({{10, 4}, {20, 4}});
  host_.ExpectedMessages = {kNoSpaceMessage};
  EXPECT_EQ(NewDirectory(disc_, 2, "D"), std::nullopt);
}

TEST_F(FreeMapTest, TheMapIsWrittenWithBothChecksumsAndEntriesPastTheEndStay) {
  OpenWithRuns({{10, 2}, {0x10000, 0x20000}});
  TakeSectors(disc_, 0, 2);
  const Bytes image = Image();
  EXPECT_EQ(Bytes(image.begin(), image.begin() + 6), (Bytes{0, 0, 1, 0, 0, 1}));
  EXPECT_EQ(Bytes(image.begin() + 256, image.begin() + 262), (Bytes{0, 0, 2, 0, 0, 2}));
  EXPECT_EQ(image[510], 3);
  // Added up by hand: 255 + 1 + 1 + the size's 128 and 2 carry once past 255.
  EXPECT_EQ(image[255], (255 + 1 + 1 + 128 + 2) % 256 + 1);
  EXPECT_EQ(image[511], (255 + 2 + 2 + 3) % 256 + 1);
}

TEST_F(FreeMapTest, TheReleaseThatMakesEightyRunsCompactsTheDisc) {
  ImageBuilder image(2560);
  for (int i = 0; i < 4; ++i) image.AddDirectory(2, std::string(1, static_cast<char>('A' + i)));
  const std::int32_t dirs[] = {7, 12, 17, 22};
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 40; ++j) {
      image.AddFile(dirs[i], {"F" + std::to_string(100 + j), Pattern(200, 7), 0, 0, "WR"});
    }
  }
  Open(image, kAdl);
  // Every second file is deleted, and each leaves a hole of its own.
  for (int n = 0; n < 79; ++n) {
    ASSERT_EQ(DeleteEntry(disc_, dirs[n / 20], "F" + std::to_string(100 + n % 20 * 2), false, true),
              Outcome::kDone);
    ASSERT_EQ(disc_.FreeCount, n < 78 ? n + 2 : 1) << n;
  }
  EXPECT_EQ(Faults(), std::vector<std::string>());
  EXPECT_EQ(Runs(), std::to_string(27 + 160 - 79) + "+" + std::to_string(2560 - 27 - 160 + 79));
  EXPECT_EQ(host_.LogOf("status Compacting Disc").size(), 1U);
}

TEST_F(FreeMapTest, ADamagedDiscWithAFullListLosesNoRunToARelease) {
  ImageBuilder image(2560);
  image.AddDirectory(2, "LOOP");
  image.Poke(512 + 5 + 22, 2);  // LOOP is the root itself, so no compaction is possible
  std::vector<std::pair<std::int32_t, std::int32_t>> runs;
  runs.reserve(82);
  for (int i = 0; i < 82; ++i) runs.push_back({100 + 10 * i, 1});
  image.SetFreeRuns(runs);
  Open(image, kAdl);
  ReleaseSectors(disc_, 2000, 1);
  EXPECT_EQ(disc_.FreeCount, 82);
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
  EXPECT_EQ(ReadFreeRuns(Image()).size(), 82U);
  EXPECT_EQ(ReadFreeRuns(Image()).back().Start, 100 + 10 * 81);
}

}  // namespace
}  // namespace sectorbox
