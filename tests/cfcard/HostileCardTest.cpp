// Cards that fail or shrink at any point of a job, or have odd sizes. Nothing is written outside
// the chosen partition, nothing crashes, and the user is told.

#include <limits>

#include "disc/image/SaveImage.h"
#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

struct QuietView : FormatView {
  void FormatStarted() override {}
  void ShowFormat(const std::string&, double) override {}
};

// The second partition of a card. It has 212 sectors and lies between a partition that must stay as
// it is and the card's end. These are whole blocks of four sectors, so that a job without a fault
// shows no line.
class HostileCard : public CardTest {
 protected:
  static constexpr std::uint64_t kSectors = 212;
  static constexpr std::uint64_t kStart = kPartitionSectors * 512;

  // A disc that fills its partition with files of noise.
  static ImageBuilder DiscOf(std::uint8_t noise) {
    ImageBuilder image(kSectors);
    for (std::uint8_t i = 0; i < 4; ++i) {
      image.AddFile(2, {std::string("F") + static_cast<char>('0' + i),
                        std::vector<std::uint8_t>(50 * 256, static_cast<std::uint8_t>(noise + i))});
    }
    return image;
  }
  void SetUp() override { DiscOf(0x5A).WriteTo(file); }

  MemoryDevice& NewCard() {
    host.Log.clear();
    Insert("card", kPartitionSectors + kSectors);
    return shelf.At("card");
  }
  void Format() {
    disc.ImageName = "C:,1";
    disc.ProgressRunning = true;
    FormatCFDisc(disc, view, "1MB", false);
  }
  void Restore() {
    OpenCFPartition(disc, "C:,1");
    (void)RestoreImage(disc, file);  // each test looks at what the user is told
    disc.TheDisc.CloseFile();
  }
  void Backup() {
    OpenCFPartition(disc, "C:,1");
    SaveDatImage(disc, folder / "out.dat", true);
    disc.TheDisc.CloseFile();
  }
  static std::size_t Count(const MemoryDevice& card, bool writes) {
    std::size_t count = 0;
    for (const auto& transfer : card.Transfers) count += transfer.IsWrite == writes ? 1 : 0;
    return count;
  }
  static void ExpectInside(const MemoryDevice& card) {
    for (const auto& transfer : card.Transfers) {
      if (!transfer.IsWrite) continue;
      ASSERT_GE(transfer.Offset, kStart);
      ASSERT_LE(transfer.Offset + transfer.Bytes, kStart + kSectors * 512);
    }
  }
  // Runs job once without a fault. Then runs it again and again, and pulls the card after one
  // transfer, after two, and so on.
  void PullEverywhere(const std::function<void()>& job, bool writes) {
    MemoryDevice& whole = NewCard();
    job();
    ASSERT_TRUE(host.LogOf("note ").empty()) << host.LogOf("note ").front();
    const std::size_t transfers = Count(whole, writes);
    ASSERT_GT(transfers, 3u);
    for (std::size_t left = 0; left < transfers; ++left) {
      MemoryDevice& card = NewCard();
      (writes ? card.WritesLeft : card.ReadsLeft) = left;
      job();
      ExpectInside(card);
      EXPECT_FALSE(host.LogOf("note ").empty()) << "pulled after " << left;
      EXPECT_FALSE(disc.TheDisc.DeviceIsOpen());
    }
  }

  QuietView view;
  const std::string file = folder / "in.dat";
};

// The product of a job and the write after which the card is pulled or dies: what is there then is
// the old disc as it was, no disc, or the new disc whole. The user is told unless it is that.
class HalfDone : public HostileCard {
 protected:
  std::vector<std::uint8_t> BytesOf(const MemoryDevice& card) {
    std::vector<std::uint8_t> bytes;
    for (std::uint64_t i = 0; i < kSectors * 256; ++i) bytes.push_back(DiscByte(card, 1, i));
    return bytes;
  }
  // A card with a disc; the odd bytes are noise.
  MemoryDevice& CardWithADisc() {
    MemoryDevice& card = NewCard();
    PutDisc(card, 1, DiscOf(0x21).Bytes());
    return card;
  }
  void FailEverywhere(const std::function<void()>& job) {
    MemoryDevice& sound = CardWithADisc();
    const auto before = BytesOf(sound);
    job();
    const auto after = BytesOf(sound);
    ASSERT_NE(before, after);
    const std::size_t writes = Count(sound, true);
    for (std::size_t left = 0; left < writes; ++left) {
      SCOPED_TRACE(left);
      MemoryDevice& card = CardWithADisc();
      card.WritesLeft = left;
      job();
      EXPECT_FALSE(host.LogOf("note ").empty());
      const auto now = BytesOf(card);
      // The mark of the root directory, as the scan looks for it.
      const bool isDisc = std::equal(now.begin() + 513, now.begin() + 517, "Hugo");
      if (isDisc) {
        EXPECT_TRUE(now == before || now == after);
      }
      // The next job on the card makes it whole.
      card.WritesLeft = std::numeric_limits<std::uint64_t>::max();
      job();
      EXPECT_EQ(BytesOf(card), after);
    }
  }
};

TEST_F(HalfDone, AFormatLeavesNoHalfOfADisc) {
  FailEverywhere([&] { Format(); });
}

TEST_F(HalfDone, AQuickFormatLeavesNoHalfOfADisc) {
  // What a quick format leaves of the former root's tail is the same after a second one.
  FailEverywhere([&] {
    disc.ImageName = "C:,1";
    disc.ProgressRunning = true;
    FormatCFDisc(disc, view, "1MB", true);
  });
}

