#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include "shell/XferCommands.h"
#include "tests/link/LinkRig.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

class XferTest : public WindowTest {
 protected:
  void StartWired() {
    SettingsStore().PutString("Com2Device", QString::fromStdString(line.Device()));
    SettingsStore().PutInt16("ComPort", 2);
    Start();
    line.Start();
  }
  QDialog* Dialog() { return window_->findChild<QDialog*>(QStringLiteral("frmRX")); }
  template <typename T>
  T* In(QWidget& dialog, const char* name) {
    T* found = dialog.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }

  PtyBbc line;
};

TEST_F(XferTest, EachPortEntryTellsItsDevice) {
  StartWired();
  Q_EMIT Find<QMenu>("mnuXferSerial").aboutToShow();
  EXPECT_EQ(window_->Action("mnuXferSerialCom2")->statusTip(),
            QString::fromStdString(line.Device()));
}

TEST_F(XferTest, OnePortAndOneSpeedAreTickedAndKeptAtTheEnd) {
  Start();
  Choose("mnuXferSerialCom3");
  Choose("mnuXferSerial4800");
  for (const char* off : {"mnuXferSerialCom1", "mnuXferSerialCom2", "mnuXferSerialCom4",
                          "mnuXferSerial19200", "mnuXferSerial9600"}) {
    EXPECT_FALSE(window_->Checked(off)) << off;
  }
  EXPECT_TRUE(window_->Checked("mnuXferSerialCom3"));
  EXPECT_TRUE(window_->Checked("mnuXferSerial4800"));
  window_->close();
  EXPECT_EQ(SettingsStore().GetInt16("ComPort", 0), 3);
  EXPECT_EQ(SettingsStore().GetInt16("BaudRate", 0), 4800);
}

TEST_F(XferTest, AReceivedDiscIsShownAndLoadedAndTheEndSaysQ) {
  line.Bbc.Drives[0] = ImageBuilder(640).Bytes();
  line.Bbc.SetBuffer(64);
  StartWired();
  window_->Action("mnuOptionsAutoLoad")->setChecked(true);
  const std::string file = folder_ / "got.adf";
  player_.ExpectFileDialog(file);
  Choose("mnuXferRX0");
  ASSERT_NE(Dialog(), nullptr);
  EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Receive Image"));
  EXPECT_EQ(In<QLabel>(*Dialog(), "lblTot")->text(), QStringLiteral("Read 640 of 640"));
  EXPECT_EQ(In<QLabel>(*Dialog(), "lblRX")->text(), QStringLiteral("Receiving Sectors 576 to 639"));
  EXPECT_EQ(In<QProgressBar>(*Dialog(), "pb")->value(), 100);
  EXPECT_EQ(In<QLineEdit>(*Dialog(), "txtRetry")->text(), QStringLiteral("0"));
  EXPECT_TRUE(In<QPushButton>(*Dialog(), "cmdOK")->isEnabled());
  In<QPushButton>(*Dialog(), "cmdOK")->click();
  Settle();
  EXPECT_EQ(ReadAll(file), line.Bbc.Drives[0]);
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - ") + QString::fromStdString(file));
  window_->close();
  QTest::qWait(100);
  line.Stop();
  EXPECT_EQ(line.Bbc.Quits, 1);
}

TEST_F(XferTest, ASentDiscArrivesWithFaultsOnTheLine) {
  line.Bbc.Drives[4] = Bytes(800 * 256);
  line.Bbc.SetBuffer(64);
  line.Bbc.Faults.WrongCrcEvery = 5;
  const Bytes disc = NoiseDisc(800, {});
  WriteAll(folder_ / "x.dat", disc);
  StartWired();
  Choose("mnuXferTracewindow");
  EXPECT_FALSE(window_->Action("mnuXferTracewindow")->isEnabled());
  player_.ExpectFileDialog(folder_ / "x.dat");
  Choose("mnuXferTX4");
  ASSERT_NE(Dialog(), nullptr);
  EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Send Image"));
  EXPECT_EQ(In<QLineEdit>(*Dialog(), "txtCRC")->text(), QStringLiteral("3"));
  line.Stop();
  EXPECT_EQ(line.Bbc.Drives[4], disc);
  auto* trace = window_->findChild<QWidget*>(QStringLiteral("frmTrace"));
  ASSERT_NE(trace, nullptr);
  EXPECT_TRUE(In<QPlainTextEdit>(*trace, "txtTrace")
                  ->toPlainText()
                  .endsWith(QStringLiteral("Written 800 of 800\n")));
  trace->close();
  EXPECT_TRUE(window_->Action("mnuXferTracewindow")->isEnabled());
}

