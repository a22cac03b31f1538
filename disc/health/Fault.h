#pragma once

#include <cstdint>
#include <string>

// A fault of a disc as a value: what is wrong, what it touches, how bad it is, and the text made
// from these.
namespace sectorbox {

// The numbers Is and Should of a Fault mean what stands behind a kind; without a word, nothing.
enum class FaultKind {
  // The map.
  kLargerThanCard,     // Is: sectors of the disc, Should: sectors that the card has room for
  kWrongMapSum,        // Is: the sum that stands there, Should: the right one
  kMapEndNoMultiple,   // Is: the end pointer
  kMapEndTooHigh,      // Is: the end pointer
  kRunOutOfOrder,      // this and the next two: against the run in front of it
  kRunOverlapsFormer,  //
  kRunTouchesFormer,   //
  // Directories.
  kNoMark,
  kMarksDiffer,
  kSequencesDiffer,
  kWrongParent,  // Is: the sector that stands there, Should: that of the parent
  kTooMany,      // the directory lists more than the disc has room for; the walk has ended there
  kTooDeep,      // the walk didn't go into the directory
  // Entries.
  kNameTwice,
  kNameOutOfOrder,
  kNameUntypable,
  kCircle,         // the entry leads back to a directory that it lies in
  kStartsPastEnd,  //
  // What owns sectors.
  kRunsPastEnd,  // a run of free sectors, the root or an entry
  kOverlap,      // with the fault's Other
  kUnowned,      // Is: sectors, from the touched one on, that belong to nothing
  // The size.
  kTooLargeForBbc,
  kCompanionTooSmall,  // Is: sectors of which the companion tells, Should: sectors of the disc
  // The end of a list of faults.
  kMore,  // Is: how many faults are not listed
};

enum class Severity {
  kWarning,
  kError,  // the BBC's own filing system would refuse the disc, or data is at risk
};

enum class TouchedKind {
  kMapSector,  // Number: 0 or 1
  kMap,        // both of its sectors
  kSectors,    // Number: the first sector
  kRun,        // Number: its place in the map, from 0
  kDirectory,  // Number: its start sector
  kEntry,      // Number: start sector of the directory that lists it; Slot: its slot there
  kCompanion,  // the companion file of a hard disc image
};

// What a fault touches.
struct Touched {
  TouchedKind Kind = TouchedKind::kMapSector;
  std::int32_t Number = 0;
  std::int32_t Slot = -1;
  // Of a directory or an entry the dotted path, "$.DIR.FILE", in the BBC's bytes; of a companion
  // the name of the file.
  std::string Path;

  // "$.DIR.FILE", "run 3", "sector 0", "sector 00000E", "the free space map", "disc.dsc".
  [[nodiscard]] std::string Text() const;
};

struct Fault {
  FaultKind Kind = FaultKind::kMore;
  Severity Weight = Severity::kError;
  Touched At;
  std::int64_t Is = 0;
  std::int64_t Should = 0;
  Touched Other;  // of kOverlap only

  [[nodiscard]] bool IsError() const { return Weight == Severity::kError; }
  // What it touches, in words.
  [[nodiscard]] std::string Place() const { return At.Text(); }
  // What is wrong there.
  [[nodiscard]] std::string Text() const;
};

// How bad a fault of a kind is. For kMore, which is as bad as the worst of what isn't listed, a
// warning.
[[nodiscard]] Severity SeverityOf(FaultKind kind);
// A fault that is as bad as its kind.
[[nodiscard]] Fault MakeFault(FaultKind kind, Touched at, std::int64_t is = 0,
                              std::int64_t should = 0);
// One word for a kind, which programs can rely on: "map-sum", "overlap".
[[nodiscard]] const char* WordOf(FaultKind kind);

}  // namespace sectorbox
