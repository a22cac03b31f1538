// What a change holds of a medium that is written in place, in memory and in the journal.

#include "disc/store/HeldBlocks.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "disc/host/HostError.h"
#include "disc/medium/FileMedium.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kBlocks = 40;
constexpr std::size_t kSize = Medium::kBlockSize;

class HeldBlocksTest : public ::testing::Test {
 protected:
  HeldBlocksTest() {
    WriteAll(path_, old_);
    Open();
  }

  // A program opens the file.
  void Open() {
    medium_ = std::make_unique<FaultyMedium>(std::make_unique<FileMedium>(path_), plan_);
    held_.emplace();
    held_->HoldInMemory(4 * kSize);
  }

  static Bytes New(std::int32_t block, int round) {
    return Pattern(kSize, static_cast<unsigned>(block * 10 + round));
  }
  void Write(std::int32_t block, int round) {
    held_->WriteBlock(*medium_, block, {New(block, round), false, {}});
    expected_.resize(old_.size());
    const Bytes bytes = New(block, round);
    std::copy(bytes.begin(), bytes.end(),
              expected_.begin() + static_cast<std::ptrdiff_t>(block) * Medium::kBlockSize);
  }
  // Nothing is free, so all is held. Each block is written twice, in another order.
  void WriteMany() {
    for (std::int32_t i = 0; i < 30; ++i) Write(i * 7 % 30, 1);
    for (std::int32_t i = 0; i < 30; ++i) Write(i * 11 % 30, 2);
  }
  [[nodiscard]] std::size_t JournalBytes() const {
    const std::string journal = path_ + "-journal";
    return std::filesystem::exists(journal) ? std::filesystem::file_size(journal) : 0;
  }
  // The change as far as its end. False if the host failed.
  bool Change() {
    try {
      held_->Begin(*medium_, {});
      WriteMany();
      held_->Commit(*medium_, "x.dat");
    } catch (const HostError&) {
      return false;
    }
    return true;
  }

  TempFolder folder_;
  const std::string path_ = folder_ / "x.dat";
  const Bytes old_ = Pattern(kBlocks * kSize, 5);
  Bytes expected_ = old_;
  FaultPlan plan_;
  std::unique_ptr<FaultyMedium> medium_;
  std::optional<HeldBlocks> held_;
};

TEST_F(HeldBlocksTest, WhatDoesNotFitIntoMemoryIsHeldInTheJournal) {
  held_->Begin(*medium_, {});
  WriteMany();
  EXPECT_EQ(ReadAll(path_), old_);
  // What is read back has to be there.
  Bytes bytes(kSize);
  Medium::StoredBytes stored;
  EXPECT_TRUE(held_->ReadBlock(*medium_, 0, bytes, stored));
  EXPECT_GE(JournalBytes(), 26 * kSize);
  EXPECT_GE(held_->Bytes(), 30 * kSize);
  EXPECT_EQ(held_->LastBlock(), 29);
  held_->Commit(*medium_, "x.dat");
  EXPECT_EQ(ReadAll(path_), expected_);
  EXPECT_EQ(JournalBytes(), 0U);
}

TEST_F(HeldBlocksTest, WhatIsHeldInTheJournalIsReadBack) {
  held_->Begin(*medium_, {});
  WriteMany();
  Bytes run(old_.size() - 300);
  ASSERT_EQ(held_->ReadRun(*medium_, 300, run), run.size());
  EXPECT_EQ(run, Bytes(expected_.begin() + 300, expected_.end()));
  for (std::int32_t block = 0; block < kBlocks; ++block) {
    Bytes bytes(kSize);
    Medium::StoredBytes stored;
    EXPECT_TRUE(held_->ReadBlock(*medium_, block, bytes, stored));
    const auto at = expected_.begin() + static_cast<std::ptrdiff_t>(block) * Medium::kBlockSize;
    EXPECT_EQ(bytes, Bytes(at, at + Medium::kBlockSize)) << block;
  }
}

TEST_F(HeldBlocksTest, ADroppedChangeLeavesNoJournal) {
  held_->Begin(*medium_, {});
  WriteMany();
  held_->Drop();
  EXPECT_EQ(ReadAll(path_), old_);
  EXPECT_EQ(JournalBytes(), 0U);
  EXPECT_FALSE(held_->IsActive());
  EXPECT_TRUE(Change());
  EXPECT_EQ(ReadAll(path_), expected_);
}

TEST_F(HeldBlocksTest, AHostThatFailsAnywhereLeavesTheOldOrTheNewBytes) {
  using Operation = FaultPlan::Operation;
  for (const Operation what : {Operation::kRead, Operation::kWrite, Operation::kSync}) {
    plan_.Set(what, FaultPlan::Kind::kNone, 0);
    ASSERT_TRUE(Change());
    const int count = plan_.Count();
    for (int at = 0; at < count; ++at) {
      WriteAll(path_, old_);
      plan_.Set(what, FaultPlan::Kind::kFail, at);
      ASSERT_FALSE(Change()) << at;
      plan_.Set(what, FaultPlan::Kind::kNone, 0);
      if (held_->IsSealed()) {
        held_->Place(*medium_, "x.dat");
        EXPECT_EQ(ReadAll(path_), expected_) << at;
      } else {
        held_->Drop();
        EXPECT_EQ(ReadAll(path_), old_) << at;
      }
      EXPECT_EQ(JournalBytes(), 0U) << at;
    }
  }
}

TEST_F(HeldBlocksTest, AKillAnywhereLeavesTheOldOrTheNewBytes) {
  plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kNone, 0);
  ASSERT_TRUE(Change());
  const int count = plan_.Count();
  int finished = 0;
  for (int at = 0; at < count; ++at) {
    WriteAll(path_, old_);
    plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kLast, at);
    (void)Change();
    held_.reset();
    medium_.reset();
    FileMedium reopened(path_);
    for (const auto& journal : reopened.OldJournals()) {
      if (FinishJournal(*journal, reopened) == JournalEnd::kFinished) ++finished;
    }
    const Bytes now = ReadAll(path_);
    EXPECT_TRUE(now == old_ || now == expected_) << at;
    EXPECT_EQ(JournalBytes(), 0U) << at;
    Open();
  }
  EXPECT_GT(finished, 0);
}

}  // namespace
}  // namespace sectorbox
