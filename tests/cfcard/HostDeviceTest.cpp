// The same steps over everything that can stand for a card on this machine: memory, a plain file, a
// sparse file larger than any card, and a loop device where the machine gives one.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "disc/image/SaveImage.h"
#include "tests/cfcard/CardFixture.h"
#include "tests/support/OrdinaryUser.h"

namespace sectorbox::testing {
namespace {

constexpr std::uint64_t kSmallCard = 8192 * 512;

// A card under a path. The test looks at its bytes without the code under test.
struct TestCard {
  virtual ~TestCard() = default;
  virtual std::string Path() const = 0;
  virtual std::uint64_t Size() const = 0;
  virtual void Poke(std::uint64_t offset, std::uint8_t value) = 0;
  virtual std::uint8_t Peek(std::uint64_t offset) = 0;
  virtual std::unique_ptr<RawDevice> Device() { return MakeHostDevice(); }
};

struct MemoryCard final : TestCard {
  MemoryCard() { shelf.Put("card", kSmallCard / 512); }
  std::string Path() const override { return "card"; }
  std::uint64_t Size() const override { return kSmallCard; }
  void Poke(std::uint64_t offset, std::uint8_t value) override {
    shelf.At("card").Poke(offset, value);
  }
  std::uint8_t Peek(std::uint64_t offset) override { return shelf.At("card").Peek(offset); }
  std::unique_ptr<RawDevice> Device() override { return shelf.MakeDevice(); }
  CardShelf shelf;
};

struct FileCard : TestCard {
  explicit FileCard(std::uint64_t bytes) : size(bytes) {
    file = ::open(path.c_str(), O_RDWR | O_CREAT, 0600);
    if (file < 0 || ::ftruncate(file, static_cast<off_t>(bytes)) != 0) {
      throw std::runtime_error("no file of that size");
    }
  }
  ~FileCard() override { ::close(file); }
  std::string Path() const override { return path; }
  std::uint64_t Size() const override { return size; }
  void Poke(std::uint64_t offset, std::uint8_t value) override {
    ASSERT_EQ(::pwrite(file, &value, 1, static_cast<off_t>(offset)), 1);
  }
  std::uint8_t Peek(std::uint64_t offset) override {
    std::uint8_t value = 0;
    EXPECT_EQ(::pread(file, &value, 1, static_cast<off_t>(offset)), 1);
    return value;
  }
  TempFolder folder;
  std::string path = folder / "my,card";
  std::uint64_t size;
  int file = -1;
};

// A loop device over a plain file. The test looks at the file after the device was closed.
struct LoopCard final : FileCard {
  LoopCard() : FileCard(kSmallCard) {
    const std::string command = "losetup --show -f '" + FileCard::Path() + "' 2>/dev/null";
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return;
    char line[64] = {};
    if (std::fgets(line, sizeof line, pipe) != nullptr) loop.assign(line, std::strcspn(line, "\n"));
    ::pclose(pipe);
  }
  ~LoopCard() override {
    if (!loop.empty()) (void)!std::system(("losetup -d " + loop).c_str());
  }
  std::string Path() const override { return loop; }
  std::string loop;
};

enum class Kind { kMemory, kFile, kSparse, kLoop };

const char* NameOf(Kind kind) {
  static constexpr std::array<const char*, 4> kNames = {"Memory", "File", "Sparse", "Loop"};
  return kNames[static_cast<std::size_t>(kind)];
}

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(Kind kind, std::ostream* out) {
  *out << NameOf(kind);
}

std::unique_ptr<TestCard> MakeCard(Kind kind) {
  switch (kind) {
    case Kind::kMemory:
      return std::make_unique<MemoryCard>();
    case Kind::kFile:
      return std::make_unique<FileCard>(kSmallCard);
    case Kind::kSparse:
      return std::make_unique<FileCard>(5 * kGibibyte / 2);
    case Kind::kLoop:
      break;
  }
  auto card = std::make_unique<LoopCard>();
  if (card->loop.empty()) return nullptr;
  return card;
}

struct QuietView : FormatView {
  void FormatStarted() override {}
  void ShowFormat(const std::string&, double) override {}
};

class DeviceTest : public ::testing::TestWithParam<Kind> {
 protected:
  void SetUp() override {
    card = MakeCard(GetParam());
    if (card == nullptr) GTEST_SKIP() << "this machine gives no loop device";
    disc = std::make_unique<Disc>(host, card->Device());
    host.ProgressRunning = &disc->ProgressRunning;
  }
  void Format(char partition, const std::string& capacity, bool quick) {
    disc->ImageName = card->Path() + "," + partition;
    disc->ProgressRunning = true;
    QuietView view;
    FormatCFDisc(*disc, view, capacity, quick);
  }

