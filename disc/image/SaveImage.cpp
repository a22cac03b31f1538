#include "disc/image/SaveImage.h"

#include <algorithm>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Agreement.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/DiscReplacement.h"
#include "disc/image/ImageFiles.h"
#include "disc/medium/Companion.h"
#include "disc/medium/FileMedium.h"
#include "disc/medium/FloppyMedium.h"
#include "disc/store/OpenDisc.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kSectorsBetweenPumps = 256;

// The progress dialog for the length of a scope.
class ProgressDialog {
 public:
  ProgressDialog(DiscHost& host, const std::string& caption) : host_(host) {
    host_.OpenProgress(caption);
  }
  ~ProgressDialog() { Close(); }
  ProgressDialog(const ProgressDialog&) = delete;
  ProgressDialog& operator=(const ProgressDialog&) = delete;

  void Close() {
    if (open_) host_.CloseProgress();
    open_ = false;
  }

 private:
  DiscHost& host_;
  bool open_ = true;
};

// Saving clears ImageChanged before it writes anything. After an abort, which the user chose, the
// changes count as saved. After a host failure, which nobody chose, the destructor sets the flag
// again.
class ClearedChanges {
 public:
  explicit ClearedChanges(Disc& disc) : disc_(disc), former_(disc.ImageChanged) {
    disc_.ImageChanged = false;
  }
  ~ClearedChanges() {
    if (!done_) disc_.ImageChanged = former_;
  }
  ClearedChanges(const ClearedChanges&) = delete;
  ClearedChanges& operator=(const ClearedChanges&) = delete;

  void Done() { done_ = true; }

 private:
  Disc& disc_;
  bool former_;
  bool done_ = false;
};

// Calls copy(first, count) until the sectors from 0 to sectors are copied, and shows the progress
// at each 256th sector. Events run there too, so the user can abort there; one more sector is then
// copied. False after an abort.
template <typename Copy>
[[nodiscard]] bool CopySectors(Disc& disc, const std::string& verb, std::int32_t sectors,
                               Copy copy) {
  for (std::int32_t i = 0; i < sectors; i += kSectorsBetweenPumps) {
    const double percent = sectors > 1 ? 100.0 * i / (sectors - 1) : 0.0;
    disc.Host.ShowProgress(
        verb + " Sectors " + std::to_string(i) + " Of " + std::to_string(sectors), percent);
    disc.Host.PumpEvents();
    const std::int32_t rest = std::min(kSectorsBetweenPumps, sectors - i);
    copy(i, disc.ProgressRunning ? rest : 1);
    if (!disc.ProgressRunning) return false;
  }
  return true;
}

// How many sectors a disc is saved with. If its map and its catalogue contradict each other, nobody
// can tell what is free or where the disc ends, so all that is there is saved.
std::int32_t SectorsToSave(Disc& disc) {
  const std::int32_t discSize = MapDiscSize(disc);
  const std::string& contradiction = FindContradiction(disc);
  // What looks like a map isn't one on a card that holds no disc.
  if (contradiction == kNoRoot && disc.TheDisc.HasFixedSize()) {
    return std::max(disc.TheDisc.DiscSize(), 0);
  }
  if (!contradiction.empty()) {
    const std::int64_t there = disc.TheDisc.HasFixedSize()
                                   ? disc.TheDisc.DiscSize()
                                   : (disc.TheDisc.EndOfData() + kSectorSize - 1) / kSectorSize;
    return static_cast<std::int32_t>(std::max<std::int64_t>(discSize, there));
  }
  if (disc.Host.PadDiscImages()) return discSize;
  return TrimmedSize(disc, discSize).value_or(discSize);
}

// Refuses a file that is the open card. A backup that replaced the card it is read from would
// destroy it, and a card can't be restored from itself.
void RefuseTheCardItself(const Disc& disc, const std::string& fileName) {
  if (!disc.TheDisc.MayBeReplaced() && disc.TheDisc.IsOpenMedium(fileName)) {
    throw HostError(fileName, "this is the card itself");
  }
}

// An image may be called x.dsc. Saved as x.dat, its disc would be replaced by the new companion.
// Another file of that name would be, too.
void RefuseCompanionOverOthers(const Disc& disc, const std::string& fileName) {
  const std::string companion = CompanionName(fileName);
  if (companion != fileName) RefuseOpenImage(disc, companion);
  RequireRoomForCompanion(fileName);
}

// Closes the file, and tells what of the older file the new one doesn't have.
void CloseSaved(Disc& disc, OutputFile& output) {
  output.Close();
  if (!output.Unkept().empty()) disc.Host.Note(output.Unkept());
}

void WriteWhole(Disc& disc, const std::string& fileName, const std::vector<std::uint8_t>& bytes) {
  RequireNoJournal(fileName);
  OutputFile output = CreateOutputFile(fileName);
  output.Write(bytes);
  CloseSaved(disc, output);
}

