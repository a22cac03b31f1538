#include <QApplication>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <filesystem>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"
#include "shell/panes/PaneDrops.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/FileLists.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

class DragTest : public WindowTest {
 protected:
  DragTest() {
    image_.AddFile(2, {"ALPHA", {1, 2, 3}, 0xFFFF1900, 0x8023, "LWR"});
    image_.AddFile(2, {"A/B", {5}});
    dir_ = image_.AddDirectory(2, "DIR");
    image_.AddFile(dir_, {"INSIDE", {9, 9}});
    image_.AddDirectory(dir_, "SUB");
    image_.AddFile(2, {"EMPTY", {}});
    image_.AddDirectory(2, "TARGET");
  }
  std::string Temp(int n) { return folder_ / ("adfs_temp/temp_" + std::to_string(n)); }
  std::vector<std::string> DragSelected(std::initializer_list<const char*> names) {
    SelectRows(List(names));
    return ExportForListDrag(window_->ThePanes());
  }
  void DropOnTheList(const std::vector<std::string>& paths) {
    window_->ThePanes().List().Dropped(*FileListData(paths));
    Settle();
  }
  void DropOnNode(const char* node, const std::vector<std::string>& paths) {
    DirTree& tree = window_->ThePanes().Tree();
    tree.SetDropHighlight(&Node(QString::fromLatin1(node)));
    tree.Dropped(*FileListData(paths));
    EXPECT_EQ(tree.DropHighlight(), nullptr);
    Settle();
  }
  std::string Log() { return ReadText(folder_ / "drag.log"); }

  ImageBuilder image_{2560};
  std::int32_t dir_ = 0;
};

TEST_F(DragTest, AFileExistsOnTheHostWithItsSidecarBeforeItIsOffered) {
  StartWith(image_);
  const auto paths = DragSelected({"ALPHA"});
  EXPECT_EQ(paths, (std::vector<std::string>{Temp(0) + "/ALPHA", Temp(0) + "/ALPHA.INF"}));
  EXPECT_EQ(ReadAll(paths[0]), (std::vector<std::uint8_t>{1, 2, 3}));
  EXPECT_EQ(ReadText(paths[1]), "ALPHA      FFFF1900 00008023 00000003 LWR\r\n");
  EXPECT_EQ(Log(), paths[0] + "\n" + paths[1] + "\n");
}

// The box has no room for the name of the file: its words are the engine's.
TEST_F(DragTest, AfterTheBoxThatEndsAnImportPanel2NamesTheFile) {
  StartWith(image_);
  WriteText(folder_ / "ONE", "1");
  WriteText(folder_ / "TOOLARGE", std::string(std::size_t{2600} * 256, 'x'));
  WriteText(folder_ / "TWO", "2");
  player_.ExpectBox(QStringLiteral("Not Enough Free Contiguous Space on Disc"));
  DropOnTheList({folder_ / "ONE", folder_ / "TOOLARGE", folder_ / "TWO"});
  EXPECT_TRUE(Names().contains(QStringLiteral("ONE")));
  EXPECT_EQ(Panel(2).toStdString(),
            "2 entries were not added: " + (folder_ / "TOOLARGE") + " was refused");
}

TEST_F(DragTest, AnEmptyFileIsAnEmptyFileWithItsSidecar) {
  StartWith(image_);
  const auto paths = DragSelected({"EMPTY"});
  EXPECT_TRUE(ReadAll(paths[0]).empty());
  EXPECT_TRUE(std::filesystem::exists(paths[1]));
}

TEST_F(DragTest, NothingSelectedMakesAnEmptyFolderNoDataAndAnEmptyLog) {
  StartWith(image_);
  window_->ThePanes().List().clearSelection();
  EXPECT_TRUE(ExportForListDrag(window_->ThePanes()).empty());
  EXPECT_TRUE(std::filesystem::is_empty(Temp(0)));
  EXPECT_EQ(Log(), "");
}

