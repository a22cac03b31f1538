// A hard disc image with a damaged byte or two, any companion, and any journal beside it. The first
// byte says which kind of journal it is, the second how long the companion is, whose bytes follow.
// Then come a byte with the number of damaged bytes and three bytes for each. The rest is the
// journal: as it stands, or one that is put together with right sums from six bytes for each block.

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"
#include "disc/health/Check.h"
#include "disc/host/HostError.h"
#include "disc/image/OpenImage.h"
#include "fuzz/Require.h"
#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using fuzz::Require;
using sectorbox::testing::ImageBuilder;
using sectorbox::testing::TempFolder;
using Bytes = std::vector<std::uint8_t>;
using Span = std::span<const std::uint8_t>;

constexpr std::int32_t kSectors = 200;
constexpr std::uint64_t kBlocks = kSectors / 4;
constexpr std::size_t kBlock = 1024;
constexpr std::size_t kSector = 256;

enum JournalKind { kAsItIs, kWhole, kDamaged, kMissing };

const TempFolder& Folder() {
  static const TempFolder folder;
  return folder;
}
std::string Image() {
  return Folder() / "x.dat";
}
std::string Journal() {
  return Image() + "-journal";
}

Bytes SoundDisc() {
  ImageBuilder image(kSectors);
  const auto sub = image.AddDirectory(2, "SUB");
  image.AddFile(sub, {"IN", Bytes(900, 2)});
  image.AddHole(5);
  image.AddFile(2, {"NOTES", Bytes(3000, 3)});
  return image.Bytes();
}

// Takes bytes from the front of the input. Behind its end there are zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}
  std::uint8_t Byte() { return rest_.empty() ? std::uint8_t{0} : Take(1)[0]; }
  Span Take(std::size_t size) {
    const Span part = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(part.size());
    return part;
  }
  [[nodiscard]] Span Rest() const { return rest_; }

 private:
  Span rest_;
};

// --- The journal's format, once more -------------------------------------------------------------

void Put(Bytes& bytes, std::uint64_t number) {
  for (int i = 0; i < 8; ++i) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

std::uint64_t SumOf(Span bytes) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (std::size_t at = 0; at < bytes.size(); at += 8) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 8; ++i) number |= std::uint64_t{bytes[at + i]} << (8 * i);
    sum = (sum ^ number) * 0x100000001b3;
    sum ^= sum >> 32;
  }
  return sum == 0 ? 1 : sum;
}

struct Record {
  std::uint64_t Block = 0;
  bool Partial = false;
  std::array<std::uint64_t, 4> Before{};
  Bytes Data = Bytes(kBlock);
  bool IsRun = false;  // no record: a run of one block that must be on the disc, with the first sum
};

// The bytes of a block of the image; zeros behind its end.
Bytes BlockOf(const Bytes& image, std::uint64_t block) {
  Bytes bytes(kBlock);
  if (block >= image.size() / kBlock) return bytes;
  std::copy_n(image.begin() + static_cast<std::ptrdiff_t>(block * kBlock), kBlock, bytes.begin());
  return bytes;
}

// Mostly blocks of the disc; some lie behind its end, or where no disc has any.
std::uint64_t BlockNumber(std::uint8_t byte) {
  constexpr std::array<std::uint64_t, 8> kFar = {0x400000,   0x7FFFFFFF,  0x80000000,
                                                 0xFFFFFFFF, 0x100000000, 0x8000000000000000,
                                                 ~0ULL,      0x1000000};
  return byte >= 248 ? kFar[byte - 248U] : byte % (kBlocks + 4);
}

