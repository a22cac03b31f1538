#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include "disc/change/Mutation.h"
#include "tests/shell/panes/PanesFixture.h"

// The panes' toolbar, view modes, menus, keys and mouse.
namespace sectorbox::testing {
namespace {

using PaneControlsTest = PanesTest;

TEST_F(PaneControlsTest, UpOneLevelGoesToTheParentAndDoesNothingAtTheRoot) {
  StartWith(image_);
  ClickNode(QStringLiteral("INNER"));
  Tool("Up One Level");
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR");
  Tool("Up One Level");
  Tool("Up One Level");
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
}

TEST_F(PaneControlsTest, TheToolBarHasItsButtonsInOrderWithTextAndToolTip) {
  Start();
  const auto actions = Find<QToolBar>("tbToolBar").actions();
  const QStringList expected = List({"New", "Open", "Save", "", "Up One Level", "View Details",
                                     "View Large Icons", "View List", "View Small Icons"});
  ASSERT_EQ(actions.size(), expected.size());
  for (qsizetype i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(actions[i]->isSeparator(), expected[i].isEmpty());
    if (expected[i].isEmpty()) continue;
    EXPECT_EQ(actions[i]->text(), expected[i]);
    EXPECT_EQ(actions[i]->toolTip(), expected[i]);
    EXPECT_FALSE(actions[i]->icon().isNull());
    EXPECT_FALSE(actions[i]->icon().pixmap(18, 18).isNull());
  }
}

TEST_F(PaneControlsTest, EveryViewModeShowsTheSameRowsAndKeepsTheSelection) {
  StartWith(image_);
  SelectRows(List({"ALPHA", "ZED"}));
  FileList& list = window_->ThePanes().List();
  const std::pair<const char*, ListLook> modes[] = {{"View Large Icons", ListLook::kLargeIcons},
                                                    {"View List", ListLook::kList},
                                                    {"View Small Icons", ListLook::kSmallIcons},
                                                    {"View Details", ListLook::kReport}};
  for (const auto& [key, look] : modes) {
    Tool(key);
    Settle();
    EXPECT_EQ(list.Mode(), look);
    EXPECT_TRUE(list.IsSelected(Row(QStringLiteral("ALPHA")))) << key;
    EXPECT_FALSE(list.IsSelected(Row(QStringLiteral("DIR")))) << key;
    EXPECT_TRUE(list.IsSelected(Row(QStringLiteral("ZED")))) << key;
    EXPECT_FALSE(list.grab().isNull());
  }
}

TEST_F(PaneControlsTest, TheListMenuPopsUpForACurrentRowOnlyAndSelectsNothing) {
  StartWith(image_);
  auto* menu = window_->findChild<QMenu*>(QStringLiteral("mnuFile"));
  FileList& list = window_->ThePanes().List();
  const auto press = [&](const QPoint& at) {
    QTest::mousePress(list.viewport(), Qt::RightButton, {}, at);
    const bool popped = menu->isVisible();
    menu->hide();
    return popped;
  };
  const QRect zed = list.visualRect(list.Model().index(Row(QStringLiteral("ZED")), 0));
  EXPECT_TRUE(press(zed.topLeft() + QPoint(25, 8)));
  EXPECT_EQ(window_->CurrentItem()->Name(), "ALPHA");
  EXPECT_FALSE(list.IsSelected(Row(QStringLiteral("ZED"))));
  ClickNode(QStringLiteral("EMPTY"));
  EXPECT_FALSE(press({20, 20}));
}

TEST_F(PaneControlsTest, TheTreeMenuPopsUpAndLeavesTheCurrentNode) {
  StartWith(image_);
  auto* menu = window_->findChild<QMenu*>(QStringLiteral("mnuDirectory"));
  DirTree& tree = window_->ThePanes().Tree();
  QTest::mousePress(tree.viewport(), Qt::RightButton, {},
                    tree.visualItemRect(&Node(QStringLiteral("EMPTY"))).center());
  EXPECT_TRUE(menu->isVisible());
  menu->hide();
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
}

TEST_F(PaneControlsTest, ControlASelectsAllRowsFromEitherPane) {
  StartWith(image_);
  FileList& list = window_->ThePanes().List();
  for (QWidget* pane :
       {static_cast<QWidget*>(&list), static_cast<QWidget*>(&window_->ThePanes().Tree())}) {
    list.clearSelection();
    ClickRow(QStringLiteral("ZED"));
    Press(*pane, Qt::Key_A, Qt::ControlModifier);
    for (int row = 0; row < 4; ++row) EXPECT_TRUE(list.IsSelected(row)) << row;
    EXPECT_EQ(window_->CurrentItem()->Name(), "ALPHA");
  }
}

TEST_F(PaneControlsTest, F5ReadsTheDiscAgain) {
  StartWith(image_);
  ASSERT_TRUE(NewDirectory(*disc_, 2, "NEW").has_value());
  Press(window_->ThePanes().List(), Qt::Key_F5);
  EXPECT_TRUE(Names().contains(QStringLiteral("NEW")));
  EXPECT_FALSE(Nodes().contains(QStringLiteral("NEW")));
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_TRUE(Nodes().contains(QStringLiteral("NEW")));
  EXPECT_EQ(window_->windowTitle().right(1), QStringLiteral("*"));
}

// A view that gets the focus without a current row marks its first row, which the user didn't
// choose.
TEST_F(PaneControlsTest, TheFocusAloneMakesNoRowCurrent) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  window_->ThePanes().List().setFocus();
  Settle();
  ASSERT_TRUE(window_->ThePanes().List().hasFocus());
  EXPECT_EQ(Panel(2), QStringLiteral("$.DIR"));
}

TEST_F(PaneControlsTest, TheTreeHasTheFocusAtTheStart) {
  StartWith(image_);
  EXPECT_EQ(window_->focusWidget(), &window_->ThePanes().Tree());
}

// At the start the window may become active in the middle of a rebuild, which lets events run while
// the tree is hidden.
TEST_F(PaneControlsTest, AWindowThatBecomesActiveDuringARebuildHasTheFocusInTheTree) {
  StartWith(image_);
  QWidget other;
  other.show();
  other.activateWindow();
  Settle();
  ASSERT_FALSE(window_->isActiveWindow());
  Panes& panes = window_->ThePanes();
  QTimer::singleShot(0, [&] {
    EXPECT_FALSE(panes.Tree().isVisible());
    window_->activateWindow();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window_->isActiveWindow());
  });
  panes.RebuildTree();
  EXPECT_TRUE(window_->isActiveWindow());
  EXPECT_TRUE(panes.Tree().hasFocus());
}

