#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "disc/medium/JournalPlace.h"
#include "disc/medium/Medium.h"
#include "disc/medium/WrittenRuns.h"

// The journal of a change: the new bytes of blocks that the disc needed while the change was made.
// It is whole before any of these blocks is written, so that a program that dies while it writes
// the blocks can be finished later: the blocks are written once more.
namespace sectorbox {

// The new bytes of a block.
struct NewBlock {
  std::vector<std::uint8_t> Data;  // as many bytes as a block takes on the medium
  // Only some bytes of the block are to be written, since the others couldn't be read: those in
  // Stored.
  bool IsPartial = false;
  Medium::StoredBytes Stored;
};

using NewBlocks = std::map<std::int32_t, NewBlock>;

// Writes a journal, and reads from it while it is written. No more than about a megabyte of it is
// in memory.
class JournalWriter {
 public:
  // Both outlive the writer.
  JournalWriter(JournalPlace& place, Medium& medium);

  // Adds blocks. The medium doesn't have their new bytes yet. A block that is added again counts as
  // it was added last. HostError if the host fails.
  void Add(const NewBlocks& blocks);
  // The bytes of a block as they were added last; none if the block wasn't added.
  [[nodiscard]] std::optional<NewBlock> Find(std::int32_t block);
  // The blocks that were added, and where their records lie in the journal, in bytes.
  [[nodiscard]] const std::map<std::int32_t, std::int64_t>& Blocks() const { return places_; }
  // Makes the journal whole and waits until it is safe. written are the runs that the blocks point
  // at; they are on the medium already. HostError if the host fails.
  void Finish(const WrittenRuns& written);

 private:
  // Adds one block; before are its bytes on the medium, or none if nobody can read them.
  void AddOne(std::int32_t block, const NewBlock& bytes, std::span<const std::uint8_t> before);
  void Number(std::uint64_t value);
  void All(std::span<const std::uint8_t> bytes);
  // Gives the place what waits in memory.
  void Append();

  JournalPlace& place_;
  Medium& medium_;
  std::map<std::int32_t, std::int64_t> places_;
  std::vector<std::uint8_t> waiting_;
  std::int64_t appended_ = 0;  // bytes that place_ has
  std::uint64_t sum_;          // of these
  std::size_t blockBytes_;
  // The part of the journal that Find read last, and where it lies.
  std::vector<std::uint8_t> window_;
  std::int64_t windowAt_ = 0;
  std::int64_t nextFind_ = 0;  // the place of the record behind the one that was found last
};

// Writes blocks, in rising order, at their places and waits until they are safe. give gives the new
// bytes of each. HostError if the host fails.
void PutInPlace(Medium& medium, std::span<const std::int32_t> blocks,
                const std::function<NewBlock(std::int32_t)>& give);

enum class JournalEnd {
  kNone,      // there was no journal
  kFinished,  // a whole one: its blocks were put in place
  kDropped,   // a torn one: the change that it belonged to had not begun to change the disc
  // A whole one that doesn't fit the disc, which is another one, was changed since, is an older
  // copy, or can't be read; or one of a program that is still at work; or a file that is no
  // journal. It was left alone.
  kForeign,
  kUnplaced,  // a whole one, but the card doesn't take its blocks: it was left alone
};

// True if a journal for mediums like this one is there and nothing of it is missing. HostError if
// the host fails.
[[nodiscard]] bool IsWholeJournal(JournalPlace& place, const Medium& medium);

// Looks for a journal of an earlier program, and puts its blocks in place if it is whole. It is
// removed afterwards, unless it was left alone. HostError if the host fails; the journal is left
// then.
[[nodiscard]] JournalEnd FinishJournal(JournalPlace& place, Medium& medium);

}  // namespace sectorbox
