#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace sectorbox {

// The trace in a window. The user can't type into it. It keeps about 32000 characters, and deletes
// itself when it closes; the log file goes on without it.
class frmTrace : public QWidget {
  Q_OBJECT

 public:
  explicit frmTrace(QWidget* parent);

  // Adds text at the end. Its lines end with CR LF, which count as two characters.
  void Append(const QString& text);

 Q_SIGNALS:
  // The user has closed the window. It is deleted after this signal.
  void Closed();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QPlainTextEdit* txtTrace_;
};

}  // namespace sectorbox
