#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <filesystem>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "shell/commands/ResizeAnswer.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

class DiscCommandsTest : public WindowTest {
 protected:
  // Answers the boot dialog: looks at which option is on, then chooses another, or Cancel.
  void ExpectBoot(const char* on, const char* choose, const char* button = "cmdOK") {
    player_.Expect([=](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName(), QStringLiteral("frmBoot"));
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Set Boot Attributes"));
      const auto option = [&](const char* name) {
        return dialog.findChild<QRadioButton*>(QString::fromLatin1(name));
      };
      EXPECT_TRUE(option(on)->isChecked());
      option(choose)->setChecked(true);
      dialog.findChild<QPushButton*>(QString::fromLatin1(button))->click();
    });
  }
};

TEST_F(DiscCommandsTest, OpenAsksForAnImageAndOpensIt) {
  ImageBuilder image(1280);
  image.AddFile(2, {"HELLO", {1}});
  image.WriteTo(folder_ / "OLD.ADF");
  Start();
  player_.ExpectFileDialog(folder_ / "OLD.ADF", [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open ADFS Disc Image"));
    EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).nameFilters(),
              QStringList{QStringLiteral("ADFS Disc (*.adl *.adf *.dat)")});
  });
  Choose("mnuDiscOpen");
  EXPECT_EQ(Names(), QStringList{QStringLiteral("HELLO")});
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - ") + FromHost(folder_ / "OLD.ADF"));
}

TEST_F(DiscCommandsTest, ANameThatDoesNotExistIsToldAndTheDiscStays) {
  Start();
  const std::string path = folder_ / "missing.adl";
  player_.ExpectFileDialog(path);
  player_.ExpectBox(QStringLiteral("File Not Found : ") + FromHost(path));
  Choose("mnuDiscOpen");
  EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
}

TEST_F(DiscCommandsTest, ANewDiscIsMadeUnderTheChosenName) {
  Start();
  const std::pair<const char*, const char*> entries[] = {{"mnuDiscNew80SSD", "NewDisc.adf"},
                                                         {"mnuDiscNew80DSD", "NewDisc.adl"},
                                                         {"mnuDiscNew1M", "NewDisc.dat"}};
  for (const auto& [entry, name] : entries) {
    const std::string path = folder_ / (std::string("made-") + name);
    player_.ExpectFileDialog(path, [name = name](QWidget& dialog) {
      auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      EXPECT_EQ(field->text(), QString::fromLatin1(name));
    });
    Choose(entry);
    EXPECT_EQ(disc_->ImageName, path);
    EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - ") + FromHost(path));
  }
  EXPECT_TRUE(std::filesystem::exists(folder_ / "made-NewDisc.dsc"));
}

TEST_F(DiscCommandsTest, ANewDiscReplacesAFileThatExistsOnlyAfterAQuestion) {
  Start();
  const std::string path = folder_ / "x.dat";
  WriteText(path, "older");
  const QString question = QStringLiteral("x.dat already exists. Do you want to replace it ?");
  for (const bool replace : {false, true}) {
    player_.ExpectFileDialog(path);
    player_.ExpectYesNo(question, replace);
    Choose("mnuDiscNew1M");
    EXPECT_EQ(ReadText(path) == "older", !replace);
    EXPECT_EQ(disc_->ImageName, replace ? path : "NewDisc.adl");
  }
}

TEST_F(DiscCommandsTest, ANewDiscDoesNotPutItsCompanionOverAnotherFile) {
  Start();
  WriteText(folder_ / "x.dsc", "a letter");
  player_.ExpectFileDialog(folder_ / "x.dat");
  player_.ExpectBox(FromHost(folder_ / "x.dsc") +
                    QStringLiteral(": stands where the companion goes. "
                                   "Move it to another place first"));
  Choose("mnuDiscNew1M");
  EXPECT_EQ(ReadText(folder_ / "x.dsc"), "a letter");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "x.dat"));
  EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
}

TEST_F(DiscCommandsTest, TheToolBarsNewAsksForA640KDisc) {
  Start();
  player_.ExpectFileDialog("", [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Create ADFS Disc Image As"));
  });
  Find<QAction>("New").trigger();
}

TEST_F(DiscCommandsTest, SaveAsksIfTheUserIsSureAndReplacesWithoutAFurtherQuestion) {
  ImageBuilder image(2560);
  StartWith(image);
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  WriteText(folder_ / "there.adl", "old");
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
  player_.ExpectFileDialog(folder_ / "there.adl");
  Choose("mnuDiscSave");
  EXPECT_EQ(disc_->ImageName, folder_ / "there.adl");
  EXPECT_EQ(ReadAll(folder_ / "there.adl").size(), 655360u);
  EXPECT_FALSE(disc_->ImageChanged);
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), false);
  Find<QAction>("Save").trigger();
}

TEST_F(DiscCommandsTest, ANameWithoutASuffixIsTakenAsItWasTyped) {
  Start();
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
  player_.ExpectFileDialog(folder_ / "PLAIN");
  Choose("mnuDiscSave");
  EXPECT_TRUE(std::filesystem::exists(folder_ / "PLAIN"));
}

