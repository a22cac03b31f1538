#include "disc/health/Check.h"

#include "disc/catalogue/Adfs.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class CheckTest : public ::testing::Test {
 protected:
  // A disc with $.A (7), $.A.F (12, two sectors), $.G (14).
  CheckTest() {
    a_ = image_.AddDirectory(2, "A");
    image_.AddFile(a_, {"F", std::vector<std::uint8_t>(300)});
    image_.AddFile(2, {"G", {1}});
  }

  std::vector<std::string> Check() {
    image_.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 40, 1, 16);
    ReadFreeMap(disc_);
    std::vector<std::string> lines;
    for (const Fault& fault : CheckDisc(disc_)) {
      lines.push_back((fault.IsError() ? "error: " : "warning: ") + fault.Place() + ": " +
                      fault.Text());
    }
    return lines;
  }
  using Faults = std::vector<std::string>;
  static constexpr int kEntryG = 517 + 26;
  static constexpr int kEntryE = 517 + 26;  // once E is added, in front of G
  int EntryF() const { return a_ * 256 + 5; }

  TempFolder folder_;
  ImageBuilder image_{640};
  std::int32_t a_ = 0;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(CheckTest, ASoundDiscHasNoFault) {
  EXPECT_EQ(Check(), Faults{});
  EXPECT_TRUE(host_.Log.empty());
}

TEST_F(CheckTest, ADiscThatIsTooLargeForTheBbcOrItsCompanion) {
  const std::string path = folder_ / "disc.dat";
  const auto check = [&] {
    OpenImage(disc_, path);
    Faults lines;
    for (const Fault& fault : CheckDisc(disc_)) {
      lines.push_back((fault.IsError() ? "error: " : "warning: ") + fault.Place() + ": " +
                      fault.Text());
    }
    return lines;
  };
  CreateDisc(disc_, path, 32, 4, 33, kDat);
  EXPECT_EQ(check(), Faults{});
  ResizeImageFile(disc_, path, 64, 4, 33);
  EXPECT_EQ(check(), Faults{"warning: disc.dsc: tells of 4224 sectors, and the disc has 8448"});
  CreateDisc(disc_, path, 16384, 4, 33, kDat);
  EXPECT_EQ(check(), Faults{"warning: sector 0: the BBC can't write to a disc of this size"});
  disc_.TheDisc.CloseFile();
}

TEST_F(CheckTest, WrongChecksums) {
  image_.Poke(255, static_cast<std::uint8_t>(image_.Peek(255) + 1));
  image_.Poke(511, static_cast<std::uint8_t>(image_.Peek(511) + 1));
  const auto faults = Check();
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(faults[0].rfind("error: sector 0: the checksum is ", 0), 0U);
  EXPECT_EQ(faults[1].rfind("error: sector 1: the checksum is ", 0), 0U);
}

TEST_F(CheckTest, AnEndPointerThatIsNoMultipleOfThree) {
  image_.Poke(510, 4);
  image_.FixChecksums();
  EXPECT_EQ(Check(), Faults{"error: sector 1: the end of the free list is no multiple of 3: 4"});
}

TEST_F(CheckTest, AnEndPointerAbove246) {
  std::vector<std::pair<std::int32_t, std::int32_t>> runs;
  runs.reserve(82);
  for (int i = 0; i < 82; ++i) runs.push_back({15 + 2 * i, 1});
  runs.back().second = 640 - runs.back().first;
  image_.SetFreeRuns(runs);
  image_.Poke(510, 249);
  image_.FixChecksums();
  EXPECT_EQ(Check().front(), "error: sector 1: the end of the free list is above 246: 249");
}

TEST_F(CheckTest, RunsOutOfOrderTouchingOverlappingAndPastTheEnd) {
  image_.SetFreeRuns({{15, 100}, {115, 100}, {214, 100}, {20, 10}, {314, 327}});
  EXPECT_EQ(Check(), (Faults{"error: run 1: touches the run in front of it",
                             "error: run 2: overlaps the run in front of it",
                             "error: run 3: starts before the run in front of it",
                             "error: run 4: runs past the end of the disc"}));
}

