#include "shell/program/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <cstdio>
#include <utility>

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
#include "shell/commands/ToolsCommands.h"
#include "shell/commands/ViewCommands.h"
#include "shell/commands/XferCommands.h"
#include "shell/panes/Panes.h"
#include "shell/panes/StatusBar.h"
#include "shell/program/Application.h"
#include "shell/program/MainSettings.h"
#include "shell/program/MenuTable.h"
#include "shell/program/ProgramEnd.h"
#include "shell/program/Recovery.h"
#include "shell/program/SerialPorts.h"
#include "shell/program/WindowHost.h"
#include "toolkit/Boxes.h"
#include "toolkit/MenuBars.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr double kLeastWidth = 3000;  // twips
constexpr int kMostRefusals = 2;

}  // namespace

frmMain::frmMain(Disc& disc, WindowHost& host, ProgramEnd& end)
    : disc_(disc), host_(host), end_(end) {
  setObjectName(QStringLiteral("frmMain"));
  MakeMenus();
  status_ = new StatusBar(this);
  setStatusBar(status_);
  panes_ = new Panes(*this, GetTempFolder());
  setCentralWidget(panes_);
  setMinimumSize(PixelsFromTwips(kLeastWidth), 1);
  host_.Attach(this);
  if (auto* application = qobject_cast<Application*>(QCoreApplication::instance())) {
    connect(application, &Application::Failed, this, &frmMain::TellFailure);
  }
  MakeCommands();
}

frmMain::~frmMain() {
  host_.Attach(nullptr);
}

void frmMain::MakeMenus() {
  ShowOverflowArrow(*menuBar());
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
      // A separator gets no caption, because Qt would draw it as the heading of a section.
      action = new QAction(entry.Kind == kSeparator ? QString() : caption, this);
      action->setCheckable(entry.Kind == kCheck);
      action->setSeparator(entry.Kind == kSeparator);
      action->setData(static_cast<int>(entry.Runs));
      parent->addAction(action);
    }
    action->setObjectName(name);
    action->setEnabled(!entry.StartsDisabled);
    actions_.insert(name, action);
  }
}

void frmMain::MakeCommands() {
  discCommands_ = std::make_unique<DiscCommands>(*this, *panes_);
  directory_ = std::make_unique<DirectoryCommands>(*this, *panes_);
  file_ = std::make_unique<FileCommands>(*this, *panes_);
  help_ = std::make_unique<HelpCommands>(*this);
  views_ = std::make_unique<ViewCommands>(*this);
  pictures_ = std::make_unique<PictureCommands>(*this);
  xfer_ = std::make_unique<XferCommands>(*this, *views_, DeviceOfCom);
  cards_ = std::make_unique<CFCommands>(*this, host_.Drives);
  tools_ = std::make_unique<ToolsCommands>(*this, *panes_);
  OnCommand("mnuDiscClose", [this] {
    QuerySaveAtExit();
    exitWanted_ = true;
  });
}

QAction* frmMain::Action(const char* name) const {
  QAction* action = actions_.value(QString::fromLatin1(name));
  Q_ASSERT_X(action != nullptr, "frmMain::Action", name);
  return action;
}

void frmMain::RunEntry(QAction& entry, const std::function<void()>& command) {
  const auto kind = static_cast<CommandKind>(entry.data().toInt());
  if (Start(kind, command) == StartResult::kRan) return;
  QApplication::beep();
  if (entry.isCheckable()) entry.toggle();
  if (kind == CommandKind::kExit) exitWanted_ = true;
}

StartResult frmMain::Start(CommandKind kind, const std::function<void()>& work) {
  if (!guard_.MayStart(kind)) return StartResult::kRefused;
  {
    const CommandGuard::Running running(guard_, kind);
    if (kind == CommandKind::kChange) {
      Guarded([&] { RunChange(work); });
    } else {
      Guarded(work);
    }
  }
  tools_->ShowSteps();
  if (exitWanted_ && guard_.MayStart(CommandKind::kExit)) close();
  return StartResult::kRan;
}

