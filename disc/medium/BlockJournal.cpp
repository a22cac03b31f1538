#include "disc/medium/BlockJournal.h"

#include <algorithm>
#include <array>
#include <limits>

#include "disc/medium/BlockSum.h"

namespace sectorbox {
namespace {

// A journal is
//   8 bytes   "SBXJRNL3"
//   8 bytes   how many bytes a block takes
//   a record of each block:
//     8 bytes     its number
//     8 bytes     1 if only some of its bytes are written, else 0
//     128 bytes   a bit for each byte that is written
//     4 x 8 bytes the sum of each sector as it stood on the medium; 0 for one that nobody could
//                 read
//     the bytes of the block
//   8 bytes   all ones: the end of the records
//   a line of each run of blocks that the change had written before, and that the records point at:
//     8 bytes     the number of its first block
//     8 bytes     how many blocks it has
//     8 bytes     the sum of its bytes
//   8 bytes   how many runs there are
//   8 bytes   the sum of all that stands before it
// Numbers are little-endian. Of two records of one block the later one counts. A file with any
// other length or sum is a torn journal, and so is one that names a block that no disc has.
constexpr std::array<std::uint8_t, 8> kMark = {'S', 'B', 'X', 'J', 'R', 'N', 'L', '3'};
constexpr std::size_t kNumber = 8;
constexpr std::size_t kHeader = kMark.size() + kNumber;
constexpr std::size_t kMask = Medium::kBlockSize / 8;
constexpr std::size_t kSectorsOfBlock = 4;
constexpr std::size_t kBeforeData = 2 * kNumber + kMask + kSectorsOfBlock * kNumber;
constexpr std::uint64_t kEndOfRecords = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t kLine = 3 * kNumber;
constexpr std::size_t kPart = std::size_t{1} << 20;  // bytes read or written at once
constexpr std::int64_t kReadAhead = 262144;
// A sector's number has 24 bits, so no disc has a block with this number or a higher one.
constexpr std::uint64_t kMostBlocks = (std::uint64_t{1} << 24) / kSectorsOfBlock;

// The sums of the sectors of a block, before the change.
using SectorSums = std::array<std::uint64_t, kSectorsOfBlock>;

struct Record {
  NewBlock Block;
  SectorSums Before{};
};

// Where the records of a journal lie, by their blocks.
using Places = std::map<std::int32_t, std::int64_t>;

// A run of blocks that the records point at.
struct Line {
  std::int32_t First = 0;
  std::int32_t Blocks = 0;
  std::uint64_t Sum = 0;
};

struct Found {
  Places Records;
  std::vector<Line> Lines;
};

// Never 0, which stands for no sum.
std::uint64_t SumOf(std::span<const std::uint8_t> bytes) {
  return std::max<std::uint64_t>(AddToSum(kEmptySum, bytes), 1);
}

std::uint64_t NumberAt(JournalPlace& place, std::int64_t offset) {
  std::array<std::uint8_t, kNumber> bytes{};
  place.ReadAt(offset, bytes);
  return NumberIn(bytes);
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

std::array<std::uint8_t, kMask> MaskOf(const Medium::StoredBytes& stored) {
  std::array<std::uint8_t, kMask> mask{};
  if (stored.none()) return mask;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    if (stored[i]) mask[i / 8] = static_cast<std::uint8_t>(mask[i / 8] | 1U << (i % 8));
  }
  return mask;
}

Medium::StoredBytes StoredOf(std::span<const std::uint8_t> mask) {
  Medium::StoredBytes stored;
  if (std::ranges::count(mask, 0) == std::ranges::ssize(mask)) return stored;
  for (std::size_t i = 0; i < stored.size(); ++i) stored[i] = (mask[i / 8] >> (i % 8) & 1) != 0;
  return stored;
}

Record RecordIn(std::span<const std::uint8_t> all) {
  Record record;
  record.Block.IsPartial = NumberIn(all.subspan(kNumber)) == 1;
  record.Block.Stored = StoredOf(all.subspan(2 * kNumber, kMask));
  for (std::size_t i = 0; i < kSectorsOfBlock; ++i) {
    record.Before[i] = NumberIn(all.subspan(2 * kNumber + kMask + i * kNumber));
  }
  const auto data = all.subspan(kBeforeData);
  record.Block.Data.assign(data.begin(), data.end());
  return record;
}

Record RecordAt(JournalPlace& place, std::int64_t offset, std::size_t blockBytes) {
  std::vector<std::uint8_t> bytes(kBeforeData + blockBytes);
  place.ReadAt(offset, bytes);
  return RecordIn(bytes);
}

// True if the last number of the journal is the sum of all that stands before it.
bool HasItsSum(JournalPlace& place, std::int64_t length) {
  const std::int64_t summed = length - static_cast<std::int64_t>(kNumber);
  std::vector<std::uint8_t> part(kPart);
  std::uint64_t sum = kEmptySum;
  for (std::int64_t at = 0; at < summed; at += static_cast<std::int64_t>(kPart)) {
    const auto rest = static_cast<std::size_t>(summed - at);
    const auto bytes = std::span(part).first(std::min(kPart, rest));
    place.ReadAt(at, bytes);
    sum = AddToSum(sum, bytes);
  }
  return NumberAt(place, summed) == sum;
}

// False if the file is something else that only has a journal's name. A journal that is torn begins
// with a part of the mark, or with zeros that the host put there.
bool MayBeJournal(JournalPlace& place) {
  const auto length = static_cast<std::size_t>(
      std::min<std::int64_t>(place.Length(), static_cast<std::int64_t>(kMark.size())));
  std::array<std::uint8_t, kMark.size()> bytes{};
  const auto front = std::span(bytes).first(length);
  place.ReadAt(0, front);
  return std::ranges::equal(front, std::span(kMark).first(length)) ||
         std::ranges::all_of(front, [](std::uint8_t byte) { return byte == 0; });
}

// Where the lines and the records of a journal end, if it has as many lines as it says.
struct Ends {
  std::int64_t Records = 0;
  std::int64_t Lines = 0;
};

std::optional<Ends> FindEnds(JournalPlace& place) {
  constexpr auto kSmallest = static_cast<std::int64_t>(kHeader + 3 * kNumber);
  const std::int64_t length = place.Length();
  if (length < kSmallest || length % static_cast<std::int64_t>(kNumber) != 0) return std::nullopt;
  Ends ends;
  ends.Lines = length - static_cast<std::int64_t>(2 * kNumber);
  const std::uint64_t lines = NumberAt(place, ends.Lines);
  if (lines > static_cast<std::uint64_t>(length - kSmallest) / kLine) return std::nullopt;
  ends.Records = ends.Lines - static_cast<std::int64_t>(lines * kLine + kNumber);
  return NumberAt(place, ends.Records) == kEndOfRecords ? std::optional(ends) : std::nullopt;
}

bool IsBlock(std::uint64_t number) {
  return number < kMostBlocks;
}

std::optional<std::vector<Line>> ReadLines(JournalPlace& place, const Ends& ends) {
  std::vector<Line> lines;
  std::int64_t at = ends.Records + static_cast<std::int64_t>(kNumber);
  for (; at < ends.Lines; at += static_cast<std::int64_t>(kLine)) {
    std::array<std::uint8_t, kLine> bytes{};
    place.ReadAt(at, bytes);
    const std::uint64_t first = NumberIn(bytes);
    const std::uint64_t blocks = NumberIn(std::span(bytes).subspan(kNumber));
    if (!IsBlock(first) || blocks > kMostBlocks - first) return std::nullopt;
    lines.push_back({static_cast<std::int32_t>(first), static_cast<std::int32_t>(blocks),
                     NumberIn(std::span(bytes).subspan(2 * kNumber))});
  }
  return lines;
}

// What is in a whole journal for a medium with blocks of blockBytes; none if it is torn.
std::optional<Found> ReadJournal(JournalPlace& place, std::size_t blockBytes) {
  const auto ends = FindEnds(place);
  const auto record = static_cast<std::int64_t>(kBeforeData + blockBytes);
  const auto first = static_cast<std::int64_t>(kHeader);
  if (!ends || ends->Records < first || (ends->Records - first) % record != 0) return std::nullopt;
  if (!HasItsSum(place, place.Length())) return std::nullopt;
  if (NumberAt(place, static_cast<std::int64_t>(kMark.size())) != blockBytes) return std::nullopt;
  auto lines = ReadLines(place, *ends);
  if (!lines) return std::nullopt;
  Found found{{}, std::move(*lines)};
  for (std::int64_t at = first; at < ends->Records; at += record) {
    const std::uint64_t block = NumberAt(place, at);
    if (!IsBlock(block)) return std::nullopt;
    found.Records[static_cast<std::int32_t>(block)] = at;
  }
  return found;
}

// True if the medium is one that the change was going on with: each sector that can be read is as
// it was before or after the change, and there is one. One other sector may be neither, since the
// write that was interrupted may have torn it.
bool Fits(Medium& medium, JournalPlace& place, const Places& places) {
  std::vector<std::uint8_t> now(medium.BlockLayout().BlockBytes);
  std::int32_t torn = 0;
  std::int32_t known = 0;
  for (const auto& [block, at] : places) {
    const Record record = RecordAt(place, at, now.size());
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
  return places.empty() || (known > 0 && torn <= 1);
}

// True if each run that the records point at has the bytes that the change wrote, as far as they
// can be read: an older copy of the disc doesn't.
bool HasRuns(Medium& medium, const std::vector<Line>& lines) {
  return std::ranges::all_of(lines, [&](const Line& line) {
    const auto sum = SumOnMedium(medium, line.First, line.Blocks);
    return !sum || *sum == line.Sum;
  });
}

std::vector<std::int32_t> BlocksOf(const Places& places) {
  std::vector<std::int32_t> blocks;
  blocks.reserve(places.size());
  for (const auto& [block, at] : places) blocks.push_back(block);
  return blocks;
}

// Reads what the medium holds of blocks, in rising order, and as many of them at once as follow
// each other.
class Before {
 public:
  Before(Medium& medium, const NewBlocks& blocks)
      : medium_(medium), blocks_(blocks), blockBytes_(medium.BlockLayout().BlockBytes) {}

  // None if the bytes can't be read, or if the block is new in part only.
  std::span<const std::uint8_t> Of(std::int32_t block, const NewBlock& bytes) {
    if (bytes.IsPartial) return {};
    if (block < first_ || block >= first_ + count_) ReadRow(block);
    if (count_ == 0) return {};
    const auto at = static_cast<std::size_t>(block - first_) * blockBytes_;
    return std::span(row_).subspan(at, blockBytes_);
  }

 private:
  void ReadRow(std::int32_t block) {
    first_ = block;
    count_ = 1;
    const bool isPlain = medium_.BlockLayout().Stride == 1;
    const auto most = isPlain ? static_cast<std::int32_t>(kPart / blockBytes_) : 1;
    auto next = std::next(blocks_.find(block));
    for (; count_ < most && next != blocks_.end(); ++next, ++count_) {
      if (next->first != first_ + count_ || next->second.IsPartial) break;
    }
    row_.resize(static_cast<std::size_t>(count_) * blockBytes_);
    if (count_ > 1 &&
        medium_.ReadRun(std::int64_t{block} * Medium::kBlockSize, row_) == row_.size()) {
      return;
    }
    row_.resize(blockBytes_);
    count_ = medium_.ReadBlock(block, row_) ? 1 : 0;
  }

  Medium& medium_;
  const NewBlocks& blocks_;
  std::size_t blockBytes_;
  std::vector<std::uint8_t> row_;
  std::int32_t first_ = 0;
  std::int32_t count_ = 0;
};

// A row of whole blocks that follow each other, which is written as one run.
struct Row {
  std::int32_t First = 0;
  std::vector<std::uint8_t> Bytes;

  [[nodiscard]] bool IsFollowedBy(std::int32_t block, std::size_t blockBytes) const {
    return Bytes.size() < kPart &&
           block == First + static_cast<std::int32_t>(Bytes.size() / blockBytes);
  }
};

void PutRow(Medium& medium, const Row& row) {
  const auto [blockBytes, stride] = medium.BlockLayout();
  const std::int64_t offset = std::int64_t{row.First} * Medium::kBlockSize;
  if (stride == 1 && medium.WriteRun(offset, row.Bytes) == row.Bytes.size()) return;
  std::int32_t block = row.First;
  for (std::size_t at = 0; at < row.Bytes.size(); at += blockBytes) {
    medium.WriteBlock(block++, std::span(row.Bytes).subspan(at, blockBytes));
  }
}

}  // namespace

void PutInPlace(Medium& medium, std::span<const std::int32_t> blocks,
                const std::function<NewBlock(std::int32_t)>& give) {
  const std::size_t blockBytes = medium.BlockLayout().BlockBytes;
  Row row;
  const auto put = [&] {
    if (!row.Bytes.empty()) PutRow(medium, row);
    row.Bytes.clear();
  };
  for (const std::int32_t block : blocks) {
    const NewBlock bytes = give(block);
    if (bytes.IsPartial) {
      put();
      medium.WriteStored(block, bytes.Data, bytes.Stored);
      continue;
    }
    if (!row.IsFollowedBy(block, blockBytes)) put();
    if (row.Bytes.empty()) row.First = block;
    row.Bytes.insert(row.Bytes.end(), bytes.Data.begin(), bytes.Data.end());
  }
  put();
  medium.Sync();
}

JournalWriter::JournalWriter(JournalPlace& place, Medium& medium)
    : place_(place),
      medium_(medium),
      sum_(kEmptySum),
      blockBytes_(medium.BlockLayout().BlockBytes) {
  All(kMark);
  Number(blockBytes_);
}

void JournalWriter::Add(const NewBlocks& blocks) {
  Before before(medium_, blocks);
  for (const auto& [block, bytes] : blocks) AddOne(block, bytes, before.Of(block, bytes));
}

void JournalWriter::AddOne(std::int32_t block, const NewBlock& bytes,
                           std::span<const std::uint8_t> before) {
  const std::int64_t at = appended_ + static_cast<std::int64_t>(waiting_.size());
  Number(static_cast<std::uint64_t>(block));
  Number(bytes.IsPartial ? 1 : 0);
  All(MaskOf(bytes.Stored));
  for (const std::uint64_t sum : before.empty() ? SectorSums{} : SumsOf(before)) Number(sum);
  All(bytes.Data);
  places_[block] = at;
  if (waiting_.size() >= kPart) Append();
}

std::optional<NewBlock> JournalWriter::Find(std::int32_t block) {
  const auto found = places_.find(block);
  if (found == places_.end()) return std::nullopt;
  if (!waiting_.empty()) Append();
  const std::int64_t at = found->second;
  const auto record = static_cast<std::int64_t>(kBeforeData + blockBytes_);
  const std::int64_t end = windowAt_ + static_cast<std::int64_t>(window_.size());
  if (at < windowAt_ || at + record > end) {
    // Whoever reads on from the last record will read more.
    const std::int64_t most = at == nextFind_ ? kReadAhead : record;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(most, appended_ - at)));
    place_.ReadAt(at, bytes);
    window_ = std::move(bytes);
    windowAt_ = at;
  }
  nextFind_ = at + record;
  const auto bytes = std::span(window_).subspan(static_cast<std::size_t>(at - windowAt_));
  return RecordIn(bytes.first(static_cast<std::size_t>(record))).Block;
}