TEST_F(PaneControlsTest, ADoubleClickOnASelectedFileStartsNoEdit) {
  StartWith(image_);
  FileList& list = window_->ThePanes().List();
  ClickRow(QStringLiteral("ZED"));
  const QPoint at = list.visualRect(list.Model().index(Row(QStringLiteral("ZED")), 0)).topLeft();
  QTest::qWait(QApplication::doubleClickInterval() + 100);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at + QPoint(25, 8));
  QTest::qWait(QApplication::doubleClickInterval() + 200);
  EXPECT_EQ(list.findChild<QLineEdit*>(QStringLiteral("txtName")), nullptr);
}

TEST_F(PaneControlsTest, ARightClickBesideAllRowsKeepsTheSelection) {
  StartWith(image_);
  SelectRows(List({"ALPHA", "ZED"}));
  FileList& list = window_->ThePanes().List();
  const QPoint below = {20, list.viewport()->height() - 5};
  ASSERT_FALSE(list.indexAt(below).isValid());
  QTest::mousePress(list.viewport(), Qt::RightButton, {}, below);
  window_->findChild<QMenu*>(QStringLiteral("mnuFile"))->hide();
  QTest::mouseRelease(list.viewport(), Qt::RightButton, {}, below);
  EXPECT_TRUE(list.IsSelected(Row(QStringLiteral("ALPHA"))));
  EXPECT_TRUE(list.IsSelected(Row(QStringLiteral("ZED"))));
}

}  // namespace
}  // namespace sectorbox::testing