// After a failure of the host, rows and nodes may show what isn't on the disc: the engine has
// dropped the change that failed, and the command hasn't come to the step in which the panes
// follow.
void frmMain::RunChange(const std::function<void()>& work) {
  try {
    work();
  } catch (const HostError&) {
    host_.SetBusyPointer(false);
    host_.CloseProgress();
    ShowDiscAgain();
    throw;
  }
}

void frmMain::ShowDiscAgain() {
  try {
    (void)panes_->ShowDiscAgain();
  } catch (const HostError&) {
    // The disc can't be read either. The panes are empty now, and the user is told of the first
    // failure.
  }
}

void frmMain::Guarded(const std::function<void()>& work) {
  // An event may call this function while an outer call of it runs. The outer call's note is taken
  // now, and is kept again at the end if this call has none of its own.
  const std::string outer = host_.TakeNote();
  ++pieces_;
  RunGuarded(work);
  --pieces_;
  // Once the window is closing, ShowNote has put the note on standard error already.
  if (!unloaded_) host_.ShowNoteAgain();
  const bool noted = !host_.TakeNote().empty();
  if (pieces_ > 0 && !noted) host_.KeepNote(outer);
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

void frmMain::TellFailure(const std::exception_ptr& failure) {
  Guarded([&failure] { std::rethrow_exception(failure); });
}

void frmMain::Fail(const QString& reason, const QString& title) {
  host_.SetBusyPointer(false);
  QString text = reason;
  const QString kept = KeepUnsavedDisc(disc_);
  if (!kept.isEmpty()) text += QStringLiteral("\n\n") + kept;
  hide();
  ShowBox(nullptr, text, title, BoxIcon::kCritical);
  end_.EndProgram(1);
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

void frmMain::ShowStep(const QString& text) {
  if (text.isEmpty()) {
    SetPanel2(std::exchange(beforeStep_, {}));
    return;
  }
  if (beforeStep_.isNull()) beforeStep_ = status_->Path();
  status_->SetNote(text);
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
  (void)Start(CommandKind::kChange, [&] {
    OpenFirstImage(commandLine);
    panes_->RebuildTree();
    RemoveHostTree(GetTempFolder() + "adfs_temp");
    panes_->ResetDragFolders();
    OpenFromCommandLine(commandLine);
  });
}

// The blank image has the name of a file in the current folder, and what is there is read. If the
// user has named an image, a file there that can't be read doesn't keep that image from opening.
void frmMain::OpenFirstImage(const std::string& commandLine) {
  try {
    OpenBlankImage(disc_);
  } catch (const HostError&) {
    if (ImageOfCommandLine(commandLine).empty()) throw;
  }
}

// The desktop puts quotes around the path. This cuts the first and the last character off without
// looking at them, so a path without quotes loses two characters of its own and isn't found.
std::string frmMain::ImageOfCommandLine(const std::string& commandLine) {
  if (commandLine.size() < 3) return "";
  const std::string path = commandLine.substr(1, commandLine.size() - 2);
  return HostFileExists(path) ? path : "";
}

void frmMain::OpenFromCommandLine(const std::string& commandLine) {
  const std::string path = ImageOfCommandLine(commandLine);
  if (!path.empty()) OpenImage(disc_, path);
}

void frmMain::closeEvent(QCloseEvent* event) {
  event->accept();
  if (unloaded_) return;
  if (!guard_.MayStart(CommandKind::kExit)) {
    exitWanted_ = true;
    event->ignore();
    return;
  }
  const CommandGuard::Running running(guard_, CommandKind::kExit);
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

// If the user wanted to save and the host refused, the changes go to the recovery file. The changes
// of a .dat or a card are on the medium already, except those in its last two blocks. CloseFile
// writes these. If ImageChanged is set, the question has called CloseFile already, and it has
// failed. If ImageChanged isn't set, there may still be a block to write, because the boot option
// changes a block without setting it.
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
  end_.EndProgram(0);
}

}  // namespace sectorbox