  TempFolder folder;
  std::unique_ptr<TestCard> card;
  ScriptedHost host;
  std::unique_ptr<Disc> disc;
};

TEST_P(DeviceTest, BytesLieAtEvenPlacesAndTheOddOnesStay) {
  for (std::uint64_t i = 0; i < 4096; ++i) card->Poke(i, static_cast<std::uint8_t>(i % 253));
  disc->TheDisc.OpenFile(card->Path() + ",0", kCF, 0, 0, 0);
  disc->TheDisc.Store(700, 0xA5);
  disc->TheDisc.Store(1500, 0x5A);
  EXPECT_EQ(disc->TheDisc.Fetch(701), 1402 % 253);
  disc->TheDisc.CloseFile();
  for (std::uint64_t i = 0; i < 4096; ++i) {
    std::uint8_t expected = static_cast<std::uint8_t>(i % 253);
    if (i == 1400) expected = 0xA5;
    if (i == 3000) expected = 0x5A;
    ASSERT_EQ(card->Peek(i), expected) << i;
  }
  EXPECT_EQ(disc->TheDisc.CardFaults(), 0);
}

TEST_P(DeviceTest, TheSizeIsFound) {
  disc->TheDisc.OpenFile(card->Path() + ",0", kCF, 0, 0, 0);
  const bool isLarge = card->Size() > 2 * kGibibyte;
  EXPECT_EQ(disc->TheDisc.mNumSecs, isLarge ? 0x400000 : 8192);
  EXPECT_EQ(disc->TheDisc.DiscSize(), isLarge ? 0x1FFFFF : 8192);
}

TEST_P(DeviceTest, AFormattedPartitionIsFoundByTheScan) {
  EXPECT_TRUE(ScanCards(*disc, {{"X", card->Path(), card->Path()}}, false).Rows.empty());
  Format('0', "1MB", false);
  EXPECT_TRUE(disc->ProgressRunning);
  EXPECT_EQ(ScanCards(*disc, {{"X", card->Path(), card->Path()}}, false).Rows,
            std::vector<std::string>({"X: - Partition 0"}));
  EXPECT_EQ(card->Peek(2 * 253), 0x10);
  EXPECT_TRUE(host.LogOf("note ").empty());
}

TEST_P(DeviceTest, ARestoreAndABackupGiveTheSameBytes) {
  ImageBuilder builder(4096);
  builder.AddFile(2, {"HELLO", std::vector<std::uint8_t>(100000, 0x41)});
  builder.WriteTo(folder / "in.dat");
  OpenCFPartition(*disc, card->Path() + ",0");
  EXPECT_EQ(RestoreImage(*disc, folder / "in.dat"), RestoreEnd::kDone);
  disc->TheDisc.CloseFile();
  host.Pad = true;
  OpenCFPartition(*disc, card->Path() + ",0");
  SaveDatImage(*disc, folder / "out.dat", false);
  EXPECT_EQ(ReadAll(folder / "out.dat"), builder.Bytes());
  EXPECT_EQ(disc->TheDisc.CardFaults(), 0);
}

TEST_P(DeviceTest, NothingIsWrittenPastTheDevicesEnd) {
  if (card->Size() != kSmallCard) GTEST_SKIP() << "this device has room for the whole partition";
  disc->TheDisc.OpenFile(card->Path() + ",0", kCF, 0, 0, 0);
  disc->TheDisc.Store(8192 * 256 - 1, 0x11);
  disc->TheDisc.Store(8192 * 256, 0x22);
  disc->TheDisc.CloseFile();
  EXPECT_EQ(card->Peek(8192 * 512 - 2), 0x11);
  EXPECT_EQ(disc->TheDisc.CardFaults(), 1);
}

std::string NameOfKind(const ::testing::TestParamInfo<Kind>& kind) {
  return NameOf(kind.param);
}

INSTANTIATE_TEST_SUITE_P(Cards, DeviceTest,
                         ::testing::Values(Kind::kMemory, Kind::kFile, Kind::kSparse, Kind::kLoop),
                         NameOfKind);

TEST(SparseCard, TheTwoPartitionsAreFormattedApart) {
  FileCard card(5 * kGibibyte / 2);
  ScriptedHost host;
  Disc disc(host);
  QuietView view;
  card.Poke(2 * kGibibyte, 0x42);
  card.Poke(kGibibyte - 512, 0x43);
  for (const char* partition : {",0", ",1"}) {
    disc.ImageName = card.Path() + partition;
    disc.ProgressRunning = true;
    FormatCFDisc(disc, view, "512MB", true);
  }
  for (const std::uint64_t start : {std::uint64_t{0}, kGibibyte}) {
    EXPECT_EQ(card.Peek(start + 2 * 252), 0xFF);
    EXPECT_EQ(card.Peek(start + 2 * 253), 0xFF);
    EXPECT_EQ(card.Peek(start + 2 * 254), 0x1F);
    EXPECT_EQ(card.Peek(start + 2 * 513), 'H');
  }
  EXPECT_EQ(card.Peek(2 * kGibibyte), 0x42);
  EXPECT_EQ(card.Peek(kGibibyte - 512), 0x43);
  EXPECT_EQ(std::filesystem::file_size(card.Path()), 5 * kGibibyte / 2);
  EXPECT_EQ(ScanCards(disc, {{"X", card.Path(), card.Path()}}, false).Rows,
            std::vector<std::string>({"X: - Partition 0", "X: - Partition 1"}));
}

TEST(HostDevices, WhatIsNoCardIsNotOpened) {
  TempFolder folder;
  const auto device = MakeHostDevice();
  EXPECT_FALSE(device->Open(folder / "absent"));
  EXPECT_EQ(device->LastError(), ENOENT);
  EXPECT_FALSE(device->Open(folder.Path()));
  EXPECT_EQ(device->LastError(), ENOTBLK);
  EXPECT_FALSE(device->Open("/dev/null"));
}

TEST(HostDevices, AFileWithoutRightsIsNotOpened) {
  TempFolder folder;
  WriteAll(folder / "card", std::vector<std::uint8_t>(4096));
  ::chmod(folder.Path().c_str(), 0755);
  ::chmod((folder / "card").c_str(), 0444);
  const auto device = MakeHostDevice();
  const OrdinaryUser user;
  EXPECT_FALSE(device->Open(folder / "card"));
  EXPECT_EQ(device->LastError(), EACCES);
}

TEST(HostDevices, AReadThatTheSystemRefusesEndsWithItsError) {
  const FileCard card(kSmallCard);
  const auto device = MakeHostDevice();
  ASSERT_TRUE(device->Open(card.Path()));
  std::array<std::uint8_t, 512> sector{};
  // No file reaches that far: to the system the offset is negative.
  EXPECT_EQ(device->Read(std::uint64_t{1} << 63, sector), 0U);
  EXPECT_EQ(device->LastError(), EINVAL);
  EXPECT_EQ(device->Read(0, sector), 512U);
  EXPECT_EQ(device->LastError(), 0);
}

TEST(HostDevices, ADeviceThatTheSystemHasInUseIsNotOpened) {
  const LoopCard card;
  if (card.loop.empty()) GTEST_SKIP() << "this machine gives no loop device";
  // A mounted file system holds a device in this way.
  const int holder = ::open(card.loop.c_str(), O_RDONLY | O_EXCL);
  ASSERT_GE(holder, 0);
  const auto device = MakeHostDevice();
  EXPECT_FALSE(device->Open(card.loop));
  EXPECT_EQ(device->LastError(), EBUSY);
  ::close(holder);
  EXPECT_TRUE(device->Open(card.loop));
}

TEST(HostDevices, AnOpenDeviceKnowsItselfUnderAnyName) {
  TempFolder folder;
  WriteAll(folder / "card", std::vector<std::uint8_t>(4096));
  WriteAll(folder / "other", std::vector<std::uint8_t>(4096));
  std::filesystem::create_symlink(folder / "card", folder / "link");
  std::filesystem::create_hard_link(folder / "card", folder / "second");
  const auto device = MakeHostDevice();
  EXPECT_FALSE(device->Is(folder / "card"));
  ASSERT_TRUE(device->Open(folder / "card"));
  for (const char* name : {"card", "link", "second", "./card"}) {
    EXPECT_TRUE(device->Is(folder / name)) << name;
  }
  EXPECT_FALSE(device->Is(folder / "other"));
  EXPECT_FALSE(device->Is(folder / "absent"));
}

}  // namespace
}  // namespace sectorbox::testing
