#include "disc/change/Compaction.h"

#include <algorithm>
#include <random>

#include "disc/store/TrackedSector.h"
#include "tests/disc/EngineTest.h"
#include "tests/disc/change/PlainCompaction.h"

namespace sectorbox {
namespace {

using namespace testing;

class CompactionTest : public EngineTest {
 protected:
  // Compacts, and expects that the step-by-step way leaves the very same bytes.
  void CompactAndCompare() {
    Bytes expected = Image();
    CompactPlainly(expected);
    (void)CompactDisc(disc_);
    ASSERT_EQ(Image(), expected);
  }
};

TEST_F(CompactionTest, ADiscWithoutHolesGetsItsOneRunAtTheSamePlace) {
  ImageBuilder image(640);
  image.AddFile(image.AddDirectory(2, "D"), {"A", Pattern(900), 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  CompactAndCompare();
  EXPECT_EQ(Image(), before);
  EXPECT_TRUE(disc_.ImageChanged);
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"status Compacting Disc (busy)", "pointer busy",
                                                 "pointer normal"}));
}

TEST_F(CompactionTest, AFullDiscKeepsARunOfLengthZero) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Bytes(633 * 256), 0, 0, "WR"});
  Open(image);
  CompactAndCompare();
  EXPECT_EQ(Image()[510], 3);
  EXPECT_EQ(Runs(), "640+0");
}

TEST_F(CompactionTest, AChildIsFoundAtItsParentsNewPlaceAndAtTheOldOneWhenTheParentLiesHigher) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto low = image.AddDirectory(2, "LOW");
  image.AddHole(3);
  image.AddFile(low, {"ABOVE", Pattern(700, 1), 0, 0, "WR"});
  const auto below = image.AddFile(2, {"TEMP", Pattern(700, 2), 0, 0, "WR"});
  image.AddHole(2);
  const auto high = image.AddDirectory(2, "ZHIGH");
  const auto sub = image.AddDirectory(high, "SUB");
  image.AddFile(sub, {"X", Pattern(10, 3), 0, 0, "WR"});
  // TEMP becomes an entry of the directory that lies above it.
  Bytes bytes = image.Bytes();
  const auto root = bytes.begin() + 517;
  const auto entries = bytes.begin() + high * 256 + 5;
  std::copy(root + 26, root + 52, entries + 26);
  std::copy(root + 52, root + 78, root + 26);
  std::fill(root + 52, root + 78, std::uint8_t{0});
  Open(bytes);
  ASSERT_EQ(Names(high), "SUB TEMP");
  CompactAndCompare();
  EXPECT_EQ(Faults(), std::vector<std::string>());
  const auto newHigh = GetEntrySector(disc_, 2, "ZHIGH");
  EXPECT_EQ(Contents(newHigh, "TEMP"), Pattern(700, 2));
  EXPECT_EQ(Contents(GetEntrySector(disc_, 2, "LOW"), "ABOVE"), Pattern(700, 1));
  EXPECT_EQ(Contents(GetEntrySector(disc_, newHigh, "SUB"), "X"), Pattern(10, 3));
  EXPECT_LT(GetEntrySector(disc_, newHigh, "TEMP"), below);
  EXPECT_EQ(disc_.FreeCount, 1);
}

TEST_F(CompactionTest, NoSequenceNumberChanges) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddFile(image.AddDirectory(2, "D"), {"A", Pattern(900), 0, 0, "WR"});
  Open(image);
  CompactAndCompare();
  EXPECT_EQ(Sequence(2), 1);
  EXPECT_EQ(Sequence(7), 1);
}

TEST_F(CompactionTest, ADirectoryWhoseOwnNameDisagreesMovesWithItsEntry) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "D");
  image.AddFile(dir, {"F", Pattern(900), 0, 0, "WR"});
  image.Poke(dir * 256 + 1228, 'Q');
  Open(image);
  ASSERT_EQ(CompactDisc(disc_), Outcome::kDone);
  EXPECT_EQ(GetEntrySector(disc_, 2, "D"), 7);
  EXPECT_EQ(Contents(7, "F"), Pattern(900));
  EXPECT_EQ(Runs(), "16+624");
}

