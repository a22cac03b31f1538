// Undo and redo: every step of every kind of disc comes back, byte for byte, whatever fails.

#include "disc/undo/History.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "disc/host/HostError.h"
#include "disc/image/SaveImage.h"
#include "tests/disc/undo/UndoneDisc.h"

namespace sectorbox {
namespace {

using namespace testing;

UndoRoom RoomOf(std::size_t memory, std::size_t files) {
  UndoRoom room;
  room.MostInMemory = memory;
  room.MostInFiles = files;
  return room;
}

const UndoRoom kPlenty = RoomOf(std::size_t{64} << 20, std::size_t{1} << 30);

class HistoryTest : public ::testing::TestWithParam<UndoKind> {
 protected:
  // Does, undoes and does again at random, and compares each time with the bytes that the disc had.
  // Gives how many steps were undone.
  int RunAtRandom(unsigned seed, int commands, const UndoRoom& room) {
    UndoneDisc disc(GetParam(), room);
    History& history = disc.TheHistory();
    std::mt19937 random(seed);
    // What the disc was before the first step that can be undone, and after each step.
    std::vector<Bytes> states = {disc.Now()};
    std::size_t at = 0;
    int undone = 0;
    const bool isShort = room.MostInMemory < kPlenty.MostInMemory;
    for (int i = 0; i < commands; ++i) {
      SCOPED_TRACE("command " + std::to_string(i) + ", seed " + std::to_string(seed));
      if (random() % 5 < 3) {
        const std::int64_t former = history.LastStep();
        const bool couldUndo = history.CanUndo();
        const std::string name = disc.DoSomething(random);
        if (isShort && !history.CanUndo() && !history.CanRedo()) {
          states = {disc.Now()};
          at = 0;
        } else if (history.LastStep() == former && history.CanUndo() == couldUndo) {
          EXPECT_EQ(disc.Now(), states[at]) << name;
        } else {
          states.resize(at + 1);
          states.push_back(disc.Now());
          ++at;
        }
      } else if (random() % 3 != 0 ? history.CanUndo() : !history.CanRedo() && history.CanUndo()) {
        EXPECT_EQ(history.Undo(), Outcome::kDone);
        --at;
        ++undone;
      } else if (history.CanRedo()) {
        EXPECT_EQ(history.Redo(), Outcome::kDone);
        ++at;
      }
      EXPECT_EQ(disc.Now(), states[at]);
      if (isShort && !history.CanRedo()) states.resize(at + 1);
      EXPECT_EQ(history.CanRedo(), at + 1 < states.size());
      if (HasFailure()) return undone;
    }
    EXPECT_EQ(FaultsOf(disc.Whole()), std::vector<std::string>());
    return undone;
  }
};

TEST_P(HistoryTest, UndoAndRedoInAnyOrderBringEveryByteBack) {
  int undone = 0;
  // Some long sequences and many short ones; UNDO_SEQUENCES says how many.
  const char* wanted = std::getenv("UNDO_SEQUENCES");
  const unsigned most = wanted != nullptr ? static_cast<unsigned>(std::stoul(wanted)) : 200;
  for (unsigned seed = 1; seed <= most; ++seed) {
    undone += RunAtRandom(seed, seed <= 3 ? 400 : 12, kPlenty);
    if (HasFailure()) return;
  }
  EXPECT_GT(undone, 500);
}

TEST_P(HistoryTest, WhereRoomIsShortFewerStepsCanBeUndoneAndTheseExactly) {
  int undone = 0;
  // In memory, in a file, and in neither.
  for (const auto& room :
       {RoomOf(30000, 0), RoomOf(8000, 40000), RoomOf(0, 60000), RoomOf(2048, 2048)}) {
    undone += RunAtRandom(static_cast<unsigned>(room.MostInMemory + room.MostInFiles), 400, room);
    if (HasFailure()) return;
  }
  EXPECT_GT(undone, 50);
}

// The undo of a whole disc's work fails at each of its writes, or the program is killed there.
TEST_P(HistoryTest, AnUndoThatFailsAnywhereLeavesTheDiscBeforeOrAfterAndCanBeTriedAgain) {
  if (GetParam().Type != kDat && GetParam().Type != kCF) return;  // only these are written in place
  for (const auto operation : {FaultPlan::Operation::kWrite, FaultPlan::Operation::kSync}) {
    for (const bool isRedo : {false, true}) {
      int at = 0;
      for (bool failed = true; failed && at < 200; ++at) {
        SCOPED_TRACE(at);
        UndoneDisc disc(GetParam(), kPlenty);
        const Bytes first = disc.Now();
        {
          const History::Step step(disc.TheHistory(), "Delete");
          ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F07", false, false), Outcome::kDone);
        }
        const Bytes before = disc.Now();
        {
          const History::Step step(disc.TheHistory(), "Import");
          ASSERT_EQ(ImportFolder(disc.TheDisc(), 2, disc.Folder() + "/TREE"), Outcome::kDone);
        }
        const Bytes after = disc.Now();
        ASSERT_TRUE(!isRedo || disc.TheHistory().Undo() == Outcome::kDone);
        disc.Plan().Set(operation, FaultPlan::Kind::kFail, at);
        failed = false;
        try {
          (void)(isRedo ? disc.TheHistory().Redo() : disc.TheHistory().Undo());
        } catch (const HostError&) {
          failed = true;
        }
        disc.Plan().Set(operation, FaultPlan::Kind::kNone, 0);
        const std::string now = DescribeDisc(disc.Whole());
        const auto describe = [](Bytes bytes) {
          bytes.resize(static_cast<std::size_t>(kChangedSectors) * 256);
          return DescribeDisc(bytes);
        };
        EXPECT_TRUE(now == describe(before) || now == describe(after));
        while (disc.TheHistory().CanUndo()) {
          ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
        }
        EXPECT_EQ(describe(disc.Now()), describe(first));
        while (disc.TheHistory().CanRedo()) {
          ASSERT_EQ(disc.TheHistory().Redo(), Outcome::kDone);
        }
        EXPECT_EQ(describe(disc.Now()), describe(after));
      }
      EXPECT_GT(at, 1);
    }
  }
}

// What a failed command wrote into free sectors would else be taken for the deleted file's bytes.
TEST_P(HistoryTest, ACommandThatFailsDoesNotSpoilTheUndoOfADeletion) {
  for (int at = 0; at < 40; ++at) {
    SCOPED_TRACE(at);
    UndoneDisc disc(GetParam(), kPlenty);
    const std::string first = DescribeDisc(disc.Whole());
    for (const char* name : {"F07", "F08", "F09", "F10", "F11"}) {
      const History::Step step(disc.TheHistory(), "Delete");
      ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, name, false, false), Outcome::kDone);
    }
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, at);
    bool failed = false;
    try {
      const History::Step step(disc.TheHistory(), "Add");
      (void)AddFile(disc.TheDisc(), 2, disc.Folder() + "/F06");
    } catch (const HostError&) {
      failed = true;
    }
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kNone, 0);
    while (disc.TheHistory().CanUndo()) {
      ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
    }
    ASSERT_EQ(DescribeDisc(disc.Whole()), first);
    if (!failed) break;
  }
}

