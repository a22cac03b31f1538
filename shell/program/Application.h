#pragma once

#include <QApplication>
#include <exception>

namespace sectorbox {

// The application object. A failure that reaches the event loop, from whichever window, goes to
// Failed. The main window listens, and tells it as it tells those of its own commands: a failure of
// the host is a box and the program goes on, anything else ends it by way of frmMain::Fail. While
// nobody listens the failure goes on to whoever runs the event loop.
class Application : public QApplication {
  Q_OBJECT

 public:
  Application(int& argc, char** argv);

  bool notify(QObject* receiver, QEvent* event) override;

 Q_SIGNALS:
  void Failed(const std::exception_ptr& failure);
};

}  // namespace sectorbox
