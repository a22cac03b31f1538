// The journal that a program has left when it died: what becomes of it when the disc has got
// another name, or when another disc has taken its place.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "disc/image/SaveImage.h"
#include "disc/medium/FileMedium.h"
#include "tests/disc/EngineTest.h"
#include "tests/disc/change/ChangeOperations.h"
#include "tests/support/DiscReading.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/QuietHost.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

// What the killed program has put in place of a whole journal.
enum class Left { kNothing, kHalf };

class LeftJournalTest : public ::testing::Test {
 protected:
  LeftJournalTest() {
    WriteAll(folder_ / "NEW", Pattern(3000, 7));
    WriteAll(path_, old_);
    Add({});
    added_ = ReadAll(path_);
    WriteAll(path_, old_);
  }

  // A program adds NEW to SUB, on a medium that does what the plan says. HostError if the host
  // refuses while the program lives.
  void Add(const FaultPlan& plan) {
    FaultPlan now;
    QuietHost host;
    Disc disc(host, MakeHostDevice(), std::make_unique<FaultyMaker>(now));
    disc.TheDisc.OpenFile(path_, kDat, 1, 1, kChangedSectors);
    ReadFreeMap(disc);
    now = plan;
    try {
      (void)AddFile(disc, SubOf(disc), folder_ / "NEW");
    } catch (const HostError&) {
      if (!now.Dead) throw;
    }
  }
  [[nodiscard]] bool HasWholeJournal() const {
    if (!fs::exists(journal_)) return false;
    FileMedium medium(path_);
    JournalFile journal(journal_);
    return IsWholeJournal(journal, medium);
  }
  // Kills the program after each of its writes, until it has left what is wanted.
  void Kill(Left wanted) {
    for (int writes = 0; writes < 30; ++writes) {
      WriteAll(path_, old_);
      fs::remove(journal_);
      FaultPlan plan;
      plan.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kLast, writes);
      Add(plan);
      if (!HasWholeJournal()) continue;
      const bool isMapOld = std::equal(old_.begin(), old_.begin() + 512, ReadAll(path_).begin());
      if (isMapOld ? wanted == Left::kNothing : !FaultsOf(ReadAll(path_)).empty()) return;
    }
    FAIL() << "the program never left that";
  }

  // Opens an image and gives what the user was told.
  static std::string Open(const std::string& path) {
    ScriptedHost host;
    Disc disc(host);
    OpenImage(disc, path);
    std::string notes;
    for (const std::string& line : host.Log) {
      if (line.starts_with("note ")) notes += line.substr(5);
    }
    return notes;
  }

  TempFolder folder_;
  const std::string path_ = folder_ / "x.dat";
  const std::string journal_ = path_ + "-journal";
  const Bytes old_ = MakeChangedDisc().Bytes();
  Bytes added_;
};

constexpr const char* kFinished = ": a change that was interrupted has been finished";
constexpr const char* kForeign =
    ": the journal beside it belongs to another disc, so it can't be changed";

TEST_F(LeftJournalTest, ADiscThatWasMovedOrHasASecondNameIsFinished) {
  for (const bool isMoved : {true, false}) {
    for (const Left left : {Left::kHalf, Left::kNothing}) {
      // Before the first block is put in place nothing has to be finished under another name.
      const bool hasBegun = left == Left::kHalf;
      Kill(left);
      fs::create_directory(folder_ / "l");
      const std::string other = folder_ / "l/y.dat";
      fs::remove(other);
      isMoved ? fs::rename(path_, other) : fs::create_hard_link(path_, other);
      EXPECT_EQ(Open(other), hasBegun ? other + kFinished : "");
      EXPECT_EQ(ReadAll(other), hasBegun ? added_ : ReadAll(other));
      EXPECT_EQ(fs::exists(journal_), !hasBegun);
      EXPECT_EQ(Open(other), "");
    }
  }
}

TEST_F(LeftJournalTest, ADiscWhoseJournalIsMissingIsToldOnce) {
  Kill(Left::kHalf);
  fs::remove(journal_);
  EXPECT_EQ(Open(path_), path_ + ": a change was interrupted, and its journal " + journal_ +
                             " is missing. Check the disc");
  EXPECT_EQ(Open(path_), "");
}

TEST_F(LeftJournalTest, AChangeThatCameToItsEndLeavesNoNote) {
  Add({});
  EXPECT_EQ(FileMedium(path_).NotedJournal(), "");
  EXPECT_EQ(Open(path_), "");
}

// What the change wrote into free sectors isn't in the journal, and the copy doesn't have it.
TEST_F(LeftJournalTest, AnOlderCopyPutInTheDiscsPlaceStaysAsItIs) {
  for (const Left left : {Left::kHalf, Left::kNothing}) {
    Kill(left);
    WriteAll(path_, old_);
    EXPECT_EQ(Open(path_), path_ + kForeign);
    EXPECT_EQ(ReadAll(path_), old_);
    EXPECT_TRUE(fs::exists(journal_));
    // The journal may be needed for the disc that it belongs to.
    EXPECT_THROW(Add({}), HostError);
    EXPECT_EQ(ReadAll(path_), old_);
    fs::remove(journal_);
    Add({});
    EXPECT_EQ(ReadAll(path_), added_);
  }
}

TEST_F(LeftJournalTest, NoOtherImageTakesTheDiscsPlaceBeforeTheChangeIsFinished) {
  Kill(Left::kHalf);
  const Bytes half = ReadAll(path_);
  const Bytes journal = ReadAll(journal_);
  WriteAll(folder_ / "small.adf", ImageBuilder(640).Bytes());
  WriteAll(folder_ / "hard.dat", old_);
  const auto expectRefused = [&](const std::function<void(Disc&)>& command) {
    ScriptedHost host;
    Disc disc(host);
    EXPECT_THROW(command(disc), HostError);
    EXPECT_EQ(ReadAll(path_), half);
    EXPECT_EQ(ReadAll(journal_), journal);
  };
  expectRefused([&](Disc& disc) { CreateDisc(disc, path_, 128, 1, 33, kDat); });
  for (const std::string& image : {folder_ / "small.adf", folder_ / "hard.dat"}) {
    expectRefused([&](Disc& disc) {
      OpenImage(disc, image);
      SaveImageTo(disc, path_);
    });
  }
  EXPECT_EQ(Open(path_), path_ + kFinished);
  ScriptedHost host;
  Disc disc(host);
  OpenImage(disc, folder_ / "hard.dat");
  SaveImageTo(disc, path_);
  EXPECT_FALSE(fs::exists(journal_));
}

}  // namespace
}  // namespace sectorbox