TEST_F(CompactionTest, ADirectoryThatNamesAWrongParentMovesWithItsEntryAndGetsTheRightOne) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "D");
  image.AddFile(dir, {"F", Pattern(900), 0, 0, "WR"});
  image.Poke(dir * 256 + 1238, 3);
  Open(image);
  ASSERT_EQ(CompactDisc(disc_), Outcome::kDone);
  EXPECT_EQ(GetEntrySector(disc_, 2, "D"), 7);
  EXPECT_EQ(Contents(7, "F"), Pattern(900));
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

// Found by its name, the second entry would lead to the first one's place.
TEST_F(CompactionTest, OfTwoEntriesOfOneNameEachFollowsItsOwnObject) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddFile(2, {"A", Pattern(900, 1), 0, 0, "WR"});
  image.AddFile(2, {"B", Pattern(900, 2), 0, 0, "WR"});
  const auto dir = image.AddDirectory(2, "C");
  image.AddFile(dir, {"F", Pattern(900, 3), 0, 0, "WR"});
  image.Poke(517 + 26, image.Peek(517));
  image.Poke(517 + 52, image.Peek(517));
  Open(image);
  ASSERT_EQ(CompactDisc(disc_), Outcome::kDone);
  EXPECT_EQ(Names(2), "A A A");
  const ReadObject root = Tree();
  EXPECT_EQ(root.Contents[0].Bytes, Pattern(900, 1));
  EXPECT_EQ(root.Contents[1].Bytes, Pattern(900, 2));
  ASSERT_EQ(root.Contents[2].Contents.size(), 1U);
  EXPECT_EQ(root.Contents[2].Contents[0].Bytes, Pattern(900, 3));
  EXPECT_EQ(Runs(), "24+616");
}

// The file may hold bytes that look like the directory's entry. They are the file's own.
TEST_F(CompactionTest, ADirectoryThatCallsAFileItsParentChangesNothingInTheFile) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "D");
  Bytes listing(1280);
  listing[5] = 'D';
  listing[6] = '\r';
  const auto file = image.AddFile(2, {"F", listing, 0, 0, "WR"});
  image.Poke(dir * 256 + 1238, static_cast<std::uint8_t>(file));
  Open(image);
  ASSERT_EQ(CompactDisc(disc_), Outcome::kDone);
  EXPECT_EQ(Contents(2, "F"), listing);
  EXPECT_EQ(GetEntrySector(disc_, 2, "D"), 7);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(CompactionTest, EntriesReachAHardDiscsFileWithWhatTheyLeadTo) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  Open(image, kDat);
  (void)CompactDisc(disc_);
  const Bytes file = ReadAll(folder_ / "disc.img");
  EXPECT_EQ(file[517 + 22], 7);
  EXPECT_EQ(Bytes(file.begin() + 7 * 256, file.begin() + 7 * 256 + 300), Pattern(300));
}

TEST_F(CompactionTest, ThePanesAreToldWhichDirectoriesMoved) {
  ImageBuilder image(640);
  image.AddDirectory(2, "A");
  image.AddHole(10);
  image.AddDirectory(2, "B");
  image.AddFile(2, {"F", {}, 0, 0, "WR"});
  image.AddDirectory(2, "C");
  Open(image);
  (void)CompactDisc(disc_);
  EXPECT_EQ(host_.LogOf("moved"), std::vector<std::string>{"moved 22>12 28>18"});
}

TEST_F(CompactionTest, ASectorThatIsHeldFollowsTheMove) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "A");
  Open(image);
  const TrackedSector held(disc_, dir);
  const TrackedSector root(disc_, 2);
  (void)CompactDisc(disc_);
  EXPECT_EQ(held, 7);
  EXPECT_EQ(root, 2);
}

