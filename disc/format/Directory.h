#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "disc/format/ByteSet.h"
#include "disc/format/Entry.h"
#include "disc/format/Format.h"

namespace sectorbox {

// Where an entry of a given name belongs in a directory.
struct Place {
  // The first empty slot, or the first whose name isn't below that name; 47 if there is none.
  std::int32_t Slot = 0;
  bool Taken = false;  // the entry there has that very name
};

// Stands for the start sector of an entry that is known by its name alone.
inline constexpr std::int32_t kAnyStart = -1;

// A whole directory as a value: 1280 bytes with a header, 47 slots for entries and a tail. A slot
// is a number from 0 to 46. The list of entries ends at the first empty slot; the slots behind it
// mean nothing, whatever they hold.
//
// The value keeps every byte, so that changing a part of it never changes another byte. It knows
// which of its bytes were set. Only those go back to a disc: where a card couldn't be read, what
// wasn't read isn't written over. disc/catalogue reads directories from a disc and writes them.
class Directory {
 public:
  using Bytes = std::array<std::uint8_t, format::kDirSize>;

  explicit Directory(const Bytes& bytes) : bytes_(bytes) {}

  // A new directory without entries, as NewDirectory puts it on a disc. entry is the entry that
  // lists it, parent the start sector of the directory that holds that entry. The name field gets
  // the entry's name with its attributes, the title the name without them. The check byte stays 0:
  // neither this system nor the BBC looks at it on a disc of this format.
  [[nodiscard]] static Directory MakeEmpty(const Entry& entry, std::int32_t parent);

  [[nodiscard]] const Bytes& Raw() const { return bytes_; }
  // The bytes that the operations of this class have put a value into.
  [[nodiscard]] const ByteSet<format::kDirSize>& WasSet() const { return set_; }

  // --- Header and tail -------------------------------------------------------------------------
  // True if the first mark is there. Every reader here tests this mark and nothing else.
  [[nodiscard]] bool HasMark() const;
  [[nodiscard]] bool HasMarkAtEnd() const;
  [[nodiscard]] std::uint8_t Sequence() const;
  [[nodiscard]] std::uint8_t SequenceAtEnd() const;
  // The directory's own name and its title, top bits cleared, cut at the first carriage return and
  // then at the first NUL. The root's own name may be empty.
  [[nodiscard]] std::string Name() const;
  [[nodiscard]] std::string Title() const;
  // Start sector of the directory that lists this one.
  [[nodiscard]] std::int32_t Parent() const;

  void SetMarks();
  void SetSequence(std::uint8_t sequence);  // at both ends
  void SetName(std::string_view name);
  void SetTitle(std::string_view title);
  void SetParent(std::int32_t sector);
  // Copies that many bytes from the start of an entry's name field, attributes included, into the
  // directory's own name.
  void TakeNameOf(const Entry& entry, std::int32_t bytes);

  // --- Entries ---------------------------------------------------------------------------------
  [[nodiscard]] Entry At(std::int32_t slot) const;
  // The entries of the list, in order of their slots: the index is the slot.
  [[nodiscard]] std::vector<Entry> Entries() const;
  // True if slot 0 holds an entry. An entry whose name begins with a carriage return counts here.
  [[nodiscard]] bool HasEntries() const;
  // True if slot 46 holds an entry. An entry whose name begins with a carriage return counts here.
  [[nodiscard]] bool IsFull() const;
  // Slot of the first entry of that name, or -1. Names compare by FoldName. A damaged directory may
  // list a name more than once: the entry that starts at sector start is meant then, and the slot
  // is -1 if there is none. kAnyStart means the first one.
  [[nodiscard]] std::int32_t Find(std::string_view name, std::int32_t start = kAnyStart) const;
  // Where an entry of that name belongs. Names compare by FoldName.
  [[nodiscard]] Place FindPlace(std::string_view name) const;

  // Gives the directory its next sequence number, the one after Sequence, at both of its ends.
  // Gives the new number, which the changed entry carries too.
  [[nodiscard]] std::uint8_t BumpSequence();
  // Writes entry into a slot; no other slot changes.
  void Put(std::int32_t slot, const Entry& entry);
  // Sets the start sector of the entry in the slot, and nothing else of it.
  void SetStart(std::int32_t slot, std::int32_t sector);
  // Moves the entries from slot on up by one and puts entry into the slot. The entry in slot 46 is
  // lost, so the caller first tests IsFull. Nothing happens if slot is 47.
  void Insert(std::int32_t slot, const Entry& entry);
  // Moves the entries behind slot down by one. Slot 46 becomes zeros.
  void Remove(std::int32_t slot);

 private:
  [[nodiscard]] std::string Text(std::int32_t at, std::int32_t length) const;
  void SetText(std::int32_t at, std::string_view text);
  void SetBytes(std::size_t at, std::span<const std::uint8_t> bytes);
  // Copies count entries from slot from on to slot to on; both ranges may overlap.
  void MoveEntries(std::int32_t from, std::int32_t to, std::int32_t count);

  Bytes bytes_;
  ByteSet<format::kDirSize> set_;
};

// The sequence number after b, both two BCD digits; 00 follows 99.
[[nodiscard]] std::uint8_t NextSequence(std::uint8_t b);

}  // namespace sectorbox