Record ReadRecord(Input& input, const Bytes& image) {
  Record record;
  record.Block = BlockNumber(input.Byte());
  const std::uint8_t flags = input.Byte();
  record.Partial = flags % 8 == 7;
  record.IsRun = flags % 8 == 6;
  const std::uint8_t sums = input.Byte();
  const Bytes now = BlockOf(image, record.Block);
  record.Data = now;
  // Some bytes of the block become others.
  const auto at = static_cast<std::size_t>(input.Byte()) * 4;
  const std::uint8_t first = input.Byte();
  const std::uint8_t count = input.Byte();
  for (std::size_t i = at; i < std::min(kBlock, at + count); ++i) {
    record.Data[i] = static_cast<std::uint8_t>(first + i);
  }
  if (record.IsRun) {
    record.Before[0] = SumOf(now) ^ (sums & 1U);
    return record;
  }
  for (std::size_t i = 0; i < 4; ++i) {
    const std::uint64_t sum = SumOf(Span(now).subspan(i * kSector, kSector));
    record.Before[i] = std::array<std::uint64_t, 4>{sum, 0, sum ^ 1, sum}[sums >> (2 * i) & 3U];
  }
  return record;
}

Bytes WholeJournal(const std::vector<Record>& records) {
  Bytes bytes = {'S', 'B', 'X', 'J', 'R', 'N', 'L', '3'};
  Put(bytes, kBlock);
  for (const Record& record : records) {
    if (record.IsRun) continue;
    Put(bytes, record.Block);
    Put(bytes, record.Partial ? 1 : 0);
    bytes.insert(bytes.end(), kBlock / 8, 0xFF);
    for (const std::uint64_t sum : record.Before) Put(bytes, sum);
    bytes.insert(bytes.end(), record.Data.begin(), record.Data.end());
  }
  Put(bytes, ~0ULL);
  std::uint64_t runs = 0;
  for (const Record& record : records) {
    if (!record.IsRun) continue;
    for (const std::uint64_t number : {record.Block, std::uint64_t{1}, record.Before[0]}) {
      Put(bytes, number);
    }
    ++runs;
  }
  Put(bytes, runs);
  Put(bytes, SumOf(bytes));
  return bytes;
}

// The image after a whole journal; none if the journal is for another disc.
std::optional<Bytes> Finished(const Bytes& image, const std::vector<Record>& records) {
  std::map<std::uint64_t, Record> last;
  for (const Record& record : records) {
    if (!record.IsRun) last[record.Block] = record;
    if (record.IsRun && record.Before[0] != SumOf(BlockOf(image, record.Block))) {
      return std::nullopt;
    }
  }
  int known = 0;
  int other = 0;
  for (const auto& [block, record] : last) {
    const Bytes now = BlockOf(image, block);
    for (std::size_t i = 0; i < 4 && !record.Partial; ++i) {
      if (record.Before[i] == 0) continue;
      const Span sector = Span(now).subspan(i * kSector, kSector);
      const bool fits = SumOf(sector) == record.Before[i] ||
                        std::ranges::equal(sector, Span(record.Data).subspan(i * kSector, kSector));
      ++(fits ? known : other);
    }
  }
  if (!last.empty() && (known == 0 || other > 1)) return std::nullopt;
  Bytes after = image;
  for (const auto& [block, record] : last) {
    after.resize(std::max<std::size_t>(after.size(), (block + 1) * kBlock));
    std::ranges::copy(record.Data, after.begin() + static_cast<std::ptrdiff_t>(block * kBlock));
  }
  return after;
}

// --- What must come out --------------------------------------------------------------------------

struct Case {
  Bytes Before;                  // the image
  std::optional<Bytes> Journal;  // none if there is no journal
  Bytes After;                   // the image when it has been opened
  bool Stays = false;            // the journal is left alone
  bool MayFail = false;          // a journal that no disc has: its blocks may be refused
};

// What has other bytes in front is no journal, and stays.
bool MayBeJournal(const Bytes& bytes) {
  const Bytes front(bytes.begin(), bytes.begin() + std::min<std::ptrdiff_t>(8, std::ssize(bytes)));
  return std::string("SBXJRNL3").starts_with(std::string(front.begin(), front.end())) ||
         std::ranges::count(front, 0) == std::ssize(front);
}

