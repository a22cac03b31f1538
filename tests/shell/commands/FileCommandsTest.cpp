#include <QFileDialog>
#include <filesystem>

#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/image/OpenImage.h"
#include "tests/shell/commands/FilesFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

TEST_F(FileCommandsTest, CommandsWithoutACurrentRowReturnSilently) {
  Start();
  ASSERT_EQ(window_->CurrentItem(), nullptr);
  for (const char* entry : {"mnuFileAttributes", "mnuFileAddresses", "mnuFileDelete",
                            "mnuFileRename", "mnuFileExport", "mnuFileSelectAll"}) {
    Choose(entry);
  }
  EXPECT_FALSE(disc_->ImageChanged);
}

// --- Deleting ----------------------------------------------------------------------------------

TEST_F(FileCommandsTest, EverySelectedRowIsDeletedWithoutAQuestion) {
  StartWith(image_);
  Select({"ALPHA", "DIR"});
  Choose("mnuFileDelete");
  EXPECT_FALSE(OnDisc("ALPHA"));
  EXPECT_FALSE(OnDisc("DIR"));
  EXPECT_TRUE(OnDisc("BETA"));
  EXPECT_EQ(Nodes(), QStringList{QStringLiteral("$")});
  EXPECT_EQ(Names().size(), 2);
}

TEST_F(FileCommandsTest, TheDeleteKeyOfTheListDeletes) {
  StartWith(image_);
  Select({"GAMMA"});
  Press(window_->ThePanes().List(), Qt::Key_Delete);
  EXPECT_FALSE(OnDisc("GAMMA"));
}

TEST_F(FileCommandsTest, ALockedFileEndsTheLoopAndWhatWasDoneStays) {
  StartWith(image_);
  Choose("mnuOptionsDelete");
  ASSERT_FALSE(window_->Checked("mnuOptionsDelete"));
  Select({"ALPHA", "BETA", "GAMMA"});
  player_.ExpectBox(QStringLiteral("Cannot Delete Locked File : BETA"));
  Choose("mnuFileDelete");
  EXPECT_FALSE(OnDisc("ALPHA"));
  EXPECT_TRUE(OnDisc("BETA"));
  EXPECT_TRUE(OnDisc("GAMMA"));
}

TEST_F(FileCommandsTest, ARefusedDirectoryEndsTheLoopAndTheListShowsWhatIsLeft) {
  StartWith(image_);
  Choose("mnuOptionsEmpty");
  Select({"ALPHA", "DIR", "GAMMA"});
  player_.ExpectBox(QStringLiteral("Cannot Delete Non Empty Directory : DIR"));
  Choose("mnuFileDelete");
  EXPECT_EQ(Names(),
            QStringList({QStringLiteral("BETA"), QStringLiteral("DIR"), QStringLiteral("GAMMA")}));
  EXPECT_EQ(window_->CurrentItem()->Name(), "BETA");
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
}

TEST_F(FileCommandsTest, NoDiscIsOpenedDuringADelete) {
  image_.WriteInterleavedTo(folder_ / "other.adl");
  StartWith(image_);
  Choose("mnuFileSelectAll");
  bool chosen = false;
  QTimer::singleShot(0, [&] {
    Choose("mnuDiscOpen");
    chosen = true;
  });
  window_->Action("mnuFileDelete")->trigger();
  ASSERT_TRUE(chosen);
  EXPECT_EQ(disc_->ImageName, folder_ / "test.adl");
  EXPECT_TRUE(Names().isEmpty());
  disc_->ImageChanged = false;
  player_.ExpectFileDialog(folder_ / "other.adl");
  Choose("mnuDiscOpen");
  EXPECT_EQ(disc_->ImageName, folder_ / "other.adl");
  EXPECT_EQ(Names().size(), 4);
}

// The command works through the selection, which a click would change.
TEST_F(FileCommandsTest, ARowThatIsClickedDuringADeleteIsKept) {
  StartWith(image_);
  Select({"ALPHA", "DIR"});
  bool clicked = false;
  QTimer::singleShot(0, [&] {
    ClickRow(QStringLiteral("GAMMA"), Qt::ControlModifier);
    QTest::keyClick(&window_->ThePanes().List(), Qt::Key_A, Qt::ControlModifier);
    Choose("mnuFileSelectAll");
    window_->ThePanes().List().HeadingClicked(kColSize);
    clicked = true;
  });
  Choose("mnuFileDelete");
  EXPECT_TRUE(clicked);
  EXPECT_EQ(Names(), QStringList({QStringLiteral("BETA"), QStringLiteral("GAMMA")}));
  ClickRow(QStringLiteral("GAMMA"));
  EXPECT_EQ(window_->CurrentItem()->Name(), "GAMMA");
}

