// Discs that aren't changed: those on which map and catalogue contradict each other, and those that
// another program works on.

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>

#include "disc/catalogue/Agreement.h"
#include "disc/change/Change.h"
#include "disc/change/Compaction.h"
#include "disc/host/FileLock.h"
#include "disc/host/HostError.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "disc/image/SaveImage.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/OrdinaryUser.h"

namespace sectorbox {
namespace {

using namespace testing;

constexpr const char* kRefusal = "Cannot Change A Damaged Disc : ";

struct Damage {
  const char* Name;
  void (*Make)(ImageBuilder& image);
  const char* Contradiction;  // empty if the disc may be changed
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(const Damage& damage, std::ostream* out) {
  *out << damage.Name;
}

constexpr Damage kDamages[] = {
    {"None", [](ImageBuilder&) {}, ""},
    {"FreeRunOverAFile",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{8, 632}});
     },
     "$.A: overlaps free run 0"},
    {"FreeRunOverAFileInADirectory",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{27, 2}, {40, 600}});
     },
     "$.DIR.IN: overlaps free run 0"},
    {"FreeRunOverTheRoot",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{5, 2}, {40, 600}});
     },
     "the free space map: overlaps free run 0"},
    {"FreeRunsThatOverlap",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{40, 20}, {50, 590}});
     },
     "run 1: overlaps another free run"},
    {"SizeTooSmall",
     [](ImageBuilder& image) {
       image.Poke(252, 15);
       image.Poke(253, 0);
       image.FixChecksums();
     },
     "$.B: runs past the end of the disc"},
    {"NoRoot", [](ImageBuilder& image) { image.Poke(513, 0); },
     "$: is no directory: the mark at its start is missing"},
    {"WrongChecksums",
     [](ImageBuilder& image) {
       image.Poke(255, image.Peek(255) ^ 1);
       image.Poke(511, image.Peek(511) ^ 1);
     },
     ""},
    {"RunsThatTouch",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{40, 20}, {60, 580}});
     },
     ""},
    {"SectorsOfNobody",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{50, 590}});
     },
     ""},
    {"RunsOutOfOrder",
     [](ImageBuilder& image) {
       image.SetFreeRuns({{100, 540}, {40, 20}});
     },
     ""},
};

class RefusedChangeTest : public ::testing::TestWithParam<std::tuple<Damage, DiscType>> {
 protected:
  RefusedChangeTest() { host_.Pad = true; }

