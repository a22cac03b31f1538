#include "disc/catalogue/Catalogue.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class CatalogueTest : public ::testing::Test {
 protected:
  void Open(const ImageBuilder& image) {
    image.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 80, 1, 16);
  }
  // "NAME@sector<parent" for each node, a "+" behind those that have children.
  std::vector<std::string> Tree() {
    std::vector<std::string> lines;
    for (const TreeNode& node : WalkTree(disc_)) {
      lines.push_back(node.Text + "@" + std::to_string(node.Tag) + "<" +
                      std::to_string(node.Parent) + (node.Open ? "+" : ""));
    }
    return lines;
  }

  // The names alone, in the order of the walk.
  std::string Walked() {
    std::string names;
    for (const TreeNode& node : WalkTree(disc_)) names += (names.empty() ? "" : " ") + node.Text;
    return names;
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(CatalogueTest, TheWalkIsDepthFirstInTheOrderOfTheSlots) {
  ImageBuilder image(1280);
  const auto b = image.AddDirectory(2, "B");   // 7
  image.AddDirectory(2, "A");                  // 12
  image.AddDirectory(b, "BB");                 // 17
  const auto c = image.AddDirectory(b, "BA");  // 22
  image.AddDirectory(c, "BAA");                // 27
  image.AddFile(b, {"FILE", {1}});
  Open(image);
  EXPECT_EQ(Tree(), (std::vector<std::string>{"$@2<-1+", "A@12<0", "B@7<0+", "BA@22<2+", "BAA@27<3",
                                              "BB@17<2"}));
}

TEST_F(CatalogueTest, EventsRunAfterEachChildOfTheRootAndNoOther) {
  ImageBuilder image(1280);
  const auto a = image.AddDirectory(2, "A");
  image.AddDirectory(a, "AA");
  image.AddDirectory(a, "AB");
  image.AddDirectory(2, "B");
  Open(image);
  EXPECT_EQ(WalkTree(disc_).size(), 5U);
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pump", "pump"}));
}

TEST_F(CatalogueTest, TheWalkCountsFilesAndDirectories) {
  ImageBuilder image(1280);
  const auto a = image.AddDirectory(2, "A");
  image.AddFile(a, {"F", {1}});
  image.AddFile(2, {"G", {1}});
  Open(image);
  std::vector<TreeNode> tree = {{"$", 2, -1, false}};
  WalkCounts counts;
  FindFiles(disc_, tree, 0, 2, counts);
  EXPECT_EQ(counts.FileCount, 2);
  EXPECT_EQ(counts.DirCount, 1);
}

TEST_F(CatalogueTest, ARootFullOfDirectoriesGives47Nodes) {
  ImageBuilder image(1280);
  for (int i = 0; i < 47; ++i) image.AddDirectory(2, "D" + std::to_string(10 + i));
  Open(image);
  const auto tree = Tree();
  ASSERT_EQ(tree.size(), 48U);
  EXPECT_EQ(tree.back(), "D56@237<0");
}

TEST_F(CatalogueTest, ADirectoryWithoutItsMarkIsANodeWithoutChildrenAndListsNothing) {
  ImageBuilder image(1280);
  const auto a = image.AddDirectory(2, "A");
  image.AddDirectory(a, "AA");
  image.Poke(a * 256 + 1, 'h');
  Open(image);
  EXPECT_EQ(Tree(), (std::vector<std::string>{"$@2<-1+", "A@7<0"}));
  EXPECT_TRUE(ReadRows(disc_, a).empty());
  EXPECT_FALSE(FindPath(disc_, "$.A.AA").Found);
}

TEST_F(CatalogueTest, ADirectoryThatLeadsBackIsANodeWithoutChildrenAndHidesNoOther) {
  ImageBuilder image(1280);
  image.AddDirectory(image.AddDirectory(2, "A"), "SELF");
  image.Poke(7 * 256 + 5 + 22, 7);  // SELF is A again
  image.AddDirectory(image.AddDirectory(2, "B"), "ROOT");
  image.Poke(17 * 256 + 5 + 22, 2);  // ROOT is the root again
  image.AddDirectory(2, "C");
  Open(image);
  EXPECT_EQ(Walked(), "$ A SELF B ROOT C");
}

TEST_F(CatalogueTest, DirectoriesThatAllListEachOtherAreWalkedOnce) {
  ImageBuilder image(1280);
  // Twelve directories: each but the last lists two, which are one and the same.
  std::int32_t dir = 2;
  for (int i = 0; i < 12; ++i) {
    const auto left = image.AddDirectory(dir, "L");
    image.AddDirectory(dir, "R");
    image.Poke(dir * 256 + 5 + 26 + 22, static_cast<std::uint8_t>(left));
    dir = left;
  }
  Open(image);
  EXPECT_EQ(WalkTree(disc_).size(), 25U);
}

TEST_F(CatalogueTest, NamesWithDotsAreFoundInAPath) {
  ImageBuilder image(1280);
  const auto dotted = image.AddDirectory(2, "A.B");
  const auto inside = image.AddFile(dotted, {"C.D.E", {1}});
  image.AddFile(dotted, {".", {1}});
  const auto plain = image.AddDirectory(2, "X");
  const auto plainFile = image.AddFile(plain, {"Y", {1}});
  image.AddFile(2, {"X.Y", {1}});
  const auto other = image.AddFile(2, {"X.Z", {1}});
  Open(image);
  EXPECT_EQ(FindPath(disc_, "$.a.b").Sector, dotted);
  EXPECT_EQ(FindPath(disc_, "A.B.C.D.E").Sector, inside);
  EXPECT_TRUE(FindPath(disc_, "A.B..").Found);
  EXPECT_FALSE(FindPath(disc_, "A.B.C.D").Found);
  EXPECT_FALSE(FindPath(disc_, "A.B.C.D.E.F").Found);
  // What can be read as names without dots is read so.
  EXPECT_EQ(FindPath(disc_, "X.Y").Sector, plainFile);
  EXPECT_EQ(FindPath(disc_, "X.Z").Sector, other);
}

TEST_F(CatalogueTest, APathThatCanBeReadInVeryManyWaysIsSearchedSoon) {
  ImageBuilder image(1280);
  for (const char* name : {"A", "A.A", "A.A.A"}) image.AddDirectory(2, name);
  // All three are the root itself.
  for (int slot = 0; slot < 3; ++slot) image.Poke(517 + 26 * slot + 22, 2);
  Open(image);
  std::string path = "A";
  for (int i = 0; i < 2000; ++i) path += ".A";
  EXPECT_TRUE(FindPath(disc_, path).Found);
  EXPECT_FALSE(FindPath(disc_, path + ".B").Found);
}

TEST_F(CatalogueTest, TheRootNodeCarriesTheRootsOwnName) {
  ImageBuilder image(1280);
  image.Poke(512 + 1228, 'R');
  Open(image);
  EXPECT_EQ(WalkTree(disc_).front().Text, "R");
}

TEST_F(CatalogueTest, RowsOfFilesAndDirectories) {
  ImageBuilder image(1280);
  image.AddDirectory(2, "DIR");
  image.AddFile(2, {"File", std::vector<std::uint8_t>(300), 0xFFFF0E00, 0xFFFF8023, "LR"});
  image.Poke(517 + 26 + 25, 0x42);
  Open(image);
  const auto rows = ReadRows(disc_, 2);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].Columns,
            (std::array<std::string, 7>{"DIR", "DWR", "(00)", "000007", "", "", ""}));
  EXPECT_EQ(rows[1].Columns, (std::array<std::string, 7>{"File", "LR", "(42)", "FFFF0E00",
                                                         "FFFF8023", "0000012C", "00000C"}));
  EXPECT_EQ(rows[0].Key(), "DDIR");
  EXPECT_EQ(rows[1].Key(), "FFile");
  EXPECT_EQ(rows[0].StartSector(), 7);
  EXPECT_EQ(rows[1].StartSector(), 12);
  EXPECT_EQ(rows[0].Length(), 1280U);
  EXPECT_EQ(rows[1].Length(), 300U);
}