TEST_F(DiscCommandsTest, TheBootDialogShowsTheLowTwoBitsAndWritesTheWholeByte) {
  ImageBuilder image(2560);
  image.SetBootOption(7);
  StartWith(image);
  const QString caption = window_->windowTitle();
  const auto checksum = disc_->TheDisc.Fetch(511);
  ExpectBoot("optExec", "optOff");
  Choose("mnuDiscBoot");
  EXPECT_EQ(disc_->TheDisc.Fetch(509), 0);
  EXPECT_EQ(disc_->TheDisc.Fetch(511), checksum);
  EXPECT_EQ(window_->windowTitle(), caption);
  window_->close();  // and nothing is asked
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(DiscCommandsTest, ACancelledBootDialogWritesNothing) {
  ImageBuilder image(2560);
  image.SetBootOption(5);
  StartWith(image);
  ExpectBoot("optLoad", "optRun", "cmdCancel");
  Choose("mnuDiscBoot");
  EXPECT_EQ(disc_->TheDisc.Fetch(509), 5);
}

TEST_F(DiscCommandsTest, CompactingClosesTheHolesAndRebuildsTheTree) {
  ImageBuilder image(2560);
  image.AddHole(3);
  const auto dir = image.AddDirectory(2, "DIR");
  StartWith(image);
  Choose("mnuDiscCompact");
  EXPECT_EQ(disc_->FreeCount, 1);
  EXPECT_EQ(Node(QStringLiteral("DIR")).Tag, dir - 3);
  EXPECT_EQ(window_->windowTitle().right(1), QStringLiteral("*"));
}

TEST_F(DiscCommandsTest, ADamagedDiscIsNotCompactedAndTheStatusShowsItsSpaceAgain) {
  ImageBuilder image(2560);
  image.AddHole(3);
  image.AddDirectory(2, "LOOP");
  image.Poke(512 + 5 + 22, 2);  // LOOP is the root itself
  StartWith(image);
  const QString space = Panel(1);
  player_.ExpectBox(QStringLiteral("Cannot Compact A Damaged Disc"));
  Choose("mnuDiscCompact");
  EXPECT_EQ(Panel(1), space);
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(DiscCommandsTest, EachSizeOfTheResizeMenuIsMadeOfTracksOf132Sectors) {
  const std::pair<const char*, std::int32_t> entries[] = {{"mnuDiscResize32M", 1024},
                                                          {"mnuDiscResize64M", 2048},
                                                          {"mnuDiscResize128M", 4096},
                                                          {"mnuDiscResize256M", 8192}};
  ImageBuilder(4224).WriteTo(folder_ / "disc.dat");
  Start();
  for (const auto& [entry, tracks] : entries) {
    player_.ExpectFileDialog(folder_ / "disc.dat", [](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open ADFS Disc Image"));
    });
    Choose(entry);
    EXPECT_EQ(MapDiscSize(*disc_), tracks * 132) << entry;
    EXPECT_EQ(disc_->FreeLen[0], tracks * 132 - 7) << entry;
    EXPECT_EQ(disc_->ImageName, folder_ / "disc.dat");
  }
}

TEST_F(DiscCommandsTest, AResizeAsksAboutUnsavedChangesBeforeItAsksForTheImage) {
  Start();
  ASSERT_TRUE(NewDirectory(*disc_, 2, "DIR").has_value());
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), false);
  player_.ExpectFileDialog("");
  Choose("mnuDiscResize32M");
  EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
  EXPECT_NE(FindEntry(*disc_, 2, "DIR"), -1);
}

TEST_F(DiscCommandsTest, AResizeAnswerThatIsNoNumberChangesNoImage) {
  Start();
  for (const char* answer : {"many", "", "12 MB", "1,000", "-4", "1e300", "nan"}) {
    player_.Expect([=](QWidget& dialog) {
      auto& prompt = dynamic_cast<QInputDialog&>(dialog);
      EXPECT_EQ(prompt.windowTitle(), QStringLiteral("Disc Resize"));
      EXPECT_EQ(prompt.labelText(), QStringLiteral("Enter Size Of Required Image (In MB)"));
      EXPECT_EQ(prompt.textValue(), QStringLiteral("256"));
      prompt.setTextValue(QString::fromLatin1(answer));
      prompt.accept();
    });
    player_.ExpectBox(QStringLiteral("\"%1\" is not a size in MB. No image was changed.")
                          .arg(QLatin1String(answer)));
    Choose("mnuDiscResizeUser");
  }
}

TEST_F(DiscCommandsTest, ACancelledResizePromptSaysNothing) {
  Start();
  player_.Expect([](QWidget& dialog) { dynamic_cast<QInputDialog&>(dialog).reject(); });
  Choose("mnuDiscResizeUser");
}

