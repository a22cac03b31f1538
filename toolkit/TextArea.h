#pragma once

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QString>
#include <string>
#include <vector>

namespace sectorbox {

// How a stretch of text looks.
struct TextLook {
  bool Underline = false;
  bool Bold = false;
  bool operator==(const TextLook&) const = default;
};

// The text area of a window, for reading and selecting, in Courier New. Positions count characters
// from 0; a line end is one.
//
// The area gathers what is appended and shows it a few dozen times a second. That looks as live as
// a change for each line and costs a hundredth of it. Every function here that looks at the text
// sees all of it.
class TextArea : public QPlainTextEdit {
  Q_OBJECT

 public:
  TextArea(QWidget* parent, double pointSize);

  // Appends BBC bytes whose line ends are CR LF. The caret goes to the end.
  void AppendText(const std::string& text, const TextLook& look);
  // Shows what was gathered.
  void Flush();

  // The whole text, line ends as CR LF.
  QString WholeText();
  int Length();
  int SelStart() const { return textCursor().selectionStart(); }
  void SetCaret(int position);
  // Selects the first match at or behind from, wherever in a line and in upper or lower case, and
  // gives its position; -1 when there is none, or nothing to look for.
  int Find(const QString& text, int from);
  // The selection, line ends as LF.
  QString SelectedText();
  void SelectEverything();

 Q_SIGNALS:
  // The user has pressed a key or released the mouse button, and may so have moved the caret.
  void CaretMovedByHand();

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  struct Run {
    TextLook Look;
    std::string Text;
  };

  std::vector<Run> pending_;
  std::size_t pendingBytes_ = 0;
  QElapsedTimer sinceFlush_;
};

}  // namespace sectorbox
