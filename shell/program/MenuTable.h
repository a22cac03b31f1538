#pragma once

#include <span>

#include "shell/window/CommandGuard.h"

// The whole menu tree of the main window, as one table.
namespace sectorbox {

enum MenuKind {
  kMenu,      // opens a menu of its own
  kCommand,   // runs something
  kCheck,     // flips its check mark; an option does nothing else when it is chosen
  kSeparator  // a line; it has a name like every entry
};

struct MenuEntry {
  const char* Parent;  // name of the menu that it stands in; empty for the menu bar
  const char* Name;    // the object name of its QAction (and of its QMenu)
  const char* Caption;
  MenuKind Kind = kCommand;
  // Panes::UpdateFileMenu or ToolsCommands::ShowSteps enables it.
  bool StartsDisabled = false;
  CommandKind Runs = CommandKind::kChange;  // what the guard takes the entry's command for
};

// Parents come before their entries; entries stand in the order of the menus. No entry of the main
// window has a shortcut: the panes serve the keys.
[[nodiscard]] std::span<const MenuEntry> MenuTable();

}  // namespace sectorbox
