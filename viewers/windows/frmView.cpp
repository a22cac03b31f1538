#include "viewers/windows/frmView.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QEventLoop>
#include <QMenuBar>
#include <QMessageBox>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextDocument>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "toolkit/Boxes.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

FileQuestion SaveQuestion(const std::string& name) {
  return {"Save File As", "Save File (*.TXT)|*.txt|All Files (*.*)|*.*", name};
}

}  // namespace

frmView::frmView(Disc& disc, ViewShared& shared)
    : TextView(shared.Style), disc_(disc), shared_(shared), rtbView_(new ViewText(this)) {
  setObjectName(QStringLiteral("frmView"));
  setWindowTitle(QStringLiteral("View File"));
  rtbView_->setObjectName(QStringLiteral("rtbView"));
  rtbView_->CaretMovedByHand = [this] { FindPos = rtbView_->SelStart(); };
  setCentralWidget(rtbView_);
  MakeMenus();
  RestorePlace(*this, kViewPlace);
}

void frmView::MakeMenus() {
  const auto addMenu = [this](const char* name, const char* caption) {
    QMenu* menu = menuBar()->addMenu(QLatin1String(caption));
    menu->setObjectName(QLatin1String(name));
    menu->menuAction()->setObjectName(QLatin1String(name));
    return menu;
  };
  const auto add = [this](QMenu* menu, const char* name, const char* caption, auto handler) {
    QAction* action = menu->addAction(QLatin1String(caption));
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this, handler);
    return action;
  };
  QMenu* file = addMenu("mnuFile", "&File");
  add(file, "mnuFileSave", "&Save File...", [this] { mnuFileSave_Click(); });
  add(file, "mnuFilePrint", "&Print File", [this] { mnuFilePrint_Click(); });
  add(file, "mnuFileClose", "&Close", [this] { close(); });
  QMenu* edit = addMenu("mnuEdit", "&Edit");
  add(edit, "mnuEditFind", "&Find...", [this] {
    mnuEditFind_Click();
  })->setShortcut(Qt::CTRL | Qt::Key_F);
  add(edit, "mnuEditNext", "Find &Next", [this] { mnuEditNext_Click(); })->setShortcut(Qt::Key_F3);
  edit->addSeparator()->setObjectName(QStringLiteral("mnuEditSep"));
  add(edit, "mnuEditCopy", "&Copy", [this] {
    mnuEditCopy_Click();
  })->setShortcut(Qt::CTRL | Qt::Key_C);
  add(edit, "mnuEditSelectAll", "Select &All", [this] {
    rtbView_->SelectEverything();
  })->setShortcut(Qt::CTRL | Qt::Key_A);
}

void frmView::Show_File(const ViewTarget& target) {
  ToFile = false;
  if (ViewAs) {
    if (!OpenOutput()) return;
    ToFile = true;
  } else {
    show();
  }
  running_ = true;
  RunGenerator(target);
  running_ = false;
  rtbView_->SetCaret(0);
  if (ToFile) close();
  // A second close request while the generator ran has closed the window already.
  if (unloaded_) deleteLater();
}

// False when the user cancelled or the file can't be made. The window then stays as it is, loaded
// and hidden.
bool frmView::OpenOutput() {
  OutputName = AskSaveFile(this, SaveQuestion("*.txt"));
  if (OutputName.empty()) return false;
  try {
    file_.emplace(OutputName);
  } catch (const HostError& error) {
    ShowError(error);
    return false;
  }
  return true;
}

// What fails here is told here: the window has to come to its end either way. A file that is
// incomplete doesn't replace the old one.
void frmView::RunGenerator(const ViewTarget& target) {
  try {
    const BusyPointer busy(disc_.Host);
    bool isNumber = false;
    const int number = Tag.toInt(&isNumber);
    const TextViewKind* kind = isNumber ? FindTextView(number) : nullptr;
    if (kind != nullptr) ShowTextView(*kind, disc_, target, *this);
  } catch (const HostError& error) {
    file_.reset();
    rtbView_->Flush();
    ShowError(error);
  }
  Finished = true;
}