TEST_F(XferTest, AbortClosesTheDialogAtOnceAndEndsTheTransfer) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(2);
  StartWired();
  player_.ExpectFileDialog(folder_ / "x.adf");
  QTimer::singleShot(1500, window_.get(), [&] {
    ASSERT_NE(Dialog(), nullptr);
    In<QPushButton>(*Dialog(), "cmdAbort")->click();
    Settle();
    EXPECT_EQ(Dialog(), nullptr);
  });
  Choose("mnuXferRX0");
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_TRUE(window_->Xfer().TheLink().AbortRequested);
  EXPECT_LT(ReadAll(folder_ / "x.adf").size(), 640U * 256);
}

TEST_F(XferTest, APortThatVanishesIsToldAndTheWindowLives) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(2);
  StartWired();
  player_.ExpectFileDialog(folder_ / "x.adf");
  player_.ExpectBox(QString::fromStdString(line.Device()) + QStringLiteral(": Input/output error"),
                    QStringLiteral("Sectorbox"));
  QTimer::singleShot(1500, window_.get(), [&] { line.Unplug(); });
  Choose("mnuXferRX0");
  Settle();
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_GT(ReadAll(folder_ / "x.adf").size(), 0U);
  EXPECT_FALSE(window_->Xfer().TheLink().Port.PortOpen());
}

TEST_F(XferTest, AStarCommandShowsItsOutputAndClearsItself) {
  line.Bbc.StarReplies["CAT"] = {{0, "Title\r"}};
  StartWired();
  Choose("mnuXferSerialReconnect");
  player_.Expect([&](QWidget& dialog) {
    auto* command = In<QLineEdit>(dialog, "txtCmd");
    command->setText(QStringLiteral("CAT"));
    QTest::keyClick(command, Qt::Key_Return);
    EXPECT_EQ(In<QPlainTextEdit>(dialog, "rtbCLI")->toPlainText(), QStringLiteral("Title\n"));
    EXPECT_EQ(command->text(), QString());
    dialog.close();
  });
  Choose("mnuXferCli");
  line.Stop();
  EXPECT_EQ(line.Bbc.Heard, (std::vector<std::string>{"S19200|", "*CAT|"}));
}

TEST_F(XferTest, CancelOnAnIdleBootstrapClosesItAndLeavesTheAbortFlagSet) {
  StartWired();
  player_.Expect([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Send Basic Program"));
    EXPECT_EQ(In<QLabel>(dialog, "Label7")->text(), QStringLiteral("*FX 2,1"));
    In<QPushButton>(dialog, "cmdCancel")->click();
    EXPECT_FALSE(dialog.isVisible());
  });
  Choose("mnuXferBasic");
  EXPECT_TRUE(window_->Xfer().TheLink().AbortRequested);
}

TEST_F(XferTest, ATraceWindowOfMoreThan32000CharactersLosesItsFirst4096) {
  StartWired();
  Choose("mnuXferTracewindow");
  auto* trace = window_->findChild<QWidget*>(QStringLiteral("frmTrace"));
  auto* text = In<QPlainTextEdit>(*trace, "txtTrace");
  text->setPlainText(QString(4096, u'a') + QString(32000 - 4096, u'b'));
  window_->Xfer().TheLink().Host.ShowTrace("one\r\n");
  EXPECT_TRUE(text->toPlainText().startsWith(u'a'));
  text->setPlainText(QString(4096, u'a') + QString(32001 - 4096, u'b'));
  window_->Xfer().TheLink().Host.ShowTrace("two\r\n");
  EXPECT_TRUE(text->toPlainText().startsWith(u'b'));
  EXPECT_TRUE(text->toPlainText().endsWith(QStringLiteral("btwo\n")));
  QTest::keyClick(text, Qt::Key_X);
  EXPECT_FALSE(text->toPlainText().contains(u'x'));
}

}  // namespace
}  // namespace sectorbox::testing
