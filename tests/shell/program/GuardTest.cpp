#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "shell/window/CommandGuard.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/FileLists.h"

// What the user does while a command runs, in the events that the command lets run: no other
// command starts, and afterwards everything works again.
namespace sectorbox::testing {
namespace {

const QString kProgress = QStringLiteral("frmSave");

class GuardTest : public WindowTest {
 protected:
  GuardTest() {
    image_.AddFile(2, {"ALPHA", {1, 2, 3}, 0xFFFF1900, 0x8023, "WR"});
    const auto dir = image_.AddDirectory(2, "DIR");
    for (int i = 0; i < 5; ++i) image_.AddFile(dir, {"F" + std::to_string(i), {1}});
    image_.AddDirectory(2, "OTHER");
  }

  // Runs action once, from the events that a running command lets run, when hasCome gives true. If
  // the test gives no hasCome, that is when a command or a view runs and no dialog is up.
  using Moment = std::function<bool()>;
  void DuringACommand(std::function<void()> action, Moment hasCome = {}) {
    if (!hasCome) hasCome = [this] { return IsBusy() || !Views().empty(); };
    auto* during = new QTimer(window_.get());
    QObject::connect(during, &QTimer::timeout, during, [=, this] {
      if ((Dialog() != nullptr && Dialog()->objectName() != kProgress) || !hasCome()) return;
      during->stop();
      during->deleteLater();
      action();
      done_ = true;
    });
    during->start(0);
  }
  static QWidget* Dialog() { return QApplication::activeModalWidget(); }
  static bool ProgressShows() { return Dialog() != nullptr && Dialog()->objectName() == kProgress; }
  // True if a command runs that lets no other one start.
  bool IsBusy() { return !window_->Guard().MayStart(CommandKind::kChange); }
  static std::vector<QWidget*> Views() {
    std::vector<QWidget*> views;
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (top->objectName() == QStringLiteral("frmView") && top->isVisible()) views.push_back(top);
    }
    return views;
  }

  // Everything that a user can do in the window. None of it may have an effect.
  void TryEverything() {
    const std::string image = disc_->ImageName;
    const QStringList nodes = Nodes();
    const QStringList names = Names();
    const auto current = window_->CurrentNode();
    for (const char* entry : {"mnuDiscOpen",        "mnuDiscNew80DSD",     "mnuDiscNew1M",
                              "mnuDiscSave",        "mnuDiscResize32M",    "mnuDiscBoot",
                              "mnuDiscMap",         "mnuDiscCompact",      "mnuCFCardOpen",
                              "mnuCFFormat",        "mnuCFCardBackup",     "mnuCFCardRestore",
                              "mnuDirectoryNew",    "mnuDirectoryDelete",  "mnuDirectoryRename",
                              "mnuDirectoryExport", "mnuDirectoryTitle",   "mnuDirectoryCat",
                              "mnuFileViewHex",     "mnuFileViewTeletext", "mnuFileSelectAll",
                              "mnuFileAttributes",  "mnuFileAddresses",    "mnuFileDelete",
                              "mnuFileRename",      "mnuFileExport",       "mnuXferRX0",
                              "mnuXferTX0",         "mnuXferCli",          "mnuXferSerialReconnect",
                              "mnuXferTraceFile",   "mnuHelpAbout"}) {
      window_->Action(entry)->trigger();
    }
    for (const char* button : {"New", "Open", "Save", "Up One Level"}) {
      Find<QAction>(button).trigger();
    }
    Panes& panes = window_->ThePanes();
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_F2, Qt::Key_F5, Qt::Key_Down}) {
      QTest::keyClick(&panes.Tree(), key);
      QTest::keyClick(&panes.List(), key);
    }
    WriteText(folder_ / "DROPPED", "x");
    panes.List().Dropped(*FileListData({folder_ / "DROPPED"}));
    panes.List().HeadingClicked(kColSize);
    for (const QString& node : {QStringLiteral("$"), QStringLiteral("OTHER")}) {
      if (nodes.contains(node) && panes.Tree().isVisible()) ClickNode(node);
    }
    EXPECT_EQ(disc_->ImageName, image);
    EXPECT_EQ(Nodes(), nodes);
    EXPECT_EQ(Names(), names);
    EXPECT_EQ(window_->CurrentNode().has_value(), current.has_value());
    if (current) {
      EXPECT_EQ(window_->CurrentNode()->Tag, current->Tag);
    }
    EXPECT_TRUE(Views().empty());
    EXPECT_EQ(Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName")), nullptr);
    EXPECT_EQ(Find("lvwDB").findChild<QLineEdit*>(QStringLiteral("txtName")), nullptr);
  }

