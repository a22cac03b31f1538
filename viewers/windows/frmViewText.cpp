#include "viewers/windows/frmViewText.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr qint64 kFlushMilliseconds = 25;
// Putting in this much takes a few milliseconds.
constexpr std::size_t kFlushBytes = 65536;
// A line from here on is worth keeping laid out, at some thirty bytes a character.
constexpr int kLongLine = 4096;
constexpr QChar kBlockEnd = QChar::ParagraphSeparator;

QFont ViewFont() {
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  font.setPointSizeF(9.75);
  return font;
}

QTextCharFormat FormatOf(const TextStyle& style) {
  QTextCharFormat format;
  format.setFontUnderline(style.UnderlineOn);
  format.setFontWeight(style.BoldOn ? QFont::Bold : QFont::Normal);
  return format;
}

// A file without line ends is one line of up to the disc's size. The area lays a line out anew for
// every drawing and every move of the caret, which costs a sixth of a second for a million
// characters; long lines therefore keep their layout.
void KeepLongLayouts(QTextBlock block) {
  for (; block.isValid(); block = block.next()) {
    if (block.length() >= kLongLine) block.layout()->setCacheEnabled(true);
  }
}

bool Same(const TextStyle& a, const TextStyle& b) {
  return a.UnderlineOn == b.UnderlineOn && a.BoldOn == b.BoldOn;
}

}  // namespace

ViewText::ViewText(QWidget* parent) : QPlainTextEdit(parent) {
  setFont(ViewFont());
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setLineWrapMode(NoWrap);
  setUndoRedoEnabled(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setFrameShape(QFrame::NoFrame);
  sinceFlush_.start();
}

void ViewText::AppendText(const std::string& text, const TextStyle& style) {
  if (pending_.empty() || !Same(pending_.back().Style, style)) pending_.push_back({style, {}});
  pending_.back().Text += text;
  pendingBytes_ += text.size();
  if (pendingBytes_ >= kFlushBytes || sinceFlush_.elapsed() >= kFlushMilliseconds) Flush();
}

void ViewText::Flush() {
  if (pending_.empty()) return;
  const std::vector<Run> runs = std::move(pending_);
  pending_.clear();
  pendingBytes_ = 0;
  QTextCursor cursor(document());
  cursor.movePosition(QTextCursor::End);
  const QTextBlock first = cursor.block();
  cursor.beginEditBlock();
  for (const Run& run : runs) cursor.insertText(FromBbc(run.Text), FormatOf(run.Style));
  KeepLongLayouts(first);
  cursor.endEditBlock();
  setTextCursor(cursor);
  sinceFlush_.restart();
}

// toPlainText would give blanks for the BBC's bytes 160.
QString ViewText::WholeText() {
  Flush();
  QString text = document()->toRawText();
  return text.replace(kBlockEnd, QStringLiteral("\r\n"));
}

int ViewText::Length() {
  Flush();
  return document()->characterCount() - 1;
}

void ViewText::SetCaret(int position) {
  Flush();
  QTextCursor cursor(document());
  cursor.setPosition(position);
  setTextCursor(cursor);
  horizontalScrollBar()->setValue(0);
}

int ViewText::Find(const QString& text, int from) {
  Flush();
  if (text.isEmpty()) return -1;
  const auto found =
      static_cast<int>(document()->toRawText().indexOf(text, from, Qt::CaseInsensitive));
  if (found < 0) return -1;
  QTextCursor cursor(document());
  cursor.setPosition(found);
  cursor.setPosition(found + static_cast<int>(text.size()), QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  return found;
}

QString ViewText::SelectedText() {
  return textCursor().selectedText().replace(kBlockEnd, QLatin1Char('\n'));
}

void ViewText::SelectEverything() {
  Flush();
  QTextCursor cursor(document());
  cursor.setPosition(0);
  cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
  setTextCursor(cursor);
}

// The area would take Ctrl+C and Ctrl+A for itself; they belong to the menu.
bool ViewText::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    event->ignore();
    return false;
  }
  return QPlainTextEdit::event(event);
}

void ViewText::keyPressEvent(QKeyEvent* event) {
  QPlainTextEdit::keyPressEvent(event);
  if (CaretMovedByHand) CaretMovedByHand();
}

void ViewText::mouseReleaseEvent(QMouseEvent* event) {
  QPlainTextEdit::mouseReleaseEvent(event);
  if (CaretMovedByHand) CaretMovedByHand();
}

}  // namespace sectorbox
