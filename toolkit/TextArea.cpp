#include "toolkit/TextArea.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr qint64 kFlushMilliseconds = 25;
// Qt needs a few milliseconds for this much text.
constexpr std::size_t kFlushBytes = 65536;
// A line of this many characters keeps its layout, which takes some thirty bytes a character.
constexpr int kLongLine = 4096;
constexpr QChar kBlockEnd = QChar::ParagraphSeparator;

QFont AreaFont(double pointSize) {
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  font.setPointSizeF(pointSize);
  return font;
}

QTextCharFormat FormatOf(const TextLook& look) {
  QTextCharFormat format;
  format.setFontUnderline(look.Underline);
  format.setFontWeight(look.Bold ? QFont::Bold : QFont::Normal);
  return format;
}

// A file without line ends is one line of up to the disc's size. Qt lays a line out anew for every
// drawing and every move of the caret, which costs a sixth of a second for a million characters.
// Long lines therefore keep their layout.
void KeepLongLayouts(QTextBlock block) {
  for (; block.isValid(); block = block.next()) {
    if (block.length() >= kLongLine) block.layout()->setCacheEnabled(true);
  }
}

}  // namespace

TextArea::TextArea(QWidget* parent, double pointSize) : QPlainTextEdit(parent) {
  setFont(AreaFont(pointSize));
  setReadOnly(true);
  setUndoRedoEnabled(false);
  sinceFlush_.start();
}

void TextArea::AppendText(const std::string& text, const TextLook& look) {
  if (pending_.empty() || pending_.back().Look != look) pending_.push_back({look, {}});
  pending_.back().Text += text;
  pendingBytes_ += text.size();
  if (pendingBytes_ >= kFlushBytes || sinceFlush_.elapsed() >= kFlushMilliseconds) Flush();
}

void TextArea::Flush() {
  if (pending_.empty()) return;
  const std::vector<Run> runs = std::move(pending_);
  pending_.clear();
  pendingBytes_ = 0;
  QTextCursor cursor(document());
  cursor.movePosition(QTextCursor::End);
  const QTextBlock first = cursor.block();
  cursor.beginEditBlock();
  for (const Run& run : runs) cursor.insertText(FromBbc(run.Text), FormatOf(run.Look));
  KeepLongLayouts(first);
  cursor.endEditBlock();
  setTextCursor(cursor);
  sinceFlush_.restart();
}

// Qt's toPlainText would give blanks for the BBC's bytes 160.
QString TextArea::WholeText() {
  Flush();
  QString text = document()->toRawText();
  return text.replace(kBlockEnd, QStringLiteral("\r\n"));
}

int TextArea::Length() {
  Flush();
  return document()->characterCount() - 1;
}

void TextArea::SetCaret(int position) {
  Flush();
  QTextCursor cursor(document());
  cursor.setPosition(position);
  setTextCursor(cursor);
  horizontalScrollBar()->setValue(0);
}

int TextArea::Find(const QString& text, int from) {
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

QString TextArea::SelectedText() {
  return textCursor().selectedText().replace(kBlockEnd, QLatin1Char('\n'));
}

void TextArea::SelectEverything() {
  Flush();
  QTextCursor cursor(document());
  cursor.setPosition(0);
  cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
  setTextCursor(cursor);
}

// A QPlainTextEdit takes Ctrl+C and Ctrl+A for itself. Here they belong to the window's menu.
bool TextArea::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    event->ignore();
    return false;
  }
  return QPlainTextEdit::event(event);
}

void TextArea::keyPressEvent(QKeyEvent* event) {
  QPlainTextEdit::keyPressEvent(event);
  Q_EMIT CaretMovedByHand();
}

void TextArea::mouseReleaseEvent(QMouseEvent* event) {
  QPlainTextEdit::mouseReleaseEvent(event);
  Q_EMIT CaretMovedByHand();
}

}  // namespace sectorbox
