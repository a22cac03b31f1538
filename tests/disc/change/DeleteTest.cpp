#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class DeleteTest : public EngineTest {};

TEST_F(DeleteTest, ANameThatIsNotThereIsDoneWithoutAMessageOrABump) {
  Open(ImageBuilder(640));
  const Bytes before = Image();
  EXPECT_EQ(DeleteEntry(disc_, 2, "NONE", false, false), Outcome::kDone);
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(DeleteTest, TheSectorsComeFreeTheGapClosesAndTheDataStay) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  image.AddFile(2, {"B", Pattern(300), 0, 0, "WR"});
  image.AddFile(2, {"C", Pattern(300), 0, 0, "WR"});
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "b", false, false), Outcome::kDone);
  EXPECT_EQ(Names(2), "A C");
  EXPECT_EQ(Runs(), "9+2 13+627");
  EXPECT_EQ(Sequence(2), 2);
  EXPECT_TRUE(disc_.ImageChanged);
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 9 * 256, disc.begin() + 9 * 256 + 300), Pattern(300));
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, DeletingTheLastEntryOfAFullDirectoryZeroesSlot46) {
  ImageBuilder image(640);
  for (int i = 0; i < 47; ++i) image.AddFile(2, {"F" + std::to_string(100 + i), {}, 0, 0, "WR"});
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "F146", false, false), Outcome::kDone);
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 512 + 1201, disc.begin() + 512 + 1227), Bytes(26));
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, LockedEntriesAreRefusedUnlessTheLockIsIgnored) {
  ImageBuilder image(640);
  image.AddFile(2, {"FILE", {}, 0, 0, "LWR"});
  image.AddDirectory(2, "DIR", "LWR");
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Cannot Delete Locked File : FILE",
                            "Cannot Delete Locked Directory : DIR"};
  EXPECT_EQ(DeleteEntry(disc_, 2, "FILE", false, false), Outcome::kRefused);
  EXPECT_EQ(DeleteEntry(disc_, 2, "DIR", true, false), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
  EXPECT_EQ(DeleteEntry(disc_, 2, "FILE", false, true), Outcome::kDone);
  EXPECT_EQ(DeleteEntry(disc_, 2, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+633");
}

// A damaged directory may list a name twice.
class RepeatedNameTest : public DeleteTest {
 protected:
  // The root lists a file A of zeros and two directories A, each with a file F.
  void OpenRepeated() {
    ImageBuilder image(640);
    image.AddFile(2, {"A", Bytes(900), 0, 0, "WR"});
    for (int i = 0; i < 2; ++i) {
      dirs_[i] = image.AddDirectory(2, i == 0 ? "B" : "C");
      image.AddFile(dirs_[i], {"F", Pattern(900, static_cast<unsigned>(i)), 0, 0, "WR"});
      image.Poke(517 + 26 * (i + 1), image.Peek(517));
    }
    Open(image);
    ASSERT_EQ(Names(2), "A A A");
  }

  std::int32_t dirs_[2] = {};
};

TEST_F(RepeatedNameTest, TheDirectoryThatIsMeantGoesAndNoFileOrDirectoryOfItsName) {
  for (const int which : {0, 1}) {
    OpenRepeated();
    EXPECT_EQ(DeleteTree(disc_, 2, dirs_[which], "A", false, true), Outcome::kDone);
    const ReadObject root = Tree();
    ASSERT_EQ(root.Contents.size(), 2U);
    EXPECT_EQ(root.Contents[0].Bytes, Bytes(900));
    ASSERT_EQ(root.Contents[1].Contents.size(), 1U);
    EXPECT_EQ(root.Contents[1].Contents[0].Bytes, Pattern(900, which == 0 ? 1 : 0));
    EXPECT_EQ(FreeSectors(disc_), 640 - 7 - 4 - 9);
  }
}

TEST_F(RepeatedNameTest, AFileIsNoDirectoryAndADirectoryNoFile) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "A");
  image.AddFile(dir, {"F", Pattern(900), 0, 0, "WR"});
  image.AddFile(2, {"Z", Bytes(900), 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  EXPECT_EQ(DeleteEntry(disc_, 2, "A", false, true), Outcome::kDone);
  EXPECT_EQ(DeleteEntry(disc_, 2, "Z", true, true), Outcome::kDone);
  EXPECT_EQ(Image(), before);
}

// The list of the window may show sectors from before a compaction.
TEST_F(RepeatedNameTest, AFileThatIsAloneWithItsNameIsFoundWhereverItStarts) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "A", false, false, 100), Outcome::kDone);
  EXPECT_EQ(Names(2), "");
}

