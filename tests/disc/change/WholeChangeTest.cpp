// Every change is whole or not at all: each operation that changes a disc, on each medium that is
// written in place, with each fault at each place where it can come.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>

#include "disc/host/HostError.h"
#include "tests/disc/change/ChangeOperations.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

using namespace testing;

constexpr std::int32_t kSectors = kChangedSectors;

struct Kind {
  const char* Name;
  sectorbox::DiscType Type;
  std::size_t MostInMemory = std::size_t{1} << 20;
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.Name;
}

// What a change holds goes to memory on the first two, and nearly all of it to the journal on the
// last one.
constexpr Kind kKinds[] = {{"Dat", kDat}, {"Card", kCF}, {"DatBeyondMemory", kDat, 1024}};

using Parameters = std::tuple<ChangeOperation, Kind>;

class WholeChangeTest : public ::testing::TestWithParam<Parameters> {
 protected:
  WholeChangeTest() {
    WriteHostFiles(folder_);
    WriteDisc();
    before_ = DescribeDisc(Discs());
    Run({}, {});
    after_ = DescribeDisc(Discs());
  }

  [[nodiscard]] bool IsCard() const { return std::get<Kind>(GetParam()).Type == kCF; }
  [[nodiscard]] std::string Path() const { return folder_ / (IsCard() ? "card" : "x.dat"); }

  void WriteDisc() {
    std::filesystem::remove(Path() + "-journal");
    std::filesystem::remove_all(HostStateFolder());
    const Bytes bytes = MakeChangedDisc().Bytes();
    if (!IsCard()) return WriteAll(Path(), bytes);
    Bytes card;
    for (const std::uint8_t byte : bytes) card.insert(card.end(), {byte, 0xC5});
    WriteAll(Path(), card);
  }

  // The bytes of the disc, as they stand in the host's file.
  [[nodiscard]] Bytes Discs() const {
    Bytes file = ReadAll(Path());
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
      std::get<ChangeOperation>(GetParam()).Run(disc, folder_.Path());
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
                         ::testing::Combine(::testing::ValuesIn(kChangeOperations),
                                            ::testing::ValuesIn(kKinds)),
                         [](const auto& one) {
                           return std::string(std::get<ChangeOperation>(one.param).Name) + "On" +
                                  std::get<Kind>(one.param).Name;
                         });

}  // namespace
}  // namespace sectorbox