TEST_F(DiscCommandsTest, AResizeChangesTheChosenImageAndOpensIt) {
  ImageBuilder image(4224);
  image.WriteTo(folder_ / "disc.dat");
  Start();
  player_.Expect([](QWidget& dialog) {
    dynamic_cast<QInputDialog&>(dialog).setTextValue(QStringLiteral("2"));
    dynamic_cast<QInputDialog&>(dialog).accept();
  });
  player_.ExpectFileDialog(folder_ / "disc.dat");
  Choose("mnuDiscResizeUser");
  EXPECT_EQ(MapDiscSize(*disc_), 8448);
  EXPECT_EQ(disc_->ImageName, folder_ / "disc.dat");
}

TEST(ResizeAnswerTest, ThirtyTwoTracksAMegabyteToTheNearestWholeNumber) {
  EXPECT_EQ(TracksOfAnswer(QStringLiteral("256")), 8192);
  EXPECT_EQ(TracksOfAnswer(QStringLiteral(" 1.5 ")), 48);
  EXPECT_EQ(TracksOfAnswer(QStringLiteral("0.04")), 1);
  EXPECT_EQ(TracksOfAnswer(QStringLiteral("0.01")), std::nullopt);
  EXPECT_EQ(TracksOfAnswer(QStringLiteral("5000")), std::nullopt);
}

TEST(FileDialogTest, FiltersTakeTheDialogsForm) {
  EXPECT_EQ(FiltersOf("Save File (*.TXT)|*.txt|All Files (*.*)|*.*"),
            (QStringList{QStringLiteral("Save File (*.txt)"), QStringLiteral("All Files (*)")}));
  EXPECT_EQ(FiltersOf("ADFS Disc (*.adl;*.adf)|*.adl;*.adf"),
            QStringList{QStringLiteral("ADFS Disc (*.adl *.adf)")});
}

TEST_F(DiscCommandsTest, BothHelpEntriesSayThatThereIsNoHelp) {
  Start();
  for (const char* entry : {"mnuHelpContents", "mnuHelpSearch"}) {
    player_.ExpectBox(QStringLiteral("Unable to display Help Contents. There is no Help associated "
                                     "with this project."),
                      window_->windowTitle());
    Choose(entry);
  }
}

TEST_F(DiscCommandsTest, TheAboutBoxShowsTheVersion) {
  Start();
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmAbout"));
    static const QRegularExpression kVersion(QStringLiteral("^Version \\d+\\.\\d+\\.\\d+$"));
    EXPECT_TRUE(
        kVersion.match(dialog.findChild<QLabel*>(QStringLiteral("lblVersion"))->text()).hasMatch());
    dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
  });
  Choose("mnuHelpAbout");
}

TEST_F(DiscCommandsTest, ChoosingAnOptionFlipsItsCheckMark) {
  Start();
  for (const char* entry : {"mnuOptionsDelete", "mnuOptionsOverwrite", "mnuOptionsEmpty",
                            "mnuOptionsPad", "mnuOptionsPlayWave", "mnuOptionsAutoLoad",
                            "mnuOptionsInterleave", "mnuOptionsViewAs", "mnuXferCBW"}) {
    const bool before = window_->Checked(entry);
    Choose(entry);
    EXPECT_NE(window_->Checked(entry), before) << entry;
  }
}

TEST_F(DiscCommandsTest, AnImageThatCannotBeReadIsABoxAndTheOldDiscStays) {
  ImageBuilder image(2560);
  image.AddFile(2, {"MINE", {1}});
  StartWith(image);
  // It opens, for the superuser too, and can't be read from its start.
  const std::string path = folder_ / "broken.adl";
  std::filesystem::create_symlink("/proc/self/mem", path);
  player_.ExpectFileDialog(path);
  player_.ExpectBox(FromHost(path) + QStringLiteral(": Input/output error"),
                    QStringLiteral("Sectorbox"));
  Choose("mnuDiscOpen");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(disc_->ImageName, folder_ / "test.adl");
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_EQ(Names(), QStringList{QStringLiteral("MINE")});
}

TEST_F(DiscCommandsTest, TheProgressDialogKeepsItsPlaceAndAbortClearsTheGoOnFlag) {
  Start();
  host_->OpenProgress("Restore Image");
  EXPECT_TRUE(disc_->ProgressRunning);
  auto& dialog = Find<QDialog>("frmSave");
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Restore Image"));
  dialog.move(30, 40);
  bool aborted = false;
  player_.Expect([&](QWidget& shown) {
    shown.findChild<QPushButton*>(QStringLiteral("cmdAbort"))->click();
    aborted = true;
  });
  host_->ShowProgress("Restoring Sectors 0 Of 9", 50);
  EXPECT_EQ(Find<QLabel>("lblSave").text(), QStringLiteral("Restoring Sectors 0 Of 9"));
  while (!aborted) QApplication::processEvents();
  EXPECT_FALSE(disc_->ProgressRunning);
  host_->CloseProgress();
  EXPECT_EQ(SettingsStore().GetString("SaveLeft"), QStringLiteral("450"));
  EXPECT_EQ(SettingsStore().GetString("SaveTop"), QStringLiteral("600"));
}

}  // namespace
}  // namespace sectorbox::testing