TEST_F(HalfDone, ASizedFormatLeavesNoHalfOfADisc) {
  FailEverywhere([&] {
    disc.ImageName = "C:,1";
    disc.ProgressRunning = true;
    FormatCFImage(disc, kSectors, true);
    disc.TheDisc.CloseFile();
  });
}

TEST_F(HalfDone, ARestoreLeavesNoHalfOfADisc) {
  FailEverywhere([&] { Restore(); });
}

TEST_F(HalfDone, ARestoreThatFailsSaysWhatIsOnTheCard) {
  MemoryDevice& card = CardWithADisc();
  card.WritesLeft = 0;
  Restore();
  EXPECT_EQ(host.LogOf("note ").back(),
            "note C:,1: its first sectors can't be written, so nothing more was");
  MemoryDevice& other = CardWithADisc();
  other.WritesLeft = 10;
  Restore();
  EXPECT_NE(
      std::find(host.Log.begin(), host.Log.end(),
                "note C:,1: there is no disc on it now. Format it again, or restore a backup"),
      host.Log.end());
}

TEST_F(HostileCard, APullAfterAnyWriteOfAFormatIsTold) {
  PullEverywhere([&] { Format(); }, true);
}

TEST_F(HostileCard, APullAfterAnyWriteOfARestoreIsTold) {
  PullEverywhere([&] { Restore(); }, true);
}

// A card that can't be read at all seems to have no such partition. A card whose probe is cut short
// seems smaller than it is. In neither case may a job write to another place.
TEST_F(HostileCard, APullAfterAnyReadKeepsEveryJobInsideThePartition) {
  for (const auto& job : std::vector<std::function<void()>>{[&] { Format(); }, [&] { Restore(); },
                                                            [&] { Backup(); }}) {
    MemoryDevice& whole = NewCard();
    job();
    const std::size_t reads = Count(whole, false);
    for (std::size_t left = 0; left < reads; ++left) {
      MemoryDevice& card = NewCard();
      card.ReadsLeft = left;
      job();
      ExpectInside(card);
      EXPECT_FALSE(disc.TheDisc.DeviceIsOpen());
    }
    std::filesystem::remove(folder / "out.dat");
  }
}

TEST_F(HostileCard, APullInABackupIsToldAndTheFileKeepsItsLength) {
  MemoryDevice& card = NewCard();
  OpenCFPartition(disc, "C:,1");
  card.ReadsLeft = 1;
  SaveDatImage(disc, folder / "out.dat", true);
  EXPECT_EQ(std::filesystem::file_size(folder / "out.dat"), kSectors * 256);
  EXPECT_FALSE(host.LogOf("note ").empty());
}

TEST_F(HostileCard, ACardThatShrinksUnderAJobIsTold) {
  for (const auto& job : std::vector<std::function<void()>>{[&] { Format(); }, [&] { Restore(); },
                                                            [&] { Backup(); }}) {
    MemoryDevice& card = NewCard();
    host.OnPump = [&] { card.Shrink(kPartitionSectors + 100); };
    job();
    ExpectInside(card);
    EXPECT_FALSE(host.LogOf("note ").empty());
  }
}

TEST_F(HostileCard, OnlyTheChosenCardIsWritten) {
  MemoryDevice& card = NewCard();
  MemoryDevice& other = Insert("other", kPartitionSectors + kSectors);
  (void)ScanCFCards(disc, drives, true);
  Format();
  Restore();
  Backup();
  (void)ScanCFCards(disc, drives, true);
  EXPECT_EQ(Count(other, true), 0u);
  ExpectInside(card);
}

// Every byte of small cards, also if their size is no multiple of blocks, steps and transfers.
TEST_F(HostileCard, OddSizesAreFormattedFilledAndCopiedToTheirLastByte) {
  Insert("card", 0);
  for (const std::uint64_t size : {7u,   8u,   9u,   10u,  11u,  63u,  64u,  65u,  66u,  127u,
                                   128u, 129u, 191u, 192u, 193u, 255u, 256u, 257u, 511u, 513u}) {
    MemoryDevice& card = shelf.Put("card", size);
    for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
    disc.ImageName = "C:,0";
    disc.ProgressRunning = true;
    FormatCFDisc(disc, view, "512MB", false);
    const ImageBuilder empty(static_cast<std::int32_t>(size));
    for (std::uint64_t i = 0; i < card.Size(); ++i) {
      ASSERT_EQ(card.Peek(i), i % 2 == 0 ? empty.Bytes()[i / 2] : 0) << size << " byte " << i;
    }
    for (std::uint64_t i = 1; i < card.Size(); i += 2) card.Poke(i, 0x0D);
    std::vector<std::uint8_t> bytes(size * 256);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i % 253);
    WriteAll(file, bytes);
    OpenCFPartition(disc, "C:,0");
    EXPECT_EQ(RestoreImage(disc, file), RestoreEnd::kDone);
    disc.TheDisc.CloseFile();
    for (std::uint64_t i = 0; i < card.Size(); ++i) {
      ASSERT_EQ(card.Peek(i), i % 2 == 0 ? bytes[i / 2] : 0x0D) << size << " byte " << i;
    }
    OpenCFPartition(disc, "C:,0");
    SaveDatImage(disc, folder / "out.dat", true);
    const auto copy = ReadAll(folder / "out.dat");
    ASSERT_EQ(copy.size(), bytes.size());
    // The card has only a part of its last block. Reading that block is a fault, and the block's
    // first sector is zero.
    const std::size_t blocks = bytes.size() / 1024 * 1024;
    EXPECT_TRUE(
        std::equal(copy.begin(), copy.begin() + static_cast<std::ptrdiff_t>(blocks), bytes.begin()))
        << size;
    disc.TheDisc.CloseFile();
  }
}

}  // namespace
}  // namespace sectorbox::testing
