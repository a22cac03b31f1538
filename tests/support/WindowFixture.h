#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "disc/store/Disc.h"
#include "shell/panes/Panes.h"
#include "shell/program/ProgramEnd.h"
#include "shell/program/WindowHost.h"
#include "shell/program/frmMain.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/TempFolder.h"
#include "toolkit/SettingsStore.h"

namespace sectorbox::testing {

// A child of a dialog or window by its object name.
template <typename T>
T& In(QWidget& dialog, const char* name) {
  T* found = dialog.findChild<T*>(QString::fromLatin1(name));
  if (found == nullptr) throw std::runtime_error(std::string("no such child: ") + name);
  return *found;
}

// Names as the panes list them.
inline QStringList List(std::initializer_list<const char*> names) {
  QStringList list;
  for (const char* name : names) list.append(QString::fromLatin1(name));
  return list;
}

// Plays the user at modal dialogs. A test queues its answers before it triggers what opens the
// dialogs. Each dialog that comes up takes the next answer. A dialog without an answer fails the
// test and is closed. So does a dialog that its answer leaves open for too long, so that no test
// hangs. An answer that no dialog has taken fails the test too.
class DialogPlayer {
 public:
  DialogPlayer();
  ~DialogPlayer();

  // Gives the next modal window, of any kind, to the answer, which must close it at its end.
  void Expect(std::function<void(QWidget& dialog)> answer);
  // The next one must be a message box with that text (and title, unless empty): OK.
  void ExpectBox(const QString& text, const QString& title = {});
  // A question: Yes or No.
  void ExpectYesNo(const QString& text, bool yes);
  // A file or folder dialog: chooses the path; an empty one cancels.
  void ExpectFileDialog(const std::string& path);
  // The same; look sees the dialog before it is answered.
  void ExpectFileDialog(const std::string& path, std::function<void(QWidget&)> look);

  // Progress dialogs come and go by themselves; how long one stands depends on the machine.
  bool PassOverProgress = false;

  bool AllPlayed() const { return answers_.empty(); }

 private:
  void Tick();
  void ForgetClosed();

  QTimer timer_;
  std::deque<std::function<void(QWidget&)>> answers_;
  std::vector<QPointer<QWidget>> answered_;  // those that still stand
  int ticksOpen_ = 0;
};

// Notes the end of the program and lets the program go on.
class NotedEnd : public ProgramEnd {
 public:
  explicit NotedEnd(std::vector<int>& ends) : ends_(ends) {}
  void EndProgram(int status) override { ends_.push_back(status); }

 private:
  std::vector<int>& ends_;
};

// A main window of the test's own: settings, temporary folder, disc and host of its own, no splash,
// and an end of the program that is only noted.
class WindowTest : public ::testing::Test {
 protected:
  WindowTest();
  ~WindowTest() override;

  // The window, loaded with the given command line (quotes included).
  frmMain& Start(const std::string& commandLine = {});
  // The same, opening an image of the test's.
  frmMain& StartWith(const ImageBuilder& image, const std::string& name = "test.adl");
  // A second start, with the settings that the first one left.
  frmMain& StartAgain(const std::string& commandLine = {});

  // Triggers an entry by its name; it must be enabled.
  void Choose(const char* entry);
  // A child of the main window by its object name.
  template <typename T = QWidget>
  T& Find(const char* name) {
    return In<T>(*window_, name);
  }
  QString Panel(int n);  // text of a status bar panel, 1 to 4
  QStringList Names();   // of the list, as shown
  QStringList Nodes();   // of the tree, depth first
  DirNode& Node(const QString& text);
  int Row(const QString& name);
  void ClickRow(const QString& name, Qt::KeyboardModifiers modifiers = {});
  void SelectRows(const QStringList& names);
  void ClickNode(const QString& text);
  void Press(QWidget& target, Qt::Key key, Qt::KeyboardModifiers modifiers = {});
  // Runs what waits in the event loop, deferred edits included.
  void Settle();

  TempFolder folder_;
  // Set before Start: cards are files (and devices) of this machine, and device_ is nullptr.
  bool useHostCards_ = false;
  MemoryDevice* device_ = nullptr;  // the card behind the disc
  std::vector<int> ends_;           // each end of the program, with its status
  NotedEnd end_{ends_};
  std::unique_ptr<WindowHost> host_;
  std::unique_ptr<Disc> disc_;
  std::unique_ptr<frmMain> window_;
  DialogPlayer player_;
};

}  // namespace sectorbox::testing
