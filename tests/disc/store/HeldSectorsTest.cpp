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
  image.AddFile(dir, {"A", Pattern(300, 1), 0, 0, "WR"});
  Open(image, kAdl);
  fs::create_directories(folder_ / "in/sub");
  HostFile("in/B", Pattern(300, 2));
  HostFile("in/a", Pattern(900, 3));
  HostFile("in/b", Pattern(300, 6));
  HostFile("in/sub/z", Pattern(300, 4));
  HostFile("in/t", Pattern(300, 5));
  // The second path replaces a file, which moves the directory. What the import has added there
  // before is known in the new place too.
  const std::vector<std::string> paths = {folder_ / "in/B", folder_ / "in/a", folder_ / "in/b",
                                          folder_ / "in/sub", folder_ / "in/t"};
  EXPECT_EQ(AddFiles(disc_, dir, paths), Outcome::kDone);
  ExpectSoundAndCompactedOnce();
  const auto work = GetEntrySector(disc_, 2, "WORK");
  EXPECT_NE(work, dir);
  EXPECT_EQ(Names(work), "a B sub t");
  EXPECT_EQ(Contents(work, "a"), Pattern(900, 3));
  EXPECT_EQ(Contents(work, "B"), Pattern(300, 2));
  EXPECT_EQ(Names(GetEntrySector(disc_, work, "sub")), "z");
  EXPECT_EQ(host_.LogOf("note left out").size(), 1U);
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
