// Undo and redo in the window: what is a step, what the menu says, and what the panes show.

#include <QLineEdit>
#include <QMenuBar>
#include <QTest>

#include "disc/change/Mutation.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "tests/shell/commands/FilesFixture.h"
#include "toolkit/FileLists.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

class UndoTest : public FileCommandsTest {
 protected:
  QString Undo() { return window_->Action("mnuToolsUndo")->text(); }
  QString Redo() { return window_->Action("mnuToolsRedo")->text(); }
  bool MayUndo() { return window_->Action("mnuToolsUndo")->isEnabled(); }
  bool MayRedo() { return window_->Action("mnuToolsRedo")->isEnabled(); }
  std::vector<std::uint8_t> Bytes() {
    std::vector<std::uint8_t> bytes(disc_->TheDisc.ImageBytes());
    disc_->TheDisc.FetchBytes(0, bytes);
    return bytes;
  }
  QStringList Selected() {
    QStringList names;
    FileList& list = window_->ThePanes().List();
    for (int row = 0; row < list.Model().rowCount(); ++row) {
      if (list.IsSelected(row)) {
        names.append(FromBbc(list.Model().Rows()[static_cast<std::size_t>(row)].Name()));
      }
    }
    return names;
  }
  // Runs the command, takes it back, does it again and takes it back once more. The bytes must come
  // and go, and the menu must have the name.
  void ExpectAStep(const char* name, const std::function<void()>& command) {
    SCOPED_TRACE(name);
    const auto before = Bytes();
    const QString path = Panel(2);
    command();
    const auto after = Bytes();
    EXPECT_NE(before, after);
    ASSERT_TRUE(MayUndo());
    EXPECT_EQ(Undo(), QStringLiteral("&Undo ") + QLatin1String(name));
    Choose("mnuToolsUndo");
    EXPECT_EQ(Bytes(), before);
    EXPECT_EQ(Redo(), QStringLiteral("&Redo ") + QLatin1String(name));
    EXPECT_EQ(Panel(2), QStringLiteral("Undone: ") + QLatin1String(name));
    Choose("mnuToolsRedo");
    EXPECT_EQ(Bytes(), after);
    EXPECT_EQ(Panel(2), QStringLiteral("Done again: ") + QLatin1String(name));
    Choose("mnuToolsUndo");
    EXPECT_EQ(Bytes(), before);
  }
};

TEST_F(UndoTest, TheToolsMenuStandsBeforeHelpAndItsEntriesAreGreyAtFirst) {
  StartWith(image_);
  const auto menus = window_->menuBar()->actions();
  ASSERT_GE(menus.size(), 3);
  EXPECT_EQ(menus[menus.size() - 3]->text(), window_->Action("mnuXfer")->text());
  EXPECT_EQ(menus[menus.size() - 2]->text(), QStringLiteral("&Tools"));
  EXPECT_EQ(menus.back()->text(), QStringLiteral("&Help"));
  EXPECT_EQ(Undo(), QStringLiteral("&Undo"));
  EXPECT_EQ(Redo(), QStringLiteral("&Redo"));
  EXPECT_FALSE(MayUndo());
  EXPECT_FALSE(MayRedo());
}

