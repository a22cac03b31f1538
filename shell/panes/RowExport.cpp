#include "shell/panes/RowExport.h"

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

constexpr std::uint32_t kLongestFile = 0x7FFFFFFF;

}  // namespace

ExportedFile FileOfRow(const ListRow& row, const std::string& hostPath) {
  if (row.Length() > kLongestFile) throw HostError(hostPath, "the file's length is too large");
  return {row.Name(), row.Columns[kColLoad], row.Columns[kColExec], row.Columns[kColSize],
          row.Attr(), row.Length(),          row.StartSector()};
}

void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath) {
  if (row.IsDirectory()) {
    WriteDirectorySidecar(hostPath, row.Name(), row.Attr());
    ExportFiles(disc, hostPath, row.StartSector());
  } else {
    ExportFile(disc, hostPath, FileOfRow(row, hostPath));
  }
}

}  // namespace sectorbox
