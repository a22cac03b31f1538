#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/format/Entry.h"
#include "disc/store/Disc.h"

// What the panes show, as plain values: the tree of directories and the rows of one directory.
namespace sectorbox {

// A node of the directory tree. Nodes stand in the order of the walk, so a parent comes before its
// children; node 0 is the root.
struct TreeNode {
  std::string Text;          // the name in the entry; for the root, the directory's own name
  std::int32_t Tag = 0;      // the directory's start sector
  std::int32_t Parent = -1;  // index of the parent node, -1 for the root
  bool Open = false;         // has children: the icon is "open", else "closed"
};

struct WalkCounts {
  std::int32_t FileCount = 0;
  std::int32_t DirCount = 0;
};

// Walks the directory at sector depth first and appends a node for each of its subdirectories,
// below the node with that index of tree. The entries that it meets are added to counts. A
// directory without its mark adds nothing. At the top level (sector 2) the host's event pump runs
// after each child. On a damaged disc a directory may be listed more than once: it then gets a node
// wherever it is listed, but only the first of them gets its children. The bounds of
// WalkDirectories hold, and a tree has at most kMaxWalkDirectories nodes; where one of them is
// reached, a note says so (StatusLine::NoteLeftOut).
void FindFiles(Disc& disc, std::vector<TreeNode>& tree, std::int32_t index, std::int32_t sector,
               WalkCounts& counts);

// The whole tree from the root on.
[[nodiscard]] std::vector<TreeNode> WalkTree(Disc& disc);

// The columns of a row.
enum ListColumn { kColName, kColAttr, kColSeq, kColLoad, kColExec, kColSize, kColSector, kColumns };
inline constexpr std::array<const char*, kColumns> kColumnHeadings = {
    "Filename", "Attr", "Seq", "Load", "Exec", "Size", "Sector"};

// A row of the file list: an entry with its seven columns as text. A directory's start sector
// stands under Load, and its last three columns are empty. MakeRow fills all fields at once. When
// the entry changes, the caller makes another row.
struct ListRow {
  Entry Item;
  std::array<std::string, kColumns> Columns;

  [[nodiscard]] const std::string& Name() const { return Columns[kColName]; }
  [[nodiscard]] const std::string& Attr() const { return Columns[kColAttr]; }
  [[nodiscard]] bool IsDirectory() const { return Item.IsDirectory(); }
  // "F" or "D" and the name.
  [[nodiscard]] std::string Key() const { return (IsDirectory() ? "D" : "F") + Name(); }
  // Start sector of the file or directory.
  [[nodiscard]] std::int32_t StartSector() const { return Item.Start(); }
  // Length in bytes: the length field of a file, 1280 for a directory.
  [[nodiscard]] std::uint32_t Length() const { return Item.Size(); }
};

// The rows of the directory at dirSector, in directory order; none if it has no mark.
[[nodiscard]] std::vector<ListRow> ReadRows(Disc& disc, std::int32_t dirSector);
// The row of an entry that the caller has read.
[[nodiscard]] ListRow MakeRow(const Entry& entry);
// The row of the entry in a slot of the directory at dirSector.
[[nodiscard]] ListRow ReadRow(Disc& disc, std::int32_t dirSector, std::int32_t slot);

// What FindPath has found. The fields behind Found mean nothing if nothing was found.
struct PathTarget {
  bool Found = false;
  bool IsDirectory = false;
  std::int32_t DirSector = -1;  // the directory that holds the entry; -1 for the root itself
  std::int32_t Slot = -1;       // the entry's slot; -1 for the root itself
  std::int32_t Sector = -1;     // start sector of what was found
  std::string Name;             // the entry's name as it stands; "$" for the root
};
// Looks for a path from the root, such as "$.GAMES.ELITE", without regard to case. The leading "$."
// may be left out; "" and "$" are the root. A name that holds a dot itself is found too: where a
// path can be read in several ways, the one with the shortest first name counts.
[[nodiscard]] PathTarget FindPath(Disc& disc, const std::string& path);

}  // namespace sectorbox