TEST_F(CheckTest, ObjectsThatOverlapEachOther) {
  image_.Poke(kEntryG + 22, 13);
  EXPECT_EQ(Check(), (Faults{"error: $.G: overlaps $.A.F",
                             "warning: sector 00000E: 1 sectors from here belong to nothing"}));
}

TEST_F(CheckTest, ObjectsThatOverlapTheFreeSpace) {
  image_.SetFreeRuns({{14, 626}});
  EXPECT_EQ(Check(), Faults{"error: $.G: overlaps free run 0"});
}

TEST_F(CheckTest, AFileOverTheMapAndTheRoot) {
  image_.Poke(kEntryG + 22, 1);
  image_.Poke(kEntryG + 19, 1);  // two sectors
  EXPECT_EQ(Check(), (Faults{"error: $.G: overlaps the free space map", "error: $: overlaps $.G",
                             "warning: sector 00000E: 1 sectors from here belong to nothing"}));
}

// The BBC gives an empty file no sector of its own, and its compaction leaves the file where the
// next object starts.
TEST_F(CheckTest, AnEmptyFileMayStandWhereAnotherObjectStarts) {
  image_.AddFile(2, {"E", {}});
  image_.SetFreeRuns({{15, 625}});
  for (const int start : {7, 12, 14}) {  // $.A, $.A.F, $.G
    image_.Poke(kEntryE + 22, static_cast<std::uint8_t>(start));
    EXPECT_EQ(Check(), Faults{}) << start;
  }
}

TEST_F(CheckTest, AnEmptyFileMayStandInsideAnotherObject) {
  image_.AddFile(2, {"E", {}});
  image_.SetFreeRuns({{15, 625}});
  for (const int start : {1, 4, 9, 13}) {  // the map, the root, $.A, $.A.F
    image_.Poke(kEntryE + 22, static_cast<std::uint8_t>(start));
    EXPECT_EQ(Check(), Faults{}) << start;
  }
}

TEST_F(CheckTest, AnEmptyFileMayStandInTheFreeSpace) {
  image_.AddFile(2, {"E", {}});
  image_.SetFreeRuns({{15, 625}});
  EXPECT_EQ(Check(), Faults{});
}

TEST_F(CheckTest, EmptyFilesMayShareASector) {
  image_.AddFile(2, {"E", {}});
  image_.AddFile(2, {"E2", {}});
  image_.Poke(kEntryE + 26 + 22, 15);
  image_.SetFreeRuns({{16, 624}});
  EXPECT_EQ(Check(), Faults{});
}

TEST_F(CheckTest, AnEmptyFileMayStandAtTheEndOfAFullDisc) {
  image_.AddFile(2, {"E", {}});
  image_.AddFile(2, {"H", std::vector<std::uint8_t>(624 * 256)});
  image_.SetFreeRuns({{15, 1}});
  image_.Poke(kEntryE + 22, 640 & 255);
  image_.Poke(kEntryE + 23, 640 >> 8);
  EXPECT_EQ(Check(), Faults{});
  image_.Poke(kEntryE + 22, 641 & 255);
  EXPECT_EQ(Check(), Faults{"error: $.E: starts past the end of the disc"});
}

TEST_F(CheckTest, AnEmptyFileHidesNoOverlapOfItsNeighbours) {
  image_.AddFile(2, {"E", {}});
  image_.SetFreeRuns({{15, 625}});
  image_.Poke(kEntryE + 22, 13);
  image_.Poke(kEntryG + 26 + 22, 13);  // G moved one entry on
  EXPECT_EQ(Check(), (Faults{"error: $.G: overlaps $.A.F",
                             "warning: sector 00000E: 1 sectors from here belong to nothing"}));
}

TEST_F(CheckTest, SpaceThatNothingOwns) {
  image_.SetFreeRuns({{16, 100}, {120, 520}});
  EXPECT_EQ(Check(), (Faults{"warning: sector 00000F: 1 sectors from here belong to nothing",
                             "warning: sector 000074: 4 sectors from here belong to nothing"}));
}