TEST_F(UndoTest, EveryCommandThatChangesTheDiscIsAStep) {
  StartWith(image_);
  WriteAll(folder_ / "ONE", {1, 2, 3});
  WriteAll(folder_ / "TWO", std::vector<std::uint8_t>(700, 7));
  std::filesystem::create_directory(folder_ / "HOST");
  WriteAll(folder_ / "HOST/IN", {1});
  const auto drop = [this](const std::vector<std::string>& paths) {
    window_->ThePanes().List().Dropped(*FileListData(paths));
  };
  ExpectAStep("Delete 2 Objects", [this] {
    Select({"ALPHA", "GAMMA"});
    Choose("mnuFileDelete");
  });
  ExpectAStep("Delete 1 Object", [this] {
    Select({"DIR"});
    Choose("mnuFileDelete");
  });
  ExpectAStep("Delete DIR", [this] {
    ClickNode(QStringLiteral("DIR"));
    Choose("mnuDirectoryDelete");
  });
  ExpectAStep("Rename GAMMA", [this] {
    ClickNode(QStringLiteral("$"));
    ClickRow(QStringLiteral("GAMMA"));
    Choose("mnuFileRename");
    Rename(QStringLiteral("DELTA"));
  });
  ExpectAStep("Add 2 Files", [&] { drop({folder_ / "ONE", folder_ / "TWO"}); });
  ExpectAStep("Add 2 Objects", [&] { drop({folder_ / "ONE", folder_ / "HOST"}); });
  ExpectAStep("Set Attributes", [this] {
    Select({"ALPHA"});
    player_.Expect([](QWidget& dialog) {
      In<QAbstractButton>(dialog, "chkLocked").setChecked(true);
      Push(dialog, "cmdOK");
    });
    Choose("mnuFileAttributes");
  });
  ExpectAStep("Set Addresses", [this] {
    ClickRow(QStringLiteral("ALPHA"));
    player_.Expect([](QWidget& dialog) {
      Type(dialog, "txtLoad", QStringLiteral("00001234"));
      Push(dialog, "cmdOK");
    });
    Choose("mnuFileAddresses");
  });
  ExpectAStep("Set Title", [this] {
    player_.Expect([](QWidget& dialog) {
      Type(dialog, "txtTitle", QStringLiteral("Another"));
      Push(dialog, "cmdOK");
    });
    Choose("mnuDirectoryTitle");
  });
  ExpectAStep("Set Boot Option", [this] {
    player_.Expect([](QWidget& dialog) {
      In<QAbstractButton>(dialog, "optExec").click();
      Push(dialog, "cmdOK");
    });
    Choose("mnuDiscBoot");
  });
  Select({"ALPHA"});
  Choose("mnuFileDelete");
  ExpectAStep("Compact Disc", [this] { Choose("mnuDiscCompact"); });
}

TEST_F(UndoTest, AnAmpersandInANameIsShown) {
  image_.AddFile(2, {"X&Y", {1}});
  StartWith(image_);
  ClickRow(QStringLiteral("X&Y"));
  Choose("mnuFileRename");
  Rename(QStringLiteral("Z"));
  EXPECT_EQ(Undo(), QStringLiteral("&Undo Rename X&&Y"));
}

TEST_F(UndoTest, ANewDirectoryAndItsNamingAreOneStep) {
  StartWith(image_);
  const auto before = Bytes();
  Choose("mnuDirectoryNew");
  EXPECT_EQ(Undo(), QStringLiteral("&Undo New Directory NewFolder"));
  auto* editor = Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  editor->setText(QStringLiteral("MINE"));
  QTest::keyClick(editor, Qt::Key_Return);
  Settle();
  EXPECT_EQ(Undo(), QStringLiteral("&Undo New Directory MINE"));
  const auto after = Bytes();
  Choose("mnuToolsUndo");
  EXPECT_EQ(Bytes(), before);
  EXPECT_FALSE(MayUndo());
  EXPECT_FALSE(Nodes().contains(QStringLiteral("MINE")));
  Choose("mnuToolsRedo");
  EXPECT_EQ(Bytes(), after);
  EXPECT_TRUE(Nodes().contains(QStringLiteral("MINE")));
  // A later renaming is a step of its own.
  ClickNode(QStringLiteral("MINE"));
  Choose("mnuDirectoryRename");
  editor = Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  editor->setText(QStringLiteral("YOURS"));
  QTest::keyClick(editor, Qt::Key_Return);
  Settle();
  EXPECT_EQ(Undo(), QStringLiteral("&Undo Rename MINE"));
}

