#pragma once

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "viewers/text/TextView.h"

namespace sectorbox {

// The text area of a view: lines that aren't wrapped, in a fixed font, for reading and selecting.
// Positions count characters from 0; a line end is one.
//
// Appended text is gathered and put into the area a few dozen times a second, since that many
// changes are as live as a change for each line and cost a hundredth of it. Everything here that
// looks at the text sees all of it.
class ViewText : public QPlainTextEdit {
 public:
  explicit ViewText(QWidget* parent);

  // The user moved the caret, by key or by mouse.
  std::function<void()> CaretMovedByHand;

  // At the end, with BBC bytes whose line ends are CR LF. The caret goes to the end.
  void AppendText(const std::string& text, const TextStyle& style);
  // Puts in what was gathered.
  void Flush();

  // All of it, line ends as CR LF.
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

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  struct Run {
    TextStyle Style;
    std::string Text;
  };

  std::vector<Run> pending_;
  std::size_t pendingBytes_ = 0;
  QElapsedTimer sinceFlush_;
};

}  // namespace sectorbox
