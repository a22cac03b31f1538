#pragma once

#include <QApplication>
#include <exception>

namespace sectorbox {

// The application object. It catches each exception that reaches the event loop from any window,
// and emits Failed. The main window listens to Failed and treats the exception like one of its own
// commands: after a HostError it shows a box and the program goes on; any other exception ends the
// program through frmMain::Fail. If nobody listens to Failed, the exception is thrown on to the
// code that runs the event loop.
class Application : public QApplication {
  Q_OBJECT

 public:
  Application(int& argc, char** argv);

  bool notify(QObject* receiver, QEvent* event) override;

 Q_SIGNALS:
  void Failed(const std::exception_ptr& failure);
};

}  // namespace sectorbox
