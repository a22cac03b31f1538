// The CF Card menu and its two dialogs, as the user works them.

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include "cfcard/cards/CardMenu.h"
#include "shell/commands/CFCommands.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

QStringList Rows(QWidget& dialog) {
  const auto& list = In<QComboBox>(dialog, "cmbCFCard");
  QStringList rows;
  for (int i = 0; i < list.count(); ++i) rows.append(list.itemText(i));
  return rows;
}

class CardWindow : public WindowTest {
 protected:
  CardWindow() { player_.PassOverProgress = true; }

  // A window with one card in memory under the letter C.
  void StartWithCard(const std::vector<std::uint8_t>& partition0 = {}) {
    SettingsStore().PutString("CardFiles", QStringLiteral("/my card"));
    Start();
    for (std::size_t i = 0; i < partition0.size(); ++i) {
      if (partition0[i] != 0) device_->Poke(2 * i, partition0[i]);
    }
  }
  static std::vector<std::uint8_t> DiscWithAFile() {
    ImageBuilder builder(4096);
    builder.AddFile(2, {"HELLO", std::vector<std::uint8_t>(1000, 0x41)});
    return builder.Bytes();
  }
  void ExpectChoice(int row) {
    player_.Expect([row](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName(), QStringLiteral("frmCF"));
      In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(row);
      In<QPushButton>(dialog, "mnuOK").click();
    });
  }
  void ExpectBlank() {
    EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - NewDisc.adl"));
    EXPECT_EQ(Panel(1).toStdString(), " 653568 Bytes Free,  1792 Bytes Used");
    EXPECT_TRUE(Names().isEmpty());
  }
};

TEST_F(CardWindow, WithoutACardTheDialogStaysAsItWasMade) {
  Start();
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmCF"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select CF Card"));
    EXPECT_EQ(In<QLabel>(dialog, "lblCFCard").text(), QStringLiteral("No CF Card Detected"));
    EXPECT_FALSE(In<QComboBox>(dialog, "cmbCFCard").isEnabled());
    EXPECT_FALSE(In<QCheckBox>(dialog, "chkNonADFS").isChecked());
    EXPECT_EQ(In<QCheckBox>(dialog, "chkNonADFS").text(),
              QStringLiteral("Include Non ADFS Partitions"));
    In<QPushButton>(dialog, "mnuOK").click();
  });
  Choose("mnuCFCardOpen");
  ExpectBlank();
}

TEST_F(CardWindow, OpeningShowsTheCardsFilesAndKeepsItsName) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(In<QLabel>(dialog, "lblCFCard").text(), QStringLiteral("Please Select CF Card"));
    EXPECT_EQ(Rows(dialog), QStringList({QStringLiteral("C: - Partition 0")}));
    EXPECT_EQ(In<QComboBox>(dialog, "cmbCFCard").currentText(), QString());
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QPushButton>(dialog, "mnuOK").click();
  });
  Choose("mnuCFCardOpen");
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,0"));
  EXPECT_EQ(Names(), QStringList({QStringLiteral("HELLO")}));
  EXPECT_EQ(SettingsStore().GetString("Root"), QStringLiteral("C:,0"));
  EXPECT_EQ(device_->OpenedPath, "/my card");
}

TEST_F(CardWindow, TheTickBringsInWhatIsNotOfAdfs) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(Rows(dialog), QStringList({QStringLiteral("C: - Partition 0"),
                                         QStringLiteral("C: - Non ADFS Partition 1")}));
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(Rows(dialog).size(), 1);
    In<QPushButton>(dialog, "mnuCancel").click();
  });
  Choose("mnuCFCardOpen");
  ExpectBlank();
}

TEST_F(CardWindow, TheChosenRowStaysChosenWhenTheTickChangesAndTheListStillHasIt) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    auto& list = In<QComboBox>(dialog, "cmbCFCard");
    list.setCurrentIndex(0);
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(list.currentText(), QStringLiteral("C: - Partition 0"));
    list.setCurrentIndex(1);
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(list.currentIndex(), -1) << "the chosen row has left the list";
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(list.currentIndex(), -1);
    In<QPushButton>(dialog, "mnuCancel").click();
  });
  Choose("mnuCFCardOpen");
  ExpectBlank();
}

