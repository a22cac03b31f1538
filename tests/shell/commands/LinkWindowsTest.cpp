// The windows of the link by themselves: what they start with, and what closing them does.
#include <QCoreApplication>
#include <QFile>
#include <QLockFile>

#include "tests/shell/commands/XferFixture.h"

namespace sectorbox::testing {
namespace {

class LinkWindowsTest : public XferTest {
 protected:
  std::string Label(QWidget& window, const char* name) {
    return In<QLabel>(window, name)->text().toStdString();
  }
  bool Enabled(QWidget& window, const char* name) {
    return In<QPushButton>(window, name)->isEnabled();
  }
};

TEST_F(LinkWindowsTest, TheTransferDialogStartsWithTheSameTextsInBothDirections) {
  Start();
  LinkHost& host = TheLink().Host;
  for (const char* caption : {"Receive Image", "Send Image"}) {
    host.OpenTransfer(caption);
    QDialog* dialog = Dialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle().toStdString(), caption);
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(dialog->parentWidget(), window_.get());
    EXPECT_EQ(Label(*dialog, "lblRX"), "Receiving Sectors 0 to 15");
    EXPECT_EQ(Label(*dialog, "lblTot"), "Read 0 of 0 Sectors");
    EXPECT_EQ(Label(*dialog, "Label1"), "Retries");
    EXPECT_EQ(Label(*dialog, "Label2"), "Bad CRC's");
    EXPECT_EQ(Label(*dialog, "Label3"), "Bad Sectors");
    for (const char* counter : {"txtRetry", "txtCRC", "txtBadSector"}) {
      EXPECT_EQ(Counter(counter), "") << counter;
    }
    auto* pb = In<QProgressBar>(*dialog, "pb");
    EXPECT_EQ(pb->minimum(), 0);
    EXPECT_EQ(pb->maximum(), 100);
    EXPECT_EQ(pb->value(), 0);
    EXPECT_EQ(In<QPushButton>(*dialog, "cmdAbort")->text(), QStringLiteral("Abort"));
    EXPECT_EQ(In<QPushButton>(*dialog, "cmdOK")->text(), QStringLiteral("OK"));
    EXPECT_TRUE(Enabled(*dialog, "cmdAbort"));
    EXPECT_FALSE(Enabled(*dialog, "cmdOK"));
    host.FinishTransfer();
    EXPECT_TRUE(Enabled(*dialog, "cmdOK"));
    PressOK();
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_FALSE(TheLink().AbortRequested);
  }
}

TEST_F(LinkWindowsTest, AbortAfterTheEndClosesTheDialogAndSetsTheFlagAllTheSame) {
  Start();
  TheLink().Host.OpenTransfer("Receive Image");
  TheLink().Host.FinishTransfer();
  In<QPushButton>(*Dialog(), "cmdAbort")->click();
  Settle();
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_TRUE(TheLink().AbortRequested);
}

TEST_F(LinkWindowsTest, TheTransferDialogStaysWhereItWasLeft) {
  Start();
  TheLink().Host.OpenTransfer("Receive Image");
  Dialog()->move(150, 60);
  TheLink().Host.CloseTransfer();
  EXPECT_EQ(SettingsStore().GetString("RXLeft"), QStringLiteral("2250"));
  EXPECT_EQ(SettingsStore().GetString("RXTop"), QStringLiteral("900"));
  TheLink().Host.OpenTransfer("Send Image");
  EXPECT_EQ(Dialog()->pos(), QPoint(150, 60));
}

// Else a transfer would go on, and no button would be left to end it.
TEST_F(LinkWindowsTest, EscapeAndTheCloseBoxAreAbortWhileATransferRuns) {
  Start();
  for (const bool escape : {true, false}) {
    TheLink().AbortRequested = false;
    TheLink().Host.OpenTransfer("Receive Image");
    if (escape) {
      QTest::keyClick(Dialog(), Qt::Key_Escape);
    } else {
      Dialog()->close();
    }
    EXPECT_TRUE(TheLink().AbortRequested);
    EXPECT_EQ(Dialog(), nullptr);
    // Calls for the closed window do nothing.
    TheLink().Host.ShowChunk("x");
    TheLink().Host.ShowTotal("x");
    TheLink().Host.ShowCounters({});
    TheLink().Host.ShowPercent(50);
    TheLink().Host.FinishTransfer();
    TheLink().Host.CloseTransfer();
  }
}

TEST_F(LinkWindowsTest, AClosedTraceWindowStopsNeitherTheLogNorTheTransfer) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(64);
  const std::string log = folder_ / "x.log";
  StartWired();
  player_.ExpectFileDialog(log);
  Choose("mnuXferTraceFile");
  QString before, after;
  WhenTraced(QStringLiteral("Read 128 of 640"), [&] {
    before = TraceText();
    TraceWindow()->close();
    EXPECT_EQ(TraceWindow(), nullptr);
    EXPECT_TRUE(window_->Action("mnuXferTracewindow")->isEnabled());
    // When it is opened again it shows what comes from then on, and no more.
    QTimer::singleShot(300, window_.get(), [&] { Choose("mnuXferTracewindow"); });
  });
  player_.ExpectFileDialog(folder_ / "x.adf");
  Choose("mnuXferRX0");
  line.Stop();
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), line.Bbc.Drives[0]);
  EXPECT_TRUE(before.contains(QStringLiteral("Read 128 of 640")));
  EXPECT_FALSE(before.contains(QStringLiteral("Read 256 of 640")));
  after = TraceText();
  EXPECT_FALSE(after.contains(QStringLiteral("Read 128 of 640")));
  EXPECT_TRUE(after.endsWith(QStringLiteral("Read 640 of 640\n")));
  const QString logged = FromHost(ReadText(log));
  for (int sectors = 0; sectors <= 640; sectors += 64) {
    EXPECT_TRUE(logged.contains(QStringLiteral("Read %1 of 640\r\n").arg(sectors))) << sectors;
  }
  const QString lines = QString(logged).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  EXPECT_TRUE(lines.startsWith(before));
  EXPECT_TRUE(lines.endsWith(after));
}

