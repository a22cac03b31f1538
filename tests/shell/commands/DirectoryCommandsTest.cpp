#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {
namespace {

class DirectoryCommandsTest : public WindowTest {
 protected:
  DirectoryCommandsTest() {
    dir_ = image_.AddDirectory(2, "DIR");
    const auto inner = image_.AddDirectory(dir_, "INNER");
    image_.AddFile(inner, {"FILE", {1, 2}});
    image_.AddDirectory(2, "SECOND");
  }
  QLineEdit* Editor() { return Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName")); }
  void Rename(const QString& name) {
    ASSERT_NE(Editor(), nullptr);
    Editor()->setText(name);
    QTest::keyClick(Editor(), Qt::Key_Return);
    Settle();
  }

  ImageBuilder image_{2560};
  std::int32_t dir_ = 0;
};

TEST_F(DirectoryCommandsTest, ANewDirectoryIsMadeCurrentAndNamedAtOnce) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryNew");
  EXPECT_EQ(window_->CurrentNode()->Text, "NewFolder");
  EXPECT_EQ(window_->ThePanes().Tree().Selected(), &Node(QStringLiteral("NewFolder")));
  EXPECT_FALSE(Node(QStringLiteral("NewFolder")).IsOpen());
  EXPECT_TRUE(Names().isEmpty());
  Rename(QStringLiteral("MINE"));
  EXPECT_EQ(window_->CurrentNode()->Text, "MINE");
  EXPECT_NE(FindEntry(*disc_, dir_, "MINE"), -1);
  EXPECT_EQ(GetDirName(*disc_, window_->CurrentNode()->Tag), "MINE");
}

TEST_F(DirectoryCommandsTest, ANewDirectoryWhoseEditIsGivenUpKeepsItsFirstName) {
  StartWith(image_);
  Choose("mnuDirectoryNew");
  QTest::keyClick(Editor(), Qt::Key_Escape);
  Settle();
  EXPECT_NE(FindEntry(*disc_, 2, "NewFolder"), -1);
  EXPECT_EQ(window_->CurrentNode()->Text, "NewFolder");
}

TEST_F(DirectoryCommandsTest, ADirectoryThatGetsItsFirstSubdirectoryIsShownOpen) {
  StartWith(image_);
  ClickNode(QStringLiteral("SECOND"));
  ASSERT_FALSE(Node(QStringLiteral("SECOND")).IsOpen());
  Choose("mnuDirectoryNew");
  QTest::keyClick(Editor(), Qt::Key_Escape);
  EXPECT_TRUE(Node(QStringLiteral("SECOND")).IsOpen());
  EXPECT_TRUE(Node(QStringLiteral("SECOND")).isExpanded());
}

TEST_F(DirectoryCommandsTest, ASecondNewDirectoryBesideAnUnnamedOneGivesTheMessageAndNoNode) {
  StartWith(image_);
  Choose("mnuDirectoryNew");
  QTest::keyClick(Editor(), Qt::Key_Escape);
  ClickNode(QStringLiteral("$"));
  player_.ExpectBox(QStringLiteral("Directory NewFolder Already Exists"));
  Choose("mnuDirectoryNew");
  EXPECT_EQ(Nodes().count(QStringLiteral("NewFolder")), 1);
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_EQ(Editor(), nullptr);
}

TEST_F(DirectoryCommandsTest, AFullDirectoryGivesTheMessageNoNodeAndNoEdit) {
  ImageBuilder full(2560);
  for (int i = 0; i < 47; ++i) full.AddFile(2, {"F" + std::to_string(100 + i), {1}});
  StartWith(full);
  player_.ExpectBox(QStringLiteral("Directory Full"));
  Choose("mnuDirectoryNew");
  EXPECT_EQ(Nodes(), List({"$"}));
  EXPECT_EQ(Editor(), nullptr);
}

TEST_F(DirectoryCommandsTest, DeletingTakesTheTreeAndTheNode) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(Nodes(), List({"$", "SECOND"}));
  EXPECT_EQ(FindEntry(*disc_, 2, "DIR"), -1);
  ASSERT_TRUE(window_->CurrentNode().has_value());
  EXPECT_EQ(window_->CurrentNode()->Text, "SECOND");
  EXPECT_TRUE(Names().isEmpty());
}

