// frmCLI: the BBC's prompt in a window.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QTextCursor>

#include "tests/shell/commands/XferFixture.h"

namespace sectorbox::testing {
namespace {

class StarConsoleTest : public XferTest {
 protected:
  // Opens the console, plays it, closes it. The port opens at 1200 baud by itself.
  void Play(const std::function<void()>& user) {
    player_.Expect([this, user](QWidget& dialog) {
      console = &dialog;
      user();
      Entry("mnuFileClose")->trigger();
      EXPECT_FALSE(dialog.isVisible());
    });
    Choose("mnuXferCli");
  }
  void Type(const char* text) {
    Command()->setText(QString::fromLatin1(text));
    QTest::keyClick(Command(), Qt::Key_Return);
  }
  QLineEdit* Command() { return In<QLineEdit>(*console, "txtCmd"); }
  QPlainTextEdit* Output() { return In<QPlainTextEdit>(*console, "rtbCLI"); }
  QAction* Entry(const char* name) { return In<QAction>(*console, name); }
  void Find(const char* text) {
    player_.Expect([this, text](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName(), QStringLiteral("frmFind"));
      In<QLineEdit>(dialog, "txtFind")->setText(QString::fromLatin1(text));
      In<QPushButton>(dialog, "cmdOK")->click();
    });
    Entry("mnuEditFind")->trigger();
  }
  // Where the marked text begins, and the text.
  std::pair<int, std::string> Marked() {
    const QTextCursor cursor = Output()->textCursor();
    return {cursor.selectionStart(), cursor.selectedText().toStdString()};
  }

  QWidget* console = nullptr;
};

TEST_F(StarConsoleTest, StartsEmptyUnderItsCaptionWithTheStripAboveTheOutput) {
  StartWired();
  for (int opening = 0; opening < 2; ++opening) {
    Play([&] {
      EXPECT_EQ(console->windowTitle(), QStringLiteral("* Commands"));
      EXPECT_EQ(Command()->text(), QString());
      EXPECT_EQ(Output()->toPlainText(), QString());
      EXPECT_EQ(Output()->font().family(), QStringLiteral("Courier New"));
      EXPECT_EQ(Command()->height(), 375 / 15);
      console->resize(500, 400);
      EXPECT_EQ(Output()->width(), 500);
      EXPECT_EQ(Output()->geometry().bottom(), 399);
      EXPECT_EQ(Output()->geometry().top(), Command()->geometry().bottom() + 1);
      Output()->setPlainText(QStringLiteral("lost on closing"));
    });
  }
}

TEST_F(StarConsoleTest, EscapeKeepsTheWindowAndItsOutput) {
  StartWired();
  Play([&] {
    Output()->setPlainText(QStringLiteral("kept"));
    QTest::keyClick(Command(), Qt::Key_Escape);
    QTest::keyClick(console, Qt::Key_Escape);
    EXPECT_TRUE(console->isVisible());
    EXPECT_EQ(Output()->toPlainText(), QStringLiteral("kept"));
  });
}

// Notes when the watched widget is painted.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
  int Paints = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++Paints;
    return false;
  }
};

TEST_F(StarConsoleTest, TheLineSaysWaitingUntilTheBbcIsSilent) {
  StartWired();
  Play([&] {
    auto* waiting = In<QLabel>(*console, "lblWaiting");
    EXPECT_EQ(waiting->text(), QStringLiteral("waiting"));
    EXPECT_FALSE(waiting->isVisible());
    const PaintWatch watch(*waiting);
    Type("FADFS");
    EXPECT_GT(watch.Paints, 0);
    EXPECT_FALSE(waiting->isVisible());
    EXPECT_TRUE(Command()->placeholderText().contains(QStringLiteral("no star needed")));
  });
}

TEST_F(StarConsoleTest, TheMenusHoldTheirEntriesInOrder) {
  StartWired();
  Play([&] {
    const auto captions = [](const QList<QAction*>& actions) {
      QStringList all;
      for (const QAction* action : actions) all.append(action->text());
      return all;
    };
    const auto menus = console->findChild<QMenuBar*>()->actions();
    EXPECT_EQ(captions(menus), (QStringList{QStringLiteral("&File"), QStringLiteral("&Edit")}));
    EXPECT_EQ(captions(menus[0]->menu()->actions()),
              (QStringList{QStringLiteral("&Save File..."), QStringLiteral("&Print File"),
                           QStringLiteral("&Close")}));
    EXPECT_EQ(captions(menus[1]->menu()->actions()),
              (QStringList{QStringLiteral("&Find..."), QStringLiteral("Find &Next"),
                           QStringLiteral("&Copy"), QStringLiteral("Select &All")}));
  });
}

