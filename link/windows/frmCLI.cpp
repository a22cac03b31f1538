#include "link/windows/frmCLI.h"

#include <QApplication>
#include <QFont>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextCursor>
#include <utility>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "link/transfer/StarCommand.h"
#include "toolkit/Boxes.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr double kCommandHeight = 375;  // twips

}  // namespace

frmCLI::frmCLI(Link& link, AskFindText find, QWidget* parent)
    : QDialog(parent),
      link_(link),
      find_(std::move(find)),
      txtCmd_(new QLineEdit(this)),
      rtbCLI_(new QPlainTextEdit(this)),
      menuBar_(new QMenuBar(this)) {
  setObjectName(QStringLiteral("frmCLI"));
  setWindowTitle(QStringLiteral("* Commands"));
  txtCmd_->setObjectName(QStringLiteral("txtCmd"));
  txtCmd_->installEventFilter(this);
  rtbCLI_->setObjectName(QStringLiteral("rtbCLI"));
  rtbCLI_->setReadOnly(true);
  QFont font(QStringLiteral("Courier New"), 10);
  font.setStyleHint(QFont::Monospace);
  rtbCLI_->setFont(font);
  MakeMenus();
  txtCmd_->setFocus();
  RestorePlace(*this, kCLIPlace);
}

frmCLI::~frmCLI() {
  SavePlace(*this, kCLIPlace);
}

void frmCLI::MakeMenus() {
  QMenu* file = menuBar_->addMenu(QStringLiteral("&File"));
  AddEntry(file, "mnuFileSave", "&Save File...", &frmCLI::mnuFileSave_Click);
  AddEntry(file, "mnuFilePrint", "&Print File", &frmCLI::mnuFilePrint_Click);
  AddEntry(file, "mnuFileClose", "&Close", &frmCLI::mnuFileClose_Click);
  QMenu* edit = menuBar_->addMenu(QStringLiteral("&Edit"));
  AddEntry(edit, "mnuEditFind", "&Find...", &frmCLI::mnuEditFind_Click);
  AddEntry(edit, "mnuEditNext", "Find &Next", &frmCLI::mnuEditNext_Click);
  AddEntry(edit, "mnuEditCopy", "&Copy", &frmCLI::mnuEditCopy_Click);
  AddEntry(edit, "mnuEditSelectAll", "Select &All", &frmCLI::mnuEditSelectAll_Click);
}

void frmCLI::AddEntry(QMenu* menu, const char* name, const char* caption, void (frmCLI::*run)()) {
  QAction* action = menu->addAction(QString::fromLatin1(caption));
  action->setObjectName(QString::fromLatin1(name));
  connect(action, &QAction::triggered, this, [this, run] { (this->*run)(); });
}

void frmCLI::resizeEvent(QResizeEvent*) {
  const int menu = menuBar_->sizeHint().height();
  const int strip = PixelsFromTwips(kCommandHeight);
  menuBar_->setGeometry(0, 0, width(), menu);
  txtCmd_->setGeometry(0, menu, width(), strip);
  rtbCLI_->setGeometry(0, menu + strip, width(), std::max(0, height() - menu - strip));
}

void frmCLI::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) QDialog::keyPressEvent(event);
}

bool frmCLI::eventFilter(QObject* watched, QEvent* event) {
  if (watched != txtCmd_ || event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  RunCommand();
  return true;
}

void frmCLI::RunCommand() {
  const bool done = RunStarCommand(link_, ToBbc(txtCmd_->text()),
                                   [this](const std::string& text) { Insert(text); });
  if (!done) return;  // the command stays, ready to be mended
  txtCmd_->clear();
  rtbCLI_->moveCursor(QTextCursor::End);
}

void frmCLI::Insert(const std::string& text) {
  rtbCLI_->moveCursor(QTextCursor::End);
  rtbCLI_->insertPlainText(FromBbc(text));
  rtbCLI_->ensureCursorVisible();
  // The wait for more of the output runs no events: what is here is shown first.
  rtbCLI_->repaint();
}

void frmCLI::mnuFileSave_Click() {
  const std::string path = AskSaveFile(
      this, {"Save File As", "Save File (*.TXT)|*.txt|All Files (*.*)|*.*", "oscli.txt"});
  if (path.empty()) return;
  try {
    OutputFile file = CreateOutputFile(path);
    const QString text = rtbCLI_->toPlainText().replace(u'\n', QStringLiteral("\r\n"));
    file.Write(ToBbc(text) + "\r\n");
    file.Close();
  } catch (const HostError& error) {
    ShowBox(this, FromHost(error.what()), QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
  }
}

void frmCLI::mnuFilePrint_Click() {
  if (QPrinterInfo::defaultPrinter().isNull()) {
    ShowBox(this, QStringLiteral("No printer is set up."), QStringLiteral("Sectorbox"),
            BoxIcon::kExclamation);
    return;
  }
  QPrinter printer(QPrinterInfo::defaultPrinter());
  rtbCLI_->print(&printer);
}

void frmCLI::mnuFileClose_Click() {
  close();
}

qsizetype frmCLI::FindFrom(qsizetype position) {
  const qsizetype found = rtbCLI_->toPlainText().indexOf(findText_, position, Qt::CaseInsensitive);
  if (found < 0 || findText_.isEmpty()) return -1;
  QTextCursor cursor = rtbCLI_->textCursor();
  cursor.setPosition(static_cast<int>(found));
  cursor.setPosition(static_cast<int>(found + findText_.size()), QTextCursor::KeepAnchor);
  rtbCLI_->setTextCursor(cursor);
  return found;
}

void frmCLI::mnuEditFind_Click() {
  lastFound_ = -1;
  const auto text = find_();
  if (!text) return;
  findText_ = *text;
  lastFound_ = FindFrom(0);
  if (lastFound_ == -1) ShowBox(this, QStringLiteral("Text Not Found"));
}

void frmCLI::mnuEditNext_Click() {
  if (lastFound_ != -1) lastFound_ = FindFrom(lastFound_ + 1);
}

void frmCLI::mnuEditCopy_Click() {
  rtbCLI_->copy();
}

void frmCLI::mnuEditSelectAll_Click() {
  rtbCLI_->selectAll();
}

}  // namespace sectorbox