TEST_F(CheckTest, SpaceAtTheEndThatNothingOwns) {
  image_.SetFreeRuns({{15, 600}});
  EXPECT_EQ(Check(), Faults{"warning: sector 000267: 25 sectors from here belong to nothing"});
}

TEST_F(CheckTest, MarksAndSequenceNumbersThatDisagree) {
  image_.Poke(a_ * 256 + 1275, 'h');
  image_.Poke(512 + 1274, 2);
  EXPECT_EQ(Check(), (Faults{"error: $: the sequence numbers at its start and its end differ",
                             "error: $.A: the marks at its start and its end differ"}));
}

TEST_F(CheckTest, ADirectoryWithoutItsMark) {
  image_.Poke(a_ * 256 + 1, 'h');
  EXPECT_EQ(Check(), (Faults{"error: $.A: is no directory: the mark at its start is missing",
                             "warning: sector 00000C: 2 sectors from here belong to nothing"}));
}

TEST_F(CheckTest, AWrongParent) {
  image_.Poke(a_ * 256 + 1238, 9);
  EXPECT_EQ(Check(),
            Faults{"error: $.A: names sector 000009 as its parent instead of sector 000002"});
}

TEST_F(CheckTest, TheRootsParentMayBeNothingOrItself) {
  image_.Poke(512 + 1238, 2);
  EXPECT_EQ(Check(), Faults{});
  image_.Poke(512 + 1238, 3);
  EXPECT_EQ(Check(),
            Faults{"error: $: names sector 000003 as its parent instead of sector 000002"});
}

TEST_F(CheckTest, DirectoriesThatLeadBack) {
  const auto b = image_.AddDirectory(a_, "B");
  // B is the first entry of A: point it at A itself, then at the root.
  image_.Poke(EntryF() + 22, static_cast<std::uint8_t>(a_));
  EXPECT_EQ(Check()[0], "error: $.A.B: leads back to a directory that it lies in");
  image_.Poke(EntryF() + 22, 2);
  EXPECT_EQ(Check()[0], "error: $.A.B: leads back to a directory that it lies in");
  image_.Poke(EntryF() + 22, static_cast<std::uint8_t>(b));
  EXPECT_EQ(Check(), Faults{});
}

TEST_F(CheckTest, ADirectoryThatIsListedTwice) {
  image_.AddDirectory(2, "B");
  image_.Poke(517 + 26 + 22, static_cast<std::uint8_t>(a_));
  EXPECT_EQ(Check().front(), "error: $.B: overlaps $.A");
}

TEST_F(CheckTest, StartsAndLengthsPastTheEnd) {
  image_.Poke(kEntryG + 24, 1);   // far beyond
  image_.Poke(EntryF() + 20, 3);  // nearly 800 sectors
  const auto faults = Check();
  ASSERT_GE(faults.size(), 2U);
  EXPECT_EQ(faults[0], "error: $.A.F: runs past the end of the disc");
  EXPECT_EQ(faults[1], "error: $.G: starts past the end of the disc");
}

TEST_F(CheckTest, NamesOutOfOrderAndTwice) {
  image_.Poke(517, 'Z' | 0x80);
  EXPECT_EQ(Check(), Faults{"warning: $.G: stands out of order"});
  image_.Poke(517, 'g' | 0x80);
  EXPECT_EQ(Check(), Faults{"warning: $.G: the name is there twice"});
}

TEST_F(CheckTest, NamesThatCannotBeTyped) {
  image_.Poke(517, 7 | 0x80);
  EXPECT_EQ(Check(), (Faults{"warning: $.\a: the name holds characters that can't be typed"}));
}

TEST_F(CheckTest, ADiscWithoutSpaceForItsRoot) {
  image_.Poke(252, 0);
  image_.Poke(253, 0);
  image_.FixChecksums();
  const auto faults = Check();
  EXPECT_NE(std::find(faults.begin(), faults.end(), "error: $: runs past the end of the disc"),
            faults.end());
}

}  // namespace
}  // namespace sectorbox