// The disc is damaged: three entries have one name.
TEST_F(FileCommandsTest, OfRowsWithOneNameTheSelectedOneIsDeleted) {
  ImageBuilder image(2560);
  image.AddFile(image.AddDirectory(2, "A"), {"INSIDE", {1}});
  const auto second = image.AddFile(2, {"B", {2}});
  const auto third = image.AddFile(2, {"C", {3}});
  image.Poke(517 + 26, image.Peek(517));
  image.Poke(517 + 52, image.Peek(517));
  StartWith(image);
  FileList& list = window_->ThePanes().List();
  ASSERT_EQ(list.Model().Rows()[1].StartSector(), second);
  list.selectionModel()->setCurrentIndex(
      list.Model().index(1, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  Settle();
  Choose("mnuFileDelete");
  const auto rows = ReadRows(*disc_, 2);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_TRUE(rows[0].IsDirectory());
  EXPECT_EQ(ReadRows(*disc_, rows[0].StartSector()).size(), 1U);
  EXPECT_EQ(rows[1].StartSector(), third);
}

TEST_F(FileCommandsTest, NothingSelectedDeletesNothing) {
  StartWith(image_);
  window_->ThePanes().List().clearSelection();
  Choose("mnuFileDelete");
  EXPECT_EQ(Names().size(), 4);
}

// Files of one sector alternate with directories of five, so that deleting the files leaves run
// after run until the 80th compacts the disc in the middle of the command.
TEST_F(FileCommandsTest, RowsOfDirectoriesFollowACompactionInTheMiddleOfADelete) {
  ImageBuilder image(2560);
  const auto work = image.AddDirectory(2, "WORK");
  const auto other = image.AddDirectory(2, "OTHER");
  std::vector<std::int32_t> more;
  more.reserve(4);
  for (int i = 0; i < 4; ++i) more.push_back(image.AddDirectory(2, "P" + std::to_string(i)));
  // 78 holes outside of WORK.
  std::vector<std::pair<std::int32_t, std::int32_t>> holes;
  for (int i = 0; i < 78; ++i) {
    image.AddHole(1);
    image.AddFile(i < 40 ? more[0] : more[1], {"H" + std::to_string(100 + i), {1}});
  }
  for (int i = 0; i < 4; ++i) {
    image.AddFile(work, {"A" + std::to_string(i), {1}});
    image.AddFile(other, {"K" + std::to_string(i), {2}});
  }
  const auto last = image.AddDirectory(work, "ZLAST");
  image.AddFile(last, {"DEEP", {3}});
  image.AddFile(other, {"KEEP", {7, 7}});
  StartWith(image);
  ClickNode(QStringLiteral("WORK"));
  Choose("mnuFileSelectAll");
  Choose("mnuFileDelete");
  EXPECT_LT(disc_->FreeCount, 40) << "the disc was never compacted";
  EXPECT_EQ(Nodes().count(QStringLiteral("ZLAST")), 0);
  ClickNode(QStringLiteral("WORK"));
  EXPECT_TRUE(Names().isEmpty());
  ClickNode(QStringLiteral("OTHER"));
  EXPECT_EQ(Names().size(), 5);
  const std::int32_t keep = GetEntrySector(*disc_, window_->CurrentNode()->Tag, "KEEP");
  EXPECT_EQ(disc_->TheDisc.Fetch(SectorOffset(keep)), 7);
}

// --- Renaming ----------------------------------------------------------------------------------

TEST_F(FileCommandsTest, RenamingShowsTheStoredForm) {
  StartWith(image_);
  Select({"ALPHA"});
  Press(window_->ThePanes().List(), Qt::Key_F2);
  Rename(QStringLiteral("OMEGAOMEGAOMEGA"));
  EXPECT_TRUE(Names().contains(QStringLiteral("OMEGAOMEGA")));
  EXPECT_TRUE(OnDisc("OMEGAOMEGA"));
  EXPECT_EQ(Panel(2), QStringLiteral("$.OMEGAOMEGA"));
}

TEST_F(FileCommandsTest, AForbiddenCharacterGivesTheMessageAndTheOldNameStays) {
  StartWith(image_);
  Select({"ALPHA"});
  Choose("mnuFileRename");
  window_->SetPanel2(QStringLiteral("something else"));
  player_.ExpectBox(QStringLiteral("File A:B Contains Illegal Characters"));
  Rename(QStringLiteral("A:B"));
  EXPECT_EQ(Panel(2), QStringLiteral("$.ALPHA"));
  EXPECT_TRUE(Names().contains(QStringLiteral("ALPHA")));
  EXPECT_TRUE(OnDisc("ALPHA"));
}

// The disc would take the name if the window sent "?".
TEST_F(FileCommandsTest, ACharacterThatTheBbcDoesNotHaveIsRefused) {
  StartWith(image_);
  Select({"ALPHA"});
  Choose("mnuFileRename");
  player_.ExpectBox(QStringLiteral("File A\u00FF Contains Illegal Characters"));
  Rename(QStringLiteral("A\u03A9"));
  EXPECT_TRUE(OnDisc("ALPHA"));
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtTitle", QStringLiteral("\u03A9"));
    Push(dialog, "cmdOK");
  });
  player_.ExpectBox(QStringLiteral("Title \u00FF Contains Illegal Characters"));
  Choose("mnuDirectoryTitle");
}