TEST_F(LinkWindowsTest, AnOldLogIsAskedAbout) {
  const std::string log = folder_ / "x.log";
  WriteText(log, "old\r\n");
  Start();
  const auto answer = [&](QMessageBox::StandardButton button) {
    player_.ExpectFileDialog(log, [](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open Trace Log File"));
    });
    player_.Expect([=](QWidget& dialog) {
      auto& box = static_cast<QMessageBox&>(dialog);
      EXPECT_EQ(box.text().toStdString(), "Replace existing file - " + log + "?");
      EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
      box.button(button)->click();
    });
  };
  answer(QMessageBox::Cancel);  // asks for the file again
  answer(QMessageBox::No);
  Choose("mnuXferTraceFile");
  TheLink().TraceFile.Append("new\r\n");
  EXPECT_EQ(ReadText(log), "old\r\nnew\r\n");
  answer(QMessageBox::Yes);
  Choose("mnuXferTraceFile");
  EXPECT_EQ(ReadText(log), "");
  // Cancelling the file dialog leaves the log that is open.
  player_.ExpectFileDialog("");
  Choose("mnuXferTraceFile");
  TheLink().TraceFile.Append("on\r\n");
  EXPECT_EQ(ReadText(log), "on\r\n");
}

TEST_F(LinkWindowsTest, TheTraceWindowIsFilledByItsTextAndComesBackWhereItWas) {
  Start();
  Choose("mnuXferTracewindow");
  EXPECT_EQ(TraceWindow()->windowTitle(), QStringLiteral("Trace"));
  auto* text = In<QPlainTextEdit>(*TraceWindow(), "txtTrace");
  EXPECT_EQ(text->font().family(), QStringLiteral("Courier New"));
  TraceWindow()->move(120, 40);
  TraceWindow()->resize(400, 300);
  EXPECT_EQ(text->geometry(), QRect(0, 0, 400, 300));
  TraceWindow()->close();
  Settle();
  Choose("mnuXferTracewindow");
  EXPECT_EQ(TraceWindow()->pos(), QPoint(120, 40));
  EXPECT_EQ(TraceWindow()->size(), QSize(400, 300));
  TraceWindow()->showMinimized();
  TraceWindow()->move(7, 7);
  TraceWindow()->close();
  EXPECT_EQ(SettingsStore().GetString("TraceLeft"), QStringLiteral("1800"));
}

// A bootstrap reads its program from beside the executable, here the tests' own folder, which other
// tests may want at the same time.
class BootstrapWindowTest : public LinkWindowsTest {
 protected:
  BootstrapWindowTest() { lock_.lock(); }
  ~BootstrapWindowTest() override {
    for (const auto& path : made_) QFile::remove(path);
  }
  void PutBesideTheProgram(const char* name, const std::string& text) {
    const QString path = Beside(name);
    WriteText(ToHost(path), text);
    made_.push_back(path);
  }
  // Go; then, once the bar has passed the percentage, stop is run in the middle of the send.
  void GoAndStop(QWidget& dialog, int percent, const std::function<void()>& stop) {
    auto* pb = In<QProgressBar>(dialog, "pb");
    bool stopped = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &dialog, [&] {
      if (stopped || pb->value() < percent) return;
      stopped = true;
      stop();
    });
    timer.start(0);
    In<QPushButton>(dialog, "cmdGo")->click();
    EXPECT_TRUE(stopped);
    EXPECT_FALSE(dialog.isVisible());
  }
  static QString Beside(const char* name) {
    return QCoreApplication::applicationDirPath() + u'/' + QString::fromLatin1(name);
  }

  QLockFile lock_{Beside("bootstrap.lock")};
  std::vector<QString> made_;
  const std::string kStars = "REM *********************************\r";
};

