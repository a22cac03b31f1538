#include "disc/medium/BlockJournal.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace sectorbox {
namespace {

// A journal is
//   8 bytes   "SBXJRNL1"
//   8 bytes   how many bytes a block takes
//   8 bytes   how many blocks follow; each is
//     8 bytes     its number
//     8 bytes     1 if only some of its bytes are written, else 0
//     128 bytes   a bit for each byte that is written, if only some are
//     4 x 8 bytes the sum of each sector as it stood on the medium; 0 for one that nobody could
//     read the bytes of the block
//   8 bytes   the sum of all that stands before it
// Numbers are little-endian. A file with any other length or sum is a torn journal, and so is one
// that names a block that no disc has.
constexpr std::array<std::uint8_t, 8> kMark = {'S', 'B', 'X', 'J', 'R', 'N', 'L', '1'};
constexpr std::size_t kNumber = 8;
constexpr std::size_t kHeader = kMark.size() + 2 * kNumber;
constexpr std::size_t kMask = Medium::kBlockSize / 8;
constexpr std::size_t kSectorsOfBlock = 4;
// A sector's number has 24 bits, so no disc has a block with this number or a higher one.
constexpr std::uint64_t kMostBlocks = (std::uint64_t{1} << 24) / kSectorsOfBlock;

// The sums of the sectors of a block, before the change.
using SectorSums = std::array<std::uint64_t, kSectorsOfBlock>;

struct Record {
  NewBlock Block;
  SectorSums Before{};
};

// FNV-1a over 64 bits. It is never 0, which stands for no sum.
std::uint64_t SumOf(std::span<const std::uint8_t> bytes) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (const std::uint8_t byte : bytes) sum = (sum ^ byte) * 0x100000001b3;
  return sum == 0 ? 1 : sum;
}

std::span<const std::uint8_t> SectorOf(std::span<const std::uint8_t> block, std::size_t sector) {
  const std::size_t size = block.size() / kSectorsOfBlock;
  return block.subspan(sector * size, size);
}

SectorSums SumsOf(std::span<const std::uint8_t> block) {
  SectorSums sums{};
  for (std::size_t i = 0; i < sums.size(); ++i) sums[i] = SumOf(SectorOf(block, i));
  return sums;
}

class Writer {
 public:
  void Number(std::uint64_t value) {
    for (std::size_t i = 0; i < kNumber; ++i) {
      Bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
  }
  void All(std::span<const std::uint8_t> bytes) {
    Bytes.insert(Bytes.end(), bytes.begin(), bytes.end());
  }
  void Mask(const Medium::StoredBytes& stored) {
    for (std::size_t i = 0; i < stored.size(); i += 8) {
      unsigned bits = 0;
      for (std::size_t bit = 0; bit < 8; ++bit) bits |= (stored[i + bit] ? 1U : 0U) << bit;
      Bytes.push_back(static_cast<std::uint8_t>(bits));
    }
  }

  std::vector<std::uint8_t> Bytes;
};

// Reads from the front of a journal. What lies behind its end is missing, which Failed tells.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::span<const std::uint8_t> All(std::size_t size) {
    if (size > rest_.size()) Failed = true;
    if (Failed) return {};
    const auto part = rest_.first(size);
    rest_ = rest_.subspan(size);
    return part;
  }
  std::uint64_t Number() {
    std::uint64_t value = 0;
    std::size_t shift = 0;
    for (const std::uint8_t byte : All(kNumber)) {
      value |= std::uint64_t{byte} << shift;
      shift += 8;
    }
    return value;
  }
  Medium::StoredBytes Mask() {
    Medium::StoredBytes stored;
    std::size_t i = 0;
    for (const std::uint8_t byte : All(kMask)) {
      for (std::size_t bit = 0; bit < 8; ++bit) stored[i++] = (byte >> bit & 1) != 0;
    }
    return stored;
  }
  bool IsAtEnd() const { return rest_.empty(); }

  bool Failed = false;

 private:
  std::span<const std::uint8_t> rest_;
};

Record ReadRecord(Reader& reader, std::size_t blockBytes) {
  Record record;
  record.Block.IsPartial = reader.Number() == 1;
  if (record.Block.IsPartial) record.Block.Stored = reader.Mask();
  for (std::uint64_t& sum : record.Before) sum = reader.Number();
  const auto data = reader.All(blockBytes);
  record.Block.Data.assign(data.begin(), data.end());
  return record;
}