  // The window takes commands again.
  void ExpectAlive() {
    EXPECT_FALSE(IsBusy());
    ClickNode(QStringLiteral("$"));
    Choose("mnuDirectoryNew");
    EXPECT_TRUE(Nodes().contains(QStringLiteral("NewFolder")));
    ClickNode(QStringLiteral("$"));
    EXPECT_EQ(window_->CurrentNode()->Tag, 2);
    EXPECT_TRUE(Names().contains(QStringLiteral("NewFolder")));
  }
  bool OnDisc(const char* name) { return FindEntry(*disc_, 2, name) != -1; }

  ImageBuilder image_{2560};
  bool done_ = false;  // what DuringACommand was given
};

TEST_F(GuardTest, NothingStartsWhileANewDiscIsMade) {
  StartWith(image_);
  DuringACommand([this] { TryEverything(); },
                 [this] { return IsBusy() && disc_->ImageName == folder_ / "new.dat"; });
  player_.ExpectFileDialog(folder_ / "new.dat");
  Choose("mnuDiscNew4M");
  EXPECT_TRUE(done_);
  EXPECT_EQ(disc_->ImageName, folder_ / "new.dat");
  EXPECT_EQ(Nodes(), QStringList{QStringLiteral("$")});
  EXPECT_TRUE(Names().isEmpty());
  ExpectAlive();
}

TEST_F(GuardTest, NoOtherImageIsOpenedWhileADiscOf512MegabytesIsMade) {
  StartWith(image_);
  DuringACommand(
      [this] {
        window_->Action("mnuDiscOpen")->trigger();
        Find<QAction>("Open").trigger();
      },
      [this] { return IsBusy() && disc_->ImageName == folder_ / "new.dat"; });
  player_.ExpectFileDialog(folder_ / "new.dat");
  Choose("mnuDiscNew512M");
  EXPECT_TRUE(done_);
  EXPECT_EQ(disc_->ImageName, folder_ / "new.dat");
  EXPECT_EQ(std::filesystem::file_size(folder_ / "new.dat"), 16384U * 4 * 33 * 256);
  EXPECT_EQ(Panel(2), QStringLiteral("the BBC can't write to a disc of this size"));
}

TEST_F(GuardTest, NothingStartsWhileADirectoryIsDeleted) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  DuringACommand([this] { TryEverything(); });
  Choose("mnuDirectoryDelete");
  EXPECT_TRUE(done_);
  EXPECT_FALSE(OnDisc("DIR"));
  EXPECT_TRUE(OnDisc("ALPHA"));
  EXPECT_TRUE(OnDisc("OTHER"));
  EXPECT_EQ(Nodes(), QStringList({QStringLiteral("$"), QStringLiteral("OTHER")}));
  ExpectAlive();
}

TEST_F(GuardTest, NothingStartsWhileADiscIsSavedWithProgress) {
  ImageBuilder image(8448);
  image.AddDirectory(2, "OTHER");
  StartWith(image, "test.dat");
  player_.PassOverProgress = true;
  DuringACommand([this] { TryEverything(); }, ProgressShows);
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
  player_.ExpectFileDialog(folder_ / "copy.dat");
  Choose("mnuOptionsPad");
  Choose("mnuDiscSave");
  EXPECT_TRUE(done_);
  EXPECT_EQ(ReadAll(folder_ / "copy.dat").size(), 8448U * 256);
  ExpectAlive();
}

TEST_F(GuardTest, AbortEndsASaveWhileItRuns) {
  ImageBuilder image(8448);
  StartWith(image, "test.dat");
  player_.PassOverProgress = true;
  DuringACommand([] { In<QPushButton>(*Dialog(), "cmdAbort").click(); }, ProgressShows);
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
  player_.ExpectFileDialog(folder_ / "copy.dat");
  Choose("mnuOptionsPad");
  Choose("mnuDiscSave");
  EXPECT_TRUE(done_);
  EXPECT_LT(ReadAll(folder_ / "copy.dat").size(), 8448U * 256);
  ExpectAlive();
}

TEST_F(GuardTest, NothingStartsWhileTheTreeIsRebuilt) {
  StartWith(image_);
  DuringACommand([this] { TryEverything(); });
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_TRUE(done_);
  EXPECT_EQ(Nodes(),
            QStringList({QStringLiteral("$"), QStringLiteral("DIR"), QStringLiteral("OTHER")}));
  ExpectAlive();
}

