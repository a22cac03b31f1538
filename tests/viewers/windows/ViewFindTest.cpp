// Find and Find Next in a text view.

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "tests/viewers/windows/ViewWindowFixture.h"

namespace sectorbox::testing {
namespace {

class ViewFindTest : public ViewWindowTest {
 protected:
  // Starts the program and shows the file Alpha as text.
  frmView& StartWithAlpha() {
    StartWithFiles();
    return ViewRow("Alpha", "mnuFileViewText");
  }
};

TEST_F(ViewFindTest, TheFindDialogHasItsTexts) {
  frmView& view = StartWithAlpha();
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
  frmView& view = StartWithAlpha();
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
  frmView& view = StartWithAlpha();
  ExpectFind("nowhere");
  player_.ExpectBox("Text Not Found");
  ChooseIn(view, "mnuEditFind");
  EXPECT_EQ(view.FindPos, -1);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
}

TEST_F(ViewFindTest, ACancelledFindMakesFindNextDoNothing) {
  frmView& view = StartWithAlpha();
  ExpectFind("two");
  ChooseIn(view, "mnuEditFind");
  ExpectFind(nullptr);
  ChooseIn(view, "mnuEditFind");
  EXPECT_EQ(view.FindPos, -1);
  ChooseIn(view, "mnuEditNext");
  EXPECT_EQ(view.FindPos, -1);
}

TEST_F(ViewFindTest, TheTextLookedForIsSharedAndAFreshWindowFindsNextFromPositionOne) {
  frmView& first = StartWithAlpha();
  ExpectFind("o");
  ChooseIn(first, "mnuEditFind");
  EXPECT_EQ(first.FindPos, 0);
  frmView& second = ViewRow("Alpha", "mnuFileViewText");
  EXPECT_EQ(second.FindPos, 0);
  ChooseIn(second, "mnuEditNext");
  EXPECT_EQ(second.FindPos, 6);
}

TEST_F(ViewFindTest, FindPosFollowsTheCaretWhenItMovesByHand) {
  frmView& view = StartWithAlpha();
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
