#pragma once

#include <QAction>
#include <QHash>
#include <QMainWindow>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"

namespace sectorbox {

class CFCommands;
class DirectoryCommands;
class DiscCommands;
class FileCommands;
class HelpCommands;
class Panes;
class PictureCommands;
class StatusBar;
class ViewCommands;
class WindowHost;
class XferCommands;

// The directory whose entries the list shows.
struct CurrentDirectory {
  std::int32_t Tag = 0;  // its start sector
  std::string Text;      // the node's text
};

// The main window: the hub of the program. It makes the menus, owns the panes and the command
// classes, and holds what belongs to the window. What a command does stands in the command classes,
// one for each menu, which connect themselves to the entries by name (OnCommand).
//
// disc and host outlive the window. Between construction and Load nothing is shown and no disc is
// open; Load is the second half of the program's start.
class frmMain : public QMainWindow {
  Q_OBJECT

 public:
  frmMain(Disc& disc, WindowHost& host);
  ~frmMain() override;

  // The one main window, null when there is none.
  static inline frmMain* MainWindow = nullptr;

  // Restores the place and the settings, shows the window, makes the scratch disc, clears what
  // earlier drags left, and opens the image that the command line names. commandLine is the rest of
  // the program's command line as it came; its first and last character are the quotes around a
  // path. Throws SettingsError for a setting that doesn't parse, before any disc is open.
  void Load(const std::string& commandLine);

  Disc& TheDisc() { return disc_; }
  WindowHost& Host() { return host_; }
  Panes& ThePanes() { return *panes_; }
  ViewCommands& Views() { return *views_; }
  PictureCommands& Pictures() { return *pictures_; }
  XferCommands& Xfer() { return *xfer_; }
  CFCommands& Cards() { return *cards_; }

  // --- Menus -----------------------------------------------------------------------------------
  // The entry of that name; for a menu, the action that opens it. The name must exist.
  QAction* Action(const char* name) const;
  // Runs what is given each time the entry is chosen, guarded as Guarded does.
  void OnCommand(const char* name, std::function<void()> command);
  // The check mark of an option, its only home while the program runs.
  bool Checked(const char* name) const { return Action(name)->isChecked(); }
  // Runs a piece of a command: a HostError becomes a box with its text and leaves the window alive;
  // any other failure ends the program by way of Fail. What the engine noted meanwhile (DiscHost::
  // Note) stands in panel 2 afterwards, also where the refilled panes have put their path there.
  void Guarded(const std::function<void()>& work);
  // At the end of the program: the question about unsaved changes, if there are any. A save that
  // the host refused is told and asked about again, but only once; Form_Unload keeps what is then
  // still unsaved.
  void QuerySaveAtExit();
  // The program can't go on: an unsaved disc in memory goes to a recovery file, the user is told
  // the reason and where, and the program ends.
  void Fail(const QString& reason, const QString& title = QStringLiteral("Sectorbox"));

  // --- What is current -------------------------------------------------------------------------
  // Empty only while no tree exists.
  std::optional<CurrentDirectory> CurrentNode() const;
  // The row that commands on one row act on; null after the list was cleared and in an empty
  // directory. Valid until the list is filled again.
  const ListRow* CurrentItem() const;

  // --- Status bar and caption ------------------------------------------------------------------
  // Panel 1 shows the text, with ", please wait..." if busy. An empty text gives back the normal
  // pointer and shows "Ready". Caption and path are brought up to date.
  void SetStatus(const QString& text, bool busy);
  void SetPanel2(const QString& text);
  // A line of what happened, in panel 2 and over the whole bar until the next path; on standard
  // error once the window is closing.
  void ShowNote(const std::string& line);
  void RefreshCaption();

  // --- Serial link -----------------------------------------------------------------------------
  // The number of the serial port: setting "ComPort".
  std::int16_t ComPort() const { return comPort_; }
  void SetComPort(std::int16_t port) { comPort_ = port; }

  // Ends the program at once, without a turn for other windows. main puts a hard exit here, tests
  // note the call.
  std::function<void(int status)> EndProgram = [](int) {};

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeMenus();
  void MakeCommands();
  void RunGuarded(const std::function<void()>& work);
  void OpenFromCommandLine(const std::string& commandLine);
  void Form_QueryUnload();
  void Form_Unload();
  void KeepOrCloseDisc();

  Disc& disc_;
  WindowHost& host_;
  QHash<QString, QAction*> actions_;
  Panes* panes_ = nullptr;
  StatusBar* status_ = nullptr;
  std::int16_t comPort_ = 1;
  bool unloaded_ = false;
  int guards_ = 0;        // how deep Guarded is in itself
  int refusedSaves_ = 0;  // at the end of the program
  std::unique_ptr<DiscCommands> discCommands_;
  std::unique_ptr<DirectoryCommands> directory_;
  std::unique_ptr<FileCommands> file_;
  std::unique_ptr<HelpCommands> help_;
  std::unique_ptr<ViewCommands> views_;
  std::unique_ptr<PictureCommands> pictures_;
  std::unique_ptr<XferCommands> xfer_;
  std::unique_ptr<CFCommands> cards_;
};

}  // namespace sectorbox
