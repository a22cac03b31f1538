#pragma once

#include <string>

#include "viewers/table/TextViews.h"

class QAction;

namespace sectorbox {

class MainWindow;

// The names of a text view's menu entries: the menu's stem and the view's name, such as mnuDiscMap,
// mnuFileViewCat, mnuDirectoryCat.
[[nodiscard]] std::string DiscEntryOf(const TextViewKind& kind);
[[nodiscard]] std::string DirectoryEntryOf(const TextViewKind& kind);
[[nodiscard]] std::string FileEntryOf(const TextViewKind& kind);

// The entry of that name; null if the menu tree has none. A view without an entry can be run by the
// command line only.
[[nodiscard]] QAction* FindViewEntry(const MainWindow& window, const std::string& name);

}  // namespace sectorbox
