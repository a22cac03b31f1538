// A change to a floppy in memory that fails in its middle: at any read of a host file, and at any
// allocation. The disc's bytes, the free list and the changed mark are then what they were, and the
// same change works when the host does.

#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <tuple>

#include "disc/host/HostError.h"
#include "tests/disc/change/ChangeOperations.h"
#include "tests/support/QuietHost.h"
#include "tests/support/failing/FailingInProcess.h"

namespace sectorbox {
namespace {

using namespace testing;

struct Kind {
  const char* Name;
  sectorbox::DiscType Type;
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.Name;
}

constexpr Kind kKinds[] = {{"Adf", kAdf}, {"Adl", kAdl}};

using Parameters = std::tuple<ChangeOperation, Kind>;

// What a change must leave as it was.
struct State {
  Bytes Image;
  std::vector<std::pair<std::int32_t, std::int32_t>> Free;
  bool Changed = false;
  bool operator==(const State&) const = default;
};

class FloppyRollbackTest : public ::testing::TestWithParam<Parameters> {
 protected:
  FloppyRollbackTest() {
    WriteHostFiles(folder_);
    WriteAll(folder_ / "floppy", MakeChangedDisc().Bytes());
    // The disc is too short for a second side.
    host_.Interleave = false;
  }

  void Open(Disc& disc) const {
    disc.TheDisc.OpenFile(folder_ / "floppy", std::get<Kind>(GetParam()).Type,
                          kChangedSectors / 16 + 1, 1, 16);
    ReadFreeMap(disc);
  }
  void Operate(Disc& disc) const {
    std::get<ChangeOperation>(GetParam()).Run(disc, folder_.Path());
  }
  static State StateOf(Disc& disc) {
    State state;
    state.Image.resize(std::size_t{kChangedSectors} * 256);
    disc.TheDisc.FetchBytes(0, state.Image);
    for (const auto& run : FreeRuns(disc)) state.Free.emplace_back(run.Start, run.Length);
    state.Changed = disc.ImageChanged;
    return state;
  }

  // How many calls of one sort the operation makes when nothing fails.
  template <typename Fault>
  std::int64_t Count() {
    Disc disc(host_);
    Open(disc);
    before_ = StateOf(disc);
    std::int64_t count = 0;
    {
      const Fault none(0, Failing::kOne);
      Operate(disc);
      count = Fault::Count();
    }
    after_ = StateOf(disc);
    EXPECT_NE(before_, after_);
    EXPECT_EQ(FaultsOf(after_.Image), std::vector<std::string>());
    return count;
  }

  template <typename Fault>
  void FailOnce(std::int64_t at, Failing which) {
    host_.Log.clear();
    Disc disc(host_);
    Open(disc);
    bool failed = true;
    try {
      const Fault fault(at, which);
      Operate(disc);
      failed = false;
    } catch (const HostError&) {
    } catch (const std::bad_alloc&) {
    }
    const State now = StateOf(disc);
    // When a change is made, what is told of it may still fail.
    ASSERT_TRUE((failed && now == before_) || now == after_) << "at " << at;
    if (now == after_) return;
    ASSERT_TRUE(disc.TrackedSectors.empty()) << "at " << at;
    Operate(disc);
    ASSERT_EQ(StateOf(disc), after_) << "at " << at;
  }

  template <typename Fault>
  void FailEach(Failing which) {
    const std::int64_t count = Count<Fault>();
    for (std::int64_t at = 1; at <= count && !HasFailure(); ++at) FailOnce<Fault>(at, which);
  }

  TempFolder folder_;
  ScriptedHost host_;
  State before_;
  State after_;
};

TEST_P(FloppyRollbackTest, AnyReadOfAHostFileThatFailsChangesNothing) {
  FailEach<FailingReads>(Failing::kOne);
  FailEach<FailingReads>(Failing::kFromThere);
}

TEST_P(FloppyRollbackTest, AnyAllocationThatFailsChangesNothing) {
  FailEach<FailingMemory>(Failing::kOne);
  FailEach<FailingMemory>(Failing::kFromThere);
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, FloppyRollbackTest,
                         ::testing::Combine(::testing::ValuesIn(kChangeOperations),
                                            ::testing::ValuesIn(kKinds)),
                         [](const auto& one) {
                           return std::string(std::get<ChangeOperation>(one.param).Name) + "On" +
                                  std::get<Kind>(one.param).Name;
                         });

// An import is read file by file: each of them fails, and those before it are gone again.
TEST(FloppyRollback, AnImportReadsEachOfItsFiles) {
  TempFolder folder;
  WriteHostFiles(folder);
  WriteAll(folder / "floppy", MakeChangedDisc().Bytes());
  QuietHost host;
  Disc disc(host);
  disc.TheDisc.OpenFile(folder / "floppy", kAdf, kChangedSectors / 16 + 1, 1, 16);
  ReadFreeMap(disc);
  const FailingReads none(0, Failing::kOne);
  EXPECT_EQ(ImportFolder(disc, 2, folder / "TREE"), Outcome::kDone);
  EXPECT_GE(FailingReads::Count(), 4);
}

}  // namespace
}  // namespace sectorbox
