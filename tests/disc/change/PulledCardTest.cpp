// A card is pulled out in the middle of a change: from some transfer on, every read, write and sync
// fails. The user is told, and when the card is put back, the disc is as it was before the change
// or as it is after it.

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "disc/host/HostError.h"
#include "disc/host/RawDevice.h"
#include "tests/disc/change/ChangeOperations.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

using namespace testing;

// Counts transfers and syncs, and when the card is pulled. None of them is undone: what the card
// has taken stays on it.
struct Pull {
  std::int64_t At = 0;  // the first transfer that fails, counted from 1; 0 for none
  std::int64_t Made = 0;
  bool Done() const { return At > 0 && Made >= At; }
};

// A card reader. Without a card each call gives what the host gives then.
class CardReader final : public RawDevice {
 public:
  explicit CardReader(Pull& pull) : pull_(pull), card_(MakeHostDevice()) {}

  bool Open(const std::string& path) override { return card_->Open(path); }
  bool IsOpen() const override { return card_->IsOpen(); }
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    return IsPulled() ? 0 : card_->Read(offset, buffer);
  }
  std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) override {
    if (IsPulled()) {
      // The transfer in which the card goes may have begun.
      const bool isFirst = pull_.Made == pull_.At && pull_.At % 2 == 0;
      return isFirst ? card_->Write(offset, buffer.first(buffer.size() / 1024 * 512)) : 0;
    }
    return card_->Write(offset, buffer);
  }
  bool Sync() override { return !IsPulled() && card_->Sync(); }
  int LastError() const override { return pull_.Done() ? ENXIO : card_->LastError(); }
  void Close() override { card_->Close(); }

 private:
  bool IsPulled() {
    ++pull_.Made;
    return pull_.Done();
  }

  Pull& pull_;
  std::unique_ptr<RawDevice> card_;
};

class PulledCardTest : public ::testing::TestWithParam<ChangeOperation> {
 protected:
  PulledCardTest() {
    WriteHostFiles(folder_);
    const ImageBuilder image = MakeChangedDisc();
    for (const std::uint8_t byte : image.Bytes()) card_.insert(card_.end(), {byte, 0xC5});
    PutBack();
    before_ = DescribeDisc(Discs());
    Pull none;
    EXPECT_FALSE(Operate(none));
    transfers_ = none.Made;
    after_ = DescribeDisc(Discs());
  }

  // A card as it was made.
  void PutBack() {
    std::filesystem::remove_all(HostStateFolder());
    WriteAll(folder_ / "card", card_);
  }
  [[nodiscard]] Bytes Discs() const {
    const Bytes file = ReadAll(folder_ / "card");
    Bytes bytes;
    for (std::size_t i = 0; i < file.size(); i += 2) bytes.push_back(file[i]);
    return bytes;
  }
  void Open(Disc& disc) const {
    disc.TheDisc.OpenFile((folder_ / "card") + ",0", kCF, 0, 0, 0);
    ReadFreeMap(disc);
  }

  // Runs the operation from the opening to the end of the program. True if the user was told.
  bool Operate(Pull& pull) {
    ScriptedHost host;
    host.AcceptMessages = true;
    try {
      Disc disc(host, std::make_unique<CardReader>(pull));
      const std::int64_t at = std::exchange(pull.At, 0);
      Open(disc);
      pull = {at, 0};
      GetParam().Run(disc, folder_.Path());
      disc.TheDisc.CloseFile();
    } catch (const HostError&) {
      return true;
    }
    return !host.Messages.empty() || !host.LogOf("note ").empty();
  }

  // The next program, with the card in its place again.
  void ExpectBeforeOrAfter(const std::string& what) {
    QuietHost host;
    Disc disc(host);
    Open(disc);
    Bytes bytes(std::size_t{kChangedSectors} * 256);
    disc.TheDisc.FetchBytes(0, bytes);
    ASSERT_EQ(FaultsOf(bytes), std::vector<std::string>()) << what;
    const std::string now = DescribeDisc(bytes);
    ASSERT_TRUE(now == before_ || now == after_) << what;
    EXPECT_EQ(AddFile(disc, 2, folder_ / "NEW"), Outcome::kDone) << what;
    disc.TheDisc.CloseFile();
    EXPECT_EQ(FaultsOf(Discs()), std::vector<std::string>()) << what;
    EXPECT_TRUE(!std::filesystem::exists(HostStateFolder()) ||
                std::filesystem::is_empty(HostStateFolder()))
        << what;
    ExpectOddBytesStay(what);
  }
  void ExpectOddBytesStay(const std::string& what) const {
    const Bytes file = ReadAll(folder_ / "card");
    ASSERT_EQ(file.size(), card_.size()) << what;
    for (std::size_t i = 1; i < file.size(); i += 2) ASSERT_EQ(file[i], 0xC5) << what;
  }

  TempFolder folder_;
  Bytes card_;
  std::int64_t transfers_ = 0;
  std::string before_;
  std::string after_;
};

TEST_P(PulledCardTest, ACardThatIsPulledAtAnyTransferIsBeforeOrAfterTheChange) {
  EXPECT_GT(transfers_, 5);
  for (std::int64_t at = 1; at <= transfers_ && !HasFailure(); ++at) {
    PutBack();
    Pull pull{at, 0};
    const std::string what = "at transfer " + std::to_string(at);
    EXPECT_TRUE(Operate(pull)) << what << ": nobody was told";
    ExpectBeforeOrAfter(what);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, PulledCardTest, ::testing::ValuesIn(kChangeOperations),
                         [](const auto& one) { return std::string(one.param.Name); });

}  // namespace
}  // namespace sectorbox