TEST_F(RepeatedNameTest, EachChangeGoesToTheEntryThatIsMeant) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(900, 1), 0, 0, "WR"});
  const auto second = image.AddFile(2, {"B", Pattern(900, 2), 0, 0, "WR"});
  image.Poke(517 + 26, image.Peek(517));
  Open(image);
  EXPECT_EQ(SetEntryAddresses(disc_, 2, "A", "00001900", "00008023", second), Outcome::kDone);
  EXPECT_EQ(SetEntryAttributes(disc_, 2, "A", true, false, false, second), Outcome::kDone);
  EXPECT_EQ(RenameEntry(disc_, "Q", "A", 2, false, second), Outcome::kDone);
  EXPECT_EQ(Names(2), "A Q");
  EXPECT_EQ(Contents(2, "A"), Pattern(900, 1));
  EXPECT_EQ(Contents(2, "Q"), Pattern(900, 2));
  EXPECT_EQ(Load(2, "A"), 0U);
  EXPECT_EQ(Load(2, "Q"), 0x1900U);
  EXPECT_EQ(Attr(2, "A"), "WR");
  EXPECT_EQ(Attr(2, "Q"), "R");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, TheLockIsReportedBeforeTheContents) {
  ImageBuilder image(640);
  image.AddFile(image.AddDirectory(2, "DIR", "LWR"), {"X", {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Cannot Delete Locked Directory : DIR",
                            "Cannot Delete Non Empty Directory : DIR"};
  EXPECT_EQ(DeleteEntry(disc_, 2, "DIR", true, false), Outcome::kRefused);
  EXPECT_EQ(DeleteEntry(disc_, 2, "DIR", true, true), Outcome::kRefused);
}

TEST_F(DeleteTest, ADirectoryCountsAs1280BytesWhateverItsFieldHolds) {
  ImageBuilder image(640);
  image.AddDirectory(2, "DIR");
  image.Poke(517 + 18, 0);
  image.Poke(517 + 19, 0);
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+633");
}

TEST_F(DeleteTest, ATreeGoesWithAllThatIsInItAndYieldsAfterEachEntry) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", {}, 0, 0, "WR"});
  image.AddFile(image.AddDirectory(dir, "SUB"), {"B", {}, 0, 0, "WR"});
  Open(image);
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Names(2), "");
  EXPECT_EQ(Runs(), "7+633");
  EXPECT_EQ(host_.LogOf("pump").size(), 3U);
}

TEST_F(DeleteTest, WithoutTheOptionANonEmptyTreeIsRefused) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Cannot Delete Non Empty Directory : DIR"};
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, false), Outcome::kRefused);
  EXPECT_EQ(Names(dir), "A");
}

TEST_F(DeleteTest, ALockedFileDeepInATreeLeavesItHalfRemoved) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", {}, 0, 0, "WR"});
  image.AddFile(dir, {"B", {}, 0, 0, "LWR"});
  image.AddFile(dir, {"C", {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Cannot Delete Locked File : B"};
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", false, true), Outcome::kRefused);
  EXPECT_EQ(Names(dir), "B C");
  EXPECT_EQ(Names(2), "DIR");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, ALockedDirectoryIsKeptAndWhatWasInItIsGone) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  const auto sub = image.AddDirectory(dir, "SUB", "LWR");
  image.AddFile(sub, {"A", {}, 0, 0, "WR"});
  image.AddFile(dir, {"Z", {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Cannot Delete Locked Directory : SUB"};
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", false, true), Outcome::kRefused);
  EXPECT_EQ(Names(sub), "");
  EXPECT_EQ(Names(dir), "SUB Z");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, ADiscThatIsOpenedDuringADeleteKeepsAllThatIsOnIt) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  for (const char* name : {"A", "B", "C"}) image.AddFile(dir, {name, {}, 0, 0, "WR"});
  ImageBuilder other(640);
  ASSERT_EQ(other.AddDirectory(2, "DIR"), dir);
  for (const char* name : {"X", "Y", "Z"}) other.AddFile(dir, {name, {}, 0, 0, "WR"});
  other.WriteTo(folder_ / "other.img");
  for (const bool root : {false, true}) {
    Open(image);
    bool opened = false;
    host_.OnPump = [&] {
      if (opened) return;
      opened = true;
      disc_.TheDisc.OpenFile(folder_ / "other.img", kAdf, 40, 1, 16);
      ReadFreeMap(disc_);
    };
    EXPECT_EQ(DeleteTree(disc_, root ? -1 : 2, root ? 2 : dir, "DIR", true, true),
              Outcome::kStopped);
    EXPECT_EQ(Image(), other.Bytes());
  }
}

TEST_F(DeleteTest, WhatTakesTheSectorsOfADirectoryThatIsDeletedMeanwhileIsLeftAlone) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  const auto sub = image.AddDirectory(dir, "SUB");
  for (const char* name : {"A", "B", "C"}) image.AddFile(sub, {name, {}, 0, 0, "WR"});
  Open(image);
  bool meanwhile = false;
  host_.OnPump = [&] {
    if (meanwhile) return;
    meanwhile = true;
    EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
    for (const char* name : {"NEW", "NEW2"}) {
      const std::int32_t made = NewDirectory(disc_, 2, name).value();
      EXPECT_EQ(Add("MINE", Pattern(300), made), Outcome::kDone);
    }
  };
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kStopped);
  EXPECT_EQ(Names(2), "NEW NEW2");
  for (const char* name : {"NEW", "NEW2"}) {
    EXPECT_EQ(Contents(GetEntrySector(disc_, 2, name), "MINE"), Pattern(300));
  }
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, AChangeElsewhereInTheParentDoesNotEndADelete) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  for (const char* name : {"A", "B", "C"}) image.AddFile(dir, {name, {}, 0, 0, "WR"});
  image.AddFile(2, {"OLD", {}, 0, 0, "WR"});
  Open(image);
  bool renamed = false;
  host_.OnPump = [&] {
    if (renamed) return;
    renamed = true;
    EXPECT_EQ(RenameEntry(disc_, "KEPT", "OLD", 2, true), Outcome::kDone);
  };
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Names(2), "KEPT");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, TheRootIsEmptiedAndKept) {
  ImageBuilder image(640);
  image.AddFile(image.AddDirectory(2, "DIR"), {"A", {}, 0, 0, "WR"});
  image.AddFile(2, {"B", {}, 0, 0, "WR"});
  Open(image);
  EXPECT_EQ(DeleteTree(disc_, -1, 2, "$", true, true), Outcome::kDone);
  EXPECT_EQ(Names(2), "");
  EXPECT_EQ(Runs(), "7+633");
}