TEST_F(DragTest, AFileAndADirectoryAreFourPathsAndFourLines) {
  StartWith(image_);
  const auto paths = DragSelected({"ALPHA", "DIR"});
  EXPECT_EQ(paths.size(), 4u);
  EXPECT_EQ(window_->ThePanes().Drags().DragFileCount, 4);
  const std::string log = Log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 4);
  EXPECT_EQ(ReadAll(Temp(0) + "/DIR/INSIDE"), (std::vector<std::uint8_t>{9, 9}));
  EXPECT_EQ(ReadText(Temp(0) + "/DIR.INF"), "DIR        DWR\r\n");
  EXPECT_EQ(ReadText(Temp(0) + "/DIR/SUB.INF"), "SUB        DWR\r\n");
  EXPECT_TRUE(std::filesystem::is_directory(Temp(0) + "/DIR/SUB"));
}

TEST_F(DragTest, ANameThatTheHostForbidsIsChangedAndTheSidecarKeepsIt) {
  StartWith(image_);
  const auto paths = DragSelected({"A/B"});
  EXPECT_EQ(paths[0], Temp(0) + "/A.B");
  EXPECT_EQ(ReadText(paths[1]), "A/B        00000000 00000000 00000001 WR\r\n");
}

TEST_F(DragTest, EachDragHasAFolderOfItsOwnAndTakenNumbersAreSkipped) {
  StartWith(image_);
  std::filesystem::create_directories(Temp(1));
  DragSelected({"ALPHA"});
  DragSelected({"ALPHA"});
  EXPECT_TRUE(std::filesystem::exists(Temp(0) + "/ALPHA"));
  EXPECT_TRUE(std::filesystem::is_empty(Temp(1)));
  EXPECT_TRUE(std::filesystem::exists(Temp(2) + "/ALPHA"));
}

TEST_F(DragTest, TheTreeOffersTheCurrentDirectoryWithoutASidecarOfItsOwn) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  const auto paths = ExportForTreeDrag(window_->ThePanes());
  EXPECT_EQ(paths, std::vector<std::string>{Temp(0) + "/DIR"});
  EXPECT_TRUE(std::filesystem::exists(Temp(0) + "/DIR/INSIDE.INF"));
  EXPECT_FALSE(std::filesystem::exists(Temp(0) + "/DIR.INF"));
}

TEST_F(DragTest, TheRootGoesRowByRowAndTheSelectionIsLost) {
  StartWith(image_);
  SelectRows(List({"ALPHA"}));
  EXPECT_EQ(ExportForTreeDrag(window_->ThePanes()).size(), 10u);
  for (int row = 0; row < 5; ++row) EXPECT_FALSE(window_->ThePanes().List().IsSelected(row));
}

TEST_F(DragTest, ARootThatTheHostDoesNotTakeLeavesNoRowSelectedEither) {
  StartWith(image_);
  WriteText(folder_ / "adfs_temp", "in the way");
  SelectRows(List({"ALPHA"}));
  EXPECT_THROW(ExportForTreeDrag(window_->ThePanes()), HostError);
  for (int row = 0; row < 5; ++row) EXPECT_FALSE(window_->ThePanes().List().IsSelected(row));
}

TEST_F(DragTest, TwoRowsThatComeOutWithOneNameBothTravel) {
  image_.AddFile(2, {"X/INF", {1}});
  image_.AddFile(2, {"X/INF_", {2, 2}});
  StartWith(image_);
  const auto paths = DragSelected({"X/INF", "X/INF_"});
  EXPECT_EQ(paths, (std::vector<std::string>{Temp(0) + "/X.INF_", Temp(0) + "/X.INF_.INF",
                                             Temp(0) + "/X.INF__", Temp(0) + "/X.INF__.INF"}));
  EXPECT_EQ(ReadAll(paths[0]).size(), 1u);
  EXPECT_EQ(ReadAll(paths[2]).size(), 2u);
}

TEST_F(DragTest, ALinkInThePlaceOfTheLogIsReplacedAndNotFollowed) {
  StartWith(image_);
  WriteText(folder_ / "precious", "mine");
  std::filesystem::create_symlink(folder_ / "precious", folder_ / "drag.log");
  DragSelected({"ALPHA"});
  EXPECT_EQ(ReadText(folder_ / "precious"), "mine");
  EXPECT_NE(Log(), "mine");
}