TEST_F(CatalogueTest, TheListEndsAtANameThatACarriageReturnCutsToNothing) {
  ImageBuilder image(1280);
  image.AddFile(2, {"A", {1}});
  image.AddFile(2, {"B", {1}});
  image.Poke(517 + 26, 13 | 0x80);
  Open(image);
  EXPECT_EQ(ReadRows(disc_, 2).size(), 1U);
  EXPECT_EQ(Tree(), (std::vector<std::string>{"$@2<-1"}));
}

TEST_F(CatalogueTest, PathsAreFoundWithoutRegardToCaseAndWithOrWithoutTheRoot) {
  ImageBuilder image(1280);
  const auto games = image.AddDirectory(2, "Games");
  const auto elite = image.AddFile(games, {"ELITE", {1}});
  Open(image);
  for (const char* path : {"$.GAMES.ELITE", "games.elite", "$.Games.Elite"}) {
    const PathTarget target = FindPath(disc_, path);
    ASSERT_TRUE(target.Found) << path;
    EXPECT_FALSE(target.IsDirectory);
    EXPECT_EQ(target.DirSector, games);
    EXPECT_EQ(target.Slot, 0);
    EXPECT_EQ(target.Sector, elite);
    EXPECT_EQ(target.Name, "ELITE");
  }
  for (const char* path : {"", "$"}) {
    EXPECT_TRUE(FindPath(disc_, path).Found);
    EXPECT_TRUE(FindPath(disc_, path).IsDirectory);
    EXPECT_EQ(FindPath(disc_, path).Sector, 2);
    EXPECT_EQ(FindPath(disc_, path).DirSector, -1);
  }
  for (const char* path : {"NONE", "$.", ".", "GAMES.", "GAMES..ELITE", "$.GAMES.ELITE.X", "$$"}) {
    EXPECT_FALSE(FindPath(disc_, path).Found) << path;
  }
}

}  // namespace
}  // namespace sectorbox