TEST_F(DirectoryCommandsTest,
       AfterADeleteTheNextDirectoryBesideItIsCurrentThenTheOneBeforeThenTheParent) {
  StartWith(image_);
  ClickNode(QStringLiteral("SECOND"));
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_EQ(Names(), List({"INNER"}));
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_TRUE(Names().isEmpty());
}

TEST_F(DirectoryCommandsTest, AClickDuringADeleteChangesNothing) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  bool clicked = false;
  QTimer::singleShot(0, [&] {
    ClickNode(QStringLiteral("$"));
    ClickNode(QStringLiteral("SECOND"));
    EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
    EXPECT_EQ(window_->ThePanes().Tree().Selected(), &Node(QStringLiteral("DIR")));
    clicked = true;
  });
  Choose("mnuDirectoryDelete");
  EXPECT_TRUE(clicked);
  EXPECT_EQ(Nodes(), List({"$", "SECOND"}));
  ASSERT_TRUE(window_->CurrentNode().has_value());
  EXPECT_EQ(window_->CurrentNode()->Text, "SECOND");
  EXPECT_EQ(window_->ThePanes().Tree().Selected(), &Node(QStringLiteral("SECOND")));
}

TEST_F(DirectoryCommandsTest, DeletePressedAgainDuringADeleteTakesNoMoreThanTheDirectory) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  QTimer::singleShot(0, [this] { QTest::keyClick(&window_->ThePanes().Tree(), Qt::Key_Delete); });
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(Nodes(), List({"$", "SECOND"}));
  EXPECT_NE(FindEntry(*disc_, 2, "SECOND"), -1);
  EXPECT_EQ(FindEntry(*disc_, 2, "DIR"), -1);
  ASSERT_TRUE(window_->CurrentNode().has_value());
  EXPECT_EQ(window_->CurrentNode()->Text, "SECOND");
}

TEST_F(DirectoryCommandsTest, F5DuringADeleteChangesNothing) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  QTimer::singleShot(0, [this] { QTest::keyClick(&window_->ThePanes().Tree(), Qt::Key_F5); });
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(Nodes(), List({"$", "SECOND"}));
  ASSERT_TRUE(window_->CurrentNode().has_value());
  EXPECT_EQ(window_->CurrentNode()->Text, "SECOND");
  EXPECT_TRUE(Names().isEmpty());
}

TEST_F(DirectoryCommandsTest, ARefusedDeleteShowsItsMessageAndTheNodeIsGoneUntilF5) {
  StartWith(image_);
  Choose("mnuOptionsEmpty");
  ClickNode(QStringLiteral("DIR"));
  player_.ExpectBox(QStringLiteral("Cannot Delete Non Empty Directory : DIR"));
  Press(window_->ThePanes().Tree(), Qt::Key_Delete);
  EXPECT_FALSE(Nodes().contains(QStringLiteral("DIR")));
  EXPECT_NE(FindEntry(*disc_, 2, "DIR"), -1);
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
}

TEST_F(DirectoryCommandsTest, DeletingTheRootEmptiesTheDiscAndKeepsTheRoot) {
  StartWith(image_);
  Choose("mnuDirectoryDelete");
  EXPECT_EQ(Nodes(), List({"$"}));
  EXPECT_TRUE(Names().isEmpty());
  EXPECT_TRUE(IsDirectory(*disc_, 2));
  EXPECT_EQ(Panel(1), QStringLiteral(" 653568 Bytes Free,  1792 Bytes Used"));
}

