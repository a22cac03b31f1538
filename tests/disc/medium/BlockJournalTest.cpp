#include "disc/medium/BlockJournal.h"

#include <gtest/gtest.h>

#include <memory>

#include "disc/host/HostError.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/MemoryMedium.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

class BlockJournalTest : public ::testing::Test {
 protected:
  BlockJournalTest() {
    for (std::int32_t block = 0; block < 6; ++block) medium_.WriteBlock(block, Block(block, 1));
    JournalFile place(path_);
    JournalWriter writer(place, medium_);
    // Of two records of one block the later one counts.
    for (const auto& [block, seed] : {std::pair{5, 9}, {1, 2}, {4, 3}, {5, 4}}) {
      writer.Add({{block, {Block(block, seed), false, {}}}});
    }
    writer.Finish({});
    journal_ = ReadAll(path_);
  }

  static Bytes Block(std::int32_t block, int seed) {
    Bytes bytes(Medium::kBlockSize);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      bytes[i] =
          static_cast<std::uint8_t>(i * 7 + static_cast<std::size_t>(block * 31 + seed * 91));
    }
    return bytes;
  }
  Bytes Now(std::int32_t block) {
    Bytes bytes(Medium::kBlockSize);
    EXPECT_TRUE(medium_.ReadBlock(block, bytes));
    return bytes;
  }
  bool IsOld() {
    for (std::int32_t block = 0; block < 6; ++block) {
      if (Now(block) != Block(block, 1)) return false;
    }
    return true;
  }
  bool IsNew() {
    return Now(0) == Block(0, 1) && Now(1) == Block(1, 2) && Now(2) == Block(2, 1) &&
           Now(3) == Block(3, 1) && Now(4) == Block(4, 3) && Now(5) == Block(5, 4);
  }

  TempFolder folder_;
  const std::string path_ = folder_ / "x.dat-journal";
  std::shared_ptr<MemoryBlocks> blocks_ = std::make_shared<MemoryBlocks>();
  MemoryMedium medium_{blocks_};
  JournalFile place_{path_};
  Bytes journal_;
};

TEST_F(BlockJournalTest, AWholeJournalIsFinishedAndRemoved) {
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kFinished);
  EXPECT_TRUE(IsNew());
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kNone);
}

TEST_F(BlockJournalTest, AJournalThatEndsEarlyIsDroppedWhereverItEnds) {
  for (std::size_t length = 1; length < journal_.size(); length += length < 200 ? 1 : 37) {
    WriteAll(path_,
             Bytes(journal_.begin(), journal_.begin() + static_cast<std::ptrdiff_t>(length)));
    ASSERT_EQ(FinishJournal(place_, medium_), JournalEnd::kDropped) << length;
    ASSERT_TRUE(IsOld()) << length;
    ASSERT_FALSE(std::filesystem::exists(path_)) << length;
  }
}

TEST_F(BlockJournalTest, AJournalWithOneWrongByteIsDroppedWhereverThatIs) {
  for (std::size_t at = 8; at < journal_.size(); at += at < 200 ? 1 : 41) {
    Bytes wrong = journal_;
    wrong[at] ^= 0x40;
    WriteAll(path_, wrong);
    ASSERT_EQ(FinishJournal(place_, medium_), JournalEnd::kDropped) << at;
    ASSERT_TRUE(IsOld()) << at;
  }
}

TEST_F(BlockJournalTest, AJournalIsFinishedWhereSomeOfItsBlocksAreInPlaceAndOneSectorIsTorn) {
  medium_.WriteBlock(4, Block(4, 3));
  Bytes torn = Block(1, 1);
  const Bytes whole = Block(1, 2);
  std::copy_n(whole.begin(), 300, torn.begin());
  medium_.WriteBlock(1, torn);
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kFinished);
  EXPECT_TRUE(IsNew());
}

TEST_F(BlockJournalTest, AJournalOfAnotherDiscIsLeftAlone) {
  for (std::int32_t block = 0; block < 6; ++block) medium_.WriteBlock(block, Block(block, 7));
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kForeign);
  for (std::int32_t block = 0; block < 6; ++block) EXPECT_EQ(Now(block), Block(block, 7));
  EXPECT_EQ(ReadAll(path_), journal_);
}

TEST_F(BlockJournalTest, AJournalIsLeftAloneWhereAnotherProgramHasChangedTheDiscSince) {
  Bytes changed = Block(1, 1);
  changed[0] ^= 1;
  changed[1000] ^= 1;
  medium_.WriteBlock(1, changed);
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kForeign);
  EXPECT_EQ(Now(1), changed);
}

TEST_F(BlockJournalTest, OnlyTheStoredBytesOfAPartialBlockAreWritten) {
  place_.Remove();
  NewBlock partial{Block(2, 9), true, {}};
  partial.Stored.set(3);
  partial.Stored.set(1023);
  {
    JournalFile place(path_);
    JournalWriter writer(place, medium_);
    writer.Add({{1, {Block(1, 2), false, {}}}, {2, partial}});
    EXPECT_TRUE(writer.Find(2)->IsPartial);
    EXPECT_EQ(writer.Find(2)->Stored, partial.Stored);
    writer.Finish({});
  }
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kFinished);
  Bytes expected = Block(2, 1);
  expected[3] = Block(2, 9)[3];
  expected[1023] = Block(2, 9)[1023];
  EXPECT_EQ(Now(2), expected);
}

