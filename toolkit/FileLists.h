#pragma once

#include <QMimeData>
#include <memory>
#include <string>
#include <vector>

// The lists of host files that are dragged out and dropped in.
namespace sectorbox {

// Host paths as the file list of a drag, and back. Paths keep their bytes, in whatever encoding.
// What isn't a file of this machine is left out; data that holds no file list gives none.
std::unique_ptr<QMimeData> FileListData(const std::vector<std::string>& paths);
std::vector<std::string> PathsOf(const QMimeData& data);

}  // namespace sectorbox
