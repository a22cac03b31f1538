#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/HostImport.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Names.h"
#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

using namespace format;

// A host file with everything that is needed to add it. It is read before anything on the disc
// changes, so that a file that can't be read leaves the disc as it was.
struct Incoming {
  std::string HostPath;
  std::string HostName;
  char Prefix = '\0';  // the letter of the directory in front of the name; '\0' for none
  std::string Name;
  std::uint32_t Load = 0;
  std::uint32_t Exec = 0;
  std::string Attr;
  std::uint32_t Length = 0;         // in bytes; the entry will state it
  std::uint32_t HostLength = 0;     // bytes of the host file
  std::vector<std::uint8_t> Bytes;  // at most Length; zeros stand for those that are missing

  // Bytes that the free run must have.
  std::uint32_t Need() const { return std::max(Length, HostLength); }
};

// Splits "B.FILE" into the letter of a directory and a name. "$.FILE" has a name only.
void SetIncomingName(Incoming& file, std::string name) {
  name.resize(std::min<std::size_t>(name.size(), kNameLength));
  std::replace(name.begin(), name.end(), ' ', '_');
  if (name.size() >= 2 && name[1] == '.') {
    if (name[0] != '$') file.Prefix = name[0];
    name.erase(0, 2);
  }
  // A carriage return ends a name on the disc; nothing behind it would ever be read.
  file.Name = name.substr(0, name.find('\r'));
}

// The most bytes that a file on the disc could have now.
std::uint64_t LongestRun(const Disc& disc) {
  std::uint64_t longest = 0;
  for (const FreeRun& run : FreeRuns(disc)) {
    if (run.Length > 0) longest = std::max(longest, static_cast<std::uint64_t>(run.Length));
  }
  return longest * kSectorSize;
}

// Sets the bytes of the host file, and how many it has. Some files of the host's system tell that
// they are empty and have bytes all the same. No more of them is read than shows that they don't
// fit.
void ReadBytes(Incoming& file, const std::optional<std::uint32_t>& stated, std::uint64_t longest) {
  if (file.HostLength == 0) {
    file.Bytes = ReadHostFile(file.HostPath, 0, std::min<std::uint64_t>(longest + 1, UINT32_MAX));
    file.HostLength = static_cast<std::uint32_t>(file.Bytes.size());
    file.Length = stated.value_or(file.HostLength);
    file.Bytes.resize(std::min(file.Length, file.HostLength));
    return;
  }
  file.Length = stated.value_or(file.HostLength);
  file.Bytes = ReadHostBytes(file.HostPath, 0, std::min(file.Length, file.HostLength));
}

Incoming ReadIncoming(const std::string& path, std::uint32_t hostLength, std::uint64_t longest) {
  Incoming file;
  file.HostPath = path;
  file.HostName = HostBaseName(path);
  file.HostLength = hostLength;
  const auto line = ReadSidecarLine(path);
  const FileSidecar sidecar = line ? ParseFileSidecar(*line) : FileSidecar{};
  // A long host name is cut first and mapped to an ADFS name after that.
  const std::string own = TrimBlanks(file.HostName).substr(0, kNameLength);
  SetIncomingName(file, line ? sidecar.Name.value_or(own) : HostToAdfsName(own));
  file.Load = ParseAddress(sidecar.Load);
  file.Exec = ParseAddress(sidecar.Exec);
  file.Attr = sidecar.Attr;
  ReadBytes(file, sidecar.Length, longest);
  return file;
}

// The start sector of the directory that the file goes to. It is made if there is none; none if
// that was refused. An entry of that name that is a file is taken for the directory too, if its
// bytes are one: nothing has ever looked at its D attribute here.
std::optional<std::int32_t> FindTarget(Disc& disc, std::int32_t dir, const Incoming& file) {
  if (file.Prefix == '\0') return dir;
  const std::string letter(1, file.Prefix);
  const std::int32_t target = GetEntrySector(disc, dir, letter);
  if (target >= 0 && IsDirectory(disc, target)) return target;
  if (target >= 0) {
    (void)Refuse(disc, "File " + file.HostName + ": " + letter + " Is Not A Directory");
    return std::nullopt;
  }
  const auto made = NewDirectory(disc, dir, letter);
  disc.Host.SetTreeReady();
  return made;
}

Entry MakeEntry(const Incoming& file, std::int32_t start, std::uint8_t sequence) {
  Entry entry;
  entry.SetName(file.Name);
  const auto has = [&](char letter) { return file.Attr.find(letter) != std::string::npos; };
  entry.Set(Attribute::kRead, has('R'));
  entry.Set(Attribute::kWrite, has('W'));
  entry.Set(Attribute::kLocked, has('L'));
  entry.SetLoad(file.Load);
  entry.SetExec(file.Exec);
  entry.SetLength(file.Length);
  entry.SetStart(start);
  entry.SetSequence(sequence);
  return entry;
}

// Stores the file's bytes, and zeros up to the end of its last sector.
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

void Insert(Disc& disc, const Incoming& file, EditedDirectory& directory, std::int32_t slot,
            std::int32_t run) {
  const std::int32_t start = disc.FreeStart[static_cast<std::size_t>(run)];
  directory.Now.Insert(slot, MakeEntry(file, start, directory.Now.BumpSequence()));
  directory.Write();
  disc.ImageChanged = true;
  StoreData(disc, file, start);
  TakeSectors(disc, run, SectorsOfLength(file.Length));
}

enum class Attempt { kDone, kLeft, kRefused, kReplaced };

