#include "shell/program/Application.h"

#include <QMetaMethod>

#include "shell/icons/Icons.h"

namespace sectorbox {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QStringLiteral("Sectorbox"));
  setDesktopFileName(QStringLiteral("sectorbox"));
  // For every window: the views have no parent that they could take the icon from.
  setWindowIcon(LoadIcon("sectorbox"));
  // The program ends when its main window says so.
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