// What a card does that can't be read or written any more.
class DeadMedium final : public Medium {
 public:
  explicit DeadMedium(Medium* readable) : readable_(readable) {}
  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override {
    return readable_ != nullptr && readable_->ReadBlock(block, data);
  }
  void WriteBlock(std::int32_t, std::span<const std::uint8_t>) override { ++faults_; }
  [[nodiscard]] std::int32_t WriteFaults() const override { return faults_; }
  [[nodiscard]] std::int64_t EndOfData() const override { return 0; }
  [[nodiscard]] std::int64_t LongestFile() const override { return 0; }
  void Close() override {}

 private:
  Medium* readable_;
  std::int32_t faults_ = 0;
};

TEST_F(BlockJournalTest, AJournalStaysWhereNothingOfTheDiscCanBeRead) {
  DeadMedium dead(nullptr);
  EXPECT_EQ(FinishJournal(place_, dead), JournalEnd::kForeign);
  EXPECT_EQ(dead.WriteFaults(), 0);
  EXPECT_EQ(ReadAll(path_), journal_);
}

TEST_F(BlockJournalTest, AJournalStaysWhereItsBlocksCannotBeWritten) {
  DeadMedium dead(&medium_);
  EXPECT_EQ(FinishJournal(place_, dead), JournalEnd::kUnplaced);
  EXPECT_EQ(ReadAll(path_), journal_);
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kFinished);
  EXPECT_TRUE(IsNew());
}

TEST_F(BlockJournalTest, TheWriterGivesBackWhatWasAddedLast) {
  place_.Remove();
  JournalFile place(path_);
  JournalWriter writer(place, medium_);
  EXPECT_FALSE(writer.Find(3));
  writer.Add({{3, {Block(3, 5), false, {}}}});
  EXPECT_EQ(writer.Find(3)->Data, Block(3, 5));
  writer.Add({{3, {Block(3, 6), false, {}}}});
  EXPECT_EQ(writer.Find(3)->Data, Block(3, 6));
  EXPECT_FALSE(writer.Find(2));
}

// The user may have a file of that name, an image even.
TEST_F(BlockJournalTest, AFileThatIsNoJournalStaysAndKeepsChangesOut) {
  for (const Bytes& other : {Pattern(2000), Bytes{'S', 'B', 'X', '?'}, Bytes{'x'}}) {
    WriteAll(path_, other);
    JournalFile place(path_);
    EXPECT_EQ(FinishJournal(place, medium_), JournalEnd::kForeign);
    EXPECT_THROW(place.Append(Block(1, 1)), HostError);
    EXPECT_EQ(ReadAll(path_), other);
  }
}

TEST_F(BlockJournalTest, AForeignJournalStaysWhenTheDiscIsToBeChanged) {
  for (std::int32_t block = 0; block < 6; ++block) medium_.WriteBlock(block, Block(block, 7));
  ASSERT_EQ(FinishJournal(place_, medium_), JournalEnd::kForeign);
  EXPECT_THROW(place_.Append(Block(1, 1)), HostError);
  EXPECT_EQ(ReadAll(path_), journal_);
}

TEST_F(BlockJournalTest, AFileWithoutBytesThatAPowerCutHasLeftMakesRoomForAJournal) {
  for (const std::size_t zeros : {0U, 5U, 3000U}) {
    WriteAll(path_, Bytes(zeros));
    JournalFile place(path_);
    EXPECT_EQ(FinishJournal(place, medium_), zeros == 0 ? JournalEnd::kNone : JournalEnd::kDropped);
    place.Append(Block(1, 1));
    EXPECT_EQ(ReadAll(path_), Block(1, 1));
  }
}

// The blocks point at what the change wrote before. An older copy of the disc doesn't have that.
TEST_F(BlockJournalTest, AJournalIsOnlyFinishedWhereWhatItPointsAtIs) {
  for (const bool isThere : {true, false}) {
    for (std::int32_t block = 0; block < 6; ++block) medium_.WriteBlock(block, Block(block, 1));
    std::filesystem::remove(path_);
    {
      JournalFile place(path_);
      JournalWriter writer(place, medium_);
      writer.Add({{1, {Block(1, 2), false, {}}}});
      WrittenRuns written;
      written.Note(2, Block(2, 1), Medium::kBlockSize);
      written.Note(3, Block(3, 1), Medium::kBlockSize);
      written.NotePart(5);
      writer.Finish(written);
    }
    Bytes other = Block(3, 1);
    other[1000] ^= 1;
    if (!isThere) medium_.WriteBlock(3, other);
    JournalFile place(path_);
    EXPECT_EQ(FinishJournal(place, medium_),
              isThere ? JournalEnd::kFinished : JournalEnd::kForeign);
    EXPECT_EQ(Now(1), Block(1, isThere ? 2 : 1));
    EXPECT_EQ(std::filesystem::exists(path_), !isThere);
  }
}

TEST_F(BlockJournalTest, TheJournalOfAProgramThatIsAtWorkIsLeftAlone) {
  place_.Remove();
  JournalFile busy(path_);
  busy.Append(Block(1, 1));
  JournalFile other(path_);
  EXPECT_EQ(FinishJournal(other, medium_), JournalEnd::kForeign);
  EXPECT_EQ(ReadAll(path_), Block(1, 1));
  EXPECT_FALSE(busy.IsInUse());
}

TEST_F(BlockJournalTest, AJournalWithoutItsEndIsDropped) {
  place_.Remove();
  for (std::int32_t block = 0; block < 6; ++block) medium_.WriteBlock(block, Block(block, 1));
  {
    JournalFile place(path_);
    JournalWriter writer(place, medium_);
    writer.Add({{1, {Block(1, 2), false, {}}}});
    EXPECT_TRUE(writer.Find(1));
  }
  EXPECT_EQ(FinishJournal(place_, medium_), JournalEnd::kDropped);
  EXPECT_TRUE(IsOld());
}

}  // namespace
}  // namespace sectorbox
