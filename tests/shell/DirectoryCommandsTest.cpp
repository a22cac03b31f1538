#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "disc/Adfs.h"
#include "disc/Mutation.h"
#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {
namespace {

QStringList List(std::initializer_list<const char*> names) {
  QStringList list;
  for (const char* name : names) list.append(QString::fromLatin1(name));
  return list;
}

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

TEST_F(DirectoryCommandsTest, AFullDirectoryGivesTheMessageNoNodeAndNoEdit) {
  ImageBuilder full(2560);
  for (int i = 0; i < 47; ++i) full.AddFile(2, {"F" + std::to_string(100 + i), {1}});
  StartWith(full);
  player_.Expect([](QWidget& dialog) {
    EXPECT_FALSE(dynamic_cast<QMessageBox&>(dialog).text().isEmpty());
    dynamic_cast<QMessageBox&>(dialog).accept();
  });
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
}

TEST_F(DirectoryCommandsTest, ARefusedDeleteShowsItsMessageAndTheNodeIsGoneUntilF5) {
  StartWith(image_);
  Choose("mnuOptionsEmpty");
  ClickNode(QStringLiteral("DIR"));
  player_.Expect([](QWidget& dialog) { dynamic_cast<QMessageBox&>(dialog).accept(); });
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
  player_.ExpectBox(QStringLiteral("SECOND Already Exists"));
  Rename(QStringLiteral("SECOND"));
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
}

TEST_F(DirectoryCommandsTest, AnEditOnTheRootDoesNotStart) {
  StartWith(image_);
  Choose("mnuDirectoryRename");
  EXPECT_EQ(Editor(), nullptr);
  window_->ThePanes().Tree().editItem(window_->ThePanes().Tree().topLevelItem(0));
  EXPECT_EQ(Editor(), nullptr);
}

TEST_F(DirectoryCommandsTest, ExportWritesTheContentsOfTheCurrentDirectory) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  player_.ExpectFileDialog(folder_.Path());
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