TEST_F(StarConsoleTest, AnErrorShowsTheBbcsTextAndLeavesTheCommand) {
  StartWired();
  Play([&] {
    player_.ExpectBox(QStringLiteral("Bad command\n\r"), QStringLiteral("* Command Error"));
    Type("WHAT");
    EXPECT_EQ(Command()->text(), QStringLiteral("WHAT"));
    EXPECT_EQ(Output()->toPlainText(), QString());
    // The user corrects the command, and it runs.
    Command()->setText(QStringLiteral("FADFS"));
    QTest::keyClick(Command(), Qt::Key_Enter);
    EXPECT_EQ(Command()->text(), QString());
    EXPECT_EQ(Output()->toPlainText(), QString()) << "the acknowledge is no output";
  });
  line.Stop();
  EXPECT_EQ(line.Bbc.Heard,
            (std::vector<std::string>{"*WHAT|", "-----BBCerror1-----PC-----", "*FADFS|"}));
}

TEST_F(StarConsoleTest, AnAbortThatStillStandsFailsAtOnceAndLeavesTheCommand) {
  StartWired();
  TheLink().AbortRequested = true;
  Play([&] {
    player_.ExpectBox(QStringLiteral("Problem sending * Command"),
                      QStringLiteral("* Command Error"));
    Type("CAT");
    EXPECT_EQ(Command()->text(), QStringLiteral("CAT"));
  });
  line.Stop();
  EXPECT_TRUE(line.Bbc.Heard.empty());
}

TEST_F(StarConsoleTest, CommandsAreBytesInBothDirections) {
  line.Bbc.StarReplies["\xA3\xE9"] = {{0, "\xA3 \xE9\r"}};
  StartWired();
  Play([&] {
    Type("\xA3\xE9");
    EXPECT_EQ(Output()->toPlainText(), QString::fromLatin1("\xA3 \xE9\n"));
  });
}

TEST_F(StarConsoleTest, SaveWritesTheWholeTextOverAnOldFile) {
  line.Bbc.StarReplies["CAT"] = {{0, "one\rtwo\r"}};
  const std::string path = folder_ / "out.txt";
  WriteText(path, std::string(500, 'x'));
  StartWired();
  Play([&] {
    Type("CAT");
    player_.ExpectFileDialog(path, [](QWidget& dialog) {
      auto& files = static_cast<QFileDialog&>(dialog);
      EXPECT_EQ(files.windowTitle(), QStringLiteral("Save File As"));
      EXPECT_EQ(files.nameFilters(), (QStringList{QStringLiteral("Save File (*.txt)"),
                                                  QStringLiteral("All Files (*)")}));
      ASSERT_EQ(files.selectedFiles().size(), 1);
      EXPECT_TRUE(files.selectedFiles().constFirst().endsWith(QStringLiteral("/oscli.txt")));
    });
    Entry("mnuFileSave")->trigger();
    EXPECT_EQ(ReadText(path), "one\r\ntwo\r\n\r\n");
    player_.ExpectFileDialog("");
    Entry("mnuFileSave")->trigger();
    const std::string missing = folder_ / "none/out.txt";
    player_.ExpectFileDialog(missing);
    player_.Expect([&](QWidget& dialog) {
      auto& box = static_cast<QMessageBox&>(dialog);
      EXPECT_EQ(box.text().toStdString(), missing + ": No such file or directory");
      EXPECT_EQ(box.icon(), QMessageBox::Warning);
      box.button(QMessageBox::Ok)->click();
    });
    Entry("mnuFileSave")->trigger();
  });
  EXPECT_EQ(ReadText(path), "one\r\ntwo\r\n\r\n");
}

TEST_F(StarConsoleTest, NeitherTheConsoleNorTheTraceReplacesTheOpenDisc) {
  ImageBuilder(4224).WriteTo(folder_ / "open.dat");
  const auto before = ReadAll(folder_ / "open.dat");
  StartWired("\"" + (folder_ / "open.dat") + "\"");
  const QString told = QStringLiteral("open.dat Is The Open Disc");
  Play([&] {
    Output()->setPlainText(QStringLiteral("text"));
    player_.ExpectFileDialog(folder_ / "./open.dat");
    player_.ExpectBox(told);
    Entry("mnuFileSave")->trigger();
  });
  player_.ExpectFileDialog(folder_ / "open.dat");
  player_.ExpectBox(told);
  Choose("mnuXferTraceFile");
  EXPECT_FALSE(TheLink().TraceFile.IsOpen());
  EXPECT_EQ(ReadAll(folder_ / "open.dat"), before);
}

