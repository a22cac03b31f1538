#pragma once

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

namespace sectorbox {

// A label that shortens its text with an ellipsis, so that a long text doesn't make the window
// wider.
class Panel : public QLabel {
 public:
  Panel(const QString& name, Qt::TextElideMode mode, QWidget* parent);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  void SetElide(Qt::TextElideMode mode);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int TextWidth() const;

  Qt::TextElideMode mode_;
};

// sbStatusBar: text, path, current date, current time. The panels are sbStatusBar1 to sbStatusBar4.
class StatusBar : public QStatusBar {
 public:
  explicit StatusBar(QWidget* parent);

  void SetText(const QString& text);  // panel 1
  QString Path() const { return path_->text(); }
  void SetPath(const QString& text);  // panel 2, which takes up the spare width
  // A line about what happened, also in panel 2. The other panels are hidden until the next path,
  // because in a small window they would leave no room for the line.
  void SetNote(const QString& text);

 private:
  void ShowInPanel2(const QString& text, Qt::TextElideMode mode, bool isAlone);
  void ShowClock();

  Panel* text_;
  Panel* path_;
  Panel* date_;
  Panel* time_;
  QTimer clock_;
};

}  // namespace sectorbox
