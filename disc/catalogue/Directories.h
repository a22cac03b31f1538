#pragma once

#include <cstdint>
#include <optional>

#include "disc/format/Directory.h"
#include "disc/store/Disc.h"

// The directories of the open disc, read and written whole, and the one walk over them.
namespace sectorbox {

// The 1280 bytes at a sector, whatever stands there. Reads outside the disc give zeros.
[[nodiscard]] Directory DirectoryAt(Disc& disc, std::int32_t sector);
// The directory at a sector; none if its mark is missing.
[[nodiscard]] std::optional<Directory> ReadDirectory(Disc& disc, std::int32_t sector);
// One entry of the directory at a sector, whatever stands there. It costs 26 bytes of reading,
// where a whole directory costs 1280.
[[nodiscard]] Entry EntryAt(Disc& disc, std::int32_t sector, std::int32_t slot);
// The sequence number at the start of the directory at a sector. Every change to a directory gives
// it another one.
[[nodiscard]] std::uint8_t SequenceAt(Disc& disc, std::int32_t sector);
// Stores those bytes of the directory that were set.
void WriteDirectory(Disc& disc, std::int32_t sector, const Directory& directory);

// A directory of the open disc that is being changed: it is read when it is made, and Write stores
// what was set since.
class EditedDirectory {
 public:
  EditedDirectory(Disc& disc, std::int32_t sector)
      : Now(DirectoryAt(disc, sector)), disc_(disc), sector_(sector) {}

  Directory Now;
  void Write() const { WriteDirectory(disc_, sector_, Now); }

 private:
  Disc& disc_;
  std::int32_t sector_;
};

// --- The walk ------------------------------------------------------------------------------------

// Where a walk is: a directory, the entry that lists it, and the directory that holds that entry.
struct WalkStep {
  std::int32_t Sector = 0;
  std::int32_t Slot = -1;            // of the entry; -1 for the directory that the walk began with
  const WalkStep* Parent = nullptr;  // null for the directory that the walk began with
  const Entry* Listed = nullptr;     // the entry; null for the directory that the walk began with
  std::int32_t Depth = 0;            // 0 for the directory that the walk began with
};

enum class Walk {
  kOn,        // go on, and into a subdirectory that was met
  kPassOver,  // go on, but not into the directory
  kStop,      // end the whole walk
};

// A walk over directories calls this. The calls come in the order of the walk: Enter for the
// directory; then, for each of its entries, Meet, and for a subdirectory also the calls for what is
// in it, and then Return; in the end Leave.
class DirectoryVisitor {
 public:
  virtual ~DirectoryVisitor() = default;

  // The walk has come to a directory for the first time. It may lack its mark; the walk then meets
  // no entries in it.
  [[nodiscard]] virtual Walk Enter(const WalkStep& at, const Directory& directory) = 0;
  // An entry of the directory at; the entries come in the order of their slots. If the entry is a
  // subdirectory and the answer is kOn, the walk goes into it next.
  [[nodiscard]] virtual Walk Meet(const WalkStep& at, std::int32_t slot, const Entry& entry) = 0;
  // The walk has come to a directory that it has been in before, and doesn't go in again. above is
  // true if the walk is still in that directory: the directories then run in a circle.
  [[nodiscard]] virtual Walk MeetAgain(const WalkStep& at, bool above) {
    (void)at;
    (void)above;
    return Walk::kOn;
  }
  // The walk doesn't go into a directory because it has reached one of its bounds. From then on it
  // goes into no directory, and calls this for each that it hasn't been in.
  [[nodiscard]] virtual Walk OutOfBounds(const WalkStep& at) {
    (void)at;
    return Walk::kStop;
  }
  // The walk is done with the subdirectory in a slot of the directory at. This call comes also if
  // the walk didn't go into the subdirectory.
  [[nodiscard]] virtual Walk Return(const WalkStep& at, std::int32_t slot) {
    (void)at;
    (void)slot;
    return Walk::kOn;
  }
  // All entries of a directory that the walk went into have been met.
  virtual void Leave(const WalkStep& at) { (void)at; }
};

struct WalkRules {
  // The walk goes into a directory each time that it is listed, not only the first time.
  bool EnterAgain = false;
  // The walk looks at all 47 slots, and not only at those before the first empty one.
  bool PastEmptySlots = false;
};

// Bounds of every walk. On a damaged disc a directory may list itself or a directory above it, and
// directories may list each other many times. No sound disc reaches the limits: ADFS paths are
// short, and a disc of 512 MB has room for fewer than 430,000 directories.
inline constexpr std::int32_t kMaxWalkDepth = 256;
inline constexpr std::int32_t kMaxWalkDirectories = 450000;
// Code that notes down every object which owns sectors ends its walk at this many. ADFS can't
// address more sectors, so no sound disc has so many objects; a damaged one may seem to.
inline constexpr std::int32_t kMaxObjects = 0x210000;

// Walks the directory at sector and all below it. Each directory is read whole when the walk comes
// to it. The walk goes on with the entries of that moment, even if the visitor changes the
// directory later. False if the visitor ended the walk.
[[nodiscard]] bool WalkDirectories(Disc& disc, std::int32_t sector, DirectoryVisitor& visitor,
                                   const WalkRules& rules = {});

}  // namespace sectorbox