TEST_P(HistoryTest, ASaveLeavesTheStepsAndTheMarkFollowsWhatWasSaved) {
  UndoneDisc disc(GetParam(), kPlenty);
  History& history = disc.TheHistory();
  const std::string first = DescribeDisc(disc.Whole());
  for (const char* name : {"F10", "F11"}) {
    const History::Step step(history, "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, name, false, false), Outcome::kDone);
  }
  EXPECT_TRUE(disc.TheDisc().ImageChanged);
  // A .dat is cut behind the last file then.
  if (GetParam().Type != kCF) SaveImageTo(disc.TheDisc(), disc.Path());
  disc.TheDisc().ImageChanged = false;
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_TRUE(disc.TheDisc().ImageChanged);
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_TRUE(disc.TheDisc().ImageChanged);
  EXPECT_EQ(DescribeDisc(disc.Whole()), first);
  ASSERT_EQ(history.Redo(), Outcome::kDone);
  EXPECT_TRUE(disc.TheDisc().ImageChanged);
  ASSERT_EQ(history.Redo(), Outcome::kDone);
  EXPECT_FALSE(disc.TheDisc().ImageChanged);
  {
    const History::Step step(history, "Set Boot Option", History::Mark::kLeaves);
    ASSERT_EQ(SetBootOption(disc.TheDisc(), 3, MapSums::kLeave), Outcome::kDone);
  }
  EXPECT_FALSE(disc.TheDisc().ImageChanged);
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_FALSE(disc.TheDisc().ImageChanged);
  ASSERT_EQ(history.Redo(), Outcome::kDone);
  EXPECT_FALSE(disc.TheDisc().ImageChanged);
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_TRUE(disc.TheDisc().ImageChanged);
}

TEST_P(HistoryTest, UndoingAllClearsTheMarkOfADiscThatHadNone) {
  UndoneDisc disc(GetParam(), kPlenty);
  {
    const History::Step step(disc.TheHistory(), "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F10", false, false), Outcome::kDone);
  }
  ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
  EXPECT_FALSE(disc.TheDisc().ImageChanged);
}

