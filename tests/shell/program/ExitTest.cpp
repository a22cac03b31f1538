#include <QFile>
#include <QTest>
#include <QTimer>
#include <stdexcept>

#include "disc/change/Mutation.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

class ExitTest : public WindowTest {
 protected:
  QString Setting(const char* key) { return SettingsStore().GetString(key); }
};

TEST_F(ExitTest, ClosingStoresPlaceFlagsPortAndSpeedInTheirTextForms) {
  Start();
  window_->move(100, 40);
  window_->resize(600, 500);
  Choose("mnuOptionsPad");
  Choose("mnuOptionsInterleave");
  window_->close();
  EXPECT_EQ(Setting("MainLeft"), QStringLiteral("1500"));
  EXPECT_EQ(Setting("MainTop"), QStringLiteral("600"));
  EXPECT_EQ(Setting("MainWidth"), QStringLiteral("9000"));
  EXPECT_EQ(Setting("MainHeight"), QStringLiteral("7500"));
  EXPECT_EQ(Setting("PadDiscImages"), QStringLiteral("True"));
  EXPECT_EQ(Setting("Interleave"), QStringLiteral("False"));
  for (const char* key : {"DeleteLocked", "OverwriteLocked", "DeleteNonEmpty"}) {
    EXPECT_EQ(Setting(key), QStringLiteral("True")) << key;
  }
  for (const char* key : {"PlayWave", "AutoLoad", "ViewAs", "CheckBeforeWrite"}) {
    EXPECT_EQ(Setting(key), QStringLiteral("False")) << key;
  }
  EXPECT_EQ(Setting("ComPort"), QStringLiteral("1"));
  EXPECT_EQ(Setting("BaudRate"), QStringLiteral("19200"));
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(ExitTest, NothingIsStoredBeforeTheEnd) {
  Start();
  Choose("mnuOptionsPad");
  EXPECT_FALSE(SettingsStore().Has("PadDiscImages"));
}

TEST_F(ExitTest, APortWithoutAnEntryChecksNoneAndIsWrittenBack) {
  SettingsStore().PutString("ComPort", QStringLiteral("7"));
  Start();
  for (const char* port :
       {"mnuXferSerialCom1", "mnuXferSerialCom2", "mnuXferSerialCom3", "mnuXferSerialCom4"}) {
    EXPECT_FALSE(window_->Checked(port)) << port;
  }
  window_->close();
  EXPECT_EQ(Setting("ComPort"), QStringLiteral("7"));
}

TEST_F(ExitTest, ASpeedWithoutAnEntryChecksNoneAndStaysInTheStore) {
  SettingsStore().PutString("BaudRate", QStringLiteral("300"));
  Start();
  for (const char* speed : {"mnuXferSerial19200", "mnuXferSerial9600", "mnuXferSerial4800",
                            "mnuXferSerial2400", "mnuXferSerial1200"}) {
    EXPECT_FALSE(window_->Checked(speed)) << speed;
  }
  window_->close();
  EXPECT_EQ(Setting("BaudRate"), QStringLiteral("300"));
}

TEST_F(ExitTest, AMinimisedWindowKeepsItsEarlierPlace) {
  SettingsStore().PutString("MainLeft", QStringLiteral("1200.5"));
  Start();
  window_->move(300, 300);
  window_->showMinimized();
  window_->close();
  EXPECT_EQ(Setting("MainLeft"), QStringLiteral("1200.5"));
  EXPECT_FALSE(SettingsStore().Has("MainTop"));
  EXPECT_EQ(Setting("ComPort"), QStringLiteral("1"));
}

TEST_F(ExitTest, ChangesAreAskedAboutOnceAndNoLosesThem) {
  ImageBuilder image(2560);
  StartWith(image);
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  const auto before = ReadAll(folder_ / "test.adl");
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), false);
  window_->close();
  EXPECT_EQ(ends_, std::vector<int>{0});
  EXPECT_EQ(ReadAll(folder_ / "test.adl"), before);
}

// A key that is pressed in passing must not cost the changes.
TEST_F(ExitTest, NeitherEscapeNorTheFrameOfTheBoxAnswersTheQuestion) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  player_.Expect([](QWidget& dialog) {
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible());
    dialog.close();
    EXPECT_TRUE(dialog.isVisible());
    qobject_cast<QMessageBox*>(&dialog)->button(QMessageBox::Yes)->click();
  });
  player_.ExpectFileDialog(folder_ / "saved.adl");
  Choose("mnuDiscClose");
  EXPECT_TRUE(HostFileExists(folder_ / "saved.adl"));
}