Case MakeCase(Input& input, JournalKind kind, Bytes image) {
  Case made;
  made.Before = made.After = std::move(image);
  if (kind == kMissing) return made;
  if (kind == kAsItIs) {
    made.Journal = Bytes(input.Rest().begin(), input.Rest().end());
    made.Stays = made.Journal->empty() || !MayBeJournal(*made.Journal);
    return made;
  }
  const std::uint8_t damage = input.Byte();
  std::vector<Record> records;
  while (records.size() < 40 && input.Rest().size() >= 6) {
    records.push_back(ReadRecord(input, made.Before));
  }
  made.Journal = WholeJournal(records);
  if (kind == kDamaged) {
    (*made.Journal)[damage * 97U % made.Journal->size()] ^= 0x10;
    made.Stays = !MayBeJournal(*made.Journal);
    return made;
  }
  made.MayFail = std::ranges::any_of(records, [](const Record& one) { return one.Block > 1000; });
  if (made.MayFail) return made;
  const auto after = Finished(made.Before, records);
  made.Stays = !after;
  made.After = after.value_or(made.Before);
  return made;
}

void WriteCase(const Case& made, Span companion, bool hasCompanion) {
  for (const std::string& path : {Journal(), Folder() / "x.dsc"}) std::filesystem::remove(path);
  testing::WriteAll(Image(), made.Before);
  if (made.Journal) testing::WriteAll(Journal(), *made.Journal);
  if (hasCompanion) testing::WriteAll(Folder() / "x.dsc", {companion.begin(), companion.end()});
}

void Look(Disc& disc) {
  std::size_t left = 64;
  for (const TreeNode& node : WalkTree(disc)) {
    if (left-- == 0) break;
    (void)ReadRows(disc, node.Tag);
  }
  (void)CheckDisc(disc);
}

void ExpectOpened(const Case& made) {
  // No journal makes a file that the host has no room for.
  Require(std::filesystem::file_size(Image()) <= (kBlocks + 8) * kBlock, "the image's length");
  const Bytes now = testing::ReadAll(Image());
  if (made.MayFail) {
    Require(now == made.Before, "nothing is put where no disc has a block");
    return;
  }
  Require(now == made.After, "the image's bytes");
  Require(std::filesystem::exists(Journal()) == made.Stays, "the journal's end");
}

// A disc whose entries lead past its end can't even be read by the tests' reader.
bool IsSound(const Bytes& image) {
  try {
    return testing::FaultsOf(image).empty();
  } catch (const std::exception&) {
    return false;
  }
}

// A sound disc can be changed afterwards and is sound then.
void AddOneMore(Disc& disc, const Bytes& image) {
  const bool isSound = image.size() == std::size_t{kSectors} * kSector && IsSound(image);
  const Outcome outcome = AddFile(disc, 2, Folder() / "NEW");
  disc.TheDisc.CloseFile();
  if (!isSound) return;
  const Bytes now = testing::ReadAll(Image());
  Require(now.size() == image.size() && IsSound(now), "a sound disc");
  Require(outcome != Outcome::kDone || now != image, "the new file");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Bytes sound = SoundDisc();
  static const bool hasState = ::setenv("XDG_STATE_HOME", Folder().Path().c_str(), 1) == 0;
  Require(hasState, "a state folder");
  testing::WriteAll(Folder() / "NEW", Bytes(700, 9));
  Input input(data, size);
  const std::uint8_t flags = input.Byte();
  const Span companion = input.Take(input.Byte() % 32);
  Bytes image = sound;
  for (unsigned damaged = input.Byte() % 8U; damaged > 0; --damaged) {
    const std::size_t at = input.Byte() * 256U + input.Byte();
    image[at % image.size()] = input.Byte();
  }
  const Case made = MakeCase(input, static_cast<JournalKind>(flags % 4), image);
  WriteCase(made, companion, (flags & 4U) != 0);
  testing::QuietHost host;
  Disc disc(host);
  try {
    OpenImage(disc, Image());
    Look(disc);
    ExpectOpened(made);
    AddOneMore(disc, testing::ReadAll(Image()));
  } catch (const HostError&) {
    // A file that stands where the journal goes keeps changes out.
    Require(made.MayFail || made.Stays, "no failure of the host");
    ExpectOpened(made);
  }
  return 0;
}
