#include "link/windows/frmCLI.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTextCursor>
#include <algorithm>

#include "disc/store/OpenDisc.h"
#include "link/transfer/StarCommand.h"
#include "toolkit/Text.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr double kCommandHeight = 375;  // twips
constexpr double kPointSize = 10;
constexpr int kWaitingMargin = 6;

}  // namespace

frmCLI::frmCLI(Link& link, const Disc& disc, TextSearch& search, QWidget* parent)
    : QDialog(parent),
      TextWindow(*this, "rtbCLI", kPointSize, search, -1),
      link_(link),
      disc_(disc),
      txtCmd_(new QLineEdit(this)),
      lblWaiting_(new QLabel(QStringLiteral("waiting"), txtCmd_)),
      menuBar_(new QMenuBar(this)) {
  setObjectName(QStringLiteral("frmCLI"));
  setWindowTitle(QStringLiteral("* Commands"));
  txtCmd_->setObjectName(QStringLiteral("txtCmd"));
  txtCmd_->setPlaceholderText(QStringLiteral("CAT (no star needed)"));
  txtCmd_->setAccessibleName(QStringLiteral("Star command"));
  txtCmd_->installEventFilter(this);
  lblWaiting_->setObjectName(QStringLiteral("lblWaiting"));
  lblWaiting_->setAutoFillBackground(true);
  lblWaiting_->setBackgroundRole(QPalette::Base);
  lblWaiting_->hide();
  Area().setAccessibleName(QStringLiteral("What the BBC has printed"));
  MakeTextMenus(*menuBar_);
  txtCmd_->setFocus();
  RestorePlace(*this, kCLIPlace);
}

frmCLI::~frmCLI() {
  SavePlace(*this, kCLIPlace);
}

void frmCLI::resizeEvent(QResizeEvent*) {
  const int menu = menuBar_->sizeHint().height();
  // In a large font the line needs more than its strip.
  const int strip = std::max(PixelsFromTwips(kCommandHeight), txtCmd_->minimumSizeHint().height());
  menuBar_->setGeometry(0, 0, width(), menu);
  txtCmd_->setGeometry(0, menu, width(), strip);
  Area().setGeometry(0, menu + strip, width(), std::max(0, height() - menu - strip));
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
  ShowWaiting(true);
  const bool done = RunStarCommand(link_, ToBbc(txtCmd_->text()),
                                   [this](const std::string& text) { Insert(text); });
  ShowWaiting(false);
  if (!done) return;  // the command stays, so that the user can correct it
  txtCmd_->clear();
  Area().moveCursor(QTextCursor::End);
}

// No events run in most of the wait, so the line is painted now.
void frmCLI::ShowWaiting(bool waiting) {
  const QSize size = lblWaiting_->sizeHint();
  lblWaiting_->setGeometry(txtCmd_->width() - size.width() - kWaitingMargin,
                           (txtCmd_->height() - size.height()) / 2, size.width(), size.height());
  lblWaiting_->setVisible(waiting);
  txtCmd_->repaint();
}

void frmCLI::Insert(const std::string& text) {
  Area().AppendText(text, {});
  Area().Flush();
  Area().ensureCursorVisible();
  // No events run while the console waits for more output. So the area is painted now.
  Area().repaint();
}

void frmCLI::CheckSavePath(const std::string& path) const {
  RefuseOpenDisc(disc_, path);
}

// If nothing is selected, the clipboard stays as it is.
void frmCLI::mnuEditCopy_Click() {
  Area().copy();
}

}  // namespace sectorbox