TEST_P(HistoryTest, AChangeOutsideOfAnyStepMakesTheHistoryEmpty) {
  UndoneDisc disc(GetParam(), kPlenty);
  {
    const History::Step step(disc.TheHistory(), "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F10", false, false), Outcome::kDone);
  }
  EXPECT_TRUE(disc.TheHistory().CanUndo());
  ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F11", false, false), Outcome::kDone);
  EXPECT_FALSE(disc.TheHistory().CanUndo());
  EXPECT_EQ(disc.TheHistory().Undo(), Outcome::kRefused);
}

TEST_P(HistoryTest, StepsInsideAStepAndStepsThatAreJoinedAreOne) {
  UndoneDisc disc(GetParam(), kPlenty);
  History& history = disc.TheHistory();
  const Bytes first = disc.Now();
  {
    History::Step step(history, "New Directory");
    const History::Step inner(history, "Inner");
    ASSERT_TRUE(NewDirectory(disc.TheDisc(), 2, "MADE"));
    step.SetName("New Directory MADE");
  }
  EXPECT_EQ(history.UndoName(), "New Directory MADE");
  {
    const History::Step step(history, "New Directory OTHER", History::Mark::kSets,
                             History::Place::kWithTheLast);
    ASSERT_EQ(RenameEntry(disc.TheDisc(), "OTHER", "MADE", 2, false), Outcome::kDone);
  }
  const Bytes after = disc.Now();
  EXPECT_EQ(history.UndoName(), "New Directory OTHER");
  EXPECT_EQ(history.RedoName(), "");
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_EQ(disc.Now(), first);
  EXPECT_FALSE(history.CanUndo());
  EXPECT_EQ(history.RedoName(), "New Directory OTHER");
  ASSERT_EQ(history.Redo(), Outcome::kDone);
  EXPECT_EQ(disc.Now(), after);
}

TEST_P(HistoryTest, ACommandThatChangesNothingIsNoStep) {
  UndoneDisc disc(GetParam(), kPlenty);
  const History::Step step(disc.TheHistory(), "Delete");
  (void)DeleteEntry(disc.TheDisc(), 2, "NONE", false, false);
  EXPECT_FALSE(disc.TheHistory().CanUndo());
}

