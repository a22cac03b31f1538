#include <algorithm>
#include <array>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/HostImport.h"
#include "disc/exchange/Sidecar.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

using namespace format;

// A host file with all that is needed to add it, read before the disc is touched: one that can't be
// read leaves everything as it was.
struct Incoming {
  std::string HostName;
  char Prefix = '\0';  // the directory that the name begins with, '\0' for none
  std::string Name;
  std::uint32_t Load = 0;
  std::uint32_t Exec = 0;
  std::string Attr;
  std::uint32_t Length = 0;         // as the entry will state it
  std::uint32_t HostLength = 0;     // as the host holds it
  std::vector<std::uint8_t> Bytes;  // at most Length; what is missing are zeros

  std::uint32_t Need() const { return std::max(Length, HostLength); }
};

std::int16_t Refuse(Disc& disc, const std::string& message) {
  disc.Host.ShowMessage(message);
  return kStop;
}

// Splits "B.FILE" into its directory and its name. "$." is the directory given.
void SetIncomingName(Incoming& file, std::string name) {
  name.resize(std::min<std::size_t>(name.size(), kNameLength));
  std::replace(name.begin(), name.end(), ' ', '_');
  if (name.size() >= 2 && name[1] == '.') {
    if (name[0] != '$') file.Prefix = name[0];
    name.erase(0, 2);
  }
  // A carriage return ends a name on the disc; what follows it would never be read back.
  file.Name = name.substr(0, name.find('\r'));
}

Incoming ReadIncoming(const std::string& path, std::uint32_t hostLength) {
  Incoming file;
  file.HostName = HostBaseName(path);
  file.HostLength = hostLength;
  const auto line = ReadSidecarLine(path);
  const FileSidecar sidecar = line ? ParseFileSidecar(*line) : FileSidecar{};
  // The cut comes before the mapping: a long host name loses its tail first.
  const std::string own = TrimBlanks(file.HostName).substr(0, kNameLength);
  SetIncomingName(file, line ? sidecar.Name.value_or(own) : HostToAdfsName(own));
  file.Load = ParseAddress(sidecar.Load);
  file.Exec = ParseAddress(sidecar.Exec);
  file.Attr = sidecar.Attr;
  file.Length = sidecar.Length.value_or(hostLength);
  file.Bytes = ReadHostFile(path, 0, std::min(file.Length, hostLength));
  return file;
}

// The directory that the file goes to, made if need be; -1 when that failed. An entry that isn't a
// directory is followed all the same: its D bit has never been looked at here.
std::int32_t FindTarget(Disc& disc, std::int32_t dir, const Incoming& file) {
  if (file.Prefix == '\0') return dir;
  const std::string letter(1, file.Prefix);
  std::int32_t target = GetEntrySector(disc, dir, letter);
  if (target >= 0) return target;
  target = NewDirectory(disc, dir, letter);
  disc.Host.SetTreeReady();
  return target;
}

EntryBytes MakeEntry(const Incoming& file, std::int32_t start, std::uint8_t sequence) {
  EntryBytes entry{};
  SetName(entry, file.Name);
  const auto has = [&](char letter) { return file.Attr.find(letter) != std::string::npos; };
  if (has('R')) entry[kAttrRead] |= kTopBit;
  if (has('W')) entry[kAttrWrite] |= kTopBit;
  if (has('L')) entry[kAttrLocked] |= kTopBit;
  SetNumber(entry, kEntryLoad, file.Load, 4);
  SetNumber(entry, kEntryExec, file.Exec, 4);
  SetNumber(entry, kEntryLength, file.Length, 4);
  SetNumber(entry, kEntrySector, static_cast<std::uint32_t>(start), 3);
  entry[kEntrySequence] = sequence;
  return entry;
}

// The bytes, and zeros to the end of the last sector.
void StoreData(Disc& disc, const Incoming& file, std::int32_t start) {
  std::int64_t at = SectorOffset(start);
  const std::int64_t end = at + SectorOffset(SectorsOfLength(file.Length));
  disc.TheDisc.StoreBytes(at, file.Bytes);
  static constexpr std::array<std::uint8_t, 16384> kZeros{};
  for (at += static_cast<std::int64_t>(file.Bytes.size()); at < end;) {
    const auto part = std::min<std::int64_t>(end - at, kZeros.size());
    disc.TheDisc.StoreBytes(at, std::span(kZeros).first(static_cast<std::size_t>(part)));
    at += part;
  }
}

