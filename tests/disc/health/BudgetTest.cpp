// Discs that would take memory, time or host space without bound: every walk has a budget, and says
// so when it is reached.

#include <filesystem>

#include "disc/catalogue/Agreement.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/health/Check.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/CrowdedDisc.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using BudgetTest = EngineTest;

CrowdedEntry UnprintableName(std::int32_t, std::int32_t k) {
  return {"\x01" + std::to_string(100 + k), 0xFFFFF0, 1, false};
}

TEST_F(BudgetTest, CheckTellsTenThousandFaultsAndThenHowManyMoreThereAre) {
  Open(CrowdedDisc(300, UnprintableName), kDat);
  const std::vector<Fault> faults = CheckDisc(disc_);
  ASSERT_EQ(faults.size(), kMaxFaults + 1);
  EXPECT_EQ(faults[kMaxFaults - 1].Text().find("not listed"), std::string::npos);
  EXPECT_TRUE(faults.back().IsError());
  EXPECT_EQ(faults.back().Place(), "$");
  // The map has two wrong sums. Each of the 300 x 45 files has two faults, and each directory's
  // first such name stands out of order.
  EXPECT_EQ(faults.back().Text(), std::to_string(2 + 300 * 45 * 2 + 149 - kMaxFaults + 1) +
                                      " more faults are not listed");
}

TEST_F(BudgetTest, CheckEndsTheWalkWhenADiscListsMoreThanItHasRoomFor) {
  const auto overlapping = [](std::int32_t, std::int32_t k) {
    return CrowdedEntry{"F" + std::to_string(100 + k), 7, 1, false};
  };
  Open(CrowdedDisc(400, overlapping), kDat);
  std::size_t ends = 0;
  CheckDisc(disc_, [&](const Fault& fault) {
    ends += fault.Text() == "lists more than the disc has room for: not looked at any further";
    EXPECT_EQ(fault.Text().find("belong to nothing"), std::string::npos);
  });
  EXPECT_EQ(ends, 1U);
}

TEST_F(BudgetTest, AFewMoreObjectsThanSectorsAreAllLookedAt) {
  const auto overlapping = [](std::int32_t, std::int32_t k) {
    return CrowdedEntry{"F" + std::to_string(100 + k), 7, 1, false};
  };
  Open(CrowdedDisc(20, overlapping), kDat);
  std::size_t overlaps = 0;
  CheckDisc(disc_, [&](const Fault& fault) { overlaps += fault.Text().starts_with("overlaps "); });
  EXPECT_EQ(overlaps, 20U * 45);
}

TEST_F(BudgetTest, ManyEmptyFilesAtOnePlaceAreNoFaultAndCloseNoGapButTheirOwn) {
  ImageBuilder image(640);
  for (int i = 0; i < 20; ++i) image.AddFile(2, {"E" + std::to_string(10 + i), {}, 0, 0, "WR"});
  for (int i = 0; i < 20; ++i) image.Poke(517 + 26 * i + 22, 9);
  Open(image);
  std::string lines;
  for (const Fault& fault : CheckDisc(disc_)) lines += fault.Place() + ": " + fault.Text() + "\n";
  EXPECT_EQ(lines,
            "sector 000007: 2 sectors from here belong to nothing\n"
            "sector 00000A: 17 sectors from here belong to nothing\n");
}

TEST_F(BudgetTest, ATreeHasNoMoreNodesThanADiscHasDirectoriesAndSaysSo) {
  const auto again = [](std::int32_t, std::int32_t k) {
    return CrowdedEntry{"D" + std::to_string(100 + k), 2, 0, true};
  };
  Open(CrowdedDisc(10000, again), kDat);
  EXPECT_EQ(WalkTree(disc_).size(), static_cast<std::size_t>(kMaxWalkDirectories));
  EXPECT_EQ(host_.LogOf("note left out").size(), 1U);
}

TEST_F(BudgetTest, ATreeThatIsTooDeepSaysSo) {
  ImageBuilder image(4224);
  std::int32_t dir = 2;
  for (int i = 0; i < 300; ++i) dir = image.AddDirectory(dir, "D");
  Open(image, kDat);
  EXPECT_EQ(WalkTree(disc_).size(), static_cast<std::size_t>(kMaxWalkDepth) + 1);
  EXPECT_EQ(host_.LogOf("note left out").size(), 1U);
}

TEST_F(BudgetTest, AnExportEndsAtTwiceTheDiscsSizeAndSaysSo) {
  const auto whole = [](std::int32_t, std::int32_t k) {
    return CrowdedEntry{"F" + std::to_string(100 + k), 7, 500000, false};
  };
  Open(CrowdedDisc(400, whole), kDat);
  ExportFiles(disc_, folder_ / "out", 2);
  std::uintmax_t written = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder_ / "out")) {
    if (entry.is_regular_file()) written += entry.file_size();
  }
  EXPECT_LT(written, 2 * size_ + 1200000);
  EXPECT_GT(written, size_);
  const auto notes = host_.LogOf("note left out");
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_NE(notes[0].find("the export ends here"), std::string::npos);
}

TEST_F(BudgetTest, AFullDiscOfEmptyFilesIsExportedWhole) {
  const auto empty = [](std::int32_t, std::int32_t k) {
    return CrowdedEntry{"F" + std::to_string(100 + k), 7, 0, false};
  };
  Open(CrowdedDisc(100, empty), kDat);
  ExportFiles(disc_, folder_ / "out", 2);
  EXPECT_EQ(host_.LogOf("note"), std::vector<std::string>());
}

}  // namespace
}  // namespace sectorbox
