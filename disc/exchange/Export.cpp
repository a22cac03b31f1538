#include <algorithm>
#include <array>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Directories.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Text.h"
#include "disc/host/HostFile.h"
#include "disc/store/OpenDisc.h"

namespace sectorbox {
namespace {

using namespace format;

void WriteSidecar(const Disc& disc, const std::string& hostPath, const std::string& text) {
  OutputFile file = CreateExportFile(disc, hostPath + kSidecarEnding);
  file.Write(text);
  file.Close();
}

void MakeFolder(const std::string& folder) {
  if (!HostFolderExists(folder)) CreateHostFolder(folder);
}

// Writes each directory that the walk comes to into a folder of the host. On a damaged disc the
// walk may come to a directory again; it is exported only once.
class Exporter : public DirectoryVisitor {
 public:
  Exporter(Disc& disc, std::string folder)
      : disc_(disc), left_(2 * disc.TheDisc.EndOfData() + kLeeway), next_(std::move(folder)) {}

  Walk Enter(const WalkStep&, const Directory&) override {
    MakeFolder(next_);
    folders_.push_back({next_, {}});
    return Walk::kOn;
  }

  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    const std::string path =
        JoinHostPath(folders_.back().Path, folders_.back().Names.Take(entry.Name()));
    if (!Spend(entry)) {
      disc_.Host.NoteLeftOut(path +
                             ": the export ends here. On this damaged disc the files add up " +
                             "to more than twice the disc's size");
      return Walk::kStop;
    }
    if (entry.IsDirectory()) {
      WriteDirectorySidecar(disc_, path, entry);
      RemoveHostLink(path);  // or the contents would go to wherever it leads
      next_ = path;
    } else {
      ExportFile(disc_, path, entry);
    }
    return Walk::kOn;
  }

  Walk MeetAgain(const WalkStep&, bool) override { return PassOver(); }
  Walk OutOfBounds(const WalkStep&) override { return PassOver(); }
  void Leave(const WalkStep&) override { folders_.pop_back(); }

 private:
  struct Folder {
    std::string Path;
    HostNamesOfFolder Names;
  };

  // Takes what an entry needs from what is left. False if that isn't enough. The files of a sound
  // disc together with their entries are no longer than the disc. An entry counts twice, as it
  // becomes a file of the host and a sidecar even if it is empty. What an entry claims beyond the
  // disc takes no room on the host.
  bool Spend(const Entry& entry) {
    if (!entry.IsDirectory()) {
      left_ -= std::min<std::int64_t>(entry.Length(), disc_.TheDisc.EndOfData());
    }
    left_ -= std::int64_t{2} * kEntrySize;
    return left_ >= 0;
  }

  Walk PassOver() {
    disc_.Host.Note(next_ + ": leads back to a directory that is exported already");
    return Walk::kOn;
  }

  static constexpr std::int64_t kLeeway = std::int64_t{1} << 20;

  Disc& disc_;
  std::int64_t left_;            // bytes that may still be written
  std::string next_;             // the folder of the directory that the walk comes to next
  std::vector<Folder> folders_;  // of the directories that the walk is in, the top one first
};

}  // namespace

std::uint32_t ReadContents(Disc& disc, std::int32_t sector, std::uint32_t length,
                           const std::function<void(std::span<const std::uint8_t>)>& sink) {
  const std::int64_t start = SectorOffset(sector);
  const std::int64_t held = std::max<std::int64_t>(disc.TheDisc.EndOfData() - start, 0);
  const std::int64_t inside = std::min<std::int64_t>(length, held);
  std::array<std::uint8_t, 65536> part{};
  for (std::int64_t done = 0; done < inside;) {
    const auto size = std::min<std::int64_t>(inside - done, part.size());
    const auto bytes = std::span(part).first(static_cast<std::size_t>(size));
    disc.TheDisc.FetchBytes(start + done, bytes);
    sink(bytes);
    done += size;
  }
  return static_cast<std::uint32_t>(length - inside);
}

void WriteContents(Disc& disc, OutputFile& output, std::int32_t sector, std::uint32_t length) {
  output.Skip(ReadContents(disc, sector, length, [&](std::span<const std::uint8_t> bytes) {
    output.WriteWithHoles(bytes);
  }));
}

void ExportFile(Disc& disc, const std::string& hostPath, const Entry& file) {
  OutputFile output = CreateExportFile(disc, hostPath);
  WriteContents(disc, output, file.Start(), file.Length());
  output.Close();
  WriteSidecar(disc, hostPath,
               MakeFileSidecar(file.Name(), Hex(file.Load(), 8), Hex(file.Exec(), 8),
                               Hex(file.Length(), 8), file.Letters()));
}

void WriteDirectorySidecar(const Disc& disc, const std::string& hostPath, const Entry& directory) {
  WriteSidecar(disc, hostPath, MakeFolderSidecar(directory.Name(), directory.Letters()));
}

void ExportEntry(Disc& disc, const std::string& hostPath, const Entry& entry) {
  if (entry.IsDirectory()) {
    WriteDirectorySidecar(disc, hostPath, entry);
    RemoveHostLink(hostPath);
    ExportFiles(disc, hostPath, entry.Start());
  } else {
    ExportFile(disc, hostPath, entry);
  }
}

void ExportFiles(Disc& disc, const std::string& folder, std::int32_t dirSector) {
  Exporter exporter(disc, folder);
  // If the exporter ends the walk, it has said so.
  (void)WalkDirectories(disc, dirSector, exporter);
}

void DragDropExportFiles(Disc& disc, const std::string& folder, std::int32_t dirSector, void*) {
  ExportFiles(disc, folder, dirSector);
}

void ExportDisc(Disc& disc, const std::string& folder, std::int32_t dirSector) {
  const BusyPointer busy(disc.Host);
  ExportFiles(disc, folder, dirSector);
}

}  // namespace sectorbox
