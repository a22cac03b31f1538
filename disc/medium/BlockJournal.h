#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "disc/medium/JournalPlace.h"
#include "disc/medium/Medium.h"

// The journal of a change: the new bytes of blocks that the disc needed while the change was made.
// It is written before any of these blocks is, so that a program that dies while it writes the
// blocks can be finished later: the blocks are written once more.
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

// Writes the blocks at their places and waits until they are safe. HostError if the host fails.
void PutInPlace(Medium& medium, const NewBlocks& blocks);

// Writes a journal with the blocks, which medium doesn't have yet, and waits until it is safe.
void WriteJournal(JournalPlace& place, Medium& medium, const NewBlocks& blocks);

enum class JournalEnd {
  kNone,      // there was no journal
  kFinished,  // a whole one: its blocks were put in place
  kDropped,   // a torn one: the change that it belonged to had not begun to change the disc
  kForeign,   // a whole one that doesn't fit the disc, which is another one or was changed since:
              // it was left alone
};

// Looks for a journal of an earlier program, and puts its blocks in place if it is whole. It is
// removed afterwards, unless it is foreign. HostError if the host fails; the journal is left then.
[[nodiscard]] JournalEnd FinishJournal(JournalPlace& place, Medium& medium);

}  // namespace sectorbox
