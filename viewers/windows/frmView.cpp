#include "viewers/windows/frmView.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEventLoop>
#include <QMenuBar>
#include <QMessageBox>

#include "disc/ask/BusyPointer.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "disc/store/OpenDisc.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr double kPointSize = 9.75;

}  // namespace

frmView::frmView(Disc& disc, ViewShared& shared)
    : TextView(shared.Style),
      TextWindow(*this, "rtbView", kPointSize, shared.Search, 0),
      disc_(disc) {
  setObjectName(QStringLiteral("frmView"));
  setWindowTitle(QStringLiteral("View File"));
  SetUpArea();
  MakeMenus();
  RestorePlace(*this, kViewPlace);
}

// The area doesn't wrap lines.
void frmView::SetUpArea() {
  TextArea& area = Area();
  area.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  area.setLineWrapMode(QPlainTextEdit::NoWrap);
  area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  area.setFrameShape(QFrame::NoFrame);
  connect(&area, &TextArea::CaretMovedByHand, this, [this] { FindPos = Area().SelStart(); });
  setCentralWidget(&area);
}

void frmView::MakeMenus() {
  const TextMenus menus = MakeTextMenus(*menuBar());
  const auto name = [](QMenu* menu, const char* text) {
    menu->setObjectName(QLatin1String(text));
    menu->menuAction()->setObjectName(QLatin1String(text));
  };
  name(menus.File, "mnuFile");
  name(menus.Edit, "mnuEdit");
  menus.Find->setShortcut(Qt::CTRL | Qt::Key_F);
  menus.Next->setShortcut(Qt::Key_F3);
  menus.Copy->setShortcut(Qt::CTRL | Qt::Key_C);
  menus.SelectAll->setShortcut(Qt::CTRL | Qt::Key_A);
  menus.Edit->insertSeparator(menus.Copy)->setObjectName(QStringLiteral("mnuEditSep"));
}

void frmView::Show_File(const ViewTarget& target) {
  ToFile = false;
  if (ViewAs) {
    if (!OpenOutput()) return;
    ToFile = true;
  }
  running_ = true;
  RunGenerator(target);
  ShowOnce();
  running_ = false;
  Area().SetCaret(0);
  if (ToFile) close();
  // A second close request while the generator ran has closed the window already.
  if (unloaded_) deleteLater();
}

// The window comes up with the view's first text, since a generator may want it wider before that.
// A window that changes its size between its show and the moment when the window manager has framed
// it loses its place: the inside goes where the frame was, and the window creeps up and to the left
// from one use to the next.
void frmView::ShowOnce() {
  if (ToFile || unloaded_ || shown_) return;
  shown_ = true;
  show();
}

// False if the user has cancelled or the file can't be made. The window then stays loaded and
// hidden.
bool frmView::OpenOutput() {
  OutputName = AskSaveFile(this, TextFileQuestion("*.txt"));
  if (OutputName.empty()) return false;
  try {
    CheckSavePath(OutputName);
    file_.emplace(OutputName);
  } catch (const HostError& error) {
    ShowError(error);
    return false;
  }
  return true;
}

// If the host refuses, this function tells the user itself, because Show_File has to go on to its
// end in every case. An incomplete file doesn't replace the old one.
void frmView::RunGenerator(const ViewTarget& target) {
  try {
    const BusyPointer busy(disc_.Host);
    bool isNumber = false;
    const int number = Tag.toInt(&isNumber);
    const TextViewKind* kind = isNumber ? FindTextView(number) : nullptr;
    if (kind != nullptr) ShowTextView(*kind, disc_, target, *this);
  } catch (const HostError& error) {
    file_.reset();
    ShowOnce();
    Area().Flush();
    ShowError(error);
  }
  Finished = true;
}

void frmView::SetCaption(const std::string& caption) {
  setWindowTitle(FromBbc(caption));
}

// The box isn't modal. A document may show thousands of boxes, and then the user closes the window
// to get out of them. If the view goes to a file, there is no window to close. Then the user closes
// the box and doesn't press OK.
void frmView::ShowMessage(const std::string& text) {
  ShowOnce();
  Area().Flush();
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
  ShowOnce();
  if (text.size() > 1) QCoreApplication::processEvents();
  if (unloaded_) return;
  Area().AppendText(text, {Style.UnderlineOn, Style.BoldOn});
}

// While a generator runs, the first close request only asks it to stop. A second one closes the
// window under the generator, whose text then goes nowhere.
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

void frmView::CheckSavePath(const std::string& path) const {
  RefuseOpenDisc(disc_, path);
}

// The host would take "READ/ME" for a file in a folder.
std::string frmView::SaveName() const {
  return ToHost(FromBbc(AdfsToHostName(DefaultName))) + ".txt";
}

}  // namespace sectorbox
