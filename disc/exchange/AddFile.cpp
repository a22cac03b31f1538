#include <algorithm>
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
#include "disc/exchange/IncomingFile.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Names.h"
#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

using namespace format;

// The most bytes that a file on the disc could have now.
std::uint64_t LongestRun(const Disc& disc) {
  std::uint64_t longest = 0;
  for (const FreeRun& run : FreeRuns(disc)) {
    if (run.Length > 0) longest = std::max(longest, static_cast<std::uint64_t>(run.Length));
  }
  return longest * kSectorSize;
}

// The start sector of the directory that the file goes to. It is made if there is none; none if
// that was refused. An entry of that name that is a file is taken for the directory too, if its
// bytes are one: nothing has ever looked at its D attribute here.
std::optional<std::int32_t> FindTarget(Disc& disc, std::int32_t dir, const IncomingFile& file) {
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

Entry MakeEntry(const IncomingFile& file, std::int32_t start, std::uint8_t sequence) {
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

void Insert(Disc& disc, const IncomingFile& file, EditedDirectory& directory, std::int32_t slot,
            std::int32_t run) {
  const std::int32_t start = disc.FreeStart[static_cast<std::size_t>(run)];
  directory.Now.Insert(slot, MakeEntry(file, start, directory.Now.BumpSequence()));
  directory.Write();
  disc.ImageChanged = true;
  file.StoreIn(disc, start);
  TakeSectors(disc, run, SectorsOfLength(file.Length));
}

// What a round has done. After kLeft nothing has changed and the user knows why; an import goes on.
// After kReplaced the caller starts a new round, in which the old file's sectors are free.
enum class Round { kAdded, kLeft, kReplaced };

// One round: adds the file, or deletes the entry that has its name. In the round after a deletion
// another entry of that name may stand there, on a damaged disc. It stays.
Outcome TryToAdd(Disc& disc, std::int32_t dir, const IncomingFile& file, Round& round) {
  const bool hasReplaced = round == Round::kReplaced;
  if (FindFreeRun(disc, file.HostLength) < 0) return Refuse(disc, kNoSpaceMessage);
  const auto target = FindTarget(disc, dir, file);
  if (!target) return Outcome::kRefused;
  // A second search: the new directory may have taken the first run, and the sidecar may state a
  // greater length than the host file has.
  const std::int32_t run = FindFreeRun(disc, file.Need());
  if (run < 0) return Refuse(disc, kNoSpaceMessage);
  EditedDirectory directory(disc, *target);
  if (directory.Now.IsFull()) return Refuse(disc, "Directory Full");
  const Place place = directory.Now.FindPlace(file.Name);
  if (!place.Taken || hasReplaced) {
    Insert(disc, file, directory, place.Slot, run);
    round = Round::kAdded;
    return Outcome::kDone;
  }
  const Entry former = directory.Now.At(place.Slot);
  round = Round::kLeft;
  if (former.IsDirectory()) {
    disc.Host.ShowMessage("Cannot Yet Overwrite A Directory");
    return Outcome::kDone;
  }
  if (former.IsLocked() && !disc.Host.OverwriteLocked()) {
    disc.Host.NoteLeftOut(former.Name() + " is locked and was left as it was");
    return Outcome::kDone;
  }
  // Nothing is refused here, because the lock is ignored.
  (void)DeleteEntry(disc, *target, file.Name, false, true, former.Start());
  round = Round::kReplaced;
  return Outcome::kDone;
}

// The start sector of the directory that the file goes to, as far as that is there; else -1.
std::int32_t SectorOfTarget(Disc& disc, std::int32_t dir, const IncomingFile& file) {
  return file.Prefix == '\0' ? dir : GetEntrySector(disc, dir, {&file.Prefix, 1});
}

// Adds the file in one piece: a replaced file goes only if the new one is there.
Outcome AddIncoming(Disc& disc, std::int32_t dirSector, const IncomingFile& file,
                    ImportWalk& walk) {
  const TrackedSector dir(disc, dirSector);
  if (const std::string* other = walk.FindAdded(SectorOfTarget(disc, dir, file), file.Name)) {
    disc.Host.NoteLeftOut(file.HostPath + " was not added: on the disc it has the name of " +
                          *other);
    return Outcome::kDone;
  }
  Round round = Round::kLeft;
  Outcome outcome = TryToAdd(disc, dir, file, round);
  if (outcome == Outcome::kDone && round == Round::kReplaced) {
    outcome = TryToAdd(disc, dir, file, round);
  }
  if (outcome != Outcome::kDone || round != Round::kAdded) return outcome;
  walk.KeepAdded(SectorOfTarget(disc, dir, file), file.Name, file.HostPath);
  ++walk.Added;
  return Outcome::kDone;
}

Outcome AddPlainFile(Disc& disc, std::int32_t dirSector, const std::string& path,
                     ImportWalk& walk) {
  // A pipe or a device has no length, and reading it may never end.
  if (KindOfHostFile(path) != HostFileKind::kPlain) throw HostError(path, "Not a regular file");
  const auto length =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(HostFileLength(path), UINT32_MAX));
  if (FindFreeRun(disc, length) < 0) return Refuse(disc, kNoSpaceMessage);
  const IncomingFile file(path, length, LongestRun(disc));
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
  if (outcome != Outcome::kDone) {
    ++walk.NotAdded;
    walk.Refused = hostPath;
  }
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
