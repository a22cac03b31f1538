#include "shell/program/Application.h"

#include "shell/program/Icons.h"
#include "shell/program/frmMain.h"

namespace sectorbox {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QStringLiteral("Sectorbox"));
  setDesktopFileName(QStringLiteral("sectorbox"));
  // For every window: the views belong to none that they could have it from.
  setWindowIcon(LoadIcon("sectorbox"));
  // The program ends when its main window says so.
  setQuitOnLastWindowClosed(false);
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    frmMain* window = frmMain::MainWindow;
    if (window == nullptr) throw;
    const std::exception_ptr failure = std::current_exception();
    window->Guarded([&] { std::rethrow_exception(failure); });
  }
  return true;
}

}  // namespace sectorbox
