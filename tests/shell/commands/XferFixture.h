#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "shell/commands/XferCommands.h"
#include "tests/support/NoiseDiscs.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {

// A main window with a BBC at its "Com 2", over a pseudo-terminal in real time.
class XferTest : public WindowTest {
 protected:
  using Bytes = std::vector<std::uint8_t>;

  void StartWired(const std::string& commandLine = {}) {
    SettingsStore().PutString("Com2Device", QString::fromStdString(line.Device()));
    SettingsStore().PutInt16("ComPort", 2);
    Start(commandLine);
    line.Start();
  }
  // frmRX, or null. One that was closed lingers until its deletion is served.
  QDialog* Dialog() {
    for (auto* dialog : window_->findChildren<QDialog*>(QStringLiteral("frmRX"))) {
      if (dialog->isVisible()) return dialog;
    }
    return nullptr;
  }
  QWidget* TraceWindow() {
    for (auto* trace : window_->findChildren<QWidget*>(QStringLiteral("frmTrace"))) {
      if (trace->isVisible()) return trace;
    }
    return nullptr;
  }
  QString TraceText() { return In<QPlainTextEdit>(*TraceWindow(), "txtTrace")->toPlainText(); }
  template <typename T>
  T* In(QWidget& dialog, const char* name) {
    T* found = dialog.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    if (found == nullptr) throw std::runtime_error(std::string("no such child: ") + name);
    return found;
  }
  std::string Counter(const char* name) {
    return In<QLineEdit>(*Dialog(), name)->text().toStdString();
  }
  void PressOK() {
    In<QPushButton>(*Dialog(), "cmdOK")->click();
    Settle();
  }
  Link& TheLink() { return window_->Xfer().TheLink(); }

  // Runs action once, from the event pump, when the trace (whose window is opened for it) has
  // shown the text so many times.
  void WhenTraced(const QString& text, const std::function<void()>& action, int times = 1) {
    if (TraceWindow() == nullptr) Choose("mnuXferTracewindow");
    auto* trace = In<QPlainTextEdit>(*TraceWindow(), "txtTrace");
    auto* once = new QObject(trace);
    QObject::connect(trace, &QPlainTextEdit::textChanged, once, [=, this] {
      if (trace->toPlainText().count(text) < times) return;
      QTimer::singleShot(0, window_.get(), action);
      once->deleteLater();
      trace->disconnect(once);
    });
  }

  PtyBbc line;
};

}  // namespace sectorbox::testing
