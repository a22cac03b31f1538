#pragma once

#include <QMimeData>
#include <memory>
#include <string>
#include <vector>

// The lists of host files that are dragged out and dropped in.
namespace sectorbox {

// Turn host paths into the file list of a drag, and back. Paths keep their bytes, in any encoding.
// PathsOf leaves out what isn't a file of this machine, and gives no path for data without a list.
[[nodiscard]] std::unique_ptr<QMimeData> FileListData(const std::vector<std::string>& paths);
[[nodiscard]] std::vector<std::string> PathsOf(const QMimeData& data);

}  // namespace sectorbox