// The blocks of a whole journal for a medium with blocks of blockBytes; none if it is torn.
std::optional<std::map<std::int32_t, Record>> ReadRecords(std::span<const std::uint8_t> bytes,
                                                          std::size_t blockBytes) {
  if (bytes.size() < kHeader + kNumber) return std::nullopt;
  const auto summed = bytes.first(bytes.size() - kNumber);
  if (Reader(bytes.last(kNumber)).Number() != SumOf(summed)) return std::nullopt;
  Reader reader(summed);
  if (!std::ranges::equal(reader.All(kMark.size()), kMark)) return std::nullopt;
  if (reader.Number() != blockBytes) return std::nullopt;
  std::map<std::int32_t, Record> records;
  for (std::uint64_t count = reader.Number(); count > 0 && !reader.Failed; --count) {
    const std::uint64_t block = reader.Number();
    if (block >= kMostBlocks) return std::nullopt;
    records[static_cast<std::int32_t>(block)] = ReadRecord(reader, blockBytes);
  }
  if (reader.Failed || !reader.IsAtEnd()) return std::nullopt;
  return records;
}

// True if the medium is one that the change was going on with: each sector is as it was before or
// after the change. One sector may be neither, since the write that was interrupted may have torn
// it.
bool Fits(Medium& medium, const std::map<std::int32_t, Record>& records) {
  std::vector<std::uint8_t> now(medium.BlockLayout().BlockBytes);
  std::int32_t torn = 0;
  std::int32_t known = 0;
  for (const auto& [block, record] : records) {
    if (record.Block.IsPartial || !medium.ReadBlock(block, now)) continue;
    for (std::size_t i = 0; i < kSectorsOfBlock; ++i) {
      if (record.Before[i] == 0) continue;
      const std::uint64_t sum = SumOf(SectorOf(now, i));
      if (sum == record.Before[i] || sum == SumOf(SectorOf(record.Block.Data, i))) {
        ++known;
      } else {
        ++torn;
      }
    }
  }
  return torn <= std::min(known, 1);
}

// The longest row of whole blocks that follow each other is written as one run. Gives the first
// block behind it.
NewBlocks::const_iterator PutRow(Medium& medium, const NewBlocks& blocks,
                                 NewBlocks::const_iterator first) {
  constexpr std::size_t kLongestRow = std::size_t{1} << 20;
  std::vector<std::uint8_t> row;
  auto end = first;
  std::int32_t block = first->first;
  while (end != blocks.end() && end->first == block && !end->second.IsPartial &&
         row.size() < kLongestRow) {
    row.insert(row.end(), end->second.Data.begin(), end->second.Data.end());
    ++end;
    ++block;
  }
  const std::int64_t offset = std::int64_t{first->first} * Medium::kBlockSize;
  const bool isPlain = medium.BlockLayout().Stride == 1;
  if (isPlain && medium.WriteRun(offset, row) == row.size()) return end;
  for (; first != end; ++first) medium.WriteBlock(first->first, first->second.Data);
  return end;
}

}  // namespace

void PutInPlace(Medium& medium, const NewBlocks& blocks) {
  for (auto at = blocks.begin(); at != blocks.end();) {
    if (at->second.IsPartial) {
      medium.WriteStored(at->first, at->second.Data, at->second.Stored);
      ++at;
    } else {
      at = PutRow(medium, blocks, at);
    }
  }
  medium.Sync();
}

void WriteJournal(JournalPlace& place, Medium& medium, const NewBlocks& blocks) {
  const std::size_t blockBytes = medium.BlockLayout().BlockBytes;
  std::vector<std::uint8_t> before(blockBytes);
  Writer journal;
  journal.Bytes.reserve(kHeader + blocks.size() * (blockBytes + 64) + kNumber);
  journal.All(kMark);
  journal.Number(blockBytes);
  journal.Number(blocks.size());
  for (const auto& [block, held] : blocks) {
    journal.Number(static_cast<std::uint64_t>(block));
    journal.Number(held.IsPartial ? 1 : 0);
    if (held.IsPartial) journal.Mask(held.Stored);
    const bool isKnown = !held.IsPartial && medium.ReadBlock(block, before);
    for (const std::uint64_t sum : isKnown ? SumsOf(before) : SectorSums{}) journal.Number(sum);
    journal.All(held.Data);
  }
  journal.Number(SumOf(journal.Bytes));
  place.Write(journal.Bytes);
}

JournalEnd FinishJournal(JournalPlace& place, Medium& medium) {
  const std::vector<std::uint8_t> bytes = place.Read();
  if (bytes.empty()) return JournalEnd::kNone;
  const auto records = ReadRecords(bytes, medium.BlockLayout().BlockBytes);
  if (!records) {
    place.Remove();
    return JournalEnd::kDropped;
  }
  if (!Fits(medium, *records)) return JournalEnd::kForeign;
  NewBlocks blocks;
  for (const auto& [block, record] : *records) blocks[block] = record.Block;
  PutInPlace(medium, blocks);
  place.Remove();
  return JournalEnd::kFinished;
}

}  // namespace sectorbox
