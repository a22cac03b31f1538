#include <QMenu>

#include "disc/change/Mutation.h"
#include "tests/shell/commands/XferFixture.h"

namespace sectorbox::testing {
namespace {

TEST_F(XferTest, EachPortEntryTellsItsDevice) {
  StartWired();
  Q_EMIT Find<QMenu>("mnuXferSerial").aboutToShow();
  EXPECT_EQ(window_->Action("mnuXferSerialCom2")->statusTip(),
            QString::fromStdString(line.Device()));
}

TEST_F(XferTest, OnePortAndOneSpeedAreTickedAndKeptAtTheEnd) {
  Start();
  // Twice: a tick stays when its entry is chosen again.
  for (int i = 0; i < 2; ++i) {
    Choose("mnuXferSerialCom3");
    Choose("mnuXferSerial4800");
  }
  for (const char* off :
       {"mnuXferSerialCom1", "mnuXferSerialCom2", "mnuXferSerialCom4", "mnuXferSerial19200",
        "mnuXferSerial9600", "mnuXferSerial2400", "mnuXferSerial1200"}) {
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

TEST_F(XferTest, ASpeedOrPortThatIsChosenClosesThePortAndCountsAtTheNextTransfer) {
  line.Bbc.Drives[0] = NoiseDisc(64, {});
  line.Bbc.SetBuffer(64);
  StartWired();
  const auto receive = [&] {
    player_.ExpectFileDialog(folder_ / "x.dat");
    Choose("mnuXferRX0");
    EXPECT_TRUE(TheLink().Port.PortOpen());
  };
  receive();
  receive();
  Choose("mnuXferSerial9600");
  EXPECT_FALSE(TheLink().Port.PortOpen());
  receive();
  Choose("mnuXferSerialCom2");
  EXPECT_FALSE(TheLink().Port.PortOpen());
  receive();
  line.Stop();
  std::vector<std::string> speeds;
  for (const auto& command : line.Bbc.Heard) {
    if (command[0] == 'S') speeds.push_back(command);
  }
  EXPECT_EQ(speeds, (std::vector<std::string>{"S19200|", "S9600|", "S9600|"}));
}

TEST_F(XferTest, ATransferSaysWhatItDoesBeforeItsDialogOpens) {
  line.Bbc.Drives[0] = NoiseDisc(64, {});
  line.Bbc.SetBuffer(64);
  StartWired();
  QStringList steps;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (steps.isEmpty() || steps.last() != Panel(2)) steps.append(Panel(2));
  });
  look.start(0);
  player_.ExpectFileDialog(folder_ / "x.dat");
  Choose("mnuXferRX0");
  look.stop();
  EXPECT_TRUE(steps.contains(QStringLiteral("Connecting to the BBC...")));
  EXPECT_TRUE(steps.contains(QStringLiteral("Mounting drive 0...")));
  EXPECT_TRUE(steps.contains(QStringLiteral("Reading the free space map...")));
  EXPECT_EQ(Panel(2), QStringLiteral("$"));
}

// The transfer that runs would take the replies of the other command for its own.
TEST_F(XferTest, WhileATransferRunsAnotherCommandToTheBbcDoesNothing) {
  line.Bbc.Drives[0] = NoiseDisc(64, {});
  line.Bbc.SetBuffer(4);
  StartWired();
  WhenTraced(QStringLiteral("Read 8 of 64"), [&] {
    for (const char* entry : {"mnuXferRX1", "mnuXferDTX0", "mnuXferCli", "mnuXferBasic",
                              "mnuXferFormat", "mnuXferSerialReconnect"}) {
      Choose(entry);
    }
  });
  player_.ExpectFileDialog(folder_ / "x.dat");
  Choose("mnuXferRX0");
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), line.Bbc.Drives[0]);
  // Where nobody has pressed OK, the dialog of the last transfer closes before the next one opens.
  QDialog* first = Dialog();
  player_.ExpectFileDialog(folder_ / "x.dat");
  Choose("mnuXferTX0");
  ASSERT_NE(Dialog(), nullptr);
  EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Send Image"));
  EXPECT_NE(Dialog(), first);
  line.Stop();
  EXPECT_EQ(line.Bbc.Heard[0], "S19200|");
  EXPECT_EQ(std::count(line.Bbc.Heard.begin(), line.Bbc.Heard.end(), "S19200|"), 1);
}

