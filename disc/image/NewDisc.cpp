#include "disc/image/NewDisc.h"

#include <algorithm>
#include <array>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/format/DiscLimits.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/ImageFiles.h"
#include "disc/image/Session.h"
#include "disc/medium/Companion.h"
#include "disc/medium/FileMedium.h"
#include "disc/store/OpenDisc.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr const char* kBlankName = "NewDisc.adl";

constexpr std::int32_t kTracksBetweenPumps = 1024;

// Copies what a file holds from offset on.
void CopyTail(const std::string& fileName, std::uint64_t offset, OutputFile& output) {
  constexpr std::uint64_t kPart = 1 << 20;
  if (!HostFileIsPlain(fileName)) return;
  for (;; offset += kPart) {
    const std::vector<std::uint8_t> part = ReadHostFile(fileName, offset, kPart);
    output.Write(part);
    if (part.size() < kPart) return;
  }
}

// Makes a hard disc image, or replaces one. What a longer file held behind the disc stays there.
void WriteHardDisc(Disc& disc, const std::string& fileName, std::int32_t tracks,
                   std::int32_t sectors) {
  const std::int32_t total = tracks * sectors;
  const std::vector<std::uint8_t> zeros(kMapSize + kDirSize);
  const std::vector<std::uint8_t> front = EmptyDisc(zeros, total);
  RequireNoJournal(fileName);
  OutputFile output = CreateOutputFile(fileName);
  output.Write(front);
  output.Skip(static_cast<std::uint64_t>(SectorOffset(total)) - front.size());
  for (std::int32_t i = 0; i < tracks; i += kTracksBetweenPumps) disc.Host.PumpEvents();
  CopyTail(fileName, static_cast<std::uint64_t>(SectorOffset(total)), output);
  output.Close();
}

std::string AskNewName(Disc& disc, const FileQuestion& question) {
  std::string path = disc.Host.AskSaveFileName(question);
  if (path.empty()) return "";
  if (HostFileExists(path) &&
      !disc.Host.AskYesNo(HostBaseName(path) + " already exists. Do you want to replace it ?",
                          question.Title)) {
    return "";
  }
  disc.ImageName = path;
  disc.Host.RefreshCaption();
  return path;
}

// The dialog of each kind of disc that can be made anew.
struct NewDiscDialog {
  DiscType Type;
  std::string (*Ask)(Disc& disc);
};
constexpr std::array<NewDiscDialog, 3> kDialogs = {
    {{kAdf, NewDiscADF}, {kAdl, NewDiscADL}, {kDat, NewDiscDAT}}};

std::string AskNewName(Disc& disc, DiscType type) {
  const auto dialog = std::find_if(kDialogs.begin(), kDialogs.end(),
                                   [&](const auto& one) { return one.Type == type; });
  return dialog == kDialogs.end() ? "" : dialog->Ask(disc);
}

bool EndsInDat(const std::string& name) {
  return name.size() >= 4 && name.compare(name.size() - 4, 4, ".dat") == 0;
}

}  // namespace

std::vector<std::uint8_t> EmptyDisc(std::span<const std::uint8_t> former, std::int32_t total) {
  MapSectors map(former.first(kMapSize));
  const std::array<FreeRun, 1> runs = {{{kFirstFreeSector, total - kFirstFreeSector}}};
  map.SetDiscSize(total);
  map.SetRuns(runs);
  map.UpdateChecksums();

  Directory::Bytes rootBytes;
  std::ranges::copy(former.subspan(kMapSize), rootBytes.begin());
  Directory root(rootBytes);
  root.SetSequence(1);
  root.SetMarks();
  root.SetName("$\r");
  root.SetTitle("$\r");
  std::vector<std::uint8_t> bytes(map.Raw().begin(), map.Raw().end());
  bytes.insert(bytes.end(), root.Raw().begin(), root.Raw().end());
  return bytes;
}

void WriteEmptyDisc(Disc& disc, std::int32_t total) {
  std::vector<std::uint8_t> former(kMapSize + kDirSize);
  disc.TheDisc.FetchBytes(0, former);
  disc.TheDisc.StoreBytes(0, EmptyDisc(former, total));
}

void CreateDisc(Disc& disc, const std::string& fileName, std::int32_t tracks, std::int32_t heads,
                std::int32_t sectors, DiscType type) {
  // The companion would replace an open disc of its name, or a file that is no companion.
  if (EndsInDat(fileName)) {
    RefuseOpenImage(disc, CompanionName(fileName));
    RequireRoomForCompanion(fileName);
  }
  const BusyPointer busy(disc.Host);
  // The file is made and opened before the old disc's state is lost: a file that can't be opened
  // changes nothing.
  const bool isFile = KindOf(type).HasCompanion;
  if (isFile) {
    if (disc.TheDisc.IsOpenMedium(fileName)) disc.TheDisc.CloseFile();
    WriteHardDisc(disc, fileName, tracks * heads, sectors);
  }
  disc.TheDisc.OpenFile(fileName, type, tracks, heads, sectors);
  ReadFreeMap(disc);
  disc.ImageChanged = false;
  disc.DiscTracks = tracks;
  disc.DiscHeads = heads;
  disc.DiscSectors = sectors;
  if (!isFile) {
    const auto bytes = static_cast<std::size_t>(SectorOffset(tracks * heads * sectors));
    disc.TheDisc.StoreBytes(0, std::vector<std::uint8_t>(bytes));
    disc.Host.PumpEvents();
    WriteEmptyDisc(disc, tracks * heads * sectors);
  }
  ReadFreeMap(disc);
  // Only this spelling counts. A floppy image has no companion.
  if (EndsInDat(fileName)) WriteCompanion(fileName, {tracks, heads});
  NoteTooLarge(disc);
}

void NoteTooLarge(Disc& disc) {
  if (!BbcCanWriteTo(MapDiscSize(disc))) disc.Host.Note(kTooLargeForTheBbc);
}

void OpenBlankImage(Disc& disc) {
  disc.ImageName = kBlankName;
  CreateDisc(disc, disc.ImageName, kBlankDisc.Tracks, kBlankDisc.Heads, kBlankDisc.Sectors,
             kBlankDisc.DiscType);
}

std::string NewDiscADF(Disc& disc) {
  return AskNewName(disc,
                    {"Save ADFS Disc Image As", FilterOfKind("Create Disc", kAdf), "NewDisc.adf"});
}

std::string NewDiscADL(Disc& disc) {
  return AskNewName(disc,
                    {"Create ADFS Disc Image As", FilterOfKind("ADFS Disc", kAdl), kBlankName});
}

std::string NewDiscDAT(Disc& disc) {
  return AskNewName(disc,
                    {"Create ADFS Disc Image As", FilterOfKind("ADFS Disc", kDat), "NewDisc.dat"});
}

void RunNewDisc(Disc& disc, const NewDiscSize& size) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  const std::string former = disc.ImageName;
  const std::string path = AskNewName(disc, size.DiscType);
  if (path.empty()) return;
  try {
    CreateDisc(disc, path, size.Tracks, size.Heads, size.Sectors, size.DiscType);
  } catch (const HostError&) {
    // ImageName goes with the store: it is the former name unless the new file is open already.
    if (disc.TheDisc.FileName() != path) disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

}  // namespace sectorbox
