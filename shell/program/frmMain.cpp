#include "shell/program/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <cstdio>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Session.h"
#include "shell/commands/CFCommands.h"
#include "shell/commands/DirectoryCommands.h"
#include "shell/commands/DiscCommands.h"
#include "shell/commands/FileCommands.h"
#include "shell/commands/HelpCommands.h"
#include "shell/commands/PictureCommands.h"
#include "shell/commands/ViewCommands.h"
#include "shell/commands/XferCommands.h"
#include "shell/panes/Panes.h"
#include "shell/panes/StatusBar.h"
#include "shell/program/HostFolders.h"
#include "shell/program/Icons.h"
#include "shell/program/MainSettings.h"
#include "shell/program/MenuTable.h"
#include "shell/program/Recovery.h"
#include "shell/program/WindowHost.h"
#include "toolkit/Boxes.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr double kLeastWidth = 3000;  // twips
constexpr int kMostRefusals = 2;

}  // namespace

frmMain::frmMain(Disc& disc, WindowHost& host) : disc_(disc), host_(host) {
  setObjectName(QStringLiteral("frmMain"));
  MakeMenus();
  status_ = new StatusBar(this);
  setStatusBar(status_);
  panes_ = new Panes(*this);
  setCentralWidget(panes_);
  setMinimumSize(PixelsFromTwips(kLeastWidth), 1);
  host_.Attach(this);
  MainWindow = this;
  MakeCommands();
}

frmMain::~frmMain() {
  host_.Attach(nullptr);
  MainWindow = nullptr;
}

void frmMain::MakeMenus() {
  QHash<QString, QMenu*> menus;
  for (const MenuEntry& entry : MenuTable()) {
    const QString name = QString::fromLatin1(entry.Name);
    const QString caption = QString::fromLatin1(entry.Caption);
    QMenu* parent = menus.value(QString::fromLatin1(entry.Parent));
    QAction* action = nullptr;
    if (entry.Kind == kMenu) {
      auto* menu = parent == nullptr ? menuBar()->addMenu(caption) : parent->addMenu(caption);
      menu->setObjectName(name);
      menus.insert(name, menu);
      action = menu->menuAction();
    } else {
      // A line with a caption would be drawn as the heading of a section.
      action = new QAction(entry.Kind == kSeparator ? QString() : caption, this);
      action->setCheckable(entry.Kind == kCheck);
      action->setSeparator(entry.Kind == kSeparator);
      parent->addAction(action);
    }
    action->setObjectName(name);
    action->setEnabled(!entry.StartsDisabled);
    actions_.insert(name, action);
  }
}

void frmMain::MakeCommands() {
  discCommands_ = std::make_unique<DiscCommands>(*this);
  directory_ = std::make_unique<DirectoryCommands>(*this);
  file_ = std::make_unique<FileCommands>(*this);
  help_ = std::make_unique<HelpCommands>(*this);
  views_ = std::make_unique<ViewCommands>(*this);
  pictures_ = std::make_unique<PictureCommands>(*this);
  xfer_ = std::make_unique<XferCommands>(*this);
  cards_ = std::make_unique<CFCommands>(*this);
}

QAction* frmMain::Action(const char* name) const {
  QAction* action = actions_.value(QString::fromLatin1(name));
  Q_ASSERT_X(action != nullptr, "frmMain::Action", name);
  return action;
}

void frmMain::OnCommand(const char* name, std::function<void()> command) {
  connect(Action(name), &QAction::triggered, this,
          [this, command = std::move(command)] { Guarded(command); });
}

void frmMain::Guarded(const std::function<void()>& work) {
  // Inside another guarded piece, whose events brought us here, its note comes back behind ours.
  const std::string outer = host_.TakeNote();
  ++guards_;
  RunGuarded(work);
  --guards_;
  // Once the window is closing a note goes to standard error, and has done so.
  if (!unloaded_) host_.ShowNoteAgain();
  const bool noted = !host_.TakeNote().empty();
  if (guards_ > 0 && !noted) host_.KeepNote(outer);
}