TEST_F(DeleteTest, ATreeThatLeadsBackUpIsRefusedBeforeAnythingInItIsDeleted) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", {}, 0, 0, "WR"});
  image.AddDirectory(dir, "LOOP");
  image.Poke(dir * 256 + 5 + 26 + 22, static_cast<std::uint8_t>(dir));
  image.AddFile(2, {"MINE", {}, 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Cannot Delete Damaged Directory : DIR"};
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(DeleteTest, ADirectoryThatIsTheRootItselfDoesNotTakeTheDiscAlong) {
  ImageBuilder image(640);
  image.AddDirectory(2, "LOOP");
  image.Poke(517 + 22, 2);
  image.AddFile(2, {"MINE", {}, 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Cannot Delete Damaged Directory : LOOP"};
  EXPECT_EQ(DeleteTree(disc_, 2, 2, "LOOP", true, true), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(DeleteTest, ADirectoryWithoutItsMarkIsNotTakenApart) {
  ImageBuilder image(640);
  const auto file = image.AddFile(2, {"A", Pattern(3000), 0, 0, "WR"});
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddDirectory(dir, "BAD");
  image.AddFile(dir, {"MINE", {1}, 0, 0, "WR"});
  image.Poke(dir * 256 + 5 + 22, static_cast<std::uint8_t>(file));  // BAD is A's bytes
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Cannot Delete Damaged Directory : DIR"};
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(DeleteTest, AnEmptyDirectoryWithoutItsMarkCanGo) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "BAD");
  image.Poke(dir * 256 + 1, 0);
  Open(image);
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "BAD", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+633");
}

TEST_F(DeleteTest, AnEmptyFilesSectorStaysWhereADamagedDirectoryMayOwnIt) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "BAD");
  image.AddFile(2, {"E", {}, 0, 0, "WR"});
  image.Poke(dir * 256 + 1, 0);
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "E", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "13+627");
}

TEST_F(DeleteTest, AnEmptyFilesSectorStaysWhereDirectoriesLieTooDeepToTellWhoOwnsIt) {
  ImageBuilder image(2560);
  image.AddFile(2, {"E", {}, 0, 0, "WR"});
  std::int32_t dir = 2;
  for (int i = 0; i < kMaxWalkDepth; ++i) dir = image.AddDirectory(dir, "D");
  Open(image, kAdl);
  const std::string before = Runs();
  EXPECT_EQ(DeleteEntry(disc_, 2, "E", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), before);
}

TEST_F(DeleteTest, AnEmptyFilesSectorStaysWhereObjectsOverlap) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  image.AddFile(2, {"B", Pattern(900), 0, 0, "WR"});
  image.AddFile(2, {"E", {}, 0, 0, "WR"});
  image.Poke(517 + 26 + 22, 10);  // B starts in A
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "E", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "16+624");
}