// The BBC gives an empty file no sector and, when it compacts, leaves it where another object
// starts.
TEST_F(CompactionTest, AnEmptyFileWithoutASectorOfItsOwnHarmsNoNeighbour) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto first = image.AddFile(2, {"A", Pattern(900, 1), 0, 0, "WR"});
  image.AddFile(2, {"B", Pattern(900, 2), 0, 0, "WR"});
  image.AddFile(2, {"E1", {}, 0, 0, "WR"});
  image.AddFile(2, {"E2", {}, 0, 0, "WR"});
  image.Poke(517 + 2 * 26 + 22, static_cast<std::uint8_t>(first));
  image.Poke(517 + 3 * 26 + 22, static_cast<std::uint8_t>(first + 4));
  Open(image);
  for (int round = 0; round < 2; ++round) {
    (void)CompactDisc(disc_);
    EXPECT_EQ(Contents(2, "A"), Pattern(900, 1));
    EXPECT_EQ(Contents(2, "B"), Pattern(900, 2));
    // The second time E2 stands in free space, and so gets its sector.
    EXPECT_EQ(Runs(), round == 0 ? "15+625" : "16+624");
    EXPECT_EQ(Names(2), "A B E1 E2");
  }
}

class DamagedCompactionTest : public CompactionTest {
 protected:
  void ExpectRefusal(const ImageBuilder& image,
                     const std::string& message = "Cannot Compact A Damaged Disc") {
    Open(image);
    const Bytes before = Image();
    host_.ExpectedMessages = {message};
    EXPECT_EQ(CompactDisc(disc_), Outcome::kRefused);
    EXPECT_EQ(Image(), before);
    EXPECT_FALSE(disc_.ImageChanged);
    EXPECT_EQ(host_.Log.back(), "message " + message);
  }
};

TEST_F(DamagedCompactionTest, DirectoriesThatLeadInACircleAreLeftAlone) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddDirectory(dir, "LOOP");
  image.Poke(dir * 256 + 5 + 22, static_cast<std::uint8_t>(dir));
  ExpectRefusal(image);
}

TEST_F(DamagedCompactionTest, WhatADirectoryWithoutItsMarkListsIsNotWrittenOver) {
  ImageBuilder image(640);
  image.AddHole(10);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"LOST", Pattern(900), 0, 0, "WR"});
  image.AddHole(10);
  image.AddFile(2, {"F", Pattern(900), 0, 0, "WR"});
  image.Poke(dir * 256 + 1, 0);
  ExpectRefusal(image);
}

TEST_F(DamagedCompactionTest, ADiscWhoseRootHasNoMarkDoesNotBecomeFree) {
  ImageBuilder image(640);
  image.AddFile(2, {"F", Pattern(900), 0, 0, "WR"});
  image.Poke(512 + 1, 0);
  ExpectRefusal(image);
}

TEST_F(DamagedCompactionTest, ObjectsThatOverlapAreLeftAlone) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  image.AddFile(2, {"B", Pattern(900), 0, 0, "WR"});
  image.Poke(517 + 26 + 22, 18);
  ExpectRefusal(image);
}

TEST_F(DamagedCompactionTest, AnObjectInTheMapOrTheRootIsLeftAlone) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  image.Poke(517 + 22, 1);
  ExpectRefusal(image);
}

TEST_F(DamagedCompactionTest, ObjectsThatNeedMoreThanTheDiscAreLeftAlone) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddFile(2, {"A", Pattern(900), 0, 0, "WR"});
  for (int i = 18; i < 22; ++i) image.Poke(517 + i, 0xFF);
  ExpectRefusal(image, "Cannot Change A Damaged Disc : $.A: runs past the end of the disc");
}

TEST_F(DamagedCompactionTest, AWebOfDirectoriesEndsInBoundedTime) {
  ImageBuilder image(2560);
  std::vector<std::int32_t> level{2};
  for (int depth = 0; depth < 6; ++depth) {
    const auto next = image.AddDirectory(level.back(), "D00");
    for (int i = 1; i < 47; ++i) {
      image.AddDirectory(level.back(), "D" + std::to_string(10 + i));
      const auto entry = level.back() * 256 + 5 + 26 * i + 22;
      image.Poke(entry, static_cast<std::uint8_t>(next & 255));
      image.Poke(entry + 1, static_cast<std::uint8_t>(next >> 8));
      if (i == 1) image.SetFreeRuns({{next + 5, 2500 - next}});
    }
    image.SetFreeRuns({{next + 5, 2500 - next}});
    level.push_back(next);
  }
  ExpectRefusal(image);
}

