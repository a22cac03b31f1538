#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include "tests/shell/panes/PanesFixture.h"

// The keys of the panes that no menu entry shows.
namespace sectorbox::testing {
namespace {

class KeysTest : public PanesTest {
 protected:
  Panes& ThePanes() { return window_->ThePanes(); }
  QString Current() { return QString::fromStdString(window_->CurrentNode()->Text); }
};

TEST_F(KeysTest, EnterOpensTheCurrentRowIfItIsADirectory) {
  StartWith(image_);
  ClickRow(QStringLiteral("ALPHA"));
  Press(ThePanes().List(), Qt::Key_Return);
  EXPECT_EQ(Current(), QStringLiteral("$"));
  Press(ThePanes().List(), Qt::Key_Down);
  Press(ThePanes().List(), Qt::Key_Return);
  EXPECT_EQ(Current(), QStringLiteral("DIR"));
  EXPECT_EQ(Names(), List({"FILE", "INNER"}));
  EXPECT_TRUE(ThePanes().List().hasFocus());
  ClickRow(QStringLiteral("INNER"));
  Press(ThePanes().List(), Qt::Key_Enter);
  EXPECT_EQ(Current(), QStringLiteral("INNER"));
}

TEST_F(KeysTest, BackspaceAndAltUpGoUpFromEitherPaneAndStopAtTheRoot) {
  StartWith(image_);
  for (QWidget* pane :
       {static_cast<QWidget*>(&ThePanes().List()), static_cast<QWidget*>(&ThePanes().Tree())}) {
    ClickNode(QStringLiteral("DEEP"));
    Press(*pane, Qt::Key_Backspace);
    EXPECT_EQ(Current(), QStringLiteral("INNER"));
    Press(*pane, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(Current(), QStringLiteral("DIR"));
    Press(*pane, Qt::Key_Backspace);
    Press(*pane, Qt::Key_Backspace);
    Press(*pane, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(Current(), QStringLiteral("$"));
  }
}

TEST_F(KeysTest, ShiftF10OpensTheMenuOfThePane) {
  StartWith(image_);
  const auto pops = [&](QWidget& pane, const char* name) {
    pane.setFocus();
    QTest::keyClick(&pane, Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = window_->findChild<QMenu*>(QString::fromLatin1(name));
    const bool visible = menu->isVisible();
    menu->hide();
    return visible;
  };
  EXPECT_TRUE(pops(ThePanes().List(), "mnuFile"));
  EXPECT_TRUE(pops(ThePanes().Tree(), "mnuDirectory"));
  ClickNode(QStringLiteral("EMPTY"));
  EXPECT_FALSE(pops(ThePanes().List(), "mnuFile")) << "there is no row that it could be for";
}

TEST_F(KeysTest, ControlOOpensAndControlSSavesFromEitherPane) {
  StartWith(image_);
  for (QWidget* pane :
       {static_cast<QWidget*>(&ThePanes().List()), static_cast<QWidget*>(&ThePanes().Tree())}) {
    player_.ExpectFileDialog("", [](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open ADFS Disc Image"));
    });
    Press(*pane, Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(player_.AllPlayed());
    for (const Qt::KeyboardModifiers shift : {Qt::NoModifier, Qt::ShiftModifier}) {
      player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), false);
      Press(*pane, Qt::Key_S, Qt::ControlModifier | shift);
      EXPECT_TRUE(player_.AllPlayed());
    }
  }
}

TEST_F(KeysTest, TheKeysBelongToTheEditorWhileANameIsTyped) {
  StartWith(image_);
  ClickRow(QStringLiteral("DIR"));
  Press(ThePanes().List(), Qt::Key_F2);
  auto* editor = Find("lvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  editor->setText(QStringLiteral("GAMES"));
  QTest::keyClick(editor, Qt::Key_Backspace);
  QTest::keyClick(editor, Qt::Key_Up, Qt::AltModifier);
  QTest::keyClick(editor, Qt::Key_F5);
  QTest::keyClick(editor, Qt::Key_Return);
  Settle();
  EXPECT_TRUE(Names().contains(QStringLiteral("GAME")));
  EXPECT_EQ(Current(), QStringLiteral("$")) << "Enter ends the edit and opens nothing";
}

TEST_F(KeysTest, NoEntryOfTheMenusShowsAShortcut) {
  Start();
  for (const QAction* action : window_->findChildren<QAction*>()) {
    if (!action->objectName().startsWith(QLatin1String("mnu"))) continue;
    if (action->objectName().startsWith(QLatin1String("mnuTools"))) continue;
    EXPECT_TRUE(action->shortcut().isEmpty()) << action->objectName().toStdString();
  }
}

}  // namespace
}  // namespace sectorbox::testing
