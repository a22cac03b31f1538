#include "disc/image/SaveImage.h"

#include <algorithm>
#include <array>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/medium/Companion.h"
#include "disc/medium/FloppyMedium.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr const char* kSaveFilter = "ADFS Disc (*.adl;*.adf;*.dat)|*.adl;*.adf;*.dat";
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

// Saving clears ImageChanged before anything is written, and an abort leaves it clear: the changes
// count as saved. A host failure is another matter, since nobody chose it: the flag comes back.
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

// Calls copy(first, count) for every sector from 0 to sectors, telling the dialog at each 256th.
// The user can only abort while the events run there, and the copy ends at its next turn: the
// sector at which that happened is still copied. False when aborted.
template <typename Copy>
bool CopySectors(Disc& disc, const std::string& verb, std::int32_t sectors, Copy copy) {
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

std::int32_t SectorsToSave(Disc& disc) {
  const std::int32_t discSize = MapDiscSize(disc);
  if (disc.Host.PadDiscImages()) return discSize;
  return TrimmedSize(disc, discSize).value_or(discSize);
}

// An image that took the place of the card it is read from would be the end of that card, and a
// card can't be poured into itself.
void RefuseTheCardItself(const Disc& disc, const std::string& fileName) {
  if (!disc.TheDisc.MayBeReplaced() && disc.TheDisc.IsOpenMedium(fileName)) {
    throw HostError(fileName, "this is the card itself");
  }
}

void WriteWhole(const std::string& fileName, const std::vector<std::uint8_t>& bytes) {
  OutputFile output = CreateOutputFile(fileName);
  output.Write(bytes);
  output.Close();
}

}  // namespace

void RunSaveCommand(Disc& disc) {
  if (disc.Host.AskYesNo("Are You Sure ?", "Save Changes")) SaveImageAs(disc);
}

void SaveImageAs(Disc& disc) {
  const std::string name =
      disc.Host.AskSaveFileName({"Save ADFS Disc Image As", kSaveFilter, disc.ImageName});
  if (!name.empty()) SaveImageTo(disc, name);
}

void SaveImageTo(Disc& disc, const std::string& FileName) {
  const std::string former = disc.ImageName;
  disc.ImageName = FileName;
  try {
    // The disc's own size decides, not the extension: nothing is converted.
    const std::int32_t size = MapDiscSize(disc);
    if (size == 2560) {
      SaveAdlImage(disc, FileName);
    } else if (size == 640 || size == 1280) {
      SaveAdfImage(disc, FileName);
    } else {
      SaveDatImage(disc, FileName, false);
    }
  } catch (const HostError&) {
    disc.ImageName = former;
    throw;
  }
  disc.Host.RefreshCaption();
}

void SaveDatImage(Disc& disc, const std::string& FileName, bool WholeCard) {
  RefuseTheCardItself(disc, FileName);
  ClearedChanges changes(disc);
  const BusyPointer busy(disc.Host);
  ProgressDialog progress(disc.Host, "Save Image");
  const std::int32_t sectors = WholeCard ? disc.TheDisc.DiscSize() : SectorsToSave(disc);
  const bool overItself = disc.TheDisc.IsOpenMedium(FileName);
  OutputFile output = CreateOutputFile(FileName);
  std::vector<std::uint8_t> bytes;
  const bool whole =
      CopySectors(disc, "Saving", sectors, [&](std::int32_t first, std::int32_t count) {
        bytes.resize(static_cast<std::size_t>(count) * kSectorSize);
        if (SectorOffset(first) >= disc.TheDisc.EndOfData()) {
          output.Skip(bytes.size());
          return;
        }
        disc.TheDisc.FetchBytes(SectorOffset(first), bytes);
        output.Write(bytes);
      });
  // An aborted save leaves a short file, but not where the open disc itself lies: that would be
  // the end of it.
  if (whole || !overItself) output.Close();
  progress.Close();
  // The store goes on working on the file of its name, which is now this one.
  if (whole && overItself) disc.TheDisc.CloseFile();
  if (disc.TheDisc.Kind().HasCompanion) {
    WriteCompanion(FileName, {disc.DiscTracks, disc.DiscHeads});
  }
  changes.Done();
}

void SaveAdfImage(Disc& disc, const std::string& FileName) {
  RefuseTheCardItself(disc, FileName);
  ClearedChanges changes(disc);
  std::vector<std::uint8_t> bytes;
  // With Pad Disc Images set the file stays empty. Users know it and their scripts count on it, so
  // it stays; who wants a padded image closes the disc, which writes one.
  if (!disc.Host.PadDiscImages()) {
    bytes.resize(static_cast<std::size_t>(SectorsToSave(disc)) * kSectorSize);
    disc.TheDisc.FetchBytes(0, bytes);
  }
  WriteWhole(FileName, bytes);
  changes.Done();
}

void SaveAdlImage(Disc& disc, const std::string& FileName) {
  RefuseTheCardItself(disc, FileName);
  ClearedChanges changes(disc);
  const auto inMemory = disc.TheDisc.InMemory()
                            ? std::optional<std::size_t>(disc.TheDisc.ImageBytes())
                            : std::nullopt;
  WriteWhole(FileName,
             ArrangeAdl(disc.TheDisc, MapDiscSize(disc), inMemory, disc.Host.InterleavedDisc()));
  changes.Done();
}

void RestoreImage(Disc& disc, const std::string& FileName) {
  RefuseTheCardItself(disc, FileName);
  ClearedChanges changes(disc);
  const BusyPointer busy(disc.Host);
  ProgressDialog progress(disc.Host, "Restore Image");
  const std::uint64_t length = HostFileLength(FileName);
  // To the nearest sector, ties to even; what the file lacks of the last one reads as zeros.
  const auto rest = length % kSectorSize;
  auto sectors = static_cast<std::int32_t>(length / kSectorSize);
  if (rest > 128 || (rest == 128 && sectors % 2 == 1)) ++sectors;
  if (disc.TheDisc.HasFixedSize() && sectors > disc.TheDisc.DiscSize()) {
    const std::int32_t there = std::max(disc.TheDisc.DiscSize(), 0);
    disc.Host.Note(FileName + ": " + std::to_string(sectors) + " sectors, of which the first " +
                   std::to_string(there) + " fit on the partition");
    sectors = there;
  }
  CopySectors(disc, "Restoring", sectors, [&](std::int32_t first, std::int32_t count) {
    const auto part = static_cast<std::size_t>(count) * kSectorSize;
    std::vector<std::uint8_t> bytes =
        ReadHostFile(FileName, static_cast<std::uint64_t>(SectorOffset(first)), part);
    bytes.resize(part);
    disc.TheDisc.StoreBytes(SectorOffset(first), bytes);
  });
  progress.Close();
  changes.Done();
}

}  // namespace sectorbox
