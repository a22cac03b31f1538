#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include "tests/shell/panes/PanesFixture.h"

// What a click selects, what it edits, and what drags.
namespace sectorbox::testing {
namespace {

class ClickTest : public PanesTest {
 protected:
  FileList& Rows() { return window_->ThePanes().List(); }
  QPoint NameOf(const char* name) {
    const QModelIndex index = Rows().Model().index(Row(QString::fromLatin1(name)), 0);
    Rows().scrollTo(index);
    return Rows().visualRect(index).topLeft() + QPoint(25, 8);
  }
  void Click(const QPoint& at) { QTest::mouseClick(Rows().viewport(), Qt::LeftButton, {}, at); }
  static void WaitForAnEdit() { QTest::qWait(QApplication::doubleClickInterval() + 200); }
  QLineEdit* EditorIn(const char* pane) {
    return Find(pane).findChild<QLineEdit*>(QStringLiteral("txtName"));
  }
  QStringList Selected() {
    QStringList names;
    for (int row = 0; row < Rows().Model().rowCount(); ++row) {
      if (Rows().IsSelected(row)) names.append(Names()[row]);
    }
    return names;
  }
  // Counts the drags instead of running them: a drag runs until the user releases the button.
  void CountDrags(int& drags) {
    const auto count = [&drags] { ++drags; };
    DirTree& tree = window_->ThePanes().Tree();
    QObject::disconnect(&Rows(), &FileList::DragWanted, nullptr, nullptr);
    QObject::disconnect(&tree, &DirTree::DragWanted, nullptr, nullptr);
    QObject::connect(&Rows(), &FileList::DragWanted, &Rows(), count);
    QObject::connect(&tree, &DirTree::DragWanted, &tree, count);
  }
  static void MoveWithTheButton(QWidget& target, const QPoint& to) {
    QMouseEvent move(QEvent::MouseMove, QPointF(to), QPointF(target.mapToGlobal(to)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &move);
  }
};

TEST_F(ClickTest, AClickOnOneOfSeveralSelectedRowsLeavesThatRowAloneSelected) {
  StartWith(image_);
  SelectRows(List({"ALPHA", "DIR", "ZED"}));
  Click(NameOf("DIR"));
  EXPECT_EQ(Selected(), List({"DIR"}));
  EXPECT_EQ(window_->CurrentItem()->Name(), "DIR");
  WaitForAnEdit();
  EXPECT_EQ(Selected(), List({"DIR"}));
  EXPECT_EQ(EditorIn("lvwDB"), nullptr);
}

TEST_F(ClickTest, AfterSuchAClickDeleteTakesThatRowAlone) {
  StartWith(image_);
  SelectRows(List({"ALPHA", "EMPTY", "ZED"}));
  Click(NameOf("ZED"));
  Press(Rows(), Qt::Key_Delete);
  EXPECT_EQ(Names(), List({"ALPHA", "DIR", "EMPTY"}));
}

TEST_F(ClickTest, APressOnOneOfSeveralSelectedRowsThatMovesDragsThemAll) {
  StartWith(image_);
  int drags = 0;
  CountDrags(drags);
  SelectRows(List({"ALPHA", "ZED"}));
  const QPoint at = NameOf("ZED");
  QTest::mousePress(Rows().viewport(), Qt::LeftButton, {}, at);
  for (int step = 1; step < 5 && drags == 0; ++step) {
    MoveWithTheButton(*Rows().viewport(), at + QPoint(9, -9) * step);
  }
  EXPECT_EQ(drags, 1);
  EXPECT_EQ(Selected(), List({"ALPHA", "ZED"}));
  QTest::mouseRelease(Rows().viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(Selected(), List({"ALPHA", "ZED"}));
}

TEST_F(ClickTest, AClickOnAnotherColumnOfTheSelectedRowEditsNothing) {
  StartWith(image_);
  Click(NameOf("ZED"));
  WaitForAnEdit();
  const QRect row = Rows().visualRect(Rows().Model().index(Row(QStringLiteral("ZED")), 0));
  Click(Rows().CellRect(row, kColAttr).center());
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("lvwDB"), nullptr);
}

TEST_F(ClickTest, ASecondSlowClickOnTheNameEditsIt) {
  StartWith(image_);
  Click(NameOf("ZED"));
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("lvwDB"), nullptr) << "the first click only selects";
  Click(NameOf("ZED"));
  EXPECT_EQ(EditorIn("lvwDB"), nullptr) << "it may become a double click";
  WaitForAnEdit();
  ASSERT_NE(EditorIn("lvwDB"), nullptr);
  EXPECT_EQ(EditorIn("lvwDB")->text(), QStringLiteral("ZED"));
}

TEST_F(ClickTest, TheClickThatBringsTheFocusEditsNothing) {
  StartWith(image_);
  Click(NameOf("ZED"));
  window_->ThePanes().Tree().setFocus();
  Click(NameOf("ZED"));
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("lvwDB"), nullptr);
  Click(NameOf("ZED"));
  WaitForAnEdit();
  EXPECT_NE(EditorIn("lvwDB"), nullptr);
}

TEST_F(ClickTest, AKeyAfterTheSecondClickEditsNoOtherName) {
  StartWith(image_);
  Click(NameOf("EMPTY"));
  WaitForAnEdit();
  Click(NameOf("EMPTY"));
  Press(Rows(), Qt::Key_Down);
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("lvwDB"), nullptr);
  EXPECT_EQ(Selected(), List({"ZED"}));
}

