#include <QDialog>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

#include "cfcard/windows/frmCF.h"
#include "link/windows/frmRX.h"
#include "shell/commands/XferCommands.h"
#include "shell/dialogs/frmSave.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Twips.h"
#include "toolkit/WindowPlace.h"

// A window that keeps its place must have its size before it is shown. If it gets its size only
// when it is shown, a window manager that draws frames puts the inside where the frame was, and the
// window creeps up the screen from one use to the next. The offscreen platform draws no frames, so
// these tests look at the cause: whether showing a window changes its size.
namespace sectorbox::testing {
namespace {

class PlaceTest : public WindowTest {
 protected:
  PlaceTest() { player_.PassOverProgress = true; }

  void ExpectSizedBeforeShown(QWidget& window) {
    const QSize before = window.size();
    EXPECT_TRUE(window.testAttribute(Qt::WA_Resized));
    window.show();
    Settle();
    EXPECT_EQ(window.size(), before);
    window.close();
  }
};

TEST_F(PlaceTest, ADialogWithoutAStoredSizeIsMovedAndSizedByItsLayout) {
  constexpr WindowPlace kPlace{"Test", 1500, 3000};
  QDialog dialog;
  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(new QLabel(QStringLiteral("text"), &dialog));
  RestorePlace(dialog, kPlace);
  EXPECT_EQ(dialog.size(), dialog.sizeHint());
  EXPECT_EQ(dialog.pos(), QPoint(100, 200));
  ExpectSizedBeforeShown(dialog);
}

class StoredPlace : public PlaceTest {
 protected:
  static void Store(double left, double top, double width, double height) {
    SettingsStore settings;
    settings.PutTwips("MainLeft", TwipsFromPixels(1) * left);
    settings.PutTwips("MainTop", TwipsFromPixels(1) * top);
    settings.PutTwips("MainWidth", TwipsFromPixels(1) * width);
    settings.PutTwips("MainHeight", TwipsFromPixels(1) * height);
  }
  // The screen of these tests has 800 by 800 pixels.
  QRect Screen() { return window_->screen()->availableGeometry(); }
};

TEST_F(StoredPlace, AWindowThatWasOffTheScreenIsBroughtOntoIt) {
  for (const auto& [left, top] : std::vector<std::pair<int, int>>{
           {5000, 100}, {-5000, 100}, {100, 5000}, {100, -5000}, {-400, -30}, {780, 100}}) {
    Store(left, top, 400, 300);
    StartAgain();
    EXPECT_TRUE(Screen().contains(window_->geometry())) << left << " " << top;
    EXPECT_EQ(window_->size(), QSize(400, 300));
  }
}

TEST_F(StoredPlace, AWindowThatIsLargerThanTheScreenIsMadeSmaller) {
  Store(20, 20, 90000, 90000);
  Start();
  EXPECT_TRUE(Screen().contains(window_->geometry()));
}

TEST_F(StoredPlace, AWindowThatTheUserCanReachStaysWhereItWas) {
  for (const auto& [left, top] :
       std::vector<std::pair<int, int>>{{100, 200}, {-300, 0}, {700, 700}}) {
    Store(left, top, 400, 300);
    StartAgain();
    EXPECT_EQ(window_->pos(), QPoint(left, top));
    EXPECT_EQ(window_->size(), QSize(400, 300));
  }
}

TEST_F(StoredPlace, ADialogThatWasOffTheScreenIsBroughtOntoIt) {
  SettingsStore().PutTwips("SaveLeft", 1e9);
  SettingsStore().PutTwips("SaveTop", -1e9);
  Start();
  frmSave dialog(window_.get(), *disc_);
  EXPECT_TRUE(Screen().contains(dialog.geometry()));
}

TEST_F(PlaceTest, AFixedSizeStays) {
  QDialog dialog;
  dialog.setFixedSize(300, 200);
  RestorePlace(dialog, kModePlace);
  EXPECT_EQ(dialog.size(), QSize(300, 200));
}

TEST_F(PlaceTest, TheTransferWindowIsSizedBeforeItIsShown) {
  Start();
  frmRX dialog(window_->Xfer().TheLink(), QStringLiteral("Send Image"), window_.get());
  dialog.setAttribute(Qt::WA_DeleteOnClose, false);
  ExpectSizedBeforeShown(dialog);
}

TEST_F(PlaceTest, TheSaveWindowIsSizedBeforeItIsShown) {
  Start();
  frmSave dialog(window_.get(), *disc_);
  ExpectSizedBeforeShown(dialog);
}

TEST_F(PlaceTest, TheCardWindowIsSizedBeforeItIsShown) {
  Start();
  frmCF dialog(window_.get(), *disc_, host_->Drives);
  ExpectSizedBeforeShown(dialog);
}

}  // namespace
}  // namespace sectorbox::testing
