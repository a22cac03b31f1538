#pragma once

#include <QAction>
#include <QMainWindow>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "disc/undo/History.h"
#include "shell/window/CommandGuard.h"

namespace sectorbox {

// The directory whose entries the list shows.
struct CurrentDirectory {
  std::int32_t Tag = 0;  // its start sector
  std::string Text;      // the node's text
};

enum class StartResult { kRan, kRefused };

// What the panes and the commands know of the main window.
class MainWindow : public QMainWindow {
 public:
  // The disc that the window shows. It outlives the window.
  virtual Disc& OpenDisc() = 0;
  // The steps that have changed the disc. A command that changes it makes one.
  virtual History& Steps() = 0;

  // --- Menus -----------------------------------------------------------------------------------
  // The entry of that name; for a menu, the action that opens it. The name must exist.
  virtual QAction* Action(const char* name) const = 0;
  // True if the option has its check mark. While the program runs, an option is kept nowhere else.
  bool Checked(const char* name) const { return Action(name)->isChecked(); }
  // Runs the command each time the entry is chosen, as Start does with the entry's kind. If Start
  // refuses, the program beeps, and an entry with a check mark keeps the mark that it had.
  template <typename Command>
  void OnCommand(const char* name, Command command) {
    QAction* entry = Action(name);
    connect(entry, &QAction::triggered, this,
            [this, entry, command] { RunEntry(*entry, command); });
  }

  // --- Commands --------------------------------------------------------------------------------
  // Knows which commands run now. Everything that the user starts goes through Start.
  virtual CommandGuard& Guard() = 0;
  // Runs the work that the user has chosen, to its end, as Guarded does. If the guard says that it
  // must not start now, nothing happens and the result is kRefused. A caller that has nothing to
  // undo then may drop the result.
  [[nodiscard]] virtual StartResult Start(CommandKind kind, const std::function<void()>& work) = 0;
  // Runs a piece of a command. A HostError becomes a box with its text, and the window goes on. Any
  // other failure ends the program through Fail. Afterwards panel 2 shows the last line that the
  // engine has noted meanwhile (StatusLine::Note), even if the panes have put their path there.
  virtual void Guarded(const std::function<void()>& work) = 0;
  // The program can't go on. An unsaved disc in memory is written to a recovery file. A box tells
  // the user the reason and where that file is. Then the program ends.
  virtual void Fail(const QString& reason, const QString& title = QStringLiteral("Sectorbox")) = 0;

  // --- What is current -------------------------------------------------------------------------
  // Empty only while no tree exists.
  virtual std::optional<CurrentDirectory> CurrentNode() const = 0;
  // The row that commands on one row act on; null after the list was cleared and in an empty
  // directory. Valid until the list is filled again.
  virtual const ListRow* CurrentItem() const = 0;

  // --- Status bar and caption ------------------------------------------------------------------
  virtual void SetPanel2(const QString& text) = 0;
  // What the program is doing, over the whole bar. An empty text gives panel 2 back what it showed
  // before; it may come only after another one.
  virtual void ShowStep(const QString& text) = 0;
  virtual void RefreshCaption() = 0;

 private:
  virtual void RunEntry(QAction& entry, const std::function<void()>& command) = 0;
};

}  // namespace sectorbox