TEST_F(CardWindow, OkWithoutAChosenRowLeavesTheDialogOpenWithTheFocusOnTheList) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    In<QPushButton>(dialog, "mnuOK").setFocus();
    In<QPushButton>(dialog, "mnuOK").click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.focusWidget(), &In<QComboBox>(dialog, "cmbCFCard"));
    EXPECT_TRUE(In<QPushButton>(dialog, "mnuOK").isEnabled());
    In<QPushButton>(dialog, "mnuCancel").click();
  });
  Choose("mnuCFCardOpen");
  ExpectBlank();
  EXPECT_EQ(Panel(2), QStringLiteral("$"));
}

TEST_F(CardWindow, CancelAndTheCloseBoxLeaveTheBlankImage) {
  StartWithCard(DiscWithAFile());
  for (const char* entry : {"mnuCFCardOpen", "mnuCFFormat", "mnuCFCardBackup",
                            "mnuCFCardFullBackup", "mnuCFCardRestore"}) {
    player_.Expect([](QWidget& dialog) { dialog.close(); });
    Choose(entry);
    ExpectBlank();
  }
}

TEST_F(CardWindow, TheFormatDialogIsFilledOnLoad) {
  Start();
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmFormatCF"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Format CF Card"));
    const auto& sizes = In<QComboBox>(dialog, "cmbCapacity");
    EXPECT_EQ(sizes.count(), 10);
    EXPECT_EQ(sizes.currentText(), QStringLiteral("1MB"));
    EXPECT_EQ(sizes.itemText(9), QStringLiteral("512MB"));
    EXPECT_FALSE(In<QCheckBox>(dialog, "chkQuick").isChecked());
    EXPECT_FALSE(In<QCheckBox>(dialog, "chkNonADFS").isChecked());
    EXPECT_TRUE(In<QPushButton>(dialog, "btnOK").isEnabled());
    EXPECT_TRUE(In<QPushButton>(dialog, "btnCancel").isEnabled());
    EXPECT_FALSE(In<QPushButton>(dialog, "btnAbort").isEnabled());
    EXPECT_EQ(In<QProgressBar>(dialog, "pb1").value(), 0);
    EXPECT_EQ(In<QLabel>(dialog, "lblFormat").text(), QString());
    In<QPushButton>(dialog, "btnCancel").click();
  });
  Choose("mnuCFFormat");
  ExpectBlank();
}

TEST_F(CardWindow, FormatMakesADiscAndOpensIt) {
  StartWithCard();
  player_.Expect([](QWidget& dialog) {
    In<QCheckBox>(dialog, "chkNonADFS").click();
    EXPECT_EQ(Rows(dialog).size(), 2);
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(1);
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,1"));
  EXPECT_EQ(device_->Peek((std::uint64_t{1} << 30) + 2 * 513), 'H');
  EXPECT_EQ(device_->Peek((std::uint64_t{1} << 30) + 2 * 253), 0x10);
}

TEST_F(CardWindow, OkInTheFormatDialogWithoutACardIsCancel) {
  Start();
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(In<QLabel>(dialog, "lblCFCard").text(), QStringLiteral("No CF Card Detected"));
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  ExpectBlank();
  EXPECT_EQ(Panel(2), QStringLiteral("$"));
}

TEST_F(CardWindow, OkInTheFormatDialogWithoutAChosenRowWritesNothingAndStays) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(In<QComboBox>(dialog, "cmbCFCard").currentIndex(), -1);
    In<QPushButton>(dialog, "btnOK").click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.focusWidget(), &In<QComboBox>(dialog, "cmbCFCard"));
    EXPECT_TRUE(In<QPushButton>(dialog, "btnOK").isEnabled());
    In<QPushButton>(dialog, "btnCancel").click();
  });
  Choose("mnuCFFormat");
  ExpectBlank();
  for (const auto& transfer : device_->Transfers) EXPECT_FALSE(transfer.IsWrite);
}