void Insert(Disc& disc, const Incoming& file, std::int32_t dir, std::int32_t slot,
            std::int32_t run) {
  const std::int32_t start = disc.FreeStart[static_cast<std::size_t>(run)];
  const EntryBytes entry = MakeEntry(file, start, BumpSequence(disc, dir));
  OpenGap(disc, dir, slot);
  WriteEntry(disc, dir, slot, entry);
  StoreData(disc, file, start);
  TakeSectors(disc, run, SectorsOfLength(file.Length));
}

enum class Attempt { kDone, kStop, kReplaced };

// One round: adds the file, or deletes the entry of that name, after which all starts anew with the
// old file's sectors free.
Attempt TryToAdd(Disc& disc, std::int32_t dir, const Incoming& file) {
  const auto refuse = [&](const std::string& message) {
    Refuse(disc, message);
    return Attempt::kStop;
  };
  if (FindFreeRun(disc, file.HostLength) < 0) return refuse(kNoSpaceMessage);
  const std::int32_t target = FindTarget(disc, dir, file);
  if (target < 0) return Attempt::kStop;
  // Searched only now: the new directory may have taken the run, and the sidecar may ask for more
  // than the host file holds.
  const std::int32_t run = FindFreeRun(disc, file.Need());
  if (run < 0) return refuse(kNoSpaceMessage);
  if (DirectoryIsFull(disc, target)) return refuse("Directory Full");
  const Place place = FindPlace(disc, target, file.Name);
  if (!place.Taken) {
    Insert(disc, file, target, place.Slot, run);
    return Attempt::kDone;
  }
  const std::int64_t offset = EntryOffset(target, place.Slot);
  if (EntryHas(disc, offset, kAttrDirectory)) {
    disc.Host.ShowMessage("Cannot Yet Overwrite A Directory");
    return Attempt::kDone;
  }
  if (EntryHas(disc, offset, kAttrLocked) && !disc.Host.OverwriteLocked()) return Attempt::kDone;
  DeleteEntry(disc, target, file.Name, false, true);
  return Attempt::kReplaced;
}

std::int16_t AddPlainFile(Disc& disc, std::int32_t DirSector, const std::string& path) {
  // A pipe or a device has no length and may never end.
  if (HostFileExists(path) && !HostFileIsPlain(path)) throw HostError(path, "Not a regular file");
  const auto length =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(HostFileLength(path), UINT32_MAX));
  if (FindFreeRun(disc, length) < 0) return Refuse(disc, kNoSpaceMessage);
  const Incoming file = ReadIncoming(path, length);
  const bool badPrefix = file.Prefix != '\0' && NameCannotBeStored({&file.Prefix, 1});
  if (badPrefix || NameCannotBeStored(file.Name)) {
    return Refuse(disc, IllegalNameMessage(file.HostName));
  }
  const TrackedSector dir(disc, DirSector);
  // A sound directory holds a name once; a damaged one gets one round for each entry it can have.
  for (std::int32_t round = 0; round <= kEntryCount; ++round) {
    const Attempt attempt = TryToAdd(disc, dir, file);
    if (attempt != Attempt::kReplaced) return attempt == Attempt::kDone ? kDone : kStop;
  }
  return kStop;
}

}  // namespace

std::int16_t AddHostPath(Disc& disc, std::int32_t DirSector, const std::string& HostPath,
                         ImportWalk& walk) {
  if (HostPath.ends_with(kSidecarEnding)) return kDone;
  if (HostFolderExists(HostPath)) return AddHostFolder(disc, DirSector, HostPath, walk);
  return AddPlainFile(disc, DirSector, HostPath);
}

std::int16_t AddFile(Disc& disc, std::int32_t DirSector, const std::string& HostPath) {
  ImportWalk walk;
  return AddHostPath(disc, DirSector, ResolveHostPath(HostPath), walk);
}

}  // namespace sectorbox