// The program still has blocks of the old disc in memory: some that aren't written yet, and some
// that it has read. None of them may come to stand among the received sectors.
class OpenImageTest : public XferTest, public ::testing::WithParamInterface<bool> {};

TEST_P(OpenImageTest, ADiscThatIsReceivedIntoItReplacesItWhole) {
  const bool autoLoad = GetParam();
  ImageBuilder theirs(1000);
  theirs.AddFile(2, {"NEW", Bytes(300, 0x22)});
  theirs.AddDirectory(2, "THEIRS");
  const std::string file = folder_ / (autoLoad ? "auto.dat" : "open.dat");
  ImageBuilder ours(1000);
  ours.AddDirectory(2, "OURS");
  ours.AddFile(2, {"OLD", Bytes(2000, 0x11)});
  ours.WriteTo(file);
  line.Bbc.Drives[0] = theirs.Bytes();
  line.Bbc.SetBuffer(64);
  StartWired("\"" + file + "\"");
  ASSERT_EQ(Nodes(), List({"$", "OURS"}));
  disc_->TheDisc.Store(2 * 256 + 100, 0x55);
  disc_->TheDisc.Store(900 * 256, 0x55);
  disc_->ImageChanged = true;
  window_->Action("mnuOptionsAutoLoad")->setChecked(autoLoad);
  player_.ExpectFileDialog(file);
  Choose("mnuXferRX0");
  PressOK();
  EXPECT_EQ(ReadAll(file), theirs.Bytes()) << autoLoad;
  EXPECT_EQ(Nodes(), List({"$", "THEIRS"}));
  EXPECT_FALSE(disc_->ImageChanged);
  ASSERT_TRUE(NewDirectory(*disc_, 2, "MORE").has_value());
  disc_->TheDisc.CloseFile();
  const Bytes after = ReadAll(file);
  EXPECT_TRUE(std::equal(after.begin() + 20 * 256, after.end(), theirs.Bytes().begin() + 20 * 256));
  line.Stop();
}

INSTANTIATE_TEST_SUITE_P(WithAutoLoadOrWithout, OpenImageTest, ::testing::Bool());

// An Abort leaves a disc that is half old and half new. The window shows that, and no block of the
// old disc comes back.
TEST_F(XferTest, AReceiveIntoTheOpenImageThatIsAbortedLeavesWhatHasCome) {
  ImageBuilder theirs(1000);
  theirs.AddDirectory(2, "THEIRS");
  const std::string file = folder_ / "open.dat";
  ImageBuilder ours(1000);
  ours.AddDirectory(2, "OURS");
  ours.WriteTo(file);
  line.Bbc.Drives[0] = theirs.Bytes();
  line.Bbc.SetBuffer(64);
  StartWired("\"" + file + "\"");
  disc_->TheDisc.Store(3 * 256, 0x55);
  WhenTraced(QStringLiteral("Read 128 of 1000"), [&] { TheLink().AbortRequested = true; });
  player_.ExpectFileDialog(file);
  Choose("mnuXferRX0");
  EXPECT_EQ(Nodes(), List({"$", "THEIRS"}));
  disc_->TheDisc.CloseFile();
  const Bytes after = ReadAll(file);
  EXPECT_TRUE(std::equal(after.begin(), after.begin() + 128 * 256, theirs.Bytes().begin()));
}