TEST_F(DeleteTest, AnEmptyFileThatTheBbcGaveNoSectorFreesNobodyElses) {
  ImageBuilder image(640);
  const auto file = image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  image.AddFile(2, {"E1", {}, 0, 0, "WR"});
  image.AddFile(2, {"E2", {}, 0, 0, "WR"});
  image.Poke(517 + 26 + 22, static_cast<std::uint8_t>(file + 1));
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "E1", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "13+627") << "the sector is A's";
  EXPECT_EQ(DeleteEntry(disc_, 2, "E2", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "12+628") << "the sector was E2's own";
}

TEST_F(DeleteTest, WhatStandsBehindTheFirstEmptySlotOwnsNothing) {
  ImageBuilder image(640);
  image.AddFile(2, {"E", {}, 0, 0, "WR"});
  image.Poke(517 + 2 * 26, 'X');
  image.Poke(517 + 2 * 26 + 18, 1);
  image.Poke(517 + 2 * 26 + 22, 7);
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "E", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+633");
}

TEST_F(DeleteTest, ATreeOfEmptyFilesThatShareASectorGivesItBackOnce) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", Pattern(900), 0, 0, "WR"});
  for (int i = 1; i < 6; ++i) {
    const auto sector = image.AddFile(dir, {"E" + std::to_string(i), {}, 0, 0, "WR"});
    ASSERT_EQ(sector, 15 + i);
  }
  image.Poke(dir * 256 + 5 + 1 * 26 + 22, 13);  // E1 stands in A
  image.Poke(dir * 256 + 5 + 3 * 26 + 22, 17);  // E3 stands where E2 does
  image.Poke(dir * 256 + 5 + 5 * 26 + 22, 30);  // E5 stands in free space
  image.SetFreeRuns({{16, 1}, {18, 1}, {20, 620}});
  Open(image);
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+633");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, EmptyFilesGoOnBeingToldApartAfterACompactionInTheirTree) {
  ImageBuilder image(2560);
  const auto dir = image.AddDirectory(2, "DIR");
  const auto sub = image.AddDirectory(dir, "SUB");
  const auto keep = image.AddDirectory(2, "KEEP");
  for (int i = 0; i < 45; ++i) {
    const std::string number = std::to_string(100 + i);
    image.AddHole(1);
    image.AddFile(2, {"K" + number, Pattern(300), 0, 0, "WR"});
    image.AddFile(dir, {"E" + number, {}, 0, 0, "WR"});
    image.AddFile(keep, {"K" + number, Pattern(300), 0, 0, "WR"});
    image.AddFile(sub, {"F" + number, {}, 0, 0, "WR"});
  }
  Open(image, kAdl);
  ASSERT_EQ(disc_.FreeCount, 46);
  EXPECT_EQ(DeleteTree(disc_, 2, dir, "DIR", true, true), Outcome::kDone);
  EXPECT_EQ(host_.LogOf("status Compacting").size(), 1U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DeleteTest, WhatADamagedEntryClaimsOfTheMapAndTheRootDoesNotComeFree) {
  ImageBuilder image(640);
  image.AddFile(2, {"LOW", Pattern(2560), 0, 0, "WR"});
  image.Poke(517 + 22, 0);  // LOW starts in the map
  image.SetFreeRuns({});
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "LOW", false, true), Outcome::kDone);
  EXPECT_EQ(Runs(), "7+3");
}

TEST_F(DeleteTest, NothingComesFreeWhereAnEntryClaimsOnlyTheMapAndTheRoot) {
  ImageBuilder image(640);
  image.AddFile(2, {"LOW", Pattern(7 * 256), 0, 0, "WR"});
  image.Poke(517 + 22, 0);
  image.SetFreeRuns({});
  Open(image);
  EXPECT_EQ(DeleteEntry(disc_, 2, "LOW", false, true), Outcome::kDone);
  EXPECT_EQ(disc_.FreeCount, 0);
}

TEST_F(DeleteTest, NothingIsDeletedWhereAnEntryClaimsSectorsBehindTheDisc) {
  for (const bool startsThere : {false, true}) {
    ImageBuilder image(640);
    image.AddFile(2, {"LOW", Pattern(2560), 0, 0, "WR"});
    image.AddFile(2, {"PAST", Pattern(512), 0, 0, "WR"});
    if (startsThere) {
      image.Poke(517 + 26 + 22, 640 & 255);
      image.Poke(517 + 26 + 23, 640 >> 8);
    } else {
      for (int i = 18; i < 22; ++i) image.Poke(517 + 26 + i, 0xFF);
    }
    image.SetFreeRuns({});
    Open(image);
    const Bytes before = Image();
    host_.ExpectedMessages = {
        "Cannot Change A Damaged Disc : $.PAST: runs past the end of the disc"};
    EXPECT_EQ(DeleteEntry(disc_, 2, "PAST", false, true), Outcome::kRefused);
    EXPECT_TRUE(Image() == before);
  }
}

}  // namespace
}  // namespace sectorbox