TEST_F(CardWindow, AbortInTheWipeLeavesTheCardUnformattedAndTheBlankImage) {
  StartWithCard(DiscWithAFile());
  QTimer abort;
  player_.Expect([&](QWidget& dialog) {
    QObject::connect(&abort, &QTimer::timeout, &dialog, [&] {
      auto& button = In<QPushButton>(dialog, "btnAbort");
      if (!button.isEnabled()) return;
      EXPECT_FALSE(In<QPushButton>(dialog, "btnOK").isEnabled());
      EXPECT_FALSE(In<QPushButton>(dialog, "btnCancel").isEnabled());
      EXPECT_TRUE(
          In<QLabel>(dialog, "lblFormat").text().startsWith(QStringLiteral("Formatting Sectors ")));
      // The close box can't take the dialog away meanwhile; both ask the wipe to end.
      EXPECT_EQ(dialog.focusWidget(), &button);
      button.click();
      dialog.close();
      EXPECT_TRUE(dialog.isVisible());
    });
    abort.start(0);
    In<QComboBox>(dialog, "cmbCapacity").setCurrentIndex(9);
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  EXPECT_EQ(device_->Peek(2 * 513), 0);
  ExpectBlank();
}

TEST_F(CardWindow, CancellingTheFormatWithoutDrivesWritesNoImage) {
  StartWith(ImageBuilder(2560));
  const auto before = ReadAll(folder_ / "test.adl");
  disc_->TheDisc.Store(5000, 0x77);
  disc_->ImageChanged = true;
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), false);
  player_.Expect([](QWidget& dialog) { In<QPushButton>(dialog, "btnCancel").click(); });
  Choose("mnuCFFormat");
  EXPECT_EQ(ReadAll(folder_ / "test.adl"), before);
  ExpectBlank();
}

TEST_F(CardWindow, ABackupWritesTheChosenFileAndLeavesThePartitionOpen) {
  StartWithCard(DiscWithAFile());
  ExpectChoice(0);
  player_.ExpectFileDialog(folder_ / "b.dat", [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Backup CF Card Image As"));
  });
  const auto bytes = DiscWithAFile();
  window_->Action("mnuCFCardBackup")->trigger();
  EXPECT_EQ(ReadAll(folder_ / "b.dat"),
            std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 11 * 256));
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,0"));
}

TEST_F(CardWindow, ARestoreShowsTheFilesOfTheBackup) {
  StartWithCard();
  WriteAll(folder_ / "b.dat", DiscWithAFile());
  player_.Expect([](QWidget& dialog) {
    In<QCheckBox>(dialog, "chkNonADFS").click();
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QPushButton>(dialog, "mnuOK").click();
  });
  player_.ExpectFileDialog(folder_ / "b.dat");
  Choose("mnuCFCardRestore");
  EXPECT_EQ(Names(), QStringList({QStringLiteral("HELLO")}));
  EXPECT_EQ(device_->Peek(2 * 513), 'H');
}

TEST_F(CardWindow, ACardThatFailsIsStillToldWhenThePanesAreFilled) {
  StartWithCard(DiscWithAFile());
  ExpectChoice(0);
  device_->WritesLeft = 0;
  Choose("mnuCFCardOpen");
  ExpectChoice(0);
  WriteAll(folder_ / "b.dat", std::vector<std::uint8_t>(4 * 256, 0x11));
  player_.ExpectFileDialog(folder_ / "b.dat");
  player_.ExpectYesNo(QStringLiteral("b.dat Is No ADFS Disc. Restore It All The Same ?"), true);
  Choose("mnuCFCardRestore");
  EXPECT_EQ(Panel(2),
            QStringLiteral("C:,0: its first sectors can't be written, so nothing more was"));
}