TEST_F(BootstrapWindowTest, ACancelledListingKeepsItsFormUntilTheClosingLinesAreOut) {
  std::string listing;
  for (int n = 10; n < 6000; n += 10) listing += std::to_string(n) + "REM\n";
  PutBesideTheProgram("adfsxfer.bas", listing);
  StartWired();
  player_.Expect([&](QWidget& dialog) {
    bool wasOpen = true;
    QObject::connect(static_cast<QDialog*>(&dialog), &QDialog::finished, &dialog,
                     [&] { wasOpen = TheLink().Port.PortOpen(); });
    GoAndStop(dialog, 20, [&] {
      EXPECT_FALSE(Enabled(dialog, "cmdGo"));
      In<QPushButton>(dialog, "cmdCancel")->click();
      EXPECT_TRUE(dialog.isVisible());
      EXPECT_TRUE(TheLink().AbortRequested);
    });
    EXPECT_FALSE(wasOpen);  // the port closes, and so empties its queue, before the form goes
  });
  Choose("mnuXferBasic");
  line.Stop();
  EXPECT_LT(line.Bytes().size(), listing.size());
  EXPECT_TRUE(line.Bytes().starts_with("10REM\r20REM\r"));
  EXPECT_TRUE(line.Bytes().ends_with("REM\r" + kStars + "REM File Transfer Aborted\r" + kStars +
                                     "*FX 2,0\r"));
}

TEST_F(BootstrapWindowTest, EscapeAndTheCloseBoxAreCancelDuringASendToo) {
  std::string listing;
  for (int n = 10; n < 6000; n += 10) listing += std::to_string(n) + "REM\n";
  PutBesideTheProgram("adfsxfer.bas", listing);
  StartWired();
  for (const bool escape : {true, false}) {
    player_.Expect([&](QWidget& dialog) {
      GoAndStop(dialog, 20, [&] {
        if (escape) {
          QTest::keyClick(&dialog, Qt::Key_Escape);
        } else {
          dialog.close();
        }
        EXPECT_TRUE(dialog.isVisible());
      });
    });
    Choose("mnuXferBasic");
  }
  line.Stop();
  EXPECT_TRUE(line.Bytes().ends_with("REM File Transfer Aborted\r" + kStars + "*FX 2,0\r"));
}

TEST_F(BootstrapWindowTest, ACancelledFormatterSendsNothingMore) {
  PutBesideTheProgram("aform", std::string(5738, 'f'));
  StartWired();
  std::size_t sent = 0;
  player_.Expect([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Send Format Program"));
    GoAndStop(dialog, 30, [&] {
      sent = static_cast<std::size_t>(5738 * In<QProgressBar>(dialog, "pb")->value() / 100);
      In<QPushButton>(dialog, "cmdCancel")->click();
      EXPECT_TRUE(dialog.isVisible());
    });
  });
  Choose("mnuXferFormat");
  line.Stop();
  const auto loader = line.Bytes().find("RUN\r") + 4;
  EXPECT_NEAR(static_cast<double>(line.Bytes().size() - loader), static_cast<double>(sent), 100);
  EXPECT_TRUE(line.Bytes().ends_with("f"));
  EXPECT_FALSE(TheLink().Port.PortOpen());
}

TEST_F(BootstrapWindowTest, AWholeListingClosesTheFormAndLeavesThePortClosed) {
  PutBesideTheProgram("adfsxfer.bas", "10REM A\r\n20REM B\r\n");
  StartWired();
  player_.Expect([&](QWidget& dialog) {
    In<QPushButton>(dialog, "cmdGo")->click();
    EXPECT_FALSE(dialog.isVisible());
  });
  Choose("mnuXferBasic");
  line.Stop();
  EXPECT_EQ(line.Bytes(), "10REM A\r20REM B\r" + kStars +
                              "REM File Transfer Complete\r"
                              "REM Type SAVE \"ADFSXFER\" to save file\r"
                              "REM Then RUN to start program\r" +
                              kStars + "*FX 2,0\r");
  EXPECT_FALSE(TheLink().Port.PortOpen());
  EXPECT_FALSE(TheLink().AbortRequested);
}

TEST_F(BootstrapWindowTest, APortThatVanishesIsToldAndTheFormCloses) {
  std::string listing;
  for (int n = 10; n < 6000; n += 10) listing += std::to_string(n) + "REM\n";
  PutBesideTheProgram("adfsxfer.bas", listing);
  StartWired();
  player_.Expect([&](QWidget& dialog) {
    player_.ExpectBox(
        QString::fromStdString(line.Device()) + QStringLiteral(": Input/output error"),
        QStringLiteral("Sectorbox"));
    GoAndStop(dialog, 20, [&] { line.Unplug(); });
  });
  Choose("mnuXferBasic");
  EXPECT_FALSE(TheLink().Port.PortOpen());
}

}  // namespace
}  // namespace sectorbox::testing