void frmView::SetCaption(const std::string& caption) {
  setWindowTitle(FromBbc(caption));
}

// The box doesn't hold up other windows, this one least of all: a document may hold thousands of
// what it complains about, and closing the window is the way out. Where there is no window to
// close, because the view goes to a file, closing the box instead of pressing OK is.
void frmView::ShowMessage(const std::string& text) {
  rtbView_->Flush();
  QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Sectorbox"), FromBbc(text), QMessageBox::Ok,
                  this);
  box.setObjectName(QStringLiteral("msgView"));
  box.setTextFormat(Qt::PlainText);
  box.setWindowModality(Qt::NonModal);
  QEventLoop loop;
  connect(&box, &QMessageBox::finished, &loop, &QEventLoop::quit);
  box_ = &box;
  box.show();
  loop.exec();
  if (ToFile && box.clickedButton() == nullptr) Finished = true;
  box_ = nullptr;
}

void frmView::WidenWindow(int twips) {
  resize(width() + PixelsFromTwips(twips), height());
}

void frmView::Append(const std::string& text) {
  if (ToFile) {
    if (file_) file_->Write(text);
    return;
  }
  if (text.size() > 1) QCoreApplication::processEvents();
  if (unloaded_) return;
  rtbView_->AppendText(text, Style);
}

// While a generator runs, the first request only asks it to stop, and a second one closes the
// window under it: its text then goes nowhere.
void frmView::closeEvent(QCloseEvent* event) {
  if (!Finished) {
    Finished = true;
    if (box_) box_->accept();
    event->ignore();
    return;
  }
  if (box_) box_->accept();
  if (!unloaded_) Form_Unload();
  event->accept();
}

void frmView::Form_Unload() {
  unloaded_ = true;
  SavePlace(*this, kViewPlace);
  if (file_) {
    try {
      file_->Close();
    } catch (const HostError& error) {
      ShowError(error);
    }
    file_.reset();
  }
  if (!running_) deleteLater();
}

void frmView::mnuFileSave_Click() {
  // "READ/ME" would be taken for a file in a folder.
  const QString offer = FromBbc(AdfsToHostName(DefaultName));
  const std::string name = AskSaveFile(this, SaveQuestion(ToHost(offer) + ".txt"));
  if (name.empty()) return;
  try {
    TextFile file(name);
    file.Write(ToBbc(rtbView_->WholeText()) + "\r\n");
    file.Close();
  } catch (const HostError& error) {
    ShowError(error);
  }
}

void frmView::mnuFilePrint_Click() {
  if (QPrinterInfo::defaultPrinter().isNull()) {
    ShowBox(this, QStringLiteral("No printer is set up."), QStringLiteral("Sectorbox"),
            BoxIcon::kExclamation);
    return;
  }
  QPrinter printer(QPrinterInfo::defaultPrinter());
  PrintTo(printer);
}

void frmView::PrintTo(QPrinter& printer) {
  QTextDocument document;
  document.setDefaultFont(rtbView_->font());
  document.setPlainText(rtbView_->WholeText() + QStringLiteral("\r\n"));
  printer.setDocName(windowTitle());
  document.print(&printer);
}

void frmView::mnuEditFind_Click() {
  frmFind dialog(this, shared_.Search);
  dialog.exec();
  FindPos = -1;
  if (!shared_.Search.FindOK) return;
  FindPos = rtbView_->Find(shared_.Search.FindText, 0);
  if (FindPos == -1) ShowBox(this, QStringLiteral("Text Not Found"));
}

// Says nothing when there is no further match: then, and after a Find that was cancelled or that
// failed, it does nothing until the next Find.
void frmView::mnuEditNext_Click() {
  if (FindPos != -1) FindPos = rtbView_->Find(shared_.Search.FindText, FindPos + 1);
}

void frmView::mnuEditCopy_Click() {
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(rtbView_->SelectedText());
}

void frmView::ShowError(const std::exception& error) {
  ShowBox(this, FromHost(error.what()), QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
}

}  // namespace sectorbox