void frmMain::RunGuarded(const std::function<void()>& work) {
  try {
    work();
  } catch (const HostError& error) {
    host_.SetBusyPointer(false);
    host_.CloseProgress();
    ShowBox(this, FromHost(error.what()), QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
  } catch (const std::exception& error) {
    Fail(FromHost(error.what()));
  }
}

void frmMain::Fail(const QString& reason, const QString& title) {
  host_.SetBusyPointer(false);
  QString text = reason;
  const QString kept = KeepUnsavedDisc(disc_);
  if (!kept.isEmpty()) text += QStringLiteral("\n\n") + kept;
  hide();
  ShowBox(nullptr, text, title, BoxIcon::kCritical);
  EndProgram(1);
}

std::optional<CurrentDirectory> frmMain::CurrentNode() const {
  return panes_->CurrentNode();
}

const ListRow* frmMain::CurrentItem() const {
  return panes_->CurrentItem();
}

void frmMain::SetStatus(const QString& text, bool busy) {
  if (text.isEmpty()) {
    host_.SetBusyPointer(false);
    status_->SetText(QStringLiteral("Ready"));
  } else {
    status_->SetText(busy ? text + QStringLiteral(", please wait...") : text);
  }
  RefreshCaption();
  SetPanel2(FromBbc(panes_->CurrentDirPath()));
  status_->repaint();
}

void frmMain::SetPanel2(const QString& text) {
  status_->SetPath(text);
}

void frmMain::ShowNote(const std::string& line) {
  status_->SetNote(FromHost(line));
  if (unloaded_) std::fprintf(stderr, "%s\n", line.c_str());
}

void frmMain::RefreshCaption() {
  setWindowTitle(QStringLiteral("Sectorbox - ") + FromHost(disc_.ImageName) +
                 (disc_.ImageChanged ? QStringLiteral("*") : QString()));
}

void frmMain::Load(const std::string& commandLine) {
  RestorePlace(*this, kMainPlace);
  disc_.ImageName = ToHost(SettingsStore().GetString("Root", QStringLiteral("C:\\")));
  panes_->Tree().setFocus();
  show();
  LoadSettings(*this);
  Guarded([&] {
    disc_.ImageName = "NewDisc.adl";
    CreateDisc(disc_, disc_.ImageName, 80, 2, 16, kAdl);
    panes_->RebuildTree();
    RemoveHostTree(GetTempFolder() + "adfs_temp");
    panes_->ResetDragFolders();
    OpenFromCommandLine(commandLine);
  });
}

// Whoever starts the program puts quotes around the path; they are cut off without a look, so a
// path that comes without them loses its own first and last character and isn't found.
void frmMain::OpenFromCommandLine(const std::string& commandLine) {
  if (commandLine.size() < 3) return;
  const std::string path = commandLine.substr(1, commandLine.size() - 2);
  if (HostFileExists(path)) OpenImage(disc_, path);
}

void frmMain::closeEvent(QCloseEvent* event) {
  event->accept();
  if (unloaded_) return;
  unloaded_ = true;
  Form_QueryUnload();
  Form_Unload();
}

// Closing can't be cancelled: the question is only whether to save first.
void frmMain::Form_QueryUnload() {
  QuerySaveAtExit();
}

void frmMain::QuerySaveAtExit() {
  if (!disc_.ImageChanged || refusedSaves_ == kMostRefusals) return;
  Guarded([this] { QuerySaveChanges(disc_); });
  if (disc_.ImageChanged) ++refusedSaves_;
}

// The user wanted the changes saved and the host took them nowhere: they go to the recovery file.
// A .dat or a card is written through, but its last blocks only when it is closed; the boot option
// changes them without ImageChanged.
void frmMain::KeepOrCloseDisc() {
  if (disc_.TheDisc.InMemory()) {
    const QString kept = KeepUnsavedDisc(disc_);
    if (!kept.isEmpty()) ShowBox(this, kept, QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
  } else if (!disc_.ImageChanged) {
    disc_.TheDisc.CloseFile();
  }
}

void frmMain::Form_Unload() {
  QuerySaveAtExit();
  Guarded([this] { KeepOrCloseDisc(); });
  Guarded([this] { xfer_->ClosePort(); });
  SavePlace(*this, kMainPlace);
  SaveSettings(*this);
  Guarded([this] { xfer_->CloseTrace(); });
  EndProgram(0);
}

}  // namespace sectorbox