// No command starts that would hold up the transfer, or that changes its port or the disc. To look
// into another directory takes no time.
TEST_F(XferTest, WhileATransferRunsTheUserCanLookAroundButStartNoOtherCommand) {
  line.Bbc.Drives[0] = NoiseDisc(64, {});
  line.Bbc.SetBuffer(4);
  StartWired();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  disc_->ImageChanged = false;
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  bool done = false;
  WhenTraced(QStringLiteral("Read 8 of 64"), [&] {
    for (const char* entry : {"mnuDiscOpen", "mnuDiscNew80DSD", "mnuDiscMap", "mnuDirectoryNew",
                              "mnuDirectoryDelete", "mnuFileDelete", "mnuCFCardOpen",
                              "mnuHelpAbout", "mnuXferSerialCom3", "mnuXferSerial1200"}) {
      Choose(entry);
    }
    EXPECT_TRUE(window_->Checked("mnuXferSerialCom2"));
    EXPECT_FALSE(window_->Checked("mnuXferSerialCom3"));
    EXPECT_TRUE(window_->Checked("mnuXferSerial19200"));
    EXPECT_FALSE(window_->Checked("mnuXferSerial1200"));
    EXPECT_TRUE(TheLink().Port.PortOpen());
    ClickNode(QStringLiteral("DIR"));
    EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
    done = true;
  });
  player_.ExpectFileDialog(folder_ / "x.dat");
  Choose("mnuXferRX0");
  EXPECT_TRUE(done);
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), line.Bbc.Drives[0]);
  line.Stop();
  EXPECT_EQ(Nodes(), QStringList({QStringLiteral("$"), QStringLiteral("DIR")}));
  EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
  Choose("mnuXferSerialCom3");
  EXPECT_TRUE(window_->Checked("mnuXferSerialCom3"));
}

TEST_F(XferTest, ASilentBbcIsSaidSo) {
  line.Bbc.Faults.Mute = true;
  StartWired();
  player_.ExpectBox(QStringLiteral("Beeb Not Responding"), QStringLiteral("Sectorbox"));
  Choose("mnuXferSerialReconnect");
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
  EXPECT_TRUE(TheLink().AbortRequested);
}

// Each line end of the trace counts as two characters. The text box keeps only one.
TEST_F(XferTest, TheTraceWindowCountsItsLineEndsAsTheTwoCharactersThatTheyAre) {
  StartWired();
  Choose("mnuXferTracewindow");
  auto* text = In<QPlainTextEdit>(*TraceWindow(), "txtTrace");
  const auto fill = [&](int lines) {
    QString all;
    for (int i = 0; i < lines; ++i) all += QStringLiteral("%1\r\n").arg(i, 6, 10, QChar(u'0'));
    text->setPlainText(all);
  };
  fill(4000);  // 32000 characters
  TheLink().Host.ShowTrace("one\r\n");
  EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("000000\n")));
  fill(4001);
  TheLink().Host.ShowTrace("two\r\n");
  EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("000512\n")));
  EXPECT_TRUE(text->toPlainText().endsWith(QStringLiteral("004000\ntwo\n")));
}

TEST_F(XferTest, ATraceWindowOfMoreThan32000CharactersLosesItsFirst4096) {
  StartWired();
  Choose("mnuXferTracewindow");
  auto* trace = window_->findChild<QWidget*>(QStringLiteral("frmTrace"));
  auto* text = In<QPlainTextEdit>(*trace, "txtTrace");
  text->setPlainText(QString(4096, u'a') + QString(32000 - 4096, u'b'));
  TheLink().Host.ShowTrace("one\r\n");
  EXPECT_TRUE(text->toPlainText().startsWith(u'a'));
  text->setPlainText(QString(4096, u'a') + QString(32001 - 4096, u'b'));
  TheLink().Host.ShowTrace("two\r\n");
  EXPECT_EQ(text->toPlainText(), QString(32001 - 4096, u'b') + QStringLiteral("two\n"));
  QTest::keyClick(text, Qt::Key_X);
  EXPECT_FALSE(text->toPlainText().contains(u'x'));
}

}  // namespace
}  // namespace sectorbox::testing
