#include "shell/program/Application.h"

#include <QMetaMethod>

#include "shell/icons/Icons.h"

namespace sectorbox {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QStringLiteral("Sectorbox"));
  setDesktopFileName(QStringLiteral("sectorbox"));
  // This icon is for every window. The views have no parent window whose icon they could use.
  setWindowIcon(LoadIcon("sectorbox"));
  // The program doesn't end when the last window closes. The main window ends it.
  setQuitOnLastWindowClosed(false);
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    if (!isSignalConnected(QMetaMethod::fromSignal(&Application::Failed))) throw;
    Q_EMIT Failed(std::current_exception());
  }
  return true;
}

}  // namespace sectorbox
