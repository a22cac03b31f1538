// Objects that share sectors, as on a damaged disc: whatever goes, the others keep their bytes.

#include "disc/change/Compaction.h"
#include "disc/health/Check.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class OverlapTest : public EngineTest {
 protected:
  // Files A at 7 to 10, B at 11 to 20 and C at 21 to 25, and then B is put at 9 to 18.
  static ImageBuilder MakeImage() {
    ImageBuilder image(640);
    image.AddFile(2, {"A", Pattern(1000, 1)});
    image.AddFile(2, {"B", Pattern(2500, 2)});
    image.AddFile(2, {"C", Pattern(1200, 3)});
    image.Poke(517 + 26 + 22, 9);
    return image;
  }
};

TEST_F(OverlapTest, DeletingOneOfTwoOverlappingFilesKeepsTheSectorsOfTheOther) {
  Open(MakeImage());
  const Bytes b = Contents(2, "B");
  EXPECT_EQ(DeleteEntry(disc_, 2, "A", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+2 26+614");
  // What is added next takes free sectors, and none of B's.
  EXPECT_EQ(Add("N", Pattern(1000, 9)), Outcome::kDone);
  EXPECT_EQ(Add("O", Pattern(300, 8)), Outcome::kDone);
  EXPECT_EQ(Contents(2, "B"), b);
}

TEST_F(OverlapTest, TheLastOwnerOfASectorFreesIt) {
  Open(MakeImage());
  EXPECT_EQ(DeleteEntry(disc_, 2, "B", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "11+8 26+614");
  EXPECT_EQ(DeleteEntry(disc_, 2, "A", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+12 26+614");
}

TEST_F(OverlapTest, ReplacingAFileKeepsTheSectorsOfAnotherOne) {
  for (const DiscType kind : {kAdf, kDat}) {
    Open(MakeImage(), kind);
    const Bytes b = Contents(2, "B");
    EXPECT_EQ(Add("A", Pattern(1000, 9)), Outcome::kDone);
    EXPECT_EQ(Contents(2, "A"), Pattern(1000, 9));
    EXPECT_EQ(Contents(2, "B"), b);
    EXPECT_EQ(GetEntrySector(disc_, 2, "A"), 26);
  }
}

TEST_F(OverlapTest, AFileWithinAnotherOneLeavesItTheMiddle) {
  ImageBuilder image = MakeImage();
  image.Poke(517 + 52 + 22, 11);  // C at 11 to 15
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "B", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "16+3 26+614");
}

TEST_F(OverlapTest, ADirectoryThatIsListedTwiceStaysUntilBothEntriesAreGone) {
  ImageBuilder image(640);
  image.AddDirectory(2, "D1");  // 7
  image.AddDirectory(2, "D2");  // 12
  image.Poke(517 + 26 + 22, 7);
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "D1", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "17+623");
  EXPECT_EQ(DeleteEntry(disc_, 2, "D2", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+5 17+623");
}

TEST_F(OverlapTest, DeletingATreeKeepsTheSectorsOfAFileOutside) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");  // 7
  image.AddFile(dir, {"A", Pattern(1000, 1)});    // 12 to 15
  image.AddFile(dir, {"B", Pattern(1000, 2)});    // 16 to 19
  image.AddFile(2, {"X", Pattern(1000, 3)});      // 20 to 23, and then 14 to 17
  image.Poke(517 + 26 + 22, 14);
  Open(image);
  const Bytes x = Contents(2, "X");
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+7 18+2 24+616");
  EXPECT_EQ(Contents(2, "X"), x);
}

TEST_F(OverlapTest, ACompactionIsRefusedAndChangesNothing) {
  Open(MakeImage());
  const Bytes before = Image();
  host_.AcceptMessages = true;
  EXPECT_EQ(CompactDisc(disc_), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

// Each deletion leaves a hole. The eightieth would compact the disc.
TEST_F(OverlapTest, TheDeletionThatWouldCompactTheDiscLeavesEveryFileWhereItIs) {
  ImageBuilder image(2560);
  std::vector<std::int32_t> dirs;
  for (int d = 0; d < 4; ++d) dirs.push_back(image.AddDirectory(2, "D" + std::to_string(d)));
  for (int i = 0; i < 180; ++i) {
    image.AddFile(dirs[static_cast<std::size_t>(i / 45)],
                  {"F" + std::to_string(100 + i), Pattern(256, static_cast<unsigned>(i))});
  }
  const std::int64_t last = 256 * std::int64_t{dirs[3]} + 5 + 26 * 44;
  image.Poke(last + 22, static_cast<std::uint8_t>(image.Peek(last + 22) - 2));
  Open(image);
  const Bytes kept = Contents(dirs[3], "F279");
  for (int i = 0; i < 176; i += 2) {
    EXPECT_EQ(DeleteEntry(disc_, dirs[static_cast<std::size_t>(i / 45)],
                          "F" + std::to_string(100 + i), false, true),
              Outcome::kDone);
  }
  EXPECT_FALSE(host_.LogOf("note").empty());
  EXPECT_EQ(Contents(dirs[3], "F279"), kept);
  EXPECT_EQ(Contents(dirs[0], "F101"), Pattern(256, 1));
}

}  // namespace
}  // namespace sectorbox