void SaveWholeMemory(Disc& disc, const std::string& fileName) {
  ClearedChanges changes(disc);
  WriteWhole(disc, fileName, disc.TheDisc.WholeFile());
  changes.Done();
}

// Refuses the file that the disc was opened from, by whatever name. A floppy that was made anew and
// never saved has no file yet.
void RefuseEmptyOverItself(const Disc& disc, const std::string& fileName) {
  if (disc.TheDisc.IsOpenMedium(fileName) || NameSameFile(fileName, disc.TheDisc.FileName())) {
    throw EmptySaveError(fileName);
  }
}

// The file that a restore copies.
class RestoreFile {
 public:
  // HostError if there is no such file. If it doesn't fit, the user is told, and Sectors is less.
  RestoreFile(Disc& disc, const std::string& path) : path_(path), length_(HostFileLength(path)) {
    // The length is rounded to the nearest sector, ties to even. If the file ends inside the last
    // sector, the rest of that sector becomes zeros.
    const auto rest = length_ % kSectorSize;
    sectors_ = static_cast<std::int32_t>(length_ / kSectorSize);
    if (rest > 128 || (rest == 128 && sectors_ % 2 == 1)) ++sectors_;
    if (!disc.TheDisc.HasFixedSize() || sectors_ <= disc.TheDisc.DiscSize()) return;
    const std::int32_t there = std::max(disc.TheDisc.DiscSize(), 0);
    disc.Host.Note(path + ": " + std::to_string(sectors_) + " sectors, of which the first " +
                   std::to_string(there) + " fit on the partition");
    sectors_ = there;
  }

  [[nodiscard]] std::int32_t Sectors() const { return sectors_; }
  [[nodiscard]] std::vector<std::uint8_t> Read(std::int32_t first, std::int32_t count) const {
    const auto part = static_cast<std::size_t>(count) * kSectorSize;
    const auto offset = static_cast<std::uint64_t>(SectorOffset(first));
    const std::uint64_t there = length_ - std::min(length_, offset);
    std::vector<std::uint8_t> bytes =
        ReadHostBytes(path_, offset, std::min<std::uint64_t>(part, there));
    bytes.resize(part);
    return bytes;
  }

 private:
  std::string path_;
  std::uint64_t length_;
  std::int32_t sectors_ = 0;
};

RestoreEnd RestoreInPlace(Disc& disc, const RestoreFile& file) {
  // Only the user's own Abort ends the copy early. What was copied until then stays on the disc.
  const bool whole =
      CopySectors(disc, "Restoring", file.Sectors(), [&](std::int32_t first, std::int32_t count) {
        disc.TheDisc.StoreBytes(SectorOffset(first), file.Read(first, count));
      });
  return whole ? RestoreEnd::kDone : RestoreEnd::kAborted;
}

RestoreEnd RestoreCard(Disc& disc, const RestoreFile& file) {
  DiscReplacement replacement(disc);
  std::vector<std::uint8_t> front = replacement.FormerFront();
  bool failed = false;
  const bool whole =
      CopySectors(disc, "Restoring", file.Sectors(), [&](std::int32_t first, std::int32_t count) {
        if (!disc.ProgressRunning) return;
        const std::vector<std::uint8_t> bytes = file.Read(first, count);
        const std::size_t kept = first == 0 ? std::min(front.size(), bytes.size()) : 0;
        std::copy_n(bytes.begin(), kept, front.begin());
        if (!replacement.HasBegun() && !replacement.Begin(DiscReplacement::Front::kToBeCleared)) {
          failed = true;
          disc.ProgressRunning = false;
          return;
        }
        disc.TheDisc.StoreBytes(SectorOffset(first) + static_cast<std::int64_t>(kept),
                                std::span(bytes).subspan(kept));
      });
  if (failed) return RestoreEnd::kFailed;
  if (!whole) return RestoreEnd::kAborted;
  if (replacement.HasBegun() && !replacement.Finish(front)) return RestoreEnd::kFailed;
  return RestoreEnd::kDone;
}

bool MayReplace(Disc& disc, const std::string& fileName) {
  return disc.Host.AskYesNo(
      HostBaseName(fileName) + " was changed by another program. Replace it ?", "Save Changes");
}

}  // namespace

EmptySaveError::EmptySaveError(const std::string& path)
    : HostError(path, "Cannot Save An Empty Disc Over Itself") {}

void RunSaveCommand(Disc& disc) {
  if (disc.Host.AskYesNo("Are You Sure ?", "Save Changes")) SaveImageAs(disc);
}

void SaveImageAs(Disc& disc) {
  const std::string name =
      disc.Host.AskSaveFileName({"Save ADFS Disc Image As", FilterOfImageFiles(), disc.ImageName});
  if (!name.empty()) SaveImageTo(disc, name);
}