TEST_F(StarConsoleTest, FindMarksTheFirstMatchAndFindNextGoesOnBehindIt) {
  StartWired();
  Play([&] {
    Output()->setPlainText(QStringLiteral("aXa\nbxb xx"));
    Entry("mnuEditNext")->trigger();  // nothing has been found yet
    EXPECT_FALSE(Output()->textCursor().hasSelection());
    Find("x");
    EXPECT_EQ(Marked(), (std::pair<int, std::string>{1, "X"}));
    for (const int at : {5, 8, 9}) {
      Entry("mnuEditNext")->trigger();
      EXPECT_EQ(Marked(), (std::pair<int, std::string>{at, "x"}));
    }
    // After the last match it finds nothing, says nothing, and goes on finding nothing.
    Entry("mnuEditNext")->trigger();
    Entry("mnuEditNext")->trigger();
    EXPECT_EQ(Marked(), (std::pair<int, std::string>{9, "x"}));
  });
}

TEST_F(StarConsoleTest, FindNextAfterAFailedOrCancelledFindDoesNothing) {
  StartWired();
  Play([&] {
    Output()->setPlainText(QStringLiteral("one two one"));
    Find("one");
    player_.Expect([this](QWidget& dialog) {
      In<QLineEdit>(dialog, "txtFind")->setText(QStringLiteral("three"));
      In<QPushButton>(dialog, "cmdOK")->click();
    });
    player_.ExpectBox(QStringLiteral("Text Not Found"));
    Entry("mnuEditFind")->trigger();
    Entry("mnuEditNext")->trigger();
    EXPECT_EQ(Marked(), (std::pair<int, std::string>{0, "one"}));
    Find("one");
    player_.Expect([this](QWidget& dialog) { In<QPushButton>(dialog, "cmdCancel")->click(); });
    Entry("mnuEditFind")->trigger();
    Entry("mnuEditNext")->trigger();
    EXPECT_EQ(Marked(), (std::pair<int, std::string>{0, "one"}));
  });
}

TEST_F(StarConsoleTest, SelectAllAndCopyTakeTheWholeText) {
  StartWired();
  Play([&] {
    Output()->setPlainText(QStringLiteral("one\ntwo"));
    Entry("mnuEditSelectAll")->trigger();
    Entry("mnuEditCopy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("one\ntwo"));
  });
}

TEST_F(StarConsoleTest, ComesBackWhereItWas) {
  StartWired();
  Play([&] {
    console->move(90, 30);
    console->resize(450, 330);
  });
  EXPECT_EQ(SettingsStore().GetString("CLILeft"), QStringLiteral("1350"));
  EXPECT_EQ(SettingsStore().GetString("CLITop"), QStringLiteral("450"));
  EXPECT_EQ(SettingsStore().GetString("CLIWidth"), QStringLiteral("6750"));
  EXPECT_EQ(SettingsStore().GetString("CLIHeight"), QStringLiteral("4950"));
  Play([&] {
    EXPECT_EQ(console->pos(), QPoint(90, 30));
    EXPECT_EQ(console->size(), QSize(450, 330));
  });
}

// The wait goes on after the window was closed, and shows its message at its end.
TEST_F(StarConsoleTest, ClosingItInTheMiddleOfAWaitLeavesTheMainWindowInOrder) {
  line.Bbc.Faults.Mute = true;
  StartWired();
  Play([&] {
    player_.ExpectBox(QStringLiteral("Problem sending * Command"),
                      QStringLiteral("* Command Error"));
    QTimer::singleShot(200, console, [this] { Entry("mnuFileClose")->trigger(); });
    Type("CAT");
  });
  EXPECT_TRUE(window_->isVisible());
  Play([&] { EXPECT_EQ(Command()->text(), QString()); });
}

TEST_F(StarConsoleTest, APortThatVanishesIsToldAndTheConsoleLives) {
  line.Bbc.Faults.Mute = true;
  StartWired();
  Play([&] {
    player_.ExpectBox(
        QString::fromStdString(line.Device()) + QStringLiteral(": Input/output error"),
        QStringLiteral("Sectorbox"));
    QTimer::singleShot(300, console, [this] { line.Unplug(); });
    Type("CAT");
    EXPECT_EQ(Command()->text(), QStringLiteral("CAT"));
    EXPECT_TRUE(console->isVisible());
    EXPECT_FALSE(TheLink().Port.PortOpen());
  });
}

}  // namespace
}  // namespace sectorbox::testing
