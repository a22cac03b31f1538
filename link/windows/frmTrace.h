#pragma once

#include <QPlainTextEdit>
#include <QString>
#include <functional>

namespace sectorbox {

// The trace in a window. It takes no typing, keeps about 32000 characters, and deletes itself when
// it closes; the log file doesn't care.
class frmTrace : public QWidget {
 public:
  // closed is called when the window goes, so that it can be opened again.
  frmTrace(QWidget* parent, std::function<void()> closed);

  // text ends its lines with CR LF, which count as two characters.
  void Append(const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QPlainTextEdit* txtTrace_;
  std::function<void()> closed_;
};

}  // namespace sectorbox
