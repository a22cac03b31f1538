#include <algorithm>
#include <array>
#include <unordered_set>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

using namespace format;

void WriteHostFile(const std::string& path, const std::string& text) {
  OutputFile file = CreateOutputFile(path, OnMedium::kLater);
  file.Write(text);
  file.Close();
}

class Export {
 public:
  explicit Export(Disc& disc) : disc_(disc) {}

  void WriteDirectory(const std::string& folder, std::int32_t DirSector) {
    if (!Enter(folder, DirSector)) return;
    MakeFolder(folder);
    if (IsDirectory(disc_, DirSector)) WriteEntries(folder, DirSector);
    budget_.Leave();
  }

 private:
  // False for a directory that was met before: on a damaged disc one may be listed by another that
  // lies inside it. Its files have gone out once already, or are about to.
  bool Enter(const std::string& folder, std::int32_t DirSector) {
    if (seen_.insert(DirSector).second && budget_.Enter()) return true;
    disc_.Host.Note(folder + ": leads back to a directory that is exported already");
    return false;
  }

  static void MakeFolder(const std::string& folder) {
    if (!HostFolderExists(folder)) CreateHostFolder(folder);
  }

  void WriteEntries(const std::string& folder, std::int32_t DirSector) {
    HostNamesOfFolder names;
    for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
      const std::string name = GetEntryName(disc_, DirSector, slot);
      if (EntryIsEmpty(name)) break;
      WriteEntry(JoinHostPath(folder, names.Take(name)), name, EntryOffset(DirSector, slot));
    }
  }

  void WriteEntry(const std::string& path, const std::string& name, std::int64_t entry) {
    const std::string attr = GetEntryAttributes(disc_, entry);
    const std::int32_t start = Fetch24(disc_, entry + kEntrySector);
    if (EntryHas(disc_, entry, kAttrDirectory)) {
      WriteDirectorySidecar(path, name, attr);
      WriteDirectory(path, start);
      return;
    }
    ExportFile(
        disc_, path,
        {name, HexDword(disc_, entry + kEntryLoad), HexDword(disc_, entry + kEntryExec),
         HexDword(disc_, entry + kEntryLength), attr, Fetch32(disc_, entry + kEntryLength), start});
  }

  Disc& disc_;
  WalkBudget budget_;
  std::unordered_set<std::int32_t> seen_;
};

}  // namespace

std::uint32_t ReadContents(Disc& disc, std::int32_t Sector, std::uint32_t Length,
                           const std::function<void(std::span<const std::uint8_t>)>& sink) {
  const std::int64_t start = SectorOffset(Sector);
  const std::int64_t held = std::max<std::int64_t>(disc.TheDisc.EndOfData() - start, 0);
  const std::int64_t inside = std::min<std::int64_t>(Length, held);
  std::array<std::uint8_t, 65536> part{};
  for (std::int64_t done = 0; done < inside;) {
    const auto size = std::min<std::int64_t>(inside - done, part.size());
    const auto bytes = std::span(part).first(static_cast<std::size_t>(size));
    disc.TheDisc.FetchBytes(start + done, bytes);
    sink(bytes);
    done += size;
  }
  return static_cast<std::uint32_t>(Length - inside);
}

void WriteContents(Disc& disc, OutputFile& output, std::int32_t Sector, std::uint32_t Length) {
  output.Skip(ReadContents(disc, Sector, Length,
                           [&](std::span<const std::uint8_t> bytes) { output.Write(bytes); }));
}

void ExportFile(Disc& disc, const std::string& hostPath, const ExportedFile& file) {
  OutputFile output = CreateOutputFile(hostPath, OnMedium::kLater);
  WriteContents(disc, output, file.Sector, file.Length);
  output.Close();
  WriteHostFile(hostPath + kSidecarEnding,
                MakeFileSidecar(file.Name, file.Load, file.Exec, file.Size, file.Attr));
}

void WriteDirectorySidecar(const std::string& hostPath, const std::string& Name,
                           const std::string& Attr) {
  WriteHostFile(hostPath + kSidecarEnding, MakeFolderSidecar(Name, Attr));
}

void ExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector) {
  Export(disc).WriteDirectory(Folder, DirSector);
}

void DragDropExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector, void*) {
  ExportFiles(disc, Folder, DirSector);
}

void ExportDisc(Disc& disc, const std::string& Folder, std::int32_t DirSector) {
  const BusyPointer busy(disc.Host);
  ExportFiles(disc, Folder, DirSector);
}

}  // namespace sectorbox