// --- The same bytes as the plain, quadratic way --------------------------------------------------

class RandomDisc {
 public:
  // Files of up to longest bytes.
  explicit RandomDisc(unsigned seed, std::int32_t sectors = 1280, unsigned longest = 3000)
      : random_(seed), longest_(longest), image_(sectors) {
    dirs_.push_back(2);
    const int objects = 5 + static_cast<int>(random_() % 60);
    deep_ = random_() % 4 == 0;
    for (int i = 0; i < objects; ++i) AddOne(i);
    if (random_() % 8 == 0) FillADirectory();
    if (random_() % 8 == 0) FillToTheLastSector(sectors);
    for (int i = 0; i < objects / 2; ++i) RehangOne();
  }
  const ImageBuilder& Image() const { return image_; }
  // Damages directories so that they hold wrong names and parents, but lets no objects overlap.
  void TellUntruths() {
    for (std::size_t i = 1; i < dirs_.size(); ++i) {
      const std::int64_t base = std::int64_t{dirs_[i]} * 256;
      if (random_() % 3 == 0) image_.Poke(base + 1228, static_cast<std::uint8_t>(random_()));
      if (random_() % 3 == 0) {
        image_.Poke(base + 1238, static_cast<std::uint8_t>(dirs_[random_() % dirs_.size()]));
      }
      if (random_() % 6 == 0) image_.Poke(base + 1238, static_cast<std::uint8_t>(random_()));
    }
  }
  // Damages directories so that they list a name more than once.
  void RepeatNames() {
    for (const std::int32_t dir : dirs_) {
      for (std::int64_t at = std::int64_t{dir} * 256 + 31; image_.Peek(at) != 0; at += 26) {
        if (at >= std::int64_t{dir} * 256 + 5 + 47 * 26) break;
        if (random_() % 3 != 0) continue;
        for (int i = 0; i < 10; ++i) {
          const int attribute = image_.Peek(at + i) & 128;
          image_.Poke(at + i,
                      static_cast<std::uint8_t>((image_.Peek(at + i - 26) & 127) | attribute));
        }
      }
    }
  }

 private:
  struct Listed {
    std::int32_t Dir;
    std::string Name;
  };

  std::int32_t PickDir() {
    if (deep_ && random_() % 2 == 0) return dirs_.back();
    return dirs_[random_() % dirs_.size()];
  }
  // A name that is on the disc only once. Some names have all ten characters.
  std::string MakeName(int i) {
    const std::string name =
        (random_() % 2 ? "n" : "N") + std::to_string(random_() % 1000) + "_" + std::to_string(i);
    return random_() % 4 == 0 ? (name + "xxxxxxxxxx").substr(0, 10) : name;
  }
  std::string PickAttr() {
    static const char* const kAttributes[] = {"WR", "LWR", "", "ELR"};
    return kAttributes[random_() % 4];
  }
  void AddOne(int i) {
    const auto dir = PickDir();
    const std::string name = MakeName(i);
    try {
      if (random_() % 2 == 0) image_.AddHole(1 + static_cast<std::int32_t>(random_() % 9));
      if (random_() % (deep_ ? 2 : 4) == 0) {
        const auto made = image_.AddDirectory(dir, name, PickAttr());
        dirs_.push_back(made);
        children_.push_back({dir, name});
      } else {
        AddFile(dir, name, random_() % 6 == 0 ? 0 : random_() % longest_);
      }
    } catch (const std::runtime_error&) {
      // The disc or the directory is full.
    }
  }
  void AddFile(std::int32_t dir, const std::string& name, std::size_t length) {
    image_.AddFile(dir,
                   {name, Pattern(length, static_cast<unsigned>(random_())), 0, 0, PickAttr()});
    files_.push_back({dir, name});
  }
  void FillADirectory() {
    const auto dir = PickDir();
    try {
      for (int i = 100; i < 147; ++i) AddFile(dir, MakeName(i), random_() % 300);
    } catch (const std::runtime_error&) {
    }
  }
  void FillToTheLastSector(std::int32_t sectors) {
    const auto last = ReadFreeRuns(image_.Bytes()).back();
    if (last.Start + last.Length != sectors || last.Length == 0) return;
    try {
      AddFile(PickDir(), "last", static_cast<std::size_t>(last.Length) * 256);
    } catch (const std::runtime_error&) {
    }
  }
  // Moves the entry of a file or directory into any other directory, also into one that lies above
  // it on the disc.
  void RehangOne() {
    const bool directory = !children_.empty() && random_() % 4 == 0;
    auto& from = directory ? children_ : files_;
    if (from.empty()) return;
    const std::size_t which = random_() % from.size();
    auto& [dir, name] = from[which];
    const auto to = dirs_[random_() % dirs_.size()];
    if (to == dir || (directory && Holds(which, to))) return;
    try {
      image_.Rehang(dir, name, to);
      dir = to;
    } catch (const std::runtime_error&) {
      // That one is full.
    }
  }
  // True if the directory dir is the one of that index in children_, or lies somewhere below it.
  bool Holds(std::size_t child, std::int32_t dir) const {
    while (dir != 2) {
      const auto at = std::find(dirs_.begin(), dirs_.end(), dir) - dirs_.begin() - 1;
      if (at == static_cast<std::ptrdiff_t>(child)) return true;
      dir = children_[static_cast<std::size_t>(at)].Dir;
    }
    return false;
  }

