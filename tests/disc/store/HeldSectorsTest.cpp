// Operations that go on working in a directory while a compaction moves it.

#include <filesystem>

#include "disc/exchange/HostExchange.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class HeldSectorsTest : public EngineTest {
 protected:
  // A disc with 78 holes below everything that the test adds, and so 79 free runs: the next release
  // that adds one compacts it.
  static ImageBuilder DiscFullOfHoles() {
    ImageBuilder image(2560);
    const auto low = image.AddDirectory(2, "LOWA");
    const auto more = image.AddDirectory(2, "LOWB");
    for (int i = 0; i < 78; ++i) {
      image.AddHole(1);
      image.AddFile(i < 40 ? low : more, {"F" + std::to_string(100 + i), Pattern(9), 0, 0, "WR"});
    }
    return image;
  }
  void ExpectSoundAndCompactedOnce() {
    EXPECT_EQ(Faults(), std::vector<std::string>());
    EXPECT_EQ(host_.LogOf("status Compacting").size(), 1U);
  }
};

TEST_F(HeldSectorsTest, AReplacementGoesOnInTheDirectoryThatItsDeletionMoved) {
  ImageBuilder image = DiscFullOfHoles();
  const auto dir = image.AddDirectory(2, "WORK");
  image.AddFile(dir, {"X", Pattern(600, 1), 0, 0, "WR"});
  image.AddFile(dir, {"Y", Pattern(600, 2), 0, 0, "WR"});
  Open(image, kAdl);
  EXPECT_EQ(Add("X", Pattern(700, 3), dir), Outcome::kDone);
  ExpectSoundAndCompactedOnce();
  const auto moved = GetEntrySector(disc_, 2, "WORK");
  EXPECT_NE(moved, dir);
  EXPECT_EQ(Names(moved), "X Y");
  EXPECT_EQ(Contents(moved, "X"), Pattern(700, 3));
  EXPECT_EQ(Contents(moved, "Y"), Pattern(600, 2));
}

TEST_F(HeldSectorsTest, AReplacementBehindAPrefixFindsItsDirectoryAgain) {
  ImageBuilder image = DiscFullOfHoles();
  const auto dir = image.AddDirectory(2, "WORK");
  const auto sub = image.AddDirectory(dir, "B");
  image.AddFile(sub, {"X", Pattern(600, 1), 0, 0, "WR"});
  image.AddFile(sub, {"Y", Pattern(600, 2), 0, 0, "WR"});
  Open(image, kAdl);
  EXPECT_EQ(Add("B.X", Pattern(700, 3), dir), Outcome::kDone);
  ExpectSoundAndCompactedOnce();
  const auto moved = GetEntrySector(disc_, GetEntrySector(disc_, 2, "WORK"), "B");
  EXPECT_EQ(Contents(moved, "X"), Pattern(700, 3));
}

TEST_F(HeldSectorsTest, DeletingATreeGoesOnInTheDirectoriesThatMoved) {
  ImageBuilder image = DiscFullOfHoles();
  const auto dir = image.AddDirectory(2, "WORK");
  const auto sub = image.AddDirectory(dir, "SUB");
  image.AddFile(sub, {"A", Pattern(600, 1), 0, 0, "WR"});
  image.AddFile(2, {"KEEP", Pattern(600, 2), 0, 0, "WR"});
  image.AddFile(sub, {"B", Pattern(600, 3), 0, 0, "WR"});
  image.AddFile(dir, {"C", Pattern(600, 4), 0, 0, "WR"});
  Open(image, kAdl);
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "WORK", true, true), Outcome::kDone);
  ExpectSoundAndCompactedOnce();
  EXPECT_EQ(Names(2), "KEEP LOWA LOWB");
  EXPECT_EQ(Contents(2, "KEEP"), Pattern(600, 2));
}

TEST_F(HeldSectorsTest, AnImportGoesOnInTheFoldersThatAReplacementMoved) {
  ImageBuilder image = DiscFullOfHoles();
  const auto dir = image.AddDirectory(2, "WORK");
  Open(image, kAdl);
  fs::create_directories(folder_ / "in/sub");
  // Two host names that are one name on the disc: the second replaces the first.
  HostFile("in/sub/A", Pattern(300, 1));
  HostFile("in/sub/B", Pattern(300, 2));
  HostFile("in/sub/a", Pattern(900, 3));
  HostFile("in/sub/z", Pattern(300, 4));
  HostFile("in/t", Pattern(300, 5));
  EXPECT_EQ(ImportFolder(disc_, dir, folder_ / "in"), Outcome::kDone);
  ExpectSoundAndCompactedOnce();
  const auto in = GetEntrySector(disc_, GetEntrySector(disc_, 2, "WORK"), "in");
  EXPECT_EQ(Names(in), "sub t");
  const auto sub = GetEntrySector(disc_, in, "sub");
  EXPECT_EQ(Names(sub), "a B z");
  EXPECT_EQ(Contents(sub, "a"), Pattern(900, 3));
  EXPECT_EQ(Contents(sub, "z"), Pattern(300, 4));
}

TEST_F(HeldSectorsTest, ThePanesAreToldWhereTheirDirectoriesWent) {
  ImageBuilder image = DiscFullOfHoles();
  const auto dir = image.AddDirectory(2, "WORK");
  image.AddFile(dir, {"X", Pattern(600, 1), 0, 0, "WR"});
  image.AddFile(dir, {"Y", Pattern(600, 2), 0, 0, "WR"});
  Open(image, kAdl);
  EXPECT_EQ(DeleteEntry(disc_, dir, "X", false, true), Outcome::kDone);
  const auto moved = GetEntrySector(disc_, 2, "WORK");
  EXPECT_EQ(host_.LogOf("moved"),
            std::vector<std::string>{"moved " + std::to_string(dir) + ">" + std::to_string(moved)});
}

TEST_F(HeldSectorsTest, NothingIsHeldOnceAnOperationIsOver) {
  Open(DiscFullOfHoles(), kAdl);
  EXPECT_EQ(Add("B.X", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(DeleteTree(disc_, -1, 2, "$", true, true), Outcome::kDone);
  EXPECT_THROW((void)AddFile(disc_, 2, folder_ / "none"), std::runtime_error);
  EXPECT_TRUE(disc_.TrackedSectors.empty());
}

}  // namespace
}  // namespace sectorbox
