#include "link/windows/frmTrace.h"

#include <QCloseEvent>
#include <QFont>
#include <QTextCursor>

#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

constexpr qsizetype kMostCharacters = 32000;
constexpr qsizetype kDroppedAtOnce = 4096;

// The number of characters in the widget. A line end counts as two, though the widget keeps one
// character for it.
qsizetype LengthOf(const QPlainTextEdit& text) {
  return text.document()->characterCount() - 1 + text.blockCount() - 1;
}

QString TextOf(const QPlainTextEdit& text) {
  return text.toPlainText().replace(u'\n', QStringLiteral("\r\n"));
}

}  // namespace

frmTrace::frmTrace(QWidget* parent)
    : QWidget(parent, Qt::Window), txtTrace_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("frmTrace"));
  setWindowTitle(QStringLiteral("Trace"));
  setAttribute(Qt::WA_DeleteOnClose);
  txtTrace_->setObjectName(QStringLiteral("txtTrace"));
  txtTrace_->setAccessibleName(QStringLiteral("Trace"));
  txtTrace_->setReadOnly(true);
  txtTrace_->setUndoRedoEnabled(false);
  txtTrace_->setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont font(QStringLiteral("Courier New"), 9);
  font.setStyleHint(QFont::Monospace);
  txtTrace_->setFont(font);
  RestorePlace(*this, kTracePlace);
}

void frmTrace::Append(const QString& text) {
  if (LengthOf(*txtTrace_) > kMostCharacters) {
    txtTrace_->setPlainText(TextOf(*txtTrace_).mid(kDroppedAtOnce));
  }
  txtTrace_->moveCursor(QTextCursor::End);
  txtTrace_->insertPlainText(text);
  txtTrace_->moveCursor(QTextCursor::End);
}

void frmTrace::resizeEvent(QResizeEvent*) {
  txtTrace_->setGeometry(rect());
}

void frmTrace::closeEvent(QCloseEvent* event) {
  SavePlace(*this, kTracePlace);
  Q_EMIT Closed();
  event->accept();
}

}  // namespace sectorbox
