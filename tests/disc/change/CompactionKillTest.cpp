// A program that dies in the middle of a compaction: what has reached the medium by then.

#include <climits>
#include <memory>
#include <set>

#include "disc/change/Change.h"
#include "disc/change/Compaction.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

using namespace testing;

// The parameter is the size of the first hole in sectors. Against what is moved at once it is large
// or small: the parts end when it is used up, or when much is held.
class CompactionKillTest : public ::testing::TestWithParam<int> {
 protected:
  static constexpr int kFiles = 100;

  // Files and directories above holes; each file is in any of the directories.
  CompactionKillTest() : image_(1600) {
    image_.AddHole(GetParam());
    std::vector<std::int32_t> directories;
    for (int i = 0; i < kFiles; ++i) {
      if (i % 20 == 0) directories.push_back(image_.AddDirectory(2, "D" + std::to_string(i)));
      if (i % 16 == 15) image_.AddHole(1 + i % 3);
      const Bytes bytes = Pattern(2500, static_cast<unsigned>(i));
      image_.AddFile(directories.back(), {"F" + std::to_string(i), bytes, 0, 0, "WR"});
    }
    for (std::size_t i = 0; i < kFiles; ++i) {
      if (i / 20 == i % 5) continue;
      image_.Rehang(directories[i / 20], "F" + std::to_string(i), directories[i % 5]);
    }
  }

  // The disc that a later program finds after a compaction that was killed at a write.
  Bytes CompactAndDie(int at) {
    WriteAll(folder_ / "x.dat", image_.Bytes());
    FaultPlan plan;
    plan.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kLast, at);
    QuietHost host;
    {
      Disc disc(host, MakeHostDevice(), std::make_unique<FaultyMaker>(plan));
      Compact(disc);
    }
    allWrites_ = plan.Writes;
    Disc later(host);
    Open(later);
    later.TheDisc.CloseFile();
    return ReadAll(folder_ / "x.dat");
  }

  void Open(Disc& disc) {
    disc.TheDisc.OpenFile(folder_ / "x.dat", kDat, 1, 1, 1600);
    ReadFreeMap(disc);
    disc.StepBytes = 40000;
  }

  void Compact(Disc& disc) {
    Open(disc);
    (void)CompactDisc(disc);
    disc.TheDisc.CloseFile();
  }

  // Names and bytes of every file, without their places; none if an entry leads past the disc's
  // end.
  static std::vector<std::pair<std::string, Bytes>> Files(const Bytes& disc) {
    std::vector<std::pair<std::string, Bytes>> files;
    try {
      Gather(ReadTree(disc), "$", files);
    } catch (const std::exception&) {
      files.clear();
    }
    return files;
  }

  ImageBuilder image_;
  TempFolder folder_;
  int allWrites_ = 0;

 private:
  static void Gather(const ReadObject& directory, const std::string& path,
                     std::vector<std::pair<std::string, Bytes>>& files) {
    for (const ReadObject& object : directory.Contents) {
      const std::string name = path + "." + object.Name;
      if (object.IsDirectory()) {
        Gather(object, name, files);
      } else {
        files.emplace_back(name, object.Bytes);
      }
    }
  }
};

TEST_P(CompactionKillTest, NoFileIsLostWhateverPartOfALongCompactionHasBeenWritten) {
  const auto files = Files(image_.Bytes());
  ASSERT_EQ(files.size(), static_cast<std::size_t>(kFiles));
  const Bytes whole = CompactAndDie(INT_MAX);
  ASSERT_TRUE(Files(whole) == files);
  EXPECT_EQ(FaultsOf(whole), std::vector<std::string>());
  const int all = allWrites_;
  EXPECT_GT(all, 20);
  std::set<Bytes> different;
  for (int at = 0; at < all; ++at) {
    const Bytes found = CompactAndDie(at);
    EXPECT_TRUE(Files(found) == files) << at << " of " << all << " writes";
    EXPECT_EQ(FaultsOf(found), std::vector<std::string>()) << at << " of " << all << " writes";
    different.insert(found);
  }
  // Before, after, and parts between these.
  EXPECT_GT(different.size(), 2U);
}

// What is left in the sectors that come free is what the one long way leaves there.
TEST_P(CompactionKillTest, PartsLeaveTheBytesThatTheWholeLeaves) {
  const Bytes inParts = CompactAndDie(INT_MAX);
  QuietHost host;
  Disc disc(host);
  WriteAll(folder_ / "x.dat", image_.Bytes());
  Open(disc);
  const Change whole(disc, Change::Parts::kNone);
  EXPECT_EQ(CompactDisc(disc), Outcome::kDone);
  Bytes atOnce(inParts.size());
  disc.TheDisc.FetchBytes(0, atOnce);
  EXPECT_TRUE(atOnce == inParts);
}

INSTANTIATE_TEST_SUITE_P(Hole, CompactionKillTest, ::testing::Values(30, 3),
                         [](const auto& one) { return one.param > 10 ? "Large" : "Small"; });

}  // namespace
}  // namespace sectorbox