void JournalWriter::Finish(const WrittenRuns& written) {
  Number(kEndOfRecords);
  std::uint64_t lines = 0;
  for (const auto& [first, run] : written.Runs()) {
    const auto sum = run.Sum ? run.Sum : SumOnMedium(medium_, first, run.Blocks);
    if (!sum) continue;
    Number(static_cast<std::uint64_t>(first));
    Number(static_cast<std::uint64_t>(run.Blocks));
    Number(*sum);
    ++lines;
  }
  Number(lines);
  Number(AddToSum(sum_, waiting_));
  Append();
  place_.Sync();
}

void JournalWriter::Number(std::uint64_t value) {
  std::array<std::uint8_t, kNumber> bytes{};
  for (std::size_t i = 0; i < kNumber; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
  All(bytes);
}

void JournalWriter::All(std::span<const std::uint8_t> bytes) {
  waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
}

void JournalWriter::Append() {
  place_.Append(waiting_);
  sum_ = AddToSum(sum_, waiting_);
  appended_ += static_cast<std::int64_t>(waiting_.size());
  waiting_.clear();
}

bool IsWholeJournal(JournalPlace& place, const Medium& medium) {
  return place.Length() > 0 && MayBeJournal(place) &&
         ReadJournal(place, medium.BlockLayout().BlockBytes).has_value();
}

JournalEnd FinishJournal(JournalPlace& place, Medium& medium) {
  if (place.Length() == 0) return JournalEnd::kNone;
  if (place.IsInUse() || !MayBeJournal(place)) return JournalEnd::kForeign;
  const std::size_t blockBytes = medium.BlockLayout().BlockBytes;
  const auto found = ReadJournal(place, blockBytes);
  if (!found) {
    place.Remove();
    return JournalEnd::kDropped;
  }
  const Places& places = found->Records;
  if (!Fits(medium, place, places) || !HasRuns(medium, found->Lines)) return JournalEnd::kForeign;
  const std::int32_t faults = medium.WriteFaults();
  PutInPlace(medium, BlocksOf(places), [&](std::int32_t block) {
    return RecordAt(place, places.at(block), blockBytes).Block;
  });
  if (medium.WriteFaults() != faults) return JournalEnd::kUnplaced;
  place.Remove();
  return JournalEnd::kFinished;
}

}  // namespace sectorbox
