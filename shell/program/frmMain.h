#pragma once

#include <QHash>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "shell/window/MainWindow.h"

namespace sectorbox {

class CFCommands;
class DirectoryCommands;
class DiscCommands;
class FileCommands;
class HelpCommands;
class Panes;
class PictureCommands;
class ProgramEnd;
class StatusBar;
class ToolsCommands;
class ViewCommands;
class WindowHost;
class XferCommands;

// The main window: the hub of the program. It makes the menus, owns the panes and the command
// classes, and holds what belongs to the window. The commands themselves are in the command
// classes, one class for each menu. Each class connects itself to its entries by their names
// (OnCommand).
//
// disc, host and end outlive the window. Between construction and Load nothing is shown and no disc
// is open; Load is the second half of the program's start.
//
// Closing the window ends the program. If a command is at work on the disc, the guard doesn't let
// the program end. The window then refuses to close, and closes when that command has ended.
class frmMain : public MainWindow {
  Q_OBJECT

 public:
  frmMain(Disc& disc, WindowHost& host, ProgramEnd& end);
  ~frmMain() override;

  // Restores the place and the settings, shows the window, makes the scratch disc, clears what
  // earlier drags left, and opens the image that the command line names. commandLine is the rest of
  // the program's command line as it came; its first and last character are the quotes around a
  // path. Throws SettingsError for a setting that doesn't parse, before any disc is open.
  void Load(const std::string& commandLine);

  Disc& OpenDisc() override { return disc_; }
  History& Steps() override { return steps_; }
  Panes& ThePanes() { return *panes_; }
  PictureCommands& Pictures() { return *pictures_; }
  XferCommands& Xfer() { return *xfer_; }
  const XferCommands& Xfer() const { return *xfer_; }
  CFCommands& Cards() { return *cards_; }

  QAction* Action(const char* name) const override;
  CommandGuard& Guard() override { return guard_; }
  [[nodiscard]] StartResult Start(CommandKind kind, const std::function<void()>& work) override;
  void Guarded(const std::function<void()>& work) override;
  void Fail(const QString& reason, const QString& title = QStringLiteral("Sectorbox")) override;
  std::optional<CurrentDirectory> CurrentNode() const override;
  const ListRow* CurrentItem() const override;

  // --- Status bar and caption ------------------------------------------------------------------
  // Panel 1 shows the text, with ", please wait..." if busy. An empty text gives back the normal
  // pointer and shows "Ready". Caption and path are brought up to date.
  void SetStatus(const QString& text, bool busy);
  void SetPanel2(const QString& text) override;
  void ShowStep(const QString& text) override;
  // Shows a line about what happened, in panel 2, over the whole bar until the next path. While the
  // window is closing, the line also goes to standard error.
  void ShowNote(const std::string& line);
  void RefreshCaption() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeMenus();
  void MakeCommands();
  void RunEntry(QAction& entry, const std::function<void()>& command) override;
  void RunGuarded(const std::function<void()>& work);
  // Runs a command that changes the disc. After a HostError the panes show what is on the disc now.
  void RunChange(const std::function<void()>& work);
  void ShowDiscAgain();
  void TellFailure(const std::exception_ptr& failure);
  void OpenFirstImage(const std::string& commandLine);
  // The path of the image that the program's argument names; empty if there is no such file.
  [[nodiscard]] static std::string ImageOfCommandLine(const std::string& commandLine);
  void OpenFromCommandLine(const std::string& commandLine);
  // At the end of the program: the question about unsaved changes, if there are any. If the host
  // refuses the save, a box tells the user, and the question comes once more. If the changes are
  // still unsaved then, Form_Unload keeps them.
  void QuerySaveAtExit();
  void Form_QueryUnload();
  void Form_Unload();
  void KeepOrCloseDisc();

  Disc& disc_;
  History steps_{disc_};
  WindowHost& host_;
  ProgramEnd& end_;
  CommandGuard guard_;
  QHash<QString, QAction*> actions_;
  Panes* panes_ = nullptr;
  StatusBar* status_ = nullptr;
  bool unloaded_ = false;
  bool exitWanted_ = false;  // the user has ended the program while the guard refused it
  QString beforeStep_;       // what panel 2 showed before the step that it shows now
  int pieces_ = 0;           // how many calls of Guarded run, one inside the other
  int refusedSaves_ = 0;     // at the end of the program
  std::unique_ptr<DiscCommands> discCommands_;
  std::unique_ptr<DirectoryCommands> directory_;
  std::unique_ptr<FileCommands> file_;
  std::unique_ptr<HelpCommands> help_;
  std::unique_ptr<ViewCommands> views_;
  std::unique_ptr<PictureCommands> pictures_;
  std::unique_ptr<XferCommands> xfer_;
  std::unique_ptr<ToolsCommands> tools_;
  std::unique_ptr<CFCommands> cards_;
};

}  // namespace sectorbox