TEST_P(HistoryTest, ANewCommandForgetsWhatWasUndone) {
  UndoneDisc disc(GetParam(), kPlenty);
  History& history = disc.TheHistory();
  for (const char* title : {"One", "Two", "Three"}) {
    const History::Step step(history, title);
    ASSERT_EQ(SetDirTitle(disc.TheDisc(), 2, title), Outcome::kDone);
  }
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_EQ(history.RedoName(), "Three");
  {
    const History::Step step(history, "Refused");
    (void)DeleteEntry(disc.TheDisc(), 2, "NONE", false, false);
  }
  EXPECT_EQ(history.RedoName(), "Three");
  {
    const History::Step step(history, "Four");
    ASSERT_EQ(SetDirTitle(disc.TheDisc(), 2, "Four"), Outcome::kDone);
  }
  EXPECT_FALSE(history.CanRedo());
  EXPECT_EQ(history.UndoName(), "Four");
}

TEST_P(HistoryTest, AHundredStepsCanBeUndone) {
  UndoneDisc disc(GetParam(), kPlenty);
  History& history = disc.TheHistory();
  std::vector<Bytes> states;
  for (int i = 0; i < 130; ++i) {
    states.push_back(disc.Now());
    const History::Step step(history, "Title");
    ASSERT_EQ(SetDirTitle(disc.TheDisc(), 2, std::to_string(i)), Outcome::kDone);
  }
  for (int i = 0; i < 100; ++i) ASSERT_EQ(history.Undo(), Outcome::kDone) << i;
  EXPECT_FALSE(history.CanUndo());
  EXPECT_EQ(disc.Now(), states[30]);
}

TEST_P(HistoryTest, AnotherDiscHasNoSteps) {
  UndoneDisc disc(GetParam(), kPlenty);
  {
    const History::Step step(disc.TheHistory(), "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F10", false, false), Outcome::kDone);
  }
  WriteAll(disc.Folder() + "/other.adf", MakeChangedDisc().Bytes());
  disc.TheDisc().TheDisc.OpenFile(disc.Folder() + "/other.adf", kAdf, 13, 1, 16);
  EXPECT_FALSE(disc.TheHistory().CanUndo());
}

TEST_P(HistoryTest, AStepThatIsTooLargeIsToldAndTheOnesBeforeItGoToo) {
  UndoneDisc disc(GetParam(), RoomOf(6000, 6000));
  History& history = disc.TheHistory();
  {
    const History::Step step(history, "Set Title");
    ASSERT_EQ(SetDirTitle(disc.TheDisc(), 2, "One"), Outcome::kDone);
  }
  EXPECT_TRUE(history.CanUndo());
  {
    const History::Step step(history, "Compact Disc");
    history.Expect(12001);
    EXPECT_EQ(disc.Host().LogOf("note").back(), "note Compact Disc can't be undone");
    ASSERT_EQ(CompactDisc(disc.TheDisc()), Outcome::kDone);
  }
  EXPECT_FALSE(history.CanUndo());
  {
    const History::Step step(history, "Set Title");
    ASSERT_EQ(SetDirTitle(disc.TheDisc(), 2, "Two"), Outcome::kDone);
  }
  EXPECT_TRUE(history.CanUndo());
}

// There is room for the step and none for its opposite.
TEST_P(HistoryTest, AStepWhoseOppositeHasNoRoomCanBeTakenBackButNotDoneAgain) {
  UndoneDisc disc(GetParam(), RoomOf(7000, 0));
  History& history = disc.TheHistory();
  const Bytes first = disc.Now();
  {
    const History::Step step(history, "Add");
    ASSERT_EQ(AddFile(disc.TheDisc(), 2, disc.Folder() + "/F05"), Outcome::kDone);
  }
  ASSERT_TRUE(history.CanUndo());
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_EQ(disc.Now(), first);
  EXPECT_FALSE(history.CanRedo());
}