TEST_F(UndoTest, ADeletionSaysWhatItTookAndWhichKeyBringsItBack) {
  StartWith(image_);
  Select({"ALPHA", "BETA", "GAMMA"});
  Choose("mnuFileDelete");
  EXPECT_EQ(Panel(2), QStringLiteral("3 objects deleted - Ctrl+Z takes it back"));
  Press(window_->ThePanes().List(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(OnDisc("BETA"));
  Select({"ALPHA"});
  Choose("mnuFileDelete");
  EXPECT_EQ(Panel(2), QStringLiteral("1 object deleted - Ctrl+Z takes it back"));
  ClickNode(QStringLiteral("DIR"));
  Press(window_->ThePanes().Tree(), Qt::Key_Delete);
  EXPECT_EQ(Panel(2), QStringLiteral("DIR deleted - Ctrl+Z takes it back"));
}

TEST_F(UndoTest, TheKeysUndoAndRedoInBothPanes) {
  StartWith(image_);
  for (QWidget* pane : {static_cast<QWidget*>(&window_->ThePanes().Tree()),
                        static_cast<QWidget*>(&window_->ThePanes().List())}) {
    ClickNode(QStringLiteral("$"));
    Select({"ALPHA"});
    Choose("mnuFileDelete");
    Press(*pane, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(OnDisc("ALPHA"));
    Press(*pane, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(OnDisc("ALPHA"));
    Press(*pane, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(OnDisc("ALPHA"));
    Press(*pane, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_FALSE(OnDisc("ALPHA"));
    Press(*pane, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(OnDisc("ALPHA"));
    Press(*pane, Qt::Key_Z);
    EXPECT_TRUE(OnDisc("ALPHA"));
  }
}

TEST_F(UndoTest, WhileANameIsEditedTheKeyBelongsToTheEditor) {
  StartWith(image_);
  Select({"ALPHA"});
  Choose("mnuFileDelete");
  ClickRow(QStringLiteral("GAMMA"));
  Choose("mnuFileRename");
  auto* editor = Find("lvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, QStringLiteral("X"));
  QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
  QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_FALSE(OnDisc("ALPHA"));
  QTest::keyClick(editor, Qt::Key_Escape);
  Settle();
  EXPECT_FALSE(OnDisc("ALPHA"));
}

TEST_F(UndoTest, TheRowsThatComeBackAreSelectedAndTheDirectoryStaysCurrent) {
  image_.AddFile(dir_, {"OTHER", {2}});
  image_.AddFile(dir_, {"THIRD", {3}});
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Select({"INSIDE", "THIRD"});
  Choose("mnuFileDelete");
  EXPECT_EQ(Names(), List({"OTHER"}));
  Choose("mnuToolsUndo");
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_EQ(Names(), List({"INSIDE", "OTHER", "THIRD"}));
  EXPECT_EQ(Selected(), List({"INSIDE", "THIRD"}));
  EXPECT_EQ(window_->CurrentItem()->Name(), "INSIDE");
  Choose("mnuToolsRedo");
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_EQ(Names(), List({"OTHER"}));
}

TEST_F(UndoTest, ADirectoryThatIsGoneAfterTheUndoGivesWayToTheRoot) {
  StartWith(image_);
  Choose("mnuDirectoryNew");
  auto* editor = Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  QTest::keyClick(editor, Qt::Key_Escape);
  Settle();
  ASSERT_EQ(window_->CurrentNode()->Text, "NewFolder");
  Choose("mnuToolsUndo");
  EXPECT_EQ(window_->CurrentNode()->Text, "$");
  EXPECT_EQ(Names(), List({"ALPHA", "BETA", "DIR", "GAMMA"}));
  // These rows didn't come back, and a Delete now must not take them.
  EXPECT_EQ(Selected(), QStringList());
}

TEST_F(UndoTest, ADirectoryThatGetsItsFormerNameBackStaysCurrent) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryRename");
  auto* editor = Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  editor->setText(QStringLiteral("OTHER"));
  QTest::keyClick(editor, Qt::Key_Return);
  Settle();
  Choose("mnuToolsUndo");
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_EQ(Names(), List({"INSIDE"}));
  EXPECT_EQ(Selected(), QStringList());
}

TEST_F(UndoTest, TheContentsOfTheRootAreDeletedAndComeBack) {
  StartWith(image_);
  const auto before = Bytes();
  ClickNode(QStringLiteral("$"));
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(Names(), QStringList());
  EXPECT_EQ(Panel(2), QStringLiteral("Everything in $ deleted - Ctrl+Z takes it back"));
  Choose("mnuToolsUndo");
  EXPECT_EQ(Bytes(), before);
  EXPECT_EQ(Names(), List({"ALPHA", "BETA", "DIR", "GAMMA"}));
}

// Nothing but keys: open a disc, look at a file, delete one, take it back, rename it, leave.
TEST_F(UndoTest, AllOfItIsDoneWithTheKeyboardAlone) {
  image_.WriteInterleavedTo(folder_ / "keys.adl");
  Start();
  QWidget& tree = window_->ThePanes().Tree();
  QWidget& list = window_->ThePanes().List();
  player_.ExpectFileDialog(folder_ / "keys.adl");
  Press(tree, Qt::Key_O, Qt::ControlModifier);
  ASSERT_EQ(Names(), List({"ALPHA", "BETA", "DIR", "GAMMA"}));
  list.setFocus();
  const auto goTo = [&](const char* name) {
    Press(list, Qt::Key_Home);
    for (int i = 0; i < 5 && window_->CurrentItem()->Name() != name; ++i) {
      Press(list, Qt::Key_Down);
    }
  };
  goTo("DIR");
  ASSERT_EQ(window_->CurrentItem()->Name(), "DIR");
  Press(list, Qt::Key_Return);
  EXPECT_EQ(Names(), List({"INSIDE"}));
  Press(list, Qt::Key_Backspace);
  EXPECT_EQ(Names(), List({"ALPHA", "BETA", "DIR", "GAMMA"}));
  goTo("BETA");
  ASSERT_EQ(window_->CurrentItem()->Name(), "BETA");
  Press(list, Qt::Key_Delete);
  EXPECT_FALSE(OnDisc("BETA"));
  Press(list, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(OnDisc("BETA"));
  EXPECT_EQ(window_->CurrentItem()->Name(), "BETA");
  Press(list, Qt::Key_F2);
  Rename(QStringLiteral("DELTA"));
  EXPECT_TRUE(OnDisc("DELTA"));
  EXPECT_FALSE(OnDisc("BETA"));
  Press(list, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(OnDisc("BETA"));
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(UndoTest, FreeSpaceCaptionAndMarkFollow) {
  StartWith(image_);
  const QString free = Panel(1);
  const QString caption = window_->windowTitle();
  Select({"BETA"});
  Choose("mnuFileDelete");
  EXPECT_NE(Panel(1), free);
  disc_->Host.RefreshCaption();
  EXPECT_EQ(window_->windowTitle(), caption + QLatin1Char('*'));
  Choose("mnuToolsUndo");
  EXPECT_EQ(Panel(1), free);
  EXPECT_EQ(window_->windowTitle(), caption);
  EXPECT_FALSE(disc_->ImageChanged);
  Choose("mnuToolsRedo");
  EXPECT_NE(Panel(1), free);
  EXPECT_EQ(window_->windowTitle(), caption + QLatin1Char('*'));
}

TEST_F(UndoTest, AfterASaveTheStepsCanStillBeUndone) {
  StartWith(image_);
  Select({"BETA"});
  Choose("mnuFileDelete");
  SaveImageTo(*disc_, folder_ / "saved.adl");
  EXPECT_FALSE(disc_->ImageChanged);
  ASSERT_TRUE(MayUndo());
  Choose("mnuToolsUndo");
  EXPECT_TRUE(OnDisc("BETA"));
  EXPECT_TRUE(disc_->ImageChanged);
  Choose("mnuToolsRedo");
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(UndoTest, AnotherDiscHasNoSteps) {
  image_.WriteInterleavedTo(folder_ / "other.adl");
  StartWith(image_);
  Select({"BETA"});
  Choose("mnuFileDelete");
  disc_->ImageChanged = false;
  player_.ExpectFileDialog(folder_ / "other.adl");
  Choose("mnuDiscOpen");
  EXPECT_FALSE(MayUndo());
  EXPECT_EQ(Undo(), QStringLiteral("&Undo"));
}

TEST_F(UndoTest, ACommandThatIsRefusedIsNoStep) {
  StartWith(image_);
  Choose("mnuOptionsDelete");
  Select({"BETA"});
  player_.ExpectBox(QStringLiteral("Cannot Delete Locked File : BETA"));
  Choose("mnuFileDelete");
  EXPECT_FALSE(MayUndo());
  EXPECT_NE(Panel(2), QStringLiteral("0 objects deleted - Ctrl+Z takes it back"));
}

TEST_F(UndoTest, AHardDiscIsInItsFileAfterUndoAndRedo) {
  ImageBuilder image(4224);
  image.AddFile(2, {"FILE", std::vector<std::uint8_t>(5000, 9)});
  image.WriteTo(folder_ / "x.dat");
  Start('"' + (folder_ / "x.dat") + '"');
  const auto before = ReadAll(folder_ / "x.dat");
  Select({"FILE"});
  Choose("mnuFileDelete");
  const auto after = ReadAll(folder_ / "x.dat");
  EXPECT_NE(after, before);
  Choose("mnuToolsUndo");
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), before);
  EXPECT_EQ(Selected(), List({"FILE"}));
  Choose("mnuToolsRedo");
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), after);
}

}  // namespace
}  // namespace sectorbox::testing