  // Files at 7 to 10, 11 to 20 and 26 to 30, and a directory at 21.
  static ImageBuilder MakeImage() {
    ImageBuilder image(640);
    image.AddFile(2, {"A", Pattern(1000, 1)});
    image.AddFile(2, {"B", Pattern(2500, 2)});
    const std::int32_t dir = image.AddDirectory(2, "DIR");
    image.AddFile(dir, {"IN", Pattern(1200, 3)});
    return image;
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_P(RefusedChangeTest, ADiscOnWhichMapAndCatalogueContradictEachOtherIsNotChanged) {
  const auto& [damage, type] = GetParam();
  ImageBuilder image = MakeImage();
  damage.Make(image);
  WriteAll(folder_ / "x", image.Bytes());
  disc_.TheDisc.OpenFile(folder_ / "x", type, 40, 1, 16);
  ReadFreeMap(disc_);
  WriteAll(folder_ / "NEW", Pattern(300));
  const std::function<Outcome()> changes[] = {
      [&] { return SetDirTitle(disc_, 2, "T"); },
      [&] { return SetBootOption(disc_, 2, MapSums::kUpdate); },
      [&] { return RenameEntry(disc_, "Q", "A", 2, true); },
      [&] { return AddFile(disc_, 2, folder_ / "NEW"); },
      [&] { return DeleteEntry(disc_, 2, "Q", false, true); },
      [&] { return SetEntryAttributes(disc_, 2, "B", true, false, false); },
      [&] { return SetEntryAddresses(disc_, 2, "B", "0", "0"); },
      [&] { return NewDirectory(disc_, 2, "D2") ? Outcome::kDone : Outcome::kRefused; },
      [&] { return DeleteTree(disc_, 2, GetEntrySector(disc_, 2, "DIR"), "DIR", true, true); },
  };
  const bool isSound = damage.Contradiction[0] == '\0';
  for (const auto& change : changes) {
    if (!isSound) host_.ExpectedMessages = {kRefusal + std::string(damage.Contradiction)};
    EXPECT_EQ(change(), isSound ? Outcome::kDone : Outcome::kRefused);
  }
  Bytes now(640U * 256);
  disc_.TheDisc.FetchBytes(0, now);
  EXPECT_EQ(now == image.Bytes(), !isSound);
}

INSTANTIATE_TEST_SUITE_P(EveryDamage, RefusedChangeTest,
                         ::testing::Combine(::testing::ValuesIn(kDamages),
                                            ::testing::Values(kAdf, kDat)),
                         [](const auto& one) {
                           return std::string(std::get<0>(one.param).Name) +
                                  (std::get<1>(one.param) == kAdf ? "OnAFloppy" : "OnAHardDisc");
                         });

class DamagedSaveTest : public EngineTest {
 protected:
  DamagedSaveTest() { host_.ProgressRunning = &disc_.ProgressRunning; }
};

TEST_F(DamagedSaveTest, ADamagedFloppyIsSavedWholeHoweverSmallItsMapSaysItIs) {
  ImageBuilder image(2560);
  image.AddFile(2, {"A", Pattern(9000)});
  image.Poke(252, 32);
  image.Poke(253, 0);
  image.FixChecksums();
  image.WriteInterleavedTo(folder_ / "x.adl");
  host_.Interleave = true;
  disc_.TheDisc.OpenFile(folder_ / "x.adl", kAdl, 80, 2, 16);
  disc_.ImageName = folder_ / "x.adl";
  ReadFreeMap(disc_);
  SaveImageTo(disc_, folder_ / "y.adl");
  EXPECT_EQ(ReadAll(folder_ / "y.adl"), image.InterleavedBytes());
}

TEST_F(DamagedSaveTest, ADamagedHardDiscIsSavedWithoutACut) {
  ImageBuilder image(4224);
  image.AddFile(2, {"A", Pattern(9000)});
  image.SetFreeRuns({{7, 4217}});
  image.WriteTo(folder_ / "x.dat");
  OpenImage(disc_, folder_ / "x.dat");
  SaveImageTo(disc_, folder_ / "y.dat");
  EXPECT_EQ(ReadAll(folder_ / "y.dat").size(), image.Bytes().size());
  EXPECT_TRUE(ReadAll(folder_ / "y.dat") == image.Bytes());
}

class OtherProgramTest : public EngineTest {
 protected:
  OtherProgramTest() : image_(640) {
    image_.AddFile(2, {"A", Pattern(900)});
    image_.WriteTo(folder_ / "x.adf");
    hard_.AddFile(2, {"A", Pattern(900)});
    hard_.WriteTo(folder_ / "x.dat");
    // The host's clock may be too coarse for two changes in one moment.
    std::filesystem::last_write_time(
        folder_ / "x.dat", std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  }

  ImageBuilder image_;
  ImageBuilder hard_{4224};
};

TEST_F(OtherProgramTest, ADiscThatAnotherProgramChangesIsNotChanged) {
  for (const char* name : {"x.adf", "x.dat"}) {
    FileLock other;
    ASSERT_TRUE(other.Take(folder_ / name, {}));
    OpenImage(disc_, folder_ / name);
    host_.ExpectedMessages = {std::string(name) + " is in use by another program"};
    EXPECT_EQ(SetDirTitle(disc_, 2, "T"), Outcome::kRefused);
    EXPECT_EQ(GetDirTitle(disc_, 2), "$");
    other.Release();
    EXPECT_EQ(SetDirTitle(disc_, 2, "T"), Outcome::kDone);
    EXPECT_FALSE(other.Take(folder_ / name, {})) << "the disc stays locked while it is open";
    disc_.ImageChanged = false;
  }
}

TEST_F(OtherProgramTest, AHardDiscThatAnotherProgramHasChangedHasToBeOpenedAgain) {
  OpenImage(disc_, folder_ / "x.dat");
  {
    ScriptedHost otherHost;
    Disc other(otherHost);
    OpenImage(other, folder_ / "x.dat");
    ASSERT_EQ(AddFile(other, 2, HostFile("OTHER", Pattern(2000))), Outcome::kDone);
    other.TheDisc.CloseFile();
  }
  host_.ExpectedMessages = {"x.dat was changed by another program. Open it again"};
  EXPECT_EQ(Add("NEW", Pattern(700)), Outcome::kRefused);
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(Add("NEW", Pattern(700)), Outcome::kDone);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(FaultsOf(ReadAll(folder_ / "x.dat")), std::vector<std::string>());
  EXPECT_EQ(Names(2), "A NEW OTHER");
}

TEST_F(OtherProgramTest, AFloppyThatAnotherProgramHasReplacedIsSavedOnlyAfterAQuestion) {
  OpenImage(disc_, folder_ / "x.adf");
  ASSERT_EQ(SetDirTitle(disc_, 2, "Mine"), Outcome::kDone);
  WriteAll(folder_ / "x.adf", Bytes(5000, 3));
  host_.YesNoAnswers = {false};
  SaveImageTo(disc_, folder_ / "x.adf");
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), Bytes(5000, 3));
  EXPECT_TRUE(disc_.ImageChanged);
  EXPECT_EQ(host_.Log.back(),
            "yesno x.adf was changed by another program. Replace it ?|Save Changes");
  host_.YesNoAnswers = {true};
  SaveImageTo(disc_, folder_ / "x.adf");
  EXPECT_FALSE(disc_.ImageChanged);
  // What we saved ourselves is no other program's.
  ASSERT_EQ(SetDirTitle(disc_, 2, "Mine too"), Outcome::kDone);
  SaveImageTo(disc_, folder_ / "x.adf");
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(OtherProgramTest, AFloppyThatAnotherProgramHasReplacedIsNotReplacedAtTheEnd) {
  OpenImage(disc_, folder_ / "x.adf");
  ASSERT_EQ(SetDirTitle(disc_, 2, "Mine"), Outcome::kDone);
  WriteAll(folder_ / "x.adf", Bytes(5000, 3));
  EXPECT_THROW(disc_.TheDisc.CloseFile(), HostError);
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), Bytes(5000, 3));
}