TEST_P(HistoryTest, TheFreeListIsThatOfTheMapAfterUndoAndRedo) {
  UndoneDisc disc(GetParam(), kPlenty);
  History& history = disc.TheHistory();
  const auto former = FreeRuns(disc.TheDisc());
  {
    const History::Step step(history, "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F05", false, false), Outcome::kDone);
  }
  const auto after = FreeRuns(disc.TheDisc());
  const auto isSame = [](const std::vector<sectorbox::FreeRun>& one,
                         const std::vector<sectorbox::FreeRun>& other) {
    return std::ranges::equal(one, other,
                              [](const sectorbox::FreeRun& a, const sectorbox::FreeRun& b) {
                                return a.Start == b.Start && a.Length == b.Length;
                              });
  };
  ASSERT_FALSE(isSame(former, after));
  ASSERT_EQ(history.Undo(), Outcome::kDone);
  EXPECT_TRUE(isSame(FreeRuns(disc.TheDisc()), former));
  ASSERT_EQ(history.Redo(), Outcome::kDone);
  EXPECT_TRUE(isSame(FreeRuns(disc.TheDisc()), after));
}

// The journal is whole and its blocks can't be put in place: the undo counts as made. What comes
// next must not take the restored file's sectors for free ones.
TEST_P(HistoryTest, AfterAnUndoThatCouldNotBePutInPlaceTheFreeListIsThatOfTheMap) {
  if (GetParam().Type != kDat) return;
  int made = 0;
  for (int at = 0; at < 12; ++at) {
    SCOPED_TRACE(at);
    UndoneDisc disc(GetParam(), kPlenty);
    const std::string first = DescribeDisc(disc.Whole());
    {
      const History::Step step(disc.TheHistory(), "Delete");
      ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F06", false, false), Outcome::kDone);
    }
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, at);
    bool failed = false;
    try {
      (void)disc.TheHistory().Undo();
    } catch (const HostError&) {
      failed = true;
    }
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kNone, 0);
    if (failed && !disc.TheHistory().CanUndo()) ++made;
    std::int64_t free = 0;
    for (const auto& run : ReadFreeRuns(disc.Whole())) free += run.Length;
    EXPECT_EQ(FreeSectors(disc.TheDisc()), free);
    {
      const History::Step step(disc.TheHistory(), "Add");
      ASSERT_EQ(AddFile(disc.TheDisc(), 2, disc.Folder() + "/NEW"), Outcome::kDone);
    }
    ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
    while (disc.TheHistory().CanUndo()) ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
    EXPECT_EQ(DescribeDisc(disc.Whole()), first);
  }
  EXPECT_GT(made, 0);
}

// Writes fail from somewhere on, and then so does every read.
TEST_P(HistoryTest, ARedoThatFailsWhereNothingCanBeReadAnyMoreEndsTheHistoryOrLosesNothing) {
  if (GetParam().Type != kDat && GetParam().Type != kCF) return;
  for (int at = 0; at < 12; ++at) {
    SCOPED_TRACE(at);
    UndoneDisc disc(GetParam(), kPlenty);
    const std::string first = DescribeDisc(disc.Whole());
    for (const char* name : {"F07", "F08", "F09", "F10", "F11"}) {
      const History::Step step(disc.TheHistory(), name);
      ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, name, false, false), Outcome::kDone);
    }
    {
      const History::Step step(disc.TheHistory(), "Add");
      ASSERT_EQ(AddFile(disc.TheDisc(), 2, disc.Folder() + "/F06"), Outcome::kDone);
    }
    ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, at);
    disc.Plan().ReadsFailAfterwards = true;
    try {
      (void)disc.TheHistory().Redo();
    } catch (const HostError&) {
      EXPECT_TRUE(true);
    }
    disc.Plan().ReadsFailAfterwards = false;
    disc.Plan().Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kNone, 0);
    const bool couldUndo = disc.TheHistory().CanUndo();
    while (disc.TheHistory().CanUndo()) ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
    EXPECT_TRUE(!couldUndo || DescribeDisc(disc.Whole()) == first);
    EXPECT_EQ(FaultsOf(disc.Whole()), std::vector<std::string>());
  }
}

