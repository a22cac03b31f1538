// Find and Find Next in a text view.

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "tests/viewers/windows/ViewWindowFixture.h"

namespace sectorbox::testing {
namespace {

class ViewFindTest : public ViewWindowTest {};

TEST_F(ViewFindTest, TheFindDialogHasItsTexts) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QLabel*>("lblFind")->text(), QStringLiteral("Find :"));
    EXPECT_EQ(dialog.findChild<QPushButton*>("cmdOK")->text(), QStringLiteral("OK"));
    auto* cancel = dialog.findChild<QPushButton*>("cmdCancel");
    EXPECT_EQ(cancel->text(), QStringLiteral("Cancel"));
    cancel->click();
  });
  ChooseIn(view, "mnuEditFind");
}

TEST_F(ViewFindTest, FindIgnoresCaseAndFindNextGoesOn) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  ExpectFind("TWO");
  ChooseIn(view, "mnuEditFind");
  EXPECT_EQ(view.FindPos, 4);
  EXPECT_EQ(TextOf(view).SelectedText(), QStringLiteral("Two"));
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, 8);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
}

TEST_F(ViewFindTest, AFindThatFailsSaysSoAndFindNextThenDoesNothing) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  ExpectFind("nowhere");
  player_.ExpectBox("Text Not Found");
  ChooseIn(view, "mnuEditFind");
  EXPECT_EQ(view.FindPos, -1);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
}

TEST_F(ViewFindTest, ACancelledFindMakesFindNextDoNothing) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  ExpectFind("two");
  ChooseIn(view, "mnuEditFind");
  ExpectFind(nullptr);
  ChooseIn(view, "mnuEditFind");
  EXPECT_EQ(view.FindPos, -1);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
}

TEST_F(ViewFindTest, TheTextLookedForIsSharedAndAFreshWindowFindsNextFromPositionOne) {
  StartWithFiles();
  frmView& first = ViewRow("Alpha", "mnuFileViewText");
  ExpectFind("o");
  ChooseIn(first, "mnuEditFind");
  EXPECT_EQ(first.FindPos, 0);
  frmView& second = ViewRow("Alpha", "mnuFileViewText");
  EXPECT_EQ(second.FindPos, 0);
  ChooseIn(second, "mnuEditNext");
  EXPECT_EQ(second.FindPos, 6);
}

TEST_F(ViewFindTest, FindPosFollowsTheCaretWhenItMovesByHand) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  Press(TextOf(view), Qt::Key_Down);
  EXPECT_EQ(view.FindPos, 4);
  Press(TextOf(view), Qt::Key_Right);
  EXPECT_EQ(view.FindPos, 5);
  QTextCursor cursor(TextOf(view).document());
  cursor.setPosition(9);
  QTest::mouseClick(TextOf(view).viewport(), Qt::LeftButton, Qt::NoModifier,
                    TextOf(view).cursorRect(cursor).center());
  EXPECT_EQ(view.FindPos, 9);
}

}  // namespace
}  // namespace sectorbox::testing
