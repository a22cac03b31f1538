// A program that dies in the middle of a compaction: what has reached the medium by then.

#include <algorithm>
#include <memory>

#include "disc/change/Compaction.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

using namespace testing;

// A card that takes a given number of writes; all later writes have no effect.
class DyingDevice final : public RawDevice {
 public:
  DyingDevice(Bytes& card, std::size_t writes) : card_(card), writes_(writes) {}
  bool Open(const std::string&) override { return open_ = true; }
  bool IsOpen() const override { return open_; }
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    if (offset >= card_.size()) return 0;
    const auto bytes = std::min<std::size_t>(buffer.size(), card_.size() - offset);
    std::copy_n(card_.data() + offset, bytes, buffer.begin());
    return bytes;
  }
  std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) override {
    ++Writes;
    if (Writes <= writes_) std::copy(buffer.begin(), buffer.end(), card_.data() + offset);
    return buffer.size();
  }
  void Close() override { open_ = false; }

  std::size_t Writes = 0;

 private:
  Bytes& card_;
  std::size_t writes_;
  bool open_ = false;
};

class CompactionKillTest : public ::testing::Test {
 protected:
  // Files of 25 KB above a hole, five directories between them, and each file in any of these.
  CompactionKillTest() : image_(15000) {
    image_.AddHole(4500);
    std::vector<std::int32_t> directories;
    for (int i = 0; i < 100; ++i) {
      if (i % 20 == 0) directories.push_back(image_.AddDirectory(2, "D" + std::to_string(i)));
      const Bytes bytes = Pattern(25000, static_cast<unsigned>(i));
      image_.AddFile(directories.back(), {"F" + std::to_string(i), bytes, 0, 0, "WR"});
    }
    for (std::size_t i = 0; i < 100; ++i) {
      if (i / 20 == i % 5) continue;
      image_.Rehang(directories[i / 20], "F" + std::to_string(i), directories[i % 5]);
    }
  }

  // The disc after a compaction of which only the first writes have reached the card, as many as
  // given.
  Bytes CompactWith(std::size_t writes) {
    Bytes card(image_.Bytes().size() * 2);
    for (std::size_t i = 0; i < image_.Bytes().size(); ++i) card[2 * i] = image_.Bytes()[i];
    QuietHost host;
    auto device = std::make_unique<DyingDevice>(card, writes);
    DyingDevice& dying = *device;
    Disc disc(host, std::move(device));
    disc.TheDisc.OpenFile("card,0", kCF, 0, 0, 0);
    ReadFreeMap(disc);
    CompactDisc(disc);
    disc.TheDisc.CloseFile();
    allWrites_ = dying.Writes;
    Bytes after(image_.Bytes().size());
    for (std::size_t i = 0; i < after.size(); ++i) after[i] = card[2 * i];
    return after;
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
  std::size_t allWrites_ = 0;

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

TEST_F(CompactionKillTest, NoFileIsLostWhereMoreThanAMegabyteIsFreeBelow) {
  const auto files = Files(image_.Bytes());
  ASSERT_EQ(files.size(), 100U);
  const Bytes whole = CompactWith(SIZE_MAX);
  ASSERT_TRUE(Files(whole) == files);
  EXPECT_EQ(FaultsOf(whole), std::vector<std::string>());
  const std::size_t all = allWrites_;
  for (std::size_t writes = 0; writes < all; writes += all / 60 + 1) {
    EXPECT_TRUE(Files(CompactWith(writes)) == files) << writes << " of " << all << " writes";
  }
}

}  // namespace
}  // namespace sectorbox