void SaveImageTo(Disc& disc, const std::string& fileName) {
  RefuseOpenCompanion(disc, fileName);
  const bool isItself = disc.TheDisc.InMemory() && fileName == disc.TheDisc.FileName();
  if (isItself && disc.TheDisc.Lock().WasReplaced() && !MayReplace(disc, fileName)) return;
  const std::string former = disc.ImageName;
  disc.ImageName = fileName;
  try {
    // The disc's own size decides, not the extension, because nothing is converted. The size of a
    // damaged disc may be wrong.
    const DiscType type = KindOfDiscSize(MapDiscSize(disc));
    if (disc.TheDisc.InMemory() && !FindContradiction(disc).empty()) {
      SaveWholeMemory(disc, fileName);
    } else if (type == kAdl) {
      SaveAdlImage(disc, fileName);
    } else if (type == kAdf) {
      SaveAdfImage(disc, fileName);
    } else {
      SaveDatImage(disc, fileName, false);
    }
  } catch (const HostError&) {
    disc.ImageName = former;
    throw;
  }
  if (isItself) disc.TheDisc.Lock().NoteSave();
  disc.Host.RefreshCaption();
}

void SaveDatImage(Disc& disc, const std::string& fileName, bool wholeCard) {
  RefuseTheCardItself(disc, fileName);
  const bool hasCompanion = disc.TheDisc.Kind().HasCompanion;
  if (hasCompanion) RefuseCompanionOverOthers(disc, fileName);
  ClearedChanges changes(disc);
  const BusyPointer busy(disc.Host);
  ProgressDialog progress(disc.Host, "Save Image");
  const std::int32_t sectors = wholeCard ? disc.TheDisc.DiscSize() : SectorsToSave(disc);
  const bool overItself = disc.TheDisc.IsOpenMedium(fileName);
  RequireNoJournal(fileName);
  OutputFile output = CreateOutputFile(fileName);
  std::vector<std::uint8_t> bytes;
  const bool whole =
      CopySectors(disc, "Saving", sectors, [&](std::int32_t first, std::int32_t count) {
        bytes.resize(static_cast<std::size_t>(count) * kSectorSize);
        if (SectorOffset(first) >= disc.TheDisc.EndOfData()) {
          output.Skip(bytes.size());
          return;
        }
        disc.TheDisc.FetchBytes(SectorOffset(first), bytes);
        output.WriteWithHoles(bytes);
      });
  // An aborted save leaves a short file. But the file of the open disc itself isn't replaced by a
  // short one: the disc would be lost.
  if (whole && overItself) disc.TheDisc.TellCut(SectorOffset(sectors));
  if (whole || !overItself) CloseSaved(disc, output);
  progress.Close();
  // The next access opens the file of the store's name again, which is now the new one.
  if (whole && overItself) {
    disc.TheDisc.CloseFile();
    disc.TheDisc.Lock().NoteSave();
  }
  if (hasCompanion) {
    WriteCompanion(fileName, {disc.DiscTracks, disc.DiscHeads});
  }
  changes.Done();
}

void SaveAdfImage(Disc& disc, const std::string& fileName) {
  RefuseTheCardItself(disc, fileName);
  // With the option Pad Disc Images the file stays empty. Users know this, and their scripts count
  // on it. To get a padded image a user closes the disc, which writes one.
  const bool isEmpty = disc.Host.PadDiscImages();
  if (isEmpty) RefuseEmptyOverItself(disc, fileName);
  ClearedChanges changes(disc);
  std::vector<std::uint8_t> bytes;
  if (!isEmpty) {
    bytes.resize(static_cast<std::size_t>(SectorsToSave(disc)) * kSectorSize);
    disc.TheDisc.FetchBytes(0, bytes);
  }
  WriteWhole(disc, fileName, bytes);
  if (isEmpty) disc.Host.Note("Saved empty: Pad Disc Images is set");
  changes.Done();
}

void SaveAdlImage(Disc& disc, const std::string& fileName) {
  RefuseTheCardItself(disc, fileName);
  ClearedChanges changes(disc);
  const auto inMemory = disc.TheDisc.InMemory()
                            ? std::optional<std::size_t>(disc.TheDisc.ImageBytes())
                            : std::nullopt;
  WriteWhole(disc, fileName,
             ArrangeAdl(disc.TheDisc, MapDiscSize(disc), inMemory, disc.Host.InterleavedDisc()));
  changes.Done();
}

RestoreEnd RestoreImage(Disc& disc, const std::string& fileName) {
  RefuseTheCardItself(disc, fileName);
  ClearedChanges changes(disc);
  const BusyPointer busy(disc.Host);
  ProgressDialog progress(disc.Host, "Restore Image");
  const RestoreFile file(disc, fileName);
  const RestoreEnd end =
      disc.TheDisc.HasFixedSize() ? RestoreCard(disc, file) : RestoreInPlace(disc, file);
  progress.Close();
  changes.Done();
  return end;
}

}  // namespace sectorbox