TEST_F(GuardTest, AnOptionMayBeFlippedWhileACommandRunsAndARefusedPortKeepsItsMark) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  ASSERT_TRUE(window_->Checked("mnuXferSerialCom1"));
  DuringACommand([this] {
    Choose("mnuOptionsPlayWave");
    Choose("mnuXferSerialCom3");
    Choose("mnuXferSerialCom1");
  });
  Choose("mnuDirectoryDelete");
  EXPECT_TRUE(done_);
  EXPECT_TRUE(window_->Checked("mnuOptionsPlayWave"));
  EXPECT_TRUE(window_->Checked("mnuXferSerialCom1"));
  EXPECT_FALSE(window_->Checked("mnuXferSerialCom3"));
  Choose("mnuXferSerialCom3");
  EXPECT_TRUE(window_->Checked("mnuXferSerialCom3"));
}

class GuardExitTest : public GuardTest, public ::testing::WithParamInterface<bool> {};

// The command goes on to its end, and then the program ends as it would have: with the question.
TEST_P(GuardExitTest, AnEndDuringACommandIsMadeUpForAtItsEnd) {
  const bool byMenu = GetParam();
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  DuringACommand([&] {
    if (byMenu) {
      Choose("mnuDiscClose");
    } else {
      EXPECT_FALSE(window_->close());
    }
    EXPECT_TRUE(window_->isVisible());
    EXPECT_TRUE(ends_.empty());
  });
  player_.ExpectYesNo(QStringLiteral("Save your changes now ?"), true);
  player_.ExpectFileDialog(folder_ / "saved.adl");
  window_->Action("mnuDirectoryDelete")->trigger();
  EXPECT_TRUE(done_);
  EXPECT_EQ(ends_, std::vector<int>{0});
  EXPECT_FALSE(window_->isVisible());
  StartAgain("\"" + (folder_ / "saved.adl") + "\"");
  EXPECT_EQ(Names(), QStringList({QStringLiteral("ALPHA"), QStringLiteral("OTHER")}));
}

INSTANTIATE_TEST_SUITE_P(By, GuardExitTest, ::testing::Bool(), [](const auto& test) {
  return std::string(test.param ? "Menu" : "CloseBox");
});

class GuardViewTest : public GuardTest {
 protected:
  void StartWithALongFile() {
    image_.AddFile(2, {"LONG", std::vector<std::uint8_t>(100000, 'x')});
    StartWith(image_);
    ClickRow(QStringLiteral("LONG"));
  }
};

TEST_F(GuardViewTest, WhileAViewRunsTheUserLooksAroundAndOpensMoreViews) {
  StartWithALongFile();
  DuringACommand([this] {
    ClickNode(QStringLiteral("DIR"));
    EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
    EXPECT_EQ(Names().size(), 5);
    Choose("mnuDirectoryCat");
    EXPECT_EQ(Views().size(), 2U);
    player_.Expect([](QWidget& dialog) { dialog.close(); });
    Choose("mnuHelpAbout");
  });
  Choose("mnuFileViewHex");
  EXPECT_TRUE(done_);
  EXPECT_EQ(Views().size(), 2U);
  for (QWidget* view : Views()) view->close();
  ExpectAlive();
}

TEST_F(GuardViewTest, WhileAViewRunsTheDiscMayBeChangedAndTheViewGoesOn) {
  StartWithALongFile();
  DuringACommand([&] {
    Choose("mnuDiscCompact");
    WriteText(folder_ / "DROPPED", "x");
    window_->ThePanes().List().Dropped(*FileListData({folder_ / "DROPPED"}));
  });
  Choose("mnuFileViewHex");
  EXPECT_TRUE(done_);
  EXPECT_TRUE(disc_->ImageChanged);
  EXPECT_TRUE(Names().contains(QStringLiteral("DROPPED")));
  ASSERT_EQ(Views().size(), 1U);
  for (QWidget* view : Views()) view->close();
  ExpectAlive();
}

TEST_F(GuardViewTest, TheExitEntryEndsTheProgramWhileAViewRuns) {
  StartWithALongFile();
  DuringACommand([this] {
    Choose("mnuDiscClose");
    EXPECT_EQ(ends_, std::vector<int>{0});
  });
  Choose("mnuFileViewHex");
  EXPECT_TRUE(done_);
  EXPECT_EQ(ends_, std::vector<int>{0});
}

}  // namespace
}  // namespace sectorbox::testing
