#include "shell/window/ViewEntries.h"

#include "shell/window/MainWindow.h"

namespace sectorbox {

std::string DiscEntryOf(const TextViewKind& kind) {
  return "mnuDisc" + std::string(kind.Name);
}

std::string DirectoryEntryOf(const TextViewKind& kind) {
  return "mnuDirectory" + std::string(kind.Name);
}

std::string FileEntryOf(const TextViewKind& kind) {
  return "mnuFileView" + std::string(kind.Name);
}

QAction* FindViewEntry(const MainWindow& window, const std::string& name) {
  return window.findChild<QAction*>(QString::fromStdString(name));
}

}  // namespace sectorbox
