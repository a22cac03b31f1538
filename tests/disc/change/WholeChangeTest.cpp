// Every change is whole or not at all: each operation that changes a disc, on each medium that is
// written in place, with each fault at each place where it can come.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "disc/change/Compaction.h"
#include "disc/host/HostError.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

using namespace testing;

constexpr std::int32_t kSectors = 200;

// An operation on the disc of ChangedDisc. folder holds the host files that it may use.
struct Operation {
  const char* Name;
  void (*Run)(Disc& disc, const std::string& folder);
};

std::int32_t Sub(Disc& disc) {
  return GetEntrySector(disc, 2, "SUB");
}

constexpr Operation kOperations[] = {
    {"Add", [](Disc& disc,
               const std::string& folder) { (void)AddFile(disc, Sub(disc), folder + "/NEW"); }},
    {"AddWithAPrefix",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/P.FILE"); }},
    {"Replace",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/F05"); }},
    {"ReplaceByALongerFile",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/F06"); }},
    {"Import",
     [](Disc& disc, const std::string& folder) {
       (void)ImportFolder(disc, Sub(disc), folder + "/TREE");
     }},
    {"Delete",
     [](Disc& disc, const std::string&) { (void)DeleteEntry(disc, 2, "F00", false, false); }},
    {"DeleteATree",
     [](Disc& disc, const std::string&) {
       (void)DeleteTree(disc, 2, Sub(disc), "SUB", true, true);
     }},
    {"Rename",
     [](Disc& disc, const std::string&) { (void)RenameEntry(disc, "ZZZ", "F00", 2, false); }},
    {"RenameADirectory",
     [](Disc& disc, const std::string&) { (void)RenameEntry(disc, "AAA", "SUB", 2, false); }},
    {"MakeADirectory", [](Disc& disc, const std::string&) { (void)NewDirectory(disc, 2, "MADE"); }},
    {"SetAttributes",
     [](Disc& disc, const std::string&) {
       (void)SetEntryAttributes(disc, 2, "SUB", true, false, true);
     }},
    {"SetAddresses",
     [](Disc& disc, const std::string&) {
       (void)SetEntryAddresses(disc, 2, "F01", "FFFF1900", "FFFF8023");
     }},
    {"SetTitle",
     [](Disc& disc, const std::string&) { (void)SetDirTitle(disc, 2, "Another title"); }},
    {"SetBootOption",
     [](Disc& disc, const std::string&) { (void)SetBootOption(disc, 3, MapSums::kUpdate); }},
    {"Compact", [](Disc& disc, const std::string&) { (void)CompactDisc(disc); }},
};

struct Kind {
  const char* Name;
  sectorbox::DiscType Type;
  std::size_t MostInMemory = std::size_t{1} << 20;
};

// What a change holds goes to memory on the first two, and nearly all of it to the journal on the
// last one.
constexpr Kind kKinds[] = {{"Dat", kDat}, {"Card", kCF}, {"DatBeyondMemory", kDat, 1024}};

using Parameters = std::tuple<Operation, Kind>;

class WholeChangeTest : public ::testing::TestWithParam<Parameters> {
 protected:
  WholeChangeTest() {
    WriteHostFiles();
    WriteDisc();
    before_ = DescribeDisc(Discs());
    Run({}, {});
    after_ = DescribeDisc(Discs());
  }

  // A disc with files in two directories, a hole, and an empty directory.
  static ImageBuilder MakeImage() {
    ImageBuilder image(kSectors);
    image.SetTitle(2, "Title");
    for (int i = 0; i < 12; ++i) {
      if (i == 3) image.AddHole(9);
      image.AddFile(2, {(i < 10 ? "F0" : "F") + std::to_string(i), Pattern(300U + 211U * i, i)});
    }
    const std::int32_t sub = image.AddDirectory(2, "SUB");
    for (int i = 0; i < 5; ++i) {
      image.AddFile(sub,
                    {"S" + std::to_string(i), Pattern(700, 50U + i), 0, 0, i == 2 ? "LR" : "WR"});
    }
    image.AddDirectory(sub, "EMPTY");
    return image;
  }

  void WriteHostFiles() {
    WriteAll(folder_ / "NEW", Pattern(5000, 91));
    WriteAll(folder_ / "P.FILE", Pattern(3000, 92));
    WriteAll(folder_ / "F05", Pattern(1300, 93));
    WriteAll(folder_ / "F06", Pattern(9000, 94));
    std::filesystem::create_directory(folder_ / "TREE");
    for (int i = 0; i < 4; ++i) {
      WriteAll(folder_ / ("TREE/T" + std::to_string(i)), Pattern(1500, 95U + i));
    }
  }

  [[nodiscard]] bool IsCard() const { return std::get<Kind>(GetParam()).Type == kCF; }
  [[nodiscard]] std::string Path() const { return folder_ / (IsCard() ? "card" : "x.dat"); }

  void WriteDisc() {
    std::filesystem::remove(Path() + "-journal");
    std::filesystem::remove_all(HostStateFolder());
    const Bytes bytes = MakeImage().Bytes();
    if (!IsCard()) return WriteAll(Path(), bytes);
    Bytes card;
    for (const std::uint8_t byte : bytes) card.insert(card.end(), {byte, 0xC5});
    WriteAll(Path(), card);
  }

  // The bytes of the disc, as they stand in the host's file.
  [[nodiscard]] Bytes Discs() const {
    const Bytes file = ReadAll(Path());
    if (!IsCard()) return file;
    Bytes bytes;
    for (std::size_t i = 0; i < file.size(); i += 2) bytes.push_back(file[i]);
    return bytes;
  }

  void Open(Disc& disc) const {
    if (IsCard()) {
      disc.TheDisc.OpenFile(Path() + ",0", kCF, 0, 0, 0);
    } else {
      disc.TheDisc.OpenFile(Path(), kDat, 1, 1, kSectors);
    }
    ReadFreeMap(disc);
  }

  [[nodiscard]] Bytes InStore(Disc& disc) const {
    Bytes bytes(static_cast<std::size_t>(kSectors) * 256);
    disc.TheDisc.FetchBytes(0, bytes);
    return bytes;
  }

  // Runs the operation on the disc; the medium does what the plan says. then is called after a
  // HostError, with the disc still open. Gives how many operations of the plan's sort there were.
  int Run(const FaultPlan& plan, const std::function<void(Disc&)>& then) {
    plan_ = {};
    Disc disc(host_, MakeHostDevice(), std::make_unique<FaultyMaker>(plan_));
    Open(disc);
    disc.TheDisc.HoldInMemory(std::get<Kind>(GetParam()).MostInMemory);
    plan_ = plan;
    try {
      std::get<Operation>(GetParam()).Run(disc, folder_.Path());
      disc.TheDisc.CloseFile();
    } catch (const HostError&) {
      // A program that was killed looks at nothing more.
      if (then && !plan_.Dead) then(disc);
    }
    return plan_.Count();
  }

  // The disc that a later program finds: it is sound, holds what was there before or after, and can
  // be changed.
  void ExpectBeforeOrAfter(const std::string& what) {
    QuietHost host;
    Disc disc(host);
    Open(disc);
    ExpectBeforeOrAfter(disc, what);
    ASSERT_EQ(AddFile(disc, 2, folder_ / "NEW"), Outcome::kDone) << what;
    disc.TheDisc.CloseFile();
    EXPECT_EQ(FaultsOf(Discs()), std::vector<std::string>()) << what;
    EXPECT_FALSE(std::filesystem::exists(Path() + "-journal")) << what;
    EXPECT_TRUE(!std::filesystem::exists(HostStateFolder()) ||
                std::filesystem::is_empty(HostStateFolder()))
        << what;
  }

  void ExpectBeforeOrAfter(Disc& disc, const std::string& what) {
    const Bytes bytes = InStore(disc);
    ASSERT_EQ(FaultsOf(bytes), std::vector<std::string>()) << what;
    const std::string now = DescribeDisc(bytes);
    EXPECT_TRUE(now == before_ || now == after_) << what;
    EXPECT_EQ(FreeSectors(disc), SectorsFree(bytes)) << what;
  }

  static std::int64_t SectorsFree(const Bytes& bytes) {
    std::int64_t sectors = 0;
    for (const auto& run : ReadFreeRuns(bytes)) sectors += run.Length;
    return sectors;
  }

  // A fault at every operation of one sort.
  void FailEverywhere(FaultPlan::Operation what, FaultPlan::Kind fault, unsigned lost = 0) {
    int count = 1;
    for (int at = 0; at < count; ++at) {
      WriteDisc();
      FaultPlan plan;
      plan.Set(what, fault, at, lost);
      const std::string name = "at " + std::to_string(at) + ", lost " + std::to_string(lost);
      const int seen = Run(plan, [&](Disc& disc) {
        plan_.Set(what, FaultPlan::Kind::kNone, 0);
        ExpectBeforeOrAfter(disc, name + ", still open");
        EXPECT_EQ(AddFile(disc, 2, folder_ / "NEW"), Outcome::kDone) << name;
        EXPECT_EQ(FaultsOf(InStore(disc)), std::vector<std::string>()) << name;
        EXPECT_EQ(DeleteEntry(disc, 2, "NEW", false, false), Outcome::kDone) << name;
        const std::string now = DescribeDisc(InStore(disc));
        EXPECT_TRUE(SameObjects(now)) << name;
      });
      // A fault may cut the number short, so the first run has only told that there is work to do.
      if (at == 0) count = std::max(CountOf(what), seen);
      if (fault == FaultPlan::Kind::kFail || fault == FaultPlan::Kind::kTear) continue;
      ExpectBeforeOrAfter(name);
      if (HasFatalFailure()) return;
    }
  }

  // The same objects as before or after, whatever the free list.
  [[nodiscard]] bool SameObjects(const std::string& now) const {
    const auto cut = [](const std::string& text) { return text.substr(0, text.rfind("boot")); };
    return cut(now) == cut(before_) || cut(now) == cut(after_);
  }

  // How many operations of a sort there are without a fault.
  int CountOf(FaultPlan::Operation what) {
    WriteDisc();
    FaultPlan plan;
    plan.Set(what, FaultPlan::Kind::kNone, 0);
    const int count = Run(plan, {});
    WriteDisc();
    return count;
  }

  TempFolder folder_;
  QuietHost host_;
  FaultPlan plan_;
  std::string before_;
  std::string after_;
};

TEST_P(WholeChangeTest, AKillAfterAnyWriteLeavesTheDiscBeforeOrAfter) {
  FailEverywhere(FaultPlan::Operation::kWrite, FaultPlan::Kind::kLast);
}

TEST_P(WholeChangeTest, AWriteThatFailsLeavesTheDiscBeforeOrAfter) {
  FailEverywhere(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail);
}

TEST_P(WholeChangeTest, AWriteThatIsTornLeavesTheDiscBeforeOrAfter) {
  FailEverywhere(FaultPlan::Operation::kWrite, FaultPlan::Kind::kTear);
}

TEST_P(WholeChangeTest, AReadThatFailsLeavesTheDiscBeforeOrAfter) {
  FailEverywhere(FaultPlan::Operation::kRead, FaultPlan::Kind::kFail);
}

TEST_P(WholeChangeTest, ASyncThatFailsLeavesTheDiscBeforeOrAfter) {
  FailEverywhere(FaultPlan::Operation::kSync, FaultPlan::Kind::kFail);
}

TEST_P(WholeChangeTest, APowerCutAfterAnyWriteLeavesTheDiscBeforeOrAfter) {
  for (const unsigned lost : {0x0FFU, 0x155U, 0x0AAU, 0x100U}) {
    FailEverywhere(FaultPlan::Operation::kWrite, FaultPlan::Kind::kCut, lost);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, WholeChangeTest,
                         ::testing::Combine(::testing::ValuesIn(kOperations),
                                            ::testing::ValuesIn(kKinds)),
                         [](const auto& one) {
                           return std::string(std::get<Operation>(one.param).Name) + "On" +
                                  std::get<Kind>(one.param).Name;
                         });

}  // namespace
}  // namespace sectorbox
