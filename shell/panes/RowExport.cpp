#include "shell/panes/RowExport.h"

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

constexpr std::uint32_t kLongestFile = 0x7FFFFFFF;

}  // namespace

void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath) {
  if (!row.IsDirectory() && row.Length() > kLongestFile) {
    throw HostError(hostPath, "the file's length is too large");
  }
  ExportEntry(disc, hostPath, row.Item);
}

}  // namespace sectorbox
