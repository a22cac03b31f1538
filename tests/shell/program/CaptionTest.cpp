#include "toolkit/Captions.h"

#include <QApplication>
#include <QPushButton>

#include "tests/shell/commands/FilesFixture.h"
#include "toolkit/Boxes.h"
#include "viewers/windows/frmView.h"

// Title bars: no caption is cut, and every window has its icon.
namespace sectorbox::testing {
namespace {

class CaptionTest : public FileCommandsTest {
 protected:
  // The next dialog must have room for its caption, and goes by that button.
  void ExpectRoomy(const QString& title, const QString& button) {
    player_.Expect([=](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), title);
      EXPECT_GE(dialog.width(), CaptionWidth(dialog)) << dialog.windowTitle().toStdString();
      EXPECT_FALSE(dialog.windowIcon().isNull());
      for (QPushButton* push : dialog.findChildren<QPushButton*>()) {
        if (push->text().remove(u'&') == button) return push->click();
      }
      ADD_FAILURE() << "no button " << button.toStdString();
    });
  }
};

TEST_F(CaptionTest, SmallDialogsAreAsWideAsTheirCaptions) {
  StartWith(image_);
  Select({"ALPHA"});
  ExpectRoomy(QStringLiteral("Set File Attributes"), QStringLiteral("Cancel"));
  Choose("mnuFileAttributes");
  ExpectRoomy(QStringLiteral("Set File Addresses"), QStringLiteral("Cancel"));
  Choose("mnuFileAddresses");
  ExpectRoomy(QStringLiteral("Set Directory Title"), QStringLiteral("Cancel"));
  Choose("mnuDirectoryTitle");
  ExpectRoomy(QStringLiteral("Set Boot Attributes"), QStringLiteral("Cancel"));
  Choose("mnuDiscBoot");
  EXPECT_TRUE(player_.AllPlayed());
}

TEST_F(CaptionTest, ABoxOfFewWordsIsAsWideAsItsCaption) {
  StartWith(image_);
  ExpectRoomy(QStringLiteral("Save Changes"), QStringLiteral("No"));
  Choose("mnuDiscSave");
  ExpectRoomy(QStringLiteral("* Command Error"), QStringLiteral("OK"));
  ShowBox(window_.get(), QStringLiteral("?"), QStringLiteral("* Command Error"));
  EXPECT_TRUE(player_.AllPlayed());
}

TEST_F(CaptionTest, AViewHasTheProgramsIcon) {
  StartWith(image_);
  Choose("mnuDiscMap");
  Settle();
  int views = 0;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (qobject_cast<frmView*>(window) == nullptr) continue;
    ++views;
    EXPECT_FALSE(window->windowIcon().isNull());
    window->close();
  }
  EXPECT_EQ(views, 1);
}

}  // namespace
}  // namespace sectorbox::testing