TEST_F(FileCommandsTest, AnEmptyNameAndEscapeChangeNothing) {
  StartWith(image_);
  Select({"ALPHA"});
  Choose("mnuFileRename");
  Rename(QString());
  Choose("mnuFileRename");
  Rename(QStringLiteral("OTHER"), Qt::Key_Escape);
  EXPECT_TRUE(OnDisc("ALPHA"));
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(FileCommandsTest, ADirectoryRenamedInTheListKeepsItsOldNodeUntilARebuild) {
  StartWith(image_);
  Select({"DIR"});
  Choose("mnuFileRename");
  Rename(QStringLiteral("NEWNAME"));
  EXPECT_TRUE(Nodes().contains(QStringLiteral("DIR")));
  window_->ThePanes().List().RowDoubleClicked(Row(QStringLiteral("NEWNAME")));
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_TRUE(Nodes().contains(QStringLiteral("NEWNAME")));
}

TEST_F(FileCommandsTest, ALockedFileIsRenamedOnlyWithTheOption) {
  StartWith(image_);
  Choose("mnuOptionsDelete");
  Select({"BETA"});
  Choose("mnuFileRename");
  player_.ExpectBox(QStringLiteral("Cannot Rename Locked File : BETA"));
  Rename(QStringLiteral("OTHER"));
  EXPECT_TRUE(OnDisc("BETA"));
}

// --- Exporting ---------------------------------------------------------------------------------

TEST_F(FileCommandsTest, ExportWritesSelectedFilesAndDirectoriesWithSidecars) {
  StartWith(image_);
  Select({"BETA", "DIR"});
  std::filesystem::create_directory(folder_ / "out");
  player_.ExpectFileDialog(folder_ / "out", [](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("objBD"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Browse For Folder"));
    EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).labelText(QFileDialog::FileName),
              QStringLiteral("Select destination for file"));
  });
  Choose("mnuFileExport");
  EXPECT_EQ(ReadAll(folder_ / "out/BETA"), std::vector<std::uint8_t>(600, 5));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "out/BETA.INF"));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "out/DIR.INF"));
  EXPECT_EQ(ReadAll(folder_ / "out/DIR/INSIDE"), std::vector<std::uint8_t>{1});
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out/ALPHA"));
}

TEST_F(FileCommandsTest, AnExportThatTheHostRefusesIsABoxAndTheWindowLives) {
  StartWith(image_);
  Select({"BETA"});
  std::filesystem::create_directories(folder_ / "out/BETA");
  player_.ExpectFileDialog(folder_ / "out");
  player_.Expect([](QWidget& dialog) {
    EXPECT_TRUE(dynamic_cast<QMessageBox&>(dialog).text().contains(QStringLiteral("directory")));
    dynamic_cast<QMessageBox&>(dialog).accept();
  });
  Choose("mnuFileExport");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(ends_.empty());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(FileCommandsTest, ACancelledExportDoesNothingAndOneWithoutASelectionDoesNotAsk) {
  StartWith(image_);
  Select({"BETA"});
  player_.ExpectFileDialog("");
  Choose("mnuFileExport");
  window_->ThePanes().List().clearSelection();
  ASSERT_NE(window_->CurrentItem(), nullptr);
  Choose("mnuFileExport");
}

TEST_F(FileCommandsTest, TwoSelectedFilesThatComeOutWithOneNameBothGoOut) {
  image_.AddFile(2, {"X/INF", {1}});
  image_.AddFile(2, {"X/INF_", {2, 2}});
  StartWith(image_);
  Select({"X/INF", "X/INF_"});
  std::filesystem::create_directory(folder_ / "out");
  player_.ExpectFileDialog(folder_ / "out");
  Choose("mnuFileExport");
  EXPECT_EQ(ReadAll(folder_ / "out/X.INF_"), std::vector<std::uint8_t>{1});
  EXPECT_EQ(ReadAll(folder_ / "out/X.INF__"), (std::vector<std::uint8_t>{2, 2}));
  EXPECT_EQ(ReadText(folder_ / "out/X.INF__.INF").substr(0, 10), "X/INF_    ");
}

}  // namespace
}  // namespace sectorbox::testing