TEST_F(DragTest, ADragThatTheHostRefusesIsABox) {
  StartWith(image_);
  WriteText(folder_ / "adfs_temp", "in the way");
  SelectRows(List({"ALPHA"}));
  player_.ExpectBox(FromHost(folder_ / "adfs_temp") + QStringLiteral(": File exists"),
                    QStringLiteral("Sectorbox"));
  window_->ThePanes().List().DragWanted();
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(DragTest, ADropOnTheListAddsToTheCurrentDirectory) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  ClickNode(QStringLiteral("DIR"));
  DropOnTheList({folder_ / "HELLO"});
  EXPECT_EQ(Names(), List({"HELLO", "INSIDE", "SUB"}));
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
}

TEST_F(DragTest, AFolderDroppedOnTheListRebuildsTheTreeWithTheRootCurrent) {
  StartWith(image_);
  std::filesystem::create_directory(folder_ / "FOLDER");
  WriteText(folder_ / "FOLDER/F", "x");
  ClickNode(QStringLiteral("DIR"));
  DropOnTheList({folder_ / "FOLDER"});
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_TRUE(Nodes().contains(QStringLiteral("FOLDER")));
}

TEST_F(DragTest, ARefusedPathEndsTheDropAndThoseBeforeItStay) {
  StartWith(image_);
  WriteText(folder_ / "ONE", "1");
  WriteAll(folder_ / "HUGE", std::vector<std::uint8_t>(700000, 1));  // more than the disc holds
  WriteText(folder_ / "TWO", "3");
  player_.ExpectBox(QStringLiteral("Not Enough Free Contiguous Space on Disc"));
  ClickNode(QStringLiteral("DIR"));
  DropOnTheList({folder_ / "ONE", folder_ / "HUGE", folder_ / "TWO"});
  EXPECT_EQ(Names(), List({"INSIDE", "ONE", "SUB"}));
}

TEST_F(DragTest, AHostThatRefusesAPathOfADropIsABoxAndWhatCameBeforeItIsShown) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  ClickNode(QStringLiteral("DIR"));
  player_.ExpectBox(QStringLiteral("/dev/null: Not a regular file"), QStringLiteral("Sectorbox"));
  DropOnTheList({folder_ / "HELLO", "/dev/null"});
  EXPECT_EQ(Names(), List({"HELLO", "INSIDE", "SUB"}));
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
}

TEST_F(DragTest, AFolderThatIsRefusedRebuildsTheTreeAllTheSame) {
  StartWith(image_);
  std::filesystem::create_directory(folder_ / "SUB");
  ClickNode(QStringLiteral("DIR"));
  player_.ExpectBox(QStringLiteral("Directory SUB Already Exists"));
  DropOnTheList({folder_ / "SUB"});
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
}

TEST_F(DragTest, WhatWasPassedOverInADropStandsInTheStatusBarAfterIt) {
  StartWith(image_);
  std::filesystem::create_directory(folder_ / "FOLDER");
  std::filesystem::create_symlink(".", folder_ / "FOLDER/HERE");
  DropOnTheList({folder_ / "FOLDER"});
  const QString note = FromHost(folder_ / "FOLDER/HERE") +
                       QStringLiteral(": leads back to a folder that is being added");
  EXPECT_EQ(Panel(2), note);
  ClickNode(QStringLiteral("DIR"));
  EXPECT_EQ(Panel(2), QStringLiteral("$.DIR"));
  DropOnNode("TARGET", {folder_ / "FOLDER"});
  EXPECT_EQ(Panel(2), note);
}

TEST_F(DragTest, AnythingButAFileListIsIgnored) {
  StartWith(image_);
  QMimeData text;
  text.setText(QStringLiteral("hello"));
  window_->ThePanes().List().Dropped(text);
  window_->ThePanes().Tree().SetDropHighlight(&Node(QStringLiteral("DIR")));
  window_->ThePanes().Tree().Dropped(text);
  EXPECT_FALSE(disc_->ImageChanged);
  EXPECT_EQ(window_->ThePanes().Tree().DropHighlight(), nullptr);
}

