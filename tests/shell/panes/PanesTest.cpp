#include "disc/change/Mutation.h"
#include "tests/shell/panes/PanesFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

TEST_F(PanesTest, TheTreeShowsEveryDirectoryExpandedWithTheRootCurrent) {
  StartWith(image_);
  EXPECT_EQ(Nodes(), List({"$", "DIR", "INNER", "DEEP", "EMPTY"}));
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_EQ(Node(QStringLiteral("DIR")).Tag, dir_);
  EXPECT_TRUE(Node(QStringLiteral("INNER")).isExpanded());
  EXPECT_TRUE(Node(QStringLiteral("DIR")).IsOpen());
  EXPECT_FALSE(Node(QStringLiteral("EMPTY")).IsOpen());
}

TEST_F(PanesTest, RowsHoldTheirFormatsAndADirectoryItsSectorUnderLoad) {
  StartWith(image_);
  const ListRow file = RowOf(QStringLiteral("ALPHA"));
  EXPECT_EQ(file.Attr(), "LWR");
  EXPECT_EQ(file.Columns[kColLoad], "FFFF1900");
  EXPECT_EQ(file.Columns[kColExec], "00008023");
  EXPECT_EQ(file.Columns[kColSize], "00000003");
  EXPECT_EQ(file.Columns[kColSector].size(), 6u);
  const ListRow directory = RowOf(QStringLiteral("DIR"));
  EXPECT_TRUE(directory.IsDirectory());
  EXPECT_EQ(directory.StartSector(), dir_);
  EXPECT_EQ(directory.Columns[kColLoad].size(), 6u);
  EXPECT_EQ(directory.Columns[kColSize], "");
}

TEST_F(PanesTest, TheFirstRowIsCurrentAfterAFillWithoutBeingSelected) {
  StartWith(image_);
  ASSERT_NE(window_->CurrentItem(), nullptr);
  EXPECT_EQ(window_->CurrentItem()->Name(), "ALPHA");
  EXPECT_FALSE(window_->ThePanes().List().IsSelected(0));
}

TEST_F(PanesTest, AClickOnANodeShowsItsDirectoryAndItsPath) {
  StartWith(image_);
  ClickNode(QStringLiteral("INNER"));
  EXPECT_EQ(window_->CurrentNode()->Text, "INNER");
  EXPECT_EQ(Names(), List({"DEEP"}));
  EXPECT_EQ(Panel(2), QStringLiteral("$.DIR.INNER"));
}

TEST_F(PanesTest, KeysMoveTheCurrentDirectoryToo) {
  StartWith(image_);
  DirTree& tree = window_->ThePanes().Tree();
  tree.setFocus();
  Press(tree, Qt::Key_Down);
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_EQ(Names(), List({"FILE", "INNER"}));
}

TEST_F(PanesTest, CollapsingABranchMakesItCurrentAndClosesItsImage) {
  StartWith(image_);
  DirNode& dir = Node(QStringLiteral("DIR"));
  window_->ThePanes().Tree().collapseItem(&dir);
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  EXPECT_FALSE(dir.IsOpen());
  window_->ThePanes().Tree().expandItem(&dir);
  EXPECT_TRUE(dir.IsOpen());
}

TEST_F(PanesTest, ARowClickMakesItCurrentAndShowsItsPathInPanel2) {
  StartWith(image_);
  ClickRow(QStringLiteral("ZED"));
  EXPECT_EQ(window_->CurrentItem()->Name(), "ZED");
  EXPECT_EQ(Panel(2), QStringLiteral("$.ZED"));
}

TEST_F(PanesTest, ADoubleClickOnADirectoryOpensIt) {
  StartWith(image_);
  window_->ThePanes().List().RowDoubleClicked(Row(QStringLiteral("DIR")));
  EXPECT_EQ(window_->CurrentNode()->Tag, dir_);
  EXPECT_EQ(Names(), List({"FILE", "INNER"}));
}

TEST_F(PanesTest, ADoubleClickOnAFileChangesOnlyPanel2) {
  StartWith(image_);
  window_->ThePanes().List().RowDoubleClicked(Row(QStringLiteral("ZED")));
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_EQ(Names().size(), 4);
  EXPECT_EQ(Panel(2), QStringLiteral("$.ZED"));
}