TEST_F(OtherProgramTest, AHardDiscThatWasSavedOverItselfIsNoOtherPrograms) {
  host_.ProgressRunning = &disc_.ProgressRunning;
  OpenImage(disc_, folder_ / "x.dat");
  ASSERT_EQ(Add("NEW", Pattern(700)), Outcome::kDone);
  SaveImageTo(disc_, folder_ / "x.dat");
  EXPECT_EQ(Add("MORE", Pattern(700)), Outcome::kDone);
  disc_.TheDisc.CloseFile();
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(Names(2), "A MORE NEW");
}

TEST_F(OtherProgramTest, AHardDiscInAFolderThatCannotBeWrittenIsChangedAllTheSame) {
  namespace fs = std::filesystem;
  const std::string folder = folder_ / "shared";
  fs::create_directory(folder);
  hard_.WriteTo(folder + "/x.dat");
  fs::permissions(folder + "/x.dat", fs::perms::all);
  fs::permissions(folder_.Path(), fs::perms(0755));
  fs::permissions(folder, fs::perms(0555));
  const TempFolder state;
  fs::permissions(state.Path(), fs::perms::all);
  const char* former = std::getenv("XDG_STATE_HOME");
  ASSERT_NE(former, nullptr);
  const std::string formerState = former;
  ::setenv("XDG_STATE_HOME", state.Path().c_str(), 1);
  {
    const OrdinaryUser user;
    OpenImage(disc_, folder + "/x.dat");
    EXPECT_EQ(SetDirTitle(disc_, 2, "T"), Outcome::kDone);
    disc_.TheDisc.CloseFile();
  }
  ::setenv("XDG_STATE_HOME", formerState.c_str(), 1);
  fs::permissions(folder, fs::perms::all);
  EXPECT_EQ(ReadTree(ReadAll(folder + "/x.dat")).Title, "T");
  EXPECT_TRUE(fs::is_empty(state.Path() + "/sectorbox"));
}

class ResizeSafetyTest : public EngineTest {};

TEST_F(ResizeSafetyTest, AFileThatIsNoDiscIsNotResized) {
  const Bytes photo = Pattern(5000, 3);
  WriteAll(folder_ / "photo.jpg", photo);
  host_.ExpectedMessages = {kRefusal + std::string(kNoRoot)};
  ResizeImageFile(disc_, folder_ / "photo.jpg", 64, 4, 33);
  EXPECT_EQ(ReadAll(folder_ / "photo.jpg"), photo);
}

TEST_F(ResizeSafetyTest, ADiscThatBecomesTooSmallIsToldAndNotChangedUntilItHasGrownAgain) {
  ImageBuilder image(4224 * 2);
  image.AddHole(5000);
  image.AddFile(2, {"A", Pattern(9000)});
  image.WriteTo(folder_ / "x.dat");
  ResizeImageFile(disc_, folder_ / "x.dat", 32, 4, 33);
  EXPECT_EQ(host_.LogOf("note"),
            (std::vector<std::string>{
                "note The disc holds more than that: make it larger again before you change it"}));
  host_.ExpectedMessages = {kRefusal + std::string("$.A: runs past the end of the disc")};
  EXPECT_EQ(SetDirTitle(disc_, 2, "T"), Outcome::kRefused);
  ResizeImageFile(disc_, folder_ / "x.dat", 64, 4, 33);
  EXPECT_EQ(SetDirTitle(disc_, 2, "T"), Outcome::kDone);
}

}  // namespace
}  // namespace sectorbox