// The temporary folder has no room for the newer bytes.
TEST_P(HistoryTest, AStepCanBeTakenBackWhereTheHostHasNoRoomForItsOpposite) {
  UndoneDisc disc(GetParam(), RoomOf(9000, 1000000));
  const Bytes first = disc.Now();
  {
    const History::Step step(disc.TheHistory(), "Add");
    ASSERT_EQ(AddFile(disc.TheDisc(), 2, disc.Folder() + "/F05"), Outcome::kDone);
  }
  ASSERT_TRUE(disc.TheHistory().CanUndo());
  const char* former = std::getenv("TMPDIR");
  const std::string kept = former == nullptr ? "" : former;
  ::setenv("TMPDIR", "/nowhere", 1);
  EXPECT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
  former == nullptr ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", kept.c_str(), 1);
  EXPECT_EQ(disc.Now(), first);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, HistoryTest, ::testing::ValuesIn(kUndoKinds),
                         [](const auto& one) { return std::string(one.param.Name); });

TEST(HistoryOfADat, ADiscThatAnotherProgramHasChangedIsLeftAlone) {
  UndoneDisc disc(kUndoKinds[2], kPlenty);
  {
    const History::Step step(disc.TheHistory(), "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F10", false, false), Outcome::kDone);
  }
  // A program that knows no locks writes into the root.
  disc.TheDisc().TheDisc.CloseFile();
  Bytes bytes = ReadAll(disc.Path());
  bytes[512 + 100] ^= 1;
  WriteAll(disc.Path(), bytes);
  EXPECT_EQ(disc.TheHistory().Undo(), Outcome::kRefused);
  EXPECT_EQ(disc.Host().Messages.back(),
            "x.dat was changed by another program, so nothing can be undone");
  EXPECT_EQ(ReadAll(disc.Path()), bytes);
  EXPECT_FALSE(disc.TheHistory().CanUndo());
}

TEST(HistoryOfADat, AnUndoIsSafeInTheFileWhenItEnds) {
  UndoneDisc disc(kUndoKinds[2], kPlenty);
  const Bytes before = ReadAll(disc.Path());
  {
    const History::Step step(disc.TheHistory(), "Delete");
    ASSERT_EQ(DeleteEntry(disc.TheDisc(), 2, "F10", false, false), Outcome::kDone);
  }
  EXPECT_NE(ReadAll(disc.Path()), before);
  ASSERT_EQ(disc.TheHistory().Undo(), Outcome::kDone);
  EXPECT_EQ(ReadAll(disc.Path()), before);
  EXPECT_FALSE(std::filesystem::exists(disc.Path() + "-journal"));
}

// A card whose last block isn't whole, and which has no room beyond it.
TEST(HistoryOfACard, AStepAtTheCardsEndIsToldThatItCannotBeUndone) {
  TempFolder folder;
  ScriptedHost host;
  Disc disc(host);
  ImageBuilder image(1002);
  std::vector<std::uint8_t> card;
  for (const std::uint8_t byte : image.Bytes()) card.insert(card.end(), {byte, 0xC5});
  WriteAll(folder / "card.raw", card);
  disc.TheDisc.OpenFile((folder / "card.raw") + ",0", kCF, 0, 0, 0);
  ReadFreeMap(disc);
  History history(disc);
  const auto all = [&] {
    Bytes bytes(std::size_t{1002} * 256);
    disc.TheDisc.FetchBytes(0, bytes);
    return DescribeDisc(bytes);
  };
  const std::string first = all();
  WriteAll(folder / "ALL", Pattern(std::size_t{1002 - 7} * 256, 3));
  {
    const History::Step step(history, "Add 1 File");
    ASSERT_EQ(AddFile(disc, 2, folder / "ALL"), Outcome::kDone);
    EXPECT_EQ(history.IsKeeping(), false);
  }
  EXPECT_EQ(host.LogOf("note").back(), "note Add 1 File can't be undone");
  EXPECT_FALSE(history.CanUndo());
  {
    const History::Step step(history, "Delete");
    ASSERT_EQ(DeleteEntry(disc, 2, "ALL", false, false), Outcome::kDone);
  }
  ASSERT_TRUE(history.CanUndo());
  EXPECT_EQ(all(), first);
}

}  // namespace
}  // namespace sectorbox