TEST_F(ClickTest, ASecondSlowClickOnTheCurrentNodeEditsItAndOneOnAnotherDoesNot) {
  StartWith(image_);
  ClickNode(QStringLiteral("DIR"));
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("tvwDB"), nullptr);
  ClickNode(QStringLiteral("EMPTY"));
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("tvwDB"), nullptr);
  ClickNode(QStringLiteral("EMPTY"));
  WaitForAnEdit();
  EXPECT_NE(EditorIn("tvwDB"), nullptr);
}

TEST_F(ClickTest, ADragThatBeginsOverTheEditorOfANameDragsTheRow) {
  StartWith(image_);
  int drags = 0;
  CountDrags(drags);
  Click(NameOf("ZED"));
  Press(Rows(), Qt::Key_F2);
  QLineEdit* editor = EditorIn("lvwDB");
  ASSERT_NE(editor, nullptr);
  QTest::mousePress(editor, Qt::LeftButton, {}, {5, 5});
  MoveWithTheButton(*editor, {9, 5});
  EXPECT_EQ(drags, 0) << "a move inside the editor selects text";
  MoveWithTheButton(*editor, {9, -60});
  EXPECT_EQ(drags, 1);
  Settle();
  EXPECT_FALSE(Rows().IsEditing());
  EXPECT_EQ(Selected(), List({"ZED"}));
  EXPECT_TRUE(Names().contains(QStringLiteral("ZED")));
}

TEST_F(ClickTest, ADragThatBeginsOverTheEditorOfANodeDragsTheDirectory) {
  StartWith(image_);
  int drags = 0;
  CountDrags(drags);
  ClickNode(QStringLiteral("EMPTY"));
  Press(window_->ThePanes().Tree(), Qt::Key_F2);
  QLineEdit* editor = EditorIn("tvwDB");
  ASSERT_NE(editor, nullptr);
  QTest::mousePress(editor, Qt::LeftButton, {}, {5, 5});
  MoveWithTheButton(*editor, {5, 90});
  EXPECT_EQ(drags, 1);
}

// Qt's warnings while this object lives.
class Warnings {
 public:
  Warnings() : former_(qInstallMessageHandler(Note)) { Lines().clear(); }
  ~Warnings() { qInstallMessageHandler(former_); }
  Warnings(const Warnings&) = delete;
  Warnings& operator=(const Warnings&) = delete;
  static QStringList& Lines() {
    static QStringList lines;
    return lines;
  }

 private:
  static void Note(QtMsgType, const QMessageLogContext&, const QString& text) {
    Lines().append(text);
  }
  QtMessageHandler former_;
};

// Qt says "edit: editing failed" on standard error when it is asked for a second editor, or for one
// in the time in which it waits for the second half of a double click.
TEST_F(ClickTest, NoWayToAnEditMakesQtComplain) {
  StartWith(image_);
  const Warnings warnings;
  for (int i = 0; i < 2; ++i) {
    Click(NameOf("ZED"));
    WaitForAnEdit();
  }
  for (int i = 0; i < 2; ++i) Choose("mnuFileRename");
  EXPECT_NE(EditorIn("lvwDB"), nullptr);
  Press(*EditorIn("lvwDB"), Qt::Key_F2);
  Press(*EditorIn("lvwDB"), Qt::Key_Escape);
  Click(NameOf("ZED"));
  Choose("mnuFileRename");
  EXPECT_NE(EditorIn("lvwDB"), nullptr) << "between the clicks of what may be a double click";
  Press(*EditorIn("lvwDB"), Qt::Key_Escape);
  for (int i = 0; i < 2; ++i) {
    ClickNode(QStringLiteral("EMPTY"));
    WaitForAnEdit();
  }
  for (int i = 0; i < 2; ++i) Choose("mnuDirectoryRename");
  Choose("mnuDirectoryNew");
  Press(*EditorIn("tvwDB"), Qt::Key_F2);
  Press(*EditorIn("tvwDB"), Qt::Key_Escape);
  ClickNode(QStringLiteral("EMPTY"));
  ClickNode(QStringLiteral("EMPTY"));
  Press(window_->ThePanes().Tree(), Qt::Key_Home);
  WaitForAnEdit();
  EXPECT_EQ(EditorIn("tvwDB"), nullptr);
  for (int i = 0; i < 2; ++i) {
    ClickNode(QStringLiteral("$"));
    WaitForAnEdit();
  }
  Choose("mnuDirectoryRename");
  EXPECT_EQ(EditorIn("tvwDB"), nullptr) << "the root has no name to edit";
  EXPECT_EQ(Warnings::Lines(), QStringList());
}

}  // namespace
}  // namespace sectorbox::testing