TEST_F(DirectoryCommandsTest, ANodeIsRenamedOnTheDiscAndInTheTree) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Press(window_->ThePanes().Tree(), Qt::Key_F2);
  Rename(QStringLiteral("OTHER"));
  EXPECT_TRUE(Nodes().contains(QStringLiteral("OTHER")));
  EXPECT_NE(FindEntry(*disc_, 2, "OTHER"), -1);
  EXPECT_EQ(GetDirName(*disc_, dir_), "OTHER");
  EXPECT_EQ(window_->windowTitle().right(1), QStringLiteral("*"));
}

TEST_F(DirectoryCommandsTest, ARefusedNameLeavesTheNode) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryRename");
  window_->SetStatus(QStringLiteral("something else"), false);
  player_.ExpectBox(QStringLiteral("SECOND Already Exists"));
  Rename(QStringLiteral("SECOND"));
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
  EXPECT_TRUE(Panel(1).contains(QStringLiteral(" Bytes Free, "))) << Panel(1).toStdString();
}

TEST_F(DirectoryCommandsTest, ARenamedNodeShowsTheStoredForm) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryRename");
  Rename(QStringLiteral("OMEGAOMEGAOMEGA"));
  EXPECT_TRUE(Nodes().contains(QStringLiteral("OMEGAOMEGA")));
}

TEST_F(DirectoryCommandsTest, AnEmptyNameLeavesTheNode) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  Choose("mnuDirectoryRename");
  Rename(QString());
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(DirectoryCommandsTest, AnEditOnTheRootDoesNotStart) {
  StartWith(image_);
  Choose("mnuDirectoryRename");
  EXPECT_EQ(Editor(), nullptr);
  DirNode& root = Node(QStringLiteral("$"));
  EXPECT_EQ(root.flags() & Qt::ItemIsEditable, 0);
  window_->ThePanes().Tree().EditName(root);
  EXPECT_EQ(Editor(), nullptr);
}

TEST_F(DirectoryCommandsTest, ExportWritesTheContentsOfTheCurrentDirectory) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  player_.ExpectFileDialog(folder_.Path(), [](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("objBD"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Browse For Folder"));
    EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).labelText(QFileDialog::FileName),
              QStringLiteral("Select destination for export"));
  });
  Choose("mnuDirectoryExport");
  EXPECT_EQ(ReadAll(folder_ / "INNER/FILE"), (std::vector<std::uint8_t>{1, 2}));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "INNER.INF"));
}

TEST_F(DirectoryCommandsTest, TheTitleDialogShowsAndSetsTheTitleOfTheCurrentDirectory) {
  image_.SetTitle(dir_, "Old title");
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmTitle"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Set Directory Title"));
    auto* title = dialog.findChild<QLineEdit*>(QStringLiteral("txtTitle"));
    EXPECT_EQ(title->text(), QStringLiteral("Old title"));
    EXPECT_EQ(title->selectedText(), QStringLiteral("Old title"));
    title->setText(QStringLiteral("A new one, rather too long"));
    dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
  });
  Choose("mnuDirectoryTitle");
  EXPECT_EQ(GetDirTitle(*disc_, dir_), "A new one, rather t");
  EXPECT_TRUE(disc_->ImageChanged);
}

TEST_F(DirectoryCommandsTest, ARefusedTitleGivesTheMessageAndClosesTheDialog) {
  image_.SetTitle(dir_, "Old title");
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QLineEdit*>(QStringLiteral("txtTitle"))->setText(QStringLiteral("A*B"));
    dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
    EXPECT_FALSE(dialog.isVisible());
  });
  player_.ExpectBox(QStringLiteral("Title A*B Contains Illegal Characters"));
  Choose("mnuDirectoryTitle");
  EXPECT_EQ(GetDirTitle(*disc_, dir_), "Old title");
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(DirectoryCommandsTest, ACancelledTitleIsNotSet) {
  StartWith(image_);
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QLineEdit*>(QStringLiteral("txtTitle"))->setText(QStringLiteral("No"));
    dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
  });
  Choose("mnuDirectoryTitle");
  EXPECT_FALSE(disc_->ImageChanged);
}

}  // namespace
}  // namespace sectorbox::testing