  std::mt19937 random_;
  unsigned longest_;
  bool deep_ = false;
  ImageBuilder image_;
  std::vector<std::int32_t> dirs_;  // the root, then all others in the order of children_
  // All directories and files, with the directories that list them.
  std::vector<Listed> children_;
  std::vector<Listed> files_;
};

TEST_F(CompactionTest, RandomDiscsComeOutByteForByteAsInTheStepByStepWay) {
  for (unsigned seed = 0; seed < 160; ++seed) {
    SCOPED_TRACE(seed);
    const RandomDisc disc(seed);
    if (seed % 8 == 1) {
      OpenOnCard(disc.Image());
    } else {
      // After the first card the blocks of a .dat are longer, and reach into the next block.
      Open(disc.Image(), seed % 8 ? kAdf : kDat);
    }
    CompactAndCompare();
    ASSERT_EQ(Faults(), std::vector<std::string>());
  }
}

// On these discs entries have to be written before everything has moved.
TEST_F(CompactionTest, SoDoHardDiscsOfManyMegabytes) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    SCOPED_TRACE(seed);
    const RandomDisc disc(seed, 33792, 300000);
    Open(disc.Image(), kDat);
    CompactAndCompare();
    ASSERT_EQ(Faults(), std::vector<std::string>());
  }
}

// All objects below a directory, by their places and their bytes.
std::vector<std::pair<std::int32_t, Bytes>> Places(const ReadObject& directory) {
  std::vector<std::pair<std::int32_t, Bytes>> places;
  for (const ReadObject& object : directory.Contents) {
    places.emplace_back(object.Start, object.Bytes);
    const auto below = Places(object);
    places.insert(places.end(), below.begin(), below.end());
  }
  return places;
}

// The names and parents that directories state of themselves, and names that stand more than once,
// change nothing of where the objects go.
TEST_F(CompactionTest, DirectoriesThatTellUntruthsOfThemselvesLoseNothing) {
  for (unsigned seed = 0; seed < 120; ++seed) {
    SCOPED_TRACE(seed);
    RandomDisc disc(seed);
    Bytes expected = disc.Image().Bytes();
    CompactPlainly(expected);
    disc.TellUntruths();
    disc.RepeatNames();
    Open(disc.Image());
    ASSERT_EQ(CompactDisc(disc_), Outcome::kDone);
    ASSERT_EQ(Places(Tree()), Places(ReadTree(expected)));
    ASSERT_EQ(Runs(), RunsOf(expected));
  }
}

}  // namespace
}  // namespace sectorbox