// One round: adds the file, or deletes the entry that has its name. After kLeft nothing has changed
// and the user knows why; an import goes on. After kReplaced the caller starts a new round, in
// which the old file's sectors are free.
Attempt TryToAdd(Disc& disc, std::int32_t dir, const Incoming& file) {
  const auto refuse = [&](const std::string& message) {
    disc.Host.ShowMessage(message);
    return Attempt::kRefused;
  };
  if (FindFreeRun(disc, file.HostLength) < 0) return refuse(kNoSpaceMessage);
  const auto target = FindTarget(disc, dir, file);
  if (!target) return Attempt::kRefused;
  // A second search: the new directory may have taken the first run, and the sidecar may state a
  // greater length than the host file has.
  const std::int32_t run = FindFreeRun(disc, file.Need());
  if (run < 0) return refuse(kNoSpaceMessage);
  EditedDirectory directory(disc, *target);
  if (directory.Now.IsFull()) return refuse("Directory Full");
  const Place place = directory.Now.FindPlace(file.Name);
  if (!place.Taken) {
    Insert(disc, file, directory, place.Slot, run);
    return Attempt::kDone;
  }
  const Entry former = directory.Now.At(place.Slot);
  if (former.IsDirectory()) {
    disc.Host.ShowMessage("Cannot Yet Overwrite A Directory");
    return Attempt::kLeft;
  }
  if (former.IsLocked() && !disc.Host.OverwriteLocked()) {
    disc.Host.NoteLeftOut(former.Name() + " is locked and was left as it was");
    return Attempt::kLeft;
  }
  // Nothing is refused here, because the lock is ignored.
  (void)DeleteEntry(disc, *target, file.Name, false, true);
  return Attempt::kReplaced;
}

// The start sector of the directory that the file goes to, as far as that is there; else -1.
std::int32_t SectorOfTarget(Disc& disc, std::int32_t dir, const Incoming& file) {
  return file.Prefix == '\0' ? dir : GetEntrySector(disc, dir, {&file.Prefix, 1});
}

// Adds the file in one piece: a replaced file goes only if the new one is there.
Outcome AddIncoming(Disc& disc, std::int32_t dirSector, const Incoming& file, ImportWalk& walk) {
  const TrackedSector dir(disc, dirSector);
  if (const std::string* other = walk.FindAdded(SectorOfTarget(disc, dir, file), file.Name)) {
    disc.Host.NoteLeftOut(file.HostPath + " was not added: on the disc it has the name of " +
                          *other);
    return Outcome::kDone;
  }
  // A sound directory holds a name once. In a damaged one each entry may have it, and each takes a
  // round.
  for (std::int32_t round = 0; round <= kEntryCount; ++round) {
    const Attempt attempt = TryToAdd(disc, dir, file);
    if (attempt == Attempt::kReplaced) continue;
    if (attempt == Attempt::kDone) {
      walk.KeepAdded(SectorOfTarget(disc, dir, file), file.Name, file.HostPath);
      ++walk.Added;
    }
    return attempt == Attempt::kRefused ? Outcome::kRefused : Outcome::kDone;
  }
  return Outcome::kStopped;
}

Outcome AddPlainFile(Disc& disc, std::int32_t dirSector, const std::string& path,
                     ImportWalk& walk) {
  // A pipe or a device has no length, and reading it may never end.
  if (KindOfHostFile(path) != HostFileKind::kPlain) throw HostError(path, "Not a regular file");
  const auto length =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(HostFileLength(path), UINT32_MAX));
  if (FindFreeRun(disc, length) < 0) return Refuse(disc, kNoSpaceMessage);
  const Incoming file = ReadIncoming(path, length, LongestRun(disc));
  const bool badPrefix = file.Prefix != '\0' && NameCannotBeStored({&file.Prefix, 1});
  if (badPrefix || NameCannotBeStored(file.Name)) {
    return Refuse(disc, IllegalNameMessage(file.HostName));
  }
  return InChange(
      disc, [&] { return AddIncoming(disc, dirSector, file, walk); }, Change::Parts::kNone);
}

}  // namespace

Outcome AddHostPath(Disc& disc, std::int32_t dirSector, const std::string& hostPath,
                    ImportWalk& walk) {
  if (hostPath.ends_with(kSidecarEnding)) return Outcome::kDone;
  if (HostFolderExists(hostPath)) return AddHostFolder(disc, dirSector, hostPath, walk);
  const Outcome outcome = AddPlainFile(disc, dirSector, hostPath, walk);
  if (outcome != Outcome::kDone) ++walk.NotAdded;
  return outcome;
}

Outcome AddFile(Disc& disc, std::int32_t dirSector, const std::string& hostPath) {
  return AddFiles(disc, dirSector, {hostPath});
}

Outcome AddFiles(Disc& disc, std::int32_t dirSector, const std::vector<std::string>& hostPaths,
                 AfterRefusal afterRefusal) {
  const TrackedSector dir(disc, dirSector);
  ImportWalk walk(disc);
  for (std::size_t i = 0; i < hostPaths.size(); ++i) {
    const Outcome outcome =
        InChange(disc, [&] { return AddHostPath(disc, dir, ResolveHostPath(hostPaths[i]), walk); });
    if (outcome == Outcome::kDone) continue;
    walk.NotAdded += CountEntries(hostPaths, i + 1);
    const bool drops = afterRefusal == AfterRefusal::kDropsAll;
    TellNotAdded(disc, walk, walk.NotAdded + (drops ? walk.Added : 0));
    return outcome;
  }
  return Outcome::kDone;
}

}  // namespace sectorbox