TEST_F(PanesTest, TheViewEntriesFollowWhatTheCurrentRowIs) {
  StartWith(image_);
  const auto check = [&](bool file, bool directory) {
    for (const char* name :
         {"mnuFileViewText", "mnuFileViewBasic", "mnuFileViewDis", "mnuFileViewHex",
          "mnuFileViewWordwise", "mnuFileViewTeletext", "mnuFileViewMode"}) {
      EXPECT_EQ(window_->Action(name)->isEnabled(), file) << name;
    }
    for (const char* name :
         {"mnuFileViewCat", "mnuFileViewCatAll", "mnuFileViewEx", "mnuFileViewExAll"}) {
      EXPECT_EQ(window_->Action(name)->isEnabled(), directory) << name;
    }
  };
  ClickRow(QStringLiteral("ZED"));
  check(true, false);
  ClickRow(QStringLiteral("DIR"));
  check(false, true);
  // An empty directory has no current row; the entries stay as they were.
  ClickNode(QStringLiteral("EMPTY"));
  EXPECT_EQ(window_->CurrentItem(), nullptr);
  check(false, true);
}

TEST_F(PanesTest, TheOrderFlipsAtEveryHeadingWhicheverColumnItIs) {
  StartWith(image_);
  const FileListModel& model = window_->ThePanes().List().Model();
  ClickHeading(kColAttr);
  EXPECT_EQ(model.SortOrder(), Qt::AscendingOrder);
  EXPECT_EQ(Names(), List({"DIR", "EMPTY", "ALPHA", "ZED"}));
  ClickHeading(kColAttr);
  EXPECT_EQ(model.SortOrder(), Qt::DescendingOrder);
  EXPECT_EQ(Names(), List({"ZED", "ALPHA", "DIR", "EMPTY"}));
  ClickHeading(kColSize);
  EXPECT_EQ(model.SortOrder(), Qt::AscendingOrder);
  ClickHeading(kColName);
  EXPECT_EQ(Names(), List({"ZED", "EMPTY", "DIR", "ALPHA"}));
}

TEST_F(PanesTest, AChosenOrderSurvivesAChangeOfDirectoryButNotARebuild) {
  StartWith(image_);
  ClickHeading(kColName);
  ClickHeading(kColName);
  ClickNode(QStringLiteral("DIR"));
  EXPECT_EQ(Names(), List({"INNER", "FILE"}));
  window_->ThePanes().RebuildTree();
  EXPECT_EQ(Names(), List({"ALPHA", "DIR", "EMPTY", "ZED"}));
  // The rebuild has left the flag alone that flips: its last value was descending.
  ClickHeading(kColName);
  EXPECT_EQ(window_->ThePanes().List().Model().SortOrder(), Qt::AscendingOrder);
}

TEST_F(PanesTest, SortingKeepsTheCurrentRowAndTheSelection) {
  StartWith(image_);
  ClickRow(QStringLiteral("DIR"));
  ClickHeading(kColName);
  ClickHeading(kColName);
  EXPECT_EQ(window_->CurrentItem()->Name(), "DIR");
  EXPECT_TRUE(window_->ThePanes().List().IsSelected(Row(QStringLiteral("DIR"))));
}

TEST_F(PanesTest, ADirectoryOf47EntriesFillsTheListAndThe48thSlotIsNeverRead) {
  ImageBuilder full(2560);
  for (int i = 0; i < 47; ++i) full.AddFile(2, {"F" + std::to_string(100 + i), {1}});
  full.Poke(512 + 1227, 'X');
  StartWith(full);
  EXPECT_EQ(Names().size(), 47);
}

TEST_F(PanesTest, ADirectoryWithoutItsMarkShowsNothing) {
  image_.Poke(dir_ * 256 + 1, 'X');
  StartWith(image_);
  EXPECT_EQ(Nodes(), List({"$", "DIR", "EMPTY"}));
  ClickNode(QStringLiteral("DIR"));
  EXPECT_TRUE(Names().isEmpty());
}

TEST_F(PanesTest, ADirectoryThatListsItselfOpensAllTheSame) {
  // DIR's first entry, INNER or FILE, points back at DIR.
  ImageBuilder cyclic(2560);
  const auto dir = cyclic.AddDirectory(2, "DIR");
  cyclic.AddDirectory(dir, "LOOP");
  for (int i = 0; i < 3; ++i) {
    cyclic.Poke(dir * 256 + 5 + 22 + i, static_cast<std::uint8_t>(dir >> (8 * i)));
  }
  StartWith(cyclic);
  EXPECT_GE(Nodes().size(), 3);
}

TEST_F(PanesTest, NamesAreBytesShownAsLatin1) {
  ImageBuilder image(2560);
  image.AddFile(2, {"POUND`", {1}});
  image.SetTitle(2, "x");
  StartWith(image);
  EXPECT_EQ(Names(), List({"POUND`"}));
}

}  // namespace
}  // namespace sectorbox::testing