TEST_F(CardWindow, SpaceAbortsAFormatAndReturnDoesNot) {
  StartWithCard(DiscWithAFile());
  QTimer during;
  int looks = 0;
  player_.Expect([&](QWidget& dialog) {
    QObject::connect(&during, &QTimer::timeout, &dialog, [&] {
      if (!In<QPushButton>(dialog, "btnAbort").isEnabled()) return;
      QTest::keyClick(dialog.focusWidget(), ++looks == 1 ? Qt::Key_Return : Qt::Key_Space);
      EXPECT_EQ(disc_->ProgressRunning, looks == 1);
    });
    during.start(0);
    In<QComboBox>(dialog, "cmbCapacity").setCurrentIndex(9);
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  EXPECT_EQ(looks, 2);
  ExpectBlank();
}

TEST_F(CardWindow, ALineOfWhatHappenedHasTheWholeBarUntilTheNextPath) {
  StartWithCard(DiscWithAFile());
  WriteAll(folder_ / "b.dat", std::vector<std::uint8_t>(3 << 20));
  device_->Shrink(4096);
  ExpectChoice(0);
  Choose("mnuCFCardOpen");
  Settle();
  auto& panel = Find<QLabel>("sbStatusBar2");
  const int narrow = panel.width();
  ExpectChoice(0);
  player_.ExpectFileDialog(folder_ / "b.dat");
  player_.ExpectYesNo(QStringLiteral("b.dat Is No ADFS Disc. Restore It All The Same ?"), true);
  Choose("mnuCFCardRestore");
  Settle();
  EXPECT_EQ(Panel(2).toStdString(),
            folder_ / "b.dat: 12288 sectors, of which the first 4096 fit on the partition");
  EXPECT_EQ(panel.toolTip(), Panel(2));
  for (const char* other : {"sbStatusBar1", "sbStatusBar3", "sbStatusBar4"}) {
    EXPECT_FALSE(Find(other).isVisible()) << other;
  }
  EXPECT_GT(panel.width(), 2 * narrow);
  EXPECT_GT(panel.width(), window_->width() * 3 / 4);
  window_->SetPanel2(QStringLiteral("$"));
  Settle();
  for (const char* other : {"sbStatusBar1", "sbStatusBar3", "sbStatusBar4"}) {
    EXPECT_TRUE(Find(other).isVisible()) << other;
  }
  EXPECT_LT(panel.width(), window_->width() / 2);
}

TEST_F(CardWindow, ACardThatFailsAtTheEndOfTheProgramIsToldOnStandardError) {
  StartWithCard(DiscWithAFile());
  ExpectChoice(0);
  Choose("mnuCFCardOpen");
  disc_->TheDisc.Store(0x10000, 1);
  device_->WritesLeft = 0;
  ::testing::internal::CaptureStderr();
  window_->close();
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "C:,0: sectors 256 to 259 can't be written in full\n");
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(CardWindow, ASizedFormatWithAWipeAsksForThePartitionOnly) {
  StartWithCard(DiscWithAFile());
  device_->Poke(2 * 1500000, 0xE5);
  ExpectChoice(0);
  window_->Cards().FormatBySize(SizedFormats()[1]);
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,0"));
  EXPECT_EQ(Panel(1).toStdString(), " 2095360 Bytes Free,  1792 Bytes Used");
  EXPECT_TRUE(Names().isEmpty());
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(device_->Peek(2 * 1500000), 0);
}

TEST_F(CardWindow, ASizedFormatWithoutAWipeFollowsTheFormatDialog) {
  StartWithCard(DiscWithAFile());
  device_->Poke(2 * 1500000, 0xE5);
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmFormatCF"));
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QCheckBox>(dialog, "chkQuick").click();
    In<QPushButton>(dialog, "btnOK").click();
  });
  window_->Cards().FormatBySize(SizedFormats()[11]);
  EXPECT_EQ(Panel(1).toStdString(), " 2095360 Bytes Free,  1792 Bytes Used");
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(device_->Peek(2 * 1500000), 0xE5);
}

TEST_F(CardWindow, ACancelledSizedFormatLeavesTheBlankImage) {
  StartWithCard(DiscWithAFile());
  player_.Expect([](QWidget& dialog) { In<QPushButton>(dialog, "mnuCancel").click(); });
  window_->Cards().FormatBySize(SizedFormats()[0]);
  ExpectBlank();
  for (const auto& transfer : device_->Transfers) EXPECT_FALSE(transfer.IsWrite);
}

TEST_F(CardWindow, BothDialogsShareOnePlace) {
  Start();
  player_.Expect([](QWidget& dialog) {
    dialog.move(30, 40);
    In<QPushButton>(dialog, "mnuCancel").click();
  });
  Choose("mnuCFCardOpen");
  EXPECT_EQ(SettingsStore().GetTwips("CFLeft", 0), 450);
  EXPECT_EQ(SettingsStore().GetTwips("CFTop", 0), 600);
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.pos(), QPoint(30, 40));
    In<QPushButton>(dialog, "btnCancel").click();
  });
  Choose("mnuCFFormat");
}

}  // namespace
}  // namespace sectorbox::testing