TEST_F(ExitTest, TheExitEntryAsksOnceToo) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), false);
  Choose("mnuDiscClose");
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(ExitTest, YesSavesUnderTheNameOfTheSaveDialog) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), true);
  player_.ExpectFileDialog(folder_ / "saved.adl", [](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("dlgCommonDialog"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save ADFS Disc Image As"));
  });
  window_->close();
  EXPECT_EQ(ReadAll(folder_ / "saved.adl").size(), 655360u);
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(ExitTest, ASaveThatFailsTellsTheSystemsWordsAndTheProgramStillEnds) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), true);
  const std::string path = folder_ / "missing/saved.adl";
  player_.ExpectFileDialog(path);
  player_.Expect([](QWidget& dialog) {
    auto& box = dynamic_cast<QMessageBox&>(dialog);
    EXPECT_TRUE(box.text().contains(QStringLiteral("No such file or directory")));
    box.accept();
  });
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), false);
  window_->close();
  EXPECT_EQ(ends_, std::vector<int>{0});
}

// The question never keeps the user in the program: if the host can't save, the program still ends,
// and the changes are not lost.
TEST_F(ExitTest, ASaveThatIsRefusedTwiceGoesToTheRecoveryFileAndTheProgramEnds) {
  for (const bool byMenu : {false, true}) {
    StartAgain();
    ends_.clear();
    ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
    const QString kept =
        SettingsStore().Folder() + QStringLiteral("/Recovered%1.adl").arg(byMenu ? 2 : 1);
    for (int i = 0; i < 2; ++i) {
      player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), true);
      player_.ExpectFileDialog(folder_ / "missing/saved.adl");
      player_.Expect([](QWidget& dialog) { dynamic_cast<QMessageBox&>(dialog).accept(); });
    }
    player_.ExpectBox(
        QStringLiteral("The disc with your unsaved changes was kept in %1").arg(kept));
    if (byMenu) {
      Choose("mnuDiscClose");
    } else {
      window_->close();
    }
    EXPECT_EQ(ends_, std::vector<int>{0});
    EXPECT_EQ(ReadAll(ToHost(kept)).size(), 655360u);
  }
}

TEST_F(ExitTest, FailingKeepsAnUnsavedDiscBesideTheSettingsAndSaysWhere) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  QString text;
  player_.Expect([&](QWidget& dialog) {
    text = dynamic_cast<QMessageBox&>(dialog).text();
    dynamic_cast<QMessageBox&>(dialog).accept();
  });
  window_->Fail(QStringLiteral("No more memory"));
  const QString kept = SettingsStore().Folder() + QStringLiteral("/Recovered1.adl");
  EXPECT_TRUE(text.startsWith(QStringLiteral("No more memory")));
  EXPECT_TRUE(text.contains(kept)) << text.toStdString();
  EXPECT_EQ(ReadAll(ToHost(kept)).size(), 655360u);
  EXPECT_EQ(ends_, std::vector<int>{1});
}

TEST_F(ExitTest, FailingWithNothingUnsavedWritesNothing) {
  Start();
  player_.ExpectBox(QStringLiteral("No more memory"));
  window_->Fail(QStringLiteral("No more memory"));
  EXPECT_FALSE(QFile::exists(SettingsStore().Folder() + QStringLiteral("/Recovered1.adl")));
}

// An exception from a timer, a view or a dialog, which no code below the event loop has caught.
TEST_F(ExitTest, AHostFailureThatReachesTheEventLoopIsABoxAndTheProgramGoesOn) {
  Start();
  QTimer::singleShot(0, [] { throw HostError("/some/file", "went away"); });
  player_.ExpectBox(QStringLiteral("/some/file: went away"), QStringLiteral("Sectorbox"));
  Settle();
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(ends_.empty());
}

TEST_F(ExitTest, AnyOtherFailureThatReachesTheEventLoopEndsTheProgram) {
  Start();
  QTimer::singleShot(0, [] { throw std::runtime_error("No more memory"); });
  player_.ExpectBox(QStringLiteral("No more memory"));
  Settle();
  EXPECT_EQ(ends_, std::vector<int>{1});
}

TEST_F(ExitTest, TheBootOptionOfAHardDiscReachesItsFile) {
  ImageBuilder image(4224);
  image.WriteTo(folder_ / "disc.dat");
  Start("\"" + (folder_ / "disc.dat") + "\"");
  ASSERT_EQ(SetBootOption(*disc_, 2, MapSums::kLeave), Outcome::kDone);
  window_->close();
  EXPECT_EQ(ReadAll(folder_ / "disc.dat")[509], 2);
}

}  // namespace
}  // namespace sectorbox::testing