TEST_F(DragTest, ADropOnTheTreeShowsTheTargetsSubdirectoriesTwiceUntilARebuild) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  DropOnNode("DIR", {folder_ / "HELLO"});
  EXPECT_EQ(Nodes().count(QStringLiteral("SUB")), 2);
  EXPECT_NE(FindEntry(*disc_, dir_, "HELLO"), -1);
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_EQ(Nodes().count(QStringLiteral("SUB")), 1);
}

TEST_F(DragTest, AHostThatRefusesAPathOfADropOnTheTreeIsABoxAndTheTreeFollowsTheDisc) {
  StartWith(image_);
  std::filesystem::create_directory(folder_ / "FOLDER");
  window_->SetStatus(QStringLiteral("something else"), false);
  player_.ExpectBox(QStringLiteral("/dev/null: Not a regular file"), QStringLiteral("Sectorbox"));
  DropOnNode("TARGET", {folder_ / "FOLDER", "/dev/null"});
  EXPECT_TRUE(Nodes().contains(QStringLiteral("FOLDER")));
  EXPECT_TRUE(Panel(1).contains(QStringLiteral(" Bytes Free, "))) << Panel(1).toStdString();
}

// A drop on the root walks the tree and lets events run.
TEST_F(DragTest, F5DuringADropOnTheTreeDoesNothing) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  bool pressed = false;
  QTimer::singleShot(0, [&] {
    QTest::keyClick(&window_->ThePanes().Tree(), Qt::Key_F5);
    pressed = true;
  });
  DropOnNode("$", {folder_ / "HELLO"});
  EXPECT_TRUE(pressed);
  EXPECT_EQ(Nodes(), List({"$", "DIR", "SUB", "DIR", "SUB", "TARGET", "TARGET"}));
  EXPECT_FALSE(Names().contains(QStringLiteral("HELLO")));
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_EQ(Nodes(), List({"$", "DIR", "SUB", "TARGET"}));
  EXPECT_TRUE(Names().contains(QStringLiteral("HELLO")));
}

TEST_F(DragTest, ADropOnTheTreeLeavesTheListAsItWas) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  DropOnNode("$", {folder_ / "HELLO"});
  EXPECT_FALSE(Names().contains(QStringLiteral("HELLO")));
  EXPECT_EQ(window_->windowTitle().right(1), QStringLiteral("*"));
  Press(window_->ThePanes().List(), Qt::Key_F5);
  EXPECT_TRUE(Names().contains(QStringLiteral("HELLO")));
}

TEST_F(DragTest, ADropBesideAllNodesDoesNothing) {
  StartWith(image_);
  WriteText(folder_ / "HELLO", "hello");
  window_->ThePanes().Tree().Dropped(*FileListData({folder_ / "HELLO"}));
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(DragTest, AFileDraggedFromTheListToANodeIsACopyWithItsAddresses) {
  StartWith(image_);
  DropOnNode("TARGET", DragSelected({"ALPHA"}));
  ClickNode(QStringLiteral("TARGET"));
  EXPECT_EQ(Names(), List({"ALPHA"}));
  EXPECT_EQ(window_->CurrentItem()->Columns[kColLoad], "FFFF1900");
  EXPECT_NE(FindEntry(*disc_, 2, "ALPHA"), -1);
}

TEST_F(DragTest, AFileDroppedOnItsOwnDirectoryReplacesItselfIfOverwritingIsAllowed) {
  StartWith(image_);
  const auto paths = DragSelected({"ALPHA"});
  Choose("mnuOptionsOverwrite");
  DropOnNode("$", paths);
  EXPECT_FALSE(disc_->ImageChanged);
  Choose("mnuOptionsOverwrite");
  DropOnNode("$", paths);
  EXPECT_TRUE(disc_->ImageChanged);
  EXPECT_EQ(Names().count(QStringLiteral("ALPHA")), 1);
}

TEST_F(DragTest, PathsKeepTheirBytesWhateverTheEncoding) {
  const std::vector<std::string> paths = {"/tmp/caf\xE9", "/tmp/100%/a b#c", "/tmp/\xC3\xA9"};
  EXPECT_EQ(PathsOf(*FileListData(paths)), paths);
}

TEST_F(DragTest, TheTemporaryFolderEndsInASeparator) {
  EXPECT_EQ(GetTempFolder(), folder_.Path() + "/");
}

}  // namespace
}  // namespace sectorbox::testing
