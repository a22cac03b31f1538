#pragma once

#include <QApplication>

namespace sectorbox {

// The application object. Failures that reach the event loop from any window, not only from the
// main window's own commands, are told as those are: a failure of the host is a box and the program
// goes on, anything else ends it by way of frmMain::Fail.
class Application : public QApplication {
 public:
  Application(int& argc, char** argv);

  bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace sectorbox
